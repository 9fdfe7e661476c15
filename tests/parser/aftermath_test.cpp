// The state that the lexer's getters return after a parse: the context where it stopped, the kind
// of the token it stopped at, and in the text buffer the last text. A rule that tests a token and
// then switches the context leaves the previous context when it refuses; one that switches first
// leaves the new one.
//
// The test runs in two programs: in one memset_s is the program's, in the other libsipcore's.
#include <gtest/gtest.h>

#include <string>

#include "parser/parsing.hpp"
#include "sdpline/sdpinternals.h"

namespace {

using support::named;

constexpr uint32_t kSdp = SDP_LEXCTX_SDP;
constexpr uint32_t kChar = SDP_LEXCTX_CHAR;
constexpr uint32_t kString = SDP_LEXCTX_STRING;
constexpr uint32_t kAlnum = SDP_LEXCTX_ALNUM;
constexpr uint32_t kToken = SDP_LEXCTX_TOKEN;
constexpr uint32_t kIpv6 = SDP_LEXCTX_IPV6;

struct Stop {
    std::string text;
    const char *result;
    uint32_t context;
    uint32_t kind;
    std::string taken;
};

std::string repeated(const char *text, int count) {
    std::string all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

const std::string kLong1023(1023, 'y');
const std::string kLong1024(1024, 'y');

// ---- Whole bodies

const std::string kStart = "v=7\no=u 1 22 IN IP4 host\n"; // "host" is taken last
const std::string kNamed = kStart + "s=-\n";              // "-"
const std::string kTimed = kNamed + "t=1 33\n";           // "33"

const Stop kVersionAndOrigin[] = {
    {"v=x", "VersionDigits 101", kAlnum, SDP_TOK_ALPHA, "#"},
    {"v=7 \n", "VersionEnd 101", kSdp, SDP_TOK_SPACE, "7"},
    {"v=7\no= x", "OriginUser 101", kString, SDP_TOK_SPACE, "7"},
    {"v=7\no=a\n", "OriginUserSpace 101", kAlnum, SDP_TOK_LF, "a"},
    {"v=7\no=a x", "OriginId 101", kAlnum, SDP_TOK_ALPHA, "a"},
    {"v=7\no=a 1x", "OriginIdSpace 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {"v=7\no=a 1 x", "OriginVersion 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {"v=7\no=a 1 22x", "OriginVersionSpace 101", kSdp, SDP_TOK_ALPHA, "22"},
    {"v=7\no=a 1 22 in", "OriginNetType 101", kSdp, SDP_TOK_ALPHA, "22"},
    {"v=7\no=a 1 22 IN/", "OriginNetTypeSpace 101", kSdp, SDP_TOK_SLASH, "22"},
    {"v=7\no=a 1 22 IN IP5", "OriginAddrType 1", kSdp, SDP_TOK_ALPHA, "22"},
    {"v=7\no=a 1 22 IN IP4x", "OriginAddrTypeSpace 101", kString, SDP_TOK_ALPHA, "22"},
    {"v=7\no=a 1 22 IN IP4  x", "OriginAddress 101", kString, SDP_TOK_SPACE, "22"},
    {"v=7\no=a 1 22 IN IP4 host x", "OriginEnd 101", kSdp, SDP_TOK_SPACE, "host"},
};

const Stop kTexts[] = {
    {kStart + "s=\n", "TextEmpty 101", kString, SDP_TOK_LF, "host"},
    {kStart + "s=" + kLong1024, "TextTooLong 1", kString, SDP_TOK_STRING, "host"},
    {kStart + "s=a " + kLong1023, "TextTooLong 1", kString, SDP_TOK_STRING, " "},
    {kStart + "s=" + kLong1023 + "\n", "ok", kSdp, SDP_TOK_LF, kLong1023},
    {kStart + "s=a b \n", "ok", kSdp, SDP_TOK_LF, " "},
    {kStart + "s=a b\t\nf=", "AfterName 102", kSdp, SDP_TOK_ALPHA, "\t"},
    {kStart + "s=a\tbc\nf=", "AfterName 102", kSdp, SDP_TOK_ALPHA, "bc"},
    {kNamed + "e=a\ne=b c\nf=", "AfterEmail 102", kSdp, SDP_TOK_ALPHA, "c"},
    {kNamed + "f=", "AfterName 102", kSdp, SDP_TOK_ALPHA, "-"},
};

const Stop kConnections[] = {
    {kNamed + "c=in", "ConnNetType 101", kSdp, SDP_TOK_ALPHA, "-"},
    {kNamed + "c=IN/", "ConnNetTypeSpace 101", kSdp, SDP_TOK_SLASH, "-"},
    {kNamed + "c=IN IP5", "ConnAddrType 101", kSdp, SDP_TOK_ALPHA, "-"},
    {kNamed + "c=IN IP4/", "ConnAddrTypeSpace 101", kAlnum, SDP_TOK_SLASH, "-"},
    {kNamed + "c=IN IP4 x", "ConnOctet 101", kAlnum, SDP_TOK_ALPHA, "-"},
    {kNamed + "c=IN IP4 1x", "ConnOctetDot 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {kNamed + "c=IN IP4 1.x", "ConnOctet 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {kNamed + "c=IN IP4 1.256.", "ConnOctetRange 101", kAlnum, SDP_TOK_DIGIT, "256"},
    {kNamed + "c=IN IP4 1.2.3.x", "ConnLastOctet 101", kAlnum, SDP_TOK_ALPHA, "3"},
    {kNamed + "c=IN IP4 1.2.3.999", "ConnLastOctetRange 101", kAlnum, SDP_TOK_DIGIT, "999"},
    {kNamed + "c=IN IP4 1.2.3.4 ", "ConnEnd 101", kSdp, SDP_TOK_SPACE, "4"},
    {kNamed + "c=IN IP4 1.2.3.4/x", "ConnTtl 101", kAlnum, SDP_TOK_ALPHA, "4"},
    {kNamed + "c=IN IP4 1.2.3.4/5/x", "ConnCount 101", kAlnum, SDP_TOK_ALPHA, "5"},
    {kNamed + "c=IN IP4 1.2.3.4/5/6/", "ConnEnd 101", kSdp, SDP_TOK_SLASH, "6"},
    {kNamed + "c=IN IP4 1.2.3.4\n", "ok", kSdp, SDP_TOK_LF, "4"},
    {kNamed + "c=IN IP6 ::.\n", "ConnIpv6Kind 101", kIpv6, SDP_TOK_DOT, "-"},
    {kNamed + "c=IN IP6 ::::::::1:\n", "Ipv6Colons 1", kIpv6, SDP_TOK_COLON, "::::::::1:"},
    {kNamed + "c=IN IP6 ::1/x", "ConnTtl 101", kAlnum, SDP_TOK_ALPHA, "::1"},
    {kNamed + "c=IN IP6 ::1 \n", "ConnEnd 101", kSdp, SDP_TOK_SPACE, "::1"},
};

const Stop kTimes[] = {
    {kNamed + "t=x", "TimeStart 101", kAlnum, SDP_TOK_ALPHA, "-"},
    {kNamed + "t=4294967296 0", "TimeStartRange 1", kAlnum, SDP_TOK_DIGIT, "4294967296"},
    {kNamed + "t=1x", "TimeStartSpace 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {kNamed + "t=1 x", "TimeStop 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {kNamed + "t=1 12345678901", "TimeStopRange 1", kAlnum, SDP_TOK_DIGIT, "12345678901"},
    {kNamed + "t=1 33 ", "TimeEnd 101", kSdp, SDP_TOK_SPACE, "33"},
    {kTimed + "r=x", "TypedTime 101", kAlnum, SDP_TOK_ALPHA, "33"},
    {kTimed + "r=7x", "TypedTimeUnit 101", kAlnum, SDP_TOK_ALPHA, "x"},
    {kTimed + "r=7 x", "TypedTime 101", kAlnum, SDP_TOK_ALPHA, " "},
    {kTimed + "r=7d x", "TypedTime 101", kAlnum, SDP_TOK_ALPHA, "d"},
    {kTimed + "r=7d\t", "RepeatEnd 101", kSdp, SDP_TOK_TAB, "d"},
    {kTimed + "r=7days 0\n", "ok", kSdp, SDP_TOK_LF, "\n"},
    {kTimed + "r=0 7days\n", "ok", kSdp, SDP_TOK_LF, "days"},
};

const Stop kAttributes[] = {
    {kTimed + "a=:", "AttrName 101", kToken, SDP_TOK_COLON, "33"},
    {kTimed + "a=sendrecv:x", "ModeEnd 101", kSdp, SDP_TOK_COLON, "sendrecv"},
    {kTimed + "a=ptime 2", "PacketColon 101", kAlnum, SDP_TOK_SPACE, "ptime"},
    {kTimed + "a=ptime:x", "PacketNumber 101", kAlnum, SDP_TOK_ALPHA, "ptime"},
    {kTimed + "a=ptime:20.5", "PacketEnd 101", kSdp, SDP_TOK_DOT, "20"},
    {kTimed + "a=framerate:29.x", "PacketFraction 101", kAlnum, SDP_TOK_ALPHA, "29"},
    {kTimed + "a=framerate:29.97x", "PacketEnd 101", kSdp, SDP_TOK_ALPHA, "29"},
    {kTimed + "a=framerate:29.97\n", "ok", kSdp, SDP_TOK_LF, "29"},
    {kTimed + "a=quality;", "QualityColon 101", kAlnum, SDP_TOK_SEMICOLON, "quality"},
    {kTimed + "a=quality:5x", "QualityEnd 101", kSdp, SDP_TOK_ALPHA, "5"},
    {kTimed + "a=T38FaxMaxBuffer;", "FaxColon 101", kAlnum, SDP_TOK_SEMICOLON, "T38FaxMaxBuffer"},
    {kTimed + "a=T38FaxFillBitRemoval x", "AttrFlagEnd 101", kSdp, SDP_TOK_SPACE,
     "T38FaxFillBitRemoval"},
    {kTimed + "a=T38FaxFillBitRemoval:x", "FaxNumber 101", kAlnum, SDP_TOK_ALPHA,
     "T38FaxFillBitRemoval"},
    {kTimed + "a=T38FaxRateManagement:x;", "RateWord 101", kToken, SDP_TOK_SEMICOLON, "x"},
    {kTimed + "a=T38FaxRateManagement:localTCF x", "RateEnd 101", kSdp, SDP_TOK_SPACE, "localTCF"},
    {kTimed + "a=T38FaxUdpEC;", "UdpEcColon 101", kToken, SDP_TOK_SEMICOLON, "T38FaxUdpEC"},
    {kTimed + "a=T38FaxUdpEC:;", "UdpEcToken 101", kToken, SDP_TOK_SEMICOLON, "T38FaxUdpEC"},
    {kTimed + "a=silenceSupp;", "SilenceColon 101", kAlnum, SDP_TOK_SEMICOLON, "silenceSupp"},
    {kTimed + "a=silenceSupp:1", "SilenceToken 101", kAlnum, SDP_TOK_DIGIT, "silenceSupp"},
    {kTimed + "a=silenceSupp:no x", "SilenceWord 101", kString, SDP_TOK_SPACE, "no"},
    {kTimed + "a=silenceSupp:on\n", "SilenceNoParams 101", kString, SDP_TOK_LF, "on"},
    {kTimed + "a=silenceSupp:on - b\n", "ok", kSdp, SDP_TOK_LF, "b"},
    {kTimed + "a=ecan;", "EcanColon 101", kAlnum, SDP_TOK_SEMICOLON, "ecan"},
    {kTimed + "a=ecan:xx on", "EcanDirectionWord 101", kAlnum, SDP_TOK_ALPHA, "xx"},
    {kTimed + "a=ecan:fb/", "EcanSpace 101", kAlnum, SDP_TOK_SLASH, "fb"},
    {kTimed + "a=ecan:fb 1", "EcanToken 101", kAlnum, SDP_TOK_DIGIT, "fb"},
    {kTimed + "a=ecan:fb xx y", "EcanWord 101", kString, SDP_TOK_SPACE, "xx"},
    {kTimed + "a=ecan:fb on\n", "EcanNoParams 101", kString, SDP_TOK_LF, "on"},
    {kTimed + "a=ecan:fb on x \n", "ok", kSdp, SDP_TOK_LF, " "},
    {kTimed + "a=ipbcp;", "IpBcpColon 101", kAlnum, SDP_TOK_SEMICOLON, "ipbcp"},
    {kTimed + "a=ipbcp:x", "IpBcpVersion 101", kAlnum, SDP_TOK_ALPHA, "ipbcp"},
    {kTimed + "a=ipbcp:1/", "IpBcpSpace 101", kAlnum, SDP_TOK_SLASH, "1"},
    {kTimed + "a=ipbcp:1 Reply x", "IpBcpType 101", kString, SDP_TOK_SPACE, "Reply"},
    {kTimed + "a=ipbcp:1 7", "IpBcpType 101", kString, SDP_TOK_DIGIT, "7"},
    {kTimed + "a=ipbcp:1 \n", "IpBcpType 101", kString, SDP_TOK_LF, "\n"},
    {kTimed + "a=ipbcp:1 Request x", "IpBcpEnd 101", kSdp, SDP_TOK_SPACE, "Request"},
    {kTimed + "a=setup;", "SetupColon 101", kString, SDP_TOK_SEMICOLON, "setup"},
    {kTimed + "a=setup:\n", "SetupEmpty 101", kString, SDP_TOK_LF, "setup"},
    {kTimed + "a=setup:active x\n", "SetupWord 101", kString, SDP_TOK_LF, "x"},
    {kTimed + "a=setup:active\n", "ok", kSdp, SDP_TOK_LF, "active"},
    {kTimed + "a=fmtp;", "ValueColon 101", kString, SDP_TOK_SEMICOLON, "fmtp"},
    {kTimed + "a=fmtp:\n", "ValueEmpty 101", kString, SDP_TOK_LF, "fmtp"},
    {kTimed + "a=fmtp:a " + kLong1023, "ValueTooLong 1", kString, SDP_TOK_STRING, " "},
    {kTimed + "a=fmtp:a b=c:d\n", "ok", kSdp, SDP_TOK_LF, "b=c:d"},
    {kTimed + "a=foo bar", "UnrecEnd 101", kSdp, SDP_TOK_SPACE, "foo"},
    {kTimed + "a=foo:\n", "UnrecEmpty 101", kString, SDP_TOK_LF, "foo"},
    {kTimed + "a=foo:" + kLong1024, "UnrecTooLong 1", kString, SDP_TOK_STRING, "foo"},
    {kTimed + "a=foo:a bc\n", "ok", kSdp, SDP_TOK_LF, "bc"},
    {kTimed + "a=foo/bar\n", "ok", kSdp, SDP_TOK_LF, "foo/bar"},
    {kTimed + "a=FAX\nf=", "AfterAttributes 102", kSdp, SDP_TOK_ALPHA, "FAX"},
};

const Stop kRtpmaps[] = {
    {kTimed + "a=rtpmap;", "RtpmapColon 101", kAlnum, SDP_TOK_SEMICOLON, "rtpmap"},
    {kTimed + "a=rtpmap:x", "RtpmapPayload 101", kAlnum, SDP_TOK_ALPHA, "rtpmap"},
    {kTimed + "a=rtpmap:4", "RtpmapSpace 101", kAlnum, SDP_TOK_LF, "4"},
    {kTimed + "a=rtpmap:4abc", "RtpmapSpace 101", kAlnum, SDP_TOK_ALPHA, "4"},
    {kTimed + "a=rtpmap:4 abc\n", "RtpmapSlash 101", kAlnum, SDP_TOK_LF, "c"},
    {kTimed + "a=rtpmap:4 \n", "RtpmapSlash 101", kAlnum, SDP_TOK_LF, "4"},
    {kTimed + "a=rtpmap:4 ab/x", "RtpmapClock 101", kAlnum, SDP_TOK_ALPHA, "b"},
    {kTimed + "a=rtpmap:4 /x", "RtpmapClock 101", kAlnum, SDP_TOK_ALPHA, "4"},
    {kTimed + "a=rtpmap:4 ab/8000 ", "RtpmapEnd 101", kAlnum, SDP_TOK_SPACE, "8000"},
    {kTimed + "a=rtpmap:4 ab/8000/x", "RtpmapParams 101", kAlnum, SDP_TOK_ALPHA, "8000"},
    {kTimed + "a=rtpmap:4 ab/8000/2/", "RtpmapParamsEnd 101", kSdp, SDP_TOK_SLASH, "2"},
    {kTimed + "a=rtpmap:4 " + repeated("n", 254) + "mo/", "RtpmapNameTooLong 1", kChar,
     SDP_TOK_ALPHA, "m"},
    {kTimed + "a=rtpmap:4 ab/8000\n", "ok", kSdp, SDP_TOK_LF, "8000"},
    {kTimed + "a=rtpmap:4 ab/8000/2\n", "ok", kSdp, SDP_TOK_LF, "2"},
};

const Stop kPreconditions[] = {
    {kTimed + "a=curr;", "StatusColon 101", kToken, SDP_TOK_SEMICOLON, "curr"},
    {kTimed + "a=curr::", "StatusPrecondition 101", kToken, SDP_TOK_COLON, "curr"},
    {kTimed + "a=des:qos;", "StrengthSpace 101", kToken, SDP_TOK_SEMICOLON, "qos"},
    {kTimed + "a=des:qos ;", "StrengthToken 101", kToken, SDP_TOK_SEMICOLON, "qos"},
    {kTimed + "a=des:qos x y", "StrengthWord 101", kToken, SDP_TOK_SPACE, "x"},
    {kTimed + "a=curr:qos;", "StatusSpace 101", kToken, SDP_TOK_SEMICOLON, "qos"},
    {kTimed + "a=curr:qos x;", "StatusWord 101", kToken, SDP_TOK_SEMICOLON, "x"},
    {kTimed + "a=curr:qos e2e;", "DirectionSpace 101", kToken, SDP_TOK_SEMICOLON, "e2e"},
    {kTimed + "a=curr:qos e2e x\n", "DirectionWord 101", kToken, SDP_TOK_LF, "x"},
    {kTimed + "a=curr:qos e2e send x", "StatusEnd 101", kSdp, SDP_TOK_SPACE, "send"},
    {kTimed + "a=curr:bw e2e none\n", "ok", kSdp, SDP_TOK_LF, "none"},
};

const Stop kMediaLines[] = {
    {kNamed + "m=;", "MediaWord 101", kToken, SDP_TOK_SEMICOLON, "-"},
    {kNamed + "m=o;", "MediaWordSpace 101", kAlnum, SDP_TOK_SEMICOLON, "o"},
    {kNamed + "m=o x", "MediaPort 101", kAlnum, SDP_TOK_ALPHA, "o"},
    {kNamed + "m=o 1", "MediaPortSpace 101", kAlnum, SDP_TOK_LF, "1"},
    {kNamed + "m=o 1/x", "MediaPortCount 101", kAlnum, SDP_TOK_ALPHA, "1"},
    {kNamed + "m=o 1/2;", "MediaPortSpace 101", kAlnum, SDP_TOK_SEMICOLON, "2"},
    {kNamed + "m=o 1  ", "MediaProto 101", kToken, SDP_TOK_SPACE, "1"},
    {kNamed + "m=o 1 RTP/AVP\n", "PayloadsMissing 101", kAlnum, SDP_TOK_LF, "RTP/AVP"},
    {kNamed + "m=o 0 RTP/AVP;", "NoPayloadsEnd 101", kSdp, SDP_TOK_SEMICOLON, "RTP/AVP"},
    {kNamed + "m=o 1 RTP/AVP x", "Payload 101", kAlnum, SDP_TOK_ALPHA, "RTP/AVP"},
    {kNamed + "m=o 1 RTP/AVP 0x", "PayloadSpace 101", kAlnum, SDP_TOK_ALPHA, "0"},
    {kNamed + "m=o 1 RTP/AVP 9  ", "Payload 101", kAlnum, SDP_TOK_SPACE, "9"},
    {kNamed + "m=o 1 RTP/AVP" + repeated(" 7", 100) + " 8", "PayloadLimit 1", kAlnum, SDP_TOK_DIGIT,
     "7"},
    {kNamed + "m=o 1 RTP/AVP 0 8 \n", "ok", kSdp, SDP_TOK_LF, "8"},
    {kNamed + "m=o 0 RTP/AVP\n", "ok", kSdp, SDP_TOK_LF, "RTP/AVP"},
    {kNamed + "m=o 1 udp\n", "FormatSpace 101", kToken, SDP_TOK_LF, "udp"},
    {kNamed + "m=o 1 udp ;", "FormatToken 101", kToken, SDP_TOK_SEMICOLON, "udp"},
    {kNamed + "m=o 1 udp t120\n", "FormatT120 1", kToken, SDP_TOK_LF, "t120"},
    {kNamed + "m=o 1 udp x y", "FormatEnd 101", kSdp, SDP_TOK_SPACE, "x"},
    {kNamed + "m=o 1 udp x\nc=IN IP4 1.2.3.4\nf=", "AfterMediaConnection 102", kSdp, SDP_TOK_ALPHA,
     "4"},
};

class Aftermath : public testing::Test {
protected:
    void SetUp() override { sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>("#"), 2); }

    static void expect(const Stop &row) {
        EXPECT_EQ(sdpGetLexerContext(), row.context) << row.text;
        EXPECT_EQ(LA(), row.kind) << row.text;
        EXPECT_EQ(sdpGetThrowAwayBuffer(), row.taken) << row.text;
    }

    static void decode(const Stop &row) {
        sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>("#"), 2);
        const SipString text = {static_cast<uint32_t>(row.text.size()),
                                const_cast<char *>(row.text.data())};
        SdpLine *line = nullptr;
        EXPECT_EQ(named(SdpLibDecodeSdp(&text, &line)), row.result) << row.text;
        SdpLibReleaseSdp(&line);
        expect(row);
    }

    template <size_t N>
    static void decodeAll(const Stop (&rows)[N]) {
        for (const Stop &row : rows) {
            decode(row);
        }
    }
};

TEST_F(Aftermath, OfVersionAndOrigin) {
    decodeAll(kVersionAndOrigin);
}

TEST_F(Aftermath, OfTexts) {
    decodeAll(kTexts);
}

TEST_F(Aftermath, OfConnections) {
    decodeAll(kConnections);
}

TEST_F(Aftermath, OfTimes) {
    decodeAll(kTimes);
}

TEST_F(Aftermath, OfAttributes) {
    decodeAll(kAttributes);
}

TEST_F(Aftermath, OfRtpmaps) {
    decodeAll(kRtpmaps);
}

TEST_F(Aftermath, OfPreconditions) {
    decodeAll(kPreconditions);
}

TEST_F(Aftermath, OfMedia) {
    decodeAll(kMediaLines);
}

TEST_F(Aftermath, TheBufferHoldsTheTextWithoutAskingForItsAddressAgain) {
    const char *const buffer = sdpGetThrowAwayBuffer();
    decode({kNamed + "t=1 2345\n", "ok", kSdp, SDP_TOK_LF, "2345"});
    EXPECT_STREQ(buffer, "2345");
}

// ---- Parsers called by their names

template <class Record, SDPResult (*Parse)(Record *)>
SDPResult onRecord() {
    Record record = {};
    return Parse(&record);
}

template <SDPResult (*Parse)(SDPAttr *, uint32_t), uint32_t type>
SDPResult onAttribute() {
    SDPAttr attr = {};
    return Parse(&attr, type);
}

SDPResult onText() {
    SipString text = {};
    return sdpStringField(SDP_TOK_SESSION_NAME, &text);
}

struct Call {
    SDPResult (*parse)();
    Stop row;
};

// The first token of the text is current in the SDP context.
const Call kLineCalls[] = {
    {onRecord<SDPOrigin, sdpOriginField>, {"x", "OriginLine 102", kString, SDP_TOK_ALPHA, "#"}},
    {onText, {"x", "TextLine 102", kString, SDP_TOK_ALPHA, "#"}},
    {onText, {"s=", "TextEnded 1", kString, SDP_TOK_EOF, "#"}},
    {onText, {"s=ab c", "TextEnd 101", kSdp, SDP_TOK_EOF, "c"}},
    {onRecord<SDPConnection, sdpConnectionField>, {"x", "ConnLine 102", kSdp, SDP_TOK_ALPHA, "#"}},
    {onRecord<SDPTimeField, sdpTimeField>, {"x", "TimeLine 102", kAlnum, SDP_TOK_ALPHA, "#"}},
    {onRecord<SDPTimeField, sdpTimeField>, {"t=1 22", "TimeEnd 101", kSdp, SDP_TOK_EOF, "22"}},
    {onRecord<SDPRepeatField, sdpRepeatField>, {"x", "RepeatLine 102", kAlnum, SDP_TOK_ALPHA, "#"}},
    {onRecord<SDPRepeatField, sdpRepeatField>,
     {"r=7", "TypedTimeUnit 101", kAlnum, SDP_TOK_EOF, ""}},
    {onRecord<SDPAttr, sdpAttributeField>, {"x", "AttrLine 102", kToken, SDP_TOK_ALPHA, "#"}},
    {onRecord<SDPMediaField, sdpMediaField>, {"x", "MediaLine 102", kToken, SDP_TOK_ALPHA, "#"}},
    {onRecord<SDPMediaField, sdpMediaField>,
     {"m=o 1", "MediaPortSpace 101", kAlnum, SDP_TOK_EOF, "1"}},
};

// What follows the attribute's name is current in the token context.
const Call kValueCalls[] = {
    {onAttribute<sdpRtpmapAttr, SDP_ATTR_RTPMAP>,
     {"n:4", "RtpmapSpace 101", kAlnum, SDP_TOK_EOF, "4"}},
    {onAttribute<sdpRtpmapAttr, SDP_ATTR_RTPMAP>,
     {"n:4 ab", "RtpmapNameTooLong 1", kChar, SDP_TOK_EOF, ""}},
    {onAttribute<sdpRtpmapAttr, SDP_ATTR_RTPMAP>,
     {"n:4 ab/8", "RtpmapEnd 101", kAlnum, SDP_TOK_EOF, "8"}},
    {onAttribute<sdpModeAttr, SDP_ATTR_FAX>, {"n", "ModeEnd 101", kSdp, SDP_TOK_EOF, "#"}},
    {onAttribute<sdpPacketizationAttr, SDP_ATTR_PTIME>,
     {"n x", "PacketColon 101", kAlnum, SDP_TOK_SPACE, "#"}},
    {onAttribute<sdpFaxRateMgmtAttr, SDP_ATTR_T38_RATE_MANAGEMENT>,
     {"n x", "RateColon 101", kToken, SDP_TOK_SPACE, "#"}},
    {onAttribute<sdpOtherRecAttr, SDP_ATTR_FMTP>,
     {"n x", "ValueColon 101", kString, SDP_TOK_SPACE, "#"}},
    {onAttribute<sdpOtherRecAttr, SDP_ATTR_FMTP>,
     {"n:a b", "ValueEnd 101", kSdp, SDP_TOK_EOF, "b"}},
    {onAttribute<sdpSilenceSuppression, SDP_ATTR_SILENCE_SUPP>,
     {"n:on", "SilenceEnded 1", kString, SDP_TOK_EOF, "on"}},
    {onAttribute<sdpResourceStatus, SDP_ATTR_CURR>,
     {"n:qos e2e", "DirectionSpace 101", kToken, SDP_TOK_EOF, "e2e"}},
};

class AftermathOfCalls : public support::ParsingTest {
protected:
    static void expect(const Call &call) {
        sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>("#"), 2);
        const Stop &row = call.row;
        EXPECT_EQ(named(call.parse()), row.result) << row.text;
        EXPECT_EQ(sdpGetLexerContext(), row.context) << row.text << ' ' << row.result;
        EXPECT_EQ(LA(), row.kind) << row.text << ' ' << row.result;
        EXPECT_EQ(sdpGetThrowAwayBuffer(), row.taken) << row.text << ' ' << row.result;
    }
};

TEST_F(AftermathOfCalls, OfLines) {
    for (const Call &call : kLineCalls) {
        start(call.row.text);
        expect(call);
    }
}

TEST_F(AftermathOfCalls, OfValues) {
    for (const Call &call : kValueCalls) {
        startValue(call.row.text);
        expect(call);
    }
}

TEST_F(AftermathOfCalls, WordsClassifiedLeaveTheTextBuffer) {
    start("x");
    sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>("#"), 2);
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpIpBcpAttrType(&attr, "Request")), "ok");
    EXPECT_STREQ(sdpGetThrowAwayBuffer(), "#");
}

