#include "support/bodies.hpp"

#include <gtest/gtest.h>

#include <cstdio>

namespace support {

namespace {

class LineCollector {
public:
    std::vector<BodyLine> take() { return std::move(lines_); }

    void body(const SdpLine &line) {
        add(SDP_LINE_VERSION, &line.ulProtoVersion);
        add(SDP_LINE_ORIGIN, &line.stOrigin);
        add(SDP_LINE_NAME, &line.strSessionName);
        add(SDP_LINE_INFO, line.pstrSessionInfo);
        add(SDP_LINE_URI, line.pstrUri);
        texts(SDP_LINE_EMAIL, line.pstEmailList);
        texts(SDP_LINE_PHONE, line.pstPhoneList);
        add(SDP_LINE_CONNECTION, line.pstConnection);
        texts(SDP_LINE_BANDWIDTH, line.pstBandwidthList);
        for (uint32_t i = 0; i < line.stTimeSet.ulNoOfTimeFields; ++i) {
            time(*line.stTimeSet.ppstTimeFields[i]);
        }
        add(SDP_LINE_ZONE, line.pstrTimeZone);
        add(SDP_LINE_KEY, line.pstKey);
        attributes(line.pstAttrList);
        for (uint32_t i = 0; i < line.stMediaSet.ulNoOfMediaDescs; ++i) {
            media(*line.stMediaSet.ppstMediaDescs[i]);
        }
    }

private:
    void add(uint32_t lineType, const void *record) {
        if (record != nullptr) {
            lines_.push_back({lineType, record});
        }
    }

    void texts(uint32_t lineType, const SDPStringList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfStrings; ++i) {
            add(lineType, list->ppstStrings[i]);
        }
    }

    void attributes(const SDPAttrList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
            add(SDP_LINE_ATTRIBUTE, list->ppstAttrs[i]);
        }
    }

    void time(const SDPTimeField &field) {
        add(SDP_LINE_TIME, &field);
        const SDPRepeatFieldSet *set = field.pstRepeatFieldSet;
        for (uint32_t i = 0; set != nullptr && i < set->ulNoOfRepeatFields; ++i) {
            add(SDP_LINE_REPEAT, set->ppstRepeatFields[i]);
        }
    }

    void media(const SDPMediaDesc &desc) {
        add(SDP_LINE_MEDIA, &desc.stMediaField);
        add(SDP_LINE_INFO, desc.pstrMediaInfo);
        add(SDP_LINE_CONNECTION, desc.pstConnection);
        texts(SDP_LINE_BANDWIDTH, desc.pstBandwidthList);
        add(SDP_LINE_KEY, desc.pstKey);
        attributes(desc.pstAttrList);
    }

    std::vector<BodyLine> lines_;
};

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

std::vector<BodyLine> linesOf(const SdpLine &line) {
    LineCollector collector;
    collector.body(line);
    return collector.take();
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

Configured::~Configured() {
    configure(SDP_T38_STYLE_FLAG, 0, SDP_LINE_END_CRLF);
}

} // namespace support
