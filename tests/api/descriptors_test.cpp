// The descriptors have their documented contents, and the generic services can process them.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "copy/linememory.hpp"
#include "sdpline/sdpdescriptors.h"

namespace {

using dsmtest::LineMemory;
using Members = std::vector<const SipDsmTypeDef *>;

// A copy of the value: the macros would bind a reference, and pointers can be unaligned.
template <class T>
T held(T value) {
    return value;
}

// The size of the numbers, and the count of pointers.
constexpr uint32_t bytes(uint32_t numbers, uint32_t pointers) {
    return numbers + pointers * static_cast<uint32_t>(sizeof(void *));
}

struct Row {
    const char *name;
    const SipDsmTypeDef *def;
    uint32_t size;
    uint32_t kind;
    const void *detail;
};

#define ROW(name, size, kind, detail)                                                              \
    { #name, &name, size, kind, detail }

const Row kRows[] = {
    ROW(g_gstSDPProtoVersionDef, 4, 19, nullptr),
    ROW(g_gstSdpUnConstrainedUInt8Def, 1, 23, nullptr),
    ROW(g_gstSdpUnConstrainedUInt16Def, 2, 23, nullptr),
    ROW(g_gstSdpUnConstrainedUInt32Def, 4, 23, nullptr),
    ROW(g_gstSdpStringDef, bytes(4, 1), 24, nullptr),
    ROW(g_gstSdpPortiPortDef, 4, 8, &g_gstSdpPortConstrainedInt16Def),
    ROW(g_gstSdpUInt8Def, 1, 13, &g_gstSdpIPFieldConstrainedInt8Def),
    ROW(g_gstdpUnConstrainedUInt32PointerDef, bytes(0, 1), 5, &g_gstSdpUnConstrainedUInt32Def),
    ROW(g_gstSDPOriginDef, bytes(24, 6), 2, &g_gstSDPOriginSeqDef),
    ROW(g_gstSDPNetTypeDef, bytes(4, 1), 6, &g_gstSDPNetTypeCPointerDef),
    ROW(g_gstSDPAddrTypeDef, bytes(4, 1), 6, &g_gstSDPAddrTypeCPointerDef),
    ROW(g_gstSDPConnectionDef, bytes(36, 2), 2, &g_gstSDPConnectionSeqDef),
    ROW(g_gstSDPTptAddrDef, 20, 1, &g_gstSDPTptAddrChoiceDef),
    ROW(g_gstSDPTptAddrIPV4Def, 4, 4, &g_gstSdpIPV4SetDef),
    ROW(g_gstSDPTptAddrIPV6Def, 16, 4, &g_gstSdpIPV6SetDef),
    ROW(g_gstSDPKeyDef, bytes(4, 1), 2, &g_gstSDPKeySeqDef),
    ROW(g_gstSDPTimeFieldDef, bytes(8, 1), 2, &g_gstSDPTimeFieldSeqDef),
    ROW(g_gstSDPRepeatFieldSetPointerDef, bytes(0, 1), 5, &g_gstSDPRepeatFieldSetDef),
    ROW(g_gstSDPRepeatFieldSetDef, bytes(4, 1), 3, &g_gstSDPRepeatFieldDef),
    ROW(g_gstSDPRepeatFieldDef, bytes(4, 1), 3, &g_gstSDPTimeUnitDef),
    ROW(g_gstSDPTimeUnitDef, 8, 2, &g_gstSDPTimeUnitSeqDef),
    ROW(g_gstSDPMediaFieldDef, bytes(24, 3), 2, &g_gstSDPMediaFieldSeqDef),
    ROW(g_gstSDPMediaDef, bytes(4, 1), 6, &g_gstSDPMediaCPointerDef),
    ROW(g_gstSDPMediaProtoDef, bytes(4, 1), 6, &g_gstSDPMediaProtoCPointerDef),
    ROW(g_gstSDPMediaFmtDef, bytes(8, 1), 1, &g_gstSDPMediaChoiceDef),
    ROW(g_gstSDPRtpPayLoadsDef, bytes(4, 1), 2, &g_gstSDPRtpPayLoadsSeqDef),
    ROW(g_gstSDPAttrDef, bytes(24, 2), 2, &g_gstSDPAttrSeqDef),
    ROW(g_gstSDPAttrTypeDef, bytes(24, 1), 1, &g_gstSDPAttrUnionChoiceDef),
    ROW(g_gstSDPRtpMapAttrDef, bytes(20, 1), 2, &g_gstSDPRtpMapAttrSeqDef),
    ROW(g_gstSDPSilenceSuppressionDef, bytes(8, 1), 2, &g_gstSDPSilenceSuppressionSeqDef),
    ROW(g_gstSDPIpBcpDef, 8, 2, &g_gstSDPIpBcpSeqDef),
    ROW(g_gstSDPRsrcMgmtStatusDef, bytes(16, 1), 2, &g_gstSDPRsrcMgmtStatusSeqDef),
    ROW(g_gstSDPPreconditionSDef, bytes(4, 1), 6, &g_gstSDPPreconditionCPointerDef),
};

#undef ROW

TEST(Descriptors, HaveTheirSizesKindsAndDetails) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.def->ulSize, row.size);
        EXPECT_EQ(row.def->enKind, row.kind);
        EXPECT_EQ(held(row.def->pDetail), row.detail);
    }
}

