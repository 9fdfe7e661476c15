// Every request for memory that a copy or a clone makes, refused in turn.
#include "copy/linememory.hpp"
#include "copy/linesamples.hpp"
#include "copy/textfaults.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "sdpline/sdpcopy.h"
#include "support/allocations.hpp"
#include "support/logs.hpp"
#include "support/securefaults.hpp"

namespace {

using namespace dsmtest;
using Texts = std::vector<std::string>;

// A sample's record, to tell whether somebody changed it.
class Witness {
public:
    explicit Witness(const Sample &sample)
        : sample_(sample), bytes_(recordSize(sample.lineType)),
          text_(lookAt(sample.lineType, sample.record).text) {
        std::memcpy(bytes_.data(), sample.record, bytes_.size());
    }

    ~Witness() {
        EXPECT_EQ(std::memcmp(bytes_.data(), sample_.record, bytes_.size()), 0);
        EXPECT_EQ(lookAt(sample_.lineType, sample_.record).text, text_);
    }

    Witness(const Witness &) = delete;
    Witness &operator=(const Witness &) = delete;

private:
    const Sample &sample_;
    std::vector<unsigned char> bytes_;
    std::string text_;
};

alignas(8) unsigned char storage[72];

void fillTarget() {
    std::memset(storage, dsmtest::kRubbish, sizeof storage);
}

TEST(CopyLineFaults, EachRefusedRequestGivesItsOwnCodeAndKeepsNothing) {
    for (const Sample &sample : samples()) {
        for (size_t n = 1; n <= sample.refusals.size(); ++n) {
            SCOPED_TRACE(sample.name + ", request " + std::to_string(n));
            const Witness unchanged(sample);
            LineMemory memory;
            memory.refuse(n);
            fillTarget();
            EXPECT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, storage),
                      sample.refusals[n - 1]);
            EXPECT_EQ(memory.requests(), n) << "it went on after the refusal";
            EXPECT_EQ(memory.live(), 0u);
            EXPECT_TRUE(lookAt(sample.lineType, storage).allocations.empty());
            EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, storage), 0u);
        }
    }
}

TEST(CopyLineFaults, NoOtherRequestsAreMade) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        const Witness unchanged(sample);
        LineMemory memory;
        memory.refuse(sample.refusals.size() + 1);
        fillTarget();
        ASSERT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, storage), 0u);
        EXPECT_EQ(memory.requests(), sample.refusals.size());
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, storage), 0u);
    }
}

TEST(CloneLineFaults, EachRefusedRequestLeavesThePointerAndKeepsNothing) {
    for (const Sample &sample : samples()) {
        for (size_t n = 1; n <= sample.refusals.size() + 1; ++n) {
            SCOPED_TRACE(sample.name + ", request " + std::to_string(n));
            const Witness unchanged(sample);
            LineMemory memory;
            memory.refuse(n);
            void *clone = storage;
            EXPECT_EQ(SdpCloneLine(memory.control(), sample.lineType, sample.record, &clone),
                      n == 1 ? 0x0208a001u : 0x0208c001u);
            EXPECT_EQ(clone, storage);
            EXPECT_EQ(memory.requests(), n);
            EXPECT_EQ(memory.live(), 0u);
        }
    }
}

TEST(CloneLineFaults, InABlockNothingIsLeftOnceItIsReleased) {
    const support::Held before = support::Held::now();
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name);
        SDPMemCp *block = nullptr;
        ASSERT_EQ(SipMmCreateBufMem(64, 64, &block), 0u);
        void *clone = nullptr;
        EXPECT_EQ(SdpCloneLine(block, sample.lineType, sample.record, &clone), 0u);
        EXPECT_EQ(lookAt(sample.lineType, clone).text, lookAt(sample.lineType, sample.record).text);
        SipMmReleaseBufMem(&block);
    }
    EXPECT_TRUE(support::Held::now() == before);
}

// What is logged when request n of copying the sample is refused.
Texts logged(const char *name, size_t n) {
    const Sample &sample = sampleNamed(name);
    LineMemory memory;
    memory.refuse(n);
    support::LogRecorder logs;
    EXPECT_NE(SdpCopyLine(memory.control(), sample.lineType, sample.record, storage), 0u);
    EXPECT_EQ(g_gSipCodePoint, 2u << 16 | logs.entries().back().line);
    return logs.textsWithLines();
}

