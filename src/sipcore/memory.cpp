// Memory blocks: a bump allocator over chunks, with free lists by size class.
//
// One heap allocation holds the block's record and its first chunk; every further chunk is one
// more. Memory is cut off the current run, which lies in one of the chunks:
//
//   chunk   | Chunk | header payload | header payload | ...      unused ...|
//                                                         ^ run.at          ^ run.end
//
// A header is 8 bytes: the payload's size and the way back to the chunk, through which pfnFree
// finds the block. Chunks come zeroed, so cutting writes the header alone. A piece given back goes
// to the list of its class; classes are multiples of 8 up to 256 bytes and powers of two above, so
// that a list that grows slot by slot swings between two pieces of one class instead of leaving
// one piece behind at every step. Beyond 64 KiB a piece has a chunk of its own and goes back to
// the heap at once.
#include "asan.hpp"
#include "heap.hpp"

#include "sdpline/sipcore.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstring>

namespace sipcore {
namespace {

struct Block;

struct alignas(8) Chunk {
    Block *owner;
    Chunk *next;
    Chunk *previous; // null in a block's first chunk only
    std::size_t heapBytes;
};

// The link lies in the payload, which is free while the link is used.
struct alignas(8) Piece {
    uint32_t size; // of the payload, a multiple of 8
    uint32_t tag;  // offset from the chunk, a multiple of 8, and the state in the low bits
    Piece *nextFree;
};

enum State : uint32_t { kFreed = 2, kLive = 5, kLiveInOwnChunk = 7, kStateMask = 7 };

struct Run {
    std::byte *at;
    std::byte *end;
    Chunk *chunk;

