// The encoder's driver: whole bodies, single lines, and the lines of a number or a text.
#include <algorithm>
#include <array>
#include <utility>

#include "encoder/encodetest.hpp"

namespace {

using namespace support;
using sdpline::Check;
using sdpline::codeOf;

class EncodeBody : public EncodeTest {
protected:
    EncodeBody() {
        smallest.stOrigin = full.line.stOrigin;
        smallest.strSessionName = full.line.strSessionName;
    }

    FullBody full;
    SdpLine smallest = {};
};

TEST_F(EncodeBody, WithoutOptionalLinesIsVersionOriginNameAndTheDefaultTime) {
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0u);
    EXPECT_EQ(text(), "v=0\r\n"
                      "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5\r\n"
                      "s=SDP Seminar\r\n"
                      "t=0 0\r\n");
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeBody, WithEveryLineComesOutInOrder) {
    EXPECT_EQ(SdpLibEncodeSdpInt(&full.line, buffer), 0u);
    EXPECT_EQ(text(), kFullBodyText);
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeBody, EndsEveryLineButTheDefaultTimeAsConfigured) {
    for (const uint32_t row : {1u, 2u}) {
        startAnew();
        g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[row];
        const std::string end(g_gpstSdpCrlfCfg->pcData, g_gpstSdpCrlfCfg->ulLen);
        EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0u);
        EXPECT_EQ(text(), "v=0" + end + "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5" + end +
                              "s=SDP Seminar" + end + "t=0 0\r\n");
    }
}

TEST_F(EncodeBody, EndsAllLinesOfAFullBodyInALoneLineFeedWhenConfigured) {
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[1];
    std::string expected = kFullBodyText;
    expected.erase(std::remove(expected.begin(), expected.end(), '\r'), expected.end());
    EXPECT_EQ(SdpLibEncodeSdpInt(&full.line, buffer), 0u);
    EXPECT_EQ(text(), expected);
}

TEST_F(EncodeBody, WritesAListWithoutItemsAsNoLine) {
    SDPStringList none = {0, nullptr};
    SDPAttrList noAttrs = {0, nullptr};
    smallest.pstEmailList = &none;
    smallest.pstPhoneList = &none;
    smallest.pstBandwidthList = &none;
    smallest.pstAttrList = &noAttrs;
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0u);
    EXPECT_EQ(text(), "v=0\r\n"
                      "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5\r\n"
                      "s=SDP Seminar\r\n"
                      "t=0 0\r\n");
}

TEST_F(EncodeBody, WritesAnEmptyNameAsItsKeyAlone) {
    smallest.strSessionName = {0, nullptr};
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0u);
    EXPECT_NE(text().find("\r\ns=\r\nt="), std::string::npos);
}

TEST_F(EncodeBody, RefusesNullArguments) {
    g_gSipCodePoint = 0;
    EXPECT_EQ(SdpLibEncodeSdpInt(nullptr, buffer), 0x0303E001u);
    EXPECT_EQ(g_gSipCodePoint >> 16, 3u);
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, nullptr), 0x0303E001u);
    EXPECT_EQ(log.texts(),
              (Lines{"3 sdpencode SdpLibEncodeSdpInt 0", "3 sdpencode SdpLibEncodeSdpInt 0"}));
    EXPECT_EQ(Appends::count(), 0u);
}

TEST_F(EncodeBody, AddsTheStacksFileBaseToItsCodes) {
    g_gSipStackFileId = 0x1FE;
    EXPECT_EQ(SdpLibEncodeSdpInt(nullptr, buffer), 0x0103E001u);
    EXPECT_EQ(g_gSipCodePoint >> 16, 0x201u);
}

TEST_F(EncodeBody, LogsTheModuleAndTheSourceLineOfAFailure) {
    EXPECT_EQ(SdpLibEncodeSdpInt(nullptr, buffer), 0x0303E001u);
    ASSERT_EQ(log.entries().size(), 1u);
    EXPECT_EQ(log.entries()[0].module, 17u);
    EXPECT_EQ(log.entries()[0].instance, 0xFFFFFFFFu);
    EXPECT_FALSE(log.entries()[0].hasMessage);
    EXPECT_NE(log.entries()[0].line, 0u);
    EXPECT_EQ(g_gSipCodePoint, 3u << 16 | log.entries()[0].line);
}

