#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <thread>
#include <vector>

#if defined(__has_include)
#if __has_include(<sanitizer/asan_interface.h>) && defined(SIPCORE_TESTS_SANITIZED)
#include <sanitizer/asan_interface.h>
#endif
#endif

namespace {

using namespace sipcoretests;

constexpr uint32_t kLimit = 1u << 30;

uint64_t heapBlocks() {
    return statistics().ulHeapBlocks;
}

TEST(Block, isCreatedWithOneHeapAllocationAndReleasedWhole) {
    const LeakCheck leaks;
    const SipMmStatistics before = statistics();
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 1032, &block), 0u);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(statistics().ulHeapAllocations, before.ulHeapAllocations + 1);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_NE(block->pfnAlloc(block, 40), nullptr);
    }
    EXPECT_EQ(SipMmReleaseBufMem(&block), 0u);
    EXPECT_EQ(block, nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Block, createAndReleaseCheckTheirPointers) {
    EXPECT_EQ(SipMmCreateBufMem(512, 512, nullptr), uint32_t{SIP_INVALID_ARGUMENT});
    EXPECT_EQ(SipMmReleaseBufMem(nullptr), uint32_t{SIP_INVALID_ARGUMENT});
    SDPMemCp *none = nullptr;
    EXPECT_EQ(SipMmReleaseBufMem(&none), 0u);
}

TEST(Block, refusesImpossibleChunkSizes) {
    const LeakCheck leaks;
    SDPMemCp untouched{};
    for (uint32_t size : {kLimit + 1, UINT32_MAX - 7, UINT32_MAX}) {
        SDPMemCp *block = &untouched;
        EXPECT_EQ(SipMmCreateBufMem(size, 512, &block), uint32_t{SIP_INVALID_ARGUMENT});
        EXPECT_EQ(block, nullptr);
        block = &untouched;
        EXPECT_EQ(SipMmCreateBufMem(512, size, &block), uint32_t{SIP_INVALID_ARGUMENT});
        EXPECT_EQ(block, nullptr);
    }
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Block, worksWithChunksOfNoSize) {
    const LeakCheck leaks;
    {
        TestBlock block(0, 0);
        for (uint32_t size : {0u, 1u, 8u, 256u, 257u, 5000u, 70000u}) {
            void *memory = block.alloc(size);
            ASSERT_NE(memory, nullptr) << size;
            std::memset(memory, 0xFF, size);
        }
    }
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Block, memoryIsZeroedAndAlignedAtEveryClassEdge) {
    TestBlock block(512, 1032);
    std::vector<uint32_t> sizes{0, 1, 7, 8, 9, 15, 16, 17, 248, 249, 255, 256, 257, 263, 264, 265};
    for (uint32_t power = 512; power <= 131072; power *= 2) {
        sizes.insert(sizes.end(), {power - 8, power - 1, power, power + 1, power + 8});
    }
    for (int round = 0; round < 3; ++round) { // from the second on, memory is taken again
        for (uint32_t size : sizes) {
            void *memory = block.alloc(size);
            ASSERT_NE(memory, nullptr) << size;
            EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % 8, 0u) << size;
            EXPECT_TRUE(isZero(memory, size)) << size;
            std::memset(memory, 0xFF, size);
            EXPECT_EQ(block.free(memory), 0u);
        }
    }
}

TEST(Block, requestsForZeroBytesGetUniquePointers) {
    TestBlock block(512, 512);
    std::set<void *> seen;
    for (int i = 0; i < 100; ++i) {
        void *memory = block.alloc(0);
        ASSERT_NE(memory, nullptr);
        EXPECT_TRUE(seen.insert(memory).second);
    }
    for (void *memory : seen) {
        EXPECT_EQ(block.free(memory), 0u);
    }
}

// How many requests of 8 bytes are served before the block takes more from the heap.
uint32_t requestsLeft(TestBlock &block) {
    const uint64_t before = heapBlocks();
    for (uint32_t count = 0;; ++count) {
        EXPECT_NE(block.alloc(8), nullptr);
        if (heapBlocks() != before) {
            return count;
        }
    }
}

