#include "encoder/encodetest.hpp"

namespace support {

SipString str(std::string_view text) {
    return {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
}

std::string escaped(std::string_view text) {
    std::string shown;
    for (const char byte : text) {
        if (byte == '\r') {
            shown += "\\r";
        } else if (byte == '\n') {
            shown += "\\n";
        } else {
            shown += byte;
        }
    }
    return shown;
}

std::string resultName(SDPResult result) {
    if (result == 0) {
        return "ok";
    }
    if (result == Appends::kRefused) {
        return "refused";
    }
    for (size_t i = 0; i < sdpline::kCheckCount; ++i) {
        const auto check = static_cast<sdpline::Check>(i);
        if (sdpline::row(check).outcome.kind == sdpline::ResultKind::Composed &&
            sdpline::codeOf(check) == result) {
            return sdpline::row(check).name;
        }
    }
    return std::to_string(result);
}

EncodeTest::EncodeTest() {
    startAnew();
}

EncodeTest::~EncodeTest() {
    SipSbReleaseStringBuffer(buffer);
    Appends::off();
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[0];
    g_gstSdpT38OptCfg = 0;
    g_gSipStackFileId = 0;
    g_gSipCodePoint = 0;
}

void EncodeTest::startAnew() {
    SipSbReleaseStringBuffer(buffer);
    EXPECT_EQ(SipSbCreateStringBufferNew(gSipSystemMemCp, 256, 256, &buffer), 0u);
    log.clear();
    Appends::reset();
}

std::string EncodeTest::text() const {
    SipRefString *held = nullptr;
    EXPECT_EQ(SipSbConvertToRefString(buffer, &held), 0u);
    const std::string text(SipSmGetDataFromRefString(held), SipSmGetLenFromRefString(held));
    SipSmReleaseRefString(held);
    return text;
}

void EncodeTest::expectCodesRefused(const Encode &encode, uint32_t &field, uint32_t past,
                                    SDPResult result, const std::string &left,
                                    const std::vector<std::string> &logged) {
    const uint32_t before = field;
    for (const uint32_t code : {0u, past, UINT32_MAX}) {
        startAnew();
        field = code;
        EXPECT_EQ(encode(), result);
        EXPECT_EQ(text(), left);
        std::vector<std::string> expected = logged;
        for (std::string &entry : expected) {
            const size_t at = entry.find("{}");
            entry = at == std::string::npos ? entry : entry.replace(at, 2, std::to_string(code));
        }
        ASSERT_EQ(log.texts(), expected);
        EXPECT_EQ(g_gSipCodePoint, (0x200u | result >> 24) << 16 | log.entries().back().line);
    }
    startAnew();
    field = before;
}

std::string EncodeTest::trace(const Encode &encode) {
    startAnew();
    EXPECT_EQ(encode(), 0u);
    const std::vector<std::string> appends = Appends::texts();
    std::string rows;
    for (size_t i = 0; i < appends.size(); ++i) {
        startAnew();
        Appends::failAt(static_cast<uint32_t>(i + 1));
        const SDPResult result = encode();
        rows += '"' + escaped(appends[i]) + "\" " + resultName(result) + " \"" + escaped(text()) +
                "\"\n";
    }
    startAnew();
    return rows;
}

std::vector<SDPResult> EncodeTest::resultsWhenFull(const Encode &encode) {
    startAnew();
    EXPECT_EQ(encode(), 0u);
    const std::vector<std::string> appends = Appends::texts();
    std::vector<SDPResult> results;
    std::string fitted;
    for (size_t i = 0; i < appends.size(); ++i) {
        startAnew();
        Appends::failFrom(static_cast<uint32_t>(i + 1));
        results.push_back(encode());
        EXPECT_EQ(text(), fitted) << "append " << i + 1;
        fitted += appends[i];
    }
    startAnew();
    return results;
}

const char *const kFullBodyText = "v=0\r\n"
                                  "o=jdoe 2890844526 2890842807 IN IP4 10.47.16.5\r\n"
                                  "s=SDP Seminar\r\n"
                                  "i=A Seminar\r\n"
                                  "u=http://example.com/sdp\r\n"
                                  "e=j.doe@example.com\r\n"
                                  "e=k.doe@example.com\r\n"
                                  "p=+1 617 555-6011\r\n"
                                  "c=IN IP4 224.2.17.12/127/3\r\n"
                                  "b=AS:128\r\n"
                                  "b=CT:1000\r\n"
                                  "t=2873397496 2873404696\r\n"
                                  "r=7d 1h 0s 25h\r\n"
                                  "z=2882844526 -1h\r\n"
                                  "k=prompt\r\n"
                                  "a=recvonly\r\n"
                                  "a=rtpmap:97 AMR/8000\r\n"
                                  "a=curr:qos e2e send\r\n"
                                  "m=audio 49170 RTP/AVP 0 8 97\r\n"
                                  "i=A Seminar\r\n"
                                  "c=IN IP4 224.2.17.12/127/3\r\n"
                                  "b=AS:128\r\n"
                                  "b=CT:1000\r\n"
                                  "k=prompt\r\n"
                                  "a=recvonly\r\n"
                                  "a=rtpmap:97 AMR/8000\r\n"
                                  "a=curr:qos e2e send\r\n"
                                  "m=image 5000/2 udptl t38\r\n";

FullBody::FullBody() {
    fillTexts();
    fillTimes();
    fillAttributes();
    fillMedia();
    fillLine();
}

void FullBody::fillTexts() {
    info = str("A Seminar");
    uri = str("http://example.com/sdp");
    zone = str("2882844526 -1h");
    emails[0] = str("j.doe@example.com");
    emails[1] = str("k.doe@example.com");
    phones[0] = str("+1 617 555-6011");
    bandwidths[0] = str("AS:128");
    bandwidths[1] = str("CT:1000");
    for (size_t i = 0; i < 2; ++i) {
        emailItems[i] = &emails[i];
        bandwidthItems[i] = &bandwidths[i];
        mediaItems[i] = &medias[i];
    }
    phoneItems[0] = &phones[0];
    emailList = {2, emailItems};
    phoneList = {1, phoneItems};
    bandwidthList = {2, bandwidthItems};

    connection = {};
    connection.stNetType.enNetType = SDP_NETTYPE_IN;
    connection.stAddrType.enAddrType = SDP_ADDRTYPE_IP4;
    connection.stTptAddr = {SDP_TPTADDR_IPV4, {{224, 2, 17, 12}}};
    connection.ulTtl = 127;
    connection.ulNoOfAddrs = 3;
    key.strKey = str("prompt");
}

void FullBody::fillTimes() {
    units[0] = {SDP_TIME_DAYS, 7};
    units[1] = {SDP_TIME_HOURS, 1};
    units[2] = {SDP_TIME_SECONDS, 0};
    units[3] = {SDP_TIME_HOURS, 25};
    for (size_t i = 0; i < 4; ++i) {
        unitItems[i] = &units[i];
    }
    repeat = {4, unitItems};
    repeatItems[0] = &repeat;
    repeats = {1, repeatItems};
    time = {2873397496, 2873404696, &repeats};
    timeItems[0] = &time;
}

void FullBody::fillAttributes() {
    for (SDPAttr &attr : attrs) {
        attr = {};
    }
    attrs[0].ulAttrType = SDP_ATTR_RECVONLY;
    attrs[1].ulAttrType = SDP_ATTR_RTPMAP;
    attrs[1].unAttrValue.stRtpMap = {97, 0, str("AMR"), 8000, 1};
    attrs[2].ulAttrType = SDP_ATTR_CURR;
    attrs[2].unAttrValue.stRsrcMgmtStatus = {
        {SDP_PRECONDITION_QOS, nullptr}, SDP_STATUS_E2E, SDP_STRENGTH_MANDATORY, SDP_DIR_SEND};
    for (size_t i = 0; i < 3; ++i) {
        attrItems[i] = &attrs[i];
    }
    attrList = {3, attrItems};
}

void FullBody::fillMedia() {
    payloads[0] = 0;
    payloads[1] = 8;
    payloads[2] = 97;
    for (SDPMediaDesc &media : medias) {
        media = {};
    }
    medias[0].stMediaField = {{SDP_MEDIA_AUDIO, nullptr},
                              49170,
                              1,
                              {SDP_PROTO_RTP_AVP, nullptr},
                              {SDP_FMT_RTP_PAYLOADS, {{3, payloads}}}};
    medias[0].pstrMediaInfo = &info;
    medias[0].pstConnection = &connection;
    medias[0].pstBandwidthList = &bandwidthList;
    medias[0].pstKey = &key;
    medias[0].pstAttrList = &attrList;
    medias[1].stMediaField = {
        {SDP_MEDIA_IMAGE, nullptr}, 5000, 2, {SDP_PROTO_UDPTL, nullptr}, {SDP_FMT_T38, {}}};
}

void FullBody::fillLine() {
    line = {};
    line.stOrigin = {str("jdoe"),
                     str("2890844526"),
                     str("2890842807"),
                     {SDP_NETTYPE_IN, nullptr},
                     {SDP_ADDRTYPE_IP4, nullptr},
                     str("10.47.16.5")};
    line.strSessionName = str("SDP Seminar");
    line.pstrSessionInfo = &info;
    line.pstrUri = &uri;
    line.pstEmailList = &emailList;
    line.pstPhoneList = &phoneList;
    line.pstConnection = &connection;
    line.pstBandwidthList = &bandwidthList;
    line.stTimeSet = {1, timeItems};
    line.pstrTimeZone = &zone;
    line.pstKey = &key;
    line.pstAttrList = &attrList;
    line.stMediaSet = {2, mediaItems};
}

} // namespace support
