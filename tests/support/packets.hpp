// Writes packets and captures byte by byte for the tests of captures.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// ---- Headers around a payload, the inner ones first. Checksums are 0, since no test reads them.

std::string udp(uint16_t source, uint16_t destination, std::string_view payload);

enum TcpFlag : uint8_t { kFin = 1, kSyn = 2, kRst = 4, kAck = 16 };
std::string tcp(uint16_t source, uint16_t destination, uint32_t sequence, uint8_t flags,
                std::string_view payload);

// A part of a packet; the defaults are all of it.
struct Fragment {
    uint32_t id = 0;
    size_t offset = 0; // of its first byte, a multiple of 8
    bool more = false;
};
// Addresses are written as text: "192.0.2.1", and for IPv6 as eight groups, "2001:db8:0:0:0:0:0:1".
std::string ipv4(std::string_view source, std::string_view destination, uint8_t protocol,
                 std::string_view payload, const Fragment &part = {});
// `extensions` precede the payload and begin with the number of the header after them.
std::string ipv6(std::string_view source, std::string_view destination, uint8_t protocol,
                 std::string_view payload, std::string_view extensions = {});
std::string fragmentHeader(uint8_t next, const Fragment &part);

// Cuts the payload at those positions: one packet for each part.
std::vector<std::string> ipv4Fragments(std::string_view source, std::string_view destination,
                                       uint8_t protocol, std::string_view payload, uint32_t id,
                                       size_t size);

std::string ethernet(std::string_view packet, const std::vector<uint16_t> &vlanTypes = {});
std::string cooked(std::string_view packet);
std::string cooked2(std::string_view packet);
std::string loopback(std::string_view packet);

// A WebSocket frame; a mask of four bytes is applied, an empty one is none.
std::string webSocketFrame(std::string_view payload, uint8_t opcode, bool final,
                           std::string_view mask = {});

// ---- Files

enum class CaptureForm { Pcap, PcapNanoseconds, PcapBigEndian, PcapNg, PcapNgBigEndian };

class CaptureWriter {
public:
    static constexpr uint32_t kEthernet = 1;
    static constexpr size_t kWhole = ~size_t(0);

    explicit CaptureWriter(CaptureForm form = CaptureForm::Pcap, uint32_t linkType = kEthernet);

    // A packet, and the number of its bytes in the capture. Times are nanoseconds since 1970.
    void add(std::string_view frame, int64_t time, size_t keep = kWhole);

    // The bytes that were written since the last call.
    std::string take();

private:
    void number(uint64_t value, size_t bytes);
    void block(uint32_t type, const std::string &body);

    CaptureForm form_;
    bool big_;
    std::string bytes_;
};

} // namespace support
