// Decoding, encoding and copying on several threads; every result is compared with that of a single
// thread. Where the library has one decoder for the process, decodes take the lock of the C++ API;
// everything else runs without a lock in both builds.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "sdpline/sdpinternals.h"
#include "sdpline/sdpline.hpp"
#include "support/bodies.hpp"
#include "support/bodylines.hpp"
#include "support/cases.hpp"
#include "support/generator.hpp"
#include "support/inthreads.hpp"

namespace {

using support::inThreads;

constexpr size_t kThreads = 4;
constexpr size_t kRounds = 3;
constexpr int kGenerated = 60;

// All results of a body: the refusal, or its text in three ways.
struct Outcome {
    SDPResult code = 0;
    std::string place;      // of a refusal
    std::string text;       // as the encoder writes it
    std::string serialised; // into a caller's buffer
    std::string lines;      // line by line, from copies

    bool operator==(const Outcome &) const = default;
};

std::string placeOf(const SDPFailure &failure) {
    return std::to_string(failure.ulLine) + ":" + std::to_string(failure.ulColumn) + " " +
           std::to_string(failure.ulOffset) + " token " + std::to_string(failure.enToken) + " " +
           failure.pcCheck;
}

support::Body decode(const std::string &text, Outcome &outcome) {
    const SipString given = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
#ifndef SDPLINE_THREAD_LOCAL
    const std::scoped_lock lock(sdpline::decodeMutex());
#endif
    SdpLine *line = nullptr;
    outcome.code = SdpLibDecodeSdp(&given, &line);
    if (outcome.code != 0) {
        SDPFailure failure;
        SdpLibGetLastFailure(&failure);
        outcome.place = placeOf(failure);
    }
    return support::Body(line);
}

std::string textOf(SdpLine &line) {
    SipStringBuffer *buffer = nullptr;
    const SDPResult code = SdpLibEncodeSdp(&line, &buffer);
    if (code != 0) {
        return "refused: " + std::to_string(code);
    }
    SipRefString *reference = nullptr;
    std::string text = "no text";
    if (SipSbConvertToRefString(buffer, &reference) == 0) {
        text.assign(SipSmGetDataFromRefString(reference), SipSmGetLenFromRefString(reference));
        SipSmReleaseRefString(reference);
    }
    SipSbReleaseStringBuffer(buffer);
    return text;
}

std::string serialised(SdpLine &line) {
    std::vector<uint8_t> room(8192);
    uint32_t size = 0;
    const SDPResult code =
        SdpLibSerializeSdp(&line, room.data(), static_cast<uint32_t>(room.size()), &size);
    return code == 0 ? std::string(room.begin(), room.begin() + size)
                     : "refused: " + std::to_string(code);
}

std::string copiedLine(SDPMemCp *memory, const support::BodyLine &line) {
    void *copy = nullptr;
    if (SdpCloneLine(memory, line.lineType, line.record, &copy) != 0) {
        return "no copy";
    }
    uint32_t withPrefix = 1;
    SipRefString *reference = nullptr;
    std::string text = "refused";
    if (SdpLibEncodeSdpLine(&withPrefix, line.lineType, copy, &reference) == 0) {
        text.assign(SipSmGetDataFromRefString(reference), SipSmGetLenFromRefString(reference));
        SipSmReleaseRefString(reference);
    }
    SdpFreeLine(memory, line.lineType, &copy);
    return text;
}

Outcome outcomeOf(const std::string &text) {
    Outcome outcome;
    const support::Body body = decode(text, outcome);
    if (body == nullptr) {
        return outcome;
    }
    outcome.text = textOf(*body);
    outcome.serialised = serialised(*body);
    SDPMemCp *memory = nullptr;
    if (SipMmCreateBufMem(512, 512, &memory) == 0) {
        for (const support::BodyLine &line : support::linesOf(*body)) {
            outcome.lines += copiedLine(memory, line);
        }
        SipMmReleaseBufMem(&memory);
    }
    return outcome;
}

std::atomic<uint32_t> logged;

void countEntry(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                const char *, ...) {
    logged.fetch_add(1, std::memory_order_relaxed);
}

// The bodies of the case documents, accepted and refused ones, and random ones.
std::vector<std::string> someBodies() {
    std::vector<std::string> bodies;
    for (const support::Case &one : support::readCases(SDPLINE_CASES)) {
        bodies.push_back(one.body);
    }
    std::mt19937 engine(20);
    for (int i = 0; i < kGenerated; ++i) {
        bodies.push_back(support::generateBody(engine));
    }
    return bodies;
}

class Threads : public testing::Test {
protected:
    void SetUp() override { g_gpfnSipLmLogHndlr = countEntry; }
    void TearDown() override { g_gpfnSipLmLogHndlr = nullptr; }
};

TEST_F(Threads, GiveWhatOneGivesAlone) {
    const std::vector<std::string> bodies = someBodies();
    SipMmStatistics before;
    SipMmGetStatistics(&before);
    logged = 0;
    std::vector<Outcome> alone;
    size_t refusals = 0;
    for (const std::string &body : bodies) {
        alone.push_back(outcomeOf(body));
        refusals += alone.back().code != 0 ? 1 : 0;
    }
    ASSERT_GT(refusals, 100u);
    ASSERT_GT(bodies.size() - refusals, 100u);
    const uint32_t loggedAlone = logged.exchange(0);
    ASSERT_GT(loggedAlone, 100u);

    std::atomic<size_t> wrong = 0;
    std::atomic<size_t> one = 0; // of the wrong ones
    inThreads(kThreads, [&](size_t thread) {
        for (size_t i = 0; i < kRounds * bodies.size(); ++i) {
            const size_t at = (i + thread * bodies.size() / kThreads) % bodies.size();
            if (outcomeOf(bodies[at]) != alone[at]) {
                ++wrong;
                one = at;
            }
        }
    });
    EXPECT_EQ(wrong, 0u) << support::readable(bodies[one]);
    EXPECT_EQ(logged, kThreads * kRounds * loggedAlone);
    SipMmStatistics after;
    SipMmGetStatistics(&after);
    EXPECT_EQ(after.ulHeapBlocks, before.ulHeapBlocks);
    EXPECT_EQ(after.ulHeapBytes, before.ulHeapBytes);
}

TEST_F(Threads, ReadOneBodyTogether) {
    std::mt19937 engine(4);
    Outcome outcome;
    const support::Body body = decode(support::generateBody(engine), outcome);
    ASSERT_NE(body, nullptr);
    const std::string text = textOf(*body);
    const auto lines = support::linesOf(*body);
    ASSERT_FALSE(lines.empty());
    SDPMemCp *const heap = gSipSystemMemCp;
    std::vector<std::string> copies;
    for (const support::BodyLine &line : lines) {
        copies.push_back(copiedLine(heap, line));
    }
    std::atomic<size_t> wrong = 0;
    inThreads(kThreads, [&](size_t) {
        for (size_t round = 0; round < 200; ++round) {
            const size_t at = round % lines.size();
            wrong += textOf(*body) != text || copiedLine(heap, lines[at]) != copies[at] ? 1 : 0;
        }
    });
    EXPECT_EQ(wrong, 0u);
}

TEST_F(Threads, CountHoldsOfOneTextTogether) {
    SipStringBuffer *buffer = nullptr;
    ASSERT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 64, 64, &buffer), 0u);
    ASSERT_EQ(SipSbCopyConstString(buffer, "v=0", 3), 0u);
    std::vector<SipRefString *> texts(kThreads);
    for (SipRefString *&text : texts) {
        ASSERT_EQ(SipSbConvertToRefString(buffer, &text), 0u);
    }
    SipSbReleaseStringBuffer(buffer);
    inThreads(kThreads, [&](size_t thread) { SipSmReleaseRefString(texts[thread]); });
}

