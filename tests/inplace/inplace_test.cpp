// The work that the library does itself has the same results as calls of libsipcore's services:
// every case, random bodies and damaged ones are decoded and written in both ways.
#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "checks/checks.hpp"
#include "inplace/manylines.hpp"
#include "output/tree.hpp"
#include "sdpline/sdpinternals.h"
#include "sdpline/sdpline.h"
#include "services/allocation.hpp"
#include "services/builtin.hpp"
#include "support/bodies.hpp"
#include "support/cases.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::Body;

// All results of a text; equal when every part is equal.
struct Outcome {
    SDPResult result = 0;
    std::string place;
    std::string lexer; // what its getters show afterwards
    std::vector<std::string> logs;
    std::string tree;
    std::string text;
    std::vector<std::string> lines;
    std::vector<std::string> serialized; // into room for 0, 1, 2 ... bytes

    bool operator==(const Outcome &) const = default;
};

std::string placeOfFailure() {
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    return std::to_string(failure.ulLine) + ':' + std::to_string(failure.ulColumn) + ' ' +
           failure.pcCheck;
}

std::string lexerState() {
    std::string state = sdpGetThrowAwayBuffer();
    for (const uint32_t value : {sdpGetLexerContext(), LA(), sdpGetStartToken(), sdpGetEndToken(),
                                 sdpGetEnd(), sdpGetIndex(), uint32_t{sdpGetLastChar()}}) {
        state += ' ' + std::to_string(value);
    }
    return state;
}

// All bytes of the caller, including those that are not written.
std::string serialized(SdpLine &body, uint32_t room) {
    std::string bytes(room, '#');
    uint32_t length = ~0u;
    const SDPResult result =
        SdpLibSerializeSdp(&body, reinterpret_cast<uint8_t *>(bytes.data()), room, &length);
    return std::to_string(result) + ' ' + std::to_string(length) + ' ' + bytes;
}

std::vector<std::string> singleLines(SdpLine &body) {
    std::vector<std::string> lines;
    const auto write = [&](uint32_t type, void *record) {
        for (uint32_t prefixed : {0u, 1u}) {
            SipRefString *text = nullptr;
            const SDPResult result = SdpLibEncodeSdpLine(&prefixed, type, record, &text);
            lines.push_back(std::to_string(result));
            if (text != nullptr) {
                lines.back().append(SipSmGetDataFromRefString(text),
                                    SipSmGetLenFromRefString(text));
                SipSmReleaseRefString(text);
            }
        }
    };
    write(SDP_LINE_VERSION, &body.ulProtoVersion);
    write(SDP_LINE_ORIGIN, &body.stOrigin);
    write(SDP_LINE_NAME, &body.strSessionName);
    for (uint32_t i = 0; i < body.stMediaSet.ulNoOfMediaDescs; ++i) {
        SDPMediaDesc &media = *body.stMediaSet.ppstMediaDescs[i];
        write(SDP_LINE_MEDIA, &media.stMediaField);
        for (uint32_t k = 0; media.pstAttrList != nullptr && k < media.pstAttrList->ulNoOfAttrs;
             ++k) {
            write(SDP_LINE_ATTRIBUTE, media.pstAttrList->ppstAttrs[k]);
        }
    }
    return lines;
}

Outcome outcomeOf(const std::string &bytes, uint32_t roomStep) {
    support::LogRecorder log;
    const support::Guarded input(bytes);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    Outcome outcome;
    outcome.result = SdpLibDecodeSdp(&text, &line);
    outcome.lexer = lexerState();
    const Body body(line);
    if (body == nullptr) {
        outcome.place = placeOfFailure();
    } else {
        outcome.tree = cli::describeTree(*body);
        outcome.text = support::encoded(*body);
        outcome.lines = singleLines(*body);
        for (size_t room = 1; room <= outcome.text.size() + 1; room += roomStep) {
            outcome.serialized.push_back(serialized(*body, static_cast<uint32_t>(room)));
        }
        outcome.tree += cli::describeTree(*body); // encoding fills profiles in
    }
    outcome.logs = log.textsWithLines();
    return outcome;
}

