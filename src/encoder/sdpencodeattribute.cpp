// The a= lines.
//
// An attribute that cannot be written never stops a body: its line ends early, the log says why.
#include "encoder/sdpencode.hpp"

namespace sdpline {

namespace {

bool isT38Flag(uint32_t type) {
    return type >= SDP_ATTR_T38_FILL_BIT_REMOVAL && type <= SDP_ATTR_T38_TRANSCODING_JBIG;
}

// T.38 flags of 0 have no line in the styles that write a flag as its bare name.
bool isLeftOut(const SDPAttr &attr) {
    return g_gstSdpT38OptCfg < SDP_T38_STYLE_VALUE && isT38Flag(attr.ulAttrType) &&
           attr.unAttrValue.ulValue == 0;
}

// [ ":" value ], where the refused ":" is no failure
SDPResult appendT38Flag(SipStringBuffer *buffer, uint32_t value) {
    if (g_gstSdpT38OptCfg != SDP_T38_STYLE_VALUE) {
        return 0;
    }
    SipSbCopyChar(buffer, ':');
    return SipSbCopyLong(buffer, value);
}

// Profiles 1 to 6 have no name of their own here.
constexpr uint32_t kFirstNamedProfile = 7;
constexpr uint32_t kLastNamedProfile = 35;
constexpr uint32_t kStereoProfile = 9; // L16 with two channels

// The profile's name for a record without one. What the record leaves open is then filled in
// from the profile, in the record itself.
void appendProfile(SipStringBuffer *buffer, SDPRtpMapAttr &rtpMap) {
    const uint32_t profile = rtpMap.ulEncodingId;
    if (profile < kFirstNamedProfile || profile > kLastNamedProfile) {
        return;
    }
    SipSbCopyString(buffer, &g_aStrRtpmapProfiles[profile - 1]);
    if (rtpMap.ulClockRate == 0) {
        rtpMap.ulClockRate = g_aulRtpmapClockRates[profile - 1];
    }
    if (rtpMap.ulEncodingParams == 0) {
        rtpMap.ulEncodingParams = profile == kStereoProfile ? 2 : 1;
    }
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// *( a= attribute CRLF )
SDPResult sdpLibEncodeAttribFields(uint32_t *pulFlag, SDPAttrList *pstList,
                                   SipStringBuffer *pstBuf) {
    for (uint32_t i = 0; i < pstList->ulNoOfAttrs; ++i) {
        SDPAttr *const attr = pstList->ppstAttrs[i];
        if (isLeftOut(*attr)) {
            continue;
        }
        appendPrefix(pstBuf, pulFlag, 'a');
        sdpLibEncodeAttribField(attr, pstBuf);
        appendLineEnd(pstBuf);
    }
    return 0;
}

// attribute = name [ ":" value ]
SDPResult sdpLibEncodeAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    if (pstAttr->ulAttrType < SDP_ATTR_RTPMAP || pstAttr->ulAttrType > SDP_ATTR_SETUP) {
        return fail(Check::AttrTypeValue);
    }
    uint32_t nameWritten = 0;
    const SDPResult result = sdpLibEncodeAppAttribField(pstAttr, pstBuf, &nameWritten);
    if (nameWritten == 0) {
        return result;
    }
    if (result != 0) {
        return passUp(Check::AttrNameAppend, result);
    }
    return sdpLibEncodeDefinedAttribField(pstAttr, pstBuf);
}

// The name with its ":". Attributes that are kept by name, and the preconditions, are written
// whole.
SDPResult sdpLibEncodeAppAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf,
                                     uint32_t *pbNameWritten) {
    switch (pstAttr->ulAttrType) {
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF:
        return sdpLibEncodeStatusAttribField(&pstAttr->unAttrValue.stRsrcMgmtStatus,
                                             pstAttr->ulAttrType, pstBuf);
    case SDP_ATTR_UNREC_VALUE:
        *pbNameWritten = 1;
        SipSbCopyString(pstBuf, pstAttr->pstAttrName);
        SipSbCopyChar(pstBuf, ':');
        SipSbCopyString(pstBuf, &pstAttr->unAttrValue.strValue);
        return 0;
    case SDP_ATTR_UNREC_NOVALUE:
        *pbNameWritten = 1;
        SipSbCopyString(pstBuf, pstAttr->pstAttrName);
        return 0;
    default:
        *pbNameWritten = 1;
        return SipSbCopyString(pstBuf, &sstrSdpAttrNames[pstAttr->ulAttrType - 1]);
    }
}

SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    switch (pstAttr->ulAttrType) {
    case SDP_ATTR_RTPMAP: sdpLibEncodeAttribFieldRtpMap(pstAttr, pstBuf); return 0;
    case SDP_ATTR_PTIME:
    case SDP_ATTR_MAXPTIME:
    case SDP_ATTR_FRAMERATE:
    case SDP_ATTR_QUALITY:
    case SDP_ATTR_T38_FAX_VERSION:
    case SDP_ATTR_T38_MAX_BIT_RATE:
    case SDP_ATTR_T38_MAX_BUFFER:
    case SDP_ATTR_T38_MAX_DATAGRAM: return SipSbCopyLong(pstBuf, pstAttr->unAttrValue.ulValue);
    case SDP_ATTR_FMTP:
    case SDP_ATTR_CAT:
    case SDP_ATTR_KEYWDS:
    case SDP_ATTR_TOOL:
    case SDP_ATTR_ORIENT:
    case SDP_ATTR_TYPE:
    case SDP_ATTR_CHARSET:
    case SDP_ATTR_SDPLANG:
    case SDP_ATTR_LANG: return SipSbCopyString(pstBuf, &pstAttr->unAttrValue.strValue);
    case SDP_ATTR_T38_FILL_BIT_REMOVAL:
    case SDP_ATTR_T38_TRANSCODING_MMR:
    case SDP_ATTR_T38_TRANSCODING_JBIG: return appendT38Flag(pstBuf, pstAttr->unAttrValue.ulValue);
    case SDP_ATTR_T38_RATE_MANAGEMENT: return sdpLibEncodeAttribFieldT38RateMgmt(pstAttr, pstBuf);
    case SDP_ATTR_T38_UDP_EC: sdpLibEncodeAttribFieldT38UdpEc(pstAttr, pstBuf); return 0;
    case SDP_ATTR_SILENCE_SUPP: sdpLibEncodeAttribFieldT38SilenceSupp(pstAttr, pstBuf); return 0;
    case SDP_ATTR_ECAN: sdpLibEncodeAttribFieldEchoCan(pstAttr, pstBuf); return 0;
    case SDP_ATTR_IPBCP: return sdpLibEncodeAttribFieldIbpCp(pstAttr, pstBuf);
    case SDP_ATTR_SETUP: return sdpLibEncodeAttribT120Setup(pstAttr, pstBuf);
    default: return 0;
    }
}

