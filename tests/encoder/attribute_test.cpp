// The a= lines except the preconditions.
#include <algorithm>

#include "encoder/encodetest.hpp"

namespace {

using namespace support;

SDPAttr number(uint32_t type, uint32_t value) {
    SDPAttr attr = {};
    attr.ulAttrType = type;
    attr.unAttrValue.ulValue = value;
    return attr;
}

SDPAttr words(uint32_t type, std::string_view value) {
    SDPAttr attr = {};
    attr.ulAttrType = type;
    attr.unAttrValue.strValue = str(value);
    return attr;
}

SDPAttr rtpMap(const SDPRtpMapAttr &value) {
    SDPAttr attr = {};
    attr.ulAttrType = SDP_ATTR_RTPMAP;
    attr.unAttrValue.stRtpMap = value;
    return attr;
}

class EncodeAttribute : public EncodeTest {
protected:
    // The attribute alone, without prefix and line end.
    std::string encoded(SDPAttr attr) {
        startAnew();
        EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
        return text();
    }

    // The attribute as the one item of a list.
    std::string listed(SDPAttr attr) {
        startAnew();
        SDPAttr *items[] = {&attr};
        SDPAttrList list = {1, items};
        EXPECT_EQ(sdpLibEncodeAttribFields(&prefixed, &list, buffer), 0u);
        return text();
    }

    std::string traced(SDPAttr attr) {
        return trace([&] { return sdpLibEncodeAttribField(&attr, buffer); });
    }

