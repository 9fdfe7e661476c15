// Encoding names to static payload profiles.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/cpp/detail/payloads.hpp"

namespace sdpline {

// L16 is there for two channels, then for one; all other profiles have one.
inline constexpr uint32_t kL16Stereo = tables::kTwoChannelRow + 1;
inline constexpr uint32_t kL16Mono = kL16Stereo + 1;

// The number of the last profile of that name, case and all; 0 when there is none.
uint32_t lastProfile(std::string_view name);

} // namespace sdpline
