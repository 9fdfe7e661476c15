// Copy, clone, clear and free of one line, as long as nothing fails but the arguments.
#include "copy/linememory.hpp"
#include "copy/linesamples.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"
#include "support/logs.hpp"

namespace {

using namespace dsmtest;
using Texts = std::vector<std::string>;

// Space for any record, filled with rubbish, at an address that is a multiple of 4 and not of 8:
// all that a packed record asks for.
class RecordSpace {
public:
    RecordSpace() { bytes_.fill(static_cast<unsigned char>(dsmtest::kRubbish)); }

    void *at() { return bytes_.data() + 4; }

    template <class T>
    T &as() {
        return *static_cast<T *>(at());
    }

    bool isZero(size_t size) const { return isAll(size, 0); }
    bool isUntouched(size_t size) const { return isAll(size, dsmtest::kRubbish); }

private:
    bool isAll(size_t size, int byte) const {
        return std::all_of(bytes_.begin() + 4, bytes_.begin() + 4 + static_cast<ptrdiff_t>(size),
                           [byte](unsigned char one) { return one == byte; });
    }

    alignas(8) std::array<unsigned char, 4 + 72> bytes_;
};

// The value of a member, for macros that would bind a reference to it.
template <class T>
T held(T value) {
    return value;
}

void expectOwnedBy(const LineMemory &memory, const Look &copy) {
    for (const void *allocation : copy.allocations) {
        EXPECT_NE(memory.sizeAt(allocation), 0u) << "an allocation that is not the copy's own";
    }
}

TEST(CopyLine, CopiesEveryRecordDeeply) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        LineMemory memory;
        RecordSpace target;
        ASSERT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, target.at()), 0u);
        const Look copy = lookAt(sample.lineType, target.at());
        EXPECT_EQ(copy.text, lookAt(sample.lineType, sample.record).text);
        EXPECT_EQ(memory.live(), copy.allocations.size());
        expectOwnedBy(memory, copy);
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, target.at()), 0u);
    }
}

TEST(CopyLine, AcceptsASourceAtAnyMultipleOfFour) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        LineMemory memory;
        RecordSpace source;
        std::memcpy(source.at(), sample.record, recordSize(sample.lineType));
        RecordSpace target;
        ASSERT_EQ(SdpCopyLine(memory.control(), sample.lineType, source.at(), target.at()), 0u);
        EXPECT_EQ(lookAt(sample.lineType, target.at()).text,
                  lookAt(sample.lineType, sample.record).text);
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, target.at()), 0u);
    }
}

TEST(CopyLine, NeedsNoMemoryForANumber) {
    LineMemory memory;
    const uint32_t version = 4294967295u;
    uint32_t copy = 0;
    EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_VERSION, &version, &copy), 0u);
    EXPECT_EQ(copy, version);
    EXPECT_EQ(memory.requests(), 0u);
}

TEST(CopyLine, TypeZeroAndTypesAboveFortyCopyTheTypeAndNullTheName) {
    for (uint32_t type : {0u, 41u, 0xFFFFFFFFu}) {
        SDPAttr source = {};
        source.ulAttrType = type;
        source.unAttrValue.strValue = textOf("value");
        SipString name = textOf("name");
        source.pstAttrName = &name;
        LineMemory memory;
        RecordSpace target;
        EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_ATTRIBUTE, &source, target.at()), 0u);
        EXPECT_EQ(held(target.as<SDPAttr>().ulAttrType), type);
        EXPECT_EQ(held(target.as<SDPAttr>().pstAttrName), nullptr);
        RecordSpace untouched;
        EXPECT_EQ(std::memcmp(&target.as<SDPAttr>().unAttrValue,
                              &untouched.as<SDPAttr>().unAttrValue, sizeof source.unAttrValue),
                  0);
        EXPECT_EQ(memory.requests(), 0u);
    }
}

TEST(CopyLine, AttributesWithoutValueLeaveTheTargetsValueAlone) {
    for (uint32_t type : {2u, 3u, 4u, 5u, 30u, 31u, 32u, 33u}) {
        SDPAttr source = {};
        source.ulAttrType = type;
        LineMemory memory;
        RecordSpace target;
        EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_ATTRIBUTE, &source, target.at()), 0u);
        EXPECT_EQ(held(target.as<SDPAttr>().ulAttrType), type);
        EXPECT_EQ(target.as<SDPAttr>().unAttrValue.ulValue, 0xA5A5A5A5u);
    }
}

TEST(CopyLine, ANameIsCopiedForTypes34And35Only) {
    SipString name = textOf("name");
    for (uint32_t type = 1; type <= 40; ++type) {
        SCOPED_TRACE(type);
        SDPAttr source = {};
        source.ulAttrType = type;
        source.pstAttrName = &name;
        LineMemory memory;
        SDPAttr copy;
        EXPECT_EQ(SdpCopyAttribute(memory.control(), &source, &copy), 0u);
        EXPECT_EQ(copy.pstAttrName != nullptr, type == 34 || type == 35);
        EXPECT_EQ(SdpClearAttribute(memory.control(), &copy), 0u);
    }
}

