#include "output/payloads.hpp"

#include <cstddef>

#include "sdpline/cpp/detail/payloads.hpp"
#include "sdpline/sdpline.h"

namespace cli {

namespace {

using namespace sdpline::tables;

std::string_view nameOf(uint16_t row) {
    const SipString name = SdpGetRtpmapProfile(row);
    return {name.pcData, name.ulLen};
}

} // namespace

std::vector<Profile> profiles() {
    std::vector<Profile> list;
    for (uint16_t row = 0; row < kNoStaticRow; ++row) {
        const uint8_t payload = kStaticPayloads[row];
        list.push_back({row + 1u, nameOf(row), SdpGetRtpmapClockRates(row),
                        row == kTwoChannelRow ? 2u : 1u,
                        payload != kDynamic ? std::optional<uint32_t>(payload) : std::nullopt});
    }
    return list;
}

std::string_view staticPayloadName(uint32_t payload) {
    const size_t row = staticRow(payload);
    return row != kNoStaticRow ? nameOf(static_cast<uint16_t>(row)) : std::string_view();
}

std::string profileName(uint32_t number) {
    if (number == 0 || number > kNoStaticRow) {
        return {};
    }
    const auto row = static_cast<uint16_t>(number - 1);
    const uint32_t clockRate = SdpGetRtpmapClockRates(row);
    return std::string(nameOf(row)) + (clockRate != 0 ? '/' + std::to_string(clockRate) : "");
}

} // namespace cli
