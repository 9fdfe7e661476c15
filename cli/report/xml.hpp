// Escapes text of an input for XML 1.0.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// For character data and for values of attributes. Line feeds are kept; other control characters,
// bytes that are not UTF-8 and code points that XML does not allow (U+FFFE, U+FFFF) become \xHH.
std::string xmlText(std::string_view text);

} // namespace cli