TEST(Block, firstChunkHoldsOneRequestOfItsSize) {
    for (uint32_t size :
         {1u, 8u, 100u, 256u, 257u, 300u, 512u, 1000u, 1120u, 4000u, 65536u, 65537u, 200000u}) {
        const LeakCheck leaks;
        {
            TestBlock block(size, 1032);
            const uint64_t before = heapBlocks();
            void *memory = block.alloc(size);
            ASSERT_NE(memory, nullptr);
            std::memset(memory, 0xFF, size);
            EXPECT_EQ(heapBlocks(), before) << size;
            // The rest of a least block's 1128 bytes, or of the heap's step of 256.
            EXPECT_LE(requestsLeft(block) * 16, size < 1120 ? 1128 - size : 256u) << size;
            EXPECT_EQ(block.free(memory), 0u);
        }
        EXPECT_TRUE(leaks.nothingKept());
    }
}

// The sizes of chunks that leave nothing of a heap allocation unused.
TEST(Block, furtherChunksHoldOneRequestOfTheirSize) {
    for (uint32_t size : {216u, 472u, 728u, 984u, 1240u, 4056u, 65536u}) {
        TestBlock block(65536, size);
        ASSERT_NE(block.alloc(65536), nullptr); // the first chunk is full to the last byte
        const SipMmStatistics before = statistics();
        ASSERT_NE(block.alloc(size), nullptr);
        EXPECT_EQ(heapBlocks(), before.ulHeapBlocks + 1);
        EXPECT_LE(statistics().ulHeapBytes, before.ulHeapBytes + size + 64);
        ASSERT_NE(block.alloc(8), nullptr);
        EXPECT_EQ(heapBlocks(), before.ulHeapBlocks + 2);
    }
}

TEST(Block, furtherChunksAreAllOfWhatTheHeapGives) {
    for (uint32_t size : {16u, 256u, 300u, 512u, 1032u}) {
        TestBlock block(65536, size);
        ASSERT_NE(block.alloc(65536), nullptr);
        const uint64_t before = statistics().ulHeapBytes;
        ASSERT_NE(block.alloc(8), nullptr);
        const uint64_t chunk = statistics().ulHeapBytes - before;
        EXPECT_LT(chunk, size + 64 + 256) << size;
        EXPECT_EQ(requestsLeft(block), (chunk - 32) / 16 - 1) << size;
    }
}

TEST(Block, chunksGrowWithTheBlock) {
    TestBlock block(65536, 472);
    ASSERT_NE(block.alloc(65536), nullptr);
    ASSERT_NE(block.alloc(8), nullptr);
    EXPECT_EQ(requestsLeft(block), 30u - 1) << "480 bytes";
    EXPECT_EQ(requestsLeft(block), 62u - 1) << "twice as much, and what the heap gives beside";
    EXPECT_EQ(requestsLeft(block), 78u - 1) << "a kilobyte";
    EXPECT_EQ(requestsLeft(block), 78u - 1) << "at most";
}

TEST(Block, smallRequestsShareAChunk) {
    TestBlock block(512, 1032);
    const uint64_t before = heapBlocks();
    for (int i = 0; i < 25; ++i) {
        ASSERT_NE(block.alloc(44), nullptr); // with its header 56 bytes of 1128
    }
    EXPECT_EQ(heapBlocks(), before + 1);
}

TEST(Block, aLargeRequestDoesNotCostTheRestOfTheChunkInUse) {
    TestBlock block(512, 1032);
    ASSERT_NE(block.alloc(8), nullptr);
    const uint64_t before = heapBlocks();
    ASSERT_NE(block.alloc(5000), nullptr);
    ASSERT_NE(block.alloc(100000), nullptr);
    EXPECT_EQ(heapBlocks(), before + 2);
    ASSERT_NE(block.alloc(200), nullptr); // both still from the first chunk
    ASSERT_NE(block.alloc(200), nullptr);
    EXPECT_EQ(heapBlocks(), before + 2);
}

TEST(Block, refusesImpossibleRequestsAndGoesOn) {
    TestBlock block(512, 1032);
    const LeakCheck leaks;
    for (uint32_t size :
         {kLimit + 1, UINT32_MAX - 40, UINT32_MAX - 8, UINT32_MAX - 7, UINT32_MAX}) {
        EXPECT_EQ(block.alloc(size), nullptr) << size;
    }
    EXPECT_TRUE(leaks.nothingKept());
    EXPECT_NE(block.alloc(100), nullptr);
}

TEST(Block, freeAcceptsNull) {
    TestBlock block(64, 64);
    EXPECT_EQ(block.free(nullptr), 0u);
}

TEST(Block, takesFreedMemoryAgain) {
    for (uint32_t size : {0u, 1u, 8u, 40u, 256u, 257u, 600u, 60000u}) {
        TestBlock block(512, 1032);
        void *first = block.alloc(size);
        ASSERT_NE(first, nullptr);
        block.free(first);
        EXPECT_EQ(block.alloc(size), first) << size;
    }
}