TEST_F(EncodeBody, WorksWithoutALogHook) {
    g_gpfnSipLmLogHndlr = nullptr; // the recorder puts the hook of before back
    g_gSipCodePoint = 0;
    smallest.stOrigin.stNetType.enNetType = 7;
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0x03042068u);
    EXPECT_EQ(g_gSipCodePoint >> 16, 3u);
}

TEST_F(EncodeBody, LogsTheFieldsFailureAndThenItsOwn) {
    smallest.stOrigin.stNetType.enNetType = 7;
    EXPECT_EQ(SdpLibEncodeSdpInt(&smallest, buffer), 0x03042068u);
    EXPECT_EQ(log.texts(), (Lines{"3 sdpencodeorigin sdpLibEncodeOriginFieldNetType 21",
                                  "3 sdpencode SdpLibEncodeSdpInt 21"}));
    EXPECT_EQ(text(), "v=0\r\no=jdoe 2890844526 2890842807 ");
}

// ---- Each append of a body fails

struct Group {
    SDPResult result; // of a body that loses one of these appends
    std::vector<const char *> appends;
};

const uint32_t kGoesOn = 0;

// The appends of the full body in order, and the result of the encoder when one of them fails.
const std::vector<Group> kFullBodyAppends = {
    {0x03040068, {"v", "=", "0", "\r\n"}},
    {0x03042068,
     {"o", "=", "jdoe", " ", "2890844526", " ", "2890842807", " ", "IN", " ", "IP4", " ",
      "10.47.16.5", "\r\n"}},
    {0x03044068, {"s", "=", "SDP Seminar", "\r\n"}},
    {0x03046068, {"i", "=", "A Seminar", "\r\n"}},
    {0x03048068, {"u", "=", "http://example.com/sdp", "\r\n"}},
    {0x0304A068, {"e", "=", "j.doe@example.com", "\r\n", "e", "=", "k.doe@example.com", "\r\n"}},
    {0x0304C068, {"p", "=", "+1 617 555-6011", "\r\n"}},
    {0x0304E068, {"c", "=", "IN", " ", "IP4", " "}},
    {kGoesOn, {"224", ".", "2", ".", "17", ".", "12", "/", "127", "/", "3"}},
    {0x0304E068, {"\r\n"}},
    {0x03051068, {"b", "=", "AS:128", "\r\n", "b", "=", "CT:1000", "\r\n"}},
    {0x03053068, {"t", "=", "2873397496", " ", "2873404696", "\r\n"}},
    {kGoesOn, {"r", "=", "7", "d"}},
    {0x03053068, {" "}},
    {kGoesOn, {"1", "h"}},
    {0x03053068, {" "}},
    {kGoesOn, {"0", "s"}},
    {0x03053068, {" "}},
    {kGoesOn, {"25", "h"}},
    {0x03053068, {"\r\n"}},
    {0x03055068, {"z", "=", "2882844526 -1h", "\r\n"}},
    {0x03057068, {"k", "=", "prompt", "\r\n"}},
    {kGoesOn,
     {"a",    "=",    "recvonly", "\r\n", "a",     "=",   "rtpmap:", "97",  " ", "AMR",  "/",
      "8000", "\r\n", "a",        "=",    "curr:", "qos", " ",       "e2e", " ", "send", "\r\n"}},
    {kGoesOn, {"m", "=", "audio ", "49170", " ", "RTP/AVP", " ", "0", " ", "8", " ", "97", "\r\n"}},
    {0x0305B068, {"i", "=", "A Seminar", "\r\n"}},
    {0x0305B068, {"c", "=", "IN", " ", "IP4", " "}},
    {kGoesOn, {"224", ".", "2", ".", "17", ".", "12", "/", "127", "/", "3"}},
    {0x0305B068, {"\r\n"}},
    {0x0305B068, {"b", "=", "AS:128", "\r\n", "b", "=", "CT:1000", "\r\n"}},
    {0x0305B068, {"k", "=", "prompt", "\r\n"}},
    {kGoesOn,
     {"a",    "=",    "recvonly", "\r\n", "a",     "=",   "rtpmap:", "97",  " ", "AMR",  "/",
      "8000", "\r\n", "a",        "=",    "curr:", "qos", " ",       "e2e", " ", "send", "\r\n"}},
    {kGoesOn, {"m", "=", "image ", "5000", "/", "2", " ", "udptl", " ", "t38", "\r\n"}},
};

