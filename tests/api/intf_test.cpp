// The entry points for whole bodies: their arguments, their hooks, and the ownership of memory.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "sdpline/sdpline.h"
#include "support/allocations.hpp"
#include "support/appends.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::Allocations;
using support::Appends;
using support::Guarded;
using support::Held;
using support::LogRecorder;
using Texts = std::vector<std::string>;

const std::string kBody = "v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\ns=-\r\nt=0 0\r\n";
const std::string kRefused = "v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\ns=-\r\nx=\r\n";

constexpr SDPResult kRefusedLine = 0x05001866; // after s=, class 102
constexpr SDPResult kRefusedText = 0x05000401; // no text or one too long

// A pointer that no operation has overwritten.
SdpLine *const kUntouched = reinterpret_cast<SdpLine *>(0x10);
SipStringBuffer *const kUntouchedText = reinterpret_cast<SipStringBuffer *>(0x10);

SDPResult decode(const std::string &body, SdpLine **line) {
    const Guarded input(body);
    const SipString text = input.text();
    return SdpLibDecodeSdp(&text, line);
}

SdpLine *decoded(const std::string &body) {
    SdpLine *line = nullptr;
    EXPECT_EQ(decode(body, &line), 0u);
    return line;
}

std::string textOf(SipStringBuffer *buffer) {
    SipRefString *written = nullptr;
    if (SipSbConvertToRefString(buffer, &written) != 0) {
        return "(none)";
    }
    std::string text(SipSmGetDataFromRefString(written), SipSmGetLenFromRefString(written));
    SipSmReleaseRefString(written);
    return text;
}

class Intf : public testing::Test {
protected:
    void SetUp() override {
        Allocations::reset();
        Appends::off();
        SdpSetFnAlloc(nullptr);
        SdpSetFnFree(nullptr);
        held_ = Held::now();
    }

    void TearDown() override {
        Allocations::reset();
        Appends::off();
        EXPECT_EQ(Held::now(), held_) << "something leaked";
    }

    LogRecorder log;

private:
    Held held_ = {};
};

// ---- Decoding

TEST_F(Intf, DecodeGivesABodyThatOwnsItsBlock) {
    SdpLine *line = decoded(kBody);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->stOrigin.strAddress.ulLen, 8u);
    EXPECT_TRUE(line->pstMemCp != nullptr);
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_EQ(line, nullptr);
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(Intf, DecodeLeavesAbsentLinesNull) {
    SdpLine *line = decoded("v=0\no=- 1 1 IN IP4 x\ns=-\n");
    ASSERT_NE(line, nullptr);
    const SdpLine body = *line;
    EXPECT_TRUE(body.pstrSessionInfo == nullptr);
    EXPECT_TRUE(body.pstrUri == nullptr);
    EXPECT_TRUE(body.pstEmailList == nullptr);
    EXPECT_TRUE(body.pstPhoneList == nullptr);
    EXPECT_TRUE(body.pstConnection == nullptr);
    EXPECT_TRUE(body.pstBandwidthList == nullptr);
    EXPECT_TRUE(body.pstrTimeZone == nullptr);
    EXPECT_TRUE(body.pstKey == nullptr);
    EXPECT_TRUE(body.pstAttrList == nullptr);
    EXPECT_EQ(body.stTimeSet.ulNoOfTimeFields, 0u);
    EXPECT_TRUE(body.stTimeSet.ppstTimeFields == nullptr);
    EXPECT_EQ(body.stMediaSet.ulNoOfMediaDescs, 0u);
    EXPECT_TRUE(body.stMediaSet.ppstMediaDescs == nullptr);
    EXPECT_TRUE(body.stOrigin.stNetType.pstrOtherNetType == nullptr);
    EXPECT_TRUE(body.stOrigin.stAddrType.pstrOtherAddrType == nullptr);
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, DecodeKeepsNothingOfTheText) {
    SdpLine *line = decoded("v=0\no=- 1 1 IN IP4 host\ns=name\n"); // the text is gone now
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(std::string(line->strSessionName.pcData, line->strSessionName.ulLen), "name");
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, DecodeReadsTheTextOnly) {
    const Guarded input(kBody);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    ASSERT_EQ(SdpLibDecodeSdp(&text, &line), 0u);
    EXPECT_EQ(std::string(text.pcData, text.ulLen), kBody);
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, DecodeRefusesNullArgumentsAndTouchesNothing) {
    const SipString text = {3, nullptr};
    SdpLine *line = kUntouched;
    SdpSetFnAlloc(SdpLibAllocSdpMem);
    EXPECT_EQ(SdpLibDecodeSdp(nullptr, &line), 0x04023001u);
    EXPECT_EQ(line, kUntouched);
    EXPECT_EQ(SdpLibDecodeSdp(&text, nullptr), 0x04023001u);
    EXPECT_EQ(SdpLibDecodeSdp(nullptr, nullptr), 0x04023001u);
    EXPECT_EQ(log.textsWithLines(), Texts(3, "3 sdpintf SdpLibDecodeSdp:140 0"));
    EXPECT_EQ(SdpGetFnAlloc(), SdpLibAllocSdpMem);
    EXPECT_EQ(Allocations::count(), 0u);
}

