// Scanning of text that the lexer has already cut.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline {

constexpr bool isDigit(uint8_t byte) {
    return byte >= '0' && byte <= '9';
}

// Value of a text of digits only, modulo 2^32.
constexpr uint32_t scanNumber(std::string_view digits) {
    uint32_t value = 0;
    for (const char digit : digits) {
        value = value * 10 + static_cast<uint32_t>(digit - '0');
    }
    return value;
}

// Whether two texts are equal but for the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

} // namespace sdpline
