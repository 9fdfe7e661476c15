// The sizes of the memory that the entry points request: blocks of bodies and buffers of texts.
#pragma once

#include <cstdint>

namespace sdpline {

struct MemorySizes {
    uint32_t first; // bytes of the first chunk
    uint32_t next;  // bytes of each further chunk, or by which a buffer grows
};

inline constexpr MemorySizes kDecodeBlock = {512, 1032};
inline constexpr MemorySizes kCreateBlock = {512, 512};
inline constexpr MemorySizes kBodyText = {512, 512};
inline constexpr MemorySizes kLineText = {64, 64};

} // namespace sdpline
