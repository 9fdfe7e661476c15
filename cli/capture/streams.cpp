#include "capture/streams.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

#include "capture/bytes.hpp"
#include "sip/message.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kMostSought = 64u << 10; // bytes without a message in a stream
constexpr size_t kLongestHandshake = 16u << 10;

// A TLS record: its type, and version 3.x (RFC 8446 section 5.1).
bool isTls(std::string_view bytes) {
    return byteAt(bytes, 0) >= 20 && byteAt(bytes, 0) <= 23 && byteAt(bytes, 1) == 3 &&
           byteAt(bytes, 2) <= 4;
}

bool holdsWebSocket(std::string_view head) {
    return head.find("ebsocket") != std::string_view::npos ||
           head.find("ebSocket") != std::string_view::npos;
}

} // namespace

bool readTcp(const IpPacket &packet, TcpSegment &segment) {
    const std::string_view bytes = packet.payload;
    const size_t header = (byteAt(bytes, 12) >> 4) * size_t(4);
    if (header < 20 || bytes.size() < header) {
        return false;
    }
    const uint8_t flags = byteAt(bytes, 13);
    segment.sourcePort = big16(bytes, 0);
    segment.destinationPort = big16(bytes, 2);
    segment.sequence = big32(bytes, 4);
    segment.finished = (flags & 0x05) != 0;
    segment.syn = (flags & 0x02) != 0;
    segment.payload = bytes.substr(header);
    segment.missing = packet.missing;
    return true;
}

size_t Streams::Hash::operator()(const TcpEnds &ends) const {
    const uint64_t ports = uint64_t(ends.sourcePort) << 16 | ends.destinationPort;
    uint64_t hash = ports * 0x9e3779b97f4a7c15u;
    for (const IpAddress *const address : {&ends.source, &ends.destination}) {
        for (size_t at = 0; at < 16; at += 8) {
            uint64_t part = 0;
            std::memcpy(&part, address->bytes.data() + at, sizeof part);
            hash = (hash ^ part) * 0xff51afd7ed558ccdu;
            hash ^= hash >> 32;
        }
    }
    return static_cast<size_t>(hash);
}

// Streams are in two generations. A stream with a new packet moves to the young one. When that is
// full it becomes the old one, and the streams in the old one, silent since then, are dropped.
Streams::Stream &Streams::streamOf(const TcpEnds &ends) {
    if (const auto found = young_.find(ends); found != young_.end()) {
        return found->second;
    }
    if (young_.size() >= kGeneration) {
        for (auto &entry : old_) {
            kept_ -= entry.second.kept;
        }
        old_ = std::move(young_);
        young_ = Table();
    }
    if (auto node = old_.extract(ends); !node.empty()) {
        return young_.insert(std::move(node)).position->second;
    }
    Stream &stream = young_[ends];
    stream.ends = ends;
    return stream;
}

void Streams::begin(Stream &stream, const TcpSegment &segment) {
    stream.kind = Kind::Unknown;
    stream.reading = std::make_unique<Reading>();
    stream.segments = Segments();
    stream.order = ++order_;
    stream.isSecured = segment.sourcePort == kSipsPort || segment.destinationPort == kSipsPort;
    account(stream);
}

void Streams::take(const IpPacket &packet, const TcpSegment &segment, const Use &use) {
    if (segment.payload.empty() && segment.missing == 0 && !segment.syn && !segment.finished) {
        return;
    }
    Stream &stream =
        streamOf({packet.source, packet.destination, segment.sourcePort, segment.destinationPort});
    const uint32_t sequence = segment.sequence + (segment.syn ? 1 : 0);
    if (segment.syn && !stream.segments.isFirst(sequence)) {
        begin(stream, segment);
        stream.segments.begin(sequence);
    } else if (stream.reading == nullptr && stream.kind == Kind::Unknown) {
        begin(stream, segment);
    }
    if (stream.kind == Kind::Encrypted) {
        counts_.encryptedPackets += segment.payload.empty() ? 0 : 1;
    } else if (stream.kind != Kind::Other) {
        read(stream, sequence, segment, use);
        account(stream);
    }
}

void Streams::read(Stream &stream, uint32_t sequence, const TcpSegment &segment, const Use &use) {
    stream.segments.add(sequence, segment.payload, stream.reading->incoming);
    hand(stream, use);
    if (segment.missing != 0 && stream.reading != nullptr) {
        const size_t size = segment.payload.size() + segment.missing;
        stream.segments.lose(sequence + static_cast<uint32_t>(size));
        lose(stream);
    }
    while (stream.reading != nullptr &&
           (stream.segments.isStuck() || (segment.finished && stream.segments.hasGap()))) {
        skipGap(stream, use);
    }
}

void Streams::skipGap(Stream &stream, const Use &use) {
    lose(stream);
    if (stream.reading != nullptr) { // null for a WebSocket, which ends at a gap
        stream.segments.skipGap(stream.reading->incoming);
        hand(stream, use);
    }
}