void expectTheSame(const std::string &bytes, uint32_t roomStep) {
    const Outcome inPlace = outcomeOf(bytes, roomStep);
    const sdpline::EveryServiceCalled everyService;
    const Outcome called = outcomeOf(bytes, roomStep);
    EXPECT_EQ(called.result, inPlace.result) << support::readable(bytes);
    EXPECT_TRUE(called == inPlace) << support::readable(bytes);
}

// This program must replace no service: otherwise the tests would compare calls with calls.
TEST(InPlace, isWhatAProgramOfTheLibrariesAloneGets) {
    EXPECT_FALSE(sdpline::seesAppends());
    EXPECT_FALSE(sdpline::seesCopies());
    EXPECT_FALSE(sdpline::seesFills());
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    EXPECT_TRUE(sdpline::builtin.ownsBlock(*block));
    SipMmReleaseBufMem(&block);
}

TEST(InPlace, givesWhatTheCallsGiveForEveryCase) {
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        const support::Configured configured(current);
        SCOPED_TRACE(current.file + ": " + current.title);
        expectTheSame(current.body, current.body.size() < 400 ? 1 : 97);
    }
}

TEST(InPlace, givesWhatTheCallsGiveForBodiesMadeByChance) {
    std::mt19937 engine(20261121);
    for (int i = 0; i < 1500; ++i) {
        const auto below = [&](uint32_t bound) { return static_cast<uint32_t>(engine() % bound); };
        const support::Configured configured(SDP_T38_STYLE_FLAG + below(3), below(2),
                                             SDP_LINE_END_CRLF + below(3));
        const std::string body = support::generateBody(engine);
        expectTheSame(body, 211);
        expectTheSame(support::damage(body, engine), 211);
    }
}

// A line of most kinds, with other line ends.
std::string withLineEnds(std::string_view lineEnd) {
    std::string text;
    for (const char byte : kManyLines) {
        if (byte == '\n') {
            text += lineEnd;
        } else if (byte != '\r') {
            text += byte;
        }
    }
    return text;
}

TEST(InPlace, endsLinesOfATextAsTheCallsDo) {
    for (const std::string_view lineEnd :
         {"\n", "\r\n", "\n  ", "\r\n ", "\r", "\r\r\n", "\n\r\n", "\r\n\t", " \r\n", "\n\r"}) {
        expectTheSame(withLineEnds(lineEnd), 211);
    }
}

// At each offset one byte is replaced or inserted; and the body is cut off there.
TEST(InPlace, readsAnyByteAtAnyPlaceAsTheCallsDo) {
    for (const std::string &text : {kManyLines, withLineEnds("\n")}) {
        for (size_t at = 0; at < text.size(); ++at) {
            for (const char byte : {'\r', '\n', '\0', ' ', '\t', 'x'}) {
                std::string other = text;
                other[at] = byte;
                expectTheSame(other, 997);
                expectTheSame(other.insert(at, 1, byte), 997);
            }
        }
    }
    for (size_t size = 1; size < kManyLines.size(); ++size) {
        expectTheSame(kManyLines.substr(0, size), 997);
    }
}

// The codes of that body whose writer refuses a code that has no text, and the count of payloads.
std::vector<uint32_t *> codesOf(SdpLine &body) {
    SDPMediaDesc &media = *body.stMediaSet.ppstMediaDescs[0];
    SDPAttr *const *const attrs = media.pstAttrList->ppstAttrs;
    SDPRsrcMgmtStatus &status = attrs[1]->unAttrValue.stRsrcMgmtStatus;
    SDPTimeField &time = *body.stTimeSet.ppstTimeFields[0];
    return {&body.stOrigin.stNetType.enNetType,
            &body.stOrigin.stAddrType.enAddrType,
            &body.pstConnection->stNetType.enNetType,
            &body.pstConnection->stAddrType.enAddrType,
            &body.pstConnection->stTptAddr.enTptAddrType,
            &time.pstRepeatFieldSet->ppstRepeatFields[0]->ppstTimeUnits[1]->enTimeType,
            &media.stMediaField.stMedia.enMediaType,
            &media.stMediaField.stProto.enProto,
            &media.stMediaField.stMediaFmt.enFmtType,
            &attrs[0]->ulAttrType,
            &status.enStrengthTag,
            &status.enStatusType,
            &status.enDirTag,
            &attrs[2]->unAttrValue.stIpBcp.ucType,
            &attrs[3]->unAttrValue.enT120Mode};
}

