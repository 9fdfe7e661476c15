// The static RTP payload profiles as a list.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace cli {

struct Profile {
    uint32_t number; // as records have it
    std::string_view name;
    uint32_t clockRate; // 0: none of its own
    uint32_t channels;
    std::optional<uint32_t> payload; // the static payload type of RFC 3551
};

std::vector<Profile> profiles();

} // namespace cli