TEST_F(Intf, DecodeFailsWithoutABlock) {
    SdpLine *line = kUntouched;
    Allocations::failAt(1);
    EXPECT_EQ(decode(kBody, &line), 0x04026001u);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(log.textsWithLines(), Texts{"3 sdpintf SdpLibDecodeSdp:151 1"});
    EXPECT_EQ(SdpGetFnAlloc(), nullptr) << "the hooks come after the block";
    EXPECT_EQ(SdpGetFnFree(), nullptr);
}

TEST_F(Intf, DecodePassesTheParsersCodeUp) {
    SdpLine *line = kUntouched;
    EXPECT_EQ(decode(kRefused, &line), kRefusedLine);
    EXPECT_EQ(line, nullptr);
    ASSERT_FALSE(log.entries().empty());
    EXPECT_EQ(log.textsWithLines().back(), "3 sdpintf SdpLibDecodeSdp:173 22");
    EXPECT_EQ(g_gSipCodePoint, 4u << 16 | 173u);
}

TEST_F(Intf, DecodeRefusesTextsOfNoOrTooGreatLength) {
    SdpLine *line = kUntouched;
    EXPECT_EQ(decode("", &line), kRefusedText);
    EXPECT_EQ(line, nullptr);
    const SipString noBytes = {5, nullptr};
    line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSdp(&noBytes, &line), kRefusedText);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(decode(kBody + std::string(4094 - kBody.size(), '\n'), &line), kRefusedText);
    const Texts expected = {"3 sdpparser SdpLibParseSdp 0", "3 sdpintf SdpLibDecodeSdp 22"};
    const Texts texts = log.texts();
    ASSERT_EQ(texts.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(texts[i], expected[i % 2]);
    }
}

TEST_F(Intf, DecodeTakesTheGreatestLength) {
    SdpLine *line = decoded(kBody + std::string(4093 - kBody.size(), '\n'));
    EXPECT_NE(line, nullptr);
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, BodiesLiveBesideEachOther) {
    SdpLine *first = decoded("v=0\no=- 1 1 IN IP4 x\ns=first\n");
    SdpLine *second = decoded("v=0\no=- 1 1 IN IP4 x\ns=second\n");
    ASSERT_TRUE(first != nullptr && second != nullptr);
    SdpLibReleaseSdp(&first);
    EXPECT_EQ(std::string(second->strSessionName.pcData, second->strSessionName.ulLen), "second");
    SdpLibReleaseSdp(&second);
}

// ---- Hooks of a decode

