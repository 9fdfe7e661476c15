// sdpline profiles: the static payload profiles.
#include "commands/commands.hpp"

#include <array>
#include <iomanip>
#include <iostream>

#include "commands/profiles.hpp"
#include "output/diagnostic.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

void printText() {
    std::cout << "profile  payload  name       clock rate  channels\n";
    for (const Profile &profile : profiles()) {
        const auto orDash = [](const std::optional<uint32_t> &value) {
            return value ? std::to_string(*value) : "-";
        };
        std::cout << std::right << std::setw(7) << profile.number << std::setw(9)
                  << orDash(profile.payload) << "  " << std::left << std::setw(9) << profile.name
                  << std::right << std::setw(12)
                  << (profile.clockRate != 0 ? std::to_string(profile.clockRate) : "-")
                  << std::setw(10) << profile.channels << '\n';
    }
}

void printJson() {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Profile &profile : profiles()) {
        nlohmann::ordered_json row = {{"profile", profile.number},
                                      {"name", profile.name},
                                      {"clockRate", profile.clockRate},
                                      {"channels", profile.channels}};
        if (profile.payload) {
            row["payload"] = *profile.payload;
        }
        list.push_back(std::move(row));
    }
    std::cout << dumped(list);
}

// The static payload type of each profile (RFC 3551 section 6), where it has one.
constexpr int kDynamic = -1;
constexpr auto kPayloads = std::to_array<int>(
    {0,        3,        4,        5,        6,        7,        8,        9,        10,
     11,       12,       13,       14,       15,       16,       17,       18,       kDynamic,
     kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic, kDynamic,
     25,       26,       28,       31,       32,       33,       34,       kDynamic});
static_assert(kPayloads.size() + 1 == std::size(g_aStrRtpmapProfiles));

constexpr uint32_t kTwoChannels = 9; // L16 in stereo

} // namespace

std::vector<Profile> profiles() {
    std::vector<Profile> list;
    for (uint16_t row = 0; row < kPayloads.size(); ++row) {
        const int payload = kPayloads[row];
        const uint32_t number = row + 1u;
        list.push_back(
            {number, view(SdpGetRtpmapProfile(row)), SdpGetRtpmapClockRates(row),
             number == kTwoChannels ? 2u : 1u,
             payload != kDynamic ? std::optional(static_cast<uint32_t>(payload)) : std::nullopt});
    }
    return list;
}

void addProfiles(CLI::App &app, Outcome &outcome) {
    const auto json = std::make_shared<bool>(false);
    CLI::App &command = addCommand(
        app,
        {"profiles", "Print the static RTP payload profiles.",
         "A profile is what an a=rtpmap line's name is recognised as; a payload type is\n"
         "given where RFC 3551 has one. L8, RED and VDVI have no clock rate of their\n"
         "own.\n\n"
         "Examples:\n"
         "  sdpline profiles\n"
         "  sdpline profiles --json | jq '.[] | select(.payload == 18)'"},
        [json, &outcome] {
            outcome.status = 0;
            *json ? printJson() : printText();
        });
    addFlag(command, "--json", *json, "Print one JSON document");
}

} // namespace cli
