// What differs between two bodies, by meaning.
//
// Media descriptions are paired by their place, as offers and answers pair them (RFC 3264 section
// 8). Direction and connection are compared as they are in force: those of the session count for
// every media description that has none. The order of attributes, line ends, blanks and the
// spelling of addresses make no difference; the order of payloads does.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.hpp"

namespace cli {

struct Change {
    std::optional<size_t> media; // place of the media description, from 1; none: the session
    std::string mediaType;       // "audio"
    std::string_view what;       // "port", "payload", "attribute" and so on
    std::optional<std::string> from;
    std::optional<std::string> to; // without one of the two: removed, or added
    std::string_view before;       // what comes before such a text in its line: "c="
};

// Sets the T.38 style for the time being, and may complete rtpmap attributes without a name.
std::vector<Change> differences(const sdpline::Body &first, const sdpline::Body &second);

} // namespace cli
