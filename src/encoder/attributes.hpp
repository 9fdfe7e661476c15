// How an a= line is written.
//
// An attribute that cannot be written never stops a body: its line ends early, the log says why.
#pragma once

#include "encoder/precondition.hpp"

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

inline bool isT38Flag(uint32_t type) {
    return type >= SDP_ATTR_T38_FILL_BIT_REMOVAL && type <= SDP_ATTR_T38_TRANSCODING_JBIG;
}

// T.38 flags of 0 have no line in the styles that write a flag as its bare name.
inline bool isLeftOut(const SDPAttr &attr) {
    return isT38Flag(attr.ulAttrType) && g_gstSdpT38OptCfg < SDP_T38_STYLE_VALUE &&
           attr.unAttrValue.ulValue == 0;
}

// [ ":" value ], where the refused ":" is no failure
inline SDPResult writeT38Flag(Output &out, const SDPAttr *attr) {
    if (g_gstSdpT38OptCfg != SDP_T38_STYLE_VALUE) {
        return 0;
    }
    out.character(':');
    return out.number(attr->unAttrValue.ulValue);
}

// "localTCF" / "transferredTCF"
inline SDPResult writeT38RateManagement(Output &out, const SDPAttr *attr) {
    return appendKnownWord(out, kT38RateWords, attr->unAttrValue.ulValue);
}

// "t38UDPFEC" / "t38UDPRedundancy"
inline SDPResult writeT38UdpEc(Output &out, const SDPAttr *attr) {
    return appendKnownWord(out, kT38UdpEcWords, attr->unAttrValue.ulValue);
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

// "passive" / "active" / "actpass"
inline SDPResult writeSetup(Output &out, const SDPAttr *attr) {
    return appendWord(out, kSetupWords, attr->unAttrValue.enT120Mode, Check::SetupValue);
}

// ---- Preconditions

SDPLINE_INLINE SDPResult writeStatusName(Output &out, uint32_t type) {
    switch (type) {
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF: return out.text(&sstrSdpAttrNames[type - 1]);
    default: return fail(Check::WordAttrType, type);
    }
}

// ( "curr:" / "des:" / "conf:" ) precondition-type [ SP strength-tag ] SP status-type
// SP direction-tag, where the strength is that of "des:" alone
inline SDPResult writeStatus(Output &out, const SDPRsrcMgmtStatus *status, uint32_t type) {
    if (status == nullptr || !out.hasBuffer()) {
        return fail(Check::StatusArgument);
    }
    if (writeStatusName(out, type) != 0) {
        return fail(Check::StatusAttrFailed, type);
    }
    const SDPPreconditionS &precondition = status->stPrecondition;
    if (precondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
        appendKnownWord(out, kPreconditionWords, precondition.enPreconditionType);
    } else if (precondition.pstrOtherPrecondition != nullptr) {
        out.text(precondition.pstrOtherPrecondition);
    }
    out.character(' ');
    if (type == SDP_ATTR_DES) {
        if (writeStrengthTag(out, *status) != 0) {
            return fail(Check::StatusStrengthFailed, status->enStrengthTag);
        }
        out.character(' ');
    }
    if (writeStatusType(out, *status) != 0) {
        return fail(Check::StatusTypeFailed, status->enStatusType);
    }
    out.character(' ');
    if (writeDirTag(out, *status) != 0) {
        return fail(Check::StatusDirectionFailed, status->enDirTag);
    }
    return 0;
}

// ---- Every attribute

// The name with its ":". Attributes that are kept by name, and the preconditions, are written
// whole.
SDPLINE_INLINE SDPResult writeAttributeName(Output &out, const SDPAttr &attr,
                                            uint32_t &nameWritten) {
    switch (attr.ulAttrType) {
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF:
        return apart<writeStatus>(out, &attr.unAttrValue.stRsrcMgmtStatus, attr.ulAttrType);
    case SDP_ATTR_UNREC_VALUE:
        nameWritten = 1;
        out.text(attr.pstAttrName);
        out.character(':');
        out.text(&attr.unAttrValue.strValue);
        return 0;
    case SDP_ATTR_UNREC_NOVALUE:
        nameWritten = 1;
        out.text(attr.pstAttrName);
        return 0;
    default: nameWritten = 1; return out.text(&sstrSdpAttrNames[attr.ulAttrType - 1]);
    }
}

SDPLINE_INLINE SDPResult writeAttributeValue(Output &out, SDPAttr &attr) {
    switch (attr.ulAttrType) {
    case SDP_ATTR_RTPMAP: writeRtpMap(out, attr.unAttrValue.stRtpMap); return 0;
    case SDP_ATTR_PTIME:
    case SDP_ATTR_MAXPTIME:
    case SDP_ATTR_FRAMERATE:
    case SDP_ATTR_QUALITY:
    case SDP_ATTR_T38_FAX_VERSION:
    case SDP_ATTR_T38_MAX_BIT_RATE:
    case SDP_ATTR_T38_MAX_BUFFER:
    case SDP_ATTR_T38_MAX_DATAGRAM: return out.number(attr.unAttrValue.ulValue);
    case SDP_ATTR_FMTP:
    case SDP_ATTR_CAT:
    case SDP_ATTR_KEYWDS:
    case SDP_ATTR_TOOL:
    case SDP_ATTR_ORIENT:
    case SDP_ATTR_TYPE:
    case SDP_ATTR_CHARSET:
    case SDP_ATTR_SDPLANG:
    case SDP_ATTR_LANG: return out.text(&attr.unAttrValue.strValue);
    case SDP_ATTR_T38_FILL_BIT_REMOVAL:
    case SDP_ATTR_T38_TRANSCODING_MMR:
    case SDP_ATTR_T38_TRANSCODING_JBIG: return apart<writeT38Flag>(out, &attr);
    case SDP_ATTR_T38_RATE_MANAGEMENT: return apart<writeT38RateManagement>(out, &attr);
    case SDP_ATTR_T38_UDP_EC: apart<writeT38UdpEc>(out, &attr); return 0;
    case SDP_ATTR_SILENCE_SUPP: apart<writeSilenceSupp>(out, &attr); return 0;
    case SDP_ATTR_ECAN: apart<writeEcan>(out, &attr); return 0;
    case SDP_ATTR_IPBCP: return apart<writeIpBcp>(out, &attr);
    case SDP_ATTR_SETUP: return apart<writeSetup>(out, &attr);
    default: return 0;
    }
}

// attribute = name [ ":" value ]
SDPLINE_INLINE SDPResult writeAttribute(Output &out, SDPAttr &attr) {
    if (attr.ulAttrType < SDP_ATTR_RTPMAP || attr.ulAttrType > SDP_ATTR_SETUP) {
        return fail(Check::AttrTypeValue);
    }
    uint32_t nameWritten = 0;
    const SDPResult result = writeAttributeName(out, attr, nameWritten);
    if (nameWritten == 0) {
        return result;
    }
    if (result != 0) {
        return passUp(Check::AttrNameAppend, result);
    }
    return writeAttributeValue(out, attr);
}

// *( a= attribute CRLF )
SDPLINE_INLINE SDPResult writeAttributes(Output &out, const uint32_t *flag,
                                         const SDPAttrList *list) {
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        SDPAttr &attr = *list->ppstAttrs[i];
        if (isLeftOut(attr)) {
            continue;
        }
        appendPrefix(out, flag, 'a');
        writeAttribute(out, attr);
        out.lineEnd();
    }
    return 0;
}

} // namespace sdpline