// ---- An input that was freed

SDPResult decodeText(const char *text) {
    const SipString body = {static_cast<uint32_t>(std::string_view(text).size()),
                            const_cast<char *>(text)};
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdp(&body, &line);
    SdpLibReleaseSdp(&line);
    return result;
}

class InputGone : public testing::Test {
protected:
    void SetUp() override { decodeText("v=0\no=- 1 1 IN IP4 x\ns=-\n"); }
    void TearDown() override { clearSdpLexer(); }
};

TEST_F(InputGone, ItsAddressIsKept) {
    const uint8_t *const input = sdpGetInput();
    EXPECT_NE(input, nullptr);
    consume();
    EXPECT_EQ(sdpGetInput(), input);
}

TEST_F(InputGone, OperationsSeeAnEmptyInput) {
    EXPECT_STREQ(LT(), "");
    EXPECT_EQ(nextToken(), uint32_t{SDP_TOK_EOF});
    EXPECT_EQ(sdpGetLastChar(), 0);
    for (const uint32_t context : {kSdp, kChar, kString, kAlnum, kToken, kIpv6}) {
        clearSdpLexer();
        setLexerContext(context);
        consume();
        EXPECT_EQ(LA(), uint32_t{SDP_TOK_EOF});
        EXPECT_EQ(sdpGetEnd(), 1u);
        EXPECT_EQ(sdpGetStartToken(), 0u);
        EXPECT_EQ(sdpGetEndToken(), 0u);
    }
    clearSdpLexer();
    EXPECT_EQ(startTracking(), uint32_t{SDP_TOK_EOF});
    EXPECT_STREQ(LT(), "");
}