TEST(Block, servesALargeClassFromFreedMemoryOfAnySizeInIt) {
    TestBlock block(512, 1032);
    void *first = block.alloc(2000);
    block.free(first);
    void *second = block.alloc(1100);
    EXPECT_EQ(second, first);
    block.free(second);
    EXPECT_EQ(block.alloc(2048), first);
}

TEST(Block, veryLargeMemoryGoesBackToTheHeapAtOnce) {
    TestBlock block(512, 1032);
    const LeakCheck leaks;
    std::vector<void *> allocations;
    for (uint32_t size : {65537u, 100000u, 1u << 20}) {
        allocations.push_back(block.alloc(size));
        ASSERT_NE(allocations.back(), nullptr);
        EXPECT_TRUE(isZero(allocations.back(), size));
    }
    EXPECT_FALSE(leaks.nothingKept());
    block.free(allocations[1]); // the middle one, the newest, the oldest
    block.free(allocations[2]);
    block.free(allocations[0]);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Block, memoryThatOnlyFittedUnroundedIsGoodForSmallerRequests) {
    TestBlock block(512, 1032);
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(block.alloc(256), nullptr); // of the 1128 bytes, 336 are left
    }
    void *whole = block.alloc(300);
    block.free(whole);
    EXPECT_EQ(block.alloc(256), whole);
}

TEST(Block, survivesARandomLife) {
    const LeakCheck leaks;
    {
        TestBlock block(512, 1032);
        struct Allocation {
            uint8_t *memory;
            uint32_t size;
            uint8_t mark;
        };
        std::vector<Allocation> alive;
        std::mt19937 engine(20240607);
        const auto random = [&] { return static_cast<uint32_t>(engine()); };
        const uint32_t bounds[] = {16, 64, 300, 5000, 80000};
        for (uint32_t step = 0; step < 20000; ++step) {
            if (alive.size() < 200 && random() % 5 < 3) {
                const uint32_t size = random() % bounds[random() % 5];
                auto *memory = static_cast<uint8_t *>(block.alloc(size));
                ASSERT_NE(memory, nullptr);
                ASSERT_TRUE(isZero(memory, size));
                std::memset(memory, static_cast<int>(step % 255 + 1), size);
                alive.push_back({memory, size, static_cast<uint8_t>(step % 255 + 1)});
            } else if (!alive.empty()) {
                std::swap(alive[random() % alive.size()], alive.back());
                const Allocation allocation = alive.back();
                alive.pop_back();
                ASSERT_TRUE(std::all_of(allocation.memory, allocation.memory + allocation.size,
                                        [&](uint8_t one) { return one == allocation.mark; }));
                ASSERT_EQ(block.free(allocation.memory), 0u);
            }
        }
    }
    EXPECT_TRUE(leaks.nothingKept());
}

// Grows an array of pointers by one slot as list parsers do.
void *grow(TestBlock &block, void *old, uint32_t count) {
    void *grown = block.alloc(static_cast<uint32_t>((count + 1) * sizeof(void *)));
    if (grown != nullptr && old != nullptr) {
        std::memcpy(grown, old, count * sizeof(void *));
        block.free(old);
    }
    return grown;
}

TEST(Block, aListThatGrowsSlotBySlotTakesASmallMultipleOfItsSize) {
    TestBlock block(512, 1032);
    SipMmResetPeak();
    const uint64_t before = statistics().ulHeapBytes;
    void *array = nullptr;
    for (uint32_t count = 0; count < 1000; ++count) {
        array = grow(block, array, count);
        ASSERT_NE(array, nullptr);
    }
    EXPECT_LT(statistics().ulHeapBytesPeak - before, 8u * 1000 * sizeof(void *));
}

