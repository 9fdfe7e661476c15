// The m= line, copied and cleared by hand: its descriptor does not know how many payload numbers
// there are.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

SDPResult SdpCopyNonOthersMediaFormat(SDPMemCp *pstMemCp, const SDPRtpPayLoads *pstSrc,
                                      SDPRtpPayLoads *pstDst) {
    const uint32_t ulCount = pstSrc->ulNoOfPayLoads;
    if (ulCount > SDP_MAX_PAYLOADS) {
        return fail(Check::CopyPayLoadsLimit);
    }
    *pstDst = {ulCount, nullptr};
    if (ulCount == 0 || pstSrc->pulPayLoads == nullptr) {
        return 0;
    }
    const uint32_t ulBytes = ulCount * static_cast<uint32_t>(sizeof(uint32_t));
    pstDst->pulPayLoads = static_cast<uint32_t *>(pstMemCp->pfnAlloc(pstMemCp, ulBytes));
    if (pstDst->pulPayLoads == nullptr) {
        return fail(Check::CopyPayLoadsAlloc);
    }
    if (memcpy_s(pstDst->pulPayLoads, ulBytes, pstSrc->pulPayLoads, ulBytes) != 0) {
        SIPAbnormalSecureFunc("SdpCopyNonOthersMediaFormat", 915);
    }
    return 0;
}

SDPResult SdpCopyMediaFormat(SDPMemCp *pstMemCp, const SDPMediaFmt *pstSrc, SDPMediaFmt *pstDst) {
    pstDst->enFmtType = pstSrc->enFmtType;
    if (pstSrc->enFmtType != SDP_FMT_OTHER) {
        return SdpCopyNonOthersMediaFormat(pstMemCp, &pstSrc->unMediaFmt.stRtpPayLoads,
                                           &pstDst->unMediaFmt.stRtpPayLoads);
    }
    pstDst->unMediaFmt.strOtherFmts = {0, nullptr};
    const uint32_t copied = SipSmCopyString(pstMemCp, &pstSrc->unMediaFmt.strOtherFmts,
                                            &pstDst->unMediaFmt.strOtherFmts);
    return copied == 0 ? 0 : fail(Check::CopyFormatText, copied);
}

SDPResult SdpCopyMediaField(SDPMemCp *pstMemCp, const SDPMediaField *pstSrc,
                            SDPMediaField *pstDst) {
    *pstDst = {}; // wherever the copy stops, the target can be cleared
    uint32_t copied =
        SipDsmCopyGeneralField(pstMemCp, &pstSrc->stMedia, &pstDst->stMedia, &g_gstSDPMediaDef);
    if (copied != 0) {
        return fail(Check::CopyMediaType, copied);
    }
    copied = SipDsmCopyGeneralField(pstMemCp, &pstSrc->stProto, &pstDst->stProto,
                                    &g_gstSDPMediaProtoDef);
    if (copied != 0) {
        SipDsmClearGeneralField(pstMemCp, &pstDst->stMedia, &g_gstSDPMediaDef);
        return fail(Check::CopyMediaProto, copied);
    }
    copied = SdpCopyMediaFormat(pstMemCp, &pstSrc->stMediaFmt, &pstDst->stMediaFmt);
    if (copied != 0) {
        SipDsmClearGeneralField(pstMemCp, &pstDst->stMedia, &g_gstSDPMediaDef);
        SipDsmClearGeneralField(pstMemCp, &pstDst->stProto, &g_gstSDPMediaProtoDef);
        return fail(Check::CopyMediaFormat, copied);
    }
    pstDst->ulNoOfPorts = pstSrc->ulNoOfPorts;
    pstDst->ulPort = pstSrc->ulPort;
    return 0;
}

SDPResult SdpClearMediaField(SDPMemCp *pstMemCp, SDPMediaField *pstField) {
    SipDsmClearGeneralField(pstMemCp, &pstField->stMedia, &g_gstSDPMediaDef);
    SipDsmClearGeneralField(pstMemCp, &pstField->stProto, &g_gstSDPMediaProtoDef);
    SDPMediaFmt &stFmt = pstField->stMediaFmt;
    if (stFmt.enFmtType == SDP_FMT_OTHER) {
        SipSmClearString(pstMemCp, &stFmt.unMediaFmt.strOtherFmts);
    } else if (stFmt.unMediaFmt.stRtpPayLoads.pulPayLoads != nullptr) {
        pstMemCp->pfnFree(stFmt.unMediaFmt.stRtpPayLoads.pulPayLoads);
    }
    *pstField = {};
    return 0;
}
