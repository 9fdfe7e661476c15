// The lexer's state: positions, the end, texts, and the operations that set them.
#include "lexer/lexertest.hpp"

#include <cstring>

#include "support/logs.hpp"

namespace {

using support::LexerTest;
using support::Token;

constexpr uint32_t kAll = 0xFFFFFFFF;

// ---- Offset 0

TEST_F(LexerTest, ATokenOfOneByteAtOffset0ComesAgain) {
    use(" x", SDP_LEXCTX_CHAR);
    EXPECT_EQ(next(), (Token{31, 0, 0}));
    EXPECT_EQ(next(), (Token{31, 0, 0}));
    EXPECT_EQ(next(), (Token{31, 0, 0}));
}

TEST_F(LexerTest, WhatComesAgainAtOffset0IsCutUnderTheNewContext) {
    use("ab c", SDP_LEXCTX_CHAR);
    EXPECT_EQ(next(), (Token{2, 0, 0}));
    setLexerContext(SDP_LEXCTX_STRING);
    EXPECT_EQ(next(), (Token{61, 0, 1})) << "a token that ended at 0 is no token";
    EXPECT_EQ(next(), (Token{31, 2, 2}));
}

TEST_F(LexerTest, AnEmptyInputEndsAtOffset0) {
    use("", SDP_LEXCTX_SDP);
    EXPECT_EQ(startTracking(), 30u);
    EXPECT_EQ(sdpGetEnd(), 1u);
    EXPECT_EQ(current(), (Token{30, 0, 0}));
    EXPECT_STREQ(LT(), "");
}

// ---- mark

TEST_F(LexerTest, MarkEndsTheTokenUnderConstruction) {
    use("abcdef", SDP_LEXCTX_NONE);
    sdpSetStartToken(2);
    sdpSetIndex(3);
    mark();
    EXPECT_EQ(sdpGetEndToken(), 4u);
    EXPECT_EQ(sdpGetStartToken(), 2u);
    EXPECT_EQ(sdpGetIndex(), 0u);
    mark();
    EXPECT_EQ(sdpGetStartToken(), 5u) << "the next token begins after it";
    EXPECT_EQ(sdpGetEndToken(), 4u);
}

TEST_F(LexerTest, MarkTakesATokenThatEndedAtOffset0ForNone) {
    use("abcdef", SDP_LEXCTX_NONE);
    sdpSetIndex(1);
    mark();
    EXPECT_EQ(sdpGetEndToken(), 0u);
    mark();
    EXPECT_EQ(sdpGetStartToken(), 0u);
    sdpSetStartToken(4);
    mark();
    EXPECT_EQ(sdpGetStartToken(), 0u);
}

TEST_F(LexerTest, ConsumeEndsATokenUnderConstructionAndCutsItAnew) {
    use("abc def", SDP_LEXCTX_STRING);
    sdpSetStartToken(1);
    sdpSetIndex(5);
    EXPECT_EQ(next(), (Token{61, 1, 2}));
    EXPECT_EQ(sdpGetIndex(), 0u);
}

// ---- The end

TEST_F(LexerTest, TheEndTokenStays) {
    for (uint32_t context = SDP_LEXCTX_SDP; context <= SDP_LEXCTX_IPV6; ++context) {
        useInside("a", context);
        consume();
        EXPECT_EQ(sdpGetEnd(), 0u) << "a NUL after a run does not end the input";
        EXPECT_EQ(next(), (Token{30, 3, 3}));
        EXPECT_EQ(sdpGetEnd(), 1u);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(sdp_match(SDP_TOK_EOF), 1u);
            EXPECT_EQ(next(), (Token{30, 3, 3}));
        }
        EXPECT_EQ(sdp_match(SDP_TOK_LF), 0u);
    }
}

TEST_F(LexerTest, ConsumeDoesNothingWhileTheEndFlagIs1) {
    useInside("ab", SDP_LEXCTX_CHAR);
    sdpSetEnd(1);
    sdpSetTToken(99);
    sdpSetLastChar('!');
    EXPECT_EQ(next(), (Token{99, 1, 1}));
    EXPECT_EQ(sdpGetLastChar(), '!');
    sdpSetEnd(2); // only 1 ends the input
    EXPECT_EQ(next(), (Token{2, 2, 2}));
    EXPECT_EQ(sdpGetEnd(), 2u);
}