// payload-type SP encoding-name "/" clock-rate [ "/" channels ]
SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    SDPRtpMapAttr &rtpMap = pstAttr->unAttrValue.stRtpMap;
    SipSbCopyLong(pstBuf, rtpMap.ulPayloadType);
    SipSbCopyChar(pstBuf, ' ');
    if (rtpMap.strEncodingName.ulLen != 0 && rtpMap.strEncodingName.pcData != nullptr) {
        SipSbCopyString(pstBuf, &rtpMap.strEncodingName);
    } else {
        appendProfile(pstBuf, rtpMap);
    }
    SipSbCopyChar(pstBuf, '/');
    SipSbCopyLong(pstBuf, rtpMap.ulClockRate);
    if (rtpMap.ulEncodingParams >= 2) {
        SipSbCopyChar(pstBuf, '/');
        SipSbCopyLong(pstBuf, rtpMap.ulEncodingParams);
    }
    return 0;
}

// "localTCF" / "transferredTCF"
SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return appendKnownWord(pstBuf, kT38RateWords, pstAttr->unAttrValue.ulValue);
}

// "t38UDPFEC" / "t38UDPRedundancy"
SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return appendKnownWord(pstBuf, kT38UdpEcWords, pstAttr->unAttrValue.ulValue);
}

