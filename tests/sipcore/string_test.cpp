#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace sipcoretests;

SipString rubbish() {
    static char bytes[] = "rubbish";
    return {7, bytes};
}

TEST(CopyString, makesACopyOfItsOwn) {
    const LeakCheck leaks;
    const SipString source = counted({"a\0b", 3});
    SipString copy = rubbish();
    ASSERT_EQ(SipSmCopyString(gSipSystemMemCp, &source, &copy), 0u);
    EXPECT_NE(held(copy.pcData), held(source.pcData));
    EXPECT_EQ(viewOf(copy), viewOf(source));
    SipSmClearString(gSipSystemMemCp, &copy);
    EXPECT_EQ(copy.ulLen, 0u);
    EXPECT_EQ(held(copy.pcData), nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(CopyString, asksForNothingWhenThereAreNoBytes) {
    const SipString empty = counted("");
    ASSERT_NE(held(empty.pcData), nullptr);
    for (const SipString source : {empty, SipString{5, nullptr}}) { // which keeps its length
        TestMemory memory;
        SipString copy = rubbish();
        EXPECT_EQ(SipSmCopyString(memory.control(), &source, &copy), 0u);
        EXPECT_EQ(copy.ulLen, source.ulLen);
        EXPECT_EQ(held(copy.pcData), nullptr);
        EXPECT_EQ(memory.requests(), 0u);
    }
}

TEST(CopyString, leavesAnEmptyTargetWhenItFails) {
    TestMemory memory(1);
    const SipString source = counted("text");
    SipString copy = source; // as after a plain copy of the record around it
    EXPECT_EQ(SipSmCopyString(memory.control(), &source, &copy), uint32_t{SIP_NO_MEMORY});
    EXPECT_EQ(copy.ulLen, 0u);
    EXPECT_EQ(held(copy.pcData), nullptr);

    copy = source;
    EXPECT_EQ(SipSmCopyString(gSipSystemMemCp, nullptr, &copy), uint32_t{SIP_INVALID_ARGUMENT});
    EXPECT_EQ(held(copy.pcData), nullptr);
    copy = source;
    EXPECT_EQ(SipSmCopyString(nullptr, &source, &copy), uint32_t{SIP_INVALID_ARGUMENT});
    EXPECT_EQ(held(copy.pcData), nullptr);
    EXPECT_EQ(SipSmCopyString(gSipSystemMemCp, &source, nullptr), uint32_t{SIP_INVALID_ARGUMENT});
}

TEST(CloneString, makesAStringOfItsOwn) {
    const LeakCheck leaks;
    const SipString source = counted("text");
    SipString *clone = nullptr;
    ASSERT_EQ(SipSmCloneString(gSipSystemMemCp, &source, &clone), 0u);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(viewOf(*clone), "text");
    EXPECT_NE(held(clone->pcData), held(source.pcData));
    SipSmFreeString(gSipSystemMemCp, &clone);
    EXPECT_EQ(clone, nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(CloneString, aNullStringClonesToNull) {
    SipString other{};
    SipString *clone = &other;
    EXPECT_EQ(SipSmCloneString(gSipSystemMemCp, nullptr, &clone), 0u);
    EXPECT_EQ(clone, nullptr);
}

TEST(CloneString, givesEverythingBackWhicheverRequestFails) {
    const SipString source = counted("text");
    for (uint32_t failAt = 1; failAt <= 2; ++failAt) {
        const LeakCheck leaks;
        TestMemory memory(failAt);
        SipString other{};
        SipString *clone = &other;
        EXPECT_EQ(SipSmCloneString(memory.control(), &source, &clone), uint32_t{SIP_NO_MEMORY});
        EXPECT_EQ(clone, nullptr);
        EXPECT_TRUE(leaks.nothingKept());
    }
}

TEST(CloneString, checksItsPointers) {
    const SipString source = counted("text");
    SipString *clone = nullptr;
    EXPECT_EQ(SipSmCloneString(nullptr, &source, &clone), uint32_t{SIP_INVALID_ARGUMENT});
    EXPECT_EQ(SipSmCloneString(gSipSystemMemCp, &source, nullptr), uint32_t{SIP_INVALID_ARGUMENT});
}

TEST(ClearAndFreeString, acceptWhatIsNotThere) {
    SipString *none = nullptr;
    SipString hollow{3, nullptr};
    SipSmClearString(gSipSystemMemCp, nullptr);
    SipSmClearString(gSipSystemMemCp, &hollow);
    EXPECT_EQ(hollow.ulLen, 0u);
    SipSmFreeString(gSipSystemMemCp, nullptr);
    SipSmFreeString(gSipSystemMemCp, &none);
}

TEST(ClearAndFreeString, withoutAMemoryControlOnlyForget) {
    SipString text = rubbish();
    SipSmClearString(nullptr, &text);
    EXPECT_EQ(held(text.pcData), nullptr);
    text = rubbish();
    SipString *pointer = &text;
    SipSmFreeString(nullptr, &pointer);
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(held(text.pcData), nullptr);
}

TEST(StringNCmp, isOneWhenBothHoldTheBytesAndTheyAreEqual) {
    const SipString none{0, nullptr};
    const SipString hollow{3, nullptr};
    const SipString abc = counted("abc");
    const SipString abd = counted("abd");
    const SipString ab = counted("ab");
    const SipString upper = counted("ABC");
    const struct {
        const SipString *first;
        const SipString *second;
        uint32_t count;
        uint32_t result;
    } rows[] = {
        {&abc, &abc, 3, 1},       {&abc, &abd, 2, 1},    {&abc, &abd, 3, 0},
        {&abc, &ab, 2, 1},        {&abc, &ab, 3, 0},     {&ab, &abc, 3, 0},
        {&abc, &abc, 4, 0},       {&abc, &abd, 0, 1},    {&none, &none, 0, 1},
        {&none, &abc, 0, 1},      {&none, &abc, 1, 0},   {&abc, &upper, 3, 0},
        {&hollow, &abc, 3, 0},    {&abc, &hollow, 3, 0}, {&hollow, &hollow, 0, 1},
        {&hollow, &hollow, 1, 0}, {nullptr, &abc, 1, 0}, {&abc, nullptr, 1, 0},
        {nullptr, nullptr, 0, 0}, {&abc, nullptr, 0, 0}, {&abc, &abc, UINT32_MAX, 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(SipSmStringNCmp(row.first, row.second, row.count), row.result)
            << "row " << &row - rows;
    }
}

SipRefString *makeRef(SDPMemCp *memory, std::string_view text) {
    SipStringBuffer *buffer = nullptr;
    SipRefString *ref = nullptr;
    SipSbCreateStringBufferNew(memory, 16, 16, &buffer);
    SipSbCopyConstString(buffer, text.data(), static_cast<uint32_t>(text.size()));
    SipSbConvertToRefString(buffer, &ref);
    SipSbReleaseStringBuffer(buffer);
    return ref;
}

TEST(RefString, outlivesTheBufferItCameFrom) {
    const LeakCheck leaks;
    SipRefString *ref = makeRef(gSipSystemMemCp, "text");
    ASSERT_NE(ref, nullptr);
    EXPECT_EQ(viewOf(ref), "text");
    SipSmReleaseRefString(ref);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(RefString, goesWithItsLastHold) {
    const LeakCheck leaks;
    SipRefString *ref = makeRef(gSipSystemMemCp, "text");
    SipSmHoldRefString(ref);
    SipSmHoldRefString(ref);
    SipSmReleaseRefString(ref);
    SipSmReleaseRefString(ref);
    EXPECT_FALSE(leaks.nothingKept());
    EXPECT_EQ(viewOf(ref), "text");
    SipSmReleaseRefString(ref);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(RefString, mayBeHeldByManyThreads) {
    const LeakCheck leaks;
    SipRefString *ref = makeRef(gSipSystemMemCp, "text");
    const auto work = [ref] {
        for (int i = 0; i < 10000; ++i) {
            SipSmHoldRefString(ref);
            EXPECT_EQ(SipSmGetLenFromRefString(ref), 4u);
            SipSmReleaseRefString(ref);
        }
        SipSmReleaseRefString(ref);
    };
    SipSmHoldRefString(ref);
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(RefString, nullHasNoTextAndIsReleasedQuietly) {
    EXPECT_EQ(SipSmGetLenFromRefString(nullptr), 0u);
    EXPECT_EQ(SipSmGetDataFromRefString(nullptr), nullptr);
    SipSmHoldRefString(nullptr);
    SipSmReleaseRefString(nullptr);
}

} // namespace