// Records that no text leads to: every writer stops at the same position in both ways.
TEST(InPlace, stopsAtCodesWithoutATextAsTheCallsDo) {
    const auto outcome = [&](uint32_t spoiled) {
        support::LogRecorder log;
        const Body body = support::decoded(kManyLines);
        const auto codes = codesOf(*body);
        if (spoiled == codes.size()) {
            return std::string("all");
        }
        *codes[spoiled] = 99;
        std::string text = serialized(*body, 1000);
        for (const std::string &entry : log.textsWithLines()) {
            text += '\n' + entry;
        }
        return text;
    };
    for (uint32_t spoiled = 0; outcome(spoiled) != "all"; ++spoiled) {
        const std::string inPlace = outcome(spoiled);
        const sdpline::EveryServiceCalled everyService;
        EXPECT_EQ(outcome(spoiled), inPlace) << spoiled;
    }
}

// The text of a body in buffers of 0, 1, 2 ... bytes, and in buffers that grow.
std::vector<std::string> textsOf(SdpLine &body) {
    std::vector<std::string> texts;
    constexpr uint32_t kMost = 2000;
    for (uint32_t room = 1; room <= kMost; ++room) {
        texts.push_back(serialized(body, room));
    }
    for (const uint32_t first : {0u, 1u, 95u, 96u, 97u, 300u, kMost}) {
        SDPMemCp *block = nullptr;
        EXPECT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
        for (SDPMemCp *memCp : {gSipSystemMemCp, block}) {
            SipStringBuffer *buffer = nullptr;
            EXPECT_EQ(SipSbCreateStringBufferNew(memCp, first, 1, &buffer), 0u);
            texts.push_back(std::to_string(SdpLibEncodeSdpInt(&body, buffer)));
            SipRefString *reference = nullptr;
            if (SipSbConvertToRefString(buffer, &reference) == 0) {
                texts.back().append(SipSmGetDataFromRefString(reference),
                                    SipSmGetLenFromRefString(reference));
                SipSmReleaseRefString(reference);
            }
            SipSbReleaseStringBuffer(buffer);
        }
        SipMmReleaseBufMem(&block);
    }
    return texts;
}

void expectTheSameTexts(SdpLine &body) {
    const auto inPlace = textsOf(body);
    const sdpline::EveryServiceCalled everyService;
    EXPECT_TRUE(textsOf(body) == inPlace);
}

constexpr uint32_t kMostNumber = 4294967294; // one more is "not given" in c=

// The longest numbers and words in every field.
const std::string kLongestLines =
    "v=0\r\no=- 1 2 IN IP4 h\r\ns=-\r\nc=IN IP6 FF02:3:4:5:6:7:8:9\r\nt=1 2\r\n"
    "r=7d 1h 0 25h 1 2 3 4 5 6\r\nm=application 1/2 RTP/SAVP 0 8 9\r\na=rtpmap:0 PCMU/8000/2\r\n"
    "a=T38FaxTranscodingJBIG\r\na=T38FaxRateManagement:transferredTCF\r\n"
    "a=T38FaxMaxDatagram:1\r\na=des:qos mandatory remote sendrecv\r\na=ipbcp:1 Confused\r\n"
    "a=ecan:fb off x\r\nm=image 1/2 udptl t38\r\n";

TEST(InPlace, writesTheLongestLinesAsTheCallsDo) {
    const Body body = support::decoded(kLongestLines);
    body->ulProtoVersion = kMostNumber;
    body->pstConnection->ulTtl = body->pstConnection->ulNoOfAddrs = kMostNumber;
    SDPTimeField &time = *body->stTimeSet.ppstTimeFields[0];
    time.ulStartTime = time.ulStopTime = kMostNumber;
    const SDPRepeatField &repeat = *time.pstRepeatFieldSet->ppstRepeatFields[0];
    for (uint32_t i = 0; i < repeat.ulNoOfTimeUnits; ++i) {
        repeat.ppstTimeUnits[i]->ulTimeValue = kMostNumber;
    }
    SDPMediaDesc &media = *body->stMediaSet.ppstMediaDescs[0];
    SDPMediaField &field = media.stMediaField;
    field.ulPort = field.ulNoOfPorts = kMostNumber;
    std::vector<uint32_t> payloads(SDP_MAX_PAYLOADS, kMostNumber);
    field.stMediaFmt.unMediaFmt.stRtpPayLoads = {SDP_MAX_PAYLOADS, payloads.data()};
    SDPAttr *const *const attrs = media.pstAttrList->ppstAttrs;
    SDPRtpMapAttr &rtpMap = attrs[0]->unAttrValue.stRtpMap;
    rtpMap.ulPayloadType = rtpMap.ulClockRate = rtpMap.ulEncodingParams = kMostNumber;
    attrs[1]->unAttrValue.ulValue = attrs[3]->unAttrValue.ulValue = kMostNumber;
    for (const uint32_t style : {SDP_T38_STYLE_FLAG, SDP_T38_STYLE_VALUE}) {
        const support::Configured configured(style, 0, SDP_LINE_END_CRLF);
        expectTheSameTexts(*body);
    }
}

