// Reads the headers of messages and of MIME parts, and finds the parts of a multipart body.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// A line of a text: its begin, its end before CR LF or LF, and the begin of the next line.
struct LinePlace {
    size_t begin;
    size_t end;
    size_t next;
};

inline LinePlace lineAt(std::string_view text, size_t offset) {
    const size_t feed = text.find('\n', offset);
    if (feed == std::string_view::npos) {
        return {offset, text.size(), text.size()};
    }
    const bool crlf = feed > offset && text[feed - 1] == '\r';
    return {offset, feed - (crlf ? 1 : 0), feed + 1};
}

// The headers that describe a body, unfolded.
struct Headers {
    std::string contentType;
    std::optional<std::string> contentLength;
    std::string encoding; // of the content or of its transfer; empty for none
    size_t bodyAt = 0;    // after the empty line; the end of the text where there is none
    bool bareLineFeeds = false;
};

// Reads headers from the offset up to and including the empty line, or up to a line for which
// `stops` returns true.
Headers readHeaders(std::string_view text, size_t offset, bool (*stops)(std::string_view line));

// The media type of a Content-Type value, "multipart/mixed", and one of its parameters, without
// quotes.
std::string_view mediaType(std::string_view contentType);
std::optional<std::string> parameter(std::string_view contentType, std::string_view name);

struct PartPlace {
    size_t begin; // of its headers
    size_t end;   // before the line end of the delimiter
};

// The parts between the delimiter lines, from the offset on. Without a closing delimiter the last
// part ends with the body.
std::vector<PartPlace> partsOf(std::string_view text, size_t offset, std::string_view boundary);

} // namespace cli