TEST_F(EncodeBody, MakesEveryAppendAsSmallAsItsPart) {
    Lines expected;
    for (const Group &group : kFullBodyAppends) {
        expected.insert(expected.end(), group.appends.begin(), group.appends.end());
    }
    EXPECT_EQ(SdpLibEncodeSdpInt(&full.line, buffer), 0u);
    EXPECT_EQ(Appends::texts(), expected);
}

TEST_F(EncodeBody, AnswersTheCodeOfTheLineThatLostAnAppend) {
    const std::string lastLine = "m=image 5000/2 udptl t38\r\n";
    uint32_t n = 0;
    for (const Group &group : kFullBodyAppends) {
        for (const char *const append : group.appends) {
            startAnew();
            Appends::failAt(++n);
            const SDPResult result = SdpLibEncodeSdpInt(&full.line, buffer);
            EXPECT_EQ(resultName(result), resultName(group.result)) << n << ' ' << append;
            if (result != 0) {
                // Nothing is written after the line that failed.
                EXPECT_EQ(log.texts().back(), "3 sdpencode SdpLibEncodeSdpInt 21");
                EXPECT_LT(Appends::count(), n + 6) << append;
            } else if (&group != &kFullBodyAppends.back()) {
                EXPECT_TRUE(text().ends_with(lastLine)) << n << ' ' << append;
            }
        }
    }
}

TEST_F(EncodeBody, LeavesWhatFittedInAFullBuffer) {
    const auto results = resultsWhenFull([this] { return SdpLibEncodeSdpInt(&full.line, buffer); });
    // The first line after the point that tests its appends reports; after the last b= and k=
    // of a media description nothing does.
    EXPECT_EQ(resultName(results[0]), "EncodeVersion");
    EXPECT_EQ(resultName(results[5]), "EncodeOrigin");
    const auto firstSilent = std::find(results.begin(), results.end(), 0u);
    EXPECT_TRUE(std::all_of(firstSilent, results.end(), [](SDPResult r) { return r == 0; }));
    EXPECT_EQ(results.end() - firstSilent, 22 + 11); // a= a= a= of the first media, m= of the last
}

TEST_F(EncodeBody, FailsInEachLineWithThatLinesCode) {
    const std::pair<Check, SDPResult> codes[] = {
        {Check::EncodeBodyArgument, 0x0303E001}, {Check::EncodeVersion, 0x03040068},
        {Check::EncodeOrigin, 0x03042068},       {Check::EncodeName, 0x03044068},
        {Check::EncodeInfo, 0x03046068},         {Check::EncodeUri, 0x03048068},
        {Check::EncodeEmail, 0x0304A068},        {Check::EncodePhone, 0x0304C068},
        {Check::EncodeConnection, 0x0304E068},   {Check::EncodeBandwidth, 0x03051068},
        {Check::EncodeTimes, 0x03053068},        {Check::EncodeZone, 0x03055068},
        {Check::EncodeKey, 0x03057068},          {Check::EncodeAttributes, 0x03059068},
        {Check::EncodeMedia, 0x0305B068},        {Check::EncodeLineArgument, 0x03062001},
    };
    for (const auto &[check, code] : codes) {
        EXPECT_EQ(codeOf(check), code) << sdpline::row(check).name;
    }
}

// ---- Single lines

class EncodeLine : public EncodeBody {};

TEST_F(EncodeLine, WritesEachKind) {
    uint32_t version = 4294967295;
    FullBody &b = full;
    const std::array<std::pair<void *, const char *>, SDP_LINE_COUNT> lines = {{
        {&version, "v=4294967295\r\n"},
        {&b.connection, "c=IN IP4 224.2.17.12/127/3\r\n"},
        {&b.line.stOrigin, "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5\r\n"},
        {&b.medias[0].stMediaField, "m=audio 49170 RTP/AVP 0 8 97\r\n"},
        {&b.attrs[2], "a=curr:qos e2e send\r\n"},
        {&b.time, "t=2873397496 2873404696\r\n"},
        {&b.repeat, "r=7d 1h 0s 25h\r\n"},
        {&b.info, "i=A Seminar\r\n"},
        {&b.line.strSessionName, "s=SDP Seminar\r\n"},
        {&b.uri, "u=http://example.com/sdp\r\n"},
        {&b.emails[0], "e=j.doe@example.com\r\n"},
        {&b.phones[0], "p=+1 617 555-6011\r\n"},
        {&b.bandwidths[0], "b=AS:128\r\n"},
        {&b.zone, "z=2882844526 -1h\r\n"},
        {&b.key, "k=prompt\r\n"},
    }};
    for (int32_t type = 0; type < SDP_LINE_COUNT; ++type) {
        const auto &[field, line] = lines[static_cast<size_t>(type)];
        startAnew();
        EXPECT_EQ(SdpLibEncodeLine(type, &prefixed, field, buffer), 0u);
        EXPECT_EQ(text(), line);
        for (uint32_t flag : {0u, 2u, 0xFFFFFFFFu}) {
            startAnew();
            EXPECT_EQ(SdpLibEncodeLine(type, &flag, field, buffer), 0u);
            EXPECT_EQ(text(), line + 2) << "without the prefix";
        }
    }
}

