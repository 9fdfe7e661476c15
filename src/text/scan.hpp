// Comparison and scanning of texts. Nothing here allocates or logs.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline {

constexpr bool isDigit(uint8_t byte) {
    return byte >= '0' && byte <= '9';
}

// Whether a byte is an ASCII letter or digit.
constexpr bool isAlnum(int32_t byte) {
    const int32_t upper = byte & ~0x20;
    return (upper >= 'A' && upper <= 'Z') || (byte >= '0' && byte <= '9');
}

// Value of a text of digits only, modulo 2^32.
constexpr uint32_t scanNumber(std::string_view digits) {
    uint32_t value = 0;
    for (const char digit : digits) {
        value = value * 10 + static_cast<uint32_t>(digit - '0');
    }
    return value;
}

// How many digits a NUL-terminated text begins with.
uint32_t countDigits(const char *text);

// Value of up to four leading hexadecimal digits of a NUL-terminated text, 0 for none.
uint16_t hexNumber(const char *text);

// Value of up to three leading digits of a NUL-terminated text, 0 for none; 65535 when a letter is
// among its first three letters and digits.
uint16_t shortNumber(const char *text);

// Whether two texts are equal but for the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

// Whether a text begins with another, by the stack's SipSmStringNCmp.
bool startsWith(std::string_view text, std::string_view start);

// The first occurrence of a text in another, by the stack's SS_MemCmp; null for none. An empty text
// is found at the start.
const char *findText(std::string_view text, std::string_view wanted);

} // namespace sdpline