    SipString name = str("x-foo");
};

TEST_F(EncodeAttribute, WritesPlainValuesAfterTheirNames) {
    const std::pair<SDPAttr, const char *> attrs[] = {
        {number(SDP_ATTR_SENDRECV, 0), "sendrecv"},
        {number(SDP_ATTR_SENDONLY, 0), "sendonly"},
        {number(SDP_ATTR_RECVONLY, 0), "recvonly"},
        {number(SDP_ATTR_INACTIVE, 0), "inactive"},
        {number(SDP_ATTR_PTIME, 20), "ptime:20"},
        {number(SDP_ATTR_MAXPTIME, 0), "maxptime:0"},
        {number(SDP_ATTR_FRAMERATE, 4294967295), "framerate:4294967295"},
        {words(SDP_ATTR_FMTP, "97 mode-set=0,2"), "fmtp:97 mode-set=0,2"},
        {words(SDP_ATTR_CAT, "a"), "cat:a"},
        {words(SDP_ATTR_KEYWDS, "b"), "keywds:b"},
        {words(SDP_ATTR_TOOL, "c"), "tool:c"},
        {words(SDP_ATTR_ORIENT, "d"), "orient:d"},
        {words(SDP_ATTR_TYPE, "e"), "type:e"},
        {words(SDP_ATTR_CHARSET, "f"), "charset:f"},
        {words(SDP_ATTR_SDPLANG, "g"), "sdplang:g"},
        {words(SDP_ATTR_LANG, ""), "lang:"},
        {number(SDP_ATTR_QUALITY, 10), "quality:10"},
        {number(SDP_ATTR_T38_FAX_VERSION, 0), "T38FaxVersion:0"},
        {number(SDP_ATTR_T38_MAX_BIT_RATE, 14400), "T38MaxBitRate:14400"},
        {number(SDP_ATTR_T38_MAX_BUFFER, 200), "T38FaxMaxBuffer:200"},
        {number(SDP_ATTR_T38_MAX_DATAGRAM, 72), "T38FaxMaxDatagram:72"},
        {number(SDP_ATTR_FAX, 0), "fax"},
        {number(SDP_ATTR_MODEM, 0), "modem"},
        {number(SDP_ATTR_X_FAX, 0), "X-fax"},
        {number(SDP_ATTR_X_MODEM, 0), "X-modem"},
    };
    for (const auto &[attr, expected] : attrs) {
        EXPECT_EQ(encoded(attr), expected);
        EXPECT_EQ(listed(attr), "a=" + std::string(expected) + "\r\n");
    }
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeAttribute, WritesThePlainWordsOfT38) {
    EXPECT_EQ(encoded(number(SDP_ATTR_T38_RATE_MANAGEMENT, 1)), "T38FaxRateManagement:localTCF");
    EXPECT_EQ(encoded(number(SDP_ATTR_T38_RATE_MANAGEMENT, 2)),
              "T38FaxRateManagement:transferredTCF");
    EXPECT_EQ(encoded(number(SDP_ATTR_T38_UDP_EC, 1)), "T38FaxUdpEC:t38UDPFEC");
    EXPECT_EQ(encoded(number(SDP_ATTR_T38_UDP_EC, 2)), "T38FaxUdpEC:t38UDPRedundancy");
    for (const uint32_t value : {0u, 3u, 4294967295u}) {
        EXPECT_EQ(encoded(number(SDP_ATTR_T38_RATE_MANAGEMENT, value)), "T38FaxRateManagement:");
        EXPECT_EQ(encoded(number(SDP_ATTR_T38_UDP_EC, value)), "T38FaxUdpEC:");
    }
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeAttribute, T38FlagsFollowTheConfiguredStyle) {
    const struct {
        uint32_t style;
        const char *zero;
        const char *set;
    } styles[] = {
        {0, "", "a=T38FaxFillBitRemoval\r\n"},
        {1, "", "a=T38FaxFillBitRemoval\r\n"},
        {2, "a=T38FaxFillBitRemoval:0\r\n", "a=T38FaxFillBitRemoval:7\r\n"},
        {3, "a=T38FaxFillBitRemoval\r\n", "a=T38FaxFillBitRemoval\r\n"},
    };
    for (const auto &row : styles) {
        g_gstSdpT38OptCfg = row.style;
        EXPECT_EQ(listed(number(SDP_ATTR_T38_FILL_BIT_REMOVAL, 0)), row.zero) << row.style;
        EXPECT_EQ(listed(number(SDP_ATTR_T38_FILL_BIT_REMOVAL, 7)), row.set) << row.style;
        EXPECT_EQ("a=" + encoded(number(SDP_ATTR_T38_FILL_BIT_REMOVAL, 7)) + "\r\n", row.set);
    }
}

TEST_F(EncodeAttribute, AllThreeT38FlagsHaveTheStyle) {
    for (const uint32_t type : {SDP_ATTR_T38_TRANSCODING_MMR, SDP_ATTR_T38_TRANSCODING_JBIG}) {
        const std::string written = type == SDP_ATTR_T38_TRANSCODING_MMR
                                        ? "a=T38FaxTranscodingMMR"
                                        : "a=T38FaxTranscodingJBIG";
        g_gstSdpT38OptCfg = 0;
        EXPECT_EQ(listed(number(type, 0)), "");
        EXPECT_EQ(listed(number(type, 1)), written + "\r\n");
        g_gstSdpT38OptCfg = 2;
        EXPECT_EQ(listed(number(type, 0)), written + ":0\r\n");
    }
    g_gstSdpT38OptCfg = 0;
    EXPECT_EQ(listed(number(SDP_ATTR_T38_MAX_BIT_RATE, 0)), "a=T38MaxBitRate:0\r\n")
        << "a number of 0 is no flag";
}

TEST_F(EncodeAttribute, UnrecognisedOnesAreWrittenByTheirOwnName) {
    SDPAttr attr = words(SDP_ATTR_UNREC_VALUE, "bar");
    attr.pstAttrName = &name;
    EXPECT_EQ(listed(attr), "a=x-foo:bar\r\n");
    EXPECT_EQ(Appends::texts(), (Lines{"a", "=", "x-foo", ":", "bar", "\r\n"}));
    attr.unAttrValue.strValue = {0, nullptr};
    EXPECT_EQ(listed(attr), "a=x-foo:\r\n");
    attr.ulAttrType = SDP_ATTR_UNREC_NOVALUE;
    EXPECT_EQ(listed(attr), "a=x-foo\r\n");
    attr.pstAttrName = nullptr;
    EXPECT_EQ(listed(attr), "a=\r\n");
}

TEST_F(EncodeAttribute, UnrecognisedOnesTestNoAppend) {
    SDPAttr attr = words(SDP_ATTR_UNREC_VALUE, "bar");
    attr.pstAttrName = &name;
    EXPECT_EQ(traced(attr), R"("x-foo" ok ":bar"
":" ok "x-foobar"
"bar" ok "x-foo:"
)");
    attr.ulAttrType = SDP_ATTR_UNREC_NOVALUE;
    EXPECT_EQ(traced(attr), R"("x-foo" ok ""
)");
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeAttribute, UnknownTypesLeaveTheirLineEmpty) {
    for (const uint32_t type : {0u, 41u, 4294967295u}) {
        startAnew();
        SDPAttr attr = number(type, 1);
        EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0xDB086068u);
        EXPECT_EQ(text(), "");
        EXPECT_EQ(log.texts(), Lines{"3 sdpencodeattribute sdpLibEncodeAttribField 21"});
        EXPECT_EQ(g_gSipCodePoint, 731u << 16 | log.entries().at(0).line);
        EXPECT_EQ(listed(attr), "a=\r\n");
    }
}