TEST(CopyLineFaults, LogTheServicesCode) {
    EXPECT_EQ(logged("c= other types", 2), Texts{"3 sdpdsm SdpCopyLine:484 - \"enReturnVal=2\""});
    EXPECT_EQ(logged("m= other", 1), Texts{"3 sdpdsm SdpCopyMediaField:985 - \"ret=2\""});
    EXPECT_EQ(logged("m= other", 3), Texts{"3 sdpdsm SdpCopyMediaField:996 - \"ret=2\""});
    EXPECT_EQ(logged("m= other", 5),
              (Texts{"3 sdpdsm SdpCopyMediaFormat:949 3 \"ulRetVal=2\"",
                     "3 sdpdsm SdpCopyMediaField:1008 - \"ulRetVal=34525185\""}));
    EXPECT_EQ(logged("m= three payloads", 1),
              (Texts{"5 sdpdsm SdpCopyNonOthersMediaFormat:906 1",
                     "3 sdpdsm SdpCopyMediaField:1008 - \"ulRetVal=34480129\""}));
    for (const char *name : {"a= type 1", "a= type 9", "a= type 28", "a= type 29", "a= type 34",
                             "a= type 35", "a= type 38 other"}) {
        EXPECT_EQ(logged(name, 1), Texts{"3 sdpdsm SdpCopyAttribute:811 3 \"ulRetVal=2\""});
    }
    EXPECT_EQ(logged("a= type 34", 3), Texts{"3 sdpdsm SdpCopyAttribute:811 3 \"ulRetVal=2\""});
}

TEST(CloneLineFaults, AreLoggedAfterTheCopys) {
    const Sample &sample = sampleNamed("k=");
    LineMemory memory;
    support::LogRecorder logs;
    void *clone = nullptr;
    memory.refuse(1);
    SdpCloneLine(memory.control(), sample.lineType, sample.record, &clone);
    EXPECT_EQ(logs.textsWithLines(), Texts{"5 sdpdsm SdpCloneLine:551 1"});
    logs.clear();
    memory.refuse(2);
    SdpCloneLine(memory.control(), sample.lineType, sample.record, &clone);
    EXPECT_EQ(logs.textsWithLines(), (Texts{"3 sdpdsm SdpCopyLine:484 - \"enReturnVal=2\"",
                                            "3 sdpdsm SdpCloneLine:562 -"}));
}

TEST(CopyLineFaults, AnAddressOfNoKindIsTheServicesFailure) {
    SDPConnection source = {};
    source.stTptAddr.enTptAddrType = 3;
    LineMemory memory;
    support::LogRecorder logs;
    EXPECT_EQ(SdpCopyLine(memory.control(), SDP_LINE_CONNECTION, &source, storage), 1u);
    EXPECT_EQ(logs.textsWithLines(), Texts{"3 sdpdsm SdpCopyLine:484 - \"enReturnVal=4\""});
}

TEST(ClearLineFaults, AnswerTheServicesCodeAndDoNotKeepARecordFromBeingFreed) {
    LineMemory memory;
    const Sample &sample = sampleNamed("c= IPv4");
    void *clone = nullptr;
    ASSERT_EQ(SdpCloneLine(memory.control(), sample.lineType, sample.record, &clone), 0u);
    static_cast<SDPConnection *>(clone)->stTptAddr.enTptAddrType = 3;
    EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, clone), uint32_t{SIP_OUT_OF_RANGE});
    EXPECT_EQ(SdpFreeLine(memory.control(), sample.lineType, &clone), 0u);
    EXPECT_EQ(clone, nullptr);
    EXPECT_EQ(memory.live(), 0u);
}

