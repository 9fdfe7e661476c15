#include "memcontrols.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using namespace sipcoretests;

constexpr uint32_t kNoSpace = SIP_NO_SPACE;
constexpr uint32_t kNoMemory = SIP_NO_MEMORY;
constexpr uint32_t kInvalid = SIP_INVALID_ARGUMENT;

uint32_t add(SipStringBuffer *buffer, std::string_view text) {
    return SipSbCopyConstString(buffer, text.data(), static_cast<uint32_t>(text.size()));
}

// The text written so far, or "(failed)".
std::string textOf(SipStringBuffer *buffer) {
    SipRefString *ref = nullptr;
    if (SipSbConvertToRefString(buffer, &ref) != SIP_OK) {
        EXPECT_EQ(ref, nullptr);
        return "(failed)";
    }
    std::string text(viewOf(ref));
    SipSmReleaseRefString(ref);
    return text;
}

class Growable : public testing::Test {
protected:
    SipStringBuffer *make(uint32_t first, uint32_t growth) {
        SipStringBuffer *buffer = nullptr;
        EXPECT_EQ(SipSbCreateStringBufferNew(memory.control(), first, growth, &buffer), 0u);
        return buffer;
    }
    void TearDown() override { EXPECT_TRUE(leaks.nothingKept()); }

    LeakCheck leaks;
    TestMemory memory;
};

TEST_F(Growable, gathersWhatTheAppendersWrite) {
    SipStringBuffer *buffer = make(64, 64);
    const SipString text = counted("IN IP4");
    EXPECT_EQ(SipSbCopyChar(buffer, 'c'), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, "=", 1), 0u);
    EXPECT_EQ(SipSbCopyString(buffer, &text), 0u);
    EXPECT_EQ(SipSbCopyChar(buffer, '\0'), 0u);
    EXPECT_EQ(SipSbCopyLong(buffer, 127), 0u);
    EXPECT_EQ(textOf(buffer), std::string("c=IN IP4") + '\0' + "127");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, writesNumbersWithoutLeadingZeros) {
    SipStringBuffer *buffer = make(8, 8);
    for (uint32_t value : {0u, 9u, 10u, 99u, 100u, 1000000000u, UINT32_MAX}) {
        EXPECT_EQ(SipSbCopyLong(buffer, value), 0u);
        EXPECT_EQ(SipSbCopyChar(buffer, ' '), 0u);
    }
    EXPECT_EQ(textOf(buffer), "0 9 10 99 100 1000000000 4294967295 ");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, writesNothingForStringsThatAreNotThere) {
    SipStringBuffer *buffer = make(0, 0);
    const SipString hollow{3, nullptr};
    const SipString empty = counted("");
    EXPECT_EQ(SipSbCopyString(buffer, nullptr), 0u);
    EXPECT_EQ(SipSbCopyString(buffer, &hollow), 0u);
    EXPECT_EQ(SipSbCopyString(buffer, &empty), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, "", 0), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, nullptr, 0), 0u);
    EXPECT_EQ(memory.requests(), 1u);
    EXPECT_EQ(textOf(buffer), "");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, takesOneRequestUpToItsFirstSizeAndOneMoreAtEachGrowth) {
    SipStringBuffer *buffer = make(16, 16);
    EXPECT_EQ(add(buffer, "0123456789abcdef"), 0u);
    EXPECT_EQ(memory.requests(), 1u);
    EXPECT_EQ(SipSbCopyChar(buffer, 'g'), 0u);
    EXPECT_EQ(memory.requests(), 2u);
    EXPECT_EQ(textOf(buffer), "0123456789abcdefg");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, growsGeometrically) {
    SipStringBuffer *buffer = make(1, 1);
    std::string expected;
    for (uint32_t i = 0; i < 100000; ++i) {
        const char letter = static_cast<char>('a' + i % 26);
        ASSERT_EQ(SipSbCopyChar(buffer, letter), 0u);
        expected.push_back(letter);
    }
    EXPECT_LE(memory.requests(), 20u);
    EXPECT_EQ(textOf(buffer), expected);
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, growsByAtLeastTheGrowSizeAndByAsMuchAsIsAppended) {
    SipStringBuffer *buffer = make(0, 1000);
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), 0u);
    EXPECT_EQ(add(buffer, std::string(999, 'y')), 0u);
    EXPECT_EQ(memory.requests(), 2u);
    EXPECT_EQ(add(buffer, std::string(50000, 'z')), 0u);
    EXPECT_EQ(memory.requests(), 3u);
    const std::string text = textOf(buffer);
    EXPECT_EQ(text.size(), 51000u);
    EXPECT_EQ(text.find('y'), 1u);
    EXPECT_EQ(text.find('z'), 1000u);
    EXPECT_EQ(text.find_last_not_of('z'), 999u);
    SipSbReleaseStringBuffer(buffer);
}

