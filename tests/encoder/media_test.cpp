// The media descriptions.
#include <algorithm>
#include <iterator>

#include "encoder/encodetest.hpp"

namespace {

using namespace support;

class EncodeMedia : public EncodeTest {
protected:
    EncodeMedia() {
        for (uint32_t i = 3; i < std::size(payloads); ++i) {
            payloads[i] = i;
        }
    }

    SDPResult encode() { return sdpLibEncodeMediaField(&prefixed, &field, buffer); }

    std::string encoded() {
        startAnew();
        EXPECT_EQ(encode(), 0u);
        return text();
    }

    // The same message from a part and from the line.
    static Lines twice(const std::string &part, const std::string &message) {
        return {"3 sdpencodemedia " + part + " 21 " + message,
                "3 sdpencodemedia sdpLibEncodeMediaField 21 " + message};
    }

    // Each code from 1 on has its word, which one append writes.
    void expectWords(const char *const (&words)[6], uint32_t &code,
                     SDPResult (*write)(SDPMediaField *, SipStringBuffer *)) {
        code = 0;
        for (const char *const word : words) {
            startAnew();
            ++code;
            EXPECT_EQ(write(&field, buffer), 0u);
            EXPECT_EQ(text(), word);
            EXPECT_EQ(Appends::count(), 1u);
        }
    }

