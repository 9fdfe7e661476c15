// How an a= line is written.
//
// An attribute that cannot be written never stops a body: its line ends early, the log says why.
#pragma once

#include "encoder/precondition.hpp"
#include "tables/attributes.hpp"

namespace sdpline {

// ---- rtpmap

// Profiles 1 to 6 have no name of their own here.
constexpr uint32_t kFirstNamedProfile = 7;
constexpr uint32_t kLastNamedProfile = 35;
constexpr uint32_t kStereoProfile = 9; // L16 with two channels

// The profile's name for a record without one. What the record leaves open is then filled in
// from the profile, in the record itself.
inline SDPResult writeProfile(Output &out, SDPRtpMapAttr *rtpMap) {
    const uint32_t profile = rtpMap->ulEncodingId;
    if (profile < kFirstNamedProfile || profile > kLastNamedProfile) {
        return 0;
    }
    out.text(&g_aStrRtpmapProfiles[profile - 1]);
    if (rtpMap->ulClockRate == 0) {
        rtpMap->ulClockRate = g_aulRtpmapClockRates[profile - 1];
    }
    if (rtpMap->ulEncodingParams == 0) {
        rtpMap->ulEncodingParams = profile == kStereoProfile ? 2 : 1;
    }
    return 0;
}

// payload-type SP encoding-name "/" clock-rate [ "/" channels ]
SDPLINE_INLINE SDPResult writeRtpMap(Output &out, SDPRtpMapAttr &rtpMap) {
    out.number(rtpMap.ulPayloadType);
    out.character(' ');
    if (rtpMap.strEncodingName.ulLen != 0 && rtpMap.strEncodingName.pcData != nullptr) {
        out.text(&rtpMap.strEncodingName);
    } else {
        apart<writeProfile>(out, &rtpMap);
    }
    out.character('/');
    out.number(rtpMap.ulClockRate);
    if (rtpMap.ulEncodingParams >= 2) {
        out.character('/');
        out.number(rtpMap.ulEncodingParams);
    }
    return 0;
}

// ---- Media control

// T.38 flags of 0 have no line in the styles that write a flag as its bare name.
inline bool isLeftOut(const SDPAttr &attr, Shape shape) {
    return shape == Shape::Switch && g_gstSdpT38OptCfg < SDP_T38_STYLE_VALUE &&
           attr.unAttrValue.ulValue == 0;
}

// [ ":" value ], where the refused ":" is no failure
inline SDPResult writeSwitch(Output &out, const SDPAttr *attr) {
    if (g_gstSdpT38OptCfg != SDP_T38_STYLE_VALUE) {
        return 0;
    }
    out.character(':');
    return out.number(attr->unAttrValue.ulValue);
}

// One of the row's words.
SDPLINE_INLINE SDPResult writeKeyword(Output &out, const AttributeRow &row, const SDPAttr &attr) {
    const uint32_t code = attr.unAttrValue.ulValue;
    if (const Word *const word = findByCode(row.words, code)) {
        return out.word(word->text);
    }
    return row.has(kUnknownRefused) ? fail(out, Check::SetupValue, code) : 0;
}

// ( "on" / "off" ) params, which bring their own blank
inline SDPResult writeSilenceSupp(Output &out, const SDPAttr *attr) {
    const SDPSilenceSuppression &silence = attr->unAttrValue.stSilenceSupp;
    appendKnownWord(out, kSwitchWords, silence.bOn != 0 ? 1 : 0);
    return out.text(&silence.strParams);
}

// [ "fb" / "f" / "b" ] ( " on" / " off" ) params
inline SDPResult writeEcan(Output &out, const SDPAttr *attr) {
    const SDPEcan &ecan = attr->unAttrValue.stEcan;
    appendKnownWord(out, kEcanDirWords, ecan.enEcanDir);
    appendKnownWord(out, kEcanSwitchWritten, ecan.bOn != 0 ? 1 : 0);
    return out.text(&ecan.strParams);
}

// version ( " Request" / " Accepted" / " Confused" / " Rejected" )
inline SDPResult writeIpBcp(Output &out, const SDPAttr *attr) {
    const SDPIpBcp &ipBcp = attr->unAttrValue.stIpBcp;
    if (const uint32_t result = out.number(ipBcp.ucVersion)) {
        return result;
    }
    return appendWord(out, kIpBcpWritten, ipBcp.ucType, Check::IpBcpTypeValue);
}

// ---- Preconditions

SDPLINE_INLINE SDPResult writeStatusName(Output &out, uint32_t type) {
    return shapeOf(type) == Shape::Precondition ? out.text(&sstrSdpAttrNames[type - 1])
                                                : fail(out, Check::WordAttrType, type);
}

// ( "curr:" / "des:" / "conf:" ) precondition-type [ SP strength-tag ] SP status-type
// SP direction-tag, where the strength is that of "des:" alone
inline SDPResult writeStatus(Output &out, const SDPRsrcMgmtStatus *status, uint32_t type) {
    if (status == nullptr || !out.hasBuffer()) {
        return fail(out, Check::StatusArgument);
    }
    if (writeStatusName(out, type) != 0) {
        return fail(out, Check::StatusAttrFailed, type);
    }
    const SDPPreconditionS &precondition = status->stPrecondition;
    if (precondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
        appendKnownWord(out, kPreconditionWords, precondition.enPreconditionType);
    } else if (precondition.pstrOtherPrecondition != nullptr) {
        out.text(precondition.pstrOtherPrecondition);
    }
    out.character(' ');
    if (attributeRow(type).has(kStrengthTag)) {
        if (writeStrengthTag(out, *status) != 0) {
            return fail(out, Check::StatusStrengthFailed, status->enStrengthTag);
        }
        out.character(' ');
    }
    if (writeStatusType(out, *status) != 0) {
        return fail(out, Check::StatusTypeFailed, status->enStatusType);
    }
    out.character(' ');
    if (writeDirTag(out, *status) != 0) {
        return fail(out, Check::StatusDirectionFailed, status->enDirTag);
    }
    return 0;
}

// ---- Every attribute

// Whether the name comes from the table, and the value follows it.
constexpr bool isNamedByTable(Shape shape) {
    static_assert(Shape::Precondition < Shape::NamedText && Shape::NamedText < Shape::NameOnly);
    return shape > Shape::None && shape < Shape::Precondition;
}

// name ":" value, where refused appends are no failure
SDPLINE_INLINE SDPResult writeNamedText(Output &out, const SDPAttr &attr) {
    out.text(attr.pstAttrName);
    out.character(':');
    out.text(&attr.unAttrValue.strValue);
    return 0;
}

// An attribute that is kept by name, or a precondition: they are written whole.
inline SDPResult writeWhole(Output &out, const SDPAttr *attr, Shape shape) {
    switch (shape) {
    case Shape::Precondition:
        return writeStatus(out, &attr->unAttrValue.stRsrcMgmtStatus, attr->ulAttrType);
    case Shape::NamedText: return writeNamedText(out, *attr);
    case Shape::NameOnly: out.text(attr->pstAttrName); return 0;
    default: return fail(out, Check::AttrTypeValue);
    }
}

SDPLINE_INLINE SDPResult writeKeywordValue(Output &out, const SDPAttr &attr) {
    const AttributeRow &row = attributeRow(attr.ulAttrType);
    const SDPResult result = writeKeyword(out, row, attr);
    return row.has(kResultDropped) ? 0 : result;
}

SDPLINE_INLINE SDPResult writeAttributeValue(Output &out, SDPAttr &attr, Shape shape) {
    switch (shape) {
    case Shape::Number:
    case Shape::Decimal: return out.number(attr.unAttrValue.ulValue);
    case Shape::Switch: return apart<writeSwitch>(out, &attr);
    case Shape::Keyword: return writeKeywordValue(out, attr);
    case Shape::Text: return out.text(&attr.unAttrValue.strValue);
    case Shape::RtpMap: writeRtpMap(out, attr.unAttrValue.stRtpMap); return 0;
    case Shape::SilenceSupp: apart<writeSilenceSupp>(out, &attr); return 0;
    case Shape::Ecan: apart<writeEcan>(out, &attr); return 0;
    case Shape::IpBcp: return apart<writeIpBcp>(out, &attr);
    case Shape::None:
    case Shape::Flag:
    case Shape::Direction:
    case Shape::Precondition:
    case Shape::NamedText:
    case Shape::NameOnly: break;
    }
    return 0;
}

SDPLINE_INLINE SDPResult writeTableName(Output &out, const SDPAttr &attr) {
    return out.text(&sstrSdpAttrNames[attr.ulAttrType - 1]);
}

// attribute = name [ ":" value ]
SDPLINE_INLINE SDPResult writeAttribute(Output &out, SDPAttr &attr, Shape shape) {
    if (!isNamedByTable(shape)) {
        return shape == Shape::NamedText ? writeNamedText(out, attr)
                                         : apart<writeWhole>(out, &attr, shape);
    }
    if (const SDPResult result = writeTableName(out, attr)) {
        return logAndForward(out, Check::AttrNameAppend, result);
    }
    return writeAttributeValue(out, attr, shape);
}

// *( a= attribute CRLF )
SDPLINE_INLINE SDPResult writeAttributes(Output &out, const uint32_t *flag,
                                         const SDPAttrList *list) {
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        SDPAttr &attr = *list->ppstAttrs[i];
        const Shape shape = shapeOf(attr.ulAttrType);
        if (isLeftOut(attr, shape)) {
            continue;
        }
        appendPrefix(out, flag, 'a');
        writeAttribute(out, attr, shape);
        out.lineEnd();
    }
    return 0;
}

} // namespace sdpline