#ifdef SDPLINE_THREAD_LOCAL

namespace {

void *noMemory(uint32_t) {
    return nullptr;
}

} // namespace

TEST_F(Threads, HaveALexerAndHooksOfTheirOwn) {
    const std::string refused = "v=1x\r\n";
    Outcome here;
    EXPECT_EQ(decode(refused, here), nullptr);
    char bytes[] = "abc def";
    const SipString text = {sizeof bytes - 1, bytes};
    setInput(&text);
    setLexerContext(SDP_LEXCTX_STRING);
    consume();
    SdpSetFnAlloc(noMemory);
    inThreads(kThreads, [](size_t) {
        EXPECT_EQ(sdpGetInput(), nullptr);
        EXPECT_EQ(sdpGetLexerContext(), uint32_t{SDP_LEXCTX_NONE});
        EXPECT_STREQ(sdpGetRtpmapVar(), "rtpmap");
        EXPECT_EQ(SdpGetFnAlloc(), nullptr);
        EXPECT_EQ(g_mSdpDecodeMemCp, nullptr);
        SDPFailure failure;
        SdpLibGetLastFailure(&failure);
        EXPECT_EQ(failure.ulResult, 0u);
        Outcome there;
        EXPECT_NE(decode("v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n", there), nullptr);
    });
    EXPECT_EQ(SdpGetFnAlloc(), noMemory);
    EXPECT_STREQ(LT(), "abc");
    SDPFailure failure;
    SdpLibGetLastFailure(&failure);
    EXPECT_EQ(failure.ulResult, here.code);
    clearSdpLexer();
    setLexerContext(SDP_LEXCTX_NONE);
    SdpSetFnAlloc(nullptr);
}

#endif

} // namespace
