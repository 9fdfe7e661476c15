// Filling memory with zeros.
#pragma once

#include <cstddef>
#include <cstring>
#include <utility>

namespace sipcore {

// Uses the C library's memset. The assembler statement hides the bounds of the size from the
// compiler, whose inline code for a size with known bounds is several times slower.
inline void *clear(void *memory, std::size_t size) {
    asm("" : "+r"(size));
    return std::memset(memory, 0, size);
}

template <std::size_t... Part>
inline void clearParts(char *to, std::index_sequence<Part...>) {
    (std::memset(to + 16 * Part, 0, 16), ...);
}

// Clears a record by single stores. For larger records the compiler would use a string instruction,
// which takes longer to start than all the stores.
template <std::size_t Size>
inline void clearRecord(void *record) {
    auto *const bytes = static_cast<char *>(record);
    clearParts(bytes, std::make_index_sequence<Size / 16>());
    if constexpr (Size % 16 != 0) {
        constexpr std::size_t last = Size > 16 ? 16 : Size;
        std::memset(bytes + Size - last, 0, last);
    }
}

// Most fills are of small records. They are done without a call, by stores of a fixed size, the
// last of which overlaps the one before.
inline constexpr std::size_t kSmallFill = 256;

inline void zeroSmall(char *to, std::size_t count) {
    if (count > 64) {
        for (std::size_t at = 0; at + 16 < count; at += 16) {
            std::memset(to + at, 0, 16);
        }
        std::memset(to + count - 16, 0, 16);
    } else if (count > 32) {
        std::memset(to, 0, 32);
        std::memset(to + count - 32, 0, 32);
    } else if (count >= 16) {
        std::memset(to, 0, 16);
        std::memset(to + count - 16, 0, 16);
    } else if (count >= 8) {
        std::memset(to, 0, 8);
        std::memset(to + count - 8, 0, 8);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = 0;
        }
    }
}

// The same for the payload of an allocation: a multiple of 8 bytes, at least 8.
inline void zeroPayload(char *to, std::size_t count) {
    if (count <= 16) {
        std::memset(to, 0, 8);
        std::memset(to + count - 8, 0, 8);
        return;
    }
    if (count <= 32) {
        std::memset(to, 0, 16);
        std::memset(to + count - 16, 0, 16);
        return;
    }
    if (count <= 64) {
        std::memset(to, 0, 32);
        std::memset(to + count - 32, 0, 32);
        return;
    }
    char *const last = to + count - 64;
    for (; to < last; to += 64) {
        clearRecord<64>(to);
    }
    clearRecord<64>(last);
}

} // namespace sipcore
