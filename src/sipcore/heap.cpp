// The process heap: counted allocation, the cache of each thread, the statistics, and the system
// memory control. The counters are relaxed atomics, because no counter decides about the memory of
// another thread; they change only where the process heap is called.
#include "sipcore/heap.hpp"

#include "sdpline/sipcore.h"
#include "sipcore/asan.hpp"
#include "sipcore/fill.hpp"

#include <pthread.h>

#include <atomic>
#include <cassert>
#include <cstdlib>
#include <new>
#include <utility>

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

[[gnu::noinline]] void *takeFromHeap(std::size_t size, Use use, Content content) {
    void *memory = content == Content::Zeroed ? std::calloc(1, size) : std::malloc(size);
    if (memory == nullptr) {
        return nullptr;
    }
    counters.blocks.fetch_add(use == Use::Block ? 1 : 0, kRelaxed);
    counters.taken.fetch_add(1, kRelaxed);
    raisePeak(counters.bytes.fetch_add(size, kRelaxed) + size);
    return memory;
}

[[gnu::noinline]] void giveToHeap(void *memory, std::size_t size, Use use) {
    std::free(memory);
    counters.blocks.fetch_sub(use == Use::Block ? 1 : 0, kRelaxed);
    counters.given.fetch_add(1, kRelaxed);
    counters.bytes.fetch_sub(size, kRelaxed);
}

// ---- Cached allocations

// AddressSanitizer finds a use of freed memory only if it went back to the heap.
#if defined(SIPCORE_ASAN)
constexpr std::size_t kCacheMax = 0;
#else
constexpr std::size_t kCacheMax = 64 * 1024; // bytes for each thread
#endif

constexpr std::size_t kSizes = kLargestCached / kStep;

struct CachedMemory {
    CachedMemory *next;
};

struct Cache {
    CachedMemory *lists[2][kSizes];
    std::size_t bytes;
    uint32_t nextFreed; // the list whose allocations are freed next when the cache is full
    bool watched;       // the cache is freed when the thread ends
};

[[gnu::tls_model("initial-exec")]] constinit thread_local Cache cache{};

CachedMemory *&listOf(std::size_t size, Use use) {
    return cache.lists[static_cast<std::size_t>(use)][size / kStep - 1];
}

void releaseCached() {
    for (const Use use : {Use::Block, Use::Other}) {
        for (std::size_t size = kStep; size <= kLargestCached; size += kStep) {
            CachedMemory *allocation = std::exchange(listOf(size, use), nullptr);
            while (allocation != nullptr) {
                giveToHeap(std::exchange(allocation, allocation->next), size, use);
            }
        }
    }
    cache.bytes = 0;
}

// Frees allocations until there is room for one of that size, one list after another. If a full
// cache stayed as it is, it would be of no use to work that needs other sizes than earlier work.
[[gnu::noinline]] void makeRoom(std::size_t size) {
    while (cache.bytes + size > kCacheMax) {
        const auto use = static_cast<Use>(cache.nextFreed / kSizes);
        const std::size_t freedSize = (cache.nextFreed % kSizes + 1) * kStep;
        CachedMemory *&list = listOf(freedSize, use);
        if (list == nullptr) {
            cache.nextFreed = (cache.nextFreed + 1) % (2 * kSizes);
            continue;
        }
        cache.bytes -= freedSize;
        giveToHeap(std::exchange(list, list->next), freedSize, use);
    }
}

// Destructors of the thread that run after this one may free more memory, which is then cached
// under a new watch.
void onThreadEnd(void *) {
    cache.watched = false;
    releaseCached();
}

// Calls onThreadEnd() when a thread ends. A program may unload the library, or end, while other
// threads run: they must not call into the library when they end later, so their caches are lost.
// The lock is for threads that start to cache at that moment.
class ThreadEnds {
public:
    bool watchThisThread(const void *value) {
        const Locked locked(mutex_);
        if (state_ == State::Unknown) {
            state_ = pthread_key_create(&key_, onThreadEnd) == 0 ? State::Watched : State::Closed;
        }
        return state_ == State::Watched && pthread_setspecific(key_, value) == 0;
    }

    void close() {
        const Locked locked(mutex_);
        if (state_ == State::Watched) {
            pthread_key_delete(key_);
        }
        state_ = State::Closed;
    }

private:
    enum class State : uint8_t { Unknown, Watched, Closed };