TEST_F(InputGone, PlacesSetByHandReadNothing) {
    sdpSetStartToken(100000);
    sdpSetEndToken(100010);
    EXPECT_STREQ(LT(), "");
    sdpSetIndex(5);
    EXPECT_EQ(nextToken(), uint32_t{SDP_TOK_EOF});
    consume();
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_EOF});
}

TEST_F(InputGone, ParsersReadNothing) {
    sdpSetTToken(SDP_TOK_SESSION_NAME);
    SipString text = {};
    EXPECT_EQ(named(sdpStringField(SDP_TOK_SESSION_NAME, &text)), "TextEnded 1");
    clearSdpLexer();
    sdpSetTToken(SDP_TOK_DIGIT);
    SdpLine line = {};
    line.ulProtoVersion = 99;
    EXPECT_EQ(named(sdpProtoVersion(&line)), "VersionEnd 101") << "the text of nothing is empty";
    EXPECT_EQ(line.ulProtoVersion, 0u);
    SdpLine body = {};
    clearSdpLexer();
    setLexerContext(kSdp);
    EXPECT_EQ(named(startSdpParsing(&body)), "StartVersion 100");
}

TEST_F(InputGone, TheNextInputIsRead) {
    char bytes[] = "v=0";
    const SipString text = {3, bytes};
    setInput(&text);
    clearSdpLexer();
    setLexerContext(kSdp);
    EXPECT_EQ(startTracking(), uint32_t{SDP_TOK_VERSION});
    EXPECT_STREQ(LT(), "v=");
}

