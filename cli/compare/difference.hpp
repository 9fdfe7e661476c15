// Finds what differs in the meaning of two bodies.
//
// Media descriptions are paired by their position, as in offers and answers (RFC 3264 section 8).
// The direction and connection of the session apply to every media description that has none. The
// order of attributes, line ends, blanks and the spelling of addresses are ignored; the order of
// payloads is not.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.hpp"

namespace cli {

struct Change {
    std::optional<size_t> media; // number of the media description, from 1; none: the session
    std::string mediaType;       // "audio"
    std::string_view what;       // "port", "payload", "attribute" and so on
    std::optional<std::string> from;
    std::optional<std::string> to; // only `from`: removed; only `to`: added
    std::string_view before;       // the text before the value in its line: "c="
};

// Sets the T.38 style during the call; encoding may complete rtpmap records without a name.
std::vector<Change> differences(const sdpline::Body &first, const sdpline::Body &second);

} // namespace cli