// The buffer also uses the bytes of the heap beyond its request; a control of the program receives
// exact requests.
TEST(StringBuffer, usesAllThatTheSystemsControlTakesFromTheHeap) {
    const auto heapBytes = [](uint32_t first) {
        const SipMmStatistics before = statistics();
        SipStringBuffer *buffer = nullptr;
        EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, first, 1, &buffer), 0u);
        const uint64_t taken = statistics().ulHeapBytes - before.ulHeapBytes;
        SipSbReleaseStringBuffer(buffer);
        return taken;
    };
    const uint64_t taken = heapBytes(64);
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 64, 1, &buffer), 0u);
    const uint64_t before = statistics().ulHeapAllocations;
    uint64_t length = 0;
    while (statistics().ulHeapAllocations == before) {
        ASSERT_EQ(SipSbCopyChar(buffer, 'x'), 0u);
        ++length;
    }
    SipSbReleaseStringBuffer(buffer);
    EXPECT_GT(length - 1, 64u);
    EXPECT_LT(length - 1, taken);
    EXPECT_GT(length - 1 + 80, taken) << "less than the records before the text is left";
}

TEST(StringBuffer, growsOnceForABodyOfTheLargestSizeInTheSystemsMemory) {
    const uint64_t before = statistics().ulHeapAllocations;
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 512, 512, &buffer), 0u);
    for (int i = 0; i < 4000; ++i) {
        ASSERT_EQ(SipSbCopyChar(buffer, 'x'), 0u);
    }
    EXPECT_EQ(statistics().ulHeapAllocations, before + 2);
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, staysUsableAfterAConversion) {
    SipStringBuffer *buffer = make(4, 4);
    add(buffer, "one");
    EXPECT_EQ(textOf(buffer), "one");
    add(buffer, " two");
    EXPECT_EQ(textOf(buffer), "one two");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, doesNotStickAfterAConversionWithoutMemory) {
    SipStringBuffer *buffer = nullptr;
    TestMemory failing(2);
    ASSERT_EQ(SipSbCreateStringBufferNew(failing.control(), 8, 8, &buffer), 0u);
    add(buffer, "text");
    SipRefString *ref = nullptr;
    EXPECT_EQ(SipSbConvertToRefString(buffer, &ref), kNoMemory);
    EXPECT_EQ(ref, nullptr);
    EXPECT_EQ(SipSbCopyChar(buffer, '!'), 0u);
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, failsForGoodOnceMemoryIsRefused) {
    TestMemory failing(2);
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(failing.control(), 4, 4, &buffer), 0u);
    const SipString text = counted("x");
    EXPECT_EQ(add(buffer, "abc"), 0u);
    EXPECT_EQ(add(buffer, "de"), kNoMemory);
    EXPECT_EQ(SipSbCopyChar(buffer, 'd'), kNoSpace); // though there is room for it
    EXPECT_EQ(SipSbCopyConstString(buffer, "", 0), kNoSpace);
    EXPECT_EQ(SipSbCopyString(buffer, &text), kNoSpace);
    EXPECT_EQ(SipSbCopyString(buffer, nullptr), kNoSpace);
    EXPECT_EQ(SipSbCopyLong(buffer, 1), kNoSpace);
    EXPECT_EQ(failing.requests(), 2u);
    EXPECT_EQ(textOf(buffer), "(failed)");
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, refusesLengthsBeyondThirtyTwoBits) {
    SipStringBuffer *buffer = make(4, 4);
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, "y", UINT32_MAX), kNoSpace);
    EXPECT_EQ(memory.requests(), 1u);
    SipSbReleaseStringBuffer(buffer);

    buffer = make(4, UINT32_MAX);
    EXPECT_EQ(SipSbCopyConstString(buffer, "y", UINT32_MAX), kNoMemory);
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), kNoSpace);
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, anAppendWithoutBytesSticksToo) {
    SipStringBuffer *buffer = make(8, 8);
    EXPECT_EQ(SipSbCopyConstString(buffer, nullptr, 1), kInvalid);
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), kNoSpace);
    SipSbReleaseStringBuffer(buffer);
}