    class Locked {
    public:
        explicit Locked(pthread_mutex_t &mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
        ~Locked() { pthread_mutex_unlock(&mutex_); }
        Locked(const Locked &) = delete;
        Locked &operator=(const Locked &) = delete;

    private:
        pthread_mutex_t &mutex_;
    };

    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    pthread_key_t key_ = 0;
    State state_ = State::Unknown;
};

constinit ThreadEnds threadEnds;

[[gnu::destructor]] void forgetThreads() {
    threadEnds.close();
}

[[gnu::noinline]] bool watchThread() {
    cache.watched = threadEnds.watchThisThread(&cache);
    return cache.watched;
}

bool isCachedSize(std::size_t size) {
    return size <= kLargestCached && kCacheMax != 0;
}

} // namespace

void *heapTake(std::size_t bytes, Use use, Content content) {
    const std::size_t size = heapSize(bytes);
    if (isCachedSize(size)) {
        CachedMemory *&list = listOf(size, use);
        if (CachedMemory *const allocation = list) {
            list = allocation->next;
            cache.bytes -= size;
            return content == Content::Zeroed ? clear(allocation, size) : allocation;
        }
    }
    return takeFromHeap(size, use, content);
}

void heapGive(void *memory, std::size_t bytes, Use use) {
    const std::size_t size = heapSize(bytes);
    if (isCachedSize(size) && (cache.watched || watchThread())) {
        if (cache.bytes + size > kCacheMax) [[unlikely]] {
            makeRoom(size);
        }
        CachedMemory *&list = listOf(size, use);
        list = new (memory) CachedMemory{list};
        cache.bytes += size;
        return;
    }
    giveToHeap(memory, size, use);
}

void countAbnormalReport() {
    counters.abnormal.fetch_add(1, kRelaxed);
}

namespace {

// Precedes every allocation of the system memory control; its size keeps the heap's alignment.
struct alignas(std::max_align_t) SystemHeader {
    uint32_t size;
    uint32_t state;
};

constexpr uint32_t kSystemLive = 0x51A11Cu;
constexpr uint32_t kSystemFreed = 0xF4EEDu;

constinit SDPMemCp systemMemCp{nullptr, systemAlloc, systemFree};

} // namespace

void *systemTake(uint32_t size, Content content) {
    if (size > kLargestRequest) {
        return nullptr;
    }
    void *const memory = heapTake(sizeof(SystemHeader) + size, Use::Other, content);
    auto *const header = static_cast<SystemHeader *>(memory);
    if (header == nullptr) {
        return nullptr;
    }
    header->size = size;
    header->state = kSystemLive;
    return header + 1;
}

void *systemAlloc(SDPMemCp *, uint32_t size) {
    return systemTake(size, Content::Zeroed);
}

uint32_t systemFree(void *memory) {
    if (memory == nullptr) {
        return SIP_OK;
    }
    SystemHeader *header = static_cast<SystemHeader *>(memory) - 1;
    assert(header->state == kSystemLive && "not memory of the system control, or freed before");
    header->state = kSystemFreed;
    heapGive(header, sizeof(SystemHeader) + header->size, Use::Other);
    return SIP_OK;
}

bool isSystem(const SDPMemCp *memCp) {
    return memCp->pfnAlloc == systemAlloc && memCp->pfnFree == systemFree;
}

const uint32_t kLargestKept = kLargestCached - sizeof(SystemHeader);

uint32_t wholeSystemSize(uint32_t size) {
    if (size > kLargestKept) {
        return size;
    }
    return static_cast<uint32_t>(heapSize(sizeof(SystemHeader) + size) - sizeof(SystemHeader));
}

} // namespace sipcore

SDPMemCp *gSipSystemMemCp = &sipcore::systemMemCp;

void SipMmGetStatistics(SipMmStatistics *statistics) {
    using namespace sipcore;
    if (statistics == nullptr) {
        return;
    }
    releaseCached(); // what the calling thread caches is not in use
    // `given` is read before `taken`, so that it is never the larger one while threads allocate.
    const uint64_t given = counters.given.load(kRelaxed);
    statistics->ulBlocks = counters.blocks.load(kRelaxed);
    statistics->ulHeapAllocations = counters.taken.load(kRelaxed);
    statistics->ulHeapBlocks = statistics->ulHeapAllocations - given;
    statistics->ulHeapBytes = counters.bytes.load(kRelaxed);
    statistics->ulHeapBytesPeak = counters.peak.load(kRelaxed);
    statistics->ulAbnormalReports = counters.abnormal.load(kRelaxed);
}

void SipMmResetPeak(void) {
    using namespace sipcore;
    releaseCached();
    counters.peak.store(counters.bytes.load(kRelaxed), kRelaxed);
}
