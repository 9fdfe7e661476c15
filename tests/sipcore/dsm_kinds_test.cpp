#include "dsmrecords.hpp"

#include <gtest/gtest.h>

namespace {

using namespace sipcoretests;

TEST(WalkerIntegers, areCopiedInTheirOwnSize) {
    for (uint32_t size : {1u, 2u, 3u, 4u, 8u, 16u}) {
        const SipDsmTypeDef def{size, SIP_DSM_UNSIGNED, nullptr};
        uint8_t source[17];
        uint8_t target[17];
        std::memset(source, 0x5A, sizeof source);
        std::memset(target, 0xCC, sizeof target);
        EXPECT_EQ(copyField(source, target, def), 0u);
        EXPECT_EQ(std::memcmp(source, target, size), 0);
        EXPECT_EQ(target[size], 0xCC);
        EXPECT_EQ(clearField(target, def), 0u);
        EXPECT_EQ(target[0], 0x5A);
    }
}

TEST(WalkerIntegers, areHeldToTheirRange) {
    for (uint32_t port : {1024u, 1025u, 65535u}) {
        uint32_t copy = 0;
        EXPECT_EQ(copyField(&port, &copy, kPort), 0u);
        EXPECT_EQ(copy, port);
    }
    for (uint32_t port : {0u, 1023u, 65536u, UINT32_MAX}) {
        uint32_t copy = 9;
        EXPECT_EQ(copyField(&port, &copy, kPort), kOutOfRange);
        EXPECT_EQ(copy, 0u);
    }
    for (uint8_t small : {uint8_t{3}, uint8_t{200}}) {
        uint8_t copy = 0;
        EXPECT_EQ(copyField(&small, &copy, kSmall), 0u);
        EXPECT_EQ(copy, small);
    }
    for (uint8_t small : {uint8_t{2}, uint8_t{201}}) {
        uint8_t copy = 9;
        EXPECT_EQ(copyField(&small, &copy, kSmall), kOutOfRange);
        EXPECT_EQ(copy, 0u);
    }
}

TEST(WalkerVersion, isFourBytes) {
    const uint8_t source[5] = {1, 2, 3, 4, 5};
    uint8_t target[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(copyField(source, target, kVersion), 0u);
    EXPECT_EQ(std::memcmp(source, target, 4), 0);
    EXPECT_EQ(target[4], 9);
}

TEST(WalkerStrings, copyLikeTheStringService) {
    const LeakCheck leaks;
    const SipString text = counted("text");
    const SipString hollow{5, nullptr};
    SipString copy{};
    EXPECT_EQ(copyField(&text, &copy, g_gstStringDef), 0u);
    EXPECT_EQ(viewOf(copy), "text");
    EXPECT_EQ(clearField(&copy, g_gstStringDef), 0u);
    EXPECT_EQ(copy.ulLen, 0u);
    EXPECT_EQ(held(copy.pcData), nullptr);
    EXPECT_EQ(copyField(&hollow, &copy, g_gstStringDef), 0u);
    EXPECT_EQ(copy.ulLen, 5u);
    EXPECT_EQ(held(copy.pcData), nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerPointers, carryOneValueOrNothing) {
    const LeakCheck leaks;
    const SipString text = counted("text");
    const SipString *source = &text;
    SipString *copy = nullptr;
    EXPECT_EQ(copyField(&source, &copy, g_gstStringPointerDef), 0u);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(viewOf(*copy), "text");
    EXPECT_EQ(clearField(&copy, g_gstStringPointerDef), 0u);
    EXPECT_EQ(copy, nullptr);

    SipString rubbish{};
    copy = &rubbish;
    source = nullptr;
    EXPECT_EQ(copyField(&source, &copy, g_gstStringPointerDef), 0u);
    EXPECT_EQ(copy, nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerCodedText, usesThePointerWithinItsCodesOnly) {
    const LeakCheck leaks;
    SipString text = counted("text");
    for (uint32_t code : {0u, 6u, 7u, 8u, 9u, UINT32_MAX}) {
        const bool used = code == 7 || code == 8;
        const Coded source{code, &text};
        Coded copy{1, &text};
        EXPECT_EQ(copyField(&source, &copy, kCoded), 0u);
        EXPECT_EQ(copy.code, code);
        EXPECT_EQ(copy.text != nullptr, used) << code;
        EXPECT_NE(held(copy.text), &text);
        EXPECT_EQ(clearField(&copy, kCoded), 0u);
        EXPECT_EQ(copy.code, code);
        EXPECT_EQ(held(copy.text), nullptr);
    }
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerCodedText, withoutATextStaysWithoutOne) {
    const Coded source{7, nullptr};
    SipString text{};
    Coded copy{1, &text};
    EXPECT_EQ(copyField(&source, &copy, kCoded), 0u);
    EXPECT_EQ(copy.code, 7u);
    EXPECT_EQ(held(copy.text), nullptr);
}

TEST(WalkerCodedText, clearForgetsAPointerThatItsCodeDoesNotUse) {
    SipString notOwned = counted("text");
    Coded value{6, &notOwned};
    EXPECT_EQ(clearField(&value, kCoded), 0u);
    EXPECT_EQ(held(value.text), nullptr);
    EXPECT_EQ(viewOf(notOwned), "text");
}

TEST(WalkerCodedText, needsADescriptionOfItsText) {
    const SipDsmCPointerDef detail{1, 7, 7, nullptr};
    const SipDsmTypeDef def{sizeof(Coded), SIP_DSM_CODED_TEXT, &detail};
    SipString text = counted("text");
    const Coded source{7, &text};
    Coded copy{1, &text};
    EXPECT_EQ(copyField(&source, &copy, def), kInvalid);
    EXPECT_EQ(held(copy.text), nullptr);
}

TEST(WalkerChoice, copiesTheChosenAlternative) {
    const LeakCheck leaks;
    Choice source{};
    Choice copy;
    source.selector = 1;
    std::memset(&source.value, 0x7F, sizeof source.value);
    std::memset(&copy, 0xCC, sizeof copy);
    EXPECT_EQ(copyField(&source, &copy, kChoice), 0u);
    EXPECT_EQ(copy.selector, 1u);
    EXPECT_EQ(std::memcmp(copy.value.ipv4, source.value.ipv4, 4), 0);
    EXPECT_TRUE(isZero(copy.value.ipv6 + 4, 12)); // not part of the alternative

    source.selector = 2;
    EXPECT_EQ(copyField(&source, &copy, kChoice), 0u);
    EXPECT_EQ(std::memcmp(&copy, &source, sizeof copy), 0);

    source.selector = 4;
    source.value.text = counted("chosen");
    EXPECT_EQ(copyField(&source, &copy, kChoice), 0u);
    EXPECT_EQ(viewOf(copy.value.text), "chosen");
    EXPECT_EQ(clearField(&copy, kChoice), 0u);
    EXPECT_EQ(copy.selector, 4u);
    EXPECT_EQ(held(copy.value.text.pcData), nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerChoice, selectorZeroHasNothingAfterIt) {
    Choice source{};
    Choice copy;
    std::memset(&source.value, 0x7F, sizeof source.value);
    std::memset(&copy, 0xCC, sizeof copy);
    EXPECT_EQ(copyField(&source, &copy, kChoice), 0u);
    EXPECT_TRUE(isZero(&copy, sizeof copy));
    EXPECT_EQ(clearField(&source, kChoice), 0u);
    EXPECT_EQ(source.value.ipv4[0], 0x7F);
}

TEST(WalkerChoice, aSelectorWithoutAnAlternativeFails) {
    for (uint32_t selector : {3u, 5u, 6u, UINT32_MAX}) {
        Choice source{};
        Choice copy;
        source.selector = selector;
        std::memset(&copy, 0xCC, sizeof copy);
        EXPECT_EQ(copyField(&source, &copy, kChoice), kOutOfRange) << selector;
        EXPECT_TRUE(isZero(&copy, sizeof copy));
        EXPECT_EQ(clearField(&source, kChoice), kOutOfRange) << selector;
    }
}

TEST(WalkerChoice, anAlternativeLargerThanTheUnionFails) {
    const SipDsmTypeDef def{sizeof(Choice) - 1, SIP_DSM_CHOICE, &kChoiceDetail};
    Choice source{};
    Choice copy{};
    source.selector = 2;
    EXPECT_EQ(copyField(&source, &copy, def), kInvalid);
}

TEST(WalkerLists, keepTheirCountInAFreshArray) {
    const LeakCheck leaks;
    Inner items[3] = {{1, counted("one")}, {2, counted("two")}, {3, counted("three")}};
    Inner *array[3] = {&items[0], &items[1], &items[2]};
    const InnerList source{3, array};
    InnerList copy{};
    ASSERT_EQ(copyField(&source, &copy, kInnerList), 0u);
    ASSERT_EQ(copy.count, 3u);
    EXPECT_NE(held(copy.items), array);
    for (uint32_t i = 0; i < 3; ++i) {
        expectInner(copy.items[i], &items[i]);
    }
    EXPECT_EQ(clearField(&copy, kInnerList), 0u);
    EXPECT_EQ(copy.count, 0u);
    EXPECT_EQ(held(copy.items), nullptr);
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerLists, withoutAnArrayOrItemsNeedNoMemory) {
    Inner *array[1] = {nullptr};
    const InnerList sources[] = {{0, nullptr}, {0, array}, {5, nullptr}, {UINT32_MAX, nullptr}};
    for (const InnerList &source : sources) {
        TestMemory memory;
        InnerList copy{9, array};
        EXPECT_EQ(SipDsmCopyGeneralField(memory.control(), &source, &copy, &kInnerList), 0u);
        EXPECT_EQ(copy.count, source.count);
        EXPECT_EQ(held(copy.items), nullptr);
        EXPECT_EQ(memory.requests(), 0u);
        EXPECT_EQ(clearField(&copy, kInnerList), 0u);
        EXPECT_EQ(copy.count, 0u);
    }
}

TEST(WalkerLists, moreSlotsThanARequestCanAskForFail) {
    Inner *array[1] = {nullptr};
    for (uint32_t count : {UINT32_MAX / uint32_t{sizeof(Inner *)} + 1, UINT32_MAX}) {
        TestMemory memory;
        const InnerList source{count, array};
        InnerList copy{9, array};
        EXPECT_EQ(SipDsmCopyGeneralField(memory.control(), &source, &copy, &kInnerList), kNoMemory);
        EXPECT_EQ(copy.count, 0u);
        EXPECT_EQ(held(copy.items), nullptr);
        EXPECT_EQ(memory.requests(), 0u);
    }
}

TEST(WalkerSequences, lieOnTwoAndFourByteEdges) {
    // u8 at 0, u16 at 2, u8 at 4, u32 at 8, u8 at 12
    const SipDsmTypeDef *const members[] = {&kU8, &kU16, &kU8, &kU32, &kU8};
    const SipDsmSequenceDef sequence{5, members};
    const SipDsmTypeDef def{13, SIP_DSM_SEQUENCE, &sequence};
    uint8_t source[14];
    uint8_t target[14];
    std::memset(source, 0x11, sizeof source);
    std::memset(target, 0xCC, sizeof target);
    EXPECT_EQ(copyField(source, target, def), 0u);
    const uint8_t expected[14] = {0x11, 0,    0x11, 0x11, 0x11, 0,    0,
                                  0,    0x11, 0x11, 0x11, 0x11, 0x11, 0xCC};
    EXPECT_EQ(std::memcmp(target, expected, sizeof target), 0);
}

TEST(WalkerSequences, mayDescribeLessThanTheWholeRecord) {
    const LeakCheck leaks;
    const SipDsmTypeDef *const members[] = {&kU8, &kU32, &kU32, &kU32};
    const SipDsmSequenceDef sequence{4, members};
    const SipDsmTypeDef def{24, SIP_DSM_SEQUENCE, &sequence};
    alignas(4) uint8_t source[24];
    alignas(4) uint8_t target[25];
    std::memset(source, 0x22, sizeof source);
    std::memset(target, 0xCC, sizeof target);
    EXPECT_EQ(copyField(source, target, def), 0u);
    EXPECT_EQ(target[0], 0x22);
    EXPECT_TRUE(isZero(target + 1, 3));
    EXPECT_EQ(std::memcmp(target + 4, source + 4, 12), 0);
    EXPECT_TRUE(isZero(target + 16, 8)); // what is not described is not copied
    EXPECT_EQ(target[24], 0xCC);
}

TEST(WalkerSequences, neverReachBeyondTheirSize) {
    constexpr uint32_t kSize = sizeof(SipString) + 8; // the text, a byte, a number at its edge
    const LeakCheck leaks;
    const SipDsmTypeDef *const members[] = {&g_gstStringDef, &kU8, &kU32};
    const SipDsmSequenceDef sequence{3, members};
    const SipDsmTypeDef tooShort{kSize - 1, SIP_DSM_SEQUENCE, &sequence};
    alignas(4) uint8_t source[kSize] = {};
    alignas(4) uint8_t target[kSize];
    const SipString text = counted("text");
    std::memcpy(source, &text, sizeof text);
    std::memset(target, 0xCC, sizeof target);
    EXPECT_EQ(copyField(source, target, tooShort), kInvalid);
    EXPECT_TRUE(isZero(target, kSize - 1));
    EXPECT_EQ(target[kSize - 1], 0xCC);
    EXPECT_TRUE(leaks.nothingKept());

    const SipDsmTypeDef longEnough{kSize, SIP_DSM_SEQUENCE, &sequence};
    EXPECT_EQ(copyField(source, target, longEnough), 0u);
    EXPECT_EQ(clearField(target, tooShort), kInvalid); // yet the string goes
    EXPECT_TRUE(leaks.nothingKept());
}

TEST(WalkerSequences, aMissingMemberFails) {
    const SipDsmTypeDef *const members[] = {&kU32, nullptr};
    const SipDsmSequenceDef sequence{2, members};
    const SipDsmTypeDef def{8, SIP_DSM_SEQUENCE, &sequence};
    const uint32_t source[2] = {1, 2};
    uint32_t target[2] = {3, 4};
    EXPECT_EQ(copyField(source, target, def), kInvalid);
    EXPECT_EQ(clearField(target, def), kInvalid);
}

TEST(WalkerSets, visitEveryElement) {
    const SipDsmSetDef three{3, &kSmall};
    const SipDsmTypeDef def{3, SIP_DSM_SET, &three};
    const uint8_t good[3] = {3, 100, 200};
    const uint8_t bad[3] = {3, 100, 201};
    uint8_t target[4] = {0xCC, 0xCC, 0xCC, 0xCC};
    EXPECT_EQ(copyField(good, target, def), 0u);
    EXPECT_EQ(std::memcmp(good, target, 3), 0);
    EXPECT_EQ(copyField(bad, target, def), kOutOfRange);
    EXPECT_TRUE(isZero(target, 3));
    EXPECT_EQ(target[3], 0xCC);
}

TEST(WalkerSets, neverReachBeyondTheirSize) {
    const SipDsmSetDef details[] = {{4, &kU8}, {UINT32_MAX, &kU16}, {1, &kU32}, {1, nullptr}};
    for (const SipDsmSetDef &detail : details) {
        const SipDsmTypeDef def{3, SIP_DSM_SET, &detail};
        const uint8_t source[4] = {1, 2, 3, 4};
        uint8_t target[4] = {9, 9, 9, 9};
        EXPECT_EQ(copyField(source, target, def), kInvalid);
        EXPECT_EQ(target[3], 9);
        EXPECT_EQ(clearField(target, def), kInvalid);
    }
}

TEST(OwnDescriptors, describeStringsAndHostAddresses) {
    EXPECT_EQ(g_gstStringDef.ulSize, sizeof(SipString));
    EXPECT_EQ(g_gstStringPointerDef.ulSize, sizeof(void *));
    EXPECT_EQ(g_gstHostIPV4Def.ulSize, 4u);
    EXPECT_EQ(g_gstHostIPV6Def.ulSize, 16u);
    uint8_t address[16];
    uint8_t copy[16] = {};
    for (uint8_t i = 0; i < 16; ++i) {
        address[i] = static_cast<uint8_t>(240 + i);
    }
    EXPECT_EQ(copyField(address, copy, g_gstHostIPV4Def), 0u);
    EXPECT_EQ(std::memcmp(address, copy, 4), 0);
    EXPECT_TRUE(isZero(copy + 4, 12));
    EXPECT_EQ(copyField(address, copy, g_gstHostIPV6Def), 0u);
    EXPECT_EQ(std::memcmp(address, copy, 16), 0);
}

} // namespace
