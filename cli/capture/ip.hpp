// Reads the headers of IP and UDP.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

constexpr uint8_t kTcp = 6;
constexpr uint8_t kUdp = 17;
constexpr uint16_t kSipsPort = 5061;

struct IpAddress {
    std::array<uint8_t, 16> bytes = {}; // an IPv4 address uses the first four
    bool v6 = false;

    auto operator<=>(const IpAddress &) const = default;
    std::string text() const;
};

struct IpPacket {
    IpAddress source;
    IpAddress destination;
    uint8_t protocol = 0; // of the payload
    std::string_view payload;
    size_t missing = 0; // bytes at the end of the payload that were not captured
    // For fragments
    bool isFragment = false;
    bool moreFragments = false;
    uint32_t id = 0;
    size_t offset = 0; // in the payload of the whole packet
};

// Reads the packet at the start of the bytes; returns false where there is none. Bytes after it
// (the padding of a short frame) are left out. The payload may be too short for the next header.
bool readIp(std::string_view bytes, IpPacket &packet);

struct UdpDatagram {
    uint16_t sourcePort = 0;
    uint16_t destinationPort = 0;
    std::string_view payload;
    bool cut = false; // the capture has only a part of it
};

bool readUdp(const IpPacket &packet, UdpDatagram &datagram);

} // namespace cli