TEST_F(LexerTest, NothingAfterTheNulIsRead) {
    for (uint32_t context = SDP_LEXCTX_SDP; context <= SDP_LEXCTX_IPV6; ++context) {
        use(std::string("ab\0cd", 5), context);
        while (LA() != 30) {
            consume();
            ASSERT_LE(sdpGetEndToken(), 2u);
            if (sdpGetEndToken() == 0) {
                sdpSetEndToken(1); // past the token at offset 0, which would come again
            }
        }
        consume();
        EXPECT_EQ(current(), (Token{30, 2, 2})) << context;
    }
}

// ---- match

TEST_F(LexerTest, MatchConsumesTheExpectedKindOnly) {
    useInside("a= b", SDP_LEXCTX_SDP);
    consume();
    EXPECT_EQ(sdp_match(SDP_TOK_MEDIA), 0u);
    EXPECT_EQ(current(), (Token{46, 2, 3}));
    EXPECT_EQ(sdpGetLastChar(), '=');
    setLexerContext(SDP_LEXCTX_CHAR);
    EXPECT_EQ(sdp_match(SDP_TOK_ATTRIBUTE), 1u);
    EXPECT_EQ(current(), (Token{31, 4, 4}));
}

// ---- startTracking

TEST_F(LexerTest, StartTrackingTakesTheSdpContextWhenThereIsNone) {
    use("v=0", SDP_LEXCTX_NONE);
    EXPECT_EQ(startTracking(), 37u);
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_SDP));
}

TEST_F(LexerTest, StartTrackingKeepsAnyOtherContext) {
    use("v=0 x", SDP_LEXCTX_STRING);
    EXPECT_EQ(startTracking(), 61u);
    EXPECT_STREQ(LT(), "v=0");
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_STRING));
    use("v=0", 9);
    sdpSetTToken(99);
    EXPECT_EQ(startTracking(), 99u) << "no context, no token";
    EXPECT_EQ(sdpGetLexerContext(), 9u);
}

TEST_F(LexerTest, StartTrackingWithoutInputIsAQuietFailure) {
    support::LogRecorder log;
    const SipString nothing = {5, nullptr};
    setInput(&nothing);
    setLexerContext(SDP_LEXCTX_NONE);
    g_gSipCodePoint = 77;
    for (const uint32_t base : {0u, 7u, 100u}) {
        g_gSipStackFileId = base;
        const uint32_t result = startTracking();
        EXPECT_EQ(result >> 24, (base + 179) & 0xFF);
        EXPECT_EQ(result & 0x3FF, 100u);
    }
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(g_gSipCodePoint, 77u);
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_SDP)) << "set before the test";
}

// ---- Token text

TEST_F(LexerTest, TextIsThatOfTheCurrentTokenWithATerminator) {
    useInside("word more", SDP_LEXCTX_STRING);
    std::memset(sdpGetThrowAwayBuffer(), '#', 1024);
    consume();
    const char *const text = LT();
    EXPECT_EQ(text, sdpGetThrowAwayBuffer());
    EXPECT_EQ(std::string(text, 6), std::string("word\0#", 6)) << "nothing after it is touched";
    consume();
    EXPECT_STREQ(LT(), " ");
    EXPECT_EQ(text, sdpGetThrowAwayBuffer()) << "one buffer for all";
    EXPECT_STREQ(text, " ");
}

TEST_F(LexerTest, TheLongestTextIs1023Bytes) {
    useInside(std::string(1023, 'x') + " " + std::string(1024, 'y') + " z", SDP_LEXCTX_STRING);
    consume();
    EXPECT_EQ(std::string(LT()), std::string(1023, 'x'));
    consume();
    consume();
    EXPECT_EQ(current(), (Token{61, 1026, 2049}));
    EXPECT_EQ(LT(), nullptr);
    EXPECT_EQ(sdpGetThrowAwayBuffer()[0], 'x') << "a text that does not fit leaves the buffer";
    consume();
    consume();
    EXPECT_STREQ(LT(), "z") << "the token after it is readable again";
}

