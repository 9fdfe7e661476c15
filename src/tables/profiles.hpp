// Lookup of a static payload profile by its encoding name.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/cpp/detail/payloads.hpp"

namespace sdpline {

// L16 has a profile with two channels, and after it one with one channel. All others have one.
inline constexpr uint32_t kL16Stereo = tables::kTwoChannelRow + 1;
inline constexpr uint32_t kL16Mono = kL16Stereo + 1;

// Returns the number of the last profile of that name, compared with case; 0 for none.
uint32_t lastProfile(std::string_view name);

} // namespace sdpline