    uint32_t payloads[101] = {0, 8, 97};
    SDPMediaField field = {{SDP_MEDIA_AUDIO, nullptr},
                           49170,
                           1,
                           {SDP_PROTO_RTP_AVP, nullptr},
                           {SDP_FMT_RTP_PAYLOADS, {{3, payloads}}}};
    SipString message = str("message");
    SipString sctp = str("SCTP");
};

TEST_F(EncodeMedia, WritesTypePortProtocolAndPayloads) {
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP 0 8 97\r\n");
    EXPECT_EQ(Appends::texts(), (Lines{"m", "=", "audio ", "49170", " ", "RTP/AVP", " ", "0", " ",
                                       "8", " ", "97", "\r\n"}));
    EXPECT_EQ(sdpLibEncodeMediaField(&bare, &field, buffer), 0u);
    EXPECT_EQ(text(), "m=audio 49170 RTP/AVP 0 8 97\r\naudio 49170 RTP/AVP 0 8 97\r\n");
}

TEST_F(EncodeMedia, WritesTheNumberOfPortsAboveOne) {
    field.ulNoOfPorts = 0;
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP 0 8 97\r\n");
    field.ulNoOfPorts = 2;
    EXPECT_EQ(encoded(), "m=audio 49170/2 RTP/AVP 0 8 97\r\n");
    field.ulNoOfPorts = 4294967295;
    EXPECT_EQ(encoded(), "m=audio 49170/4294967295 RTP/AVP 0 8 97\r\n");
}

TEST_F(EncodeMedia, WritesEachTypeWithItsBlank) {
    const char *const words[] = {"audio ", "video ", "application ", "data ", "control ", "image "};
    expectWords(words, field.stMedia.enMediaType, sdpLibEncodeMediaType);
}

TEST_F(EncodeMedia, WritesAnOtherTypeByItsText) {
    field.stMedia = {SDP_MEDIA_OTHER, &message};
    EXPECT_EQ(encoded(), "m=message 49170 RTP/AVP 0 8 97\r\n");
    startAnew();
    EXPECT_EQ(sdpLibEncodeMediaType(&field, buffer), 0u);
    EXPECT_EQ(Appends::texts(), (Lines{"message", " "}));
    field.stMedia.pstrOtherMedia = nullptr;
    EXPECT_EQ(encoded(), "m= 49170 RTP/AVP 0 8 97\r\n");
}

TEST_F(EncodeMedia, WritesEachProtocol) {
    const char *const words[] = {"RTP/AVP", "udp", "TCP", "udptl", "RTP/SAVP", "RTP/AVPF"};
    for (const uint32_t support : {0u, 1u}) {
        g_bSupMedProtoRtpAvpf = support;
        expectWords(words, field.stProto.enProto, sdpLibEncodeMediaProtoType);
    }
    g_bSupMedProtoRtpAvpf = 0;
}

TEST_F(EncodeMedia, WritesAnOtherProtocolByItsText) {
    field.stProto = {SDP_PROTO_OTHER, &sctp};
    EXPECT_EQ(encoded(), "m=audio 49170 SCTP 0 8 97\r\n");
    SipString lost = {4, nullptr};
    field.stProto = {SDP_PROTO_OTHER, &lost};
    EXPECT_EQ(encoded(), "m=audio 49170  0 8 97\r\n") << "a text whose bytes could not be kept";
    field.stProto = {SDP_PROTO_OTHER, nullptr};
    EXPECT_EQ(encoded(), "m=audio 49170  0 8 97\r\n");
}

TEST_F(EncodeMedia, WritesTheFormatsThatHaveACode) {
    field.stMediaFmt.unMediaFmt.strOtherFmts = {0, nullptr};
    field.stMediaFmt.enFmtType = SDP_FMT_T38;
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP t38\r\n");
    field.stMediaFmt.enFmtType = SDP_FMT_T120;
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP t120\r\n");
    startAnew();
    EXPECT_EQ(sdpLibEncodeMediaFmtType(&field, buffer), 0u);
    EXPECT_EQ(Appends::texts(), (Lines{" ", "t120"}));
}

TEST_F(EncodeMedia, WritesAnOtherFormatByItsText) {
    field.stMediaFmt.enFmtType = SDP_FMT_OTHER;
    field.stMediaFmt.unMediaFmt.strOtherFmts = str("wb");
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP wb\r\n");
    field.stMediaFmt.unMediaFmt.strOtherFmts = {0, nullptr};
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP \r\n");
}

TEST_F(EncodeMedia, LooksAtThePayloadCountOfPayloadsOnly) {
    field.stMediaFmt.unMediaFmt.stRtpPayLoads = {101, payloads};
    field.stMediaFmt.enFmtType = SDP_FMT_T38;
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP t38\r\n");
}

TEST_F(EncodeMedia, WritesAHundredPayloadsAndNoMore) {
    SDPRtpPayLoads &list = field.stMediaFmt.unMediaFmt.stRtpPayLoads;
    list.ulNoOfPayLoads = 100;
    std::string line = "m=audio 49170 RTP/AVP";
    for (uint32_t i = 0; i < 100; ++i) {
        line += ' ' + std::to_string(payloads[i]);
    }
    EXPECT_EQ(encoded(), line + "\r\n");

    for (const uint32_t count : {101u, 4294967295u}) {
        startAnew();
        list.ulNoOfPayLoads = count;
        EXPECT_EQ(encode(), 0xDD033001u);
        EXPECT_EQ(text(), "m=audio 49170 RTP/AVP");
        EXPECT_EQ(log.texts(), twice("sdpLibEncodeMediaFmtType",
                                     "\"ulNoOfPayLoads = " + std::to_string(count) + '"'));
        EXPECT_EQ(sdpLibEncodeMediaFmtType(&field, buffer), 0xDD024001u);
    }
}

TEST_F(EncodeMedia, WritesNoPayloadsOfAnEmptyOrMissingList) {
    field.stMediaFmt.unMediaFmt.stRtpPayLoads = {0, payloads};
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP\r\n");
    field.stMediaFmt.unMediaFmt.stRtpPayLoads = {3, nullptr};
    EXPECT_EQ(encoded(), "m=audio 49170 RTP/AVP\r\n");
}

// The parts return 1, and log the same message as the line.
TEST_F(EncodeMedia, RefusesUnknownTypesAndProtocols) {
    const auto write = [this] { return encode(); };
    expectCodesRefused(write, field.stMedia.enMediaType, 8, 0xDD02E001u,
                       "m=", twice("sdpLibEncodeMediaType", "\"Media type = {}\""));
    expectCodesRefused(write, field.stProto.enProto, 8, 0xDD031001u, "m=audio 49170 ",
                       twice("sdpLibEncodeMediaProtoType", "\"Prototype = {}\""));
    expectCodesRefused(write, field.stMediaFmt.enFmtType, 5, 0xDD036001u, "m=audio 49170 RTP/AVP",
                       {"3 sdpencodemedia sdpLibEncodeMediaField 21"});
    for (const uint32_t code : {0u, 8u, 4294967295u}) {
        field.stMedia.enMediaType = code;
        field.stProto.enProto = code;
        EXPECT_EQ(sdpLibEncodeMediaType(&field, buffer), 1u);
        EXPECT_EQ(sdpLibEncodeMediaProtoType(&field, buffer), 1u);
    }
}

TEST_F(EncodeMedia, TestsTheTypeAndTheProtocolOnly) {
    field.ulNoOfPorts = 2;
    field.stMediaFmt.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads = 2;
    EXPECT_EQ(trace([this] { return encode(); }), R"("m" ok "audio 49170/2 RTP/AVP 0 8\r\n"
"=" ok "maudio 49170/2 RTP/AVP 0 8\r\n"
"audio " MediaTypeFailed "m="
"49170" ok "m=audio /2 RTP/AVP 0 8\r\n"
"/" ok "m=audio 491702 RTP/AVP 0 8\r\n"
"2" ok "m=audio 49170/ RTP/AVP 0 8\r\n"
" " ok "m=audio 49170/2RTP/AVP 0 8\r\n"
"RTP/AVP" MediaProtoFailed "m=audio 49170/2 "
" " ok "m=audio 49170/2 RTP/AVP0 8\r\n"
"0" ok "m=audio 49170/2 RTP/AVP  8\r\n"
" " ok "m=audio 49170/2 RTP/AVP 08\r\n"
"8" ok "m=audio 49170/2 RTP/AVP 0 \r\n"
"\r\n" ok "m=audio 49170/2 RTP/AVP 0 8"
)");
}

TEST_F(EncodeMedia, TestsTheTextsOfAnOtherTypeAndProtocolToo) {
    field.stMedia = {SDP_MEDIA_OTHER, &message};
    field.stProto = {SDP_PROTO_OTHER, &sctp};
    field.stMediaFmt.enFmtType = SDP_FMT_OTHER;
    field.stMediaFmt.unMediaFmt.strOtherFmts = str("wb");
    EXPECT_EQ(trace([this] { return encode(); }), R"("m" ok "message 49170 SCTP wb\r\n"
"=" ok "mmessage 49170 SCTP wb\r\n"
"message" MediaTypeFailed "m="
" " MediaTypeFailed "m=message"
"49170" ok "m=message  SCTP wb\r\n"
" " ok "m=message 49170SCTP wb\r\n"
"SCTP" MediaProtoFailed "m=message 49170 "
" " ok "m=message 49170 SCTPwb\r\n"
"wb" ok "m=message 49170 SCTP \r\n"
"\r\n" ok "m=message 49170 SCTP wb"
)");
}

TEST_F(EncodeMedia, LogsARefusedTypeOrProtocolOnceForTheLine) {
    Appends::failAt(3);
    EXPECT_EQ(encode(), 0xDD02E001u);
    EXPECT_EQ(log.texts(), Lines{"3 sdpencodemedia sdpLibEncodeMediaField 21 \"Media type = 1\""});
    startAnew();
    Appends::failAt(6);
    EXPECT_EQ(encode(), 0xDD031001u);
    EXPECT_EQ(log.texts(), Lines{"3 sdpencodemedia sdpLibEncodeMediaField 21 \"Prototype = 1\""});
    startAnew();
    Appends::failFrom(1);
    EXPECT_EQ(sdpLibEncodeMediaType(&field, buffer), 1u);
    EXPECT_EQ(sdpLibEncodeMediaProtoType(&field, buffer), 1u);
    EXPECT_EQ(log.texts(), Lines());
}

// ---- The set

class EncodeMediaSet : public EncodeTest {
protected:
    SDPResult encode() { return sdpLibEncodeMediaSet(&prefixed, &body.line.stMediaSet, buffer); }

