// The attribute names, and which name a text is.
#include "tables/attributes.hpp"

#include "sdpline/sdpline.h"
#include "tables/perfecthash.hpp"

namespace {

template <size_t N>
constexpr SipString literal(const char (&text)[N]) {
    return {N - 1, const_cast<char *>(text)};
}

} // namespace

extern "C" {

constexpr SipString sstrSdpAttrNames[40] = {
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

// The names without their colons.
constexpr Names<kRows> kNames([] {
    std::array<std::string_view, kRows> names;
    for (uint32_t row = 0; row < kRows; ++row) {
        const SipString &name = sstrSdpAttrNames[row];
        names[row] = {name.pcData, name.ulLen};
        if (names[row].ends_with(':')) {
            names[row].remove_suffix(1);
        }
    }
    return names;
}());

} // namespace

uint32_t attributeType(std::string_view name) {
    static_assert(SDP_ATTR_UNKNOWN == kRows + 1);
    return static_cast<uint32_t>(kNames.lastRow(name)) + 1;
}

} // namespace sdpline
