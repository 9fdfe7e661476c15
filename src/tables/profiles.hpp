// Encoding names to static payload profiles.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline {

// The number of the last profile of that name, case and all; 0 when there is none.
uint32_t lastProfile(std::string_view name);

} // namespace sdpline
