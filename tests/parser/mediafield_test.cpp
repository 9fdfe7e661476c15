// The parsers of the m= line one by one: inputs that bodies cannot have, and memory failures.
#include "parser/parsing.hpp"

#include <array>

namespace {

using support::named;
using support::textOf;

using Texts = std::vector<std::string>;

class MediaFieldTest : public support::ParsingTest {
protected:
    MediaFieldTest() { clear(); }

    // Zeroed like the records of the parser.
    void clear() { field = {}; }

    SDPResult parse(std::string_view text) {
        start(text);
        clear();
        return sdpMediaField(&field);
    }

    // Makes what follows the protocol current, in the token context.
    void startFormats(std::string_view text) {
        start("m=" + std::string(text));
        setLexerContext(SDP_LEXCTX_TOKEN);
        consume();
        clear();
    }

    std::vector<uint32_t> payLoads() const {
        const SDPRtpPayLoads &list = field.stMediaFmt.unMediaFmt.stRtpPayLoads;
        return {list.pulPayLoads, list.pulPayLoads + list.ulNoOfPayLoads};
    }

    bool hasArray() const {
        return field.stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads != nullptr;
    }

    SDPMediaField field;
};

// ---- The whole line

TEST_F(MediaFieldTest, TheLineIsReadAndTheNextLineIsCurrent) {
    ASSERT_EQ(named(parse("m=audio 49170/2 RTP/AVP 0 8\na=x\n")), "ok");
    EXPECT_EQ(field.stMedia.enMediaType, 1u);
    EXPECT_EQ(textOf(field.stMedia.pstrOtherMedia), "(null)");
    EXPECT_EQ(field.ulPort, 49170u);
    EXPECT_EQ(field.ulNoOfPorts, 2u);
    EXPECT_EQ(field.stProto.enProto, 1u);
    EXPECT_EQ(textOf(field.stProto.pstrOtherProto), "(null)");
    EXPECT_EQ(field.stMediaFmt.enFmtType, 1u);
    EXPECT_EQ(payLoads(), (std::vector<uint32_t>{0, 8}));
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_ATTRIBUTE));
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_SDP));
}

