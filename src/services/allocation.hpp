// The parser's memory: all of it comes through the two hooks, or in place as they would give it.
#pragma once

#include <cstdint>
#include <cstring>

#include "sdpline/sdpline.h"
#include "services/builtin.hpp"
#include "services/inline.hpp"
#include "sipcore/block.hpp"
#include "sipcore/fill.hpp"
#include "text/bytes.hpp"

namespace sdpline {

// ---- A decode's memory

// From here on, the hooks take every allocation of the parser from the block.
void beginDecode(SDPMemCp *memCp);

// Takes the block away again. The two hooks go with it only where the parse failed: after one that
// succeeded they stay, and have no memory until the next decode.
void endDecode(bool succeeded);

// To be called where code of the program's may have set other hooks during a decode: after the log
// hook, and after a memory control that is not the block's.
void foreignCodeRan();

// The block of the decode under way, where its memory is handled in place and no program sees a
// difference from the calls. Else null: each request goes through the hooks.
extern SDPLINE_PER_THREAD sipcore::Block *decodeBlock;

inline bool allocatesInPlace() {
    return decodeBlock != nullptr;
}

[[gnu::cold, gnu::noinline]] void *allocateByHook(uint32_t size);
[[gnu::cold, gnu::noinline]] void freeByHook(void *memory);
// Filled by the service.
[[gnu::cold, gnu::noinline]] void *allocateFilled(uint32_t size, const char *function,
                                                  uint32_t line);

// From the decode's block: memory that holds anything, or null.
SDPLINE_INLINE void *takeFrom(sipcore::Block &block, uint32_t size) {
    void *const memory = sipcore::cutSmall(block, size);
    return memory != nullptr ? memory : builtin.blockTake(&block.control, size);
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
    sipcore::Allocation *const allocation = sipcore::allocationOf(memory);
    if (!builtin.fillsFreed && sipcore::stateOf(allocation) == sipcore::kLive) [[likely]] {
        sipcore::release(allocation);
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

} // namespace sdpline
