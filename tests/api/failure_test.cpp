// Why a body was refused: the position in the caller's text, and the texts of codes.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "support/allocations.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using sdpline::Check;
using sdpline::CheckRow;
using sdpline::ResultKind;
using support::Allocations;
using support::Guarded;
using support::LogRecorder;

// Sets the base of file numbers; the destructor restores the previous one.
class FileBase {
public:
    explicit FileBase(uint32_t base) { g_gSipStackFileId = base; }
    ~FileBase() { g_gSipStackFileId = before_; }
    FileBase(const FileBase &) = delete;
    FileBase &operator=(const FileBase &) = delete;

private:
    uint32_t before_ = g_gSipStackFileId;
};

SDPResult decode(const std::string &body) {
    const Guarded input(body);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdp(&text, &line);
    SdpLibReleaseSdp(&line);
    return result;
}

SDPFailure failureOf(const std::string &body) {
    const SDPResult result = decode(body);
    EXPECT_NE(result, 0u);
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_EQ(failure.ulResult, result);
    return failure;
}

// "check line:column @offset token" of a body that is refused.
std::string placeOf(const std::string &body) {
    const SDPFailure failure = failureOf(body);
    return failure.pcCheck + (' ' + std::to_string(failure.ulLine)) + ':' +
           std::to_string(failure.ulColumn) + " @" + std::to_string(failure.ulOffset) + ' ' +
           std::to_string(failure.enToken);
}

// A string literal with the NUL bytes inside it.
template <size_t Size>
std::string bytes(const char (&literal)[Size]) {
    return {literal, Size - 1};
}

const std::string kOrigin = "o=- 1 1 IN IP4 x"; // 16 bytes

// ---- Places

TEST(LastFailure, IsTheTokenThatDidNotFit) {
    EXPECT_EQ(placeOf("v=x\n"), "VersionDigits 1:3 @2 2");
    EXPECT_EQ(placeOf("x=0\n"), "StartVersion 1:1 @0 2");
    EXPECT_EQ(placeOf("v=0\n" + kOrigin + "\ns=-\nb=AS:1\na=x\n"), "AfterBandwidth 5:1 @32 46");
}

TEST(LastFailure, CountsBothBytesOfCrLf) {
    EXPECT_EQ(placeOf("v=0\no=-  1\n"), "OriginId 2:5 @8 31");
    EXPECT_EQ(placeOf("v=0\r\no=-  1\r\n"), "OriginId 2:5 @9 31");
}

// The column of an LF is directly after the line's last byte.
TEST(LastFailure, PlacesALineEndWhereItsCrLfBegins) {
    EXPECT_EQ(placeOf("v=\n"), "VersionDigits 1:3 @2 15");
    EXPECT_EQ(placeOf("v=\r\n"), "VersionDigits 1:3 @2 15");
}

TEST(LastFailure, CountsALoneCrAsAByteOfItsLine) {
    EXPECT_EQ(placeOf("v=0\r" + kOrigin + "\r"), "VersionEnd 1:4 @3 28");
    EXPECT_EQ(placeOf("v=0\n" + kOrigin + "\ns=\ra\rb\nx\n"), "AfterName 4:1 @28 2");
}

TEST(LastFailure, CountsBlanksThatWereDropped) {
    EXPECT_EQ(placeOf("v=0\n   o=-  1\n"), "OriginId 2:8 @11 31");
    EXPECT_EQ(placeOf("v=0\r\n  " + kOrigin + "\r\n s=-\r\n  f=\r\n"), "AfterName 4:3 @33 2");
}

TEST(LastFailure, CountsNulBytesThatWereDropped) {
    EXPECT_EQ(placeOf(bytes("\0v\0=\0x\n")), "VersionDigits 1:6 @5 2");
    EXPECT_EQ(placeOf(bytes("v=0\n\0 \0 o=-  1\n")), "OriginId 2:9 @12 31");
    EXPECT_EQ(placeOf(bytes("v=0\0\r\0\n")), "VersionEnd 1:5 @4 28");
}

TEST(LastFailure, IsTheEndOfATextThatEndsTooEarly) {
    EXPECT_EQ(placeOf("v=0\n"), "StartOrigin 2:1 @4 15");
    EXPECT_EQ(placeOf("v="), "VersionDigits 1:3 @2 15");
    EXPECT_EQ(placeOf("v=0\r\n"), "StartOrigin 2:1 @5 15");
    EXPECT_EQ(placeOf("v=0\n" + kOrigin + "\ns="), "TextEmpty 3:3 @23 15");
}

