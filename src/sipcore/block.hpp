// The record of a memory block, and the cutting of allocations from it. libsdpline includes this
// header too, and cuts the allocations of a body itself if the block is libsipcore's
// (functions.hpp).
//
// One heap allocation holds the block's record and its first chunk; every further chunk is one
// more. Memory is cut off the current span, which lies in one of the chunks:
//
//   chunk   | Chunk | header payload | header payload | ...      unused ...|
//                                                         ^ span.at          ^ span.end
//
// A header has 8 bytes: the payload's size, and the offset from its chunk, through which pfnFree
// finds the block. Cutting writes only the header. A freed allocation is put on the free list of
// its size class. The classes are the multiples of 8 up to 256 bytes and the powers of two above,
// so that a list that grows slot by slot alternates between two allocations of one class instead of
// leaving one unused at every step. An allocation above 64 KiB is the only one of its chunk, and is
// returned to the heap when it is freed.
#pragma once

#include "sdpline/sipcore.h"
#include "sipcore/asan.hpp"
#include "sipcore/heap.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace sipcore {

struct Block;

struct alignas(8) Chunk {
    Block *owner;
    Chunk *next;
    Chunk *previous; // null in a block's first chunk only
    std::size_t heapBytes;
};

// The link is stored in the payload, which is unused while the allocation is on a free list.
struct alignas(8) Allocation {
    uint32_t size; // of the payload, a multiple of 8
    uint32_t tag;  // offset from the chunk, a multiple of 8, and the state in the low bits
    Allocation *nextFree;
};

enum State : uint32_t { kFreed = 2, kLive = 5, kLiveAloneInChunk = 7, kStateMask = 7 };

struct FreeSpan {
    std::byte *at;
    std::byte *end;
    Chunk *chunk;

    std::size_t size() const { return static_cast<std::size_t>(end - at); }
};

constexpr uint32_t kHeaderSize = offsetof(Allocation, nextFree);
constexpr uint32_t kSmallest = 8;
constexpr uint32_t kSmallMax = 256;
constexpr uint32_t kListedMax = 64 * 1024;
constexpr uint32_t kSmallClasses = kSmallMax / 8;
constexpr uint32_t kClasses = kSmallClasses + 8; // 512, 1024, ... 65536

static_assert(kHeaderSize == 8 && sizeof(Chunk) % 8 == 0);
static_assert(sizeof(Allocation) - kHeaderSize <= kSmallest);

struct alignas(8) Block {
    SDPMemCp control;
    FreeSpan span;
    uint32_t nextSize;
    Chunk first;
    Allocation *freed[kClasses];
};

static_assert(sizeof(Block) % 8 == 0);

constexpr uint32_t roundUp8(uint32_t size) {
    return (size + 7) & ~uint32_t{7};
}

// The class whose free list an allocation of this payload size joins. A request is first rounded up
// to the size of its class, so that every allocation on the list fits it.
constexpr uint32_t classOf(uint32_t size) {
    if (size <= kSmallMax) {
        return size / 8 - 1;
    }
    const uint32_t above = static_cast<uint32_t>(std::bit_width(size) - std::bit_width(kSmallMax));
    return std::min(kSmallClasses - 1 + above, kClasses - 1);
}

static_assert(classOf(8) == 0 && classOf(256) == 31 && classOf(264) == 31 && classOf(512) == 32);
static_assert(classOf(kListedMax) == kClasses - 1 && classOf(kLargestRequest) == kClasses - 1);

inline std::byte *payloadOf(Allocation *allocation) {
    return reinterpret_cast<std::byte *>(allocation) + kHeaderSize;
}

SIPCORE_UNCHECKED inline void setHeader(Allocation *allocation, uint32_t size, uint32_t tag) {
    allocation->size = size;
    allocation->tag = tag;
}

SIPCORE_UNCHECKED inline uint32_t sizeOf(const Allocation *allocation) {
    return allocation->size;
}

SIPCORE_UNCHECKED inline uint32_t stateOf(const Allocation *allocation) {
    return allocation->tag & kStateMask;
}

SIPCORE_UNCHECKED inline void setState(Allocation *allocation, State state) {
    allocation->tag = (allocation->tag & ~kStateMask) | state;
}

SIPCORE_UNCHECKED inline Chunk *chunkOf(Allocation *allocation) {
    std::byte *chunk = reinterpret_cast<std::byte *>(allocation) - (allocation->tag & ~kStateMask);
    return reinterpret_cast<Chunk *>(chunk);
}

