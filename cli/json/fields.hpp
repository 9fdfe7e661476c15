// The fields of the records and their names in JSON, in one list for writing and reading. `Io` is
// the object that writes or reads them, see write.cpp and read.cpp.
//
// Pointers in the records may be aligned to 4 bytes only, so that no reference may refer to them:
// they are passed by value and stored again. Writing stores the same pointer.
#pragma once

#include <array>
#include <span>

#include "sdpline/cpp/detail/attributes.hpp"
#include "sdpline/sdpline.h"

namespace cli {

namespace tables = sdpline::tables;

// The codes that a field may have, and their words.
struct Codes {
    std::span<const tables::KeywordRow> words;
    uint32_t first;
    uint32_t last;
};

inline constexpr auto kTptAddrWords = std::to_array<tables::KeywordRow>({
    {"IPv4", SDP_TPTADDR_IPV4},
    {"IPv6", SDP_TPTADDR_IPV6},
});

inline constexpr Codes kTptAddrTypes = {kTptAddrWords, SDP_TPTADDR_IPV4, SDP_TPTADDR_IPV6};
inline constexpr Codes kNetTypes = {tables::kNetTypeWords, SDP_NETTYPE_IN, SDP_NETTYPE_OTHER};
inline constexpr Codes kAddrTypes = {tables::kAddrTypeWords, SDP_ADDRTYPE_IP4, SDP_ADDRTYPE_OTHER};
inline constexpr Codes kTimeTypes = {tables::kTimeUnitWords, SDP_TIME_DAYS, SDP_TIME_SECONDS};
inline constexpr Codes kMediaTypes = {tables::kMediaWords, SDP_MEDIA_AUDIO, SDP_MEDIA_OTHER};
inline constexpr Codes kProtocols = {tables::kProtoWords, SDP_PROTO_RTP_AVP, SDP_PROTO_OTHER};
inline constexpr Codes kFormats = {tables::kFmtWords, SDP_FMT_RTP_PAYLOADS, SDP_FMT_OTHER};
inline constexpr Codes kEcanDirections = {tables::kEcanDirWords, 0, SDP_ECAN_B};
inline constexpr Codes kIpBcpTypes = {tables::kIpBcpWords, SDP_IPBCP_REQUEST, SDP_IPBCP_REJECTED};
inline constexpr Codes kPreconditions = {tables::kPreconditionWords, SDP_PRECONDITION_QOS,
                                         SDP_PRECONDITION_OTHER};
inline constexpr Codes kStatusTypes = {tables::kStatusWords, SDP_STATUS_E2E, SDP_STATUS_REMOTE};
inline constexpr Codes kStrengths = {tables::kStrengthWords, SDP_STRENGTH_MANDATORY,
                                     SDP_STRENGTH_UNKNOWN};
inline constexpr Codes kDirections = {tables::kDirWords, SDP_DIR_NONE, SDP_DIR_SENDRECV};

// The names of attribute types, "rtpmap" and so on. Types whose records hold the name are not
// listed.
inline constexpr auto kAttributeWords = [] {
    constexpr size_t kNamed = tables::kLastAttribute - 2;
    std::array<tables::KeywordRow, kNamed> words;
    size_t count = 0;
    for (const tables::AttributeRow &row : tables::kAttributes) {
        if (row.type != SDP_ATTR_NONE && row.name != " ") {
            words[count++] = {row.bareName(), row.type};
        }
    }
    return words;
}();
inline constexpr Codes kAttributeTypes = {kAttributeWords, SDP_ATTR_RTPMAP, tables::kLastAttribute};

template <class Io>
void fields(Io &io, SDPNetType &net, SDPAddrType &addr) {
    net.pstrOtherNetType =
        io.codeOrText("netType", net.enNetType, kNetTypes, net.pstrOtherNetType, SDP_NETTYPE_OTHER);
    addr.pstrOtherAddrType = io.codeOrText("addrType", addr.enAddrType, kAddrTypes,
                                           addr.pstrOtherAddrType, SDP_ADDRTYPE_OTHER);
}

template <class Io>
void fields(Io &io, SDPOrigin &origin) {
    io.text("userName", origin.strUserName);
    io.text("sessionId", origin.strSessionId);
    io.text("sessionVersion", origin.strSessionVersion);
    fields(io, origin.stNetType, origin.stAddrType);
    io.text("address", origin.strAddress);
}

template <class Io>
void fields(Io &io, SDPConnection &connection) {
    fields(io, connection.stNetType, connection.stAddrType);
    io.address("address", connection.stTptAddr);
    io.given("ttl", connection.ulTtl);
    io.given("addresses", connection.ulNoOfAddrs);
}

template <class Io>
void fields(Io &io, SDPTimeUnit &unit) {
    io.number("value", unit.ulTimeValue);
    io.code("unit", unit.enTimeType, kTimeTypes);
}

template <class Io>
void fields(Io &io, SDPRepeatField &repeat) {
    repeat.ppstTimeUnits = io.list("times", repeat.ulNoOfTimeUnits, repeat.ppstTimeUnits, 1);
}

template <class Io>
void items(Io &io, const char *key, SDPRepeatFieldSet &set) {
    set.ppstRepeatFields = io.list(key, set.ulNoOfRepeatFields, set.ppstRepeatFields, 0);
}

template <class Io>
void fields(Io &io, SDPTimeField &time) {
    io.number("start", time.ulStartTime);
    io.number("stop", time.ulStopTime);
    time.pstRepeatFieldSet = io.optionalList("repeats", time.pstRepeatFieldSet);
}

template <class Io>
void fields(Io &io, SDPRtpMapAttr &map) {
    io.number("payload", map.ulPayloadType);
    io.number("profile", map.ulEncodingId, 35);
    io.text("name", map.strEncodingName);
    io.number("clockRate", map.ulClockRate);
    io.number("channels", map.ulEncodingParams);
}

template <class Io>
void fields(Io &io, SDPSilenceSuppression &suppression) {
    io.number("on", suppression.bOn);
    io.text("parameters", suppression.strParams);
}

template <class Io>
void fields(Io &io, SDPEcan &ecan) {
    io.number("on", ecan.bOn);
    io.code("direction", ecan.enEcanDir, kEcanDirections);
    io.text("parameters", ecan.strParams);
}

template <class Io>
void fields(Io &io, SDPIpBcp &ipBcp) {
    io.number("version", ipBcp.ucVersion);
    io.reserved("reserved8", ipBcp.ucReserved);
    io.reserved("reserved16", ipBcp.usReserved);
    io.code("type", ipBcp.ucType, kIpBcpTypes);
}

template <class Io>
void fields(Io &io, SDPRsrcMgmtStatus &status) {
    SDPPreconditionS &type = status.stPrecondition;
    type.pstrOtherPrecondition = io.codeOrText("type", type.enPreconditionType, kPreconditions,
                                               type.pstrOtherPrecondition, SDP_PRECONDITION_OTHER);
    io.code("status", status.enStatusType, kStatusTypes);
    io.code("strength", status.enStrengthTag, kStrengths);
    io.code("direction", status.enDirTag, kDirections);
}

template <class Io>
void valueFields(Io &io, SDPAttr &attr) {
    const tables::AttributeRow &row = tables::attributeRow(attr.ulAttrType);
    auto &value = attr.unAttrValue;
    switch (row.shape) {
    case tables::Shape::None:
    case tables::Shape::Flag:
    case tables::Shape::Direction:
    case tables::Shape::NameOnly: return;
    case tables::Shape::Number:
    case tables::Shape::Decimal:
    case tables::Shape::Switch: io.number("value", value.ulValue); return;
    case tables::Shape::Keyword:
        io.code("value", value.ulValue, {row.words, 1, static_cast<uint32_t>(row.words.size())});
        return;
    case tables::Shape::Text:
    case tables::Shape::NamedText: io.text("text", value.strValue); return;
    case tables::Shape::RtpMap: io.record("rtpmap", value.stRtpMap); return;
    case tables::Shape::SilenceSupp: io.record("silenceSupp", value.stSilenceSupp); return;
    case tables::Shape::Ecan: io.record("ecan", value.stEcan); return;
    case tables::Shape::IpBcp: io.record("ipbcp", value.stIpBcp); return;
    case tables::Shape::Precondition: io.record("precondition", value.stRsrcMgmtStatus); return;
    }
}

template <class Io>
void fields(Io &io, SDPAttr &attr) {
    io.code("type", attr.ulAttrType, kAttributeTypes);
    const tables::Shape shape = tables::shapeOf(attr.ulAttrType);
    if (shape == tables::Shape::NamedText || shape == tables::Shape::NameOnly) {
        attr.pstAttrName = io.namedText("name", attr.pstAttrName);
    }
    valueFields(io, attr);
}

template <class Io>
void items(Io &io, const char *key, SDPAttrList &list) {
    list.ppstAttrs = io.list(key, list.ulNoOfAttrs, list.ppstAttrs, 0);
}

template <class Io>
void fields(Io &io, SDPMediaFmt &fmt) {
    io.code("type", fmt.enFmtType, kFormats);
    if (fmt.enFmtType == SDP_FMT_OTHER) {
        io.text("text", fmt.unMediaFmt.strOtherFmts);
    } else if (fmt.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        io.payloads("payloads", fmt.unMediaFmt.stRtpPayLoads);
    }
}

template <class Io>
void fields(Io &io, SDPMediaField &media) {
    media.stMedia.pstrOtherMedia = io.codeOrText("type", media.stMedia.enMediaType, kMediaTypes,
                                                 media.stMedia.pstrOtherMedia, SDP_MEDIA_OTHER);
    io.number("port", media.ulPort);
    io.number("ports", media.ulNoOfPorts);
    media.stProto.pstrOtherProto = io.codeOrText("protocol", media.stProto.enProto, kProtocols,
                                                 media.stProto.pstrOtherProto, SDP_PROTO_OTHER);
    io.record("format", media.stMediaFmt);
}

template <class Io>
void fields(Io &io, SDPMediaDesc &desc) {
    fields(io, desc.stMediaField);
    desc.pstrMediaInfo = io.optionalText("info", desc.pstrMediaInfo);
    desc.pstConnection = io.optionalRecord("connection", desc.pstConnection);
    desc.pstBandwidthList = io.optionalTexts("bandwidths", desc.pstBandwidthList);
    desc.pstKey = io.optionalKey("key", desc.pstKey);
    desc.pstAttrList = io.optionalList("attributes", desc.pstAttrList);
}

template <class Io>
void fields(Io &io, SdpLine &line) {
    io.number("version", line.ulProtoVersion);
    io.record("origin", line.stOrigin);
    io.text("name", line.strSessionName);
    line.pstrSessionInfo = io.optionalText("info", line.pstrSessionInfo);
    line.pstrUri = io.optionalText("uri", line.pstrUri);
    line.pstEmailList = io.optionalTexts("emails", line.pstEmailList);
    line.pstPhoneList = io.optionalTexts("phones", line.pstPhoneList);
    line.pstConnection = io.optionalRecord("connection", line.pstConnection);
    line.pstBandwidthList = io.optionalTexts("bandwidths", line.pstBandwidthList);
    SDPTimeSet &times = line.stTimeSet;
    times.ppstTimeFields = io.list("times", times.ulNoOfTimeFields, times.ppstTimeFields, 0);
    line.pstrTimeZone = io.optionalText("zone", line.pstrTimeZone);
    line.pstKey = io.optionalKey("key", line.pstKey);
    line.pstAttrList = io.optionalList("attributes", line.pstAttrList);
    SDPMediaSet &media = line.stMediaSet;
    media.ppstMediaDescs = io.list("media", media.ulNoOfMediaDescs, media.ppstMediaDescs, 0);
}

} // namespace cli
