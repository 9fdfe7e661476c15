// What is done in place of libsipcore's services gives what their calls give: every case, bodies
// made by chance and damaged ones, decoded and written both ways.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "api/decode.hpp"
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

// Every service is called while it lives.
class Called {
public:
    Called() : own_(sdpline::own) { sdpline::own = {}; }
    ~Called() { sdpline::own = own_; }
    Called(const Called &) = delete;
    Called &operator=(const Called &) = delete;

private:
    sdpline::Own own_;
};

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
    const Called calledOnly;
    const Outcome called = outcomeOf(bytes, roomStep);
    EXPECT_EQ(called.result, inPlace.result) << support::readable(bytes);
    EXPECT_TRUE(called == inPlace) << support::readable(bytes);
}

// This program takes no service over: whatever follows would compare calls with calls.
TEST(InPlace, isWhatAProgramOfTheLibrariesAloneGets) {
    EXPECT_TRUE(sdpline::own.appends);
    EXPECT_TRUE(sdpline::own.copy);
    EXPECT_TRUE(sdpline::own.fill);
    EXPECT_NE(sdpline::own.blockAlloc, nullptr);
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

// Records that no text gives: every writer stops where it stops when it calls.
TEST(InPlace, stopsAtCodesWithoutATextAsTheCallsDo) {
    const std::string bytes =
        "v=0\r\no=- 1 2 IN IP4 h\r\ns=-\r\nc=IN IP4 1.2.3.4/5/6\r\nt=1 2\r\n"
        "r=7d 1h 0 25h\r\nm=audio 1/2 RTP/AVP 0 8\r\na=rtpmap:0 PCMU/8000/2\r\n"
        "a=des:qos optional remote sendrecv\r\na=ipbcp:1 Request\r\n";
    const auto outcome = [&](uint32_t spoiled) {
        support::LogRecorder log;
        const Body body = support::decoded(bytes);
        SDPMediaDesc &media = *body->stMediaSet.ppstMediaDescs[0];
        uint32_t *const codes[] = {
            &body->stOrigin.stNetType.enNetType,
            &body->stOrigin.stAddrType.enAddrType,
            &body->pstConnection->stNetType.enNetType,
            &body->pstConnection->stAddrType.enAddrType,
            &body->pstConnection->stTptAddr.enTptAddrType,
            &media.stMediaField.stMedia.enMediaType,
            &media.stMediaField.stProto.enProto,
            &media.stMediaField.stMediaFmt.enFmtType,
            &media.pstAttrList->ppstAttrs[0]->ulAttrType,
            &media.pstAttrList->ppstAttrs[1]->unAttrValue.stRsrcMgmtStatus.enStrengthTag,
            &media.pstAttrList->ppstAttrs[1]->unAttrValue.stRsrcMgmtStatus.enStatusType};
        if (spoiled == std::size(codes)) {
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
        const Called calledOnly;
        EXPECT_EQ(outcome(spoiled), inPlace) << spoiled;
    }
}

// A log hook may set other hooks: what a decode asks for behind an entry is asked of those.
TEST(InPlace, goesThroughTheHooksOnceAnEntryWasLogged) {
    for (const bool passedUp : {false, true}) {
        SDPMemCp *block = nullptr;
        ASSERT_EQ(SipMmCreateBufMem(512, 512, &block), 0u);
        sdpline::beginDecode(block);
        void *const piece = sdpline::allocateBytes(24);
        EXPECT_NE(sdpline::decodeBlock, nullptr);
        if (passedUp) {
            sdpline::passUp(sdpline::Check::ParseRefused, 1);
        } else {
            sdpline::fail(sdpline::Check::ConnLastOctetRange);
        }
        static uint8_t other[24];
        static const void *freed;
        SdpSetFnAlloc([](uint32_t) -> void * { return other; });
        SdpSetFnFree([](void *memory) { freed = memory; });
        EXPECT_EQ(sdpline::allocateBytes(24), other);
        EXPECT_EQ(static_cast<void *>(sdpline::allocate<SipString>()), other);
        sdpline::freeBytes(piece);
        EXPECT_EQ(freed, piece);
        sdpline::endDecode(false);
        SipMmReleaseBufMem(&block);
    }
}

// An append that does not fit is the last one: also the shorter ones behind it.
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
