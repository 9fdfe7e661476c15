// Changes of a text: what is replaced, and where its other bytes are afterwards.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// A part of a text, and what replaces it.
struct Edit {
    size_t begin;
    size_t end;
    std::string with;
};

// The edits are in order and do not overlap, here and below.
std::string applied(std::string_view text, const std::vector<Edit> &edits);

// Where an offset of the text is afterwards. Inside a replaced part it is the start of the
// replacement, or the same byte where both have one length.
size_t movedOffset(size_t offset, const std::vector<Edit> &edits);

} // namespace cli