    std::size_t room() const { return static_cast<std::size_t>(end - at); }
};

constexpr uint32_t kHeaderSize = offsetof(Piece, nextFree);
constexpr uint32_t kSmallest = 8;
constexpr uint32_t kSmallMax = 256;
constexpr uint32_t kListedMax = 64 * 1024;
constexpr uint32_t kSmallClasses = kSmallMax / 8;
constexpr uint32_t kClasses = kSmallClasses + 8; // 512, 1024, ... 65536

static_assert(kHeaderSize == 8 && sizeof(Chunk) % 8 == 0);
static_assert(sizeof(Piece) - kHeaderSize <= kSmallest);

struct alignas(8) Block {
    SDPMemCp control;
    Run run;
    uint32_t nextSize;
    Chunk first;
    Piece *freed[kClasses];
};

static_assert(sizeof(Block) % 8 == 0);

constexpr uint32_t roundUp8(uint32_t size) {
    return (size + 7) & ~uint32_t{7};
}

// The class that holds every piece of at least this payload size: the one that a freed piece
// joins. A request whose size was rounded up to its class finds pieces that fit.
constexpr uint32_t classOf(uint32_t size) {
    if (size <= kSmallMax) {
        return size / 8 - 1;
    }
    const uint32_t above = static_cast<uint32_t>(std::bit_width(size) - std::bit_width(kSmallMax));
    return std::min(kSmallClasses - 1 + above, kClasses - 1);
}

static_assert(classOf(8) == 0 && classOf(256) == 31 && classOf(264) == 31 && classOf(512) == 32);
static_assert(classOf(kListedMax) == kClasses - 1 && classOf(kLargestRequest) == kClasses - 1);

std::byte *payloadOf(Piece *piece) {
    return reinterpret_cast<std::byte *>(piece) + kHeaderSize;
}

SIPCORE_UNCHECKED void setHeader(Piece *piece, uint32_t size, uint32_t tag) {
    piece->size = size;
    piece->tag = tag;
}

SIPCORE_UNCHECKED uint32_t sizeOf(const Piece *piece) {
    return piece->size;
}

SIPCORE_UNCHECKED uint32_t stateOf(const Piece *piece) {
    return piece->tag & kStateMask;
}

SIPCORE_UNCHECKED void setState(Piece *piece, State state) {
    piece->tag = (piece->tag & ~kStateMask) | state;
}

SIPCORE_UNCHECKED Chunk *chunkOf(Piece *piece) {
    std::byte *chunk = reinterpret_cast<std::byte *>(piece) - (piece->tag & ~kStateMask);
    return reinterpret_cast<Chunk *>(chunk);
}

SIPCORE_UNCHECKED void push(Piece *&list, Piece *piece) {
    piece->nextFree = list;
    list = piece;
}

SIPCORE_UNCHECKED Piece *pop(Piece *&list) {
    Piece *piece = list;
    list = piece->nextFree;
    return piece;
}

// Debug builds fill freed memory behind the link and look whether the filling is still there when
// the piece is taken again. AddressSanitizer sees more and needs no filling.
#if !defined(NDEBUG) && !defined(SIPCORE_ASAN)
constexpr std::byte kFreedFill{0xDD};

void fillFreed(Piece *piece) {
    std::fill(payloadOf(piece) + kSmallest, payloadOf(piece) + sizeOf(piece), kFreedFill);
}

bool isFilled(Piece *piece) {
    return std::all_of(payloadOf(piece) + kSmallest, payloadOf(piece) + sizeOf(piece),
                       [](std::byte one) { return one == kFreedFill; });
}
#else
void fillFreed(Piece *) {}

[[maybe_unused]] bool isFilled(Piece *) {
    return true;
}
#endif

// Whether the memory is a piece in use of a block that is still there. Every block's pService
// points at the block itself, which serves as the block's mark.
[[maybe_unused]] bool isLive(Piece *piece) {
    const uint32_t state = stateOf(piece);
    if (state != kLive && state != kLiveInOwnChunk) {
        return false;
    }
    const Block *owner = chunkOf(piece)->owner;
    return sizeOf(piece) % 8 == 0 && owner->control.pService == owner;
}

void *cut(Run &run, uint32_t request, uint32_t size, State state) {
    auto *piece = reinterpret_cast<Piece *>(run.at);
    const auto offset = static_cast<uint32_t>(run.at - reinterpret_cast<std::byte *>(run.chunk));
    setHeader(piece, size, offset | state);
    run.at += kHeaderSize + size;
    permit(payloadOf(piece), request);
    return payloadOf(piece);
}

// A listed request takes a whole class where the run has room for it, else just what it needs.
void *cutLarge(Run &run, uint32_t request) {
    uint32_t size = roundUp8(request);
    if (size <= kListedMax && run.room() >= kHeaderSize + std::bit_ceil(size)) {
        size = std::bit_ceil(size);
    }
    return cut(run, request, size, kLive);
}

[[gnu::noinline]] void *reuse(Piece *&list, uint32_t request) {
    Piece *piece = pop(list);
    assert(stateOf(piece) == kFreed && isFilled(piece) && "freed memory was written to");
    setState(piece, kLive);
    permit(payloadOf(piece), request);
    std::memset(payloadOf(piece), 0, request);
    return payloadOf(piece);
}

// Opens a chunk with room for one piece of the given payload size; a null chunk after a failure.
Run openChunk(Block &block, uint32_t size) {
    const std::size_t heapBytes = sizeof(Chunk) + kHeaderSize + size;
    auto *chunk = static_cast<Chunk *>(heapTake(heapBytes, Use::Piece));
    if (chunk == nullptr) {
        return {};
    }
    Chunk *after = block.first.next;
    *chunk = {&block, after, &block.first, heapBytes};
    if (after != nullptr) {
        after->previous = chunk;
    }
    block.first.next = chunk;

    auto *begin = reinterpret_cast<std::byte *>(chunk + 1);
    forbid(begin, kHeaderSize + size);
    return {begin, begin + kHeaderSize + size, chunk};
}

void closeChunk(Chunk *chunk) {
    chunk->previous->next = chunk->next;
    if (chunk->next != nullptr) {
        chunk->next->previous = chunk->previous;
    }
    heapGive(chunk, chunk->heapBytes, Use::Piece);
}

// Whichever of the old run and what is left of the new one has more room is cut from next, so a
// large request does not cost the rest of the chunk in use.
void keepRoomier(Block &block, const Run &opened) {
    if (opened.room() > block.run.room()) {
        block.run = opened;
    }
}

[[gnu::noinline]] void *allocateSmallInNewChunk(Block &block, uint32_t request, uint32_t size) {
    Run opened = openChunk(block, std::max(size, block.nextSize));
    if (opened.chunk == nullptr) {
        return nullptr;
    }
    void *memory = cut(opened, request, size, kLive);
    keepRoomier(block, opened);
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
    if (block.run.room() >= kHeaderSize + exact) {
        return cutLarge(block.run, request);
    }
    const uint32_t ordinary = exact <= block.nextSize ? block.nextSize : whole;
    Run opened = openChunk(block, listed ? ordinary : exact);
    if (opened.chunk == nullptr) {
        return nullptr;
    }
    if (!listed) {
        return cut(opened, request, exact, kLiveInOwnChunk);
    }
    void *memory = cutLarge(opened, request);
    keepRoomier(block, opened);
    return memory;
}

// A request for nothing gets 8 bytes.
[[gnu::noinline]] void *allocateRare(Block &block, uint32_t request) {
    if (request != 0) {
        return allocateLarge(block, request);
    }
    if (block.freed[0] != nullptr) {
        return reuse(block.freed[0], request);
    }
    if (block.run.room() < kHeaderSize + kSmallest) {
        return allocateSmallInNewChunk(block, request, kSmallest);
    }
    return cut(block.run, request, kSmallest, kLive);
}

// Requests of a small class, 1 to 256 bytes, are nearly all of a decoded body's: the rarer ways are
// kept out of line so that cutting from the run stays a handful of instructions.
void *blockAlloc(SDPMemCp *pstMemCp, uint32_t ulSize) {
    auto &block = *static_cast<Block *>(pstMemCp->pService);
    const uint32_t classNumber = (ulSize - 1) / 8;
    if (classNumber >= kSmallClasses) [[unlikely]] {
        return allocateRare(block, ulSize);
    }
    Piece *&list = block.freed[classNumber];
    if (list != nullptr) {
        return reuse(list, ulSize);
    }
    const uint32_t size = roundUp8(ulSize);
    if (block.run.room() < kHeaderSize + size) [[unlikely]] {
        return allocateSmallInNewChunk(block, ulSize, size);
    }
    return cut(block.run, ulSize, size, kLive);
}

uint32_t blockFree(void *pMem) {
    if (pMem == nullptr) {
        return SIP_OK;
    }
    auto *piece = reinterpret_cast<Piece *>(static_cast<std::byte *>(pMem) - kHeaderSize);
    assert(isLive(piece) && "not memory of a block, or freed before");
    Chunk *chunk = chunkOf(piece);
    if (stateOf(piece) == kLiveInOwnChunk) {
        closeChunk(chunk);
        return SIP_OK;
    }
    const uint32_t size = sizeOf(piece);
    fillFreed(piece);
    forbid(pMem, size);
    setState(piece, kFreed);
    push(chunk->owner->freed[classOf(size)], piece);
    return SIP_OK;
}

} // namespace
} // namespace sipcore