// The operations of single records return the codes that a media field replaces by others.
TEST(CopyMediaFormatFaults, HaveCodesOfTheirOwn) {
    LineMemory memory;
    SDPMediaFmt source = otherFormat("wb");
    SDPMediaFmt copy;
    memory.refuse(1);
    EXPECT_EQ(SdpCopyMediaFormat(memory.control(), &source, &copy), 0x020ed001u);
    EXPECT_TRUE(copy.unMediaFmt.strOtherFmts.pcData == nullptr);

    uint32_t number = 8;
    source.enFmtType = SDP_FMT_T120;
    source.unMediaFmt.stRtpPayLoads = {1, &number};
    memory.refuse(1);
    EXPECT_EQ(SdpCopyMediaFormat(memory.control(), &source, &copy), 0x020e2001u);
    EXPECT_TRUE(copy.unMediaFmt.stRtpPayLoads.pulPayLoads == nullptr);
    EXPECT_EQ(copy.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads, 1u);
}

// A stack's string services need not touch their target when they fail. The target must be fit to
// be cleared all the same.
TEST(CopyLineFaults, LeaveNoPointerWhateverTheStringServicesDo) {
    for (const Sample &sample : samples()) {
        const bool byHand =
            sample.lineType == SDP_LINE_ATTRIBUTE ||
            (sample.lineType == SDP_LINE_MEDIA && !sample.refusals.empty() &&
             static_cast<const SDPMediaField *>(sample.record)->stMediaFmt.enFmtType ==
                 SDP_FMT_OTHER);
        if (!byHand || sample.refusals.empty()) {
            continue;
        }
        SCOPED_TRACE(sample.name);
        const Witness unchanged(sample);
        LineMemory memory;
        const NoTexts noTexts(99, 98);
        fillTarget();
        const SDPResult result =
            SdpCopyLine(memory.control(), sample.lineType, sample.record, storage);
        EXPECT_TRUE(result == 99 || result == 98 || sample.lineType == SDP_LINE_MEDIA);
        EXPECT_NE(result, 0u);
        EXPECT_TRUE(lookAt(sample.lineType, storage).allocations.empty());
        EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, storage), 0u);
    }
}

TEST(CopyMediaFormatFaults, LeaveNoTextWhateverTheStringServiceDoes) {
    SDPMediaFmt source = otherFormat("wb");
    LineMemory memory;
    const NoTexts noTexts(99, 0);
    support::LogRecorder logs;
    fillTarget();
    auto &copy = *reinterpret_cast<SDPMediaFmt *>(storage);
    EXPECT_EQ(SdpCopyMediaFormat(memory.control(), &source, &copy), 0x020ed001u);
    EXPECT_TRUE(copy.unMediaFmt.strOtherFmts.pcData == nullptr);
    EXPECT_EQ(logs.textsWithLines(), Texts{"3 sdpdsm SdpCopyMediaFormat:949 3 \"ulRetVal=99\""});
}

TEST(CopyLineFaults, AFailedValueTakesTheNameAway) {
    const Sample &sample = sampleNamed("a= type 34");
    LineMemory memory;
    const SDPAttr &source = *static_cast<const SDPAttr *>(sample.record);
    SDPAttr copy;
    memory.refuse(3);
    EXPECT_EQ(SdpCopyAttribute(memory.control(), &source, &copy), uint32_t{SIP_NO_MEMORY});
    EXPECT_EQ(memory.requests(), 3u);
    EXPECT_TRUE(copy.pstAttrName == nullptr);
    EXPECT_EQ(memory.live(), 0u);
}

// Numbers that could not be copied are reported, and the copy goes on without them.
TEST(CopyMediaFormatFaults, AFailedCopyOfBytesIsReportedAndNoFailure) {
    const Sample &sample = sampleNamed("m= three payloads");
    LineMemory memory;
    support::SecureFaults::reset();
    support::SecureFaults::failAt(1);
    EXPECT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, storage), 0u);
    ASSERT_EQ(support::SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(support::SecureFaults::reports()[0].ex);
    EXPECT_EQ(support::SecureFaults::reports()[0].name, "SdpCopyNonOthersMediaFormat");
    EXPECT_EQ(support::SecureFaults::reports()[0].number, 915u);
    support::SecureFaults::reset();
    EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, storage), 0u);

    EXPECT_EQ(SdpCopyLine(memory.control(), sample.lineType, sample.record, storage), 0u);
    EXPECT_EQ(support::SecureFaults::count(), 1u);
    EXPECT_TRUE(support::SecureFaults::reports().empty()) << "one that succeeds is none";
    EXPECT_EQ(SdpClearLine(memory.control(), sample.lineType, storage), 0u);
}

} // namespace
