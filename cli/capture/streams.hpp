// Reads SIP from the TCP connections of a capture, plain or over WebSocket.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "capture/framing.hpp"
#include "capture/ip.hpp"
#include "capture/segments.hpp"
#include "capture/websocket.hpp"

namespace cli {

struct TcpSegment {
    uint16_t sourcePort = 0;
    uint16_t destinationPort = 0;
    uint32_t sequence = 0;
    bool syn = false;
    bool finished = false; // FIN or RST
    std::string_view payload;
    size_t missing = 0; // bytes at the end that were not captured
};

bool readTcp(const IpPacket &packet, TcpSegment &segment);

// One direction of a connection.
struct TcpEnds {
    IpAddress source;
    IpAddress destination;
    uint16_t sourcePort = 0;
    uint16_t destinationPort = 0;

    bool operator==(const TcpEnds &) const = default;
};

// The memory for one connection is bounded by Segments, Framing and WebSocket, the memory for all
// connections by kMostKept. Beyond 2 * kGeneration connections those that were silent longest are
// dropped.
class Streams {
public:
    static constexpr size_t kMostKept = 32u << 20;
    static constexpr size_t kGeneration = 16384;

    struct Counts {
        size_t encryptedPackets = 0;
        size_t encryptedStreams = 0;
        size_t gaps = 0;       // places with bytes that were not captured
        size_t compressed = 0; // messages of a WebSocket
        size_t tooLong = 0;
        size_t dropped = 0; // streams dropped to keep the memory bounded
    };
    using Use = std::function<void(const TcpEnds &ends, std::string_view message, bool webSocket)>;

    // Calls `use` for every message that the segment completes.
    void take(const IpPacket &packet, const TcpSegment &segment, const Use &use);

    // At the end of the capture: reads what waited for missing bytes.
    void finish(const Use &use);

    Counts counts() const;

private:
    enum class Kind { Unknown, Sip, Handshake, WebSocket, Encrypted, Other };

    struct Hash {
        size_t operator()(const TcpEnds &ends) const;
    };
    // Only streams that may carry SIP have buffers.
    struct Reading {
        Framing framing;
        WebSocket webSocket;
        std::string incoming; // bytes that are not read yet
    };
    struct Stream {
        TcpEnds ends;
        Kind kind = Kind::Unknown;
        Segments segments;
        std::unique_ptr<Reading> reading;
        size_t kept = 0;        // its part of kept_
        uint64_t order = 0;     // the number of streams that began before
        bool isSecured = false; // it uses the port of SIP over TLS
        bool hasMessage = false;
    };
    using Table = std::unordered_map<TcpEnds, Stream, Hash>;

    Stream &streamOf(const TcpEnds &ends);
    void begin(Stream &stream, const TcpSegment &segment);
    void read(Stream &stream, uint32_t sequence, const TcpSegment &segment, const Use &use);
    void skipGap(Stream &stream, const Use &use);
    void recognise(Stream &stream);
    void handshake(Stream &stream);
    void hand(Stream &stream, const Use &use);
    void handSip(Stream &stream, const Use &use);
    void handWebSocket(Stream &stream, const Use &use);
    void lose(Stream &stream);
    void account(Stream &stream);
    void close(Stream &stream, Kind kind);

    Table young_;
    Table old_;
    size_t kept_ = 0;
    uint64_t order_ = 0;
    Counts counts_;
};

} // namespace cli
