// What is done in place of libsipcore's services gives what their calls give: every case, bodies
// made by chance and damaged ones, decoded and written both ways.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "checks/checks.hpp"
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

// What comes of a text: equal when each of it is.
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

// The whole of the caller's bytes, those that are not written to among them.
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

// This program takes no service over: whatever follows would compare calls with calls.
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

const std::string kManyLines =
    "v=0\r\no=- 1 2 IN IP4 h\r\ns=-\r\nc=IN IP4 1.2.3.4/5/6\r\nt=1 2\r\n"
    "r=7d 1h 0 25h\r\nm=audio 1/2 RTP/AVP 0 8\r\na=rtpmap:0 PCMU/8000/2\r\n"
    "a=des:qos optional remote sendrecv\r\na=ipbcp:1 Request\r\na=setup:active\r\n";

// The codes of that body whose writer refuses a code without a text, and the count of payloads.
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

// Records that no text gives: every writer stops where it stops when it calls.
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

// A log hook may set other hooks: what a decode asks for after an entry is asked of those.
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

// An append that does not fit is the last one: also the shorter ones after it.
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
