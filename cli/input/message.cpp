#include "input/message.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "input/mime.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

constexpr int kDeepestPart = 8;

// "INVITE sip:bob@example.com SIP/2.0" or "SIP/2.0 200 OK" (RFC 3261 sections 7.1, 7.2)
bool isSipStart(std::string_view line) {
    constexpr std::string_view version = "SIP/2.0";
    if (line.starts_with(version)) {
        line.remove_prefix(version.size());
        return line.size() >= 4 && line[0] == ' ' && isDigit(line[1]) && isDigit(line[2]) &&
               isDigit(line[3]) && (line.size() == 4 || line[4] == ' ');
    }
    if (!line.ends_with(version)) {
        return false;
    }
    const size_t method = line.find(' ');
    const size_t uri = line.find(' ', method + 1);
    if (method == 0 || uri == std::string_view::npos || uri + 1 + version.size() != line.size()) {
        return false;
    }
    const std::string_view word = line.substr(0, method);
    const bool isToken = std::all_of(word.begin(), word.end(), [](char byte) {
        return isAlnum(byte) || std::string_view("-.!%*_+`'~").find(byte) != std::string_view::npos;
    });
    return isToken && line.substr(method + 1, uri - method - 1).find(':') != std::string_view::npos;
}

bool never(std::string_view /*line*/) {
    return false;
}

// Offset of the next SIP message's first line; the text's length when there is none.
size_t findStart(std::string_view text, size_t offset) {
    while (offset < text.size()) {
        const LinePlace place = lineAt(text, offset);
        if (isSipStart(text.substr(offset, place.end - offset))) {
            return offset;
        }
        offset = place.next;
    }
    return text.size();
}

// "v=0": a letter and "=" behind any empty lines.
bool beginsAsSdp(std::string_view text) {
    const size_t first = text.find_first_not_of("\r\n");
    return first != std::string_view::npos && isLetter(text[first]) &&
           text.substr(first + 1).starts_with('=');
}

// Whether a message could end there: before another one, or nothing but blanks and line ends.
bool couldEnd(std::string_view text, size_t offset) {
    const size_t next = text.find_first_not_of(" \t\r\n", offset);
    if (next == std::string_view::npos) {
        return true;
    }
    const LinePlace place = lineAt(text, next);
    return next > 0 && text[next - 1] == '\n' && isSipStart(text.substr(next, place.end - next));
}

// The offset that many bytes on, each LF alone counted as CR LF. A missing last line end is made up
// for.
std::optional<size_t> endCountingCrLf(std::string_view text, size_t begin, size_t length) {
    size_t count = 0;
    size_t at = begin;
    for (; at < text.size() && count < length; ++at) {
        count += text[at] == '\n' && (at == begin || text[at - 1] != '\r') ? 2 : 1;
    }
    const bool meets = count == length || (at == text.size() && count + 2 == length);
    return meets ? std::optional(at) : std::nullopt;
}

class Finder {
public:
    explicit Finder(std::string_view text) : text_(text) {}

    Bodies run() {
        size_t start = findStart(text_, 0);
        const size_t first = start;
        bool several = false;
        while (start < text_.size()) {
            const size_t next = takeMessage(start);
            start = findStart(text_, next);
            several = several || start < text_.size();
        }
        if (found_.bodies.empty() && found_.problems.empty()) {
            found_.problems.push_back({first, several
                                                  ? "no SIP message carries an application/sdp body"
                                                  : "the SIP message carries no application/sdp "
                                                    "body"});
        }
        return std::move(found_);
    }

private:
    // Answers where to go on.
    size_t takeMessage(size_t start) {
        const Headers headers = readHeaders(text_, lineAt(text_, start).next, isSipStart);
        const std::optional<size_t> end = endOf(start, headers);
        if (!end) {
            return headers.bodyAt;
        }
        takeEntity(headers, start, headers.bodyAt, *end, 0);
        return *end;
    }

    std::optional<size_t> endOf(size_t start, const Headers &headers) {
        const size_t begin = headers.bodyAt;
        if (!headers.contentLength) {
            return endWithoutLength(begin);
        }
        const std::string &value = *headers.contentLength;
        size_t length = 0;
        const auto [rest, error] =
            std::from_chars(value.data(), value.data() + value.size(), length);
        if (error != std::errc{} || rest != value.data() + value.size()) {
            problem(start, "the SIP message's Content-Length is not a number");
            return std::nullopt;
        }
        std::vector<size_t> ends; // where the body may end, the likelier first
        if (length <= text_.size() - begin) {
            ends.push_back(begin + length);
        }
        if (headers.bareLineFeeds) {
            if (const auto end = endCountingCrLf(text_, begin, length)) {
                ends.push_back(*end);
            }
        }
        if (ends.empty()) {
            problem(start, "the SIP message ends before its Content-Length");
            return std::nullopt;
        }
        return likeliest(ends);
    }

    size_t likeliest(const std::vector<size_t> &ends) const {
        for (const size_t end : ends) {
            if (couldEnd(text_, end)) {
                return end;
            }
        }
        for (const size_t end : ends) {
            if (end > 0 && text_[end - 1] == '\n') {
                return end;
            }
        }
        return ends.front();
    }

    // Empty lines before the next message are not the body's.
    size_t endWithoutLength(size_t begin) const {
        size_t end = findStart(text_, begin);
        if (end == text_.size()) {
            return end;
        }
        while (end > begin && text_[end - 1] == '\n') {
            const size_t lineEnd = end - (end - 1 > begin && text_[end - 2] == '\r' ? 2 : 1);
            if (lineEnd == begin || text_[lineEnd - 1] != '\n') {
                break;
            }
            end = lineEnd;
        }
        return end;
    }

    // `start` is where problems are reported.
    void takeEntity(const Headers &headers, size_t start, size_t begin, size_t end, int depth) {
        const std::string_view type = mediaType(headers.contentType);
        if (equalsIgnoringCase(type, "application/sdp")) {
            if (!headers.encoding.empty()) {
                problem(start, "the body is encoded as " + headers.encoding);
                return;
            }
            found_.bodies.push_back({begin, end - begin});
        } else if (equalsIgnoringCase(type.substr(0, 10), "multipart/")) {
            takeParts(headers, start, begin, end, depth);
        }
    }

    void takeParts(const Headers &headers, size_t start, size_t begin, size_t end, int depth) {
        const std::optional<std::string> boundary = parameter(headers.contentType, "boundary");
        if (!boundary || boundary->empty()) {
            problem(start, "the multipart body's Content-Type has no boundary");
            return;
        }
        if (depth == kDeepestPart) {
            problem(start, "the multipart bodies are nested too deep");
            return;
        }
        const std::string_view upToEnd = text_.substr(0, end);
        for (const PartPlace &part : partsOf(upToEnd, begin, *boundary)) {
            const std::string_view upToPart = text_.substr(0, part.end);
            const Headers inner = readHeaders(upToPart, part.begin, never);
            takeEntity(inner, part.begin, inner.bodyAt, part.end, depth + 1);
        }
    }

    void problem(size_t offset, std::string text) {
        found_.problems.push_back({offset, std::move(text)});
    }

    std::string_view text_;
    Bodies found_;
};

} // namespace

Bodies findBodies(std::string_view text) {
    if (beginsAsSdp(text) || findStart(text, 0) == text.size()) {
        return {{{0, text.size()}}, {}};
    }
    return Finder(text).run();
}

} // namespace cli
