// One line of an input as it may be shown on a terminal, with a mark below a place of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

struct Excerpt {
    std::string line;
    size_t mark; // columns before the mark
};

// UTF-8 is kept; bytes that do not print are \t, \r, \0 or \xHH. Of a long line the surroundings of
// the offset are shown. Offsets count bytes of the line, which comes without its line end.
Excerpt excerptOf(std::string_view line, size_t offset);

// The whole text as it may be shown.
std::string escaped(std::string_view text);

} // namespace cli
