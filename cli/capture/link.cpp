#include "capture/link.hpp"

#include "capture/bytes.hpp"

namespace cli {

namespace {

enum LinkType : uint32_t {
    kNull = 0, // BSD loopback
    kEthernet = 1,
    kRawBsd = 12,
    kRawOpenBsd = 14,
    kRaw = 101,
    kLoop = 108, // OpenBSD loopback
    kCooked = 113,
    kIpv4 = 228,
    kIpv6 = 229,
    kCooked2 = 276
};

bool isVlan(uint16_t type) {
    return type == 0x8100 || type == 0x88a8 || type == 0x9100 || type == 0x9200;
}

// Skips VLAN tags, each of which has four bytes and ends in the type of what follows.
Network ofType(uint16_t type, std::string_view bytes, std::string_view &packet) {
    while (isVlan(type) && bytes.size() >= 4) {
        type = big16(bytes, 2);
        bytes.remove_prefix(4);
    }
    packet = bytes;
    return type == 0x0800 || type == 0x86dd ? Network::Ip : Network::Other;
}

} // namespace

Network networkOf(uint32_t linkType, std::string_view frame, std::string_view &packet) {
    switch (linkType) {
    case kEthernet: return ofType(big16(frame, 12), after(frame, 14), packet);
    case kCooked: return ofType(big16(frame, 14), after(frame, 16), packet);
    case kCooked2: return ofType(big16(frame, 0), after(frame, 20), packet);
    case kNull:
    case kLoop:
        packet = after(frame, 4);
        return Network::Ip; // the first byte of the packet has its version
    case kRaw:
    case kRawBsd:
    case kRawOpenBsd:
    case kIpv4:
    case kIpv6: packet = frame; return Network::Ip;
    default: return Network::UnknownLink;
    }
}

} // namespace cli
