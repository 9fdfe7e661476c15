// sdpline profiles: prints the static payload profiles.
#include "commands/commands.hpp"

#include <iomanip>
#include <iostream>

#include "output/diagnostic.hpp"
#include "output/payloads.hpp"

namespace cli {

namespace {

void printProfiles() {
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

void printProfilesAsJson() {
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

constexpr CommandText kProfilesText = {
    "profiles", "Print the static RTP payload profiles.",
    R"(The decoder finds the profile of an a=rtpmap line by its encoding name. The payload
type is that of RFC 3551, if there is one. L8, RED and VDVI have no fixed clock rate.

Examples:
  sdpline profiles
  sdpline profiles --json | jq '.[] | select(.payload == 18)')"};

} // namespace

void addProfiles(CLI::App &app, int & /*status*/) {
    const auto json = std::make_shared<bool>(false);
    CLI::App &command =
        addCommand(app, kProfilesText, [json] { *json ? printProfilesAsJson() : printProfiles(); });
    addFlag(command, "--json", *json, "Print one JSON document");
}

} // namespace cli