TEST_F(Intf, HooksStayAfterASuccessButHaveNoBlock) {
    SdpLine *line = decoded(kBody);
    EXPECT_EQ(SdpGetFnAlloc(), SdpLibAllocSdpMem);
    EXPECT_EQ(SdpGetFnFree(), SdpLibFreeSdpMem);
    EXPECT_EQ(g_mSdpDecodeMemCp, nullptr);
    EXPECT_EQ(SdpLibAllocSdpMem(8), nullptr);
    SdpLibFreeSdpMem(line); // gives nothing back
    EXPECT_EQ(line->stOrigin.strSessionId.ulLen, 1u);
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, HooksGoWithAFailure) {
    SdpLine *line = decoded(kBody);
    SdpLibReleaseSdp(&line);
    ASSERT_EQ(decode(kRefused, &line), kRefusedLine);
    EXPECT_EQ(SdpGetFnAlloc(), nullptr);
    EXPECT_EQ(SdpGetFnFree(), nullptr);
    EXPECT_EQ(g_mSdpDecodeMemCp, nullptr);
}

TEST_F(Intf, HooksOfTheCallerAreReplaced) {
    static bool called;
    called = false;
    SdpSetFnAlloc([](uint32_t) -> void * {
        called = true;
        return nullptr;
    });
    SdpSetFnFree([](void *) { called = true; });
    SdpLine *line = decoded(kBody);
    EXPECT_FALSE(called);
    SdpLibReleaseSdp(&line);
}

struct RecordingMemory {
    SDPMemCp control;
    SDPMemCp *askedThrough;
    uint32_t size;
    void *givenBack;
};

RecordingMemory recording;

TEST_F(Intf, HooksUseTheBlockOfTheDecode) {
    recording = {};
    recording.control.pfnAlloc = [](SDPMemCp *through, uint32_t size) -> void * {
        recording.askedThrough = through;
        recording.size = size;
        return &recording.size;
    };
    recording.control.pfnFree = [](void *memory) -> uint32_t {
        recording.givenBack = memory;
        return 0;
    };
    g_mSdpDecodeMemCp = &recording.control;
    EXPECT_EQ(SdpLibAllocSdpMem(24), &recording.size);
    SdpLibFreeSdpMem(&recording.givenBack);
    g_mSdpDecodeMemCp = nullptr;
    EXPECT_EQ(recording.askedThrough, &recording.control);
    EXPECT_EQ(recording.size, 24u);
    EXPECT_EQ(recording.givenBack, &recording.givenBack);
}

// ---- Bodies in string buffers

class IntfBuffer : public Intf {
protected:
    void SetUp() override {
        Intf::SetUp();
        ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 64, 64, &buffer), 0u);
    }

    void TearDown() override {
        SipSbReleaseStringBuffer(buffer);
        Intf::TearDown();
    }

    void append(const std::string &text) {
        EXPECT_EQ(SipSbCopyConstString(buffer, text.data(), static_cast<uint32_t>(text.size())),
                  0u);
    }

    SipStringBuffer *buffer = nullptr;
};

TEST_F(IntfBuffer, DecodesAndStaysTheCallers) {
    append(kBody);
    SdpLine *line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(buffer, &line), 0u);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->strSessionName.ulLen, 1u);
    SdpLibReleaseSdp(&line);
    append("x");
    EXPECT_EQ(textOf(buffer), kBody + "x");
}

TEST_F(IntfBuffer, RefusesNullArgumentsAndTouchesNothing) {
    SdpLine *line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(nullptr, &line), 0x04033001u);
    EXPECT_EQ(line, kUntouched);
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(buffer, nullptr), 0x04033001u);
    EXPECT_EQ(log.textsWithLines(), Texts(2, "3 sdpintf SdpLibDecodeSipBodyAsSdp:205 0"));
}