TEST(CopyMediaField, TakesAHundredPayloadNumbersAndNotOneMore) {
    uint32_t numbers[101] = {};
    SDPMediaField source = {};
    source.stMediaFmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    source.stMediaFmt.unMediaFmt.stRtpPayLoads = {100, numbers};
    LineMemory memory;
    SDPMediaField copy;
    EXPECT_EQ(SdpCopyMediaField(memory.control(), &source, &copy), 0u);
    EXPECT_EQ(memory.sizeAt(copy.stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads), 400u);
    EXPECT_EQ(SdpClearMediaField(memory.control(), &copy), 0u);

    source.stMediaFmt.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads = 101;
    EXPECT_EQ(SdpCopyMediaField(memory.control(), &source, &copy), 0x020fc001u);
}

TEST(CopyMediaField, ClearsTypeAndProtocolAgainWhenThePayloadsAreRefused) {
    SDPMediaField source = *static_cast<const SDPMediaField *>(sampleNamed("m= other").record);
    uint32_t numbers[101] = {};
    source.stMediaFmt.enFmtType = SDP_FMT_RTP_PAYLOADS;
    source.stMediaFmt.unMediaFmt.stRtpPayLoads = {101, numbers};
    LineMemory memory;
    SDPMediaField copy;
    support::LogRecorder logs;
    EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_MEDIA, &source, &copy), 0x020fc001u);
    EXPECT_EQ(logs.textsWithLines(),
              (Texts{"3 sdpdsm SdpCopyNonOthersMediaFormat:895 0",
                     "3 sdpdsm SdpCopyMediaField:1008 - \"ulRetVal=34471937\""}));
    EXPECT_EQ(held(copy.stMedia.pstrOtherMedia), nullptr);
    EXPECT_EQ(held(copy.stProto.pstrOtherProto), nullptr);
    EXPECT_EQ(memory.requests(), 4u);
    EXPECT_EQ(memory.live(), 0u);
}

TEST(CopyMediaFormat, RefusedPayloadsLeaveTheTargetUntouched) {
    uint32_t number = 0;
    const SDPRtpPayLoads source = {101, &number};
    LineMemory memory;
    RecordSpace target;
    EXPECT_EQ(SdpCopyNonOthersMediaFormat(memory.control(), &source, &target.as<SDPRtpPayLoads>()),
              0x020e0001u);
    EXPECT_TRUE(target.isUntouched(sizeof source));
}

TEST(CopyMediaFormat, KeepsACountWithoutNumbersAndDropsAnArrayWithoutCount) {
    LineMemory memory;
    SDPRtpPayLoads copy;
    SDPRtpPayLoads source = {3, nullptr};
    EXPECT_EQ(SdpCopyNonOthersMediaFormat(memory.control(), &source, &copy), 0u);
    EXPECT_EQ(copy.ulNoOfPayLoads, 3u);
    EXPECT_EQ(held(copy.pulPayLoads), nullptr);

    uint32_t number = 8;
    source = {0, &number};
    EXPECT_EQ(SdpCopyNonOthersMediaFormat(memory.control(), &source, &copy), 0u);
    EXPECT_EQ(copy.ulNoOfPayLoads, 0u);
    EXPECT_EQ(held(copy.pulPayLoads), nullptr);
    EXPECT_EQ(memory.requests(), 0u);
}

TEST(CopyMediaFormat, OnlyTheOtherFormatIsAText) {
    LineMemory memory;
    SDPMediaFmt source = otherFormat("wb");
    SDPMediaFmt copy;
    EXPECT_EQ(SdpCopyMediaFormat(memory.control(), &source, &copy), 0u);
    EXPECT_EQ(memory.sizeAt(copy.unMediaFmt.strOtherFmts.pcData), 2u);
    SipSmClearString(memory.control(), &copy.unMediaFmt.strOtherFmts);

    uint32_t numbers[] = {1, 2};
    for (uint32_t type : {0u, 1u, 2u, 3u, 5u}) {
        source.enFmtType = type;
        source.unMediaFmt.stRtpPayLoads = {2, numbers};
        EXPECT_EQ(SdpCopyMediaFormat(memory.control(), &source, &copy), 0u);
        EXPECT_EQ(copy.enFmtType, type);
        EXPECT_EQ(memory.sizeAt(copy.unMediaFmt.stRtpPayLoads.pulPayLoads), 8u);
        memory.control()->pfnFree(copy.unMediaFmt.stRtpPayLoads.pulPayLoads);
    }
}