// A name, a text or a word that is null, and one that is longer than any buffer: the rest of its
// line is the same.
TEST(InPlace, writesTextsThatAreNotThereAsTheCallsDo) {
    const std::string text = kManyLines + "a=name:value\r\na=other\r\na=fmtp:0 1\r\n";
    const SipString absent = {7, nullptr};
    const SipString huge = {0xFFFFFF00, const_cast<char *>("x")};
    for (const SipString &spoiled : {absent, huge}) {
        for (uint32_t which = 0; which < 8; ++which) {
            const Body body = support::decoded(text);
            SDPAttr *const *const attrs =
                body->stMediaSet.ppstMediaDescs[0]->pstAttrList->ppstAttrs;
            SipString *const texts[] = {&body->stOrigin.strUserName,
                                        &body->strSessionName,
                                        &attrs[0]->unAttrValue.stRtpMap.strEncodingName,
                                        attrs[4]->pstAttrName,
                                        &attrs[4]->unAttrValue.strValue,
                                        attrs[5]->pstAttrName,
                                        &attrs[6]->unAttrValue.strValue};
            if (which < std::size(texts)) {
                *texts[which] = spoiled;
            } else {
                attrs[4]->pstAttrName = nullptr;
            }
            SCOPED_TRACE(which);
            expectTheSameTexts(*body);
        }
    }
}

TEST(InPlace, writesManyLinesWithoutATextAsTheCallsDo) {
    SipString absent = {7, nullptr};
    std::vector<SipString *> items(300, &absent);
    items[200] = nullptr;
    SDPStringList list = {300, items.data()};
    const Body body = support::decoded(kManyLines);
    body->pstEmailList = &list;
    expectTheSameTexts(*body);
    body->pstEmailList = nullptr;
}

// With one byte or two it is written in place, with any other length by the services.
TEST(InPlace, endsLinesAsTheCallsDo) {
    const SipString *const before = g_gpstSdpCrlfCfg;
    const Body body = support::decoded(kManyLines);
    for (const SipString &lineEnd :
         {SipString{1, const_cast<char *>("\n")}, SipString{3, const_cast<char *>("\r\r\n")},
          SipString{0, const_cast<char *>("")}, SipString{2, nullptr}}) {
        g_gpstSdpCrlfCfg = &lineEnd;
        expectTheSameTexts(*body);
    }
    g_gpstSdpCrlfCfg = before;
}

// After each t= line that cannot be written the next one is tried, whatever their number.
TEST(InPlace, triesEachTimeFieldAsTheCallsDo) {
    const Body body = support::decoded(kManyLines);
    SDPTimeField &time = *body->stTimeSet.ppstTimeFields[0];
    time.pstRepeatFieldSet->ppstRepeatFields[0]->ppstTimeUnits[1]->enTimeType = 99;
    std::vector<SDPTimeField *> fields(50, &time);
    body->stTimeSet = {50, fields.data()};
    expectTheSameTexts(*body);
}

// The hook that a test has set, and the buffer that it appends to.
class LogHook {
public:
    using Action = void (*)();

    explicit LogHook(Action action) {
        action_ = action;
        g_gpfnSipLmLogHndlr = hook;
    }
    ~LogHook() { g_gpfnSipLmLogHndlr = nullptr; }
    LogHook(const LogHook &) = delete;
    LogHook &operator=(const LogHook &) = delete;

private:
    static void hook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                     const char *, ...) {
        action_();
    }

    static inline Action action_;
};

