// Doubts found in the plainest way: the description as strings, one question after another. What
// the library finds in one pass is compared with this.
#pragma once

#include <string>

namespace tidytest {

// "5:9 PortRange" a line each, of a text that decodes.
std::string plainDoubts(const std::string &text, bool rtpFamily);

} // namespace tidytest
