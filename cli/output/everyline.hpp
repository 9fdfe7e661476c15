// The lines of a refused body behind the one that was refused, each judged on its own: the library
// itself stops at the first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.h"

namespace cli {

struct LineFault {
    SDPResult result; // 0 when the line is of no known kind
    uint32_t token;
    size_t offset; // in the body
};

// Gives every line from the offset's next one up to the first empty line to the parser of its kind.
// Which line may follow which is not looked at. Uses the lexer and the decoder's memory hooks, as a
// decode does.
std::vector<LineFault> judgeLines(std::string_view body, size_t refusedAt);

} // namespace cli
