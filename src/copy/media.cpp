// Copying and clearing the m= line without its descriptor, which does not tell how many payload
// numbers there are.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

SDPResult SdpCopyNonOthersMediaFormat(SDPMemCp *memCp, const SDPRtpPayLoads *source,
                                      SDPRtpPayLoads *target) {
    const uint32_t count = source->ulNoOfPayLoads;
    if (count > SDP_MAX_PAYLOADS) {
        return fail(Check::CopyPayLoadsLimit);
    }
    *target = {count, nullptr};
    if (count == 0 || source->pulPayLoads == nullptr) {
        return 0;
    }
    const uint32_t size = count * static_cast<uint32_t>(sizeof(uint32_t));
    target->pulPayLoads = static_cast<uint32_t *>(memCp->pfnAlloc(memCp, size));
    if (target->pulPayLoads == nullptr) {
        return fail(Check::CopyPayLoadsAlloc);
    }
    if (memcpy_s(target->pulPayLoads, size, source->pulPayLoads, size) != 0) {
        SIPAbnormalSecureFunc("SdpCopyNonOthersMediaFormat", 915);
    }
    return 0;
}

SDPResult SdpCopyMediaFormat(SDPMemCp *memCp, const SDPMediaFmt *source, SDPMediaFmt *target) {
    target->enFmtType = source->enFmtType;
    if (source->enFmtType != SDP_FMT_OTHER) {
        return SdpCopyNonOthersMediaFormat(memCp, &source->unMediaFmt.stRtpPayLoads,
                                           &target->unMediaFmt.stRtpPayLoads);
    }
    target->unMediaFmt.strOtherFmts = {0, nullptr};
    const uint32_t copied =
        SipSmCopyString(memCp, &source->unMediaFmt.strOtherFmts, &target->unMediaFmt.strOtherFmts);
    return copied == 0 ? 0 : fail(Check::CopyFormatText, copied);
}

SDPResult SdpCopyMediaField(SDPMemCp *memCp, const SDPMediaField *source, SDPMediaField *target) {
    *target = {}; // so that the target can be cleared after a failure
    uint32_t copied =
        SipDsmCopyGeneralField(memCp, &source->stMedia, &target->stMedia, &g_gstSDPMediaDef);
    if (copied != 0) {
        return fail(Check::CopyMediaType, copied);
    }
    copied =
        SipDsmCopyGeneralField(memCp, &source->stProto, &target->stProto, &g_gstSDPMediaProtoDef);
    if (copied != 0) {
        SipDsmClearGeneralField(memCp, &target->stMedia, &g_gstSDPMediaDef);
        return fail(Check::CopyMediaProto, copied);
    }
    copied = SdpCopyMediaFormat(memCp, &source->stMediaFmt, &target->stMediaFmt);
    if (copied != 0) {
        SipDsmClearGeneralField(memCp, &target->stMedia, &g_gstSDPMediaDef);
        SipDsmClearGeneralField(memCp, &target->stProto, &g_gstSDPMediaProtoDef);
        return fail(Check::CopyMediaFormat, copied);
    }
    target->ulNoOfPorts = source->ulNoOfPorts;
    target->ulPort = source->ulPort;
    return 0;
}

SDPResult SdpClearMediaField(SDPMemCp *memCp, SDPMediaField *field) {
    SipDsmClearGeneralField(memCp, &field->stMedia, &g_gstSDPMediaDef);
    SipDsmClearGeneralField(memCp, &field->stProto, &g_gstSDPMediaProtoDef);
    SDPMediaFmt &format = field->stMediaFmt;
    if (format.enFmtType == SDP_FMT_OTHER) {
        SipSmClearString(memCp, &format.unMediaFmt.strOtherFmts);
    } else if (format.unMediaFmt.stRtpPayLoads.pulPayLoads != nullptr) {
        memCp->pfnFree(format.unMediaFmt.stRtpPayLoads.pulPayLoads);
    }
    *field = {};
    return 0;
}
