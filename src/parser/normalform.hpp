// The normal form of a body, which the lexer reads: it has no CR before LF, no NUL, and no spaces
// at the start of any line but the first; two line ends and a NUL follow it.
#pragma once

#include <cstdint>

#include "text/inline.hpp"

namespace sdpline {

// One step over a text that begins with a byte of at most CR (0x0D): the normal form keeps one byte
// of it or none, and the text is read on at `next`.
struct NormaliseStep {
    const uint8_t *byte;
    uint32_t kept; // 0 or 1
    const uint8_t *next;
};

// Spaces and NUL bytes are dropped after a line end, in any mixture.
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

// Writes the normal form of a text, which is at most length + 3 bytes with its NUL; returns the
// address after the NUL.
uint8_t *normalise(const uint8_t *text, uint32_t length, uint8_t *out);
// The same, but first clears `length` bytes of `out`, as convertCRLFToCR does. `size` is the size
// of `out`.
uint8_t *normaliseCleared(const uint8_t *text, uint32_t length, uint8_t *out, uint32_t size);

// Copies a text to `out` without changes, followed by what ends the normal form and by the lexer's
// padding, length + 19 bytes in all. Returns false when the copy is not a body as a BodyLexer reads
// it (lexer.hpp) or does not begin with "v=".
bool copyBody(const uint8_t *text, uint32_t length, uint8_t *out);

// The place in the text that a byte of its normal form comes from.
struct OriginalPlace {
    uint32_t offset;    // the text's length for the line ends that were added after it
    uint32_t line;      // counted from 1
    uint32_t lineStart; // offset of the line's first byte
};
OriginalPlace originalPlace(const uint8_t *text, uint32_t length, uint32_t offset);
// The place in the text of a byte that copyBody() copied.
OriginalPlace bodyPlace(const uint8_t *text, uint32_t length, uint32_t offset);

} // namespace sdpline
