// Headers of messages and of MIME parts, and the parts of a multipart body.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// A line of the text: where it begins, where it ends without CR LF or LF, where the next begins.
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

// The headers that say what a body is, folded ones unfolded.
struct Headers {
    std::string contentType;
    std::optional<std::string> contentLength;
    std::string encoding; // of the content or for its transfer, when there is one to undo
    size_t bodyAt = 0;    // after the empty line; the end of the text when there is none
    bool bareLineFeeds = false;
};

// Reads headers from the offset up to and with the empty line. `stops` ends them early: a line for
// which it returns true is no header.
Headers readHeaders(std::string_view text, size_t offset, bool (*stops)(std::string_view line));

// "multipart/mixed" of a Content-Type value, and one of its parameters, without quotes.
std::string_view mediaType(std::string_view contentType);
std::optional<std::string> parameter(std::string_view contentType, std::string_view name);

struct PartPlace {
    size_t begin; // of its headers
    size_t end;   // the line end before the delimiter is not the part's
};

// The parts between the boundary's delimiter lines, from the offset on. A body that ends without a
// closing delimiter ends its last part.
std::vector<PartPlace> partsOf(std::string_view text, size_t offset, std::string_view boundary);

} // namespace cli
