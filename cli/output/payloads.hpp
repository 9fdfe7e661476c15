// The static RTP payload profiles, with the payload types of RFC 3551.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct Profile {
    uint32_t number; // as records hold it
    std::string_view name;
    uint32_t clockRate; // 0: not fixed
    uint32_t channels;
    std::optional<uint32_t> payload; // the static payload type of RFC 3551
};

std::vector<Profile> profiles();

// "PCMU/8000" for 1; empty for a number that no profile has.
std::string profileName(uint32_t number);

} // namespace cli
