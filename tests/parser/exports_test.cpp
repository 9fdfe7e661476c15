// Exported parsers that the library does not call by these names: each has the same result as the
// text within a body.
#include <cstring>

#include "parser/parsing.hpp"

namespace {

using support::named;
using support::textOf;

class ParserExports : public support::ParsingTest {};

struct ValueParser {
    SDPResult (*parse)(SDPAttr *, uint32_t);
    uint32_t type;
    const char *text;
};

constexpr ValueParser kValueParsers[] = {
    {sdpModeAttr, SDP_ATTR_SENDRECV, "sendrecv\n"},
    {sdpPacketizationAttr, SDP_ATTR_PTIME, "ptime:20\n"},
    {sdpQualityAttr, SDP_ATTR_QUALITY, "quality:7\n"},
    {sdpFaxNumericAttr, SDP_ATTR_T38_MAX_BIT_RATE, "T38MaxBitRate:14400\n"},
    {sdpFaxRateMgmtAttr, SDP_ATTR_T38_RATE_MANAGEMENT, "T38FaxRateManagement:transferredTCF\n"},
    {sdpFaxUdpEC, SDP_ATTR_T38_UDP_EC, "T38FaxUdpEC:t38UDPRedundancy\n"},
    {sdpSilenceSuppression, SDP_ATTR_SILENCE_SUPP, "silenceSupp:on 5 g711 std 7\n"},
    {sdpEchoCacellation, SDP_ATTR_ECAN, "ecan:fb on G168\n"},
    {sdpT120Attr, SDP_ATTR_SETUP, "setup:active\n"},
    {sdpRtpmapAttr, SDP_ATTR_RTPMAP, "rtpmap:97 iLBC/8000/2\n"},
};

// The encoded value shows everything that was read.
std::string written(SDPAttr &attr) {
    uint32_t withPrefix = 1;
    SipRefString *text = nullptr;
    EXPECT_EQ(SdpLibEncodeSdpLine(&withPrefix, SDP_LINE_ATTRIBUTE, &attr, &text), 0u);
    std::string line(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text));
    SipSmReleaseRefString(text);
    return line;
}

TEST_F(ParserExports, ValueParsersReadWhatTheAttributeParserReads) {
    for (const ValueParser &row : kValueParsers) {
        start("a=" + std::string(row.text));
        SDPAttr whole = {};
        ASSERT_EQ(named(sdpAttributeField(&whole)), "ok") << row.text;
        ASSERT_EQ(whole.ulAttrType, row.type) << row.text;
        startValue(row.text);
        SDPAttr alone = {};
        EXPECT_EQ(named(row.parse(&alone, row.type)), "ok") << row.text;
        EXPECT_EQ(LA(), uint32_t{SDP_TOK_EOF}) << row.text;
        alone.ulAttrType = row.type;
        EXPECT_EQ(written(alone), written(whole));
        EXPECT_EQ(written(whole), "a=" + std::string(row.text, std::strlen(row.text) - 1) + "\r\n");
    }
}

TEST_F(ParserExports, ValueParsersRefuseWhatTheAttributeParserRefuses) {
    for (const ValueParser &row : kValueParsers) {
        const std::string cut(row.text, std::strlen(row.text) - 1);
        start("a=" + cut);
        SDPAttr whole = {};
        const std::string refused = named(sdpAttributeField(&whole));
        EXPECT_NE(refused, "ok") << cut;
        startValue(cut);
        SDPAttr alone = {};
        EXPECT_EQ(named(row.parse(&alone, row.type)), refused) << cut;
    }
}

TEST_F(ParserExports, RepeatLinesAreReadWithoutTheirTimeLine) {
    start("r=7d 1h 0\nr=604800 3600\nz=");
    SDPRepeatFieldSet set = {};
    ASSERT_EQ(named(sdpRepeatFields(&set)), "ok");
    ASSERT_EQ(set.ulNoOfRepeatFields, 2u);
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_ZONE});
}

TEST_F(ParserExports, AValueWithoutRoomForItIsRefused) {
    for (const char *text : {"name:\n", "name:value\n"}) {
        startValue(text);
        SDPAttr attr = {};
        char untouched = 'x';
        EXPECT_NE(named(sdpUnRecAttrTypeExtn("name", &attr, &untouched, 0)), "ok") << text;
        EXPECT_EQ(untouched, 'x');
    }
}

TEST_F(ParserExports, TheDecodersHookHasNoMemoryOutsideADecode) {
    SdpSetFnAlloc(SdpLibAllocSdpMem);
    SipString text = {};
    EXPECT_EQ(named(sdpSetString(&text, "word")), "SetString 1");
    EXPECT_EQ(text.ulLen, 4u);
    EXPECT_TRUE(text.pcData == nullptr);
}

TEST_F(ParserExports, AddressLettersNeedNoRoom) {
    char tokens[SDP_IPV6_TOKENS][4];
    char untouched = 'x';
    uint32_t length = 9;
    EXPECT_EQ(named(SdpTokanizeIPv6Str("::1", 3, tokens, &untouched, 0, &length)), "ok");
    EXPECT_EQ(untouched, 'x');
    EXPECT_EQ(length, 0u);
}

} // namespace
