// The attribute names, and which name a text is.
#include "parser/sdpattributes.hpp"

#include <cstring>

#include "sdpline/sdpline.h"

namespace {

template <size_t N>
constexpr SipString literal(const char (&text)[N]) {
    return {N - 1, const_cast<char *>(text)};
}

} // namespace

extern "C" {

constinit const SipString sstrSdpAttrNames[40] = {
    literal("rtpmap:"),
    literal("sendrecv"),
    literal("sendonly"),
    literal("recvonly"),
    literal("inactive"),
    literal("ptime:"),
    literal("maxptime:"),
    literal("framerate:"),
    literal("fmtp:"),
    literal("cat:"),
    literal("keywds:"),
    literal("tool:"),
    literal("orient:"),
    literal("type:"),
    literal("charset:"),
    literal("sdplang:"),
    literal("lang:"),
    literal("quality:"),
    literal("T38FaxVersion:"),
    literal("T38MaxBitRate:"),
    literal("T38FaxFillBitRemoval"),
    literal("T38FaxTranscodingMMR"),
    literal("T38FaxTranscodingJBIG"),
    literal("T38FaxRateManagement:"),
    literal("T38FaxMaxBuffer:"),
    literal("T38FaxMaxDatagram:"),
    literal("T38FaxUdpEC:"),
    literal("silenceSupp:"),
    literal("ecan:"),
    literal("fax"),
    literal("modem"),
    literal("X-fax"),
    literal("X-modem"),
    literal(" "), // no name token is a blank: these two rows match nothing
    literal(" "),
    literal("des:"),
    literal("curr:"),
    literal("conf:"),
    literal("ipbcp:"),
    literal("setup:"),
};

} // extern "C"

namespace sdpline {

namespace {

constexpr uint32_t kRows = 40;

// The name without its colon.
std::string_view nameOf(uint32_t row) {
    const SipString &name = sstrSdpAttrNames[row];
    const bool colon = name.ulLen > 1 && name.pcData[name.ulLen - 1] == ':';
    return {name.pcData, name.ulLen - (colon ? 1 : 0)};
}

} // namespace

uint32_t attributeType(std::string_view name) {
    for (uint32_t row = 0; row < kRows; ++row) {
        if (nameOf(row) == name) {
            return row + 1;
        }
    }
    return SDP_ATTR_UNKNOWN;
}

} // namespace sdpline
