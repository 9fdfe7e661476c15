// Edits of a text: what is replaced, and where the other bytes are afterwards.
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

// The offset after the edits. An offset inside a replaced part becomes the start of the
// replacement, or the same byte where both have the same length.
size_t movedOffset(size_t offset, const std::vector<Edit> &edits);

} // namespace cli
