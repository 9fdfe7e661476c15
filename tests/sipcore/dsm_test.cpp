#include "dsmrecords.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace sipcoretests;

// A filled Everything whose parts exist as long as the sample.
class Sample {
public:
    Sample() {
        for (Inner &inner : inners_) {
            inner = {number_++, counted("inner")};
        }
        firstItems_[0] = &inners_[0];
        firstItems_[1] = nullptr;
        firstItems_[2] = &inners_[1];
        lists_[0] = {3, firstItems_};
        lists_[1] = {0, nullptr};
        listItems_[0] = &lists_[0];
        listItems_[1] = &lists_[1];
        coded_ = counted("other");
        value = {};
        value.version = 0xFFFFFFFF;
        value.byte = 1;
        value.small = 200;
        value.word = 0xABCD;
        value.text = counted("text");
        value.coded = {7, &coded_};
        value.choice.selector = 4;
        value.choice.value.text = counted("chosen");
        value.lists = {2, listItems_};
        value.optional = &inners_[2];
        value.port = 65535;
        value.pair[0] = counted("first");
        value.pair[1] = counted("");
    }

    Everything value;

private:
    uint32_t number_ = 100;
    Inner inners_[3];
    Inner *firstItems_[3];
    InnerList lists_[2];
    InnerList *listItems_[2];
    SipString coded_;
};

void expectSampleCopied(const Everything &copy, const Everything &source) {
    EXPECT_EQ(copy.version, source.version);
    EXPECT_EQ(copy.byte, source.byte);
    EXPECT_EQ(copy.small, source.small);
    EXPECT_EQ(copy.word, source.word);
    EXPECT_EQ(viewOf(copy.text), "text");
    EXPECT_EQ(copy.coded.code, 7u);
    ASSERT_NE(held(copy.coded.text), nullptr);
    EXPECT_NE(held(copy.coded.text), held(source.coded.text));
    EXPECT_EQ(viewOf(*copy.coded.text), "other");
    EXPECT_EQ(copy.choice.selector, 4u);
    EXPECT_EQ(viewOf(copy.choice.value.text), "chosen");
    ASSERT_EQ(copy.lists.count, 2u);
    EXPECT_NE(held(copy.lists.items), held(source.lists.items));
    ASSERT_EQ(copy.lists.items[0]->count, 3u);
    expectInner(copy.lists.items[0]->items[0], source.lists.items[0]->items[0]);
    EXPECT_EQ(held(copy.lists.items[0]->items[1]), nullptr);
    expectInner(copy.lists.items[0]->items[2], source.lists.items[0]->items[2]);
    EXPECT_EQ(copy.lists.items[1]->count, 0u);
    EXPECT_EQ(held(copy.lists.items[1]->items), nullptr);
    expectInner(copy.optional, source.optional);
    EXPECT_EQ(held(copy.absent), nullptr);
    EXPECT_EQ(copy.port, 65535u);
    EXPECT_EQ(viewOf(copy.pair[0]), "first");
    EXPECT_EQ(held(copy.pair[1].pcData), nullptr);
}

TEST(Walker, copiesEveryKindDeeplyAndClearsItAgain) {
    const LeakCheck leaks;
    const Sample sample;
    Everything copy;
    std::memset(&copy, 0xCC, sizeof copy);
    ASSERT_EQ(copyField(&sample.value, &copy, kEverything), 0u);
    expectSampleCopied(copy, sample.value);

    ASSERT_EQ(clearField(&copy, kEverything), 0u);
    EXPECT_TRUE(leaks.nothingKept());
    Everything expected{}; // integers stay, codes and selectors among them
    expected.version = 0xFFFFFFFF;
    expected.byte = 1;
    expected.small = 200;
    expected.word = 0xABCD;
    expected.coded.code = 7;
    expected.choice.selector = 4;
    expected.port = 65535;
    EXPECT_EQ(std::memcmp(&copy, &expected, sizeof copy), 0);
    EXPECT_EQ(clearField(&copy, kEverything), 0u); // once more does no harm
}

TEST(Walker, givesEverythingBackWhicheverRequestFails) {
    const Sample sample;
    uint32_t failAt = 0;
    bool refused = true;
    while (refused) {
        const LeakCheck leaks;
        TestMemory memory(++failAt);
        Everything copy;
        std::memset(&copy, 0xCC, sizeof copy);
        const uint32_t result =
            SipDsmCopyGeneralField(memory.control(), &sample.value, &copy, &kEverything);
        refused = memory.refused();
        EXPECT_EQ(result, refused ? kNoMemory : 0u);
        if (refused) {
            EXPECT_TRUE(isZero(&copy, sizeof copy)) << "request " << failAt;
        } else {
            expectSampleCopied(copy, sample.value);
            SipDsmClearGeneralField(memory.control(), &copy, &kEverything);
        }
        EXPECT_TRUE(leaks.nothingKept()) << "request " << failAt;
    }
    EXPECT_EQ(failAt, 16u); // 15 requests make the whole copy
}

