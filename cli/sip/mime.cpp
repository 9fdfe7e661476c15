#include "sip/mime.hpp"

#include <algorithm>
#include <initializer_list>

#include "text/strings.hpp"

namespace cli {

namespace {

bool isOneOf(std::string_view value, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(
        words, [value](std::string_view word) { return equalsIgnoringCase(value, word); });
}

// Whether the header may be one that is kept, judged by its first byte, which excludes half of
// them.
bool mayBeKept(std::string_view header) {
    constexpr std::string_view kFirst = "CcEeLl\r";
    return !header.empty() && kFirst.find(header.front()) != std::string_view::npos;
}

void keepHeader(Headers &headers, std::string_view header) {
    if (!mayBeKept(header)) {
        return;
    }
    const size_t colon = header.find(':');
    if (colon == std::string_view::npos) {
        return;
    }
    const std::string_view name = trimmed(header.substr(0, colon));
    const auto is = [name](std::string_view full, std::string_view compact) {
        return name.size() == full.size() ? equalsIgnoringCase(name, full)
                                          : name.size() == 1 && equalsIgnoringCase(name, compact);
    };
    const auto value = [&] { return trimmed(header.substr(colon + 1)); };
    if (is("Content-Type", "c")) {
        headers.contentType = value();
    } else if (is("Content-Length", "l")) {
        headers.contentLength = value();
    } else if ((is("Content-Encoding", "e") && !isOneOf(value(), {"", "identity"})) ||
               (is("Content-Transfer-Encoding", "") &&
                !isOneOf(value(), {"", "7bit", "8bit", "binary"}))) {
        headers.encoding = value();
    }
}

// The content of a quoted string, without quotes and backslashes; other text is not changed.
std::string unquoted(std::string_view text) {
    if (!text.starts_with('"')) {
        return std::string(text);
    }
    std::string result;
    for (size_t i = 1; i < text.size() && text[i] != '"'; ++i) {
        i += text[i] == '\\' && i + 1 < text.size() ? 1 : 0;
        result += text[i];
    }
    return result;
}

// The end of the parameter that begins at the offset: the next ";" that is not quoted.
size_t parameterEnd(std::string_view text, size_t offset) {
    bool quoted = false;
    for (; offset < text.size(); ++offset) {
        if (text[offset] == '"') {
            quoted = !quoted;
        } else if (text[offset] == '\\' && quoted) {
            ++offset;
        } else if (text[offset] == ';' && !quoted) {
            break;
        }
    }
    return offset < text.size() ? offset : text.size();
}

} // namespace

Headers readHeaders(std::string_view text, size_t offset, bool (*stops)(std::string_view line)) {
    Headers headers;
    std::string_view header; // the one before the line
    std::string unfolded;    // with its continuation lines, where it has any
    headers.bodyAt = text.size();
    while (offset < text.size()) {
        const LinePlace place = lineAt(text, offset);
        const std::string_view line = text.substr(offset, place.end - offset);
        headers.bareLineFeeds = headers.bareLineFeeds || place.next == place.end + 1;
        if (stops(line)) {
            headers.bodyAt = offset;
            break;
        }
        offset = place.next;
        if (line.empty()) {
            headers.bodyAt = offset;
            break;
        }
        if (line.front() == ' ' || line.front() == '\t') {
            if (unfolded.empty()) {
                unfolded = header;
            }
            unfolded += ' ';
            unfolded += trimmed(line);
            continue;
        }
        keepHeader(headers, unfolded.empty() ? header : unfolded);
        unfolded.clear();
        header = line;
    }
    keepHeader(headers, unfolded.empty() ? header : unfolded);
    return headers;
}

std::string_view mediaType(std::string_view contentType) {
    return trimmed(contentType.substr(0, contentType.find(';')));
}

std::optional<std::string> parameter(std::string_view contentType, std::string_view name) {
    size_t begin = contentType.find(';');
    while (begin < contentType.size()) {
        const size_t end = parameterEnd(contentType, begin + 1);
        const std::string_view item = contentType.substr(begin + 1, end - begin - 1);
        const size_t equal = item.find('=');
        if (equal != std::string_view::npos &&
            equalsIgnoringCase(trimmed(item.substr(0, equal)), name)) {
            return unquoted(trimmed(item.substr(equal + 1)));
        }
        begin = end;
    }
    return std::nullopt;
}

std::vector<PartPlace> partsOf(std::string_view text, size_t offset, std::string_view boundary) {
    const std::string delimiter = "--" + std::string(boundary);
    std::vector<PartPlace> parts;
    bool inPart = false;
    size_t lineEnd = offset; // the end of the previous line, before its line end
    while (offset < text.size()) {
        const LinePlace place = lineAt(text, offset);
        std::string_view line = text.substr(offset, place.end - offset);
        if (line.starts_with(delimiter)) {
            line.remove_prefix(delimiter.size());
            const bool closes = line.starts_with("--");
            line.remove_prefix(closes ? 2 : 0);
            if (trimmed(line).empty()) {
                if (inPart) {
                    parts.back().end = lineEnd > parts.back().begin ? lineEnd : parts.back().begin;
                }
                if (closes) {
                    return parts;
                }
                parts.push_back({place.next, text.size()});
                inPart = true;
            }
        }
        lineEnd = place.end;
        offset = place.next;
    }
    return parts;
}

} // namespace cli
