// The parser's memory: everything goes through the two hooks, or does in place what they would.
#pragma once

#include <cstring>
#include <string_view>

#include "checks/checks.hpp"
#include "sdpline/sdpline.h"
#include "services/builtin.hpp"
#include "services/inline.hpp"
#include "sipcore/block.hpp"
#include "sipcore/fill.hpp"

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

// The block of the decode under way, where its memory is handled in place: it is libsipcore's, and
// so is memset_s, and the hooks are those that decoding sets. Else null, and each request goes
// through the hooks. Only a log hook could change them before the decode ends: the first entry that
// is logged makes this null.
extern SDPLINE_PER_THREAD sipcore::Block *decodeBlock;

[[gnu::cold, gnu::noinline]] void *allocateByHook(uint32_t size);
[[gnu::cold, gnu::noinline]] void freeByHook(void *memory);
// Filled by the service.
[[gnu::cold, gnu::noinline]] void *allocateFilled(uint32_t size, const char *function,
                                                  uint32_t line);

// From the decode's block: memory that holds anything, or null.
SDPLINE_INLINE void *takeFrom(sipcore::Block &block, uint32_t size) {
    void *const memory = sipcore::cutSmall(block, size);
    return memory != nullptr ? memory : own.blockTake(&block.control, size);
}

// Null when there is no hook, or the hook has no memory. What it holds is for the caller to write.
SDPLINE_INLINE void *allocateBytes(uint32_t size) {
    sipcore::Block *const block = decodeBlock;
    return block != nullptr ? takeFrom(*block, size) : allocateByHook(size);
}

SDPLINE_INLINE void freeBytes(void *memory) {
    if (decodeBlock == nullptr) [[unlikely]] {
        return freeByHook(memory);
    }
    sipcore::Piece *const piece = sipcore::pieceOf(memory);
    if (own.blockFree != nullptr && sipcore::stateOf(piece) == sipcore::kLive) [[likely]] {
        sipcore::giveBack(piece);
    } else {
        decodeBlock->control.pfnFree(memory);
    }
}

// A zeroed record, or null.
template <class Record>
SDPLINE_INLINE Record *allocate(const char *function = __builtin_FUNCTION(),
                                uint32_t line = __builtin_LINE()) {
    sipcore::Block *const block = decodeBlock;
    if (block == nullptr) [[unlikely]] {
        return static_cast<Record *>(allocateFilled(sizeof(Record), function, line));
    }
    void *const memory = takeFrom(*block, sizeof(Record));
    if (memory != nullptr) [[likely]] {
        sipcore::clearRecord<sizeof(Record)>(memory);
    }
    return static_cast<Record *>(memory);
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