// ---- The state before a decode, and the state that a log hook reads

class DecodeState : public testing::Test {
protected:
    void SetUp() override { clearSdpLexer(); }
    void TearDown() override { clearSdpLexer(); }

    static constexpr const char *kGood = "v=0\no=- 1 1 IN IP4 x\ns=-\n";
};

TEST_F(DecodeState, AnEndSetBeforeADecodeKeepsTheFirstTokenFromBeingCut) {
    sdpSetTToken(SDP_TOK_LF);
    sdpSetEnd(1);
    EXPECT_EQ(named(decodeText(kGood)), "StartVersion 100");
    EXPECT_EQ(sdpGetEnd(), 0u) << "the refused parse cleared it";
    EXPECT_EQ(named(decodeText(kGood)), "ok");
}

TEST_F(DecodeState, EachSetterCountsForABodyOfUsualLineEndsToo) {
    const std::string good = "v=0\r\no=- 1 1 IN IP4 x\r\ns=-\r\n";
    sdpSetTToken(SDP_TOK_LF);
    sdpSetEnd(1);
    EXPECT_EQ(named(decodeText(good.c_str())), "StartVersion 100");
    sdpSetEndToken(1);
    EXPECT_EQ(named(decodeText(("##" + good).c_str())), "ok");
    sdpSetEndToken(3);
    EXPECT_EQ(named(decodeText(good.c_str())), "StartVersion 100");
    sdpSetStartToken(4);
    sdpSetIndex(2);
    EXPECT_EQ(named(decodeText(("####" + good).c_str())), "ok");
    sdpSetIndex(1);
    EXPECT_EQ(named(decodeText(good.c_str())), "ok") << "the token half built begins the input";
    EXPECT_EQ(named(decodeText(good.c_str())), "ok");
}

