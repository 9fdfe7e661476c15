// Whole bodies of 4093 bytes with as many of the shortest lines as fit, written back and read
// again.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "parser/parsing.hpp"
#include "support/body.hpp"

namespace {

using support::Body;
using support::named;
using support::textOf;

const std::string kHead = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\n";
constexpr size_t kMaxBody = 4093;

class LimitsTest : public testing::Test {
protected:
    void SetUp() override { useLineEnd(SDP_LINE_END_LF); }
    void TearDown() override { useLineEnd(SDP_LINE_END_CRLF); }

    static void useLineEnd(uint32_t lineEnd) {
        ASSERT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
    }

    static Body decode(const std::string &text, SDPResult *result = nullptr) {
        const support::Guarded bytes(text);
        const SipString input = bytes.text();
        SdpLine *line = nullptr;
        const SDPResult decoded = SdpLibDecodeSdp(&input, &line);
        if (result != nullptr) {
            *result = decoded;
        } else {
            EXPECT_EQ(named(decoded), "ok");
        }
        return Body(line);
    }

    static std::string encode(const Body &body) {
        std::string text(16384, '\0');
        uint32_t length = 0;
        EXPECT_EQ(SdpLibSerializeSdp(body.get(), reinterpret_cast<uint8_t *>(text.data()),
                                     static_cast<uint32_t>(text.size()), &length),
                  0u);
        text.resize(length);
        return text;
    }

    struct Full {
        std::string text;
        Body body;
    };
    // The body of which that many lines are all that fits, decoded.
    static Full filled(const std::string &begin, const std::string &line, const std::string &end,
                       uint32_t expected) {
        uint32_t count = 0;
        std::string text = fill(begin, line, end, count);
        EXPECT_EQ(count, expected);
        Body body = decode(text);
        return {std::move(text), std::move(body)};
    }

    // Repeats the line as often as it fits between this start and end, and counts the lines.
    static std::string fill(const std::string &begin, const std::string &line,
                            const std::string &end, uint32_t &count) {
        std::string text = begin;
        for (count = 0; text.size() + line.size() + end.size() <= kMaxBody; ++count) {
            text += line;
        }
        return text + end;
    }
};

TEST_F(LimitsTest, AttributesOfTheSession) {
    constexpr uint32_t count = 1013;
    const auto [text, body] = filled(kHead + "t=0 0\n", "a=x\n", "", count);
    ASSERT_TRUE(body);
    ASSERT_EQ(body->pstAttrList->ulNoOfAttrs, count);
    for (uint32_t i = 0; i < count; ++i) {
        const SDPAttr &attr = *body->pstAttrList->ppstAttrs[i];
        ASSERT_EQ(attr.ulAttrType, static_cast<uint32_t>(SDP_ATTR_UNREC_NOVALUE));
        ASSERT_EQ(textOf(attr.pstAttrName), "x");
    }
    EXPECT_EQ(encode(body), text);
}

TEST_F(LimitsTest, AttributesOfADescription) {
    constexpr uint32_t count = 673;
    const auto [text, body] = filled(kHead + "t=0 0\nm=x 0 RTP/AVP\n", "a=fax\n", "", count);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->stMediaSet.ppstMediaDescs[0]->pstAttrList->ulNoOfAttrs, count);
    EXPECT_EQ(encode(body), text);
}

TEST_F(LimitsTest, TextLines) {
    for (const std::string line : {"e=x\n", "p=x\n", "b=x\n"}) {
        constexpr uint32_t count = 1013;
        const auto [text, body] = filled(kHead, line, "t=0 0\n", count);
        ASSERT_TRUE(body) << line;
        const SDPStringList *const list = line[0] == 'e'   ? body->pstEmailList
                                          : line[0] == 'p' ? body->pstPhoneList
                                                           : body->pstBandwidthList;
        EXPECT_EQ(list->ulNoOfStrings, count);
        EXPECT_EQ(encode(body), text);
    }
}

