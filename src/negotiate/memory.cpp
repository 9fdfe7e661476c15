// Texts that are put together.
#include "negotiate/memory.hpp"

#include <charconv>

namespace sdpline::negotiate {

Text &Text::operator<<(uint32_t number) {
    char digits[10];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return *this << std::string_view(digits, static_cast<size_t>(end - digits));
}

} // namespace sdpline::negotiate
