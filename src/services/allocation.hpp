// The parser's memory. It comes from the two hooks, or is taken from the decode's block in place,
// where no program can tell the difference.
#pragma once

#include <cstdint>

#include "sdpline/sdpline.h"
#include "services/builtin.hpp"
#include "sipcore/block.hpp"
#include "sipcore/fill.hpp"
#include "text/bytes.hpp"
#include "text/inline.hpp"

namespace sdpline {

// ---- A decode's memory

// Begins a decode: the hooks are set, and allocate from this memory control, which is the body's.
void beginDecode(SDPMemCp *memCp);

// Ends it: the hooks no longer have a memory control. They are reset only where the parse failed;
// after one that succeeded they stay set, and allocate nothing until the next decode.
void endDecode(bool succeeded);

// Must be called after code of the program ran during a decode, which may have set other hooks:
// after the log hook, and after a function of another memory control.
void foreignCodeRan();

// The block of the running decode, if its memory is handled in place. Else null: each request goes
// through the hooks.
extern SDPLINE_PER_THREAD sipcore::Block *decodeBlock;

inline bool allocatesInPlace() {
    return decodeBlock != nullptr;
}

[[gnu::cold, gnu::noinline]] void *allocateByHook(uint32_t size);
[[gnu::cold, gnu::noinline]] void freeByHook(void *memory);
// Zeroed by memset_s, under the name and line of the calling function.
[[gnu::cold, gnu::noinline]] void *allocateFilled(uint32_t size, const char *function,
                                                  uint32_t line);

// Takes memory from the decode's block. Its content is undefined; null without memory.
SDPLINE_INLINE void *takeFrom(sipcore::Block &block, uint32_t size) {
    void *const memory = sipcore::cutSmall(block, size);
    return memory != nullptr ? memory : builtin.blockTake(&block.control, size);
}

// Memory for a record from any control: zeroed where it is libsipcore's, else as the control
// returns it. Returns null without memory.
template <class Record>
inline Record *allocateFrom(SDPMemCp &control) {
    if (!builtin.ownsBlock(control)) {
        return static_cast<Record *>(control.pfnAlloc(&control, sizeof(Record)));
    }
    void *const memory = takeFrom(*static_cast<sipcore::Block *>(control.pService), sizeof(Record));
    if (memory != nullptr) [[likely]] {
        sipcore::clearRecord<sizeof(Record)>(memory);
    }
    return static_cast<Record *>(memory);
}

// Returns null when there is no hook, or the hook has no memory. The content is undefined.
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

// Returns a zeroed record, or null.
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
