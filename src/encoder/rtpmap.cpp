// Writing the value of a=rtpmap.
#include "encoder/writers.hpp"
#include "tables/profiles.hpp"

namespace sdpline {

// Profiles 1 to 6 are written without a name.
constexpr uint32_t kFirstNamedProfile = 7;
constexpr uint32_t kLastNamedProfile = 35;

// Writes the profile's name for a record without a name. A clock rate or a number of channels of 0
// is then set from the profile, in the record itself.
static SDPResult writeProfile(auto &out, SDPRtpMapAttr &rtpMap) {
    const uint32_t profile = rtpMap.ulEncodingId;
    if (profile < kFirstNamedProfile || profile > kLastNamedProfile) {
        return 0;
    }
    out.text(&g_aStrRtpmapProfiles[profile - 1]);
    if (rtpMap.ulClockRate == 0) {
        rtpMap.ulClockRate = g_aulRtpmapClockRates[profile - 1];
    }
    if (rtpMap.ulEncodingParams == 0) {
        rtpMap.ulEncodingParams = profile == kL16Stereo ? 2 : 1;
    }
    return 0;
}

// payload-type SP encoding-name "/" clock-rate [ "/" channels ]
SDPResult writeRtpMap(auto &out, SDPAttr &attr) {
    SDPRtpMapAttr &rtpMap = attr.unAttrValue.stRtpMap;
    out.number(rtpMap.ulPayloadType);
    out.character(' ');
    if (rtpMap.strEncodingName.ulLen != 0 && rtpMap.strEncodingName.pcData != nullptr) {
        out.text(&rtpMap.strEncodingName);
    } else {
        writeProfile(out, rtpMap);
    }
    out.character('/');
    out.number(rtpMap.ulClockRate);
    if (rtpMap.ulEncodingParams >= 2) {
        out.character('/');
        out.number(rtpMap.ulEncodingParams);
    }
    return 0;
}

SDPLINE_LINE_WRITER(writeRtpMap, SDPAttr &);

} // namespace sdpline
