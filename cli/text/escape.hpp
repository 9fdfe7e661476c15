// Escapes text of an input, so that a terminal does not interpret it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

// A line with a mark below one position.
struct Excerpt {
    std::string line;
    size_t mark; // columns before the mark
};

// UTF-8 is kept; bytes that do not print become \t, \r, \0 or \xHH. Of a long line the part around
// the offset is shown. Offsets count bytes of the line, which is given without its line end.
Excerpt excerptOf(std::string_view line, size_t offset);

// Escapes the whole text.
std::string escaped(std::string_view text);

// Escapes the control characters that JSON allows in strings, U+007F to U+009F, as \u007f to
// \u009f.
std::string escapedJson(std::string_view document);

} // namespace cli
