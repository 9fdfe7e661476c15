// The normal form of a body, which the lexer reads: no CR before LF, no NUL, no spaces at the start
// of a line but the first; two line ends and a NUL after it.
#pragma once

#include <cstdint>

#include "services/inline.hpp"

namespace sdpline {

// What the normal form has for a text that begins with a byte of CR or below: one byte or none.
// Reading goes on at `next`.
struct NormaliseStep {
    const uint8_t *byte;
    uint32_t kept; // 0 or 1
    const uint8_t *next;
};

// What is dropped after a line end. A NUL there hides no space after it.
constexpr bool isDroppedAtLineStart(uint8_t byte) {
    return byte == ' ' || byte == '\0';
}

SDPLINE_INLINE NormaliseStep normaliseSpecial(const uint8_t *byte, const uint8_t *end) {
    if (*byte == '\r' && byte + 1 != end && byte[1] == '\n') {
        ++byte;
    }
    if (*byte != '\n') {
        return {byte, *byte != '\0', byte + 1};
    }
    const uint8_t *next = byte + 1;
    while (next != end && isDroppedAtLineStart(*next)) {
        ++next;
    }
    return {byte, 1, next};
}

// Writes the normal form of a text: at most two bytes more than the text has, and the NUL, after
// which it returns.
uint8_t *normalise(const uint8_t *text, uint32_t length, uint8_t *out);
// The same with the clearing that convertCRLFToCR makes first.
uint8_t *normaliseCleared(const uint8_t *text, uint32_t length, uint8_t *out, uint32_t size);

// Where in the text a byte of its normal form is.
struct OriginalPlace {
    uint32_t offset; // the text's length for what was put after it
    uint32_t line;   // from 1
    uint32_t lineStart;
};
OriginalPlace originalPlace(const uint8_t *text, uint32_t length, uint32_t offset);

} // namespace sdpline
