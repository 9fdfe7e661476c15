// The lines of a refused body after the one that was refused, each judged on its own: the library
// itself stops at the first.
#pragma once

#include <string_view>
#include <vector>

#include "output/diagnostic.hpp"

namespace cli {

// Judges every line from the offset's next one up to the first empty line as its parser would after
// lines that it may follow. Which line really precedes it is not looked at.
std::vector<Diagnostic> judgeLines(std::string_view body, size_t refusedAt);

} // namespace cli
