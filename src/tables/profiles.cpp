// The static RTP payload profiles (RFC 3551 section 6), and the exported functions that read them.
#include "tables/profiles.hpp"

#include "sdpline/sdpline.h"
#include "text/perfecthash.hpp"

// Name, and clock rate in Hz: 0 where the encoding has no fixed one. The first 17 rows are the
// static payload types 0 and 3 to 18 in this order. A profile number is a row plus 1.
#define SDPLINE_PROFILES(PROFILE)                                                                  \
    PROFILE("PCMU", 8000)                                                                          \
    PROFILE("GSM", 8000)                                                                           \
    PROFILE("G723", 8000)                                                                          \
    PROFILE("DVI4", 8000)                                                                          \
    PROFILE("DVI4", 16000)                                                                         \
    PROFILE("LPC", 8000)                                                                           \
    PROFILE("PCMA", 8000)                                                                          \
    PROFILE("G722", 8000)                                                                          \
    PROFILE("L16", 44100)                                                                          \
    PROFILE("L16", 44100)                                                                          \
    PROFILE("QCELP", 8000)                                                                         \
    PROFILE("CN", 8000)                                                                            \
    PROFILE("MPA", 90000)                                                                          \
    PROFILE("G728", 8000)                                                                          \
    PROFILE("DVI4", 11025)                                                                         \
    PROFILE("DVI4", 22050)                                                                         \
    PROFILE("G729", 8000)                                                                          \
    PROFILE("G726-40", 8000)                                                                       \
    PROFILE("G726-32", 8000)                                                                       \
    PROFILE("G726-24", 8000)                                                                       \
    PROFILE("G726-16", 8000)                                                                       \
    PROFILE("G729D", 8000)                                                                         \
    PROFILE("G729E", 8000)                                                                         \
    PROFILE("GSM-EFR", 8000)                                                                       \
    PROFILE("L8", 0)                                                                               \
    PROFILE("RED", 0)                                                                              \
    PROFILE("VDVI", 0)                                                                             \
    PROFILE("CelB", 90000)                                                                         \
    PROFILE("JPEG", 90000)                                                                         \
    PROFILE("nv", 90000)                                                                           \
    PROFILE("H261", 90000)                                                                         \
    PROFILE("MPV", 90000)                                                                          \
    PROFILE("MP2", 90000)                                                                          \
    PROFILE("H263", 90000)                                                                         \
    PROFILE("H263-1998", 90000)                                                                    \
    PROFILE("", 0)

extern "C" {

#define PROFILE(name, clockRate) {sizeof name - 1, const_cast<char *>(name)},
constexpr SipString g_aStrRtpmapProfiles[36] = {SDPLINE_PROFILES(PROFILE)};
#undef PROFILE

#define PROFILE(name, clockRate) clockRate,
constexpr uint32_t g_aulRtpmapClockRates[36] = {SDPLINE_PROFILES(PROFILE)};
#undef PROFILE

SipString SdpGetRtpmapProfile(uint16_t row) {
    return g_aStrRtpmapProfiles[row];
}

uint32_t SdpCopyRtpmapProfile(SipStringBuffer *buffer, uint16_t row) {
    const SipString &name = g_aStrRtpmapProfiles[row];
    return SipSbCopyConstString(buffer, name.pcData, name.ulLen);
}

uint32_t SdpGetRtpmapClockRates(uint16_t row) {
    return g_aulRtpmapClockRates[row];
}

} // extern "C"

namespace sdpline {

namespace {

constexpr uint32_t kProfiles = 35;
static_assert(sizeof tables::kStaticPayloads == kProfiles);
static_assert(g_aStrRtpmapProfiles[kL16Stereo - 1].ulLen == 3 &&
              g_aulRtpmapClockRates[kL16Stereo - 1] == 44100 &&
              g_aulRtpmapClockRates[kL16Mono - 1] == 44100);

constexpr PerfectHash<kProfiles> kProfileNames([] {
    std::array<std::string_view, kProfiles> names;
    for (uint32_t row = 0; row < kProfiles; ++row) {
        names[row] = {g_aStrRtpmapProfiles[row].pcData, g_aStrRtpmapProfiles[row].ulLen};
    }
    return names;
}());

} // namespace

uint32_t lastProfile(std::string_view name) {
    const size_t row = kProfileNames.lastRow(name);
    return row < kProfiles ? static_cast<uint32_t>(row) + 1 : 0;
}

} // namespace sdpline