TEST_F(Growable, itsTextIsNotReportedByTheReleaseOfFixedBuffers) {
    SipStringBuffer *buffer = make(4, 4);
    add(buffer, "longer than four");
    uint8_t byte = 0;
    uint8_t *data = &byte;
    uint32_t length = 7;
    SipSbReleaseFixedStringBuffer(buffer, &data, &length);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);
}

TEST(CreateStringBuffer, reportsRefusedMemoryAndBadArguments) {
    const LeakCheck leaks;
    TestMemory failing(1);
    uint8_t bytes[4];
    SipStringBuffer *buffer = nullptr;
    EXPECT_EQ(SipSbCreateStringBufferNew(failing.control(), 8, 8, &buffer), kNoMemory);
    EXPECT_EQ(SipSbCreateFixedStringBuffer(failing.control(), bytes, 4, &buffer), kNoMemory);
    EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, UINT32_MAX, 8, &buffer), kNoMemory);
    EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, UINT32_MAX - 64, 8, &buffer), kNoMemory);
    EXPECT_EQ(SipSbCreateStringBufferNew(nullptr, 8, 8, &buffer), kInvalid);
    EXPECT_EQ(SipSbCreateFixedStringBuffer(nullptr, bytes, 4, &buffer), kInvalid);
    EXPECT_EQ(SipSbCreateFixedStringBuffer(gSipSystemMemCp, nullptr, 4, &buffer), kInvalid);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 8, 8, nullptr), kInvalid);
    EXPECT_EQ(SipSbCreateFixedStringBuffer(gSipSystemMemCp, bytes, 4, nullptr), kInvalid);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(StringBuffer, nullIsReleasedQuietlyAndNotWrittenTo) {
    SipSbReleaseStringBuffer(nullptr);
    SipSbReleaseFixedStringBuffer(nullptr, nullptr, nullptr);
    uint8_t byte = 0;
    uint8_t *data = &byte;
    uint32_t length = 7;
    SipSbReleaseFixedStringBuffer(nullptr, &data, &length);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(length, 0u);

    SipRefString *ref = nullptr;
    EXPECT_EQ(SipSbCopyChar(nullptr, 'x'), kInvalid);
    EXPECT_EQ(SipSbCopyConstString(nullptr, "x", 1), kInvalid);
    EXPECT_EQ(SipSbCopyString(nullptr, nullptr), kInvalid);
    EXPECT_EQ(SipSbCopyLong(nullptr, 1), kInvalid);
    EXPECT_EQ(SipSbConvertToRefString(nullptr, &ref), kInvalid);
}

TEST(StringBuffer, conversionChecksItsTarget) {
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 8, 8, &buffer), 0u);
    EXPECT_EQ(SipSbConvertToRefString(buffer, nullptr), kInvalid);
    SipSbReleaseStringBuffer(buffer);
}

TEST(StringBuffer, livesInABlockAsWell) {
    const LeakCheck leaks;
    {
        TestBlock block(512, 512);
        SipStringBuffer *buffer = nullptr;
        ASSERT_EQ(SipSbCreateStringBufferNew(block.control(), 16, 16, &buffer), 0u);
        for (int i = 0; i < 1000; ++i) {
            ASSERT_EQ(add(buffer, "a=sendrecv\r\n"), 0u);
        }
        EXPECT_EQ(textOf(buffer).size(), 12000u);
        SipSbReleaseStringBuffer(buffer);
    }
    EXPECT_TRUE(leaks.nothingKept());
}

