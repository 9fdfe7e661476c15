// One SIP message inside a text: where it begins, where its body ends, and the SDP in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "sip/bodies.hpp"

namespace cli {

// A line longer than this is not taken for the first line of a message.
constexpr size_t kLongestStartLine = 8192;

// Offset of the next SIP message's first line; the text's length when there is none.
size_t findMessage(std::string_view text, size_t offset);

// Adds what the message that begins at the offset holds (RFC 3261 section 7): its application/sdp
// body, or those of its multipart body (RFC 2046 section 5.1). Returns where the message ends.
//
// The body ends at the message's Content-Length; without one, before the next message or at the
// end. Where a message's lines end in LF alone, a length that counts them as CR LF is understood
// too: it was right before the text was converted. A length that cannot be right is a problem, and
// the body is found by its lines instead.
//
// The work is linear in the distance to the returned offset or to the next message.
size_t takeMessage(std::string_view text, size_t start, Bodies &found);

// The same where nothing that may follow the text can change it: the message's Content-Length is
// right, and the text goes on far enough after its end. Otherwise nothing, and nothing is added.
std::optional<size_t> takeSettledMessage(std::string_view text, size_t start, Bodies &found);

} // namespace cli