// Reads what waits for missing bytes without them.
void Streams::finish(const Use &use) {
    std::vector<Stream *> waiting;
    for (Table *const table : {&old_, &young_}) {
        for (auto &entry : *table) {
            if (entry.second.reading != nullptr && entry.second.segments.hasGap()) {
                waiting.push_back(&entry.second);
            }
        }
    }
    std::ranges::sort(waiting, {}, &Stream::order);
    for (Stream *const stream : waiting) {
        while (stream->reading != nullptr && stream->segments.hasGap()) {
            skipGap(*stream, use);
        }
    }
}

// An incomplete message cannot be completed. In a WebSocket the next frame cannot be found.
void Streams::lose(Stream &stream) {
    ++counts_.gaps;
    stream.reading->framing.lose();
    stream.reading->webSocket.lose();
    stream.reading->incoming.clear();
    if (stream.kind == Kind::Handshake || stream.kind == Kind::WebSocket) {
        close(stream, Kind::Other);
        stream.segments = Segments();
    }
}

void Streams::close(Stream &stream, Kind kind) {
    counts_.tooLong += stream.reading->framing.tooLong();
    counts_.compressed += stream.reading->webSocket.compressed();
    stream.kind = kind;
    stream.reading.reset();
}

void Streams::account(Stream &stream) {
    size_t kept = 0;
    if (stream.reading != nullptr) {
        kept = sizeof(Reading) + stream.segments.waitingBytes() + stream.reading->incoming.size() +
               stream.reading->framing.buffer().size() + stream.reading->webSocket.buffer().size();
    }
    kept_ = kept_ - stream.kept + kept;
    stream.kept = kept;
    if (kept_ > kMostKept && stream.reading != nullptr) {
        ++counts_.dropped;
        close(stream, Kind::Other);
        stream.segments = Segments();
        kept_ -= stream.kept;
        stream.kept = 0;
    }
}

// Decides by the first bytes. Other bytes are searched for messages: the capture may begin inside
// one.
void Streams::recognise(Stream &stream) {
    const std::string_view text = stream.reading->incoming;
    if (isTls(text) || (stream.isSecured && !isLetter(text.front()))) {
        ++counts_.encryptedStreams;
        ++counts_.encryptedPackets;
        close(stream, Kind::Encrypted);
        return;
    }
    stream.kind =
        text.starts_with("GET ") || text.starts_with("HTTP/") ? Kind::Handshake : Kind::Sip;
}

// The request for a WebSocket or its response (RFC 6455 section 1.3); frames follow the empty line.
void Streams::handshake(Stream &stream) {
    std::string &text = stream.reading->incoming;
    const size_t end = text.find("\r\n\r\n");
    if (end == std::string::npos) {
        if (text.size() > kLongestHandshake) {
            close(stream, Kind::Other);
        }
        return;
    }
    if (!holdsWebSocket(std::string_view(text).substr(0, end))) {
        close(stream, Kind::Other);
        return;
    }
    stream.kind = Kind::WebSocket;
    text.erase(0, end + 4);
}

void Streams::hand(Stream &stream, const Use &use) {
    if (stream.reading != nullptr && stream.kind == Kind::Unknown &&
        !stream.reading->incoming.empty()) {
        recognise(stream);
    }
    if (stream.reading != nullptr && stream.kind == Kind::Handshake) {
        handshake(stream);
    }
    if (stream.kind == Kind::Sip) {
        handSip(stream, use);
    } else if (stream.kind == Kind::WebSocket) {
        handWebSocket(stream, use);
    }
}

void Streams::handSip(Stream &stream, const Use &use) {
    Framing &framing = stream.reading->framing;
    framing.buffer().append(stream.reading->incoming);
    stream.reading->incoming.clear();
    for (std::string_view text = framing.next(); !text.empty(); text = framing.next()) {
        stream.hasMessage = true;
        use(stream.ends, text, false);
    }
    if (!stream.hasMessage && framing.passed() > kMostSought) {
        close(stream, Kind::Other);
    }
}

void Streams::handWebSocket(Stream &stream, const Use &use) {
    WebSocket &frames = stream.reading->webSocket;
    frames.buffer().append(stream.reading->incoming);
    stream.reading->incoming.clear();
    for (std::string_view text = frames.next(); !text.empty(); text = frames.next()) {
        if (findMessage(text, 0) == 0) {
            use(stream.ends, text, true);
        }
    }
    if (frames.isBroken()) {
        close(stream, Kind::Other);
    }
}

Streams::Counts Streams::counts() const {
    Counts counts = counts_;
    for (const Table *const table : {&old_, &young_}) {
        for (const auto &entry : *table) {
            if (entry.second.reading != nullptr) {
                counts.tooLong += entry.second.reading->framing.tooLong();
                counts.compressed += entry.second.reading->webSocket.compressed();
            }
        }
    }
    return counts;
}

} // namespace cli