// A fixed buffer over exactly as many bytes as the test names; one byte too far is noticed by
// AddressSanitizer.
class Fixed : public testing::Test {
protected:
    SipStringBuffer *make(uint32_t size) {
        bytes = std::make_unique<uint8_t[]>(size);
        SipStringBuffer *buffer = nullptr;
        EXPECT_EQ(SipSbCreateFixedStringBuffer(gSipSystemMemCp, bytes.get(), size, &buffer), 0u);
        return buffer;
    }
    std::string release(SipStringBuffer *buffer) {
        uint8_t *data = nullptr;
        uint32_t length = 99;
        SipSbReleaseFixedStringBuffer(buffer, &data, &length);
        EXPECT_EQ(data, bytes.get());
        return {reinterpret_cast<char *>(data), length};
    }
    void TearDown() override { EXPECT_TRUE(leaks.nothingKept()); }

    LeakCheck leaks;
    std::unique_ptr<uint8_t[]> bytes;
};

TEST_F(Fixed, takesATextThatFillsItExactly) {
    SipStringBuffer *buffer = make(5);
    EXPECT_EQ(add(buffer, "v=0"), 0u);
    EXPECT_EQ(SipSbCopyChar(buffer, '\r'), 0u);
    EXPECT_EQ(SipSbCopyChar(buffer, '\n'), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, "", 0), 0u);
    EXPECT_EQ(textOf(buffer), "v=0\r\n");
    EXPECT_EQ(release(buffer), "v=0\r\n");
}

TEST_F(Fixed, writesNothingOfATextThatDoesNotFit) {
    SipStringBuffer *buffer = make(4);
    EXPECT_EQ(add(buffer, "v=0"), 0u);
    EXPECT_EQ(add(buffer, "\r\n"), kNoSpace);
    EXPECT_EQ(bytes[3], 0u);
    EXPECT_EQ(release(buffer), "v=0");
}

TEST_F(Fixed, writesNothingOfANumberThatDoesNotFit) {
    SipStringBuffer *buffer = make(9);
    EXPECT_EQ(SipSbCopyLong(buffer, UINT32_MAX), kNoSpace);
    EXPECT_TRUE(isZero(bytes.get(), 9));
    EXPECT_EQ(release(buffer), "");
}

TEST_F(Fixed, failsForGood) {
    SipStringBuffer *buffer = make(4);
    const SipString text = counted("x");
    EXPECT_EQ(add(buffer, "12345"), kNoSpace);
    EXPECT_EQ(add(buffer, "1"), kNoSpace);
    EXPECT_EQ(SipSbCopyChar(buffer, '1'), kNoSpace);
    EXPECT_EQ(SipSbCopyConstString(buffer, "", 0), kNoSpace);
    EXPECT_EQ(SipSbCopyString(buffer, &text), kNoSpace);
    EXPECT_EQ(SipSbCopyString(buffer, nullptr), kNoSpace);
    EXPECT_EQ(SipSbCopyLong(buffer, 1), kNoSpace);
    EXPECT_EQ(textOf(buffer), "(failed)");
    EXPECT_EQ(release(buffer), "");
}

TEST_F(Fixed, refusesLengthsBeyondThirtyTwoBits) {
    SipStringBuffer *buffer = make(4);
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), 0u);
    EXPECT_EQ(SipSbCopyConstString(buffer, "y", UINT32_MAX), kNoSpace);
    EXPECT_EQ(release(buffer), "x");
}

TEST_F(Fixed, mayHaveNoRoomAtAll) {
    SipStringBuffer *buffer = make(0);
    EXPECT_EQ(SipSbCopyConstString(buffer, "", 0), 0u);
    EXPECT_EQ(textOf(buffer), "");
    EXPECT_EQ(SipSbCopyChar(buffer, 'x'), kNoSpace);
    EXPECT_EQ(release(buffer), "");
}

TEST_F(Fixed, isReleasedWithoutAReportToo) {
    SipStringBuffer *buffer = make(4);
    add(buffer, "text");
    SipSbReleaseFixedStringBuffer(buffer, nullptr, nullptr);
    EXPECT_EQ(std::memcmp(bytes.get(), "text", 4), 0); // the caller's, as they were
    EXPECT_TRUE(leaks.nothingKept());

    buffer = make(4);
    add(buffer, "more");
    SipSbReleaseStringBuffer(buffer);
    EXPECT_EQ(std::memcmp(bytes.get(), "more", 4), 0);
    EXPECT_TRUE(leaks.nothingKept());
}

} // namespace
