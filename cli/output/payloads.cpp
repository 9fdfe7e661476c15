#include "output/payloads.hpp"

#include <iterator>

#include "sdpline/cpp/values.hpp"

namespace cli {

namespace {

// The last row of the tables is empty: it is that of other names.
constexpr uint32_t kProfiles = std::size(g_aStrRtpmapProfiles) - 1;
constexpr uint32_t kStaticPayloads = 96; // RFC 3551 section 6: those above are dynamic

std::string_view nameOf(uint32_t number) {
    const SipString name = SdpGetRtpmapProfile(static_cast<uint16_t>(number - 1));
    return {name.pcData, name.ulLen};
}

uint32_t clockRateOf(uint32_t number) {
    return SdpGetRtpmapClockRates(static_cast<uint16_t>(number - 1));
}

} // namespace

std::vector<Profile> profiles() {
    std::vector<Profile> list;
    for (uint32_t number = 1; number <= kProfiles; ++number) {
        list.push_back({number, nameOf(number), clockRateOf(number), 1, std::nullopt});
    }
    for (uint32_t payload = 0; payload < kStaticPayloads; ++payload) {
        if (const auto encoding = sdpline::staticEncoding(payload)) {
            Profile &profile = list[encoding->profile - 1];
            profile.channels = encoding->channels;
            profile.payload = payload;
        }
    }
    return list;
}

std::string profileName(uint32_t number) {
    if (number == 0 || number > kProfiles) {
        return {};
    }
    const uint32_t clockRate = clockRateOf(number);
    return std::string(nameOf(number)) + (clockRate != 0 ? '/' + std::to_string(clockRate) : "");
}

} // namespace cli
