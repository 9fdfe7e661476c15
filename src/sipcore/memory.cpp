// Memory blocks: a bump allocator over chunks, with free lists by size class (block.hpp).
#include "sipcore/block.hpp"
#include "sipcore/fill.hpp"
#include "sipcore/heap.hpp"

#include <algorithm>
#include <bit>
#include <cassert>

namespace sipcore {
namespace {

SIPCORE_UNCHECKED Allocation *pop(Allocation *&list) {
    Allocation *allocation = list;
    list = allocation->nextFree;
    return allocation;
}

constexpr std::byte kFreedFill{0xDD};

void fillFreed(Allocation *allocation) {
    if constexpr (kFillsFreed) {
        std::fill(payloadOf(allocation) + kSmallest, payloadOf(allocation) + sizeOf(allocation),
                  kFreedFill);
    }
}

[[maybe_unused]] bool isFilled(Allocation *allocation) {
    return !kFillsFreed || std::all_of(payloadOf(allocation) + kSmallest,
                                       payloadOf(allocation) + sizeOf(allocation),
                                       [](std::byte one) { return one == kFreedFill; });
}

// Whether the memory is an allocation in use of a block that still exists: the pService of every
// block points to the block itself.
[[maybe_unused]] bool isLive(Allocation *allocation) {
    const uint32_t state = stateOf(allocation);
    if (state != kLive && state != kLiveAloneInChunk) {
        return false;
    }
    const Block *owner = chunkOf(allocation)->owner;
    return sizeOf(allocation) % 8 == 0 && owner->control.pService == owner;
}

// Memory is zeroed when it is handed out, not when it comes from the heap: the texts of a decoded
// body, which cutSmall() serves, need not be zeroed at all.
inline void *zeroed(void *memory, uint32_t size) {
    if (size > kSmallFill) {
        return clear(memory, size);
    }
    zeroSmall(static_cast<char *>(memory), size);
    return memory;
}

// A request that can be put on a free list takes the size of its class if the span is large enough,
// else the size it needs.
void *cutLarge(FreeSpan &span, uint32_t request) {
    uint32_t size = roundUp8(request);
    if (size <= kListedMax && span.size() >= kHeaderSize + std::bit_ceil(size)) {
        size = std::bit_ceil(size);
    }
    return cut(span, request, size, kLive);
}

[[gnu::noinline]] void *reuse(Allocation *&list, uint32_t request) {
    Allocation *allocation = pop(list);
    assert(stateOf(allocation) == kFreed && isFilled(allocation) && "freed memory was written to");
    setState(allocation, kLive);
    permit(payloadOf(allocation), request);
    return payloadOf(allocation);
}

// The span from `begin` to the end of a heap allocation, rounded down to a multiple of 8 bytes.
FreeSpan spanOf(void *begin, void *memory, std::size_t heapBytes, Chunk *chunk) {
    auto *const first = static_cast<std::byte *>(begin);
    auto *const end = static_cast<std::byte *>(memory) + heapBytes / 8 * 8;
    forbid(first, static_cast<std::size_t>(end - first));
    return {first, end, chunk};
}

// The smallest heap allocation for a block and its first chunk: a body with one stream fits into
// it.
constexpr std::size_t kLeastBlock = 1536;
constexpr uint32_t kLargestNext = 1032;

// Opens a chunk for at least one allocation of the given payload size; a null chunk after
// a failure.
FreeSpan openChunk(Block &block, uint32_t size, Content content = Content::Any) {
    const std::size_t heapBytes = heapSize(sizeof(Chunk) + kHeaderSize + size);
    auto *chunk = static_cast<Chunk *>(heapTake(heapBytes, Use::Other, content));
    if (chunk == nullptr) {
        return {};
    }
    Chunk *after = block.first.next;
    *chunk = {&block, after, &block.first, heapBytes};
    if (after != nullptr) {
        after->previous = chunk;
    }
    block.first.next = chunk;

    return spanOf(chunk + 1, chunk, heapBytes, chunk);
}

// Each further chunk of a block is larger, up to a kilobyte: in still larger ones, lists would
// leave too much unused.
FreeSpan openNextChunk(Block &block, uint32_t leastSize) {
    const FreeSpan opened = openChunk(block, std::max(leastSize, block.nextSize));
    if (opened.chunk != nullptr && block.nextSize < kLargestNext) {
        block.nextSize = std::min(2 * block.nextSize, kLargestNext);
    }
    return opened;
}

void closeChunk(Chunk *chunk) {
    chunk->previous->next = chunk->next;
    if (chunk->next != nullptr) {
        chunk->next->previous = chunk->previous;
    }
    heapGive(chunk, chunk->heapBytes, Use::Other);
}

// The block goes on with the larger span, the old one or the rest of the new one, so
// that a large request does not waste the rest of the chunk in use.
void keepLarger(Block &block, const FreeSpan &opened) {
    if (opened.size() > block.span.size()) {
        block.span = opened;
    }
}

[[gnu::noinline]] void *allocateSmallInNewChunk(Block &block, uint32_t request, uint32_t size) {
    FreeSpan opened = openNextChunk(block, size);
    if (opened.chunk == nullptr) {
        return nullptr;
    }
    void *memory = cut(opened, request, size, kLive);
    keepLarger(block, opened);
    return memory;
}

[[gnu::noinline]] void *allocateLarge(Block &block, uint32_t request) {
    if (request > kLargestRequest) {
        return nullptr;
    }
    const uint32_t exact = roundUp8(request);
    const uint32_t whole = std::bit_ceil(exact);
    const bool listed = exact <= kListedMax;
    if (listed && block.freed[classOf(whole)] != nullptr) {
        return reuse(block.freed[classOf(whole)], request);
    }
    if (block.span.size() >= kHeaderSize + exact) {
        return cutLarge(block.span, request);
    }
    if (!listed) {
        FreeSpan alone = openChunk(block, exact, Content::Zeroed);
        return alone.chunk != nullptr ? cut(alone, request, exact, kLiveAloneInChunk) : nullptr;
    }
    FreeSpan opened = openNextChunk(block, exact <= block.nextSize ? exact : whole);
    if (opened.chunk == nullptr) {
        return nullptr;
    }
    void *memory = cutLarge(opened, request);
    keepLarger(block, opened);
    return memory;
}

// The requests that cutSmall() does not serve. A request for 0 bytes gets 8.
[[gnu::noinline]] void *allocateRare(Block &block, uint32_t request) {
    if (request > kSmallMax) {
        return allocateLarge(block, request);
    }
    const uint32_t size = request == 0 ? kSmallest : roundUp8(request);
    Allocation *&list = block.freed[classOf(size)];
    if (list != nullptr) {
        return reuse(list, request);
    }
    if (block.span.size() < kHeaderSize + size) {
        return allocateSmallInNewChunk(block, request, size);
    }
    return cut(block.span, request, size, kLive);
}

[[gnu::noinline]] void *allocateRareZeroed(Block &block, uint32_t request) {
    void *const memory = allocateRare(block, request);
    if (memory == nullptr || stateOf(allocationOf(memory)) == kLiveAloneInChunk) {
        return memory; // zeroed by the heap, which need not touch fresh pages
    }
    return zeroed(memory, request);
}

} // namespace

// The rarer cases are out of line, so that cutting from the span takes few instructions.
void *blockTake(SDPMemCp *memCp, uint32_t size) {
    auto &block = *static_cast<Block *>(memCp->pService);
    void *const memory = cutSmall(block, size);
    return memory != nullptr ? memory : allocateRare(block, size);
}

void *blockAlloc(SDPMemCp *memCp, uint32_t size) {
    auto &block = *static_cast<Block *>(memCp->pService);
    void *const memory = cutSmall(block, size);
    if (memory == nullptr) [[unlikely]] {
        return allocateRareZeroed(block, size);
    }
#if defined(SIPCORE_ASAN) // the bytes after the requested ones must not be written
    zeroSmall(static_cast<char *>(memory), size);
#else
    zeroPayload(static_cast<char *>(memory), sizeOf(allocationOf(memory)));
#endif
    return memory;
}

uint32_t blockFree(void *memory) {
    if (memory == nullptr) {
        return SIP_OK;
    }
    Allocation *const allocation = allocationOf(memory);
    assert(isLive(allocation) && "not memory of a block, or freed before");
    if (stateOf(allocation) == kLiveAloneInChunk) {
        closeChunk(chunkOf(allocation));
    } else {
        fillFreed(allocation);
        release(allocation);
    }
    return SIP_OK;
}

void *takeUnfilled(SDPMemCp *memCp, uint32_t size) {
    if (memCp->pfnAlloc == blockAlloc && memCp->pfnFree == blockFree) {
        return blockTake(memCp, size);
    }
    return isSystem(memCp) ? systemTake(size, Content::Any) : memCp->pfnAlloc(memCp, size);
}

} // namespace sipcore

