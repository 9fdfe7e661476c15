// SIP messages in packets: headers, fragments, TCP streams, WebSocket frames.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "capture/capture.hpp"
#include "capture/framing.hpp"
#include "capture/ip.hpp"
#include "capture/segments.hpp"
#include "capture/websocket.hpp"
#include "support/chance.hpp"
#include "support/packets.hpp"

namespace {

using Texts = std::vector<std::string>;

constexpr uint8_t kTcp = 6;
constexpr uint8_t kUdp = 17;
const std::string kSource = "192.0.2.1";
const std::string kDestination = "192.0.2.2";

std::string sip(const std::string &body, const std::string &name = "a") {
    return "INVITE sip:b@example.com SIP/2.0\r\nCall-ID: " + name +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

// The messages that are found in packets of raw IP.
class Reader {
public:
    void add(std::string_view packet, uint32_t linkType = 101, size_t keep = ~size_t(0)) {
        const std::string copy(packet.substr(0, keep)); // a read beyond it is seen
        cli::Frame frame;
        frame.number = ++frames_;
        frame.linkType = linkType;
        frame.bytes = copy;
        frame.wireSize = packet.size();
        capture_.take(frame, use());
    }
    void udp(const std::string &payload) {
        add(support::ipv4(kSource, kDestination, kUdp, support::udp(5060, 5070, payload)));
    }
    void tcp(uint32_t sequence, std::string_view payload, uint8_t flags = support::kAck,
             uint16_t port = 5060, size_t keep = ~size_t(0)) {
        add(support::ipv4(kSource, kDestination, kTcp,
                          support::tcp(40000, port, sequence, flags, payload)),
            101, keep);
    }
    void finish() { capture_.finish(use()); }

    Texts found;
    std::vector<cli::Packet> packets;
    Texts unread() const { return capture_.unread(); }
    size_t cut() const { return capture_.cutMessages(); }

private:
    cli::Capture::Use use() {
        return [this](const cli::Packet &packet, std::string_view message) {
            found.emplace_back(message);
            packets.push_back(packet);
        };
    }

    cli::Capture capture_;
    uint64_t frames_ = 0;
};

// ---- Link and IP

TEST(Capture, ReadsEveryLinkType) {
    const std::string v4 =
        support::ipv4(kSource, kDestination, kUdp, support::udp(5060, 5070, sip("v4")));
    const std::string v6 = support::ipv6("2001:db8:0:0:0:0:0:1", "2001:db8:0:0:0:0:0:2", kUdp,
                                         support::udp(5060, 5070, sip("v6")));
    for (const std::string &packet : {v4, v6}) {
        Reader reader;
        reader.add(support::ethernet(packet), 1);
        reader.add(support::ethernet(packet, {0x8100}), 1);
        reader.add(support::ethernet(packet, {0x88a8, 0x8100}), 1);
        reader.add(support::cooked(packet), 113);
        reader.add(support::cooked2(packet), 276);
        reader.add(support::loopback(packet), 0);
        reader.add(support::loopback(packet), 108);
        for (const uint32_t raw : {12u, 14u, 101u, 228u, 229u}) {
            reader.add(packet, raw);
        }
        EXPECT_EQ(reader.found, Texts(12, sip(packet == v4 ? "v4" : "v6")));
        EXPECT_EQ(reader.packets.back().source, packet == v4 ? kSource : "2001:db8::1");
        EXPECT_EQ(reader.packets.back().destinationPort, 5070);
        EXPECT_EQ(reader.packets.back().frame, 12u);
    }
}

TEST(Capture, OtherProtocolsArePassedOver) {
    Reader reader;
    reader.add(std::string(12, '\1') + "\x08\x06 an ARP packet", 1);
    reader.add("x", 1);
    reader.add("", 1);
    reader.add(support::ipv4(kSource, kDestination, 1, "ping"));
    reader.udp("hello");
    reader.udp("\r\n\r\n");
    EXPECT_EQ(reader.found, Texts());
    EXPECT_EQ(reader.unread(), Texts());
    reader.add("radio", 127);
    reader.add("radio", 127);
    EXPECT_EQ(reader.unread(), Texts{"2 packets of link type 127 cannot be read"});
}

TEST(Capture, PaddingAndLineEndsAreNotOfTheMessage) {
    Reader reader;
    reader.add(support::ipv4(kSource, kDestination, kUdp, support::udp(1, 2, sip(""))) + "padding");
    reader.udp("\r\n\r\n" + sip("x"));
    EXPECT_EQ(reader.found, (Texts{sip(""), sip("x")}));
}

TEST(Capture, PassesOverExtensionHeaders) {
    const std::string udp = support::udp(5060, 5070, sip("x"));
    const std::string a = "2001:db8:0:0:0:0:0:1";
    Reader reader;
    // Hop by hop, destination and an authentication header of 16 bytes, then UDP.
    const std::string extensions = std::string("\x3c\0\0\0\0\0\0\0", 8) +
                                   std::string("\x33\0\0\0\0\0\0\0", 8) +
                                   std::string("\x11\x02", 2) + std::string(14, '\0');
    reader.add(support::ipv6(a, a, 0, udp, extensions));
    EXPECT_EQ(reader.found, Texts{sip("x")});
    const std::string first = support::fragmentHeader(kUdp, {9, 0, true});
    const std::string second = support::fragmentHeader(kUdp, {9, 64, false});
    reader.add(support::ipv6(a, a, 44, std::string_view(udp).substr(64), second));
    reader.add(support::ipv6(a, a, 44, std::string_view(udp).substr(0, 64), first));
    EXPECT_EQ(reader.found, (Texts{sip("x"), sip("x")}));
    // A complete packet with a fragment header
    reader.add(support::ipv6(a, a, 44, udp, support::fragmentHeader(kUdp, {9, 0, false})));
    EXPECT_EQ(reader.found.size(), 3u);
    // More headers than are allowed
    std::string many;
    for (int i = 0; i < 40; ++i) {
        many += std::string("\0\0\0\0\0\0\0\0", 8);
    }
    reader.add(support::ipv6(a, a, 0, udp, many));
    EXPECT_EQ(reader.found.size(), 3u);
}

TEST(Capture, AMessageThatWasCutIsCounted) {
    Reader reader;
    const std::string packet =
        support::ipv4(kSource, kDestination, kUdp, support::udp(5060, 5070, sip("v=0\r\n")));
    for (size_t keep = 0; keep < packet.size(); ++keep) {
        reader.add(packet, 101, keep);
    }
    EXPECT_EQ(reader.found, Texts());
    EXPECT_GT(reader.cut(), 20u);
}

// ---- Fragments

TEST(Capture, PutsFragmentsTogetherInAnyOrder) {
    const std::string payload = support::udp(5060, 5070, sip(std::string(300, 'x')));
    std::mt19937 engine(1);
    for (int i = 0; i < 100; ++i) {
        Reader reader;
        Texts packets = support::ipv4Fragments(kSource, kDestination, kUdp, payload, 5, 40);
        packets.push_back(packets[2]); // one comes twice
        std::shuffle(packets.begin(), packets.end(), engine);
        for (const std::string &packet : packets) {
            reader.add(packet);
        }
        ASSERT_EQ(reader.found, Texts{sip(std::string(300, 'x'))});
    }
}

TEST(Capture, FragmentsThatLackPartsAreCounted) {
    Reader reader;
    const std::string payload = support::udp(5060, 5070, sip("x"));
    for (uint32_t id = 0; id < 1000; ++id) {
        reader.add(support::ipv4(kSource, kDestination, kUdp,
                                 std::string_view(payload).substr(0, 64), {id, 0, true}));
    }
    EXPECT_EQ(reader.unread(), Texts{"1000 packets lack fragments"});
    reader.add(support::ipv4(kSource, kDestination, kUdp, "7 bytes", {1, 8, true}));
    reader.add(support::ipv4(kSource, kDestination, kUdp, "beyond the end", {1, 65528, false}));
    EXPECT_EQ(reader.unread(), Texts{"1002 packets lack fragments"});
    // The last one ends before another one begins.
    reader.add(support::ipv4(kSource, kDestination, kUdp, "12345678", {5000, 64, true}));
    reader.add(support::ipv4(kSource, kDestination, kUdp, "12345678", {5000, 0, false}));
    EXPECT_EQ(reader.found, Texts());
}

// ---- TCP

TEST(Capture, FollowsSegmentsInAnyOrder) {
    const std::string text = sip("first") + "\r\n\r\n" + sip(std::string(500, 'y')) + sip("");
    const Texts messages = {sip("first"), sip(std::string(500, 'y')), sip("")};
    std::mt19937 engine(2);
    support::Chance chance(engine);
    for (int round = 0; round < 200; ++round) {
        const auto begin = static_cast<uint32_t>(0u - 100); // numbers pass 0
        std::vector<std::pair<size_t, size_t>> parts;
        for (size_t at = 0; at < text.size();) {
            const size_t size = 1 + chance.below(80);
            parts.emplace_back(at, size + chance.below(30)); // they overlap
            at += size;
        }
        std::shuffle(parts.begin(), parts.end(), engine);
        Reader reader;
        reader.tcp(begin - 1, "", support::kSyn);
        for (const auto &[at, size] : parts) {
            reader.tcp(begin + static_cast<uint32_t>(at), std::string_view(text).substr(at, size));
        }
        ASSERT_EQ(reader.found, messages);
        EXPECT_EQ(reader.packets.back().transport, "TCP");
    }
}

TEST(Capture, AStreamThatIsJoinedInTheMiddle) {
    Reader reader;
    reader.tcp(1000, "the end of a body\r\n" + sip("x") + sip("y").substr(0, 20));
    reader.tcp(1000 + 19 + static_cast<uint32_t>(sip("x").size()) + 20, sip("y").substr(20));
    EXPECT_EQ(reader.found, (Texts{sip("x"), sip("y")}));
}

TEST(Capture, GoesOnAfterAGap) {
    Reader reader;
    const std::string text = sip("one\r\n") + sip("two\r\n") + sip("three");
    const size_t one = sip("one\r\n").size();
    reader.tcp(99, "", support::kSyn);
    reader.tcp(100, std::string_view(text).substr(0, one + 10));
    reader.tcp(static_cast<uint32_t>(100 + one + 30), std::string_view(text).substr(one + 30));
    EXPECT_EQ(reader.found, Texts{sip("one\r\n")});
    reader.finish();
    EXPECT_EQ(reader.found, (Texts{sip("one\r\n"), sip("three")}));
    EXPECT_EQ(reader.unread(), Texts{"1 gap in a TCP stream: bytes that were not captured"});
}

// A FIN counts as one byte without content: no byte is missing before the next number.
TEST(Capture, AnEndHasNoGap) {
    Reader reader;
    reader.tcp(99, "", support::kSyn);
    reader.tcp(100, sip("one"), support::kFin);
    reader.tcp(static_cast<uint32_t>(100 + sip("one").size() + 1), "", support::kRst);
    reader.finish();
    EXPECT_EQ(reader.found, Texts{sip("one")});
    EXPECT_EQ(reader.unread(), Texts());
}

TEST(Capture, GoesOnAfterACutSegment) {
    Reader reader;
    const std::string text = sip("one") + "INVITE and so on";
    reader.tcp(100, text, support::kAck, 5060, 40 + sip("one").size() + 4);
    reader.tcp(static_cast<uint32_t>(100 + text.size()), sip("two"));
    EXPECT_EQ(reader.found, (Texts{sip("one"), sip("two")}));
}

TEST(Capture, ABoundedAmountWaits) {
    Reader reader;
    reader.tcp(99, "", support::kSyn);
    const std::string part = sip(std::string(1000, 'x'));
    for (uint32_t i = 0; i < 2000; ++i) { // the first byte never comes
        reader.tcp(101 + i * static_cast<uint32_t>(part.size()), part);
    }
    reader.finish();
    EXPECT_EQ(reader.found.size(), 2000u);
}

TEST(Capture, StreamsWithoutSipAreGivenUp) {
    Reader reader;
    uint32_t at = 100;
    for (int i = 0; i < 200; ++i, at += 1000) {
        reader.tcp(at, std::string(1000, 'x'));
    }
    reader.tcp(at, "\r\n" + sip("too late"));
    EXPECT_EQ(reader.found, Texts());
    reader.tcp(7, "", support::kSyn); // the ports are used again
    reader.tcp(8, sip("again"));
    EXPECT_EQ(reader.found, Texts{sip("again")});
}

TEST(Capture, ManyStreams) {
    Reader reader;
    for (uint32_t i = 0; i < 50000; ++i) {
        const std::string source = "10." + std::to_string(i >> 16 & 255) + '.' +
                                   std::to_string(i >> 8 & 255) + '.' + std::to_string(i & 255);
        reader.add(support::ipv4(source, kDestination, kTcp,
                                 support::tcp(1, 5060, 5, support::kAck, sip("x"))));
    }
    EXPECT_EQ(reader.found.size(), 50000u);
}

TEST(Capture, EncryptedPacketsAreCounted) {
    Reader reader;
    const std::string record("\x17\x03\x03\0\x01x", 6);
    reader.tcp(1, record, support::kAck, 5061);
    reader.tcp(7, record, support::kAck, 5061);
    reader.add(
        support::ipv4(kSource, kDestination, kUdp, support::udp(5061, 5061, "\x16\xfe\xfd ...")));
    EXPECT_EQ(reader.unread(), Texts{"3 packets are encrypted (TLS)"});
}

// ---- SIP in a stream

Texts framed(cli::Framing &framing, const std::string &text, size_t step) {
    Texts messages;
    for (size_t at = 0; at < text.size(); at += step) {
        framing.buffer().append(text, at, step);
        for (std::string_view one = framing.next(); !one.empty(); one = framing.next()) {
            messages.emplace_back(one);
        }
    }
    return messages;
}

TEST(Framing, CutsMessagesHoweverTheyCome) {
    const std::string text = "\r\n\r\n" + sip("one") + sip("") + "\r\n" + sip("SIP/2.0 200 OK\r\n");
    for (size_t step = 1; step <= text.size(); ++step) {
        cli::Framing framing;
        EXPECT_EQ(framed(framing, text, step),
                  (Texts{sip("one"), sip(""), sip("SIP/2.0 200 OK\r\n")}));
        EXPECT_EQ(framing.passed(), 0u);
    }
}

TEST(Framing, PassesOverWhatIsNoMessage) {
    const std::string text = "x\r\nHost: a\r\n\r\n" + sip("one") + "y\r\n" + sip("two");
    for (const size_t step : {size_t(1), size_t(5), text.size()}) {
        cli::Framing framing;
        EXPECT_EQ(framed(framing, text, step), (Texts{sip("one"), sip("two")}));
        EXPECT_GT(framing.passed(), 10u);
    }
}

TEST(Framing, WhatIsTooLongIsPassedOver) {
    const std::string start = "INVITE sip:b SIP/2.0\r\n";
    cli::Framing framing;
    std::string endless = start;
    while (endless.size() < cli::Framing::kLongestHead) {
        endless += "a: b\r\n";
    }
    EXPECT_EQ(framed(framing, endless + "a: b\r\na: b\r\n\r\n" + sip("x"), 1000), Texts{sip("x")});
    EXPECT_EQ(framing.tooLong(), 1u);
    EXPECT_EQ(framed(framing, start + "l: 999999999999999999999\r\n\r\n" + sip("y"), 1000),
              Texts{sip("y")});
    EXPECT_EQ(framed(framing, start + "l: 300000\r\n\r\n" + sip("z"), 1000), Texts{sip("z")});
}

TEST(Framing, WithoutALengthAMessageEndsWithWhatCame) {
    const std::string open = "INVITE sip:b SIP/2.0\r\nc: application/sdp\r\n\r\nv=0\r\n";
    cli::Framing framing;
    EXPECT_EQ(framed(framing, open + sip("x"), 10000), (Texts{open, sip("x")}));
}

// ---- WebSocket

Texts unwrapped(const std::string &bytes, size_t step, bool *broken = nullptr) {
    Texts messages;
    cli::WebSocket frames;
    for (size_t at = 0; at < bytes.size(); at += step) {
        frames.buffer().append(bytes, at, step);
        for (std::string_view one = frames.next(); !one.empty(); one = frames.next()) {
            messages.emplace_back(one);
        }
    }
    if (broken != nullptr) {
        *broken = frames.isBroken();
    }
    return messages;
}

TEST(WebSocket, JoinsFramesAndTakesMasksAway) {
    const std::string mask = "\x01\x80\xff\x7f";
    const std::string text =
        support::webSocketFrame("hello", 1, true, mask) + support::webSocketFrame("a", 1, false) +
        support::webSocketFrame("ping", 9, true, mask) +
        support::webSocketFrame(std::string(200, 'b'), 0, false, mask) +
        support::webSocketFrame(std::string(70000, 'c'), 0, true) +
        support::webSocketFrame("", 2, true) + support::webSocketFrame("end", 2, true);
    const Texts messages = {"hello", 'a' + std::string(200, 'b') + std::string(70000, 'c'), "end"};
    for (const size_t step : {size_t(1), size_t(100), text.size()}) {
        EXPECT_EQ(unwrapped(text, step), messages);
    }
}

TEST(WebSocket, StopsAtWhatItCannotBe) {
    const std::string good = support::webSocketFrame("x", 1, true);
    const std::string continued = support::webSocketFrame("x", 0, true);
    const std::string unfinished = support::webSocketFrame("x", 1, false);
    const std::string longest = support::webSocketFrame(std::string(400000, 'x'), 1, true);
    const std::string closing = support::webSocketFrame("", 8, true);
    for (const std::string &bad : {continued, unfinished + good, longest, closing}) {
        bool broken = false;
        EXPECT_EQ(unwrapped(good + bad + good, 10000, &broken), Texts{"x"});
        EXPECT_TRUE(broken);
    }
    std::string compressed = support::webSocketFrame("x", 1, true);
    compressed[0] = static_cast<char>(compressed[0] | 0x40);
    EXPECT_EQ(unwrapped(compressed + good, 1), Texts{"x"});
}

TEST(Capture, ReadsSipOverWebSocket) {
    Reader reader;
    const std::string handshake = "GET /sip HTTP/1.1\r\nUpgrade: websocket\r\n\r\n";
    const std::string frames = support::webSocketFrame(sip("x"), 1, true, "abcd") +
                               support::webSocketFrame("no SIP", 1, true, "abcd");
    const std::string all = handshake + frames;
    for (size_t at = 0; at < all.size(); at += 7) {
        reader.tcp(static_cast<uint32_t>(1 + at), std::string_view(all).substr(at, 7));
    }
    EXPECT_EQ(reader.found, Texts{sip("x")});
    EXPECT_EQ(reader.packets.back().transport, "WS");
    Reader other; // a page that is no WebSocket
    other.tcp(1, "HTTP/1.1 200 OK\r\n\r\n" + sip("x"));
    EXPECT_EQ(other.found, Texts());
}

} // namespace
