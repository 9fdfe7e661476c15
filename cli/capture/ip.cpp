#include "capture/ip.hpp"

#include <algorithm>

#include "capture/bytes.hpp"
#include "sdpline/cpp/address.hpp"

namespace cli {

namespace {

constexpr size_t kIpv6Header = 40;
constexpr int kMostExtensions = 16;

enum Extension : uint8_t {
    kHopByHop = 0,
    kRouting = 43,
    kFragment = 44,
    kAuthentication = 51,
    kDestination = 60,
    kMobility = 135,
    kHostIdentity = 139,
    kShim6 = 140
};

IpAddress addressAt(std::string_view bytes, size_t at, bool v6) {
    IpAddress address;
    address.v6 = v6;
    std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(at), v6 ? 16 : 4, address.bytes.begin());
    return address;
}

// Limits the payload to the length in the header. A length of 0 is found where the network card
// fills it in after the capture: then all bytes belong to the packet.
void setPayload(IpPacket &packet, std::string_view bytes, size_t header, size_t total) {
    const size_t size = total > header ? total : std::max(bytes.size(), header);
    packet.missing = size > bytes.size() ? size - bytes.size() : 0;
    packet.payload = after(bytes.substr(0, size), header);
}

bool readIpv4(std::string_view bytes, IpPacket &packet) {
    const size_t header = (byteAt(bytes, 0) & 0x0fu) * 4;
    const size_t total = big16(bytes, 2);
    if (header < 20 || bytes.size() < header || (total != 0 && total < header)) {
        return false;
    }
    const uint16_t fragment = big16(bytes, 6);
    packet.source = addressAt(bytes, 12, false);
    packet.destination = addressAt(bytes, 16, false);
    packet.protocol = byteAt(bytes, 9);
    packet.moreFragments = (fragment & 0x2000) != 0;
    packet.offset = (fragment & 0x1fffu) * 8;
    packet.isFragment = packet.moreFragments || packet.offset != 0;
    packet.id = big16(bytes, 4);
    setPayload(packet, bytes, header, total);
    return true;
}

// Skips the extension headers (RFC 8200 section 4).
void passExtensions(IpPacket &packet) {
    for (int i = 0; i < kMostExtensions && !packet.isFragment; ++i) {
        std::string_view &rest = packet.payload;
        size_t size = (byteAt(rest, 1) + size_t(1)) * 8;
        switch (packet.protocol) {
        case kHopByHop:
        case kRouting:
        case kDestination:
        case kMobility:
        case kHostIdentity:
        case kShim6: break;
        case kAuthentication: size = (byteAt(rest, 1) + size_t(2)) * 4; break;
        case kFragment:
            packet.moreFragments = (big16(rest, 2) & 1) != 0;
            packet.offset = big16(rest, 2) & 0xfff8u;
            packet.isFragment = packet.moreFragments || packet.offset != 0;
            packet.id = big32(rest, 4);
            size = 8;
            break;
        default: return;
        }
        packet.protocol = byteAt(rest, 0);
        rest = after(rest, size);
    }
}

bool readIpv6(std::string_view bytes, IpPacket &packet) {
    if (bytes.size() < kIpv6Header) {
        return false;
    }
    packet.source = addressAt(bytes, 8, true);
    packet.destination = addressAt(bytes, 24, true);
    packet.protocol = byteAt(bytes, 6);
    setPayload(packet, bytes, kIpv6Header, kIpv6Header + big16(bytes, 4));
    passExtensions(packet);
    return true;
}

} // namespace

std::string IpAddress::text() const {
    if (v6) {
        return sdpline::Address::v6(bytes).shortText();
    }
    return sdpline::Address::v4({bytes[0], bytes[1], bytes[2], bytes[3]}).text();
}

bool readIp(std::string_view bytes, IpPacket &packet) {
    packet = IpPacket();
    switch (byteAt(bytes, 0) >> 4) {
    case 4: return readIpv4(bytes, packet);
    case 6: return readIpv6(bytes, packet);
    default: return false;
    }
}

bool readUdp(const IpPacket &packet, UdpDatagram &datagram) {
    constexpr size_t kHeader = 8;
    const std::string_view bytes = packet.payload;
    if (bytes.size() < kHeader) {
        return false;
    }
    // 0: a datagram longer than the field can say (RFC 2675)
    const size_t said = big16(bytes, 4) != 0 ? big16(bytes, 4) : bytes.size() + packet.missing;
    datagram.sourcePort = big16(bytes, 0);
    datagram.destinationPort = big16(bytes, 2);
    datagram.cut = said > bytes.size();
    datagram.payload = after(bytes.substr(0, std::max(said, kHeader)), kHeader);
    return true;
}

} // namespace cli
