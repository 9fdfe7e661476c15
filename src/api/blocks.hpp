// How large the memory is that the entry points ask for: blocks of bodies and buffers of texts.
#pragma once

#include <cstdint>

namespace sdpline {

struct MemorySizes {
    uint32_t first; // bytes of the first chunk
    uint32_t next;  // of every further one, or what a buffer grows by
};

inline constexpr MemorySizes kDecodeBlock = {512, 1032};
inline constexpr MemorySizes kCreateBlock = {512, 512};
inline constexpr MemorySizes kBodyText = {512, 512};
inline constexpr MemorySizes kLineText = {64, 64};

} // namespace sdpline
