// Records of every kind that the walker knows, with their descriptions.
#pragma once

#include "memcontrols.hpp"

#include <gtest/gtest.h>

namespace sipcoretests {

inline constexpr uint32_t kNoMemory = SIP_NO_MEMORY;
inline constexpr uint32_t kInvalid = SIP_INVALID_ARGUMENT;
inline constexpr uint32_t kOutOfRange = SIP_OUT_OF_RANGE;

inline uint32_t copyField(const void *src, void *dst, const SipDsmTypeDef &def) {
    return SipDsmCopyGeneralField(gSipSystemMemCp, src, dst, &def);
}

inline uint32_t clearField(void *value, const SipDsmTypeDef &def) {
    return SipDsmClearGeneralField(gSipSystemMemCp, value, &def);
}

inline constexpr SipDsmTypeDef kU8{1, SIP_DSM_UNSIGNED, nullptr};
inline constexpr SipDsmTypeDef kU16{2, SIP_DSM_UNSIGNED, nullptr};
inline constexpr SipDsmTypeDef kU32{4, SIP_DSM_UNSIGNED, nullptr};
inline constexpr SipDsmTypeDef kVersion{4, SIP_DSM_VERSION, nullptr};
inline constexpr SipDsmRangeDef kPortRange{1024, 65535};
inline constexpr SipDsmTypeDef kPort{4, SIP_DSM_RANGED_U32, &kPortRange};
inline constexpr SipDsmRangeDef kSmallRange{3, 200};
inline constexpr SipDsmTypeDef kSmall{1, SIP_DSM_RANGED_U8, &kSmallRange};

// A record with one member of every kind; sets, lists and pointers are nested below.
#pragma pack(push, 4)
struct Coded {
    uint32_t code;
    SipString *text;
};
struct Inner {
    uint32_t number;
    SipString text;
};
struct InnerList {
    uint32_t count;
    Inner **items;
};
struct ListOfLists {
    uint32_t count;
    InnerList **items;
};
struct Choice {
    uint32_t selector;
    union {
        uint8_t ipv4[4];
        uint8_t ipv6[16];
        SipString text;
    } value;
};
struct Everything {
    uint32_t version;
    uint8_t byte;
    uint8_t small;
    uint16_t word;
    SipString text;
    Coded coded;
    Choice choice;
    ListOfLists lists;
    Inner *optional;
    Inner *absent;
    uint32_t port;
    SipString pair[2];
};
#pragma pack(pop)

inline const SipDsmTypeDef *const kInnerMembers[] = {&kU32, &g_gstStringDef};
inline constexpr SipDsmSequenceDef kInnerSequence{2, kInnerMembers};
inline constexpr SipDsmTypeDef kInner{sizeof(Inner), SIP_DSM_SEQUENCE, &kInnerSequence};
inline constexpr SipDsmTypeDef kInnerPointer{sizeof(void *), SIP_DSM_POINTER, &kInner};
inline constexpr SipDsmTypeDef kInnerList{sizeof(InnerList), SIP_DSM_LIST, &kInner};
inline constexpr SipDsmTypeDef kListOfLists{sizeof(ListOfLists), SIP_DSM_LIST, &kInnerList};
inline const SipDsmCPointerDef kOtherCode{1, 7, 8, &g_gstStringDef};
inline const SipDsmTypeDef kCoded{sizeof(Coded), SIP_DSM_CODED_TEXT, &kOtherCode};
inline const SipDsmTypeDef *const kAlternatives[] = {&g_gstHostIPV4Def, &g_gstHostIPV6Def, nullptr,
                                                     &g_gstStringDef};
inline constexpr SipDsmChoiceDef kChoiceDetail{0, 5, kAlternatives};
inline constexpr SipDsmTypeDef kChoice{sizeof(Choice), SIP_DSM_CHOICE, &kChoiceDetail};
inline const SipDsmSetDef kPairDetail{2, &g_gstStringDef};
inline constexpr SipDsmTypeDef kPair{2 * sizeof(SipString), SIP_DSM_SET, &kPairDetail};

inline const SipDsmTypeDef *const kEverythingMembers[] = {
    &kVersion, &kU8,          &kSmall,        &kU16,          &g_gstStringDef, &kCoded,
    &kChoice,  &kListOfLists, &kInnerPointer, &kInnerPointer, &kPort,          &kPair};
inline constexpr SipDsmSequenceDef kEverythingSequence{12, kEverythingMembers};
inline constexpr SipDsmTypeDef kEverything{sizeof(Everything), SIP_DSM_SEQUENCE,
                                           &kEverythingSequence};

inline void expectInner(const Inner *copy, const Inner *source) {
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, source);
    EXPECT_EQ(copy->number, source->number);
    EXPECT_EQ(viewOf(copy->text), viewOf(source->text));
    EXPECT_NE(held(copy->text.pcData), held(source->text.pcData));
}

} // namespace sipcoretests