// A buffer whose text once did not fit can no longer be read.
TEST_F(IntfBuffer, FailsWhenTheBufferCannotBeConverted) {
    uint8_t room[2];
    SipStringBuffer *full = nullptr;
    ASSERT_EQ(SipSbCreateFixedStringBuffer(gSipSystemMemCp, room, sizeof room, &full), 0u);
    ASSERT_EQ(SipSbCopyConstString(full, "v=0", 3), static_cast<uint32_t>(SIP_NO_SPACE));
    SdpLine *line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(full, &line), 0x04036001u);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(log.textsWithLines(),
              Texts{"3 sdpintf SdpLibDecodeSipBodyAsSdp:215 - \"ulResult=3\""});
    SipSbReleaseFixedStringBuffer(full, nullptr, nullptr);
}

TEST_F(IntfBuffer, PassesTheRefusalOfATextUp) {
    append(kRefused);
    SdpLine *line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(buffer, &line), kRefusedLine);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(log.textsWithLines().back(), "3 sdpintf SdpLibDecodeSdp:173 22");
}

TEST_F(IntfBuffer, RefusesAnEmptyBuffer) {
    SdpLine *line = kUntouched;
    EXPECT_EQ(SdpLibDecodeSipBodyAsSdp(buffer, &line), kRefusedText);
    EXPECT_EQ(line, nullptr);
}

// ---- Creating and releasing

TEST_F(Intf, CreateGivesAnEmptyBodyInItsOwnBlock) {
    SdpLine *line = kUntouched;
    ASSERT_EQ(SdpLibCreateSdp(&line), 0u);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(Allocations::count(), 2u) << "the block and the body";
    SDPMemCp *const memCp = line->pstMemCp;
    ASSERT_NE(memCp, nullptr);
    EXPECT_NE(memCp->pfnAlloc(memCp, 100), nullptr);
    SdpLine empty = {};
    empty.pstMemCp = memCp;
    EXPECT_EQ(std::memcmp(line, &empty, sizeof empty), 0) << "the block's memory comes zeroed";
    EXPECT_EQ(SdpGetFnAlloc(), nullptr) << "no hook is touched";
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, CreateRefusesANullArgument) {
    EXPECT_EQ(SdpLibCreateSdp(nullptr), 0x0403E001u);
    EXPECT_EQ(log.textsWithLines(), Texts{"3 sdpintf SdpLibCreateSdp:250 0"});
}

TEST_F(Intf, CreateFailsWithoutABlockAndGivesItBackWithoutABody) {
    const struct {
        SDPResult result;
        const char *entry;
    } failures[] = {{0x04041001, "3 sdpintf SdpLibCreateSdp:259 1"},
                    {0x04043001, "5 sdpintf SdpLibCreateSdp:269 1"}};
    uint32_t n = 0;
    for (const auto &failure : failures) {
        log.clear();
        SdpLine *line = kUntouched;
        Allocations::failAt(++n);
        EXPECT_EQ(SdpLibCreateSdp(&line), failure.result);
        EXPECT_EQ(line, nullptr);
        EXPECT_EQ(log.textsWithLines(), Texts{failure.entry});
    }
}

TEST_F(Intf, ReleaseClearsThePointerSoThatTwiceIsHarmless) {
    SdpLine *line = decoded(kBody);
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_EQ(line, nullptr);
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_EQ(line, nullptr);
}

TEST_F(Intf, ReleaseLeavesABodyWithoutABlockAlone) {
    SdpLine body = {};
    body.ulProtoVersion = 7;
    SdpLine *line = &body;
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_EQ(line, &body);
    EXPECT_EQ(line->ulProtoVersion, 7u);
    EXPECT_EQ(SdpLibReleaseSdp(nullptr), 0u);
    EXPECT_TRUE(log.entries().empty());
}

// ---- Sizes of blocks

