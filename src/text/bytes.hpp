// Short runs of bytes, copied and compared without a call: texts of a word or two, lists of a few
// slots. They are handled in parts of a fixed size; the last part overlaps the one before it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/inline.hpp"

namespace sdpline {

// The runs do not overlap.
SDPLINE_INLINE void copyBytes(void *to, const void *from, size_t size) {
    constexpr size_t kLong = 128;
    auto *const target = static_cast<char *>(to);
    const auto *const source = static_cast<const char *>(from);
    if (size >= 16) {
        if (size > kLong) {
            std::memcpy(to, from, size);
            return;
        }
        for (size_t at = 0; at + 16 < size; at += 16) {
            std::memcpy(target + at, source + at, 16);
        }
        std::memcpy(target + size - 16, source + size - 16, 16);
    } else if (size >= 8) {
        uint64_t last;
        std::memcpy(&last, source + size - 8, 8);
        std::memcpy(target, source, 8);
        std::memcpy(target + size - 8, &last, 8);
    } else if (size >= 4) {
        uint32_t last;
        std::memcpy(&last, source + size - 4, 4);
        std::memcpy(target, source, 4);
        std::memcpy(target + size - 4, &last, 4);
    } else if (size != 0) {
        const char middle = source[size / 2];
        const char last = source[size - 1];
        target[0] = source[0];
        target[size / 2] = middle;
        target[size - 1] = last;
    }
}

// Whether two runs of one length are equal.
SDPLINE_INLINE bool equalBytes(const char *a, const char *b, size_t size) {
    const auto differ = [=]<class Part>(Part, size_t at) {
        Part first;
        Part second;
        std::memcpy(&first, a + at, sizeof(Part));
        std::memcpy(&second, b + at, sizeof(Part));
        return first != second;
    };
    if (size >= 8) {
        for (size_t at = 0; at + 8 < size; at += 8) {
            if (differ(uint64_t{}, at)) {
                return false;
            }
        }
        return !differ(uint64_t{}, size - 8);
    }
    if (size >= 4) {
        return !differ(uint32_t{}, 0) && !differ(uint32_t{}, size - 4);
    }
    for (size_t at = 0; at < size; ++at) {
        if (a[at] != b[at]) {
            return false;
        }
    }
    return true;
}

} // namespace sdpline