TEST_F(EncodeLine, RefusesAnUnknownKindWithABareOneAndNoLog) {
    g_gSipCodePoint = 0x12345678;
    for (const int32_t type : {15, 16, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(SdpLibEncodeLine(type, &prefixed, &full.info, buffer), 1u);
    }
    EXPECT_EQ(text(), "");
    EXPECT_EQ(Appends::count(), 0u);
    EXPECT_EQ(log.texts(), Lines());
    EXPECT_EQ(g_gSipCodePoint, 0x12345678u);
}

TEST_F(EncodeLine, RefusesNullArguments) {
    EXPECT_EQ(SdpLibEncodeLine(7, nullptr, &full.info, buffer), 0x03062001u);
    EXPECT_EQ(SdpLibEncodeLine(7, &prefixed, nullptr, buffer), 0x03062001u);
    EXPECT_EQ(SdpLibEncodeLine(7, &prefixed, &full.info, nullptr), 0x03062001u);
    EXPECT_EQ(SdpLibEncodeLine(-1, nullptr, &full.info, buffer), 0x03062001u);
    EXPECT_EQ(log.texts(), Lines(4, "3 sdpencode SdpLibEncodeLine 0"));
    EXPECT_EQ(text(), "");
}

TEST_F(EncodeLine, WritesATimeAloneAndNeverTheDefaultOne) {
    SDPTimeField zero = {0, 0, &full.repeats};
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[1];
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_TIME, &prefixed, &zero, buffer), 0u);
    EXPECT_EQ(text(), "t=0 0\n");
    EXPECT_EQ(zero.pstRepeatFieldSet, &full.repeats) << "the caller's record stays as it was";
}

TEST_F(EncodeLine, ReadsTheLineEndAfreshForEachLine) {
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_INFO, &prefixed, &full.info, buffer), 0u);
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[2];
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_KEY, &prefixed, &full.key, buffer), 0u);
    EXPECT_EQ(text(), "i=A Seminar\r\nk=prompt\r");
}

TEST_F(EncodeLine, EndsTheLineOfARefusedAttributeAndSucceeds) {
    SDPAttr unknown = {};
    unknown.ulAttrType = SDP_ATTR_UNKNOWN;
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_ATTRIBUTE, &prefixed, &unknown, buffer), 0u);
    EXPECT_EQ(text(), "a=\r\n");
    EXPECT_EQ(log.texts(), Lines{"3 sdpencodeattribute sdpLibEncodeAttribField 21"});
}

TEST_F(EncodeLine, WritesAFlagOfZeroWhichAListLeavesOut) {
    SDPAttr flag = {};
    flag.ulAttrType = SDP_ATTR_T38_FILL_BIT_REMOVAL;
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_ATTRIBUTE, &prefixed, &flag, buffer), 0u);
    EXPECT_EQ(text(), "a=T38FaxFillBitRemoval\r\n");
}

TEST_F(EncodeLine, TestsOfAnAttributeNothingButItsLineEnd) {
    const auto encode = [this] {
        return SdpLibEncodeLine(SDP_LINE_ATTRIBUTE, &prefixed, &full.attrs[0], buffer);
    };
    EXPECT_EQ(trace(encode), R"("a" ok "recvonly\r\n"
"=" ok "arecvonly\r\n"
"recvonly" ok "a=\r\n"
"\r\n" refused "a=recvonly"
)");
}

TEST_F(EncodeLine, PassesTheFieldsFailureOn) {
    full.connection.stNetType.enNetType = 9;
    full.units[1].enTimeType = 0;
    full.medias[0].stMediaField.stMedia.enMediaType = 0;
    full.line.stOrigin.stAddrType.enAddrType = 0;
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_CONNECTION, &prefixed, &full.connection, buffer),
              0xDC00D001u);
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_REPEAT, &prefixed, &full.repeat, buffer), 0xDF011001u);
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_MEDIA, &prefixed, &full.medias[0].stMediaField, buffer),
              0xDD02E001u);
    EXPECT_EQ(SdpLibEncodeLine(SDP_LINE_ORIGIN, &prefixed, &full.line.stOrigin, buffer),
              0xDE014001u);
}