uint32_t SipMmCreateBufMem(uint32_t ulFirstSize, uint32_t ulNextSize, SDPMemCp **ppstMemCp) {
    using namespace sipcore;
    if (ppstMemCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *ppstMemCp = nullptr;
    if (ulFirstSize > kLargestRequest || ulNextSize > kLargestRequest) {
        return SIP_INVALID_ARGUMENT;
    }
    const std::size_t room = kHeaderSize + roundUp8(ulFirstSize);
    const std::size_t heapBytes = sizeof(Block) + room;
    auto *block = static_cast<Block *>(heapTake(heapBytes, Use::Block));
    if (block == nullptr) {
        return SIP_NO_MEMORY;
    }
    auto *begin = reinterpret_cast<std::byte *>(block + 1);
    forbid(begin, room);
    block->control = {block, blockAlloc, blockFree};
    block->run = {begin, begin + room, &block->first};
    block->nextSize = roundUp8(ulNextSize);
    block->first = {block, nullptr, nullptr, heapBytes};
    *ppstMemCp = &block->control;
    return SIP_OK;
}

uint32_t SipMmReleaseBufMem(SDPMemCp **ppstMemCp) {
    using namespace sipcore;
    if (ppstMemCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (*ppstMemCp == nullptr) {
        return SIP_OK;
    }
    auto *block = static_cast<Block *>((*ppstMemCp)->pService);
    if (block == nullptr) { // the system memory control is no block
        return SIP_INVALID_ARGUMENT;
    }
    for (Chunk *chunk = block->first.next; chunk != nullptr;) {
        Chunk *next = chunk->next;
        heapGive(chunk, chunk->heapBytes, Use::Piece);
        chunk = next;
    }
    heapGive(block, block->first.heapBytes, Use::Block);
    *ppstMemCp = nullptr;
    return SIP_OK;
}
