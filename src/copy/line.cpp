// Copy, clone, clear and free of one line, chosen by its kind. The stack's generic services do the
// work by the table of lines; m= lines and attributes, which the descriptors do not cover, are
// done in media.cpp and attribute.cpp.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

SDPResult SdpCopyLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                              void *pDst) {
    if (pstMemCp == nullptr || enLineType >= SDP_LINE_COUNT || pSrc == nullptr || pDst == nullptr) {
        return fail(Check::CopyValidate);
    }
    return 0;
}

SDPResult SdpCopyLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc, void *pDst) {
    if (SdpCopyLineValidate(pstMemCp, enLineType, pSrc, pDst) != 0) {
        return fail(Check::CopyArgument);
    }
    if (enLineType == SDP_LINE_MEDIA) {
        return SdpCopyMediaField(pstMemCp, static_cast<const SDPMediaField *>(pSrc),
                                 static_cast<SDPMediaField *>(pDst));
    }
    if (enLineType == SDP_LINE_ATTRIBUTE) {
        return SdpCopyAttribute(pstMemCp, static_cast<const SDPAttr *>(pSrc),
                                static_cast<SDPAttr *>(pDst));
    }
    const uint32_t copied =
        SipDsmCopyGeneralField(pstMemCp, pSrc, pDst, g_gpstSdpLineDef[enLineType]);
    return copied == 0 ? 0 : fail(Check::CopyGeneric, copied);
}

SDPResult SdpCloneLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                               void **ppDst) {
    if (pstMemCp == nullptr || enLineType >= SDP_LINE_COUNT || pSrc == nullptr ||
        ppDst == nullptr) {
        return fail(Check::CloneValidate);
    }
    return 0;
}

SDPResult SdpCloneLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc, void **ppDst) {
    if (SdpCloneLineValidate(pstMemCp, enLineType, pSrc, ppDst) != 0) {
        return fail(Check::CloneArgument);
    }
    void *pClone = pstMemCp->pfnAlloc(pstMemCp, g_gpstSdpLineDef[enLineType]->ulSize);
    if (pClone == nullptr) {
        return fail(Check::CloneAlloc);
    }
    if (SdpCopyLine(pstMemCp, enLineType, pSrc, pClone) != 0) {
        pstMemCp->pfnFree(pClone);
        return fail(Check::CloneCopy);
    }
    *ppDst = pClone;
    return 0;
}

SDPResult SdpClearLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue) {
    if (pstMemCp == nullptr || enLineType >= SDP_LINE_COUNT || pValue == nullptr) {
        return fail(Check::ClearValidate);
    }
    return 0;
}

SDPResult SdpClearLine(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue) {
    const SDPResult valid = SdpClearLineValidate(pstMemCp, enLineType, pValue);
    if (valid != 0) {
        return valid;
    }
    if (enLineType == SDP_LINE_MEDIA) {
        return SdpClearMediaField(pstMemCp, static_cast<SDPMediaField *>(pValue));
    }
    if (enLineType == SDP_LINE_ATTRIBUTE) {
        return SdpClearAttribute(pstMemCp, static_cast<SDPAttr *>(pValue));
    }
    return SipDsmClearGeneralField(pstMemCp, pValue, g_gpstSdpLineDef[enLineType]);
}

SDPResult SdpFreeLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue) {
    if (pstMemCp == nullptr || enLineType >= SDP_LINE_COUNT || ppValue == nullptr) {
        return fail(Check::FreeValidate);
    }
    return 0;
}

SDPResult SdpFreeLine(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue) {
    const SDPResult valid = SdpFreeLineValidate(pstMemCp, enLineType, ppValue);
    if (valid != 0) {
        return valid;
    }
    void *const pValue = *ppValue;
    if (pValue == nullptr) {
        return 0;
    }
    // A record that cannot be cleared is given back all the same: the caller is done with it.
    SdpClearLine(pstMemCp, enLineType, pValue);
    *ppValue = nullptr;
    return pstMemCp->pfnFree(pValue);
}
