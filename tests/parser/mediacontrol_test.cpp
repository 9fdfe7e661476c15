// The media-control attributes by their parsers called alone: texts without a line end, the word
// classifiers, and the contents of the record after a refused line.
#include "parser/parsing.hpp"

namespace {

using support::named;
using support::TextAndResult;
using support::textOf;

class ParserMediaControl : public support::ParsingTest {};

TEST_F(ParserMediaControl, NumberWithoutLineEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"a=sendrecv", "ModeEnd 101"},
        {"a=inactive", "ModeEnd 101"},
        {"a=X-modem", "ModeEnd 101"},
        {"a=ptime", "PacketColon 101"},
        {"a=ptime:", "PacketNumber 101"},
        {"a=ptime:20", "PacketEnd 101"},
        {"a=maxptime:20", "PacketEnd 101"},
        {"a=framerate:25", "PacketEnd 101"},
        {"a=framerate:25.", "PacketFraction 101"},
        {"a=framerate:25.5", "PacketEnd 101"},
        {"a=quality", "QualityColon 101"},
        {"a=quality:", "QualityNumber 101"},
        {"a=quality:5", "QualityEnd 101"},
        {"a=T38FaxVersion", "FaxColon 101"},
        {"a=T38MaxBitRate:", "FaxNumber 101"},
        {"a=T38FaxMaxBuffer:1", "FaxEnd 101"},
        {"a=T38FaxTranscodingMMR:", "FaxNumber 101"},
        {"a=T38FaxTranscodingMMR:1", "FaxEnd 101"},
    };
    expectResults(sdpAttributeField, rows);
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(ParserMediaControl, WordWithoutLineEndIsRefused) {
    constexpr TextAndResult rows[] = {
        {"a=T38FaxRateManagement", "RateColon 101"},
        {"a=T38FaxRateManagement:", "RateToken 101"},
        {"a=T38FaxRateManagement:local", "RateWord 101"},
        {"a=T38FaxRateManagement:localTCF", "RateEnd 101"},
        {"a=T38FaxUdpEC", "UdpEcColon 101"},
        {"a=T38FaxUdpEC:", "UdpEcToken 101"},
        {"a=T38FaxUdpEC:t38", "UdpEcWord 101"},
        {"a=T38FaxUdpEC:t38UDPFEC", "UdpEcEnd 101"},
        {"a=silenceSupp", "SilenceColon 101"},
        {"a=silenceSupp:", "SilenceToken 101"},
        {"a=silenceSupp:onn", "SilenceWord 101"},
        {"a=silenceSupp:on", "SilenceEnded 1"},
        {"a=silenceSupp:on ", "SilenceEnd 101"},
        {"a=silenceSupp:off - -", "SilenceEnd 101"},
        {"a=ecan", "EcanColon 101"},
        {"a=ecan:", "EcanDirection 101"},
        {"a=ecan:fb", "EcanSpace 101"},
        {"a=ecan:fb ", "EcanToken 101"},
        {"a=ecan:fb on", "EcanEnded 1"},
        {"a=ecan:fb on ", "EcanEnd 101"},
        {"a=ecan:b off -", "EcanEnd 101"},
        {"a=ipbcp", "IpBcpColon 101"},
        {"a=ipbcp:", "IpBcpVersion 101"},
        {"a=ipbcp:1", "IpBcpSpace 101"},
        {"a=ipbcp:1 ", "IpBcpType 101"},
        {"a=ipbcp:1 Request", "IpBcpEnd 101"},
        {"a=setup", "SetupColon 101"},
        {"a=setup:", "SetupEnded 1"},
        {"a=setup:act", "SetupWord 101"},
        {"a=setup:active", "SetupEnd 101"},
    };
    expectResults(sdpAttributeField, rows);
}

TEST_F(ParserMediaControl, EndOfInputIsNotLogged) {
    for (const char *const text : {"a=silenceSupp:on", "a=ecan:fb on", "a=setup:"}) {
        start(text);
        SDPAttr attr = {};
        EXPECT_NE(sdpAttributeField(&attr), 0u);
    }
    EXPECT_TRUE(log.entries().empty());
}

// ---- Word classifiers

TEST_F(ParserMediaControl, SilenceWords) {
    expectWords(
        sdpSilenceSuppressionOn,
        [](SDPAttr & attr) -> auto & { return attr.unAttrValue.stSilenceSupp.bOn; },
        {{"on", 1}, {"off", 0}, {"ON", kNoWord}, {"o", kNoWord}, {"on ", kNoWord}},
        "SilenceWord 101", "3 sdpparser sdpSilenceSuppressionOn 3");
}

TEST_F(ParserMediaControl, EcanDirections) {
    expectWords(
        sdpEchoCacellationDirection,
        [](SDPAttr & attr) -> auto & { return attr.unAttrValue.stEcan.enEcanDir; },
        {{"fb", SDP_ECAN_FB},
         {"f", SDP_ECAN_F},
         {"b", SDP_ECAN_B},
         {"bf", kNoWord},
         {"F", kNoWord},
         {"", kNoWord}},
        "EcanDirectionWord 101", "3 sdpparser sdpEchoCacellationDirection 3");
}

TEST_F(ParserMediaControl, EcanWords) {
    expectWords(
        sdpEchoCacellationOn, [](SDPAttr & attr) -> auto & { return attr.unAttrValue.stEcan.bOn; },
        {{"on", 1}, {"off", 0}, {"Off", kNoWord}, {" on", kNoWord}}, "EcanWord 101",
        "3 sdpparser sdpEchoCacellationOn 3");
}

