// The packet that carried a body, and the SIP message around it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

// The packet of a capture that completed a message.
struct Packet {
    uint64_t frame = 0; // from 1; 0: the input is not a capture
    int64_t time = 0;   // nanoseconds since 1970
    std::string source; // addresses: "192.0.2.1", "2001:db8::1"
    std::string destination;
    uint16_t sourcePort = 0;
    uint16_t destinationPort = 0;
    std::string_view transport; // "UDP", "TCP", "WS"
};

// What identifies a message to people. Fields that the input does not have are empty; for a plain
// body all are.
struct Origin {
    Packet packet;
    std::string message; // "INVITE", "200"
    std::string callId;
    std::string cseq; // "1 INVITE"
    std::string from; // URIs: "sip:alice@example.com"
    std::string to;

    bool isKnown() const { return packet.frame != 0 || !message.empty(); }
};

// `head` is the message from its first line on, with its headers at least; empty without a message.
Origin originOf(const Packet &packet, std::string_view head);

// "2026-11-22T04:27:47.123456789Z" for nanoseconds since 1970.
std::string timeText(int64_t time);

} // namespace cli
