#include "output/tree.hpp"

#include <array>
#include <span>

#include "output/payloads.hpp"
#include "sdpline/cpp/address.hpp"
#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/detail/attributes.hpp"

namespace cli {

namespace {

namespace tables = sdpline::tables;

class Writer {
public:
    explicit Writer(TreeStyle style) : style_(style) {}

    // Starts a line, to which everything is added up to the next call.
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
    Writer &code(uint32_t value, std::span<const tables::KeywordRow> words) {
        const tables::KeywordRow *const known = tables::findByCode(words, value);
        return known != nullptr ? word(known->text) : bracketed(value, '[', ']');
    }

    // A number in brackets, in place of a word or a list.
    Writer &bracketed(uint32_t value, char open, char close) {
        out_ += ' ';
        out_ += open;
        out_ += std::to_string(value);
        out_ += close;
        return *this;
    }

    // The meaning of the number before it, if it is known and wanted.
    Writer &meaning(std::string_view name) {
        if (style_ == TreeStyle::Explained && !name.empty()) {
            out_ += " (";
            out_ += name;
            out_ += ')';
        }
        return *this;
    }

    void indent() { ++indent_; }
    void outdent() { --indent_; }
    std::string take() { return std::move(out_) + '\n'; }

private:
    TreeStyle style_;
    std::string out_;
    size_t indent_ = 0;
};

// Eight groups of four lower-case digits.
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
    out.code(net.enNetType, tables::kNetTypeWords);
    if (net.pstrOtherNetType != nullptr) {
        out.text(net.pstrOtherNetType);
    }
    out.code(addr.enAddrType, tables::kAddrTypeWords);
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
        out.word(sdpline::Address::v4(std::to_array(address.unTptAddr.aucIpv4)).text());
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
            out.number(time.ulTimeValue).code(time.enTimeType, tables::kTimeUnitWords);
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
        out.code(status.stPrecondition.enPreconditionType, tables::kPreconditionWords);
    }
    if (withStrength) {
        out.word("strength").code(status.enStrengthTag, tables::kStrengthWords);
    }
    out.word("status").code(status.enStatusType, tables::kStatusWords);
    out.word("direction").code(status.enDirTag, tables::kDirWords);
}

void writeRtpMap(Writer &out, const SDPRtpMapAttr &map) {
    out.field("payload", map.ulPayloadType);
    out.field("profile", map.ulEncodingId).meaning(profileName(map.ulEncodingId));
    out.word("name").text(map.strEncodingName);
    out.field("clock", map.ulClockRate).field("channels", map.ulEncodingParams);
}

void writeSwitch(Writer &out, uint32_t isOn, const SipString &parameters) {
    out.word(isOn != 0 ? "on" : "off").text(parameters);
}

void writeAttributeValue(Writer &out, const SDPAttr &attr) {
    const tables::AttributeRow &row = tables::attributeRow(attr.ulAttrType);
    const auto &value = attr.unAttrValue;
    switch (row.shape) {
    case tables::Shape::None:
    case tables::Shape::Flag:
    case tables::Shape::Direction: return;
    case tables::Shape::Number:
    case tables::Shape::Decimal:
    case tables::Shape::Switch: out.number(value.ulValue); return;
    case tables::Shape::Keyword: out.code(value.ulValue, row.words); return;
    case tables::Shape::Text: out.text(value.strValue); return;
    case tables::Shape::RtpMap: return writeRtpMap(out, value.stRtpMap);
    case tables::Shape::SilenceSupp:
        return writeSwitch(out, value.stSilenceSupp.bOn, value.stSilenceSupp.strParams);
    case tables::Shape::Ecan:
        out.code(value.stEcan.enEcanDir, tables::kEcanDirWords);
        return writeSwitch(out, value.stEcan.bOn, value.stEcan.strParams);
    case tables::Shape::IpBcp:
        out.number(value.stIpBcp.ucVersion).code(value.stIpBcp.ucType, tables::kIpBcpWords);
        return;
    case tables::Shape::Precondition:
        return writeStatus(out, value.stRsrcMgmtStatus, row.has(tables::kStrengthTag));
    case tables::Shape::NamedText: out.text(attr.pstAttrName).text(value.strValue); return;
    case tables::Shape::NameOnly: out.text(attr.pstAttrName); return;
    }
}

void writeAttributes(Writer &out, const SDPAttrList *list) {
    for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
        const SDPAttr &attr = *list->ppstAttrs[i];
        const tables::AttributeRow &row = tables::attributeRow(attr.ulAttrType);
        out.line("attribute").number(attr.ulAttrType);
        if (row.shape != tables::Shape::None) {
            out.word(row.name == " " ? "other" : row.bareName());
        }
        writeAttributeValue(out, attr);
    }
}

// The encoding of a payload number: that of its a=rtpmap line, or that of RFC 3551.
std::string payloadName(uint32_t payload, const SDPAttrList *list) {
    const auto encoding = sdpline::Attributes(list).encoding(payload);
    if (!encoding) {
        return "";
    }
    const std::string name = quoted(encoding->name);
    return name.substr(1, name.size() - 2);
}

void writeFormats(Writer &out, const SDPMediaFmt &fmt, const SDPAttrList *attributes) {
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
        const uint32_t payload = payLoads.pulPayLoads[i];
        out.number(payload).meaning(payloadName(payload, attributes));
    }
}

void writeMedia(Writer &out, const SDPMediaDesc &media) {
    const SDPMediaField &field = media.stMediaField;
    out.line("media");
    if (field.stMedia.pstrOtherMedia != nullptr) {
        out.text(field.stMedia.pstrOtherMedia);
    } else {
        out.code(field.stMedia.enMediaType, tables::kMediaWords);
    }
    out.field("port", field.ulPort).field("ports", field.ulNoOfPorts).word("proto");
    if (field.stProto.pstrOtherProto != nullptr) {
        out.text(field.stProto.pstrOtherProto);
    } else {
        out.code(field.stProto.enProto, tables::kProtoWords);
    }
    writeFormats(out, field.stMediaFmt, media.pstAttrList);
    out.indent();
    writeText(out, "info", media.pstrMediaInfo);
    writeConnection(out, media.pstConnection);
    writeTexts(out, "bandwidth", media.pstBandwidthList);
    writeKey(out, media.pstKey);
    writeAttributes(out, media.pstAttrList);
    out.outdent();
}

} // namespace

std::string quoted(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += each;
        } else if (byte >= ' ' && byte < 127) {
            result += each;
        } else {
            result += "\\x";
            result += digits[byte >> 4];
            result += digits[byte & 15];
        }
    }
    return result + '"';
}

std::string quoted(const SipString &text) {
    return quoted(text.pcData != nullptr ? std::string_view(text.pcData, text.ulLen)
                                         : std::string_view());
}

std::string describeTree(const SdpLine &line, TreeStyle style) {
    Writer out(style);
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