uint32_t SipMmCreateBufMem(uint32_t firstSize, uint32_t nextSize, SDPMemCp **memCp) {
    using namespace sipcore;
    if (memCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *memCp = nullptr;
    if (firstSize > kLargestRequest || nextSize > kLargestRequest) {
        return SIP_INVALID_ARGUMENT;
    }
    const std::size_t heapBytes =
        heapSize(std::max(sizeof(Block) + kHeaderSize + roundUp8(firstSize), kLeastBlock));
    auto *block = static_cast<Block *>(heapTake(heapBytes, Use::Block, Content::Any));
    if (block == nullptr) {
        return SIP_NO_MEMORY;
    }
    block->control = {block, blockAlloc, blockFree};
    block->span = spanOf(block + 1, block, heapBytes, &block->first);
    block->nextSize = roundUp8(nextSize);
    block->first = {block, nullptr, nullptr, heapBytes};
    clearRecord<sizeof block->freed>(block->freed);
    *memCp = &block->control;
    return SIP_OK;
}

uint32_t SipMmReleaseBufMem(SDPMemCp **memCp) {
    using namespace sipcore;
    if (memCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (*memCp == nullptr) {
        return SIP_OK;
    }
    auto *block = static_cast<Block *>((*memCp)->pService);
    if (block == nullptr) { // the system memory control is no block
        return SIP_INVALID_ARGUMENT;
    }
    for (Chunk *chunk = block->first.next; chunk != nullptr;) {
        Chunk *next = chunk->next;
        heapGive(chunk, chunk->heapBytes, Use::Other);
        chunk = next;
    }
    heapGive(block, block->first.heapBytes, Use::Block);
    *memCp = nullptr;
    return SIP_OK;
}
