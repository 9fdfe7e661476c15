// The parser's memory: everything goes through the two hooks.
#pragma once

#include <cstring>
#include <string_view>

#include "sdpline/sdpline.h"
#include "sipcore/block.hpp"
#include "utils/sdpchecks.hpp"
#include "utils/sdpinline.hpp"
#include "utils/sdpown.hpp"

namespace sdpline {

// Most texts are a word, and most lists short: they are copied in parts of a fixed size, the last
// of which overlaps the one before, without a call.
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

SDPLINE_INLINE void *cutSmall(SDPMemCp *memCp, uint32_t size) {
    return sipcore::cutSmall(*static_cast<sipcore::Block *>(memCp->pService), size);
}

// Null when there is no hook, or the hook has no memory. What it holds is for the caller to write.
SDPLINE_INLINE void *allocateBytes(uint32_t size) {
    const SdpFnAlloc alloc = g_gSdpFnAlloc;
    if (alloc != SdpLibAllocSdpMem) [[unlikely]] {
        return alloc != nullptr ? alloc(size) : nullptr;
    }
    // The hook that decoding sets, without the call.
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    if (memCp == nullptr) [[unlikely]] {
        return nullptr;
    }
    if (memCp->pfnAlloc == own.blockAlloc) [[likely]] {
        if (void *const memory = cutSmall(memCp, size)) [[likely]] {
            return memory;
        }
    }
    return memCp->pfnAlloc(memCp, size);
}

SDPLINE_INLINE void freeBytes(void *memory) {
    const SdpFnFree release = g_gSdpFnFree;
    if (release != SdpLibFreeSdpMem) [[unlikely]] {
        if (release != nullptr) {
            release(memory);
        }
        return;
    }
    SDPMemCp *const memCp = g_mSdpDecodeMemCp;
    if (memCp == nullptr) [[unlikely]] {
        return;
    }
    if (memCp->pfnFree == own.blockFree && memory != nullptr) [[likely]] {
        sipcore::Piece *const piece = sipcore::pieceOf(memory);
        if (sipcore::stateOf(piece) == sipcore::kLive) [[likely]] {
            return sipcore::giveBack(piece);
        }
    }
    memCp->pfnFree(memory);
}

// Filled by the service, which may be the program's own.
[[gnu::noinline]] void *fillByService(void *memory, uint32_t size, const char *function,
                                      uint32_t line);

// A zeroed record, or null.
template <class Record>
SDPLINE_INLINE Record *allocate(const char *function = __builtin_FUNCTION(),
                                uint32_t line = __builtin_LINE()) {
    void *const memory = allocateBytes(sizeof(Record));
    if (memory == nullptr) [[unlikely]] {
        return nullptr;
    }
    if (!own.fill) [[unlikely]] {
        return static_cast<Record *>(fillByService(memory, sizeof(Record), function, line));
    }
    return static_cast<Record *>(std::memset(memory, 0, sizeof(Record)));
}

// Stores a copy of the text, without a terminator. Without memory the length stays and the
// pointer is null. A text of length 0 asks for zero bytes all the same.
SDPLINE_INLINE SDPResult storeText(SipString &value, std::string_view text) {
    value.ulLen = static_cast<uint32_t>(text.size());
    value.pcData = static_cast<char *>(allocateBytes(value.ulLen));
    if (value.pcData == nullptr) {
        return fail(Check::SetString);
    }
    copyBytes(value.pcData, text.data(), text.size());
    return 0;
}

} // namespace sdpline