    FullBody body;
    SDPMediaDesc &audio = body.medias[0];

    // Everything after the first m= line.
    const std::string rest =
        std::string(kFullBodyText).substr(std::string(kFullBodyText).rfind("i=A Seminar"));
};

TEST_F(EncodeMediaSet, OfNothingIsNoLine) {
    SDPMediaSet none = {0, nullptr};
    EXPECT_EQ(sdpLibEncodeMediaSet(&prefixed, &none, buffer), 0u);
    EXPECT_EQ(Appends::count(), 0u);
}

TEST_F(EncodeMediaSet, WritesTheLinesOfEachDescriptionInOrder) {
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "m=audio 49170 RTP/AVP 0 8 97\r\n" + rest);
}

TEST_F(EncodeMediaSet, PassesThePrefixFlagOnToEveryLine) {
    EXPECT_EQ(sdpLibEncodeMediaSet(&bare, &body.line.stMediaSet, buffer), 0u);
    EXPECT_EQ(text(), "audio 49170 RTP/AVP 0 8 97\r\n"
                      "A Seminar\r\n"
                      "IN IP4 224.2.17.12/127/3\r\n"
                      "AS:128\r\n"
                      "CT:1000\r\n"
                      "prompt\r\n"
                      "recvonly\r\n"
                      "rtpmap:97 AMR/8000\r\n"
                      "curr:qos e2e send\r\n"
                      "image 5000/2 udptl t38\r\n");
}