TEST(LastFailure, HasNoPlaceForALength) {
    EXPECT_EQ(placeOf(""), "ParseArgument 0:0 @0 0");
    EXPECT_EQ(placeOf("v=0\n" + std::string(4090, ' ')), "ParseArgument 0:0 @0 0");
}

TEST(LastFailure, HasNoPlaceWithoutMemoryForTheBody) {
    Allocations::failAt(2); // after the block
    EXPECT_EQ(placeOf("v=0\n"), "ParseAlloc 0:0 @0 0");
    Allocations::reset();
}

TEST(LastFailure, IsTheUtilityThatRefusedAnAddress) {
    const std::string before = "v=0\n" + kOrigin + "\ns=-\nc=IN IP6 ";
    EXPECT_EQ(placeOf(before + "1:::::::::2:\n"), "Ipv6Colons 4:10 @34 20");
    EXPECT_EQ(placeOf(before + "::1.2.3.256\n"), "Ipv6TailOctet 4:10 @34 3");
}

TEST(LastFailure, StaysWhenAParseSucceeds) {
    const SDPFailure before = failureOf("v=x\n");
    EXPECT_EQ(decode("v=0\n" + kOrigin + "\ns=-\n"), 0u);
    SDPFailure after = {};
    SdpLibGetLastFailure(&after);
    EXPECT_EQ(after.ulResult, before.ulResult);
    EXPECT_EQ(after.ulColumn, before.ulColumn);
    EXPECT_STREQ(after.pcCheck, before.pcCheck);
}

TEST(LastFailure, StaysWhenTheParserIsNotReached) {
    const SDPFailure before = failureOf("v=x\n");
    SdpLine *line = nullptr;
    EXPECT_NE(SdpLibDecodeSdp(nullptr, &line), 0u);
    Allocations::failAt(1);
    EXPECT_NE(decode("v=0\n"), 0u);
    Allocations::reset();
    SDPFailure after = {};
    SdpLibGetLastFailure(&after);
    EXPECT_EQ(after.ulResult, before.ulResult);
}

TEST(LastFailure, IsOfEveryDecodeEntry) {
    std::string body = "v=y\n";
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDeSerializeSdp(reinterpret_cast<uint8_t *>(body.data()),
                                                  static_cast<uint32_t>(body.size()), &line);
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_EQ(failure.ulResult, result);
    EXPECT_EQ(failure.ulColumn, 3u);
}

// Decodes another body at every log entry of the tested decode.
class DecodingHook {
public:
    explicit DecodingHook(const std::string &other) {
        other_ = other;
        g_gpfnSipLmLogHndlr = hook;
    }
    ~DecodingHook() { g_gpfnSipLmLogHndlr = nullptr; }
    DecodingHook(const DecodingHook &) = delete;
    DecodingHook &operator=(const DecodingHook &) = delete;

private:
    static void hook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                     const char *, ...) {
        g_gpfnSipLmLogHndlr = nullptr;
        decode(other_);
        g_gpfnSipLmLogHndlr = hook;
    }

    static inline std::string other_;
};

TEST(LastFailure, IsNotThatOfADecodeInsideTheLogHook) {
    const std::string start = "v=0\r\n" + kOrigin + "\r\ns=-\r\n";
    const std::string refused[] = {"v=x\n",
                                   start + "c=IN IP4 1.2.3\r\n",
                                   start + "c=IN IP6 1:::::::::2\r\n",
                                   start + "t=0 0\r\na=des:qos never e2e send\r\n",
                                   start + "t=0 0\r\na=setup:holdconn\r\n",
                                   start + "m=audio 1 RTP/AVP x\r\n"};
    for (const std::string &body : refused) {
        const std::string alone = placeOf(body);
        for (const std::string &other : {"v=0 \n" + kOrigin, start + "t=0 0\r\n"}) {
            const DecodingHook hook(other);
            EXPECT_EQ(placeOf(body), alone) << other;
        }
    }
}

TEST(LastFailure, IsWrittenToNoNullPointer) {
    decode("v=x\n");
    SdpLibGetLastFailure(nullptr);
}