TEST(CloneLine, MakesARecordOfTheLinesSizeThatEqualsTheSource) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        LineMemory memory;
        void *clone = nullptr;
        ASSERT_EQ(SdpCloneLine(memory.control(), sample.lineType, sample.record, &clone), 0u);
        EXPECT_EQ(memory.sizeAt(clone), recordSize(sample.lineType));
        const Look copy = lookAt(sample.lineType, clone);
        EXPECT_EQ(copy.text, lookAt(sample.lineType, sample.record).text);
        EXPECT_EQ(memory.live(), 1 + copy.allocations.size());
        expectOwnedBy(memory, copy);
        EXPECT_EQ(SdpFreeLine(memory.control(), sample.lineType, &clone), 0u);
        EXPECT_EQ(clone, nullptr);
        EXPECT_EQ(memory.live(), 0u);
    }
}

TEST(CloneLine, OutlivesTheBlockOfItsSource) {
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    void *inBlock = nullptr;
    const Sample &sample = sampleNamed("t= with r=");
    ASSERT_EQ(SdpCloneLine(block, sample.lineType, sample.record, &inBlock), 0u);
    LineMemory memory;
    void *clone = nullptr;
    ASSERT_EQ(SdpCloneLine(memory.control(), sample.lineType, inBlock, &clone), 0u);
    SipMmReleaseBufMem(&block);
    EXPECT_EQ(lookAt(sample.lineType, clone).text, lookAt(sample.lineType, sample.record).text);
    EXPECT_EQ(SdpFreeLine(memory.control(), sample.lineType, &clone), 0u);
}

TEST(ClearLine, GivesEverythingBackAndMayBeRepeated) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        LineMemory memory;
        RecordSpace target;
        ASSERT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, target.at()), 0u);
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, target.at()), 0u);
        EXPECT_EQ(memory.live(), 0u);
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, target.at()), 0u);
        EXPECT_TRUE(lookAt(sample.lineType, target.at()).allocations.empty());
    }
}

TEST(ClearLine, LeavesMediaLinesAndAttributesAllZero) {
    for (const Sample &sample : samples()) {
        if (sample.lineType != SDP_LINE_MEDIA && sample.lineType != SDP_LINE_ATTRIBUTE) {
            continue;
        }
        SCOPED_TRACE(sample.name);
        LineMemory memory;
        RecordSpace target;
        ASSERT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, target.at()), 0u);
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, target.at()), 0u);
        EXPECT_TRUE(target.isZero(recordSize(sample.lineType)));
    }
}

TEST(ClearLine, GivesBackAPreconditionTextUnderTheOtherCodeOnly) {
    SipString notOwned = textOf("sec");
    SDPAttr attribute = {};
    attribute.ulAttrType = SDP_ATTR_CURR;
    attribute.unAttrValue.stRsrcMgmtStatus.stPrecondition = {SDP_PRECONDITION_QOS, &notOwned};
    LineMemory memory;
    EXPECT_EQ(SdpClearLine(memory.control(), SDP_LINE_ATTRIBUTE, &attribute), 0u);
    EXPECT_EQ(attribute.ulAttrType, 0u);
}

TEST(ClearLine, LeavesPlainNumbersOfTheOtherLines) {
    LineMemory memory;
    uint32_t version = 3;
    EXPECT_EQ(SdpClearLine(memory.control(), SDP_LINE_VERSION, &version), 0u);
    EXPECT_EQ(version, 3u);
    SDPTimeField time = {5, 6, nullptr};
    EXPECT_EQ(SdpClearLine(memory.control(), SDP_LINE_TIME, &time), 0u);
    EXPECT_EQ(time.ulStartTime, 5u);
    EXPECT_EQ(time.ulStopTime, 6u);
}

TEST(FreeLine, AnswersWhatTheMemoryAnswers) {
    LineMemory memory;
    void *clone = nullptr;
    ASSERT_EQ(SdpCloneLine(memory.control(), SDP_LINE_KEY, sampleNamed("k=").record, &clone), 0u);
    LineMemory::answerFree(77);
    EXPECT_EQ(SdpFreeLine(memory.control(), SDP_LINE_KEY, &clone), 77u);
    LineMemory::answerFree(0);
    EXPECT_EQ(clone, nullptr);
}

TEST(FreeLine, OfANullRecordSucceedsAndGivesNothingBack) {
    LineMemory memory; // complains of everything that it did not hand out, null included
    for (uint32_t lineType = 0; lineType < SDP_LINE_COUNT; ++lineType) {
        void *nothing = nullptr;
        support::LogRecorder logs;
        EXPECT_EQ(SdpFreeLine(memory.control(), lineType, &nothing), 0u);
        EXPECT_EQ(nothing, nullptr);
        EXPECT_TRUE(logs.entries().empty());
    }
}

} // namespace
