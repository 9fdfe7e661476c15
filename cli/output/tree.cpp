#include "output/tree.hpp"

#include <span>
#include <string_view>

#include "tables/keywords.hpp"

namespace cli {

namespace {

class Writer {
public:
    // Starts a line; what is written belongs to it until the next one.
    Writer &line(std::string_view label) {
        if (!out_.empty()) {
            out_ += '\n';
        }
        out_.append(indent_ * 2, ' ');
        out_ += label;
        return *this;
    }

    Writer &word(std::string_view word) {
        out_ += ' ';
        out_ += word;
        return *this;
    }

    Writer &number(uint32_t value) { return word(std::to_string(value)); }
    Writer &field(std::string_view name, uint32_t value) { return word(name).number(value); }
    Writer &text(const SipString &text) { return word(quoted(text)); }
    Writer &text(const SipString *string) { return string != nullptr ? text(*string) : word("-"); }

    // A code by its keyword, or the number in brackets.
    Writer &code(uint32_t value, std::span<const sdpline::Word> words) {
        const sdpline::Word *const known = sdpline::findByCode(words, value);
        return known != nullptr ? word(known->text) : bracketed(value, '[', ']');
    }

    // A number that stands for something else.
    Writer &bracketed(uint32_t value, char open, char close) {
        out_ += ' ';
        out_ += open;
        out_ += std::to_string(value);
        out_ += close;
        return *this;
    }

    void indent() { ++indent_; }
    void outdent() { --indent_; }
    std::string take() { return std::move(out_) + '\n'; }

private:
    std::string out_;
    size_t indent_ = 0;
};

std::string dottedAddress(const uint8_t (&bytes)[4]) {
    std::string text;
    for (const uint8_t byte : bytes) {
        text += text.empty() ? "" : ".";
        text += std::to_string(byte);
    }
    return text;
}

std::string groupedAddress(const uint8_t (&bytes)[16]) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < sizeof bytes; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
        if (i % 2 == 1 && i + 1 < sizeof bytes) {
            text += ':';
        }
    }
    return text;
}

void writeNetwork(Writer &out, const SDPNetType &net, const SDPAddrType &addr) {
    out.code(net.enNetType, sdpline::kNetTypeWords);
    if (net.pstrOtherNetType != nullptr) {
        out.text(net.pstrOtherNetType);
    }
    out.code(addr.enAddrType, sdpline::kAddrTypeWords);
    if (addr.pstrOtherAddrType != nullptr) {
        out.text(addr.pstrOtherAddrType);
    }
}

void writeOrigin(Writer &out, const SDPOrigin &origin) {
    out.line("origin").text(origin.strUserName);
    out.word("session").text(origin.strSessionId);
    out.word("version").text(origin.strSessionVersion);
    writeNetwork(out, origin.stNetType, origin.stAddrType);
    out.text(origin.strAddress);
}

void writeConnection(Writer &out, const SDPConnection *connection) {
    if (connection == nullptr) {
        return;
    }
    out.line("connection");
    writeNetwork(out, connection->stNetType, connection->stAddrType);
    const SDPTptAddr &address = connection->stTptAddr;
    if (address.enTptAddrType == SDP_TPTADDR_IPV4) {
        out.word(dottedAddress(address.unTptAddr.aucIpv4));
    } else if (address.enTptAddrType == SDP_TPTADDR_IPV6) {
        out.word(groupedAddress(address.unTptAddr.aucIpv6));
    } else {
        out.field("address-type", address.enTptAddrType);
    }
    if (connection->ulTtl != SDP_NOT_GIVEN) {
        out.field("ttl", connection->ulTtl);
    }
    if (connection->ulNoOfAddrs != SDP_NOT_GIVEN) {
        out.field("addresses", connection->ulNoOfAddrs);
    }
}

void writeText(Writer &out, std::string_view label, const SipString *text) {
    if (text != nullptr) {
        out.line(label).text(*text);
    }
}

void writeTexts(Writer &out, std::string_view label, const SDPStringList *list) {
    if (list == nullptr) {
        return;
    }
    if (list->ulNoOfStrings == 0) {
        out.line(label).word("(none)");
    }
    for (uint32_t i = 0; i < list->ulNoOfStrings; ++i) {
        writeText(out, label, list->ppstStrings[i]);
    }
}