SipStringBuffer *written = nullptr;

// The text of a body with a code spoiled, and with what the log hook appends to the buffer.
std::string textWithEntries(uint32_t spoiled) {
    const Body body = support::decoded(kManyLines);
    const auto codes = codesOf(*body);
    if (spoiled == codes.size()) {
        return "all";
    }
    *codes[spoiled] = 99;
    EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 16, 16, &written), 0u);
    const LogHook hook([] { SipSbCopyConstString(written, "<a text that takes room>", 24); });
    std::string text = std::to_string(SdpLibEncodeSdpInt(body.get(), written)) + ' ';
    SipRefString *reference = nullptr;
    EXPECT_EQ(SipSbConvertToRefString(written, &reference), 0u);
    text.append(SipSmGetDataFromRefString(reference), SipSmGetLenFromRefString(reference));
    SipSmReleaseRefString(reference);
    SipSbReleaseStringBuffer(written);
    return text;
}

TEST(InPlace, writesAfterWhatALogHookAppends) {
    for (uint32_t spoiled = 0; textWithEntries(spoiled) != "all"; ++spoiled) {
        const std::string inPlace = textWithEntries(spoiled);
        EXPECT_NE(inPlace.find("<a text that takes room>"), std::string::npos) << spoiled;
        const sdpline::EveryServiceCalled everyService;
        EXPECT_EQ(textWithEntries(spoiled), inPlace) << spoiled;
    }
}

// A log hook may set other hooks: requests of a decode after that entry go to them.
TEST(InPlace, goesThroughTheHooksThatALogHookHasSet) {
    static uint8_t other[24];
    static const void *freed;
    for (const bool passedUp : {false, true}) {
        SDPMemCp *block = nullptr;
        ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
        sdpline::beginDecode(block);
        void *const bytes = sdpline::allocateBytes(24);
        EXPECT_TRUE(sdpline::allocatesInPlace());
        const LogHook hook([] {
            SdpSetFnAlloc([](uint32_t) -> void * { return other; });
            SdpSetFnFree([](void *memory) { freed = memory; });
        });
        if (passedUp) {
            sdpline::logAndForward(sdpline::Check::ParseRefused, 1);
        } else {
            sdpline::fail(sdpline::Check::ConnLastOctetRange);
        }
        EXPECT_EQ(sdpline::allocateBytes(24), other);
        EXPECT_EQ(static_cast<void *>(sdpline::allocate<SipString>()), other);
        sdpline::freeBytes(bytes);
        EXPECT_EQ(freed, bytes);
        sdpline::endDecode(false);
        SipMmReleaseBufMem(&block);
    }
}

TEST(InPlace, goesOnAfterALogHookThatChangesNothing) {
    SDPMemCp *block = nullptr;
    ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
    sdpline::beginDecode(block);
    const LogHook hook([] {});
    sdpline::fail(sdpline::Check::ConnLastOctetRange);
    EXPECT_TRUE(sdpline::allocatesInPlace());
    sdpline::endDecode(false);
    EXPECT_FALSE(sdpline::allocatesInPlace());
    sdpline::fail(sdpline::Check::ConnLastOctetRange);
    EXPECT_FALSE(sdpline::allocatesInPlace());
    SipMmReleaseBufMem(&block);
}

// After an append that does not fit nothing is written, not even a shorter text.
TEST(InPlace, aBufferThatRefusedOnceRefuses) {
    char bytes[8];
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateFixedStringBuffer(gSipSystemMemCp, reinterpret_cast<uint8_t *>(bytes),
                                           sizeof bytes, &buffer),
              0u);
    uint32_t prefixed = 1;
    SipString tooLong = {9, const_cast<char *>("too long ")};
    EXPECT_NE(sdpLibEncodeStringField(&prefixed, 's', &tooLong, buffer), 0u);
    SipString fits = {1, const_cast<char *>("x")};
    prefixed = 0;
    EXPECT_NE(sdpLibEncodeStringField(&prefixed, 's', &fits, buffer), 0u);
    uint8_t *data = nullptr;
    uint32_t length = 0;
    SipSbReleaseFixedStringBuffer(buffer, &data, &length);
    EXPECT_EQ(std::string(bytes, length), "s=");
}

} // namespace
