#include "support/bodies.hpp"

#include <gtest/gtest.h>

#include <cstdio>

namespace support {

namespace {

std::string bytesOf(SipRefString *text) {
    std::string bytes(SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text));
    SipSmReleaseRefString(text);
    return bytes;
}

void configure(uint32_t t38Style, uint32_t rtpAvpf, uint32_t lineEnd) {
    EXPECT_EQ(SdpSetT38OptCfg(t38Style), 0u);
    SdpSetSupMedProtoRtpAvpf(rtpAvpf);
    EXPECT_EQ(SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd), 0u);
}

} // namespace

Body decoded(std::string_view text) {
    const SipString body = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdp(&body, &line);
    EXPECT_EQ(result == 0, line != nullptr);
    return Body(line);
}

std::string encoded(SdpLine &line) {
    SipStringBuffer *buffer = nullptr;
    SipRefString *text = nullptr;
    if (SdpLibEncodeSdp(&line, &buffer) != 0 || SipSbConvertToRefString(buffer, &text) != 0) {
        ADD_FAILURE() << "a body is not written";
        SipSbReleaseStringBuffer(buffer);
        return "";
    }
    SipSbReleaseStringBuffer(buffer);
    return bytesOf(text);
}

std::string encodedLine(uint32_t lineType, const void *record) {
    uint32_t withPrefix = 1;
    SipRefString *text = nullptr;
    if (SdpLibEncodeSdpLine(&withPrefix, lineType, const_cast<void *>(record), &text) != 0) {
        ADD_FAILURE() << "a line of type " << lineType << " is not written";
        return "";
    }
    return bytesOf(text);
}

std::string readable(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '\n' || (byte >= ' ' && byte < 127 && byte != '\\')) {
            result += byte;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(byte));
            result += escape;
        }
    }
    return result;
}

Configured::Configured(uint32_t t38Style, uint32_t rtpAvpf, uint32_t lineEnd) {
    configure(t38Style, rtpAvpf, lineEnd);
}

Configured::Configured(const Case &current)
    : Configured(current.t38Style, current.avpf ? 1 : 0, current.lineEnd) {
    SdpSetSupMedProtoRtpFamily(current.family ? 1 : 0);
    EXPECT_EQ(SdpSetMaxBodySize(current.maxBody), 0u);
}

Configured::~Configured() {
    configure(SDP_T38_STYLE_FLAG, 0, SDP_LINE_END_CRLF);
    SdpSetSupMedProtoRtpFamily(0);
    SdpSetMaxBodySize(SDP_MAX_BODY);
}

} // namespace support