TEST_F(EncodeAttribute, NamePartTellsWhetherAValueFollows) {
    uint32_t nameWritten = 0;
    SDPAttr attr = number(SDP_ATTR_PTIME, 20);
    EXPECT_EQ(sdpLibEncodeAppAttribField(&attr, buffer, &nameWritten), 0u);
    EXPECT_EQ(text(), "ptime:");
    EXPECT_EQ(nameWritten, 1u);

    for (const uint32_t type : {SDP_ATTR_UNREC_VALUE, SDP_ATTR_UNREC_NOVALUE}) {
        nameWritten = 0;
        attr = words(type, "bar");
        Appends::failFrom(1);
        EXPECT_EQ(sdpLibEncodeAppAttribField(&attr, buffer, &nameWritten), 0u);
        EXPECT_EQ(nameWritten, 1u);
        EXPECT_EQ(sdpLibEncodeDefinedAttribField(&attr, buffer), 0u);
    }

    startAnew();
    nameWritten = 0;
    attr = number(SDP_ATTR_CURR, 0);
    EXPECT_EQ(sdpLibEncodeAppAttribField(&attr, buffer, &nameWritten), 0u);
    EXPECT_EQ(text(), "curr:qos e2e none") << "preconditions are written whole";
    EXPECT_EQ(nameWritten, 0u);
}

TEST_F(EncodeAttribute, ARefusedNameIsLoggedAndEndsTheAttribute) {
    SDPAttr attr = number(SDP_ATTR_PTIME, 20);
    Appends::failAt(1);
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), Appends::kRefused);
    EXPECT_EQ(Appends::count(), 1u);
    EXPECT_EQ(log.texts(), Lines{"3 sdpencodeattribute sdpLibEncodeAttribField 21"});
}

TEST_F(EncodeAttribute, ValuesPassTheirRefusedAppendOn) {
    EXPECT_EQ(traced(number(SDP_ATTR_PTIME, 20)), R"("ptime:" refused ""
"20" refused "ptime:"
)");
    EXPECT_EQ(traced(words(SDP_ATTR_FMTP, "97 x")), R"("fmtp:" refused ""
"97 x" refused "fmtp:"
)");
    EXPECT_EQ(traced(number(SDP_ATTR_T38_RATE_MANAGEMENT, 1)),
              R"("T38FaxRateManagement:" refused ""
"localTCF" refused "T38FaxRateManagement:"
)");
    EXPECT_EQ(traced(number(SDP_ATTR_T38_UDP_EC, 1)), R"("T38FaxUdpEC:" refused ""
"t38UDPFEC" ok "T38FaxUdpEC:"
)");
    g_gstSdpT38OptCfg = 2;
    EXPECT_EQ(traced(number(SDP_ATTR_T38_TRANSCODING_MMR, 1)),
              R"("T38FaxTranscodingMMR" refused ""
":" ok "T38FaxTranscodingMMR1"
"1" refused "T38FaxTranscodingMMR:"
)");
}

