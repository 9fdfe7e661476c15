// Filling with zeroes.
#ifndef SIPCORE_FILL_HPP
#define SIPCORE_FILL_HPP

#include <cstddef>
#include <cstring>

namespace sipcore {

// Records of a few fields are what is filled most: stores of a fixed size, the last of which overlaps
// the one before, do without a call.
inline constexpr std::size_t kSmallFill = 256;

inline void zeroSmall(char *to, std::size_t count) {
    if (count >= 16) {
        for (std::size_t at = 0; at + 16 < count; at += 16) {
            std::memset(to + at, 0, 16);
        }
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

} // namespace sipcore

#endif
