#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdlib>
#include <future>
#include <thread>
#include <vector>

namespace {

using namespace sipcoretests;

void *systemAlloc(uint32_t size) {
    return gSipSystemMemCp->pfnAlloc(gSipSystemMemCp, size);
}

uint32_t systemFree(void *memory) {
    return gSipSystemMemCp->pfnFree(memory);
}

TEST(SystemMemory, comesBackZeroedAndAligned) {
    const LeakCheck leaks;
    for (uint32_t size : {1u, 7u, 8u, 24u, 1000u, 100000u}) {
        void *memory = systemAlloc(size);
        ASSERT_NE(memory, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % 8, 0u);
        EXPECT_TRUE(isZero(memory, size));
        std::memset(memory, 0xFF, size);
        EXPECT_EQ(systemFree(memory), 0u);
    }
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(SystemMemory, answersAUniquePointerForZeroBytes) {
    const LeakCheck leaks;
    void *first = systemAlloc(0);
    void *second = systemAlloc(0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(first, second);
    systemFree(first);
    systemFree(second);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(SystemMemory, refusesMoreThanOneGibibyte) {
    const LeakCheck leaks;
    for (uint32_t size : {(1u << 30) + 1, UINT32_MAX - 16, UINT32_MAX - 7, UINT32_MAX}) {
        EXPECT_EQ(systemAlloc(size), nullptr) << size;
    }
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(SystemMemory, freeAcceptsNull) {
    EXPECT_EQ(systemFree(nullptr), 0u);
}

TEST(SystemMemory, isNoBlockThatCouldBeReleased) {
    SDPMemCp *control = gSipSystemMemCp;
    EXPECT_EQ(SipMmReleaseBufMem(&control), uint32_t{SIP_INVALID_ARGUMENT});
    EXPECT_EQ(control, gSipSystemMemCp);
}

#if !defined(NDEBUG)
TEST(SystemMemoryDeathTest, aPointerIntoAPieceIsNoticedByDebugBuilds) {
    auto *memory = static_cast<char *>(systemAlloc(64));
    EXPECT_DEATH(systemFree(memory + 32), "not memory of the system control");
    systemFree(memory);
}
#endif

#if !defined(SIPCORE_TESTS_SANITIZED)
// Runs in a separate process with a limited address space.
void useAnExhaustedHeap() {
    const rlimit limit{64u << 20, 64u << 20};
    const LeakCheck leaks;
    SDPMemCp *block = nullptr;
    bool good = SipMmCreateBufMem(512, 1032, &block) == SIP_OK && setrlimit(RLIMIT_AS, &limit) == 0;
    const LeakCheck withBlock;
    good = good && systemAlloc(512u << 20) == nullptr;
    good = good && block->pfnAlloc(block, 512u << 20) == nullptr;
    good = good && withBlock.nothingKept();
    good = good && block->pfnAlloc(block, 100) != nullptr; // the block is as good as before
    SDPMemCp *second = block;
    good = good && SipMmCreateBufMem(512u << 20, 8, &second) == SIP_NO_MEMORY && second == nullptr;
    good = good && SipMmReleaseBufMem(&block) == SIP_OK && leaks.nothingKept();
    std::_Exit(good ? 0 : 1);
}

// Chunks of this next size cannot be allocated, so the block has only its first chunk.
void useUpABlockOnAnExhaustedHeap() {
    const rlimit limit{64u << 20, 64u << 20};
    SDPMemCp *block = nullptr;
    bool good =
        SipMmCreateBufMem(65536, 512u << 20, &block) == SIP_OK && setrlimit(RLIMIT_AS, &limit) == 0;
    good = good && block->pfnAlloc(block, 65536) != nullptr;
    good = good && block->pfnAlloc(block, 1) == nullptr;
    good = good && block->pfnAlloc(block, 300) == nullptr;
    good = good && SipMmReleaseBufMem(&block) == SIP_OK && statistics().ulHeapBlocks == 0;
    std::_Exit(good ? 0 : 1);
}

TEST(HeapDeathTest, exhaustionIsAnsweredAndCostsNothing) {
    EXPECT_EXIT(useAnExhaustedHeap(), testing::ExitedWithCode(0), "");
}

TEST(HeapDeathTest, aBlockThatCannotGrowAnswersNull) {
    EXPECT_EXIT(useUpABlockOnAnExhaustedHeap(), testing::ExitedWithCode(0), "");
}
#endif

TEST(Statistics, countWhatIsAliveAndWhatWasDone) {
    const SipMmStatistics before = statistics();
    void *memory = systemAlloc(1000);
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    const SipMmStatistics during = statistics();
    EXPECT_EQ(during.ulBlocks, before.ulBlocks + 1);
    EXPECT_EQ(during.ulHeapAllocations, before.ulHeapAllocations + 2);
    EXPECT_EQ(during.ulHeapBlocks, before.ulHeapBlocks + 2);
    EXPECT_EQ(during.ulHeapBytes, before.ulHeapBytes + 1024 + 1536);

    systemFree(memory);
    SipMmReleaseBufMem(&block);
    const SipMmStatistics after = statistics();
    EXPECT_EQ(after.ulBlocks, before.ulBlocks);
    EXPECT_EQ(after.ulHeapBlocks, before.ulHeapBlocks);
    EXPECT_EQ(after.ulHeapBytes, before.ulHeapBytes);
    EXPECT_EQ(after.ulHeapAllocations, before.ulHeapAllocations + 2);
}

TEST(Statistics, keepThePeakUntilItIsReset) {
    SipMmResetPeak();
    const SipMmStatistics before = statistics();
    EXPECT_EQ(before.ulHeapBytesPeak, before.ulHeapBytes);
    systemFree(systemAlloc(5000));
    systemFree(systemAlloc(100));
    const SipMmStatistics after = statistics();
    EXPECT_GE(after.ulHeapBytesPeak, before.ulHeapBytes + 5000);
    EXPECT_LT(after.ulHeapBytesPeak, before.ulHeapBytes + 5100);
    SipMmResetPeak();
    EXPECT_EQ(statistics().ulHeapBytesPeak, before.ulHeapBytes);
}

#if !defined(SIPCORE_TESTS_SANITIZED)
// Frees more than a thread caches, so that its cache is full of these sizes.
void fillCache() {
    std::vector<void *> memory;
    for (uint32_t size = 300; size < 4000; size += 250) {
        for (uint32_t i = 0; i < 5; ++i) {
            memory.push_back(systemAlloc(size));
        }
    }
    for (void *one : memory) {
        systemFree(one);
    }
}

TEST(Cache, isOfUseAfterWorkWithOtherSizes) {
    const SipMmStatistics before = statistics(); // frees the cache
    fillCache();
    constexpr uint32_t kRounds = 1000;
    for (uint32_t i = 0; i < kRounds; ++i) {
        void *memory = systemAlloc(200);
        SDPMemCp *block = nullptr;
        ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
        systemFree(memory);
        SipMmReleaseBufMem(&block);
    }
    const SipMmStatistics after = statistics();
    EXPECT_LT(after.ulHeapAllocations - before.ulHeapAllocations, kRounds / 2);
    EXPECT_EQ(after.ulHeapBytes, before.ulHeapBytes);
    EXPECT_EQ(after.ulBlocks, before.ulBlocks);
}

TEST(Cache, keepsNoMoreThanItsLimit) {
    const uint64_t before = statistics().ulHeapBytes;
    std::promise<void> filled;
    std::promise<void> measured;
    std::thread other([&] {
        fillCache();
        fillCache();
        filled.set_value();
        measured.get_future().wait();
    });
    filled.get_future().wait();
    const uint64_t cached = statistics().ulHeapBytes - before;
    measured.set_value();
    other.join();
    EXPECT_LE(cached, 64u * 1024);
    EXPECT_GT(cached, 60u * 1024);
    EXPECT_EQ(statistics().ulHeapBytes, before);
}
#endif

TEST(Statistics, acceptANullPointer) {
    const SipMmStatistics before = statistics();
    SipMmGetStatistics(nullptr);
    const SipMmStatistics after = statistics();
    EXPECT_EQ(after.ulBlocks, before.ulBlocks);
    EXPECT_EQ(after.ulHeapBytes, before.ulHeapBytes);
    EXPECT_EQ(after.ulHeapAllocations, before.ulHeapAllocations);
    EXPECT_EQ(after.ulHeapBytesPeak, before.ulHeapBytesPeak);
}

} // namespace