TEST(LastFailure, HoldsTheCodeUnderTheBaseOfThatTime) {
    const FileBase base(0x30);
    EXPECT_EQ(failureOf("v=x\n").ulResult, 0x35019065u);
}

// ---- Codes in words

struct Described {
    uint32_t code;
    const char *source;
    const char *function;
    const char *errorClass;
    const char *check;
};

constexpr Described kDescribed[] = {
    {0x04023001, "sdpintf", "SdpLibDecodeSdp", "RESOURCE", "DecodeArgument"},
    {0x040A7001, "sdpintf", "SdpLibExtConfigValidate", "RESOURCE", "ConfigValidate"},
    {0x05000C64, "sdpparser", "startSdpParsing", "NOT_SDP", "StartVersion"},
    {0x05035065, "sdpparser", "sdpConnectionFieldAddrIpv4", "FIELD_SYNTAX", "ConnLastOctetRange"},
    {0x05001066, "sdpparser", "startSdpParsing", "UNEXPECTED_LINE", "StartOrigin"},
    {0x05005001, "sdpparser", "sdpSetString", "RESOURCE", "SetString"},
    {0x06000401, "sdputils", "SdpTokanizeIPv6Str", "RESOURCE", "Ipv6Colons"},
    {0x06001068, "sdputils", "SdpLoadIpV6StringToArray", "BAD_ADDRESS", "Ipv6TailOctet"},
    {0x0303E001, "sdpencode", "SdpLibEncodeSdpInt", "RESOURCE", "EncodeBodyArgument"},
    {0xB3000464, "sdplexer", "startTracking", "NOT_SDP", "LexerInput"},
};

SDPResultText describe(SDPResult result) {
    SDPResultText text = {};
    EXPECT_EQ(SdpLibDescribeResult(result, &text), 0u) << result;
    return text;
}

TEST(DescribeResult, TellsSourceFunctionClassAndCheck) {
    for (const Described &row : kDescribed) {
        const SDPResultText text = describe(row.code);
        EXPECT_STREQ(text.pcSource, row.source);
        EXPECT_STREQ(text.pcFunction, row.function);
        EXPECT_STREQ(text.pcClass, row.errorClass);
        EXPECT_STREQ(text.pcCheck, row.check);
        EXPECT_STRNE(text.pcSentence, "");
    }
}

uint32_t composed(const CheckRow &row, uint32_t base) {
    return (base + static_cast<uint32_t>(row.source)) << 24 | row.outcome.location * 1024u |
           row.outcome.errorClass;
}

// The file number of a result keeps its low 8 bits only: 300 is 44 there, and 731 wraps too.
TEST(DescribeResult, KnowsEveryCheckUnderAnyBase) {
    for (const uint32_t base : {0u, 1u, 0x40u, 250u, 300u, 0xFFFFFF00u}) {
        const FileBase guard(base);
        for (size_t i = 0; i < sdpline::kCheckCount; ++i) {
            const CheckRow &row = sdpline::row(static_cast<Check>(i));
            if (row.outcome.kind != ResultKind::Composed) {
                continue;
            }
            const SDPResultText text = describe(composed(row, base));
            EXPECT_STREQ(text.pcCheck, row.name) << "base " << base;
            EXPECT_STREQ(text.pcFunction, row.function);
            EXPECT_STREQ(text.pcSource, sdpline::sourceName(row.source));
            EXPECT_STREQ(text.pcSentence, row.sentence);
        }
    }
}

// The text of a refusal says what was expected, or what was found instead. The others name what the
// check called: memory, the string buffer, another operation.
TEST(DescribeResult, SaysWhatWasExpected) {
    for (const CheckRow &row : sdpline::kChecks) {
        const std::string_view sentence = row.sentence;
        const auto holds = [&](std::string_view words) {
            return sentence.find(words) != std::string_view::npos;
        };
        EXPECT_TRUE(sentence.starts_with("expected ") || sentence.starts_with("unexpected ") ||
                    sentence.starts_with("no memory for ") || holds(" needs ") ||
                    holds(" cannot be ") || holds(" could not ") || holds(" refused"))
            << row.name << ": " << sentence;
    }
}

TEST(DescribeResult, DoesNotKnowACodeOfAnotherBase) {
    SDPResultText text = {};
    {
        const FileBase base(0x40);
        EXPECT_STREQ(describe(0x44023001).pcCheck, "DecodeArgument");
        EXPECT_EQ(SdpLibDescribeResult(0x04023001, &text), 1u);
    }
    EXPECT_EQ(SdpLibDescribeResult(0x44023001, &text), 1u);
}

