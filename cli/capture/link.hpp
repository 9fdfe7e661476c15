// Reads the link-layer headers before an IP packet.
#pragma once

#include <cstdint>
#include <string_view>

namespace cli {

enum class Network {
    Ip,         // `packet` begins with an IP header of either version
    Other,      // another protocol, such as ARP
    UnknownLink // the link type is not known
};

// Ethernet with VLAN tags, Linux cooked in both versions, raw IP and the loopback types.
Network networkOf(uint32_t linkType, std::string_view frame, std::string_view &packet);

} // namespace cli
