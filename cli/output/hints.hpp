// What to do about a refused body, where there is something to do.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// The advice that goes with a failing check of the library; `line` is the line that was refused.
// Empty where there is none.
std::string_view hintFor(std::string_view check, std::string_view line);

// What the line has at the byte that was refused: "\"x\"", "a space", "the line end", as it may be
// shown; `atEnd`: the text ends there. Given for sentences that say what was expected, or what was
// not; empty for others.
std::string foundAt(std::string_view sentence, std::string_view line, size_t offset, bool atEnd);

} // namespace cli