void writeKey(Writer &out, const SDPKey *key) {
    if (key != nullptr) {
        out.line("key").text(key->strKey);
    }
}

void writeRepeats(Writer &out, const SDPRepeatFieldSet *set) {
    if (set == nullptr) {
        return;
    }
    out.indent();
    for (uint32_t i = 0; i < set->ulNoOfRepeatFields; ++i) {
        const SDPRepeatField &repeat = *set->ppstRepeatFields[i];
        out.line("repeat");
        for (uint32_t unit = 0; unit < repeat.ulNoOfTimeUnits; ++unit) {
            const SDPTimeUnit &time = *repeat.ppstTimeUnits[unit];
            out.number(time.ulTimeValue).code(time.enTimeType, sdpline::kTimeUnitWords);
        }
    }
    out.outdent();
}

void writeTimes(Writer &out, const SDPTimeSet &set) {
    for (uint32_t i = 0; i < set.ulNoOfTimeFields; ++i) {
        const SDPTimeField &time = *set.ppstTimeFields[i];
        out.line("time").number(time.ulStartTime).number(time.ulStopTime);
        writeRepeats(out, time.pstRepeatFieldSet);
    }
}

void writeStatus(Writer &out, const SDPRsrcMgmtStatus &status, bool withStrength) {
    out.word("precondition");
    if (status.stPrecondition.pstrOtherPrecondition != nullptr) {
        out.text(status.stPrecondition.pstrOtherPrecondition);
    } else {
        out.code(status.stPrecondition.enPreconditionType, sdpline::kPreconditionWords);
    }
    if (withStrength) {
        out.word("strength").code(status.enStrengthTag, sdpline::kStrengthWords);
    }
    out.word("status").code(status.enStatusType, sdpline::kStatusWords);
    out.word("direction").code(status.enDirTag, sdpline::kDirWords);
}

void writeRtpMap(Writer &out, const SDPRtpMapAttr &map) {
    out.field("payload", map.ulPayloadType).field("profile", map.ulEncodingId);
    out.word("name").text(map.strEncodingName);
    out.field("clock", map.ulClockRate).field("channels", map.ulEncodingParams);
}

void writeAttributeValue(Writer &out, const SDPAttr &attr) {
    const auto &value = attr.unAttrValue;
    switch (attr.ulAttrType) {
    case SDP_ATTR_RTPMAP: return writeRtpMap(out, value.stRtpMap);
    case SDP_ATTR_T38_RATE_MANAGEMENT: out.code(value.ulValue, sdpline::kT38RateWords); return;
    case SDP_ATTR_T38_UDP_EC: out.code(value.ulValue, sdpline::kT38UdpEcWords); return;
    case SDP_ATTR_SILENCE_SUPP:
        out.word(value.stSilenceSupp.bOn != 0 ? "on" : "off").text(value.stSilenceSupp.strParams);
        return;
    case SDP_ATTR_ECAN:
        out.code(value.stEcan.enEcanDir, sdpline::kEcanDirWords);
        out.word(value.stEcan.bOn != 0 ? "on" : "off").text(value.stEcan.strParams);
        return;
    case SDP_ATTR_UNREC_VALUE: out.text(attr.pstAttrName).text(value.strValue); return;
    case SDP_ATTR_UNREC_NOVALUE: out.text(attr.pstAttrName); return;
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF:
        return writeStatus(out, value.stRsrcMgmtStatus, attr.ulAttrType == SDP_ATTR_DES);
    case SDP_ATTR_IPBCP:
        out.number(value.stIpBcp.ucVersion).code(value.stIpBcp.ucType, sdpline::kIpBcpWords);
        return;
    case SDP_ATTR_SETUP: out.code(value.enT120Mode, sdpline::kSetupWords); return;
    default: break;
    }
    const uint32_t type = attr.ulAttrType;
    if (type >= SDP_ATTR_FMTP && type <= SDP_ATTR_LANG) {
        out.text(value.strValue);
    } else if ((type >= SDP_ATTR_PTIME && type <= SDP_ATTR_FRAMERATE) ||
               (type >= SDP_ATTR_QUALITY && type <= SDP_ATTR_T38_MAX_DATAGRAM)) {
        out.number(value.ulValue);
    }
}