// ( "on" / "off" ) params, which bring their own blank
SDPResult sdpLibEncodeAttribFieldT38SilenceSupp(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    SDPSilenceSuppression &silence = pstAttr->unAttrValue.stSilenceSupp;
    appendKnownWord(pstBuf, kSwitchWords, silence.bOn != 0 ? 1 : 0);
    return SipSbCopyString(pstBuf, &silence.strParams);
}

// [ "fb" / "f" / "b" ] ( " on" / " off" ) params
SDPResult sdpLibEncodeAttribFieldEchoCan(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    SDPEcan &ecan = pstAttr->unAttrValue.stEcan;
    appendKnownWord(pstBuf, kEcanDirWords, ecan.enEcanDir);
    appendKnownWord(pstBuf, kEcanSwitchWritten, ecan.bOn != 0 ? 1 : 0);
    return SipSbCopyString(pstBuf, &ecan.strParams);
}

// version ( " Request" / " Accepted" / " Confused" / " Rejected" )
SDPResult sdpLibEncodeAttribFieldIbpCp(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    const SDPIpBcp &ipBcp = pstAttr->unAttrValue.stIpBcp;
    if (const uint32_t result = SipSbCopyLong(pstBuf, ipBcp.ucVersion)) {
        return result;
    }
    return appendWord(pstBuf, kIpBcpWritten, ipBcp.ucType, Check::IpBcpTypeValue);
}

// "passive" / "active" / "actpass"
SDPResult sdpLibEncodeAttribT120Setup(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return appendWord(pstBuf, kSetupWords, pstAttr->unAttrValue.enT120Mode, Check::SetupValue);
}

// ( "curr:" / "des:" / "conf:" ) precondition-type [ SP strength-tag ] SP status-type
// SP direction-tag, where the strength is that of "des:" alone
SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *pstStatus, uint32_t enAttrType,
                                        SipStringBuffer *pstBuf) {
    if (pstStatus == nullptr || pstBuf == nullptr) {
        return fail(Check::StatusArgument);
    }
    if (sdpLibEncodeStatusAttribFieldAttrType(enAttrType, pstBuf) != 0) {
        return fail(Check::StatusAttrFailed, enAttrType);
    }
    const SDPPreconditionS &precondition = pstStatus->stPrecondition;
    if (precondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
        appendKnownWord(pstBuf, kPreconditionWords, precondition.enPreconditionType);
    } else if (precondition.pstrOtherPrecondition != nullptr) {
        SipSbCopyString(pstBuf, precondition.pstrOtherPrecondition);
    }
    SipSbCopyChar(pstBuf, ' ');
    if (enAttrType == SDP_ATTR_DES) {
        if (sdpLibEncodeStatusStrengthTag(pstStatus, pstBuf) != 0) {
            return fail(Check::StatusStrengthFailed, pstStatus->enStrengthTag);
        }
        SipSbCopyChar(pstBuf, ' ');
    }
    if (sdpLibEncodeStatusType(pstStatus, pstBuf) != 0) {
        return fail(Check::StatusTypeFailed, pstStatus->enStatusType);
    }
    SipSbCopyChar(pstBuf, ' ');
    if (sdpLibEncodeStatusDirTag(pstStatus, pstBuf) != 0) {
        return fail(Check::StatusDirectionFailed, pstStatus->enDirTag);
    }
    return 0;
}

SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t enAttrType, SipStringBuffer *pstBuf) {
    switch (enAttrType) {
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF: return SipSbCopyString(pstBuf, &sstrSdpAttrNames[enAttrType - 1]);
    default: return fail(Check::WordAttrType, enAttrType);
    }
}

} // extern "C"
