// Masks the records of a decoded body. The rules are those of the text: every value is masked as in
// its line.
#include <algorithm>
#include <array>
#include <cstring>

#include "redact/linemasks.hpp"
#include "redact/redact.hpp"
#include "sdpline/cpp/address.hpp"
#include "sdpline/cpp/detail/attributes.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

class RecordRedactor {
public:
    RecordRedactor(SDPMemCp &memory, Redactor &redactor) : memory_(memory), redactor_(redactor) {}

    void body(SdpLine &line) {
        origin(line.stOrigin);
        text("s=", &line.strSessionName);
        text("i=", line.pstrSessionInfo);
        text("u=", line.pstrUri);
        texts("e=", line.pstEmailList);
        texts("p=", line.pstPhoneList);
        connection(line.pstConnection);
        texts("b=", line.pstBandwidthList);
        text("z=", line.pstrTimeZone);
        key(line.pstKey);
        attributes(line.pstAttrList);
        for (uint32_t i = 0; i < line.stMediaSet.ulNoOfMediaDescs; ++i) {
            media(*line.stMediaSet.ppstMediaDescs[i]);
        }
    }

private:
    void origin(SDPOrigin &origin) {
        Masks &masks = redactor_.masks();
        text("o=", &origin.strUserName);
        store(origin.strSessionId, masks.sessionId(view(origin.strSessionId)));
        store(origin.strSessionVersion, masks.sessionVersion(view(origin.strSessionVersion)));
        store(origin.strAddress, addressMask(view(origin.strAddress), masks));
    }

    void media(SDPMediaDesc &desc) {
        SDPMediaField &field = desc.stMediaField;
        text("m=", field.stMedia.pstrOtherMedia);
        text("m=audio 0 ", field.stProto.pstrOtherProto);
        if (field.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            text("m=audio 0 udp ", &field.stMediaFmt.unMediaFmt.strOtherFmts);
        }
        text("i=", desc.pstrMediaInfo);
        connection(desc.pstConnection);
        texts("b=", desc.pstBandwidthList);
        key(desc.pstKey);
        attributes(desc.pstAttrList);
    }

    // If no memory is left, the text becomes empty, so that the value is never shown.
    void store(SipString &value, const std::string &with) {
        if (view(value) == with) {
            return;
        }
        const auto size = static_cast<uint32_t>(with.size());
        value = {0, static_cast<char *>(memory_.pfnAlloc(&memory_, size))};
        if (value.pcData != nullptr) {
            std::memcpy(value.pcData, with.data(), size);
            value.ulLen = size;
        }
    }

    void text(const std::string &prefix, SipString *value) {
        if (value == nullptr) {
            return;
        }
        store(*value, redactor_.redactedAfter(prefix, view(*value)));
    }

    void texts(const std::string &prefix, const SDPStringList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfStrings; ++i) {
            text(prefix, list->ppstStrings[i]);
        }
    }

    void key(SDPKey *value) {
        if (value != nullptr) {
            text("k=", &value->strKey);
        }
    }

    void connection(SDPConnection *value) {
        if (value == nullptr) {
            return;
        }
        Masks &masks = redactor_.masks();
        auto &address = value->stTptAddr.unTptAddr;
        if (value->stTptAddr.enTptAddrType == SDP_TPTADDR_IPV4) {
            store(masks.ipv4(std::to_array(address.aucIpv4)), address.aucIpv4);
        } else if (value->stTptAddr.enTptAddrType == SDP_TPTADDR_IPV6) {
            store(masks.ipv6(std::to_array(address.aucIpv6)), address.aucIpv6);
        }
    }

    static void store(const std::string &address, uint8_t *octets) {
        std::ranges::copy(sdpline::Address::fromText(address)->octets(), octets);
    }

    void attributes(const SDPAttrList *list) {
        for (uint32_t i = 0; list != nullptr && i < list->ulNoOfAttrs; ++i) {
            attribute(*list->ppstAttrs[i]);
        }
    }

    void attribute(SDPAttr &attr) {
        using sdpline::tables::Shape;
        const sdpline::tables::AttributeRow &row = sdpline::tables::attributeRow(attr.ulAttrType);
        const std::string line = "a=" + std::string(row.name);
        auto &value = attr.unAttrValue;
        switch (row.shape) {
        case Shape::Text: text(line, &value.strValue); break;
        case Shape::RtpMap: text(line + "0 ", &value.stRtpMap.strEncodingName); break;
        case Shape::SilenceSupp: text(line + "on", &value.stSilenceSupp.strParams); break;
        case Shape::Ecan: text(line + "fb on", &value.stEcan.strParams); break;
        case Shape::Precondition:
            text(line, value.stRsrcMgmtStatus.stPrecondition.pstrOtherPrecondition);
            break;
        case Shape::NamedText:
            text("a=" + nameOf(attr) + ':',
                 &value.strValue); // by the name, which is masked afterwards
            break;
        default: break;
        }
        text("a=", attr.pstAttrName);
    }

    static std::string nameOf(const SDPAttr &attr) {
        return attr.pstAttrName != nullptr ? std::string(view(*attr.pstAttrName)) : "";
    }

    SDPMemCp &memory_;
    Redactor &redactor_;
};

} // namespace

void redactRecords(SdpLine &line, Redactor &redactor) {
    RecordRedactor(*line.pstMemCp, redactor).body(line);
}

} // namespace cli