TEST_F(MediaFieldTest, AnotherLineIsRefused) {
    for (const std::string text : {"a=audio 1 RTP/AVP 0\n", "M=audio 1 RTP/AVP 0\n", "\n", ""}) {
        EXPECT_EQ(named(parse(text)), "MediaLine 102") << text;
    }
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(MediaFieldTest, ATextThatEndsInsideTheLineIsRefused) {
    const std::vector<std::pair<std::string, std::string>> ends = {
        {"m=", "MediaWord 101"},
        {"m=audio", "MediaWordSpace 101"},
        {"m=audio ", "MediaPort 101"},
        {"m=audio 1", "MediaPortSpace 101"},
        {"m=audio 1/", "MediaPortCount 101"},
        {"m=audio 1/2", "MediaPortSpace 101"},
        {"m=audio 1 ", "MediaProto 101"},
        {"m=audio 1 RTP/AVP", "PayloadsMissing 101"},
        {"m=audio 0 RTP/AVP", "NoPayloadsEnd 101"},
        {"m=audio 1 RTP/AVP ", "Payload 101"},
        {"m=audio 1 RTP/AVP 0", "PayloadSpace 101"},
        {"m=audio 1 RTP/AVP 0 ", "Payload 101"},
        {"m=audio 1 udp", "FormatSpace 101"},
        {"m=audio 1 udp ", "FormatToken 101"},
        {"m=audio 1 udp x", "FormatEnd 101"},
        {"m=audio 1 udp t38", "FormatEnd 101"},
    };
    for (const auto &[text, refusal] : ends) {
        EXPECT_EQ(named(parse(text)), refusal) << text;
    }
}

TEST_F(MediaFieldTest, PartsReadBeforeARefusalStay) {
    ASSERT_EQ(named(parse("m=video 77/3 udp x y\n")), "FormatEnd 101");
    EXPECT_EQ(field.stMedia.enMediaType, 2u);
    EXPECT_EQ(field.ulPort, 77u);
    EXPECT_EQ(field.ulNoOfPorts, 3u);
    EXPECT_EQ(field.stProto.enProto, 2u);
    EXPECT_EQ(field.stMediaFmt.enFmtType, 4u);
    EXPECT_EQ(textOf(field.stMediaFmt.unMediaFmt.strOtherFmts), "x");
}

// ---- A blank and no payload numbers

TEST_F(MediaFieldTest, ABlankWithoutPayloadNumbersAsksForZeroBytesAndKeepsNoArray) {
    for (const std::string port : {"5004", "0"}) {
        const size_t asked = sizesAskedFor().size();
        ASSERT_EQ(named(parse("m=audio " + port + " RTP/AVP \n")), "ok");
        EXPECT_EQ(field.stMediaFmt.enFmtType, 1u);
        EXPECT_EQ(payLoads(), std::vector<uint32_t>());
        EXPECT_FALSE(hasArray());
        ASSERT_EQ(sizesAskedFor().size(), asked + 1);
        EXPECT_EQ(sizesAskedFor().back(), 0u);
    }
}

TEST_F(MediaFieldTest, PortZeroWithoutABlankAsksForNothing) {
    ASSERT_EQ(named(parse("m=audio 0 RTP/AVP\n")), "ok");
    EXPECT_EQ(field.stMediaFmt.enFmtType, 1u);
    EXPECT_FALSE(hasArray());
    EXPECT_TRUE(sizesAskedFor().empty());
}

TEST_F(MediaFieldTest, WithoutZeroBytesTheEmptyListFails) {
    failAllocation(1);
    EXPECT_EQ(named(parse("m=audio 5004 RTP/AVP \n")), "PayloadsAlloc 1");
    EXPECT_EQ(log.texts(), Texts{"5 sdpparser sdpRtpAvpMediaFmt 1"});
}

// A whole body: the encoded text of an empty list can be read only with port 0.
TEST(MediaFieldBody, ABlankWithoutPayloadNumbersIsWrittenWithoutTheBlank) {
    std::string body = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nm=audio 5004 RTP/AVP \r\n";
    const SipString text = {static_cast<uint32_t>(body.size()), body.data()};
    SdpLine *line = nullptr;
    ASSERT_EQ(SdpLibDecodeSdp(&text, &line), 0u);
    uint8_t written[128] = {};
    uint32_t length = 0;
    ASSERT_EQ(SdpLibSerializeSdp(line, written, sizeof written, &length), 0u);
    SdpLibReleaseSdp(&line);
    const std::string again(reinterpret_cast<const char *>(written), length);
    EXPECT_EQ(again, "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\nm=audio 5004 RTP/AVP\r\n");
    EXPECT_EQ(named(SdpLibDeSerializeSdp(written, length, &line)), "PayloadsMissing 101");
}

// ---- Media type

TEST_F(MediaFieldTest, AMediaTypeIsClassifiedAloneToo) {
    const std::vector<std::pair<const char *, uint32_t>> words = {
        {"audio", 1},   {"video", 2}, {"application", 3}, {"data", 4},
        {"control", 5}, {"image", 6}, {"text", 7},        {"AUDIO", 7},
    };
    for (const auto &[word, code] : words) {
        clear();
        ASSERT_EQ(named(sdpMediaType(&field, word)), "ok");
        EXPECT_EQ(field.stMedia.enMediaType, code) << word;
        EXPECT_EQ(textOf(field.stMedia.pstrOtherMedia), code == 7 ? word : "(null)");
    }
}

TEST_F(MediaFieldTest, WithoutMemoryForAMediaTypeTheLineFails) {
    failAllocation(1);
    EXPECT_EQ(named(parse("m=text 1 RTP/AVP 0\n")), "MediaTypeAlloc 1");
    EXPECT_EQ(log.texts(), Texts{"5 sdpparser sdpMediaType 1"});
    log.clear();
    failAllocation(2);
    EXPECT_EQ(named(parse("m=text 1 RTP/AVP 0\n")), "MediaTypeStore 1");
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpMediaType 3"});
}

// ---- Protocol

TEST_F(MediaFieldTest, AProtocolIsClassifiedAloneToo) {
    const std::vector<std::pair<const char *, uint32_t>> words = {
        {"RTP/AVP", 1}, {"RTP/SAVP", 5}, {"udp", 2},      {"UDP", 2}, {"TCP", 3},
        {"tcp", 3},     {"udptl", 4},    {"RTP/AVPF", 7}, {"x", 7},
    };
    for (const auto &[word, code] : words) {
        startFormats(" 17\nb=x");
        ASSERT_EQ(named(sdpMediaFmt(&field, word)), "ok");
        EXPECT_EQ(field.stProto.enProto, code) << word;
        EXPECT_EQ(textOf(field.stProto.pstrOtherProto), code == 7 ? word : "(null)");
        const bool numbers = code == 1 || code == 5;
        EXPECT_EQ(field.stMediaFmt.enFmtType, numbers ? 1u : 4u) << word;
        EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_BANDWIDTH));
    }
}

