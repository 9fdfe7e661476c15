// Copying and clearing attributes without their descriptor, which does not cover all forty types.
//
// Pointers to texts are unaligned within the packed record: they are passed to services in local
// variables.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"
#include "tables/attributes.hpp"

using namespace sdpline;

namespace {

SDPResult stored(uint32_t result) {
    return result == 0 ? 0 : logAndForward(Check::CopyAttributeText, result);
}

class AttributeCopier {
public:
    AttributeCopier(SDPMemCp *memCp, const SDPAttr &source, SDPAttr &target)
        : memCp_(memCp), source_(source), target_(target) {}

    SDPResult copyValue() {
        const auto &from = source_.unAttrValue;
        auto &to = target_.unAttrValue;
        switch (shapeOf(source_.ulAttrType)) {
        case Shape::None:
        case Shape::Flag:
        case Shape::Direction: return 0;
        case Shape::Number:
        case Shape::Decimal:
        case Shape::Switch:
        case Shape::Keyword: to.ulValue = from.ulValue; return 0;
        case Shape::IpBcp: to.stIpBcp = from.stIpBcp; return 0;
        case Shape::Text: return copyText(from.strValue, to.strValue);
        case Shape::RtpMap:
            to.stRtpMap = from.stRtpMap;
            return copyText(from.stRtpMap.strEncodingName, to.stRtpMap.strEncodingName);
        case Shape::SilenceSupp:
            to.stSilenceSupp = from.stSilenceSupp;
            return copyText(from.stSilenceSupp.strParams, to.stSilenceSupp.strParams);
        case Shape::Ecan:
            to.stEcan = from.stEcan;
            return copyText(from.stEcan.strParams, to.stEcan.strParams);
        case Shape::Precondition: return copyPrecondition();
        case Shape::NamedText: return copyNamedText();
        case Shape::NameOnly: return copyName();
        }
        return 0;
    }

private:
    // The target's text is emptied first, so that after a failed copy it holds neither a pointer of
    // the source nor one that was in the target's memory before.
    SDPResult copyText(const SipString &from, SipString &to) {
        to = {0, nullptr};
        return stored(SipSmCopyString(memCp_, &from, &to));
    }

    SDPResult cloneText(const SipString *from, SipString *&to) {
        to = nullptr;
        return stored(SipSmCloneString(memCp_, from, &to));
    }

    SDPResult copyPrecondition() {
        const SDPRsrcMgmtStatus &from = source_.unAttrValue.stRsrcMgmtStatus;
        SDPRsrcMgmtStatus &to = target_.unAttrValue.stRsrcMgmtStatus;
        to = from;
        if (from.stPrecondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
            return 0;
        }
        SipString *text = nullptr;
        const SDPResult result = cloneText(from.stPrecondition.pstrOtherPrecondition, text);
        to.stPrecondition.pstrOtherPrecondition = result == 0 ? text : nullptr;
        return result;
    }

    SDPResult copyName() {
        SipString *name = nullptr;
        const SDPResult result = cloneText(source_.pstAttrName, name);
        target_.pstAttrName = result == 0 ? name : nullptr;
        return result;
    }

    SDPResult copyNamedText() {
        target_.unAttrValue.strValue = {0, nullptr};
        if (const SDPResult result = copyName()) {
            return result;
        }
        const SDPResult result =
            copyText(source_.unAttrValue.strValue, target_.unAttrValue.strValue);
        if (result != 0) {
            SipString *name = target_.pstAttrName;
            SipSmFreeString(memCp_, &name);
            target_.pstAttrName = nullptr;
        }
        return result;
    }

    SDPMemCp *memCp_;
    const SDPAttr &source_;
    SDPAttr &target_;
};

void freeText(SDPMemCp *memCp, SipString *text) {
    SipSmFreeString(memCp, &text);
}

void freePrecondition(SDPMemCp *memCp, const SDPPreconditionS &precondition) {
    if (precondition.enPreconditionType == SDP_PRECONDITION_OTHER) {
        freeText(memCp, precondition.pstrOtherPrecondition);
    }
}

} // namespace

SDPResult SdpCopyAttribute(SDPMemCp *memCp, const SDPAttr *source, SDPAttr *target) {
    target->ulAttrType = source->ulAttrType;
    target->pstAttrName = nullptr;
    return AttributeCopier(memCp, *source, *target).copyValue();
}

SDPResult SdpClearAttribute(SDPMemCp *memCp, SDPAttr *attr) {
    auto &value = attr->unAttrValue;
    switch (shapeOf(attr->ulAttrType)) {
    case Shape::None:
    case Shape::Flag:
    case Shape::Direction:
    case Shape::Number:
    case Shape::Decimal:
    case Shape::Switch:
    case Shape::Keyword:
    case Shape::IpBcp: break;
    case Shape::Text: SipSmClearString(memCp, &value.strValue); break;
    case Shape::RtpMap: SipSmClearString(memCp, &value.stRtpMap.strEncodingName); break;
    case Shape::SilenceSupp: SipSmClearString(memCp, &value.stSilenceSupp.strParams); break;
    case Shape::Ecan: SipSmClearString(memCp, &value.stEcan.strParams); break;
    case Shape::Precondition: freePrecondition(memCp, value.stRsrcMgmtStatus.stPrecondition); break;
    case Shape::NamedText:
        freeText(memCp, attr->pstAttrName);
        SipSmClearString(memCp, &value.strValue);
        break;
    case Shape::NameOnly: freeText(memCp, attr->pstAttrName); break;
    }
    *attr = {};
    return 0;
}
