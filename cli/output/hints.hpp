// Hints about refused bodies.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// The hint for a failing check of the library; `line` is the refused line, or the first line if the
// whole body was refused. Empty if there is no hint.
std::string_view hintFor(std::string_view check, std::string_view line);

// What the line has at the refused byte, escaped: "\"x\"", "a space", "the line end"; `atEnd` says
// that the text ends there. Empty unless the sentence begins with "expected" or "unexpected".
std::string foundAt(std::string_view sentence, std::string_view line, size_t offset, bool atEnd);

} // namespace cli
