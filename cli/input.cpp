#include "input.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace cli {

namespace {

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Takes the next line off the text, its line end dropped.
std::string_view takeLine(std::string_view &text) {
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

// "INVITE sip:... SIP/2.0" or "SIP/2.0 200 OK"
bool isSipStart(std::string_view line) {
    return line.starts_with("SIP/2.0 ") || line.ends_with(" SIP/2.0");
}

struct Headers {
    std::string contentType;
    std::optional<size_t> contentLength;
};

// Takes the headers and the empty line behind them. False when a length is no number.
bool takeHeaders(std::string_view &text, Headers &headers) {
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (line.empty()) {
            return true;
        }
        const size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        const std::string_view name = trimmed(line.substr(0, colon));
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (equalsIgnoringCase(name, "Content-Type") || equalsIgnoringCase(name, "c")) {
            headers.contentType = trimmed(value.substr(0, value.find(';')));
        } else if (equalsIgnoringCase(name, "Content-Length") || equalsIgnoringCase(name, "l")) {
            size_t length = 0;
            const auto [end, problem] =
                std::from_chars(value.data(), value.data() + value.size(), length);
            if (problem != std::errc{} || end != value.data() + value.size()) {
                return false;
            }
            headers.contentLength = length;
        }
    }
    return true;
}

} // namespace

std::optional<std::string> readInput(const std::string &path, std::string &error) {
    const auto close = [](std::FILE *file) { file != stdin ? std::fclose(file) : 0; };
    errno = 0;
    const std::unique_ptr<std::FILE, decltype(close)> file(
        path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
    std::string text;
    char chunk[65536];
    for (size_t got = 1; file && got != 0;) {
        got = std::fread(chunk, 1, sizeof chunk, file.get());
        text.append(chunk, got);
    }
    if (!file || std::ferror(file.get()) != 0) {
        error = std::strerror(errno);
        return std::nullopt;
    }
    return text;
}

std::optional<std::string> extractSdp(const std::string &text, std::string &error) {
    std::string_view rest = text;
    if (!isSipStart(takeLine(rest))) {
        return text;
    }
    Headers headers;
    if (!takeHeaders(rest, headers)) {
        error = "the SIP message's Content-Length is not a number";
        return std::nullopt;
    }
    if (!equalsIgnoringCase(headers.contentType, "application/sdp")) {
        error = "the SIP message carries no application/sdp body";
        return std::nullopt;
    }
    if (headers.contentLength && *headers.contentLength > rest.size()) {
        error = "the SIP message ends before its Content-Length";
        return std::nullopt;
    }
    return std::string(rest.substr(0, headers.contentLength.value_or(rest.size())));
}

} // namespace cli