// A body of 4093 bytes made of as many attributes as fit: the text's own copy, and for each
// attribute a record, a string record and a few bytes of text, under a list that grows by slots.
TEST(Block, aHostileBodyTakesASmallMultipleOfItsText) {
    constexpr uint32_t kBodySize = 4093;
    const LeakCheck leaks;
    SipMmResetPeak();
    const uint64_t before = statistics().ulHeapBytes;
    {
        TestBlock block(512, 1032);
        void *normalised = block.alloc(kBodySize + 2);
        ASSERT_NE(normalised, nullptr);
        void *array = nullptr;
        for (uint32_t count = 0; count < 1000; ++count) {
            array = grow(block, array, count);
            ASSERT_NE(array, nullptr);
            ASSERT_NE(block.alloc(40), nullptr);
            ASSERT_NE(block.alloc(12), nullptr);
            ASSERT_NE(block.alloc(count % 8 + 1), nullptr);
        }
        block.free(normalised);
    }
    const uint64_t peak = statistics().ulHeapBytesPeak - before;
    RecordProperty("peakBytes", static_cast<int>(peak));
    EXPECT_LT(peak, uint64_t{64} * kBodySize);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Block, blocksOfDifferentThreadsDoNotMeet) {
    const LeakCheck leaks;
    const auto work = [](int mark) {
        for (int round = 0; round < 200; ++round) {
            TestBlock block(512, 1032);
            std::vector<uint8_t *> allocations;
            for (uint32_t i = 0; i < 100; ++i) {
                const uint32_t size = i * 7 + 1;
                auto *memory = static_cast<uint8_t *>(block.alloc(size));
                ASSERT_NE(memory, nullptr);
                ASSERT_TRUE(isZero(memory, size));
                std::memset(memory, mark, size);
                allocations.push_back(memory);
                if (i % 3 == 0) {
                    block.free(allocations[i / 2]);
                    allocations[i / 2] = static_cast<uint8_t *>(block.alloc(i / 2 * 7 + 1));
                    std::memset(allocations[i / 2], mark, i / 2 * 7 + 1);
                }
            }
            for (uint32_t i = 0; i < 100; ++i) {
                ASSERT_EQ(allocations[i][i * 7], mark);
            }
        }
    };
    std::thread first(work, 1);
    std::thread second(work, 2);
    first.join();
    second.join();
    EXPECT_TRUE(leaks.nothingKept());
}

#if !defined(NDEBUG)
TEST(BlockDeathTest, debugBuildsNoticeADoubleFree) {
    for (uint32_t size : {8u, 40u, 300u, 4000u}) {
        TestBlock block(512, 1032);
        void *memory = block.alloc(size);
        block.free(memory);
        EXPECT_DEATH(block.free(memory), "not memory of a block, or freed before") << size;
    }
}

TEST(BlockDeathTest, debugBuildsNoticeAPointerIntoAPiece) {
    TestBlock block(512, 1032);
    auto *memory = static_cast<char *>(block.alloc(64));
    EXPECT_DEATH(block.free(memory + 16), "not memory of a block, or freed before");
}

TEST(BlockDeathTest, debugBuildsNoticeMemoryOfTheSystemControl) {
    TestBlock block(512, 1032);
    void *foreign = gSipSystemMemCp->pfnAlloc(gSipSystemMemCp, 64);
    EXPECT_DEATH(block.free(foreign), "not memory of a block, or freed before");
    gSipSystemMemCp->pfnFree(foreign);
}

#if !defined(SIPCORE_TESTS_SANITIZED)
TEST(BlockDeathTest, debugBuildsNoticeAWriteToFreedMemory) {
    TestBlock block(512, 1032);
    auto *memory = static_cast<char *>(block.alloc(64));
    block.free(memory);
    memory[20] = 'x';
    EXPECT_DEATH(block.alloc(64), "freed memory was written to");
}
#endif
#endif

#if defined(ASAN_POISON_MEMORY_REGION) && !defined(__SANITIZE_THREAD__)
TEST(BlockUnderAddressSanitizer, onlyTheBytesAskedForMayBeTouched) {
    TestBlock block(512, 1032);
    for (uint32_t size : {0u, 1u, 12u, 40u, 300u, 2000u, 70000u}) {
        auto *memory = static_cast<char *>(block.alloc(size));
        EXPECT_TRUE(__asan_address_is_poisoned(memory - 1)) << size;
        EXPECT_TRUE(__asan_address_is_poisoned(memory + size)) << size;
        EXPECT_EQ(__asan_region_is_poisoned(memory, size), nullptr) << size;
        block.free(memory);
        EXPECT_TRUE(__asan_address_is_poisoned(memory)) << size;
    }
}

TEST(BlockUnderAddressSanitizer, memoryTakenAgainForLessStaysClosedAfterIt) {
    TestBlock block(512, 1032);
    auto *memory = static_cast<char *>(block.alloc(64));
    block.free(memory);
    ASSERT_EQ(block.alloc(57), memory);
    EXPECT_FALSE(__asan_address_is_poisoned(memory + 56));
    EXPECT_TRUE(__asan_address_is_poisoned(memory + 57));
}
#endif

} // namespace