TEST_F(MediaFieldTest, OnlyTheValue1SwitchesTheFeedbackProfileOn) {
    for (const uint32_t value : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        SdpSetSupMedProtoRtpAvpf(value);
        startFormats(" 17\n");
        ASSERT_EQ(named(sdpMediaFmt(&field, "RTP/AVPF")), "ok");
        EXPECT_EQ(field.stProto.enProto, value == 1 ? 6u : 7u) << value;
        EXPECT_EQ(textOf(field.stProto.pstrOtherProto), value == 1 ? "(null)" : "RTP/AVPF");
        EXPECT_EQ(field.stMediaFmt.enFmtType, value == 1 ? 1u : 4u);
    }
    SdpSetSupMedProtoRtpAvpf(0);
}

TEST_F(MediaFieldTest, WithoutMemoryForAnUnknownProtocolTheLineFails) {
    failAllocation(1);
    EXPECT_EQ(named(parse("m=audio 1 SCTP x\n")), "MediaProtoAlloc 1");
    EXPECT_EQ(log.texts(), Texts{"5 sdpparser sdpMediaFmt 1"});
}

TEST_F(MediaFieldTest, WithoutMemoryForTheTextOfAnUnknownProtocolTheParseGoesOn) {
    failAllocation(2);
    ASSERT_EQ(named(parse("m=audio 1 SCTP x\nb=y\n")), "ok");
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(field.stProto.enProto, 7u);
    const SipString *const word = field.stProto.pstrOtherProto;
    ASSERT_NE(word, nullptr);
    EXPECT_EQ(word->ulLen, 4u);
    char *const bytes = word->pcData;
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(textOf(field.stMediaFmt.unMediaFmt.strOtherFmts), "x");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_BANDWIDTH));
}

TEST_F(MediaFieldTest, AProtocolWithoutBytesIsWrittenAsNothing) {
    failAllocation(2);
    ASSERT_EQ(named(parse("m=audio 1 SCTP x\n")), "ok");
    uint32_t prefix = 1;
    SipRefString *text = nullptr;
    ASSERT_EQ(SdpLibEncodeSdpLine(&prefix, SDP_LINE_MEDIA, &field, &text), 0u);
    EXPECT_EQ(std::string(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text)),
              "m=audio 1  x\r\n");
    SipSmReleaseRefString(text);
}

// ---- Payload numbers

TEST_F(MediaFieldTest, EveryRtpProfileTakesPayloadNumbers) {
    for (const uint32_t proto : {1u, 5u, 6u}) {
        startFormats(" 96 97\n");
        ASSERT_EQ(named(sdpRtpAvpMediaFmt(&field, proto)), "ok");
        EXPECT_EQ(field.stProto.enProto, proto);
        EXPECT_EQ(payLoads(), (std::vector<uint32_t>{96, 97}));
    }
}

TEST_F(MediaFieldTest, TheProtocolIsStoredBeforeItsFormatsAreRefused) {
    startFormats("\n");
    field.ulPort = 1;
    EXPECT_EQ(named(sdpRtpAvpMediaFmt(&field, 5)), "PayloadsMissing 101");
    EXPECT_EQ(field.stProto.enProto, 5u);
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpRtpAvpMediaFmt 3"});
    startFormats("\n");
    EXPECT_EQ(named(sdpOtherMediaFmt(&field, 4)), "FormatSpace 101");
    EXPECT_EQ(field.stProto.enProto, 4u);
}

TEST_F(MediaFieldTest, ThePayloadNumbersAreAllocatedOnceInTheirSize) {
    ASSERT_EQ(named(parse("m=audio 1 RTP/AVP 0 8 97\n")), "ok");
    EXPECT_EQ(sizesAskedFor(), std::vector<uint32_t>{12});
}

TEST_F(MediaFieldTest, WithoutMemoryForPayloadNumbersTheLineFails) {
    failAllocation(1);
    EXPECT_EQ(named(parse("m=audio 1 RTP/AVP 0 8\n")), "PayloadsAlloc 1");
    EXPECT_EQ(log.texts(), Texts{"5 sdpparser sdpRtpAvpMediaFmt 1"});
}

class GatherTest : public MediaFieldTest {
protected:
    static constexpr uint32_t kUnset = 0xDEADBEEF;

    // Gathers from the text on, after `count` numbers that are there already.
    SDPResult gather(const std::string &text, uint32_t limit, uint32_t count = 0) {
        start("m=" + text);
        setLexerContext(SDP_LEXCTX_ALNUM);
        consume();
        numbers.fill(kUnset);
        gathered = count;
        return sdpRtpAvpMediaFmtGetNoOfPayloads(&gathered, numbers.data(), limit);
    }