TEST_F(LexerTest, TextLimitsHoldInEveryContextWithRuns) {
    for (const uint32_t context :
         {SDP_LEXCTX_STRING, SDP_LEXCTX_ALNUM, SDP_LEXCTX_TOKEN, SDP_LEXCTX_IPV6}) {
        useInside(std::string(1023, '7'), context);
        consume();
        EXPECT_EQ(std::string(LT()).size(), 1023u) << context;
        useInside(std::string(1024, '7'), context);
        consume();
        EXPECT_EQ(LT(), nullptr) << context;
    }
}

TEST_F(LexerTest, TextOfATokenThatEndsBeforeItStartsIsEmpty) {
    for (const uint32_t end : {2u, 1u, 0u}) {
        useInside("word", SDP_LEXCTX_STRING);
        sdpSetStartToken(3);
        sdpSetEndToken(end);
        std::memset(sdpGetThrowAwayBuffer(), '#', 8);
        const char *const text = LT();
        ASSERT_EQ(text, sdpGetThrowAwayBuffer());
        EXPECT_STREQ(text, "") << end;
        EXPECT_EQ(text[1], '#');
    }
}

TEST_F(LexerTest, TextOfTheEndTokenIsEmpty) {
    useInside("", SDP_LEXCTX_STRING);
    consume();
    EXPECT_EQ(LA(), 30u);
    EXPECT_STREQ(LT(), "");
}

TEST_F(LexerTest, AFailingClearIsReportedAndTheTextIsTakenAllTheSame) {
    useInside("word", SDP_LEXCTX_STRING);
    consume();
    std::memset(sdpGetThrowAwayBuffer(), '#', 1024);
    support::SecureFaults::reset();
    support::SecureFaults::failAt(1);
    support::LogRecorder log;
    EXPECT_STREQ(LT(), "word");
    ASSERT_EQ(support::SecureFaults::reports().size(), 1u);
    EXPECT_TRUE(support::SecureFaults::reports()[0].ex);
    EXPECT_EQ(support::SecureFaults::reports()[0].name, "sdplexer");
    EXPECT_TRUE(log.entries().empty());
    EXPECT_STREQ(LT(), "word");
    EXPECT_EQ(support::SecureFaults::count(), 2u) << "one clear for each text";
    EXPECT_EQ(support::SecureFaults::reports().size(), 1u);
}

// ---- State

TEST_F(LexerTest, GettersAnswerWhatSettersSet) {
    const std::vector<std::pair<void (*)(uint32_t), uint32_t (*)()>> pairs = {
        {sdpSetEnd, sdpGetEnd},       {sdpSetEndToken, sdpGetEndToken},
        {sdpSetIndex, sdpGetIndex},   {sdpSetStartToken, sdpGetStartToken},
        {sdpSetTToken, sdpGetTToken}, {setLexerContext, sdpGetLexerContext},
    };
    for (uint32_t i = 0; i < pairs.size(); ++i) {
        pairs[i].first(1000 + i);
    }
    sdpSetLastChar(200);
    for (uint32_t i = 0; i < pairs.size(); ++i) {
        EXPECT_EQ(pairs[i].second(), 1000 + i) << "each has a value of its own";
    }
    EXPECT_EQ(sdpGetLastChar(), 200);
    EXPECT_EQ(LA(), 1004u);
    for (const auto &[set, get] : pairs) {
        set(kAll);
        EXPECT_EQ(get(), kAll);
    }
    EXPECT_EQ(LA(), kAll);
}

TEST_F(LexerTest, InputIsKeptByItsPointerAlone) {
    const char bytes[] = "v=0";
    const SipString text = {1, const_cast<char *>(bytes)};
    setInput(&text);
    EXPECT_EQ(sdpGetInput(), reinterpret_cast<const uint8_t *>(bytes));
    clearSdpLexer();
    setLexerContext(SDP_LEXCTX_STRING);
    consume();
    EXPECT_STREQ(LT(), "v=0") << "the length is not looked at";
}

