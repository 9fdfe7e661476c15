// Where the SDP bodies of a text are: the text itself, or the bodies of the SIP messages in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct BodyPlace {
    size_t offset;
    size_t size;
};

// Something that keeps a body from being read.
struct Problem {
    size_t offset; // of the message or part
    std::string text;
};

struct Bodies {
    std::vector<BodyPlace> bodies;
    std::vector<Problem> problems;
};

/*
 * A text that begins with a line such as "v=0", or holds no SIP message at all, is one body.
 * Otherwise every SIP message in it is looked at (RFC 3261 section 7), whatever stands between
 * them, and gives its application/sdp body, or those of its multipart body (RFC 2046 section 5.1).
 *
 * A body ends at the message's Content-Length; without one, before the next message or at the end.
 * Where a message's lines end in LF alone, a length that counts them as CR LF is understood too:
 * it was right before the text was converted. A text of messages without any body in it is a
 * problem, as is a message that cannot be cut.
 */
Bodies findBodies(std::string_view text);

} // namespace cli
