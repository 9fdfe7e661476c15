// Checks the lines of a refused body after the refused one, each by itself: the library stops at
// the first failure.
#pragma once

#include <string_view>
#include <vector>

#include "output/diagnostic.hpp"

namespace cli {

// Checks every line after that of the offset, up to the first empty line, as the parser would after
// lines that it may follow. The line that precedes it in the body does not matter.
std::vector<Diagnostic> judgeLines(std::string_view body, size_t refusedAt);

} // namespace cli
