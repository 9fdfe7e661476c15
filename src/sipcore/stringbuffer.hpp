// The record of a string buffer, and the writing of texts and numbers. libsdpline includes this
// header too, and writes into the buffer itself if no service was replaced (functions.hpp).
#pragma once

#include "sdpline/sipcore.h"

#include <array>
#include <cstdint>
#include <cstring>

//   data          at                end
//   |  the text   |  free           |
struct SipStringBuffer {
    char *data;
    char *at;  // where the next byte goes
    char *end; // the end of the memory; before `at` after a failed append, so that nothing fits
    uint32_t growSize;
    bool fixed;
    SDPMemCp *memCp;

    char *firstBytes() { return reinterpret_cast<char *>(this + 1); }
    uint32_t length() const { return static_cast<uint32_t>(at - data); }
    uint32_t capacity() const { return static_cast<uint32_t>(end - data); }
    bool failed() const { return end < at; }
};

namespace sipcore {

// Grows the buffer unless `size` bytes fit. A buffer that cannot grow is unchanged, and does not
// count as failed.
uint32_t reserve(SipStringBuffer *buffer, uint32_t size);

// ---- Texts

struct Bytes16 {
    uint64_t halves[2];
};

// Copies the first and the last bytes of a text, which adjoin or overlap.
template <class Part>
inline void putEnds(char *to, const char *from, uint32_t size) {
    Part first;
    Part last;
    std::memcpy(&first, from, sizeof(Part));
    std::memcpy(&last, from + size - sizeof(Part), sizeof(Part));
    std::memcpy(to, &first, sizeof(Part));
    std::memcpy(to + size - sizeof(Part), &last, sizeof(Part));
}

constexpr uint32_t kShortText = 32;

// Copies a text of at most kShortText bytes without a call, and returns the end of the copy. Line
// ends are the most frequent texts, and are tested first.
inline char *putShortText(char *to, const char *from, uint32_t size) {
    if (size < 4) {
        if (size >= 2) [[likely]] {
            putEnds<uint16_t>(to, from, size);
        } else if (size == 1) {
            *to = *from;
        }
    } else if (size < 8) {
        putEnds<uint32_t>(to, from, size);
    } else if (size <= 16) {
        putEnds<uint64_t>(to, from, size);
    } else {
        putEnds<Bytes16>(to, from, size);
    }
    return to + size;
}

// ---- Decimal numbers

constexpr uint32_t kMostDigits = 10; // 4294967295

using Digits2 = std::array<char, 2>;

// "00" to "99".
inline constexpr auto kPairs = [] {
    std::array<Digits2, 100> pairs{};
    for (uint32_t value = 0; value < pairs.size(); ++value) {
        pairs[value] = {static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
    }
    return pairs;
}();

inline char *putPair(char *to, uint32_t value) {
    std::memcpy(to, &kPairs[value], sizeof(Digits2));
    return to + sizeof(Digits2);
}

// value / 100 for values below 10000. The compiler would use a division in code that it expects to
// be rare.
constexpr uint32_t hundreds(uint32_t value) {
    return value * 5243 >> 19;
}
static_assert([] {
    for (uint32_t value = 0; value < 10000; ++value) {
        if (hundreds(value) != value / 100) {
            return false;
        }
    }
    return true;
}());

inline char *putFour(char *to, uint32_t value) {
    return putPair(putPair(to, hundreds(value)), value - hundreds(value) * 100);
}

// Writes a number below 10000, without leading zeros.
inline char *putShortNumber(char *to, uint32_t value) {
    if (value < 10) {
        *to = static_cast<char>('0' + value);
        return to + 1;
    }
    if (value < 100) {
        return putPair(to, value);
    }
    if (value < 1000) {
        *to = static_cast<char>('0' + hundreds(value));
        return putPair(to + 1, value - hundreds(value) * 100);
    }
    return putFour(to, value);
}

// Writes a number, which has at most kMostDigits digits, and returns their end. No other byte is
// written.
inline char *putNumber(char *to, uint32_t value) {
    if (value < 10000) {
        return putShortNumber(to, value);
    }
    const uint32_t high = value / 10000;
    if (high < 10000) {
        return putFour(putShortNumber(to, high), value % 10000);
    }
    return putFour(putFour(putShortNumber(to, high / 10000), high % 10000), value % 10000);
}

} // namespace sipcore
