#include "output/payloads.hpp"

#include <array>

#include "sdpline/sdpline.h"

namespace cli {

namespace {

// The static payload type of each profile (RFC 3551 section 6), where it has one.
constexpr int kDynamic = -1;
constexpr auto kPayloads = std::to_array<int>(
    {0,        3,        4,        5,        6,        7,        8,        9,        10,
     11,       12,       13,       14,       15,       16,       17,       18,       kDynamic,
     kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic,
     25,       26,       28,       31,       32,       33,       34,       kDynamic});
static_assert(kPayloads.size() + 1 == std::size(g_aStrRtpmapProfiles));

constexpr uint32_t kTwoChannels = 9; // L16 in stereo

std::string_view nameOf(uint16_t row) {
    const SipString name = SdpGetRtpmapProfile(row);
    return {name.pcData, name.ulLen};
}

} // namespace

std::vector<Profile> profiles() {
    std::vector<Profile> list;
    for (uint16_t row = 0; row < kPayloads.size(); ++row) {
        const int payload = kPayloads[row];
        const uint32_t number = row + 1u;
        list.push_back(
            {number, nameOf(row), SdpGetRtpmapClockRates(row), number == kTwoChannels ? 2u : 1u,
             payload != kDynamic ? std::optional(static_cast<uint32_t>(payload)) : std::nullopt});
    }
    return list;
}

std::string_view staticPayloadName(uint32_t payload) {
    for (uint16_t row = 0; row < kPayloads.size(); ++row) {
        if (kPayloads[row] != kDynamic && static_cast<uint32_t>(kPayloads[row]) == payload) {
            return nameOf(row);
        }
    }
    return {};
}

std::string profileName(uint32_t number) {
    if (number == 0 || number > kPayloads.size()) {
        return {};
    }
    const auto row = static_cast<uint16_t>(number - 1);
    const uint32_t clockRate = SdpGetRtpmapClockRates(row);
    return std::string(nameOf(row)) + (clockRate != 0 ? '/' + std::to_string(clockRate) : "");
}

} // namespace cli