TEST_F(EncodeAttribute, ValueWritersAnswerTheirOwnAppend) {
    SDPAttr attr = number(SDP_ATTR_T38_UDP_EC, 2);
    Appends::failFrom(1);
    EXPECT_EQ(sdpLibEncodeAttribFieldT38UdpEc(&attr, buffer), Appends::kRefused);
    EXPECT_EQ(sdpLibEncodeAttribFieldT38RateMgmt(&attr, buffer), Appends::kRefused);
    EXPECT_EQ(sdpLibEncodeAttribFieldT38SilenceSupp(&attr, buffer), Appends::kRefused);
    EXPECT_EQ(sdpLibEncodeAttribFieldEchoCan(&attr, buffer), Appends::kRefused);
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeAttribute, ValueWritersWriteTheValueAlone) {
    SDPRtpMapAttr opus = {};
    opus.ulPayloadType = 111;
    opus.strEncodingName = str("opus");
    opus.ulClockRate = 48000;
    opus.ulEncodingParams = 2;
    SDPAttr attr = rtpMap(opus);
    EXPECT_EQ(sdpLibEncodeAttribFieldRtpMap(&attr, buffer), 0u);
    EXPECT_EQ(text(), "111 opus/48000/2");

    startAnew();
    attr = number(SDP_ATTR_SETUP, SDP_T120_ACTIVE);
    EXPECT_EQ(sdpLibEncodeAttribT120Setup(&attr, buffer), 0u);
    attr.unAttrValue.stIpBcp = {1, 0, 0, SDP_IPBCP_REQUEST};
    EXPECT_EQ(sdpLibEncodeAttribFieldIbpCp(&attr, buffer), 0u);
    EXPECT_EQ(text(), "active1 Request");
}

// ---- The list

class EncodeAttributeList : public EncodeAttribute {
protected:
    SDPResult encode() { return sdpLibEncodeAttribFields(&prefixed, &list, buffer); }

    SDPAttr attrs[3] = {number(SDP_ATTR_PTIME, 20), number(99, 0), number(SDP_ATTR_FAX, 0)};
    SDPAttr *items[3] = {&attrs[0], &attrs[1], &attrs[2]};
    SDPAttrList list = {3, items};
};

TEST_F(EncodeAttributeList, GoesOnAfterAnAttributeThatFails) {
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "a=ptime:20\r\na=\r\na=fax\r\n");
    EXPECT_EQ(log.texts().size(), 1u);
}

TEST_F(EncodeAttributeList, TestsNoAppend) {
    list.ulNoOfAttrs = 1;
    EXPECT_EQ(trace([this] { return encode(); }), R"("a" ok "ptime:20\r\n"
"=" ok "aptime:20\r\n"
"ptime:" ok "a=\r\n"
"20" ok "a=ptime:\r\n"
"\r\n" ok "a=ptime:20"
)");
}

TEST_F(EncodeAttributeList, SucceedsInAFullBuffer) {
    for (const SDPResult result : resultsWhenFull([this] { return encode(); })) {
        EXPECT_EQ(result, 0u);
    }
}

TEST_F(EncodeAttributeList, WritesNoPrefixWhenTheFlagAsksForNone) {
    EXPECT_EQ(sdpLibEncodeAttribFields(&bare, &list, buffer), 0u);
    EXPECT_EQ(text(), "ptime:20\r\n\r\nfax\r\n");
}

TEST_F(EncodeAttributeList, LeavesOutFlagsOfZeroBetweenOthers) {
    attrs[1] = number(SDP_ATTR_T38_FILL_BIT_REMOVAL, 0);
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[1];
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "a=ptime:20\na=fax\n");
}

TEST_F(EncodeAttributeList, OfNothingIsNoLine) {
    list = {0, nullptr};
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(Appends::count(), 0u);
}

// ---- rtpmap

class EncodeRtpMap : public EncodeAttribute {};

TEST_F(EncodeRtpMap, WritesTheNameThatIsGiven) {
    EXPECT_EQ(encoded(rtpMap({97, 0, str("AMR"), 8000, 1})), "rtpmap:97 AMR/8000");
    EXPECT_EQ(encoded(rtpMap({97, 0, str("AMR"), 8000, 0})), "rtpmap:97 AMR/8000");
    EXPECT_EQ(encoded(rtpMap({10, 10, str("L16"), 44100, 2})), "rtpmap:10 L16/44100/2");
    EXPECT_EQ(encoded(rtpMap({96, 0, str("x"), 0, 4294967295})), "rtpmap:96 x/0/4294967295");
}

TEST_F(EncodeRtpMap, PrefersTheNameToTheProfile) {
    SDPAttr attr = rtpMap({9, 9, str("l16"), 0, 0});
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
    EXPECT_EQ(text(), "rtpmap:9 l16/0");
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulClockRate, 0u) << "nothing is filled in";
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 0u);
}