TEST_F(DecodeState, PlacesSetBeforeADecodeAreWhereItBegins) {
    sdpSetEndToken(3); // the line end after the version
    EXPECT_EQ(named(decodeText(kGood)), "StartVersion 100");
    sdpSetEndToken(1);
    EXPECT_EQ(named(decodeText("##v=0\no=- 1 1 IN IP4 x\ns=-\n")), "ok");
    sdpSetStartToken(4);
    sdpSetIndex(2);
    EXPECT_EQ(named(decodeText("####v=0\no=- 1 1 IN IP4 x\ns=-\n")), "ok");
}

std::string seenInHook;

void lookInHook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                const char *, ...) {
    if (seenInHook.empty()) {
        seenInHook = sdpGetThrowAwayBuffer();
        for (const uint32_t value :
             {sdpGetStartToken(), sdpGetEndToken(), LA(), sdpGetLexerContext(), sdpGetEnd()}) {
            seenInHook += ' ' + std::to_string(value);
        }
        seenInHook += ' ' + std::string(LT());
    }
}

TEST_F(DecodeState, ALogHookSeesTheFirstTokenAndTheTextTakenLast) {
    const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = lookInHook;
    EXPECT_EQ(named(decodeText((kNamed + "c=IN IP4 1.256.").c_str())), "ConnOctetRange 101");
    g_gpfnSipLmLogHndlr = before;
    EXPECT_EQ(seenInHook, "256 0 1 37 1 0 v=");
    EXPECT_STREQ(sdpGetThrowAwayBuffer(), "v=") << "taken by the hook, later than the octet";
}