// The heap bytes of a block that needs a second chunk.
uint64_t bytesOfTwoChunks(uint32_t first, uint32_t next) {
    const uint64_t before = Held::now().heapBytes;
    SDPMemCp *memCp = nullptr;
    EXPECT_EQ(SipMmCreateBufMem(first, next, &memCp), 0u);
    EXPECT_NE(memCp->pfnAlloc(memCp, 400), nullptr);
    EXPECT_NE(memCp->pfnAlloc(memCp, 400), nullptr);
    const uint64_t bytes = Held::now().heapBytes - before;
    SipMmReleaseBufMem(&memCp);
    return bytes;
}

TEST_F(Intf, DecodedBodyGrowsInChunksOf512And1032Bytes) {
    const uint64_t before = Held::now().heapBytes;
    SdpLine *line = decoded("v=0\no=- 1 1 IN IP4 x\ns=" + std::string(400, 'x') + "\n");
    EXPECT_EQ(Held::now().heapBytes - before, bytesOfTwoChunks(512, 1032));
    SdpLibReleaseSdp(&line);
}

TEST_F(Intf, CreatedBodyGrowsInChunksOf512Bytes) {
    const uint64_t before = Held::now().heapBytes;
    SdpLine *line = nullptr;
    ASSERT_EQ(SdpLibCreateSdp(&line), 0u);
    SDPMemCp *const memCp = line->pstMemCp;
    EXPECT_NE(memCp->pfnAlloc(memCp, 400), nullptr);
    EXPECT_EQ(Held::now().heapBytes - before, bytesOfTwoChunks(512, 512));
    SdpLibReleaseSdp(&line);
}

// ---- Encoding

char kUser[] = "-";
char kDigit[] = "1";
char kAddress[] = "10.0.0.1";

// The smallest body that can be written, without a block.
SdpLine smallBody() {
    SdpLine body = {};
    body.stOrigin.strUserName = {1, kUser};
    body.stOrigin.strSessionId = {1, kDigit};
    body.stOrigin.strSessionVersion = {1, kDigit};
    body.stOrigin.stNetType.enNetType = SDP_NETTYPE_IN;
    body.stOrigin.stAddrType.enAddrType = SDP_ADDRTYPE_IP4;
    body.stOrigin.strAddress = {8, kAddress};
    body.strSessionName = {1, kUser};
    return body;
}

TEST_F(Intf, EncodeGivesABufferOfTheCallers) {
    SdpLine body = smallBody();
    SipStringBuffer *text = kUntouchedText;
    ASSERT_EQ(SdpLibEncodeSdp(&body, &text), 0u);
    EXPECT_EQ(textOf(text), kBody);
    SipSbReleaseStringBuffer(text);
}

TEST_F(Intf, EncodeRefusesNullArgumentsAndTouchesNothing) {
    SdpLine body = smallBody();
    SipStringBuffer *text = kUntouchedText;
    EXPECT_EQ(SdpLibEncodeSdp(nullptr, &text), 0x0404C001u);
    EXPECT_EQ(text, kUntouchedText);
    EXPECT_EQ(SdpLibEncodeSdp(&body, nullptr), 0x0404C001u);
    EXPECT_EQ(log.textsWithLines(), Texts(2, "3 sdpintf SdpLibEncodeSdp:305 0"));
}

TEST_F(Intf, EncodePassesUpWhatTheStringBufferServiceAnswers) {
    SDPMemCp exhausted = {nullptr, [](SDPMemCp *, uint32_t) -> void * { return nullptr; },
                          [](void *) -> uint32_t { return 0; }};
    SDPMemCp *const heap = gSipSystemMemCp;
    SdpLine body = smallBody();
    SipStringBuffer *text = kUntouchedText;
    gSipSystemMemCp = &exhausted;
    const SDPResult result = SdpLibEncodeSdp(&body, &text);
    gSipSystemMemCp = heap;
    EXPECT_EQ(result, static_cast<uint32_t>(SIP_NO_MEMORY));
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(log.textsWithLines(), Texts{"3 sdpintf SdpLibEncodeSdp:315 1"});
}