TEST_F(LexerTest, ClearResetsPlacesAndTheEndAndNothingElse) {
    use("word", SDP_LEXCTX_STRING);
    consume();
    consume();
    ASSERT_EQ(sdpGetEnd(), 1u);
    sdpSetIndex(3);
    const uint8_t *const input = sdpGetInput();
    EXPECT_EQ(clearSdpLexer(), 1u);
    EXPECT_EQ(sdpGetEnd(), 0u);
    EXPECT_EQ(sdpGetIndex(), 0u);
    EXPECT_EQ(sdpGetStartToken(), 0u);
    EXPECT_EQ(sdpGetEndToken(), 0u);
    EXPECT_EQ(sdpGetInput(), input);
    EXPECT_EQ(LA(), 30u);
    EXPECT_EQ(sdpGetLastChar(), 0);
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_STRING));
    consume();
    EXPECT_STREQ(LT(), "word") << "the input can be read again";
}

TEST_F(LexerTest, BytesArePutAtTheStartOfTheTextBuffer) {
    char *const buffer = sdpGetThrowAwayBuffer();
    std::memset(buffer, '#', 1024);
    const uint8_t bytes[1024] = {'a', 0, 'b'};
    sdpSetThrowAwayBuffer(bytes, 0);
    sdpSetThrowAwayBuffer(bytes, -1);
    sdpSetThrowAwayBuffer(bytes, INT32_MIN);
    EXPECT_EQ(std::string(buffer, 4), "####");
    sdpSetThrowAwayBuffer(bytes, 3);
    EXPECT_EQ(std::string(buffer, 5), std::string("a\0b##", 5));
    sdpSetThrowAwayBuffer(bytes, 1024);
    EXPECT_EQ(std::memcmp(buffer, bytes, 1024), 0);
}

TEST_F(LexerTest, TheRtpmapTextIsWritable) {
    char *const text = sdpGetRtpmapVar();
    EXPECT_STREQ(text, "rtpmap");
    text[0] = 'R';
    EXPECT_STREQ(sdpGetRtpmapVar(), "Rtpmap");
    text[0] = 'r';
}

// ---- Stored texts

char *allocated = nullptr;
std::vector<uint32_t> asked;

void *giveMemory(uint32_t size) {
    asked.push_back(size);
    return allocated;
}

class SetStringTest : public LexerTest {
protected:
    void SetUp() override {
        asked.clear();
        std::memset(memory_, '#', sizeof memory_);
        allocated = memory_;
        SdpSetFnAlloc(giveMemory);
    }

    char memory_[8];
};

// An empty text asks for zero bytes.
TEST_F(SetStringTest, BytesAreStoredWithoutATerminator) {
    for (const std::string text : {"", "abc"}) {
        asked.clear();
        SipString value = {9, nullptr};
        EXPECT_EQ(sdpSetString(&value, text.c_str()), 0u);
        EXPECT_EQ(value.ulLen, text.size());
        char *const data = value.pcData;
        EXPECT_EQ(data, memory_);
        EXPECT_EQ(std::string(memory_, text.size() + 1), text + '#');
        EXPECT_EQ(asked, std::vector<uint32_t>{value.ulLen});
    }
}

TEST_F(SetStringTest, WithoutMemoryTheLengthStaysAndThereAreNoBytes) {
    support::LogRecorder log;
    allocated = nullptr;
    g_gSipCodePoint = 77;
    for (const uint32_t base : {0u, 9u, 254u}) {
        g_gSipStackFileId = base;
        SipString value = {9, memory_};
        const SDPResult result = sdpSetString(&value, "abcd");
        EXPECT_EQ(result >> 24, (base + 5) & 0xFF);
        EXPECT_EQ(result & 0x3FF, 1u);
        EXPECT_EQ(value.ulLen, 4u);
        char *const data = value.pcData;
        EXPECT_EQ(data, nullptr);
    }
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(g_gSipCodePoint, 77u);
}

TEST_F(SetStringTest, WithoutAHookThereIsNoMemory) {
    SdpSetFnAlloc(nullptr);
    SipString value = {9, memory_};
    EXPECT_EQ(sdpSetString(&value, "ab") & 0x3FF, 1u);
    EXPECT_EQ(value.ulLen, 2u);
    EXPECT_TRUE(asked.empty());
}

} // namespace
