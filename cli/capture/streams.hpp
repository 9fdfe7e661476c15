// The TCP connections of a capture that carry SIP, plain or over WebSocket.
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
    size_t missing = 0; // bytes that the capture cut off
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

// What a connection may make the reader keep is bounded by Segments, Framing and WebSocket, all
// connections together by kMostKept. Of more than 2 * kGeneration connections those are forgotten
// that were silent longest.
class Streams {
public:
    static constexpr size_t kMostKept = 32u << 20;
    static constexpr size_t kGeneration = 16384;

    struct Counts {
        size_t encryptedPackets = 0;
        size_t encryptedStreams = 0;
        size_t gaps = 0;       // bytes that the capture has not
        size_t compressed = 0; // messages of a WebSocket
        size_t tooLong = 0;
        size_t dropped = 0; // streams given up to keep the memory bounded
    };
    using Use = std::function<void(const TcpEnds &ends, std::string_view message, bool webSocket)>;

    // `use` is called for every message that the segment completes.
    void take(const IpPacket &packet, const TcpSegment &segment, const Use &use);

    // At the end of the capture.
    void finish(const Use &use);

    Counts counts() const;

private:
    enum class Kind { Unknown, Sip, Handshake, WebSocket, Encrypted, Other };

    struct Hash {
        size_t operator()(const TcpEnds &ends) const;
    };
    // Only what may be SIP has more than a number and a kind.
    struct Reading {
        Framing framing;
        WebSocket webSocket;
        std::string incoming; // of a stream whose kind is not known yet
    };
    struct Stream {
        TcpEnds ends;
        Kind kind = Kind::Unknown;
        Segments segments;
        std::unique_ptr<Reading> reading;
        size_t kept = 0;        // bytes of it that are in kept_
        uint64_t order = 0;     // in which the streams began
        bool isSecured = false; // its port is that of SIP over TLS
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