TEST_F(EncodeRtpMap, FillsTheRecordInFromTheStereoProfile) {
    SDPAttr attr = rtpMap({10, 9, {0, nullptr}, 0, 0});
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
    EXPECT_EQ(text(), "rtpmap:10 L16/44100/2");
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulClockRate, 44100u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 2u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.strEncodingName.ulLen, 0u);
}

TEST_F(EncodeRtpMap, KeepsTheClockRateAndTheChannelsThatAreGiven) {
    SDPAttr attr = rtpMap({8, 7, {0, nullptr}, 16000, 3});
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
    EXPECT_EQ(text(), "rtpmap:8 PCMA/16000/3");
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulClockRate, 16000u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 3u);
}

TEST_F(EncodeRtpMap, NamesTheProfilesFrom7To35) {
    for (uint32_t profile = 0; profile <= 40; ++profile) {
        startAnew();
        SDPAttr attr = rtpMap({1, profile, {0, nullptr}, 0, 0});
        EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
        const SDPRtpMapAttr &filled = attr.unAttrValue.stRtpMap;
        if (profile < 7 || profile > 35) {
            EXPECT_EQ(text(), "rtpmap:1 /0") << profile;
            EXPECT_EQ(filled.ulEncodingParams, 0u);
            continue;
        }
        const SipString &row = g_aStrRtpmapProfiles[profile - 1];
        const std::string channels = profile == 9 ? "/2" : "";
        EXPECT_EQ(text(), "rtpmap:1 " + std::string(row.pcData, row.ulLen) + '/' +
                              std::to_string(g_aulRtpmapClockRates[profile - 1]) + channels);
        EXPECT_EQ(filled.ulClockRate, g_aulRtpmapClockRates[profile - 1]);
        EXPECT_EQ(filled.ulEncodingParams, profile == 9 ? 2u : 1u);
    }
}

TEST_F(EncodeRtpMap, WritesTheStoredClockRateOfAProfileWithoutAName) {
    EXPECT_EQ(encoded(rtpMap({0, 1, {0, nullptr}, 8000, 1})), "rtpmap:0 /8000");
}

TEST_F(EncodeRtpMap, TakesANameWithoutBytesForNone) {
    EXPECT_EQ(encoded(rtpMap({8, 7, {4, nullptr}, 0, 0})), "rtpmap:8 PCMA/8000");
    char letters[] = "PCMU";
    EXPECT_EQ(encoded(rtpMap({8, 7, {0, letters}, 0, 0})), "rtpmap:8 PCMA/8000");
}

TEST_F(EncodeRtpMap, TriesEveryAppendOfItsValue) {
    EXPECT_EQ(traced(rtpMap({97, 0, str("AMR"), 8000, 2})), R"("rtpmap:" refused ""
"97" ok "rtpmap: AMR/8000/2"
" " ok "rtpmap:97AMR/8000/2"
"AMR" ok "rtpmap:97 /8000/2"
"/" ok "rtpmap:97 AMR8000/2"
"8000" ok "rtpmap:97 AMR//2"
"/" ok "rtpmap:97 AMR/80002"
"2" ok "rtpmap:97 AMR/8000/"
)");
}

TEST_F(EncodeRtpMap, FillsTheRecordInEvenWhenTheNameIsRefused) {
    SDPAttr attr = rtpMap({10, 9, {0, nullptr}, 0, 0});
    Appends::failFrom(2);
    EXPECT_EQ(sdpLibEncodeAttribField(&attr, buffer), 0u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulClockRate, 44100u);
    EXPECT_EQ(attr.unAttrValue.stRtpMap.ulEncodingParams, 2u);
}

// ---- silenceSupp, ecan, ipbcp, setup

class EncodeMediaControl : public EncodeAttribute {
protected:
    static SDPAttr silence(uint32_t on, std::string_view params) {
        SDPAttr attr = {};
        attr.ulAttrType = SDP_ATTR_SILENCE_SUPP;
        attr.unAttrValue.stSilenceSupp = {on, str(params)};
        return attr;
    }
    static SDPAttr ecan(uint32_t direction, uint32_t on, std::string_view params) {
        SDPAttr attr = {};
        attr.ulAttrType = SDP_ATTR_ECAN;
        attr.unAttrValue.stEcan = {on, direction, str(params)};
        return attr;
    }
    static SDPAttr ipBcp(uint8_t version, uint32_t type) {
        SDPAttr attr = {};
        attr.ulAttrType = SDP_ATTR_IPBCP;
        attr.unAttrValue.stIpBcp = {version, 0, 0, type};
        return attr;
    }
};

