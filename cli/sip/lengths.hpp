// Finds the Content-Length headers of SIP messages, and the bytes that they count.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace cli {

// The digits of a message's Content-Length, and the bytes that they count.
struct LengthPlace {
    size_t offset;
    size_t size;
    size_t begin;
    size_t end;
};

std::vector<LengthPlace> lengthsOf(std::string_view text);

} // namespace cli