TEST_F(EncodeLine, LeavesWhatFittedOfEachKindInAFullBuffer) {
    uint32_t version = 0;
    FullBody &b = full;
    void *const fields[SDP_LINE_COUNT] = {
        &version,
        &b.connection,
        &b.line.stOrigin,
        &b.medias[0].stMediaField,
        &b.attrs[2],
        &b.time,
        &b.repeat,
        &b.info,
        &b.line.strSessionName,
        &b.uri,
        &b.emails[0],
        &b.phones[0],
        &b.bandwidths[0],
        &b.zone,
        &b.key,
    };
    for (int32_t type = 0; type < SDP_LINE_COUNT; ++type) {
        const auto results = resultsWhenFull(
            [&] { return SdpLibEncodeLine(type, &prefixed, fields[type], buffer); });
        for (size_t i = 0; i < results.size(); ++i) {
            if (type != SDP_LINE_MEDIA) {
                EXPECT_EQ(resultName(results[i]), "refused") << type << ", append " << i + 1;
            }
        }
    }
}

// ---- The lines of a number or a text

class EncodeText : public EncodeBody {};

TEST_F(EncodeText, VersionPassesEachRefusedAppendOnAndLogsAllButTheLineEnd) {
    const auto encode = [this] {
        return sdpLibEncodeProtocolField(&prefixed, &full.line.ulProtoVersion, buffer);
    };
    EXPECT_EQ(trace(encode), R"("v" refused ""
"=" refused "v"
"0" refused "v="
"\r\n" refused "v=0"
)");
    for (const uint32_t n : {1u, 2u, 3u}) {
        startAnew();
        Appends::failAt(n);
        EXPECT_EQ(encode(), Appends::kRefused);
        EXPECT_EQ(log.texts(), Lines{"3 sdpencode sdpLibEncodeProtocolField 21"});
    }
    startAnew();
    Appends::failAt(4);
    EXPECT_EQ(encode(), Appends::kRefused);
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeText, TextStopsAtTheFirstRefusedAppendAndLogsNothing) {
    const auto encode = [this] {
        return sdpLibEncodeStringField(&prefixed, 'i', &full.info, buffer);
    };
    EXPECT_EQ(trace(encode), R"("i" refused ""
"=" refused "i"
"A Seminar" refused "i="
"\r\n" refused "i=A Seminar"
)");
    Appends::failAt(2);
    EXPECT_EQ(encode(), Appends::kRefused);
    EXPECT_EQ(log.texts(), Lines());
}

TEST_F(EncodeText, TextMayBeAnyBytes) {
    SipString bytes = str(std::string_view("a\0b\r\n\xFF", 6));
    EXPECT_EQ(sdpLibEncodeStringField(&bare, 'i', &bytes, buffer), 0u);
    EXPECT_EQ(text(), std::string("a\0b\r\n\xFF\r\n", 8));
}

TEST_F(EncodeText, ListIsOneLinePerItem) {
    SipString third = str("l.doe@example.com");
    SipString *items[] = {&full.emails[0], &full.emails[1], &third};
    EXPECT_EQ(sdpLibEncodeStringListField(&prefixed, 'e', 3, items, buffer), 0u);
    EXPECT_EQ(text(), "e=j.doe@example.com\r\ne=k.doe@example.com\r\ne=l.doe@example.com\r\n");
}

TEST_F(EncodeText, ListOfNothingIsNoLine) {
    EXPECT_EQ(sdpLibEncodeStringListField(&prefixed, 'e', 0, nullptr, buffer), 0u);
    EXPECT_EQ(Appends::count(), 0u);
}

TEST_F(EncodeText, ListStopsAtItsFirstFailure) {
    const auto encode = [this] {
        return sdpLibEncodeStringListField(&bare, 'b', 2, full.bandwidthItems, buffer);
    };
    EXPECT_EQ(trace(encode), R"("AS:128" refused ""
"\r\n" refused "AS:128"
"CT:1000" refused "AS:128\r\n"
"\r\n" refused "AS:128\r\nCT:1000"
)");
}

} // namespace