template <size_t N>
void expectSequence(const SipDsmSequenceDef &sequence, const SipDsmTypeDef *const (&members)[N],
                    const Members &expected) {
    EXPECT_EQ(sequence.ulNoOfMembers, N);
    EXPECT_EQ(held(sequence.ppstMembers), &members[0]);
    EXPECT_EQ(Members(members, members + N), expected);
}

const SipDsmTypeDef *const kU8 = &g_gstSdpUnConstrainedUInt8Def;
const SipDsmTypeDef *const kU16 = &g_gstSdpUnConstrainedUInt16Def;
const SipDsmTypeDef *const kU32 = &g_gstSdpUnConstrainedUInt32Def;
const SipDsmTypeDef *const kText = &g_gstSdpStringDef;

TEST(Descriptors, SequencesOfTheLinesHaveTheirMembers) {
    expectSequence(g_gstSDPOriginSeqDef, g_gpstSDPOriginSeqElmntDef,
                   {kText, kText, kText, &g_gstSDPNetTypeDef, &g_gstSDPAddrTypeDef, kText});
    expectSequence(g_gstSDPConnectionSeqDef, g_gpstSDPConnectionSeqElmntDef,
                   {&g_gstSDPNetTypeDef, &g_gstSDPAddrTypeDef, &g_gstSDPTptAddrDef, kU32, kU32});
    expectSequence(g_gstSDPKeySeqDef, g_gpstSDPKeySeqElmntDef, {kText});
    expectSequence(g_gstSDPTimeFieldSeqDef, g_gpstSDPTimeFieldSeqElmntDef,
                   {kU32, kU32, &g_gstSDPRepeatFieldSetPointerDef});
    expectSequence(g_gstSDPTimeUnitSeqDef, g_gpstSDPTimeUnitSeqElmntDef, {kU32, kU32});
    expectSequence(g_gstSDPMediaFieldSeqDef, g_gpstSDPMediaFieldSeqElmntDef,
                   {&g_gstSDPMediaDef, &g_gstSdpPortiPortDef, kU32, &g_gstSDPMediaProtoDef,
                    &g_gstSDPMediaFmtDef});
    expectSequence(g_gstSDPRtpPayLoadsSeqDef, g_gpstSDPRtpPayLoadsSeqElmntDef,
                   {kU32, &g_gstdpUnConstrainedUInt32PointerDef});
}