TEST_F(LimitsTest, TypedTimesOfOneLine) {
    constexpr uint32_t count = 1349;
    const auto [text, body] = filled(kHead + "t=0 0\nr=1d", " 1d", "\n", count);
    ASSERT_TRUE(body);
    const SDPRepeatFieldSet &set = *body->stTimeSet.ppstTimeFields[0]->pstRepeatFieldSet;
    EXPECT_EQ(set.ppstRepeatFields[0]->ulNoOfTimeUnits, count + 1);
    EXPECT_EQ(encode(body), text);
}

TEST_F(LimitsTest, RepeatLines) {
    constexpr uint32_t count = 810;
    const auto [text, body] = filled(kHead + "t=0 0\n", "r=1d\n", "", count);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->stTimeSet.ppstTimeFields[0]->pstRepeatFieldSet->ulNoOfRepeatFields, count);
    EXPECT_EQ(encode(body), text);
}

// 676 lines are counted in 8 bits: 164 are left, of which the first is written.
TEST_F(LimitsTest, TimeLines) {
    constexpr uint32_t count = 676;
    const auto [text, body] = filled(kHead, "t=7 9\n", "", count);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->stTimeSet.ulNoOfTimeFields, 676u % 256);
    EXPECT_EQ(encode(body), kHead + "t=7 9\n");
}

// 406 descriptions are counted in 8 bits: 150 are left, the 257th to the last.
TEST_F(LimitsTest, Descriptions) {
    constexpr uint32_t count = 405;
    const auto [text, body] = filled(kHead, "m=x 1 u 1\n", "m=y 2 u 2\n", count);
    ASSERT_TRUE(body);
    ASSERT_EQ(body->stMediaSet.ulNoOfMediaDescs, 406u % 256);
    std::string written = kHead + "t=0 0\r\n"; // a line end that no setting changes
    for (uint32_t i = 0; i < 149; ++i) {
        written += "m=x 1 u 1\n";
    }
    EXPECT_EQ(encode(body), written + "m=y 2 u 2\n");
}

TEST_F(LimitsTest, DescriptionsThatAreAllKept) {
    std::string text = kHead + "t=0 0\n";
    for (uint32_t port = 1; port <= 255; ++port) {
        text += "m=x " + std::to_string(port) + " u 1\n";
    }
    const Body body = decode(text);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(body->stMediaSet.ulNoOfMediaDescs, 255u);
    EXPECT_EQ(encode(body), text);
}

// ---- The length of the text itself

TEST_F(LimitsTest, TheLastLineOfAFullBodyNeedsNoEnd) {
    const std::string begin = kHead + "t=0 0\na=" + std::string(1023, 'a') + ':' +
                              std::string(1023, 'b') + "\na=" + std::string(1023, 'c') + ':';
    const std::string text = begin + std::string(kMaxBody - begin.size(), 'd');
    const Body body = decode(text);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(encode(body), text + '\n') << "which is one byte longer than what can be read";
    SDPResult result = 0;
    decode(text + '\n', &result);
    EXPECT_EQ(named(result), "ParseArgument 1");
}

TEST_F(LimitsTest, WhatIsWrittenMayBeLongerThanWhatCanBeRead) {
    uint32_t count = 0;
    const std::string text = fill(kHead + "t=0 0\nr=1", " 1", "\n", count);
    const Body body = decode(text);
    ASSERT_NE(body, nullptr);
    const std::string written = encode(body);
    EXPECT_EQ(written.size(), text.size() + count + 1) << "each time got its unit";
    SDPResult result = 0;
    decode(written, &result);
    EXPECT_EQ(named(result), "ParseArgument 1");
}

TEST_F(LimitsTest, EveryLengthUpToTheGreatestIsAccepted) {
    std::string text = kHead + "\n";
    while (text.size() <= kMaxBody) {
        ASSERT_NE(decode(text), nullptr) << text.size();
        text += 'x';
    }
    SDPResult result = 0;
    EXPECT_EQ(decode(text, &result), nullptr);
    EXPECT_EQ(named(result), "ParseArgument 1");
}

} // namespace