TEST_F(ParserMediaControl, IpBcpTypes) {
    expectWords(
        sdpIpBcpAttrType, [](SDPAttr & attr) -> auto & { return attr.unAttrValue.stIpBcp.ucType; },
        {{"Request", SDP_IPBCP_REQUEST},
         {"Accepted", SDP_IPBCP_ACCEPTED},
         {"Confused", SDP_IPBCP_CONFUSED},
         {"Rejected", SDP_IPBCP_REJECTED},
         {"request", kNoWord},
         {" Request", kNoWord},
         {"Reject", kNoWord}},
        "IpBcpType 101");
}

TEST_F(ParserMediaControl, SetupRoles) {
    expectWords(
        sdpT120AttrT120Mode, [](SDPAttr & attr) -> auto & { return attr.unAttrValue.enT120Mode; },
        {{"passive", SDP_T120_PASSIVE},
         {"active", SDP_T120_ACTIVE},
         {"actpass", SDP_T120_ACTPASS},
         {"Active", kNoWord},
         {"active ", kNoWord},
         {"holdconn", kNoWord}},
        "SetupWord 101", "3 sdpparser sdpT120AttrT120Mode 3");
}

// ---- Records

TEST_F(ParserMediaControl, ParametersOf1023Bytes) {
    const std::string params = ' ' + std::string(1022, 'p');
    start("a=silenceSupp:on" + params + "\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
    EXPECT_EQ(textOf(attr.unAttrValue.stSilenceSupp.strParams), params);

    start("a=ecan:fb off" + params + "\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
    EXPECT_EQ(textOf(attr.unAttrValue.stEcan.strParams), params);
}

TEST_F(ParserMediaControl, IpBcpLeavesItsReservedFields) {
    start("a=ipbcp:511 Confused\n");
    SDPAttr attr = {};
    ASSERT_EQ(named(sdpAttributeField(&attr)), "ok");
    const SDPIpBcp &ipBcp = attr.unAttrValue.stIpBcp;
    EXPECT_EQ(ipBcp.ucVersion, 255u);
    EXPECT_EQ(ipBcp.ucReserved, 0u);
    EXPECT_EQ(ipBcp.usReserved, 0u);
    EXPECT_EQ(ipBcp.ucType, uint32_t{SDP_IPBCP_CONFUSED});
}

TEST_F(ParserMediaControl, IpBcpTakesTheAttributeOnly) {
    startValue("name:7 Request\n");
    SDPAttr attr = {};
    ASSERT_EQ(named(sdpIpBcpAttr(&attr)), "ok");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_IPBCP});
}

TEST_F(ParserMediaControl, IpBcpConsumesOnlyARunOfLettersBeforeItIsJudged) {
    SDPAttr attr = {};
    startValue("ipbcp:1 2\n");
    EXPECT_EQ(named(sdpIpBcpAttr(&attr)), "IpBcpType 101");
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_DIGIT});
    startValue("ipbcp:1 Requests\n");
    EXPECT_EQ(named(sdpIpBcpAttr(&attr)), "IpBcpType 101");
    EXPECT_EQ(LA(), uint32_t{SDP_TOK_LF});
}

TEST_F(ParserMediaControl, FractionIsForFrameRatesOnly) {
    for (const uint32_t type : {SDP_ATTR_PTIME, SDP_ATTR_MAXPTIME}) {
        startValue("name:25.5\n");
        SDPAttr attr = {};
        EXPECT_EQ(named(sdpPacketizationAttr(&attr, type)), "PacketEnd 101");
        EXPECT_EQ(attr.ulAttrType, type);
        EXPECT_EQ(attr.unAttrValue.ulValue, 25u);
    }
}

TEST_F(ParserMediaControl, FieldsBeforeAFailureStay) {
    start("a=ecan:b on\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "EcanNoParams 101");
    EXPECT_EQ(attr.ulAttrType, uint32_t{SDP_ATTR_ECAN});
    EXPECT_EQ(attr.unAttrValue.stEcan.enEcanDir, uint32_t{SDP_ECAN_B});
    EXPECT_EQ(attr.unAttrValue.stEcan.bOn, 1u);

    attr = {};
    start("a=ipbcp:5 x\n");
    EXPECT_EQ(named(sdpAttributeField(&attr)), "IpBcpType 101");
    EXPECT_EQ(attr.unAttrValue.stIpBcp.ucVersion, 5u);
}

TEST_F(ParserMediaControl, ParametersWithoutMemory) {
    start("a=silenceSupp:on -\n");
    failAllocation(1);
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "SilenceStore 1");
    start("a=ecan:fb on -\n");
    failAllocation(1);
    EXPECT_EQ(named(sdpAttributeField(&attr)), "EcanStore 1");
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"3 sdpparser sdpSilenceSuppression 3",
                                                     "3 sdpparser sdpEchoCacellation 3"}));
}

// The role is compared where it was gathered, and costs no memory.
TEST_F(ParserMediaControl, SetupAllocatesNothing) {
    start("a=setup:active\n");
    SDPAttr attr = {};
    EXPECT_EQ(named(sdpAttributeField(&attr)), "ok");
    EXPECT_TRUE(sizesAskedFor().empty());
}

} // namespace
