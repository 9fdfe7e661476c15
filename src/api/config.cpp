// The process-wide settings, and the operations that change them.
#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "services/settings.hpp"

using namespace sdpline;

namespace sdpline {

SDPDecodeOptions decodeSettings = {0, SDP_MAX_BODY};
SDPLINE_PER_THREAD const SDPDecodeOptions *decodeOptions = nullptr;

} // namespace sdpline

namespace {

constexpr uint32_t kConfigTypes = 4;
constexpr uint32_t kMaxT38Style = SDP_T38_STYLE_VALUE;

char crlf[] = "\r\n";
char lf[] = "\n";
char cr[] = "\r";

} // namespace

extern "C" {

constinit const SipString g_gstSdpCrlfString[3] = {{2, crlf}, {1, lf}, {1, cr}};
const SipString *g_gpstSdpCrlfCfg = g_gstSdpCrlfString;
uint32_t g_gstSdpT38OptCfg = SDP_T38_STYLE_FLAG;
uint32_t g_bSupMedProtoRtpAvpf = 0;

SDPResult SdpLibExtConfigValidate(uint32_t enConfigType, uint32_t *pulValue) {
    if (pulValue == nullptr || enConfigType == 0 || enConfigType > kConfigTypes) {
        return fail(Check::ConfigValidate);
    }
    return 0;
}

SDPResult SdpLibExtConfig(uint32_t enConfigType, uint32_t *pulValue) {
    if (SdpLibExtConfigValidate(enConfigType, pulValue) != 0) {
        return fail(Check::ConfigArgument);
    }
    switch (enConfigType) {
    case SDP_CONFIG_LINE_END: return SdpLibExtConfigCrlf(pulValue);
    case SDP_CONFIG_RTP_AVPF:
        if (*pulValue > 1) {
            return fail(Check::ConfigAvpf);
        }
        g_bSupMedProtoRtpAvpf = *pulValue;
        return 0;
    default: return 0; // types that older callers pass
    }
}

SDPResult SdpLibExtConfigCrlf(uint32_t *pulValue) {
    if (*pulValue < SDP_LINE_END_CRLF || *pulValue > SDP_LINE_END_CR) {
        return fail(Check::ConfigLineEnd);
    }
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[*pulValue - SDP_LINE_END_CRLF];
    return 0;
}

SipString SdpGetCrlfString(uint8_t ucIndex) {
    return g_gpstSdpCrlfCfg[ucIndex];
}

SDPResult SdpSetT38OptCfg(uint32_t ulValue) {
    if (ulValue > kMaxT38Style) {
        return fail(Check::ConfigT38Style);
    }
    g_gstSdpT38OptCfg = ulValue;
    return 0;
}

uint32_t SdpGetT380ptCfg() {
    return g_gstSdpT38OptCfg;
}

void SdpSetSupMedProtoRtpAvpf(uint32_t bValue) {
    g_bSupMedProtoRtpAvpf = bValue;
}

uint32_t SdpGetSupMedProtoRtpAvpf() {
    return g_bSupMedProtoRtpAvpf;
}

void SdpSetSupMedProtoRtpFamily(uint32_t bValue) {
    decodeSettings.bRtpFamily = bValue;
}

uint32_t SdpGetSupMedProtoRtpFamily() {
    return decodeSettings.bRtpFamily;
}

SDPResult SdpSetMaxBodySize(uint32_t ulBytes) {
    if (ulBytes == 0 || ulBytes > SDP_MAX_LONG_BODY) {
        return fail(Check::ConfigMaxBody);
    }
    decodeSettings.ulMaxBodySize = ulBytes;
    return 0;
}

uint32_t SdpGetMaxBodySize() {
    return decodeSettings.ulMaxBodySize;
}

void SdpSetFnAlloc(SdpFnAlloc pfnAlloc) {
    g_gSdpFnAlloc = pfnAlloc;
}

SdpFnAlloc SdpGetFnAlloc() {
    return g_gSdpFnAlloc;
}

void SdpSetFnFree(SdpFnFree pfnFree) {
    g_gSdpFnFree = pfnFree;
}

SdpFnFree SdpGetFnFree() {
    return g_gSdpFnFree;
}

} // extern "C"