TEST(Walker, undoesTheCopyWhenALaterMemberIsRefused) {
    const LeakCheck leaks;
    Sample sample;
    sample.value.port = 80;
    Everything copy;
    std::memset(&copy, 0xCC, sizeof copy);
    EXPECT_EQ(copyField(&sample.value, &copy, kEverything), kOutOfRange);
    EXPECT_TRUE(isZero(&copy, sizeof copy));
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Walker, worksWhereNothingIsAligned) {
    // Packed records may be at any multiple of 4, their pointers then at odd multiples.
    const LeakCheck leaks;
    const Sample sample;
    alignas(8) uint8_t from[sizeof(Everything) + 4];
    alignas(8) uint8_t to[sizeof(Everything) + 4];
    std::memcpy(from + 4, &sample.value, sizeof(Everything));
    ASSERT_EQ(copyField(from + 4, to + 4, kEverything), 0u);
    Everything copy;
    std::memcpy(&copy, to + 4, sizeof copy);
    expectSampleCopied(copy, sample.value);
    EXPECT_EQ(clearField(to + 4, kEverything), 0u);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(Walker, checksItsArguments) {
    uint32_t source = 1;
    uint32_t target = 2;
    EXPECT_EQ(SipDsmCopyGeneralField(nullptr, &source, &target, &kU32), kInvalid);
    EXPECT_EQ(SipDsmCopyGeneralField(gSipSystemMemCp, nullptr, &target, &kU32), kInvalid);
    EXPECT_EQ(SipDsmCopyGeneralField(gSipSystemMemCp, &source, nullptr, &kU32), kInvalid);
    EXPECT_EQ(SipDsmCopyGeneralField(gSipSystemMemCp, &source, &target, nullptr), kInvalid);
    EXPECT_EQ(copyField(&target, &target, kU32), kInvalid);
    EXPECT_EQ(SipDsmClearGeneralField(nullptr, &target, &kU32), kInvalid);
    EXPECT_EQ(SipDsmClearGeneralField(gSipSystemMemCp, nullptr, &kU32), kInvalid);
    EXPECT_EQ(SipDsmClearGeneralField(gSipSystemMemCp, &target, nullptr), kInvalid);
    EXPECT_EQ(target, 2u);
}

TEST(Walker, refusesDescriptionsThatMakeNoSense) {
    constexpr uint32_t kPointer = sizeof(void *);
    constexpr uint32_t kText = 4 + kPointer; // a list and a code with its text are as large
    const SipDsmTypeDef bad[] = {
        {4, 0, nullptr},
        {4, 7, nullptr},
        {4, 25, &kU32},
        {0, SIP_DSM_UNSIGNED, nullptr},
        {3, SIP_DSM_VERSION, nullptr},
        {kText - 1, SIP_DSM_STRING, nullptr},
        {3, SIP_DSM_RANGED_U32, &kPortRange},
        {4, SIP_DSM_RANGED_U32, nullptr},
        {0, SIP_DSM_RANGED_U8, &kSmallRange},
        {1, SIP_DSM_RANGED_U8, nullptr},
        {kPointer - 1, SIP_DSM_POINTER, &kU32},
        {kPointer, SIP_DSM_POINTER, nullptr},
        {kText - 1, SIP_DSM_LIST, &kU32},
        {kText, SIP_DSM_LIST, nullptr},
        {kText - 1, SIP_DSM_CODED_TEXT, &kOtherCode},
        {kText, SIP_DSM_CODED_TEXT, nullptr},
        {3, SIP_DSM_CHOICE, &kChoiceDetail},
        {20, SIP_DSM_CHOICE, nullptr},
        {0, SIP_DSM_SEQUENCE, &kInnerSequence},
        {16, SIP_DSM_SEQUENCE, nullptr},
        {24, SIP_DSM_SET, nullptr},
    };
    alignas(8) const uint8_t source[32] = {};
    for (const SipDsmTypeDef &def : bad) {
        alignas(8) uint8_t target[32] = {9};
        EXPECT_EQ(copyField(source, target, def), kInvalid) << "row " << &def - bad;
        EXPECT_EQ(clearField(target, def), kInvalid) << "row " << &def - bad;
        EXPECT_EQ(target[0], 9) << "row " << &def - bad;
    }
}

TEST(WalkerDepth, endsADescriptionThatContainsItself) {
    // struct Link { Link *next; }, whose descriptor refers to itself
    struct Link {
        Link *next;
    };
    SipDsmTypeDef link{sizeof(Link), SIP_DSM_POINTER, nullptr};
    link.pDetail = &link;

    const LeakCheck leaks;
    std::vector<Link> chain(33);
    for (size_t length = 1; length <= 32; ++length) { // links after the first
        for (size_t i = 0; i < chain.size(); ++i) {
            chain[i].next = i < length ? &chain[i + 1] : nullptr;
        }
        Link copy{};
        EXPECT_EQ(copyField(&chain[0], &copy, link), length < 32 ? 0u : kInvalid) << length;
        EXPECT_EQ(clearField(&copy, link), 0u);
    }
    chain[32].next = &chain[0]; // a ring
    Link copy{&chain[0]};
    EXPECT_EQ(copyField(&chain[0], &copy, link), kInvalid);
    EXPECT_EQ(held(copy.next), nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

} // namespace