TEST(DescribeResult, AnswersOneAndEmptyTextsForAnUnknownCode) {
    for (const SDPResult unknown :
         {0u, 2u, 7u, 0x04023065u, 0x05FFFC01u, 0x23001u, 0x06023001u, 0xFFFFFFFFu}) {
        SDPResultText text = {"x", "x", "x", "x", "x"};
        EXPECT_EQ(SdpLibDescribeResult(unknown, &text), 1u) << unknown;
        EXPECT_STREQ(text.pcSource, "");
        EXPECT_STREQ(text.pcFunction, "");
        EXPECT_STREQ(text.pcClass, "");
        EXPECT_STREQ(text.pcCheck, "");
        EXPECT_STREQ(text.pcSentence, "");
    }
}

// Many operations return a bare 1, one a bare 8; neither depends on the base.
TEST(DescribeResult, TellsWithoutATextWhetherItKnowsTheCode) {
    const SDPResult refused = decode("v=x\n");
    EXPECT_EQ(SdpLibDescribeResult(refused, nullptr), 0u);
    EXPECT_EQ(SdpLibDescribeResult(1, nullptr), 0u);
    EXPECT_EQ(SdpLibDescribeResult(0, nullptr), 1u);
    EXPECT_EQ(SdpLibDescribeResult(0xFFFFFFFF, nullptr), 1u);
}

TEST(DescribeResult, TellsBareAnswers) {
    for (const uint32_t base : {0u, 0x40u}) {
        const FileBase guard(base);
        const SDPResultText one = describe(1);
        EXPECT_STRNE(one.pcSentence, "");
        EXPECT_STREQ(one.pcCheck, "");
        EXPECT_STREQ(one.pcClass, "");
        const SDPResultText eight = describe(8);
        EXPECT_STREQ(eight.pcFunction, "SdpTokanizeIPv6Str");
        EXPECT_STREQ(eight.pcCheck, "Ipv6TokensArgument");
        EXPECT_STREQ(eight.pcClass, "");
    }
}

// ---- Bases

TEST(FileNumbers, GoIntoResultsCodePointsAndNoNames) {
    const FileBase base(0x40);
    LogRecorder log;
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDecodeSdp(nullptr, &line), 0x44023001u);
    EXPECT_EQ(g_gSipCodePoint, 0x44u << 16 | 140u);
    EXPECT_EQ(decode("v=x\n"), 0x45019065u);
    ASSERT_EQ(log.entries().size(), 3u);
    EXPECT_EQ(log.entries()[1].file, "sdpparser");
}

// Results keep the low 8 bits of the base, code points the whole number.
TEST(FileNumbers, WrapInResultsOnly) {
    const FileBase base(300);
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDecodeSdp(nullptr, &line), 0x30023001u); // 304 & 0xFF
    EXPECT_EQ(g_gSipCodePoint, 304u << 16 | 140u);
}

TEST(FileNumbers, CodePointIsSetWithoutALogHook) {
    ASSERT_EQ(g_gpfnSipLmLogHndlr, nullptr);
    g_gSipCodePoint = 0;
    EXPECT_EQ(SdpLibCreateSdp(nullptr), 0x0403E001u);
    EXPECT_EQ(g_gSipCodePoint, 4u << 16 | 250u);
}

TEST(FileNumbers, CodePointIsThatOfTheLastLoggedFailure) {
    LogRecorder log;
    EXPECT_NE(decode("v=x\n"), 0u); // the check itself is not logged
    ASSERT_EQ(log.entries().size(), 2u);
    EXPECT_EQ(log.entries()[0].function, "SdpLibParseSdp");
    EXPECT_EQ(log.entries()[1].line, 173u);
    EXPECT_EQ(g_gSipCodePoint, 4u << 16 | 173u);
}

TEST(FileNumbers, LogEntriesNameModuleAndInstance) {
    LogRecorder log;
    EXPECT_NE(SdpLibCreateSdp(nullptr), 0u);
    ASSERT_EQ(log.entries().size(), 1u);
    EXPECT_EQ(log.entries()[0].module, 17u);
    EXPECT_EQ(log.entries()[0].instance, 0xFFFFFFFFu);
    EXPECT_EQ(log.entries()[0].line, 250u);
}

} // namespace
