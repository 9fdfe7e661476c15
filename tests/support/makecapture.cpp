// Writes captures for tests, documents and measurements: makecapture SCENE [NUMBER] >FILE
//
//   calls          one call for each fault, over UDP
//   transports     the same call over UDP, TCP in small segments, WebSocket, IPv6 and fragments
//   unread         encrypted, cut and incomplete packets beside a call
//   bulk MEGABYTES calls with SDP among media packets
//   trace MEGABYTES the messages of such calls as text
//   gaps, dribble, seeking, fragments, streams, frames KILOBYTES
//                  captures that cost their reader the most
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>

#include "support/callflows.hpp"
#include "support/packets.hpp"

namespace {

using support::CallFlow;
using support::CallMessage;
using support::CaptureWriter;

constexpr int64_t kBegin = 1'700'000'000'000'000'000;
constexpr int64_t kMillisecond = 1'000'000;
constexpr uint16_t kSip = 5060;
constexpr const char *kCaller = "10.0.0.1";
constexpr const char *kCalled = "10.0.0.2";
constexpr uint8_t kTcp = 6;
constexpr uint8_t kUdp = 17;

bool write(const std::string &bytes) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
}

// A packet from one side to the other.
std::string between(bool fromCaller, uint8_t protocol, const std::string &payload) {
    return support::ipv4(fromCaller ? kCaller : kCalled, fromCaller ? kCalled : kCaller, protocol,
                         payload);
}

std::string datagram(const CallMessage &message) {
    return between(message.fromCaller, kUdp, support::udp(kSip, kSip, message.text));
}

bool writeCalls(size_t) {
    CaptureWriter capture;
    int64_t time = kBegin;
    for (const CallFlow &call : support::exampleCalls()) {
        for (const CallMessage &message : call.messages()) {
            capture.add(support::ethernet(datagram(message)), time);
            time += 20 * kMillisecond;
        }
    }
    return write(capture.take());
}

// One direction of a TCP connection that is written in segments.
class Direction {
public:
    Direction(CaptureWriter &capture, bool fromCaller, uint16_t port)
        : capture_(capture), fromCaller_(fromCaller), source_(fromCaller ? 40000 : port),
          destination_(fromCaller ? port : 40000) {
        send(support::kSyn, "");
        ++sequence_;
    }

    void send(uint8_t flags, std::string_view bytes) {
        capture_.add(
            support::ethernet(between(
                fromCaller_, kTcp, support::tcp(source_, destination_, sequence_, flags, bytes))),
            kBegin);
        sequence_ += static_cast<uint32_t>(bytes.size());
    }

    void sendInParts(std::string_view bytes, size_t size) {
        for (size_t at = 0; at < bytes.size(); at += size) {
            send(support::kAck, bytes.substr(at, size));
        }
    }

private:
    CaptureWriter &capture_;
    bool fromCaller_;
    uint16_t source_;
    uint16_t destination_;
    uint32_t sequence_ = 0xffffff00; // passes 0 soon
};

void addTcp(CaptureWriter &capture) {
    Direction caller(capture, true, kSip);
    Direction called(capture, false, kSip);
    const CallFlow call = support::goodCall("tcp@10.0.0.1");
    for (const CallMessage &message : call.messages()) {
        (message.fromCaller ? caller : called).sendInParts(message.text, 100);
    }
}