std::string inputInHook;

void readInputInHook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                     const char *, ...) {
    if (inputInHook.empty()) {
        const char *const input = reinterpret_cast<const char *>(sdpGetInput());
        setLexerContext(kAlnum);
        consume();
        inputInHook = std::string(LT()) + ' ' + input;
    }
}

TEST_F(DecodeState, ALogHookReadsTheNormalFormOfTheInput) {
    for (const std::string lineEnd : {"\n", "\r\n", "\r\n  ", "\n "}) {
        inputInHook.clear();
        const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
        g_gpfnSipLmLogHndlr = readInputInHook;
        const std::string text = "v=1234" + lineEnd + "o=- 1 1 IN IP4 host" + lineEnd + "s=-" +
                                 lineEnd + "c=IN IP4 1.256.2.3" + lineEnd;
        EXPECT_EQ(named(decodeText(text.c_str())), "ConnOctetRange 101");
        g_gpfnSipLmLogHndlr = before;
        EXPECT_EQ(inputInHook, "1234 v=1234\no=- 1 1 IN IP4 host\ns=-\nc=IN IP4 1.256.2.3\n\n\n");
    }
}

uint32_t kindInHook;

void classifyInHook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                    const char *, ...) {
    if (kindInHook == 0) {
        sdpSetStartToken(3);
        kindInHook = nextToken();
    }
}