TEST_F(EncodeMediaSet, WritesTheOtherLinesAfterAHalfWrittenMediaLine) {
    audio.stMediaField.stProto.enProto = 0;
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "m=audio 49170 " + rest);
    EXPECT_EQ(log.texts().size(), 2u);
}

TEST_F(EncodeMediaSet, StopsAtALineThatFails) {
    SDPConnection unknown = body.connection;
    unknown.stAddrType.enAddrType = 0;
    audio.pstConnection = &unknown;
    EXPECT_EQ(encode(), 0xDC015001u);
    EXPECT_EQ(text(), "m=audio 49170 RTP/AVP 0 8 97\r\n"
                      "i=A Seminar\r\n"
                      "c=IN ");
}

TEST_F(EncodeMediaSet, AttributesThatFailStopNothing) {
    body.attrs[0].ulAttrType = 0;
    EXPECT_EQ(encode(), 0u);
    EXPECT_NE(text().find("k=prompt\r\na=\r\na=rtpmap"), std::string::npos);
    EXPECT_TRUE(text().ends_with("m=image 5000/2 udptl t38\r\n"));
}

TEST_F(EncodeMediaSet, PassesARefusedAppendOfEachTestedLineOn) {
    EXPECT_EQ(encode(), 0u);
    const Lines appends = Appends::texts();
    std::string key;
    for (size_t i = 0; i < appends.size(); ++i) {
        const bool startsLine = i == 0 || appends[i - 1] == "\r\n";
        key = startsLine ? appends[i] : key;
        startAnew();
        Appends::failAt(static_cast<uint32_t>(i + 1));
        const SDPResult result = encode();
        if (key == "m" || key == "a" || key == "c") {
            continue; // lines that test some or none; they have tests of their own
        }
        EXPECT_EQ(result, Appends::kRefused) << key << ", append " << i + 1;
        EXPECT_EQ(Appends::count(), i + 1) << "nothing more is tried";
    }
}

TEST_F(EncodeMediaSet, LeavesWhatFittedInAFullBuffer) {
    const auto results = resultsWhenFull([this] { return encode(); });
    // All lines up to the last that tests its appends, k=, report; the a= lines and the last m=
    // line do not.
    const auto firstSilent = std::find(results.begin(), results.end(), 0u);
    EXPECT_TRUE(std::all_of(results.begin(), firstSilent,
                            [](SDPResult r) { return r == Appends::kRefused; }));
    EXPECT_TRUE(std::all_of(firstSilent, results.end(), [](SDPResult r) { return r == 0; }));
    EXPECT_EQ(results.end() - firstSilent, 22 + 11);
}

} // namespace
