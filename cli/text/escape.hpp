// Text of an input as it may be shown on a terminal, which must not obey it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// A line with a mark below a place of it.
struct Excerpt {
    std::string line;
    size_t mark; // columns before the mark
};

// UTF-8 is kept; bytes that do not print are \t, \r, \0 or \xHH. Of a long line the surroundings of
// the offset are shown. Offsets count bytes of the line, which comes without its line end.
Excerpt excerptOf(std::string_view line, size_t offset);

// The whole text as it may be shown.
std::string escaped(std::string_view text);

// A JSON document as it may be shown: what JSON itself allows in strings, U+007F to U+009F, becomes
// \u007f to \u009f.
std::string escapedJson(std::string_view document);

} // namespace cli