SIPCORE_UNCHECKED inline void push(Allocation *&list, Allocation *allocation) {
    allocation->nextFree = list;
    list = allocation;
}

// Cuts an allocation from a chunk, at `at`, where there must be enough memory.
inline void *cut(std::byte *&at, Chunk *chunk, uint32_t request, std::size_t size, State state) {
    auto *allocation = reinterpret_cast<Allocation *>(at);
    const auto offset = static_cast<uint32_t>(at - reinterpret_cast<std::byte *>(chunk));
    setHeader(allocation, static_cast<uint32_t>(size), offset | state);
    at += kHeaderSize + size;
    permit(payloadOf(allocation), request);
    return payloadOf(allocation);
}

inline void *cut(FreeSpan &span, uint32_t request, uint32_t size, State state) {
    return cut(span.at, span.chunk, request, size, state);
}

// Memory from `at` to the end of the span, with undefined content, for requests of 1 to 256 bytes
// whose free list is empty: nearly all requests of a decode. Returns null for all others, and when
// the span is full.
[[gnu::always_inline]] inline void *cutSmall(const Block &block, std::byte *&at, uint32_t request) {
    const std::size_t before = (request - 1) & ~uint32_t{7}; // the size of the class below
    if (before >= kSmallMax || block.freed[before / 8] != nullptr) [[unlikely]] {
        return nullptr;
    }
    const std::size_t size = before + 8;
    if (at + kHeaderSize + size > block.span.end) [[unlikely]] {
        return nullptr;
    }
    return cut(at, block.span.chunk, request, size, kLive);
}

[[gnu::always_inline]] inline void *cutSmall(Block &block, uint32_t request) {
    return cutSmall(block, block.span.at, request);
}

// The same for a record and, after it, a request of 1 to 256 bytes: returns the record, and the
// other allocation in `second`. Returns null, and cuts nothing, unless both fit.
template <class Record>
inline Record *cutWithRecord(Block &block, std::size_t request, char *&second) {
    constexpr uint32_t recordSize = roundUp8(sizeof(Record));
    constexpr uint32_t whole = kHeaderSize + recordSize;
    static_assert(recordSize <= kSmallMax);
    const std::size_t before = (request - 1) & ~std::size_t{7};
    if (before >= kSmallMax || block.freed[before / 8] != nullptr ||
        block.freed[classOf(recordSize)] != nullptr) [[unlikely]] {
        return nullptr;
    }
    std::byte *const at = block.span.at;
    std::byte *const after = at + whole + kHeaderSize + before + 8;
    if (after > block.span.end) [[unlikely]] {
        return nullptr;
    }
    const auto offset = static_cast<uint32_t>(at - reinterpret_cast<std::byte *>(block.span.chunk));
    const uint32_t tag = offset | kLive;
    setHeader(reinterpret_cast<Allocation *>(at), recordSize, tag);
    setHeader(reinterpret_cast<Allocation *>(at + whole), static_cast<uint32_t>(before) + 8,
              tag + whole);
    block.span.at = after;
    permit(at + kHeaderSize, sizeof(Record));
    permit(at + whole + kHeaderSize, request);
    second = reinterpret_cast<char *>(at + whole + kHeaderSize);
    return reinterpret_cast<Record *>(at + kHeaderSize);
}

// Debug builds fill freed memory after the link, and check the filling when the allocation is
// reused. AddressSanitizer finds more errors, and needs no filling.
#if !defined(NDEBUG) && !defined(SIPCORE_ASAN)
inline constexpr bool kFillsFreed = true;
#else
inline constexpr bool kFillsFreed = false;
#endif

// Puts an allocation that shares its chunk with others on its block's free list.
inline void release(Allocation *allocation) {
    const uint32_t size = sizeOf(allocation);
    forbid(payloadOf(allocation), size);
    setState(allocation, kFreed);
    push(chunkOf(allocation)->owner->freed[classOf(size)], allocation);
}

inline Allocation *allocationOf(void *memory) {
    return reinterpret_cast<Allocation *>(static_cast<std::byte *>(memory) - kHeaderSize);
}

// pfnAlloc and pfnFree of a block's memory control; blockTake is pfnAlloc without the zeroing.
void *blockAlloc(SDPMemCp *memCp, uint32_t size);
void *blockTake(SDPMemCp *memCp, uint32_t size);
uint32_t blockFree(void *memory);

// Memory of any control whose content is undefined: libsipcore's are not asked to zero it.
void *takeUnfilled(SDPMemCp *memCp, uint32_t size);

} // namespace sipcore