TEST_F(Intf, EncodeGivesTheBufferBackWhenTheEncoderFails) {
    SdpLine body = smallBody();
    SipStringBuffer *text = kUntouchedText;
    Appends::reset();
    Appends::failAt(3);
    EXPECT_EQ(SdpLibEncodeSdp(&body, &text), 0x03040068u); // the version's number
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(log.textsWithLines().back(), "3 sdpintf SdpLibEncodeSdp:324 21");
}

TEST_F(Intf, EncodeFailsForACodeThatHasNoText) {
    SdpLine body = smallBody();
    body.stOrigin.stNetType.enNetType = 9;
    SipStringBuffer *text = kUntouchedText;
    EXPECT_EQ(SdpLibEncodeSdp(&body, &text), 0x03042068u);
    EXPECT_EQ(text, nullptr);
}

TEST_F(Intf, EncodeOnlyReadsABody) {
    SdpLine body = smallBody();
    const SdpLine before = body;
    SipStringBuffer *text = nullptr;
    ASSERT_EQ(SdpLibEncodeSdp(&body, &text), 0u);
    SipSbReleaseStringBuffer(text);
    EXPECT_EQ(std::memcmp(&body, &before, sizeof body), 0);
}

// ---- A body of the model

// r= times without a unit are written in seconds, and a c= line without a TTL has none.
TEST_F(Intf, RecordsHoldWhatTheLinesSay) {
    SdpLine *line = decoded("v=0\no=- 1 1 IN IP4 x\ns=-\nc=IN IP4 1.2.3.4\nt=0 0\n"
                            "r=7d 1h 0 25h\na=foo:bar\na=foo\nm=audio 49170 RTP/AVP 0 8 101\n");
    ASSERT_NE(line, nullptr);
    const SDPConnection connection = *line->pstConnection;
    EXPECT_EQ(connection.ulTtl, 0xFFFFFFFFu);
    EXPECT_EQ(connection.ulNoOfAddrs, 0xFFFFFFFFu);
    const SDPRepeatField repeat =
        *line->stTimeSet.ppstTimeFields[0]->pstRepeatFieldSet->ppstRepeatFields[0];
    ASSERT_EQ(repeat.ulNoOfTimeUnits, 4u);
    const uint32_t types[] = {1, 2, 4, 2};
    const uint32_t values[] = {7, 1, 0, 25};
    for (uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(repeat.ppstTimeUnits[i]->enTimeType, types[i]);
        EXPECT_EQ(repeat.ppstTimeUnits[i]->ulTimeValue, values[i]);
    }
    ASSERT_EQ(line->pstAttrList->ulNoOfAttrs, 2u);
    const SDPAttr valued = *line->pstAttrList->ppstAttrs[0];
    const SDPAttr bare = *line->pstAttrList->ppstAttrs[1];
    EXPECT_EQ(valued.ulAttrType, 34u);
    EXPECT_EQ(std::string(valued.pstAttrName->pcData, valued.pstAttrName->ulLen), "foo");
    EXPECT_EQ(valued.unAttrValue.strValue.ulLen, 3u);
    EXPECT_EQ(bare.ulAttrType, 35u);
    const SDPMediaFmt formats = line->stMediaSet.ppstMediaDescs[0]->stMediaField.stMediaFmt;
    EXPECT_EQ(formats.enFmtType, 1u);
    const SDPRtpPayLoads payLoads = formats.unMediaFmt.stRtpPayLoads;
    ASSERT_EQ(payLoads.ulNoOfPayLoads, 3u);
    EXPECT_EQ(payLoads.pulPayLoads[0], 0u);
    EXPECT_EQ(payLoads.pulPayLoads[1], 8u);
    EXPECT_EQ(payLoads.pulPayLoads[2], 101u);
    SdpLibReleaseSdp(&line);
}

} // namespace
