// The process heap: counted allocation, the statistics, and the system memory control. Counters
// are relaxed atomics, since no counter is read to decide anything about another thread's memory.
#include "heap.hpp"

#include "sdpline/sipcore.h"

#include <atomic>
#include <cassert>
#include <cstdlib>

namespace sipcore {
namespace {

struct Counters {
    std::atomic<uint64_t> blocks;
    std::atomic<uint64_t> taken;
    std::atomic<uint64_t> given;
    std::atomic<uint64_t> bytes;
    std::atomic<uint64_t> peak;
    std::atomic<uint64_t> abnormal;
};

constinit Counters counters{};

constexpr auto kRelaxed = std::memory_order_relaxed;

void raisePeak(uint64_t bytes) {
    uint64_t peak = counters.peak.load(kRelaxed);
    while (bytes > peak && !counters.peak.compare_exchange_weak(peak, bytes, kRelaxed)) {
    }
}

} // namespace

void *heapTake(std::size_t bytes) {
    void *memory = std::calloc(1, bytes);
    if (memory == nullptr) {
        return nullptr;
    }
    counters.taken.fetch_add(1, kRelaxed);
    raisePeak(counters.bytes.fetch_add(bytes, kRelaxed) + bytes);
    return memory;
}

void heapGive(void *memory) {
    std::free(memory);
}

void heapCountGiven(uint64_t pieces, uint64_t bytes) {
    counters.given.fetch_add(pieces, kRelaxed);
    counters.bytes.fetch_sub(bytes, kRelaxed);
}

void countBlockCreated() {
    counters.blocks.fetch_add(1, kRelaxed);
}

void countBlockReleased() {
    counters.blocks.fetch_sub(1, kRelaxed);
}

void countAbnormalReport() {
    counters.abnormal.fetch_add(1, kRelaxed);
}

namespace {

// Stands before every piece of the system memory control, as large as the heap's own alignment.
struct alignas(std::max_align_t) SystemHeader {
    uint32_t size;
    uint32_t state;
};

constexpr uint32_t kSystemLive = 0x51A11Cu;
constexpr uint32_t kSystemFreed = 0xF4EEDu;

void *systemAlloc(SDPMemCp *, uint32_t ulSize) {
    if (ulSize > kLargestRequest) {
        return nullptr;
    }
    auto *header = static_cast<SystemHeader *>(heapTake(sizeof(SystemHeader) + ulSize));
    if (header == nullptr) {
        return nullptr;
    }
    header->size = ulSize;
    header->state = kSystemLive;
    return header + 1;
}

uint32_t systemFree(void *pMem) {
    if (pMem == nullptr) {
        return SIP_OK;
    }
    SystemHeader *header = static_cast<SystemHeader *>(pMem) - 1;
    assert(header->state == kSystemLive && "not memory of the system control, or freed before");
    header->state = kSystemFreed;
    heapCountGiven(1, sizeof(SystemHeader) + header->size);
    heapGive(header);
    return SIP_OK;
}

constinit SDPMemCp systemMemCp{nullptr, systemAlloc, systemFree};

} // namespace
} // namespace sipcore

SDPMemCp *gSipSystemMemCp = &sipcore::systemMemCp;

void SipMmGetStatistics(SipMmStatistics *pstStatistics) {
    using namespace sipcore;
    if (pstStatistics == nullptr) {
        return;
    }
    // Given before taken: a reader beside working threads never sees more given than taken.
    const uint64_t given = counters.given.load(kRelaxed);
    pstStatistics->ulBlocks = counters.blocks.load(kRelaxed);
    pstStatistics->ulHeapAllocations = counters.taken.load(kRelaxed);
    pstStatistics->ulHeapBlocks = pstStatistics->ulHeapAllocations - given;
    pstStatistics->ulHeapBytes = counters.bytes.load(kRelaxed);
    pstStatistics->ulHeapBytesPeak = counters.peak.load(kRelaxed);
    pstStatistics->ulAbnormalReports = counters.abnormal.load(kRelaxed);
}

void SipMmResetPeak(void) {
    using namespace sipcore;
    counters.peak.store(counters.bytes.load(kRelaxed), kRelaxed);
}
