// Finds a SIP message in a text: where it begins, where its body ends, and the SDP in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "sip/bodies.hpp"

namespace cli {

// A longer line is not the first line of a message.
constexpr size_t kLongestStartLine = 8192;

// The offset of the first line of the next SIP message; the size of the text where there is none.
size_t findMessage(std::string_view text, size_t offset);

// Adds the bodies of the message that begins at the offset (RFC 3261 section 7): its
// application/sdp body, or those in its multipart body (RFC 2046 section 5.1). Returns the end of
// the message.
//
// The Content-Length says where the body ends; without one it ends before the next message or at
// the end of the text. If the lines of the message end in LF alone, the length may count them as CR
// LF, since they may have been converted after the message was sent. A length that cannot be right
// is a problem, and the body ends with its lines of SDP instead.
//
// The work is linear in the distance to the returned offset or to the next message.
size_t takeMessage(std::string_view text, size_t start, Bodies &found);

// The same, where text that may follow cannot change the result: the Content-Length is right, and
// the text continues far enough after the message. Otherwise returns nothing, and adds nothing.
std::optional<size_t> takeSettledMessage(std::string_view text, size_t start, Bodies &found);

} // namespace cli