    std::array<uint32_t, 8> numbers;
    uint32_t gathered = 0;
};

TEST_F(GatherTest, NumbersUpToTheLineEndAreGathered) {
    ASSERT_EQ(named(gather("3 1 2\nx", 4)), "ok");
    EXPECT_EQ(gathered, 3u);
    EXPECT_EQ(numbers[0], 3u);
    EXPECT_EQ(numbers[1], 1u);
    EXPECT_EQ(numbers[2], 2u);
    EXPECT_EQ(numbers[3], kUnset);
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_LF)) << "which is left to the caller";
}

TEST_F(GatherTest, AsManyAsTheLimitFit) {
    EXPECT_EQ(named(gather("3 1 2\n", 3)), "ok");
    EXPECT_EQ(gathered, 3u);
    EXPECT_EQ(named(gather("3\n", 1)), "ok");
    EXPECT_EQ(gathered, 1u);
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(GatherTest, ABlankAfterTheLastThatFitsIsTooMuch) {
    const Texts logged = {"3 sdpparser sdpRtpAvpMediaFmtGetNoOfPayloads -"};
    for (const std::string text : {"3 1 2\n", "3 1 \n", "3 1 x\n"}) {
        log.clear();
        EXPECT_EQ(named(gather(text, 2)), "PayloadLimit 1") << text;
        EXPECT_EQ(log.texts(), logged);
        EXPECT_EQ(gathered, 2u);
        EXPECT_EQ(numbers[1], 1u);
        EXPECT_EQ(numbers[2], kUnset);
    }
}

TEST_F(GatherTest, ABlankBeforeTheLineEndEndsTheList) {
    EXPECT_EQ(named(gather("3 1 \n", 3)), "ok");
    EXPECT_EQ(gathered, 2u);
}

TEST_F(GatherTest, NothingBeforeTheLineEndIsNoNumber) {
    EXPECT_EQ(named(gather("\n", 3)), "ok");
    EXPECT_EQ(gathered, 0u);
}

TEST_F(GatherTest, NumbersAreAddedToThoseThatAreThere) {
    EXPECT_EQ(named(gather("5 6\n", 4, 2)), "ok");
    EXPECT_EQ(gathered, 4u);
    EXPECT_EQ(numbers[0], kUnset);
    EXPECT_EQ(numbers[2], 5u);
    EXPECT_EQ(numbers[3], 6u);
}

TEST_F(GatherTest, WhatIsNoNumberIsRefused) {
    EXPECT_EQ(named(gather("x\n", 3)), "Payload 101");
    EXPECT_EQ(named(gather("3  1\n", 3)), "Payload 101");
    EXPECT_EQ(named(gather("3,1\n", 3)), "PayloadSpace 101");
    EXPECT_EQ(gathered, 1u);
    EXPECT_EQ(named(gather("3 " + std::string(1024, '1') + "\n", 3)), "PayloadText 1");
    EXPECT_EQ(gathered, 1u);
    EXPECT_TRUE(log.entries().empty());
}

// ---- One other format

TEST_F(MediaFieldTest, FormatsWithACodeLeaveTheUnionZeroed) {
    for (const auto &[text, code] : {std::pair{" t38\n", 2u}, std::pair{" t120\n", 3u}}) {
        startFormats(text);
        field.stMediaFmt.unMediaFmt.strOtherFmts = {77, reinterpret_cast<char *>(this)};
        ASSERT_EQ(named(sdpOtherMediaFmt(&field, 3)), "ok");
        EXPECT_EQ(field.stMediaFmt.enFmtType, code);
        EXPECT_EQ(field.stMediaFmt.unMediaFmt.strOtherFmts.ulLen, 0u);
        EXPECT_FALSE(hasArray());
    }
    EXPECT_TRUE(sizesAskedFor().empty());
}

TEST_F(MediaFieldTest, T120GoesWithTcpOnly) {
    for (const uint32_t proto : {2u, 4u, 7u}) {
        log.clear();
        startFormats(" t120\n");
        EXPECT_EQ(named(sdpOtherMediaFmt(&field, proto)), "FormatT120 1");
        EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpOtherMediaFmt 3"});
    }
}

TEST_F(MediaFieldTest, WithoutMemoryForAFormatTheLineFails) {
    failAllocation(1);
    EXPECT_EQ(named(parse("m=audio 1 udp wb\n")), "FormatStore 1");
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpOtherMediaFmt 3"});
}

} // namespace