TEST_F(DecodeState, ALogHookReadsOneByteOfTheInput) {
    kindInHook = 0;
    const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = classifyInHook;
    EXPECT_EQ(named(decodeText("v=0\r\no=- 1 1 IN IP4 x\r\n-")), "StartName 102");
    g_gpfnSipLmLogHndlr = before;
    EXPECT_EQ(kindInHook, uint32_t{SDP_TOK_LF});
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_MINUS});
}

char inputOfHook[] = "other";

void setInputInHook(uint32_t, uint32_t, uint32_t, const char *, const char *, uint32_t, uint32_t,
                    const char *, ...) {
    const SipString text = {sizeof inputOfHook - 1, inputOfHook};
    setInput(&text);
}

TEST_F(DecodeState, AnInputSetByAHookIsKept) {
    const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = setInputInHook;
    EXPECT_EQ(named(decodeText("v=0\r\no=- 1 1 IN IP4 x\r\n-")), "StartName 102");
    g_gpfnSipLmLogHndlr = before;
    EXPECT_EQ(sdpGetInput(), reinterpret_cast<const uint8_t *>(inputOfHook));
}

void decodeInHook(uint32_t, uint32_t, uint32_t, const char *, const char *function, uint32_t,
                  uint32_t, const char *, ...) {
    if (function == std::string("sdpConnectionFieldAddrIpv4")) {
        decodeText("v=x");
    }
}

TEST_F(DecodeState, ADecodeInAHookLeavesTheFailureOfTheOuterOne) {
    const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = decodeInHook;
    EXPECT_EQ(named(decodeText((kNamed + "c=IN IP4 1.256.").c_str())), "ConnOctetRange 101");
    g_gpfnSipLmLogHndlr = before;
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_STREQ(failure.pcCheck, "ConnOctetRange");
    EXPECT_EQ(failure.ulLine, 4u);
}

std::string textsInHook;

void readInHook(uint32_t, uint32_t, uint32_t, const char *, const char *function, uint32_t,
                uint32_t, const char *, ...) {
    if (function == std::string("SdpLibDecodeSdp")) {
        textsInHook += '[' + std::string(LT()) + ']';
    }
}

TEST_F(InputGone, ALogHookThatReadsAfterARefusalReadsNothing) {
    textsInHook.clear();
    const SipLmLogHndlr before = g_gpfnSipLmLogHndlr;
    g_gpfnSipLmLogHndlr = readInHook;
    EXPECT_EQ(named(decodeText("v=0\no=x")), "OriginUserSpace 101");
    g_gpfnSipLmLogHndlr = before;
    EXPECT_EQ(textsInHook, "[]");
}

} // namespace