void writeAttributes(Writer &out, const SDPAttrList *list) {
    if (list == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        const SDPAttr &attr = *list->ppstAttrs[i];
        out.line("attribute").number(attr.ulAttrType);
        if (attr.ulAttrType == SDP_ATTR_UNREC_VALUE || attr.ulAttrType == SDP_ATTR_UNREC_NOVALUE) {
            out.word("other");
        } else if (attr.ulAttrType >= 1 && attr.ulAttrType <= SDP_ATTR_SETUP) {
            const SipString &name = sstrSdpAttrNames[attr.ulAttrType - 1];
            std::string_view bare = {name.pcData, name.ulLen};
            bare.remove_suffix(bare.ends_with(':') ? 1 : 0);
            out.word(bare);
        }
        writeAttributeValue(out, attr);
    }
}

void writeFormats(Writer &out, const SDPMediaFmt &fmt) {
    switch (fmt.enFmtType) {
    case SDP_FMT_T38: out.word("t38"); return;
    case SDP_FMT_T120: out.word("t120"); return;
    case SDP_FMT_OTHER: out.word("format").text(fmt.unMediaFmt.strOtherFmts); return;
    case SDP_FMT_RTP_PAYLOADS: break;
    default: out.field("format-type", fmt.enFmtType); return;
    }
    const SDPRtpPayLoads &payLoads = fmt.unMediaFmt.stRtpPayLoads;
    out.word("payloads");
    if (payLoads.pulPayLoads == nullptr) {
        out.bracketed(payLoads.ulNoOfPayLoads, '(', ')');
        return;
    }
    for (uint32_t i = 0; i < payLoads.ulNoOfPayLoads; ++i) {
        out.number(payLoads.pulPayLoads[i]);
    }
}

void writeMedia(Writer &out, const SDPMediaDesc &media) {
    const SDPMediaField &field = media.stMediaField;
    out.line("media");
    if (field.stMedia.pstrOtherMedia != nullptr) {
        out.text(field.stMedia.pstrOtherMedia);
    } else {
        out.code(field.stMedia.enMediaType, sdpline::kMediaWords);
    }
    out.field("port", field.ulPort).field("ports", field.ulNoOfPorts).word("proto");
    if (field.stProto.pstrOtherProto != nullptr) {
        out.text(field.stProto.pstrOtherProto);
    } else {
        out.code(field.stProto.enProto, sdpline::kProtoWords);
    }
    writeFormats(out, field.stMediaFmt);
    out.indent();
    writeText(out, "info", media.pstrMediaInfo);
    writeConnection(out, media.pstConnection);
    writeTexts(out, "bandwidth", media.pstBandwidthList);
    writeKey(out, media.pstKey);
    writeAttributes(out, media.pstAttrList);
    out.outdent();
}

} // namespace

std::string quoted(const SipString &text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (uint32_t i = 0; i < text.ulLen && text.pcData != nullptr; ++i) {
        const auto byte = static_cast<unsigned char>(text.pcData[i]);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += static_cast<char>(byte);
        } else if (byte >= ' ' && byte < 127) {
            result += static_cast<char>(byte);
        } else {
            result += "\\x";
            result += digits[byte >> 4];
            result += digits[byte & 15];
        }
    }
    return result + '"';
}

std::string describeTree(const SdpLine &line) {
    Writer out;
    out.line("version").number(line.ulProtoVersion);
    writeOrigin(out, line.stOrigin);
    out.line("name").text(line.strSessionName);
    writeText(out, "info", line.pstrSessionInfo);
    writeText(out, "uri", line.pstrUri);
    writeTexts(out, "email", line.pstEmailList);
    writeTexts(out, "phone", line.pstPhoneList);
    writeConnection(out, line.pstConnection);
    writeTexts(out, "bandwidth", line.pstBandwidthList);
    writeTimes(out, line.stTimeSet);
    writeText(out, "zone", line.pstrTimeZone);
    writeKey(out, line.pstKey);
    writeAttributes(out, line.pstAttrList);
    for (uint32_t i = 0; i < line.stMediaSet.ulNoOfMediaDescs; ++i) {
        writeMedia(out, *line.stMediaSet.ppstMediaDescs[i]);
    }
    return out.take();
}

} // namespace cli