TEST_F(EncodeMediaControl, SilenceSuppressionPutsNoBlankAfterItsColon) {
    EXPECT_EQ(encoded(silence(1, " - - - -")), "silenceSupp:on - - - -");
    EXPECT_EQ(encoded(silence(0, " - - - -")), "silenceSupp:off - - - -");
    EXPECT_EQ(encoded(silence(9, "")), "silenceSupp:on");
    EXPECT_EQ(traced(silence(1, " -")), R"("silenceSupp:" refused ""
"on" ok "silenceSupp: -"
" -" ok "silenceSupp:on"
)");
}

TEST_F(EncodeMediaControl, EchoCancellationPutsABlankAfterItsDirection) {
    EXPECT_EQ(encoded(ecan(SDP_ECAN_FB, 1, "")), "ecan:fb on");
    EXPECT_EQ(encoded(ecan(SDP_ECAN_F, 0, " -")), "ecan:f off -");
    EXPECT_EQ(encoded(ecan(SDP_ECAN_B, 2, " G165")), "ecan:b on G165");
    EXPECT_EQ(encoded(ecan(0, 1, " -")), "ecan: on -");
    EXPECT_EQ(encoded(ecan(4, 0, " -")), "ecan: off -");
    EXPECT_EQ(traced(ecan(SDP_ECAN_FB, 1, " -")), R"("ecan:" refused ""
"fb" ok "ecan: on -"
" on" ok "ecan:fb -"
" -" ok "ecan:fb on"
)");
}

TEST_F(EncodeMediaControl, IpBcpWritesItsVersionAndType) {
    EXPECT_EQ(encoded(ipBcp(1, SDP_IPBCP_REQUEST)), "ipbcp:1 Request");
    EXPECT_EQ(encoded(ipBcp(0, SDP_IPBCP_ACCEPTED)), "ipbcp:0 Accepted");
    EXPECT_EQ(encoded(ipBcp(255, SDP_IPBCP_CONFUSED)), "ipbcp:255 Confused");
    EXPECT_EQ(encoded(ipBcp(44, SDP_IPBCP_REJECTED)), "ipbcp:44 Rejected");
    EXPECT_EQ(traced(ipBcp(1, SDP_IPBCP_REQUEST)), R"("ipbcp:" refused ""
"1" refused "ipbcp:"
" Request" refused "ipbcp:1"
)");
}

TEST_F(EncodeMediaControl, IpBcpRefusesAnUnknownTypeAfterTheVersion) {
    SDPAttr attr = ipBcp(1, 0);
    const auto write = [&] { return sdpLibEncodeAttribField(&attr, buffer); };
    expectCodesRefused(write, attr.unAttrValue.stIpBcp.ucType, 5, 0xDB041001u, "ipbcp:1",
                       {"3 sdpencodeattribute sdpLibEncodeAttribFieldIbpCp 21 \"ucType = {}\""});
}

TEST_F(EncodeMediaControl, SetupWritesItsRole) {
    EXPECT_EQ(encoded(number(SDP_ATTR_SETUP, SDP_T120_PASSIVE)), "setup:passive");
    EXPECT_EQ(encoded(number(SDP_ATTR_SETUP, SDP_T120_ACTIVE)), "setup:active");
    EXPECT_EQ(encoded(number(SDP_ATTR_SETUP, SDP_T120_ACTPASS)), "setup:actpass");
    EXPECT_EQ(traced(number(SDP_ATTR_SETUP, SDP_T120_ACTIVE)), R"("setup:" refused ""
"active" refused "setup:"
)");
}

TEST_F(EncodeMediaControl, SetupRefusesAnUnknownRole) {
    SDPAttr attr = number(SDP_ATTR_SETUP, 0);
    const auto write = [&] { return sdpLibEncodeAttribField(&attr, buffer); };
    expectCodesRefused(
        write, attr.unAttrValue.enT120Mode, 4, 0xDB036001u,
        "setup:", {"3 sdpencodeattribute sdpLibEncodeAttribT120Setup 21 \"AttrT120Mode = {}\""});
}

} // namespace
