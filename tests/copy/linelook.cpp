#include "copy/linesamples.hpp"

#include <array>

namespace dsmtest {

namespace {

constexpr std::array<size_t, SDP_LINE_COUNT> kRecordSizes = {
    sizeof(uint32_t),  sizeof(SDPConnection), sizeof(SDPOrigin),      sizeof(SDPMediaField),
    sizeof(SDPAttr),   sizeof(SDPTimeField),  sizeof(SDPRepeatField), sizeof(SipString),
    sizeof(SipString), sizeof(SipString),     sizeof(SipString),      sizeof(SipString),
    sizeof(SipString), sizeof(SipString),     sizeof(SDPKey)};

class Looker {
public:
    Look take() { return std::move(look_); }

    void version(uint32_t value) { number(value); }

    void connection(const SDPConnection &record) {
        types(record);
        address(record.stTptAddr);
        number(record.ulTtl);
        number(record.ulNoOfAddrs);
    }

    void origin(const SDPOrigin &record) {
        text(record.strUserName);
        text(record.strSessionId);
        text(record.strSessionVersion);
        types(record);
        text(record.strAddress);
    }

    template <class Record>
    void types(const Record &record) {
        coded(record.stNetType.enNetType, record.stNetType.pstrOtherNetType);
        coded(record.stAddrType.enAddrType, record.stAddrType.pstrOtherAddrType);
    }

    void media(const SDPMediaField &record) {
        coded(record.stMedia.enMediaType, record.stMedia.pstrOtherMedia);
        number(record.ulPort);
        number(record.ulNoOfPorts);
        coded(record.stProto.enProto, record.stProto.pstrOtherProto);
        number(record.stMediaFmt.enFmtType);
        if (record.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            text(record.stMediaFmt.unMediaFmt.strOtherFmts);
        } else {
            payLoads(record.stMediaFmt.unMediaFmt.stRtpPayLoads);
        }
    }

    void attribute(const SDPAttr &record) {
        number(record.ulAttrType);
        attributeValue(record);
        textAt(record.pstAttrName);
    }

    void time(const SDPTimeField &record) {
        number(record.ulStartTime);
        number(record.ulStopTime);
        const SDPRepeatFieldSet *set = record.pstRepeatFieldSet;
        if (!points(set)) {
            return;
        }
        number(set->ulNoOfRepeatFields);
        if (!points(set->ppstRepeatFields)) {
            return;
        }
        for (uint32_t i = 0; i < set->ulNoOfRepeatFields; ++i) {
            if (points(set->ppstRepeatFields[i])) {
                repeat(*set->ppstRepeatFields[i]);
            }
        }
    }

    void repeat(const SDPRepeatField &record) {
        number(record.ulNoOfTimeUnits);
        if (!points(record.ppstTimeUnits)) {
            return;
        }
        for (uint32_t i = 0; i < record.ulNoOfTimeUnits; ++i) {
            const SDPTimeUnit *unit = record.ppstTimeUnits[i];
            if (points(unit)) {
                number(unit->enTimeType);
                number(unit->ulTimeValue);
            }
        }
    }

    // No bytes are no bytes, wherever they are said to lie.
    void text(const SipString &value) {
        number(value.ulLen);
        if (value.ulLen == 0) {
            keep(value.pcData);
        } else if (points(value.pcData)) {
            look_.text.append("'").append(value.pcData, value.ulLen).append("' ");
        }
    }

private:
    void number(uint32_t value) { look_.text.append(std::to_string(value)).push_back(' '); }

    bool keep(const void *allocation) {
        if (allocation != nullptr) {
            look_.allocations.push_back(allocation);
        }
        return allocation != nullptr;
    }

    bool points(const void *to) {
        look_.text += to == nullptr ? "- " : "";
        return keep(to);
    }

    void textAt(const SipString *value) {
        if (points(value)) {
            text(*value);
        }
    }

    void coded(uint32_t code, const SipString *other) {
        number(code);
        textAt(other);
    }

    void address(const SDPTptAddr &record) {
        number(record.enTptAddrType);
        const size_t bytes = record.enTptAddrType == SDP_TPTADDR_IPV4   ? 4
                             : record.enTptAddrType == SDP_TPTADDR_IPV6 ? 16
                                                                        : 0;
        for (size_t i = 0; i < bytes; ++i) {
            number(record.unTptAddr.aucIpv6[i]);
        }
    }

    void payLoads(const SDPRtpPayLoads &record) {
        number(record.ulNoOfPayLoads);
        if (!points(record.pulPayLoads)) {
            return;
        }
        for (uint32_t i = 0; i < record.ulNoOfPayLoads; ++i) {
            number(record.pulPayLoads[i]);
        }
    }

    void rtpMap(const SDPRtpMapAttr &value) {
        number(value.ulPayloadType);
        number(value.ulEncodingId);
        text(value.strEncodingName);
        number(value.ulClockRate);
        number(value.ulEncodingParams);
    }

    void precondition(const SDPRsrcMgmtStatus &value) {
        coded(value.stPrecondition.enPreconditionType, value.stPrecondition.pstrOtherPrecondition);
        number(value.enStatusType);
        number(value.enStrengthTag);
        number(value.enDirTag);
    }

    void ipBcp(const SDPIpBcp &value) {
        number(value.ucVersion);
        number(value.ucReserved);
        number(value.usReserved);
        number(value.ucType);
    }

    void attributeValue(const SDPAttr &record) {
        const auto &value = record.unAttrValue;
        const uint32_t type = record.ulAttrType;
        if ((type >= 6 && type <= 8) || (type >= 18 && type <= 27) || type == 40) {
            number(value.ulValue);
        } else if ((type >= 9 && type <= 17) || type == 34) {
            text(value.strValue);
        } else if (type == 1) {
            rtpMap(value.stRtpMap);
        } else if (type == 28) {
            number(value.stSilenceSupp.bOn);
            text(value.stSilenceSupp.strParams);
        } else if (type == 29) {
            number(value.stEcan.bOn);
            number(value.stEcan.enEcanDir);
            text(value.stEcan.strParams);
        } else if (type >= 36 && type <= 38) {
            precondition(value.stRsrcMgmtStatus);
        } else if (type == 39) {
            ipBcp(value.stIpBcp);
        }
    }

    Look look_;
};

} // namespace

size_t recordSize(uint32_t lineType) {
    return kRecordSizes[lineType];
}

Look lookAt(uint32_t lineType, const void *record) {
    Looker looker;
    switch (lineType) {
    case SDP_LINE_VERSION: looker.version(*static_cast<const uint32_t *>(record)); break;
    case SDP_LINE_CONNECTION: looker.connection(*static_cast<const SDPConnection *>(record)); break;
    case SDP_LINE_ORIGIN: looker.origin(*static_cast<const SDPOrigin *>(record)); break;
    case SDP_LINE_MEDIA: looker.media(*static_cast<const SDPMediaField *>(record)); break;
    case SDP_LINE_ATTRIBUTE: looker.attribute(*static_cast<const SDPAttr *>(record)); break;
    case SDP_LINE_TIME: looker.time(*static_cast<const SDPTimeField *>(record)); break;
    case SDP_LINE_REPEAT: looker.repeat(*static_cast<const SDPRepeatField *>(record)); break;
    case SDP_LINE_KEY: looker.text(static_cast<const SDPKey *>(record)->strKey); break;
    default: looker.text(*static_cast<const SipString *>(record)); break;
    }
    return looker.take();
}

} // namespace dsmtest
