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

// Read only: the record of a text has no other kind of pointer.
constexpr char kCrlf[] = "\r\n";
constexpr char kCr[] = "\r";
constexpr char *readOnly(const char *text) {
    return const_cast<char *>(text);
}

} // namespace

extern "C" {

constinit const SipString g_gstSdpCrlfString[3] = {
    {2, readOnly(kCrlf)}, {1, readOnly(kCrlf + 1)}, {1, readOnly(kCr)}};
const SipString *g_gpstSdpCrlfCfg = g_gstSdpCrlfString;
uint32_t g_gstSdpT38OptCfg = SDP_T38_STYLE_FLAG;
uint32_t g_bSupMedProtoRtpAvpf = 0;

SDPResult SdpLibExtConfigValidate(uint32_t configType, uint32_t *value) {
    if (value == nullptr || configType == 0 || configType > kConfigTypes) {
        return fail(Check::ConfigValidate);
    }
    return 0;
}

SDPResult SdpLibExtConfig(uint32_t configType, uint32_t *value) {
    if (SdpLibExtConfigValidate(configType, value) != 0) {
        return fail(Check::ConfigArgument);
    }
    switch (configType) {
    case SDP_CONFIG_LINE_END: return SdpLibExtConfigCrlf(value);
    case SDP_CONFIG_RTP_AVPF:
        if (*value > 1) {
            return fail(Check::ConfigAvpf);
        }
        g_bSupMedProtoRtpAvpf = *value;
        return 0;
    default: return 0; // types that older callers pass
    }
}

SDPResult SdpLibExtConfigCrlf(uint32_t *value) {
    if (*value < SDP_LINE_END_CRLF || *value > SDP_LINE_END_CR) {
        return fail(Check::ConfigLineEnd);
    }
    g_gpstSdpCrlfCfg = &g_gstSdpCrlfString[*value - SDP_LINE_END_CRLF];
    return 0;
}

SipString SdpGetCrlfString(uint8_t index) {
    return g_gpstSdpCrlfCfg[index];
}

SDPResult SdpSetT38OptCfg(uint32_t value) {
    if (value > kMaxT38Style) {
        return fail(Check::ConfigT38Style);
    }
    g_gstSdpT38OptCfg = value;
    return 0;
}

uint32_t SdpGetT380ptCfg() {
    return g_gstSdpT38OptCfg;
}

void SdpSetSupMedProtoRtpAvpf(uint32_t value) {
    g_bSupMedProtoRtpAvpf = value;
}

uint32_t SdpGetSupMedProtoRtpAvpf() {
    return g_bSupMedProtoRtpAvpf;
}

void SdpSetSupMedProtoRtpFamily(uint32_t value) {
    decodeSettings.bRtpFamily = value;
}

uint32_t SdpGetSupMedProtoRtpFamily() {
    return decodeSettings.bRtpFamily;
}

SDPResult SdpSetMaxBodySize(uint32_t bytes) {
    if (bytes == 0 || bytes > SDP_MAX_LONG_BODY) {
        return fail(Check::ConfigMaxBody);
    }
    decodeSettings.ulMaxBodySize = bytes;
    return 0;
}

uint32_t SdpGetMaxBodySize() {
    return decodeSettings.ulMaxBodySize;
}

void SdpSetFnAlloc(SdpFnAlloc alloc) {
    g_gSdpFnAlloc = alloc;
}

SdpFnAlloc SdpGetFnAlloc() {
    return g_gSdpFnAlloc;
}

void SdpSetFnFree(SdpFnFree free) {
    g_gSdpFnFree = free;
}

SdpFnFree SdpGetFnFree() {
    return g_gSdpFnFree;
}

} // extern "C"
