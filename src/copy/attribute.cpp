// Attributes, copied and cleared by hand: forty types over one union, some with texts inside.
//
// Pointers to text lie unaligned within the packed record: a text is cloned and freed through a
// pointer of its own.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"

using namespace sdpline;

namespace {

// What the value of an attribute is, as far as copying it goes.
enum class Value : uint8_t {
    None,
    Number,
    Text,
    RtpMap,
    SilenceSupp,
    Ecan,
    IpBcp,
    Precondition,
    NamedText, // and a name
    NameOnly,
};

constexpr Value valueOf(uint32_t ulAttrType) {
    if (ulAttrType >= SDP_ATTR_FMTP && ulAttrType <= SDP_ATTR_LANG) {
        return Value::Text;
    }
    if ((ulAttrType >= SDP_ATTR_PTIME && ulAttrType <= SDP_ATTR_FRAMERATE) ||
        (ulAttrType >= SDP_ATTR_QUALITY && ulAttrType <= SDP_ATTR_T38_UDP_EC)) {
        return Value::Number;
    }
    switch (ulAttrType) {
    case SDP_ATTR_RTPMAP: return Value::RtpMap;
    case SDP_ATTR_SILENCE_SUPP: return Value::SilenceSupp;
    case SDP_ATTR_ECAN: return Value::Ecan;
    case SDP_ATTR_UNREC_VALUE: return Value::NamedText;
    case SDP_ATTR_UNREC_NOVALUE: return Value::NameOnly;
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF: return Value::Precondition;
    case SDP_ATTR_IPBCP: return Value::IpBcp;
    case SDP_ATTR_SETUP: return Value::Number;
    default: return Value::None;
    }
}

class AttributeCopier {
public:
    AttributeCopier(SDPMemCp *pstMemCp, const SDPAttr &stSrc, SDPAttr &stDst)
        : memCp_(pstMemCp), src_(stSrc), dst_(stDst) {}

    SDPResult copyValue() {
        const auto &from = src_.unAttrValue;
        auto &to = dst_.unAttrValue;
        switch (valueOf(src_.ulAttrType)) {
        case Value::Number: to.ulValue = from.ulValue; return 0;
        case Value::IpBcp: to.stIpBcp = from.stIpBcp; return 0;
        case Value::Text: return copyText(from.strValue, to.strValue);
        case Value::RtpMap:
            to.stRtpMap = from.stRtpMap;
            return copyText(from.stRtpMap.strEncodingName, to.stRtpMap.strEncodingName);
        case Value::SilenceSupp:
            to.stSilenceSupp = from.stSilenceSupp;
            return copyText(from.stSilenceSupp.strParams, to.stSilenceSupp.strParams);
        case Value::Ecan:
            to.stEcan = from.stEcan;
            return copyText(from.stEcan.strParams, to.stEcan.strParams);
        case Value::Precondition: return copyPrecondition();
        case Value::NamedText: return copyNamedText();
        case Value::NameOnly: return copyName();
        case Value::None: break;
        }
        return 0;
    }

private:
    // The target's text is emptied first: should the copy fail, it holds no pointer of the source
    // and none of the memory that the target lies in.
    SDPResult copyText(const SipString &strFrom, SipString &strTo) {
        strTo = {0, nullptr};
        return stored(SipSmCopyString(memCp_, &strFrom, &strTo));
    }

    SDPResult cloneText(const SipString *pstrFrom, SipString *&pstrTo) {
        pstrTo = nullptr;
        return stored(SipSmCloneString(memCp_, pstrFrom, &pstrTo));
    }

    static SDPResult stored(uint32_t ulResult) {
        return ulResult == 0 ? 0 : passUp(Check::CopyAttributeText, ulResult);
    }

    SDPResult copyPrecondition() {
        const SDPRsrcMgmtStatus &from = src_.unAttrValue.stRsrcMgmtStatus;
        SDPRsrcMgmtStatus &to = dst_.unAttrValue.stRsrcMgmtStatus;
        to = from;
        if (from.stPrecondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
            return 0;
        }
        SipString *pstrText = nullptr;
        const SDPResult ulResult = cloneText(from.stPrecondition.pstrOtherPrecondition, pstrText);
        to.stPrecondition.pstrOtherPrecondition = ulResult == 0 ? pstrText : nullptr;
        return ulResult;
    }

    SDPResult copyName() {
        SipString *pstrName = nullptr;
        const SDPResult ulResult = cloneText(src_.pstAttrName, pstrName);
        dst_.pstAttrName = ulResult == 0 ? pstrName : nullptr;
        return ulResult;
    }

    SDPResult copyNamedText() {
        dst_.unAttrValue.strValue = {0, nullptr};
        SDPResult ulResult = copyName();
        if (ulResult != 0) {
            return ulResult;
        }
        ulResult = copyText(src_.unAttrValue.strValue, dst_.unAttrValue.strValue);
        if (ulResult != 0) {
            SipString *pstrName = dst_.pstAttrName;
            SipSmFreeString(memCp_, &pstrName);
            dst_.pstAttrName = nullptr;
        }
        return ulResult;
    }

    SDPMemCp *memCp_;
    const SDPAttr &src_;
    SDPAttr &dst_;
};

void freeText(SDPMemCp *pstMemCp, SipString *pstrText) {
    SipSmFreeString(pstMemCp, &pstrText);
}

void freePrecondition(SDPMemCp *pstMemCp, const SDPPreconditionS &stPrecondition) {
    if (stPrecondition.enPreconditionType == SDP_PRECONDITION_OTHER) {
        freeText(pstMemCp, stPrecondition.pstrOtherPrecondition);
    }
}

} // namespace

SDPResult SdpCopyAttribute(SDPMemCp *pstMemCp, const SDPAttr *pstSrc, SDPAttr *pstDst) {
    pstDst->ulAttrType = pstSrc->ulAttrType;
    pstDst->pstAttrName = nullptr;
    return AttributeCopier(pstMemCp, *pstSrc, *pstDst).copyValue();
}

SDPResult SdpClearAttribute(SDPMemCp *pstMemCp, SDPAttr *pstAttr) {
    auto &value = pstAttr->unAttrValue;
    switch (valueOf(pstAttr->ulAttrType)) {
    case Value::RtpMap: SipSmClearString(pstMemCp, &value.stRtpMap.strEncodingName); break;
    case Value::Text: SipSmClearString(pstMemCp, &value.strValue); break;
    case Value::SilenceSupp: SipSmClearString(pstMemCp, &value.stSilenceSupp.strParams); break;
    case Value::Ecan: SipSmClearString(pstMemCp, &value.stEcan.strParams); break;
    case Value::NamedText:
        freeText(pstMemCp, pstAttr->pstAttrName);
        SipSmClearString(pstMemCp, &value.strValue);
        break;
    case Value::NameOnly: freeText(pstMemCp, pstAttr->pstAttrName); break;
    case Value::Precondition:
        freePrecondition(pstMemCp, value.stRsrcMgmtStatus.stPrecondition);
        break;
    case Value::None:
    case Value::Number:
    case Value::IpBcp: break;
    }
    *pstAttr = {};
    return 0;
}
