// Text of an input in XML 1.0.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// For character data and for values of attributes. Line feeds stay; other control characters, bytes
// that are not UTF-8 and the characters that XML does not have (U+FFFE, U+FFFF) become \xHH.
std::string xmlText(std::string_view text);

} // namespace cli