TEST(Descriptors, SequencesOfTheAttributesHaveTheirMembers) {
    expectSequence(g_gstSDPAttrSeqDef, g_gpstSDPAttrSeqElmntDef,
                   {&g_gstSDPAttrTypeDef, &g_gstStringPointerDef});
    expectSequence(g_gstSDPRtpMapAttrSeqDef, g_gpstSDPRtpMapAttrSeqElmntDef,
                   {kU32, kU32, kText, kU32, kU32});
    expectSequence(g_gstSDPSilenceSuppressionSeqDef, g_gpstSDPSilenceSuppressionSeqElmntDef,
                   {kU32});
    expectSequence(g_gstSDPIpBcpSeqDef, g_gpstSDPIpBcpSeqElmntDef, {kU8, kU8, kU16, kU32});
    expectSequence(g_gstSDPRsrcMgmtStatusSeqDef, g_gpstSDPRsrcMgmtStatusSeqElmntDef,
                   {kU8, kU32, kU32, kU32});
}

template <size_t N>
void expectChoice(const SipDsmChoiceDef &choice, uint32_t selectors,
                  const SipDsmTypeDef *const (&alternatives)[N], const Members &expected) {
    EXPECT_EQ(choice.ulReserved, 0u);
    EXPECT_EQ(choice.ulNoOfSelectors, selectors);
    EXPECT_EQ(held(choice.ppstAlternatives), &alternatives[0]);
    EXPECT_EQ(Members(alternatives, alternatives + N), expected);
}

TEST(Descriptors, ChoicesHaveTheirAlternatives) {
    expectChoice(g_gstSDPTptAddrChoiceDef, 3, g_gpstSDPTptAddrUnionDef,
                 {&g_gstHostIPV4Def, &g_gstHostIPV6Def});
    expectChoice(g_gstSDPMediaChoiceDef, 5, g_gpstSDPMediaUnionDef,
                 {&g_gstSDPRtpPayLoadsDef, kText, kText, kText});
    expectChoice(g_gstSDPAttrUnionChoiceDef, 41, g_gpstSDPAttrUnionDef,
                 {&g_gstSDPRtpMapAttrDef, kU32, kU32, kU32, kU32, kU32,
                  &g_gstSDPSilenceSuppressionDef, kText, &g_gstSDPIpBcpDef, kU32});
}

void expectCoded(const SipDsmCPointerDef &coded, uint32_t flag, uint32_t code,
                 const SipDsmTypeDef *pointee) {
    EXPECT_EQ(coded.ulFlag, flag);
    EXPECT_EQ(coded.ulLowest, code);
    EXPECT_EQ(coded.ulHighest, code);
    EXPECT_EQ(held(coded.pstPointee), pointee);
}

TEST(Descriptors, CodedTextsUseThePointerForTheOtherCodeOnly) {
    expectCoded(g_gstSDPNetTypeCPointerDef, 1, 2, &g_gstStringDef);
    expectCoded(g_gstSDPAddrTypeCPointerDef, 1, 3, &g_gstStringDef);
    expectCoded(g_gstSDPMediaCPointerDef, 1, 7, kText);
    expectCoded(g_gstSDPMediaProtoCPointerDef, 1, 7, kText);
    expectCoded(g_gstSDPPreconditionCPointerDef, 0, 1, kText);
}

TEST(Descriptors, RangesAndArraysHaveTheirBounds) {
    EXPECT_EQ(g_gstSdpPortConstrainedInt16Def.ulMinimum, 0u);
    EXPECT_EQ(g_gstSdpPortConstrainedInt16Def.ulMaximum, 65535u);
    EXPECT_EQ(g_gstSdpIPFieldConstrainedInt8Def.ulMinimum, 0u);
    EXPECT_EQ(g_gstSdpIPFieldConstrainedInt8Def.ulMaximum, 255u);
    EXPECT_EQ(g_gstSdpIPV4SetDef.ulNoOfElements, 4u);
    EXPECT_EQ(held(g_gstSdpIPV4SetDef.pstElement), &g_gstSdpUInt8Def);
    EXPECT_EQ(g_gstSdpIPV6SetDef.ulNoOfElements, 16u);
    EXPECT_EQ(held(g_gstSdpIPV6SetDef.pstElement), &g_gstSdpUInt8Def);
}