void addWebSocket(CaptureWriter &capture) {
    Direction caller(capture, true, 80);
    Direction called(capture, false, 80);
    caller.send(support::kAck, "GET /sip HTTP/1.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                               "Sec-WebSocket-Protocol: sip\r\n\r\n");
    called.send(support::kAck, "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\n"
                               "Connection: Upgrade\r\nSec-WebSocket-Protocol: sip\r\n\r\n");
    const CallFlow call = support::goodCall("ws@10.0.0.1");
    for (const CallMessage &message : call.messages()) {
        const std::string mask = message.fromCaller ? std::string("\x11\x22\x33\x44") : "";
        const std::string_view text = message.text;
        const std::string frames = support::webSocketFrame(text.substr(0, 50), 1, false, mask) +
                                   support::webSocketFrame("ping", 9, true, mask) +
                                   support::webSocketFrame(text.substr(50), 0, true, mask);
        (message.fromCaller ? caller : called).sendInParts(frames, 333);
    }
}

bool writeTransports(size_t) {
    CaptureWriter capture;
    const CallFlow udpCall = support::goodCall("udp@10.0.0.1");
    for (const CallMessage &message : udpCall.messages()) {
        capture.add(support::ethernet(datagram(message), {0x88a8, 0x8100}), kBegin);
    }
    addTcp(capture);
    addWebSocket(capture);
    const CallFlow v6Call = support::goodCall("v6@10.0.0.1");
    for (const CallMessage &message : v6Call.messages()) {
        const std::string payload = support::udp(kSip, kSip, message.text);
        capture.add(support::ethernet(support::ipv6("2001:db8:0:0:0:0:0:1", "2001:db8:0:0:0:0:0:2",
                                                    kUdp, payload)),
                    kBegin);
    }
    uint32_t id = 0;
    const CallFlow fragmentsCall = support::goodCall("fragments@10.0.0.1");
    for (const CallMessage &message : fragmentsCall.messages()) {
        const std::string payload = support::udp(kSip, kSip, message.text);
        for (const std::string &packet : support::ipv4Fragments(
                 message.fromCaller ? kCaller : kCalled, message.fromCaller ? kCalled : kCaller,
                 kUdp, payload, ++id, 64)) {
            capture.add(support::ethernet(packet), kBegin);
        }
    }
    return write(capture.take());
}

bool writeUnread(size_t) {
    CaptureWriter capture;
    const std::string tls("\x16\x03\x01\0\x04"
                          "bcde",
                          9);
    capture.add(support::ethernet(between(true, kTcp, support::tcp(40001, 5061, 1, 16, tls))),
                kBegin);
    capture.add(support::ethernet(between(true, kTcp, support::tcp(40001, 5061, 10, 16, tls))),
                kBegin);
    const CallFlow call = support::goodCall("cut@10.0.0.1");
    const std::string invite = support::ethernet(datagram(call.messages().front()));
    capture.add(invite, kBegin, 200);
    capture.add(support::ethernet(support::ipv4(kCaller, kCalled, kUdp, "12345678", {7, 0, true})),
                kBegin);
    for (const CallMessage &message : call.messages()) {
        capture.add(support::ethernet(datagram(message)), kBegin);
    }
    return write(capture.take());
}

// One call, its media written between its messages; each has a name.
bool writeBulk(size_t megabytes) {
    constexpr size_t kMediaPackets = 2000; // of a call: 20 s in both directions
    const std::string media = support::ethernet(
        between(true, kUdp, support::udp(49170, 3456, "\x80" + std::string(171, 'x'))));
    CaptureWriter capture;
    int64_t time = kBegin;
    for (size_t written = 0, n = 0; written < megabytes * 1'000'000; ++n) {
        const CallFlow call = support::goodCall(std::to_string(n) + "@10.0.0.1");
        for (const CallMessage &message : call.messages()) {
            capture.add(support::ethernet(datagram(message)), time += kMillisecond);
            for (size_t i = 0; i < kMediaPackets / 7; ++i) {
                capture.add(media, time += kMillisecond);
            }
        }
        const std::string bytes = capture.take();
        written += bytes.size();
        if (!write(bytes)) {
            return false;
        }
    }
    return true;
}

bool writeTrace(size_t megabytes) {
    for (size_t written = 0, n = 0; written < megabytes * 1'000'000; ++n) {
        std::string text;
        const CallFlow call = support::goodCall(std::to_string(n) + "@10.0.0.1");
        for (const CallMessage &message : call.messages()) {
            text += message.fromCaller ? "12:00:00.000 sent to 10.0.0.2:5060 over UDP\r\n\r\n"
                                       : "12:00:00.000 received from 10.0.0.2:5060\r\n\r\n";
            text += message.text + "\r\n";
        }
        written += text.size();
        if (!write(text)) {
            return false;
        }
    }
    return true;
}

// ---- Hostile captures: packets up to that number of kilobytes

template <class Packet>
bool writeMany(size_t kilobytes, const Packet &packet) {
    CaptureWriter capture;
    for (size_t written = 0, n = 0; written < kilobytes * 1000; ++n) {
        capture.add(support::ethernet(packet(static_cast<uint32_t>(n))), kBegin);
        const std::string bytes = capture.take();
        written += bytes.size();
        if (!write(bytes)) {
            return false;
        }
    }
    return true;
}

std::string segment(uint32_t sequence, const std::string &bytes, uint16_t port = kSip) {
    return between(true, kTcp, support::tcp(40000, port, sequence, support::kAck, bytes));
}

// Before every segment one byte is missing.
bool writeGaps(size_t kilobytes) {
    return writeMany(kilobytes, [](uint32_t n) { return segment(n * 11, "0123456789"); });
}

// One byte at a time of a message whose headers do not end.
bool writeDribble(size_t kilobytes) {
    static const std::string start = "INVITE sip:b SIP/2.0\r\n";
    return writeMany(kilobytes, [](uint32_t n) {
        return segment(n, n < start.size() ? start.substr(n, 1) : std::string("x:\r\n", n % 4, 1));
    });
}

// One byte at a time of a line that could become a message.
bool writeSeeking(size_t kilobytes) {
    return writeMany(kilobytes, [](uint32_t n) { return segment(n, n == 0 ? "INVITE " : "x"); });
}

// First fragments of packets that are never complete.
bool writeFragments(size_t kilobytes) {
    return writeMany(kilobytes, [](uint32_t n) {
        return support::ipv4(kCaller, kCalled, kUdp, "12345678", {n, 8 * (n % 8000), true});
    });
}

bool writeStreams(size_t kilobytes) {
    return writeMany(kilobytes, [](uint32_t n) {
        const std::string source = std::to_string(n >> 24 & 255) + '.' +
                                   std::to_string(n >> 16 & 255) + '.' +
                                   std::to_string(n >> 8 & 255) + '.' + std::to_string(n & 255);
        return support::ipv4(source, kCalled, kTcp,
                             support::tcp(1, kSip, 1, support::kAck, "INVITE sip:b SIP/2.0\r\n"));
    });
}

// Frames of one byte in a message of a WebSocket that does not end.
bool writeFrames(size_t kilobytes) {
    static const std::string start = "GET / HTTP/1.1\r\nUpgrade: websocket\r\n\r\n";
    return writeMany(kilobytes, [](uint32_t n) {
        return n == 0 ? segment(0, start)
                      : segment(static_cast<uint32_t>(start.size()) + 3 * (n - 1),
                                support::webSocketFrame("x", n == 1 ? 1 : 0, false));
    });
}

const std::map<std::string_view, bool (*)(size_t)> kScenes = {
    {"calls", writeCalls},     {"transports", writeTransports}, {"unread", writeUnread},
    {"bulk", writeBulk},       {"trace", writeTrace},           {"gaps", writeGaps},
    {"dribble", writeDribble}, {"seeking", writeSeeking},       {"fragments", writeFragments},
    {"streams", writeStreams}, {"frames", writeFrames}};

} // namespace

int main(int argc, char **argv) {
    const auto scene = argc > 1 ? kScenes.find(argv[1]) : kScenes.end();
    if (scene == kScenes.end()) {
        std::fprintf(stderr, "usage: makecapture SCENE [NUMBER]\n");
        return 2;
    }
    const size_t number = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
    return scene->second(number) && std::fflush(stdout) == 0 ? 0 : 1;
}
