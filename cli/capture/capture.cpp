#include "capture/capture.hpp"

#include "capture/bytes.hpp"
#include "capture/link.hpp"
#include "sip/message.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// A DTLS record: its type, and version 1.x (RFC 6347 section 4.1).
bool isDtls(std::string_view bytes) {
    return byteAt(bytes, 0) >= 20 && byteAt(bytes, 0) <= 23 && byteAt(bytes, 1) == 0xfe;
}

// The bytes after leading line ends, which keep a binding alive (RFC 5626 section 3.5.1).
std::string_view withoutLineEnds(std::string_view bytes) {
    const size_t begin = bytes.find_first_not_of("\r\n");
    return after(bytes, begin == std::string_view::npos ? bytes.size() : begin);
}

void say(std::vector<std::string> &sentences, size_t count, std::string_view one,
         std::string_view many, std::string_view rest) {
    if (count != 0) {
        sentences.push_back(counted(count, one, many) + std::string(rest));
    }
}

} // namespace

void Capture::take(const Frame &frame, const Use &use) {
    ++packets_;
    frame_ = frame;
    frame_.bytes = {};
    std::string_view bytes;
    switch (networkOf(frame.linkType, frame.bytes, bytes)) {
    case Network::Ip: break;
    case Network::Other: return;
    case Network::UnknownLink:
        unknownLink_ = unknownLinks_++ == 0 ? frame.linkType : unknownLink_;
        return;
    }
    IpPacket packet;
    if (!readIp(bytes, packet) || (packet.isFragment && !fragments_.take(packet))) {
        return;
    }
    if (packet.protocol == kUdp) {
        takeUdp(packet, use);
    } else if (TcpSegment segment; packet.protocol == kTcp && readTcp(packet, segment)) {
        streams_.take(packet, segment, handTo(use));
    }
}

// The first byte distinguishes media from messages, which begin with a token (RFC 3261 section 7).
void Capture::takeUdp(const IpPacket &packet, const Use &use) {
    UdpDatagram datagram;
    if (!readUdp(packet, datagram)) {
        return;
    }
    const uint8_t first = byteAt(datagram.payload, 0);
    if (first >= 0x80 || (first < 0x20 && first != '\r' && first != '\n')) {
        const bool isSips =
            datagram.sourcePort == kSipsPort || datagram.destinationPort == kSipsPort;
        encryptedDatagrams_ += isSips && isDtls(datagram.payload) ? 1 : 0;
        return;
    }
    const std::string_view message = withoutLineEnds(datagram.payload);
    if (message.empty() || findMessage(message.substr(0, kLongestStartLine + 2), 0) != 0) {
        return;
    }
    if (datagram.cut) {
        ++cutMessages_;
        return;
    }
    use({frame_.number, frame_.time, packet.source.text(), packet.destination.text(),
         datagram.sourcePort, datagram.destinationPort, "UDP"},
        message);
}

Streams::Use Capture::handTo(const Use &use) const {
    return [this, &use](const TcpEnds &ends, std::string_view message, bool webSocket) {
        use({frame_.number, frame_.time, ends.source.text(), ends.destination.text(),
             ends.sourcePort, ends.destinationPort, webSocket ? "WS" : "TCP"},
            message);
    };
}

void Capture::finish(const Use &use) {
    streams_.finish(handTo(use));
}

std::vector<std::string> Capture::unread() const {
    std::vector<std::string> sentences;
    const Streams::Counts counts = streams_.counts();
    say(sentences, unknownLinks_, "packet", "packets",
        " of link type " + std::to_string(unknownLink_) + " cannot be read");
    say(sentences, encryptedDatagrams_ + counts.encryptedPackets, "packet is", "packets are",
        " encrypted (TLS)");
    say(sentences, fragments_.lost() + fragments_.pending(), "packet lacks", "packets lack",
        " fragments");
    say(sentences, counts.gaps,
        "gap in a TCP stream:", "gaps in TCP streams:", " bytes that were not captured");
    say(sentences, counts.compressed, "WebSocket message is", "WebSocket messages are",
        " compressed");
    say(sentences, counts.tooLong, "message of a TCP stream is", "messages of TCP streams are",
        " longer than the limit");
    say(sentences, counts.dropped, "TCP stream was", "TCP streams were",
        " dropped to keep the memory bounded");
    return sentences;
}

} // namespace cli