TEST(LineDescriptors, AreIndexedByTheKindOfLine) {
    const SipDsmTypeDef *const text = &g_gstStringDef;
    const Members expected = {&g_gstSDPProtoVersionDef,
                              &g_gstSDPConnectionDef,
                              &g_gstSDPOriginDef,
                              &g_gstSDPMediaFieldDef,
                              &g_gstSDPAttrDef,
                              &g_gstSDPTimeFieldDef,
                              &g_gstSDPRepeatFieldDef,
                              text,
                              text,
                              text,
                              text,
                              text,
                              text,
                              text,
                              &g_gstSDPKeyDef};
    EXPECT_EQ(Members(std::begin(g_gpstSdpLineDef), std::end(g_gpstSdpLineDef)), expected);
}

TEST(LineDescriptors, HaveTheSizesOfTheRecords) {
    const uint32_t text = bytes(4, 1);
    const std::vector<uint32_t> expected = {
        4,           bytes(36, 2), bytes(24, 6), bytes(24, 3), bytes(24, 2),
        bytes(8, 1), bytes(4, 1),  text,         text,         text,
        text,        text,         text,         text,         text};
    std::vector<uint32_t> sizes;
    for (const SipDsmTypeDef *def : g_gpstSdpLineDef) {
        sizes.push_back(def->ulSize);
    }
    EXPECT_EQ(sizes, expected);
}

TEST(GenericServices, CopyAListWithTheSameCountIntoAFreshArray) {
    SDPTimeUnit units[2] = {{SDP_TIME_DAYS, 7}, {SDP_TIME_HOURS, 1}};
    SDPTimeUnit *slots[2] = {&units[0], &units[1]};
    const SDPRepeatField source = {2, slots};
    LineMemory memory;
    SDPRepeatField copy;
    ASSERT_EQ(SipDsmCopyGeneralField(memory.control(), &source, &copy, &g_gstSDPRepeatFieldDef),
              0u);
    EXPECT_EQ(copy.ulNoOfTimeUnits, 2u);
    EXPECT_EQ(memory.sizeAt(copy.ppstTimeUnits), 2 * sizeof(void *));
    EXPECT_EQ(copy.ppstTimeUnits[1]->enTimeType, uint32_t{SDP_TIME_HOURS});
    EXPECT_EQ(SipDsmClearGeneralField(memory.control(), &copy, &g_gstSDPRepeatFieldDef), 0u);
    EXPECT_EQ(memory.live(), 0u);
}

TEST(GenericServices, KeepANullPointerNull) {
    const SDPTimeField source = {1, 2, nullptr};
    LineMemory memory;
    SDPTimeField copy;
    ASSERT_EQ(SipDsmCopyGeneralField(memory.control(), &source, &copy, &g_gstSDPTimeFieldDef), 0u);
    EXPECT_EQ(held(copy.pstRepeatFieldSet), nullptr);
    EXPECT_EQ(memory.requests(), 0u);
}

TEST(GenericServices, CopyBothKindsOfAddressOctetByOctet) {
    uint8_t source[16];
    for (uint8_t i = 0; i < 16; ++i) {
        source[i] = static_cast<uint8_t>(0xF0 + i);
    }
    LineMemory memory;
    uint8_t copy[16] = {};
    ASSERT_EQ(SipDsmCopyGeneralField(memory.control(), source, copy, &g_gstSDPTptAddrIPV4Def), 0u);
    EXPECT_EQ(std::memcmp(copy, source, 4), 0);
    EXPECT_EQ(copy[4], 0);
    ASSERT_EQ(SipDsmCopyGeneralField(memory.control(), source, copy, &g_gstSDPTptAddrIPV6Def), 0u);
    EXPECT_EQ(std::memcmp(copy, source, 16), 0);
}

TEST(GenericServices, RefuseAPortAbove65535) {
    LineMemory memory;
    uint32_t copy = 0;
    uint32_t port = 65535;
    EXPECT_EQ(SipDsmCopyGeneralField(memory.control(), &port, &copy, &g_gstSdpPortiPortDef), 0u);
    EXPECT_EQ(copy, 65535u);
    port = 65536;
    EXPECT_NE(SipDsmCopyGeneralField(memory.control(), &port, &copy, &g_gstSdpPortiPortDef), 0u);
}

} // namespace
