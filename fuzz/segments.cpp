// A TCP stream does not depend on the order, overlap or repetition of its segments; whatever
// segments arrive, no byte is read that was not sent.
#include <algorithm>
#include <string>
#include <vector>

#include "capture/segments.hpp"
#include "capture/streams.hpp"
#include "fuzz.hpp"

namespace {

using fuzz::require;

struct Part {
    size_t offset;
    size_t size;
};

// The text in overlapping parts in random order; fewer parts than a stream may keep waiting.
std::vector<Part> partsOf(size_t size, fuzz::Input &input) {
    std::vector<Part> parts;
    for (size_t at = 0; at < size;) {
        const size_t step = 1 + 2 * size / cli::Segments::kMostParts + input.below(200);
        parts.push_back({at, step + input.below(50)});
        at += step;
    }
    for (size_t i = 0; i + 1 < parts.size(); ++i) {
        std::swap(parts[i], parts[i + input.below(static_cast<uint32_t>(parts.size() - i))]);
    }
    return parts;
}

void requireStream(std::string_view text, const std::vector<Part> &parts, uint32_t begin) {
    cli::Segments segments;
    segments.begin(begin);
    std::string taken;
    for (const Part &part : parts) {
        fuzz::Exact bytes(text.substr(part.offset, part.size));
        segments.add(begin + static_cast<uint32_t>(part.offset), bytes.view(), taken);
        require(text.starts_with(taken), "what is taken is what was sent");
    }
    require(taken == text && !segments.hasGap() && segments.waitingBytes() == 0,
            "the whole stream is taken");
}

std::string message(std::string_view body) {
    return "INVITE sip:b@example.com SIP/2.0\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + std::string(body);
}

void requireMessages(std::string_view text, fuzz::Input &input) {
    const std::string first = message(text.substr(0, text.size() / 2));
    const std::string second = message(text.substr(text.size() / 2));
    const std::string stream = first + "\r\n\r\n" + second;
    cli::Streams streams;
    std::vector<std::string> found;
    const cli::Streams::Use use = [&](const cli::TcpEnds &, std::string_view one, bool) {
        found.emplace_back(one);
    };
    cli::IpPacket packet;
    cli::TcpSegment segment;
    segment.syn = true;
    segment.sequence = 0xffffff80;
    streams.take(packet, segment, use);
    segment.syn = false;
    for (const Part &part : partsOf(stream.size(), input)) {
        fuzz::Exact bytes(std::string_view(stream).substr(part.offset, part.size));
        segment.sequence = 0xffffff81 + static_cast<uint32_t>(part.offset);
        segment.payload = bytes.view();
        streams.take(packet, segment, use);
    }
    require(found == std::vector<std::string>{first, second}, "both messages are found", stream);
}

// Arbitrary numbers, sizes and flags.
void requireBounds(std::string_view text, fuzz::Input &input) {
    cli::Streams streams;
    const cli::Streams::Use use = [](const cli::TcpEnds &, std::string_view, bool) {};
    cli::IpPacket packet;
    for (size_t at = 0; at < text.size();) {
        cli::TcpSegment segment;
        const uint8_t flags = input.byte();
        segment.sequence = input.oneIn(4) ? input.number() : static_cast<uint32_t>(at);
        segment.sourcePort = flags & 3;
        segment.syn = flags % 16 == 15;
        segment.finished = flags % 32 == 17;
        segment.missing = flags % 64 == 5 ? 100 : 0;
        fuzz::Exact bytes(text.substr(at, 1 + flags));
        segment.payload = bytes.view();
        streams.take(packet, segment, use);
        at += 1 + flags;
    }
    streams.finish(use);
    require(streams.counts().dropped == 0, "so little is never given up");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const std::string text(input.rest());
    const uint32_t begin = input.number();
    requireStream(text, partsOf(text.size(), input), begin);
    requireMessages(text, input);
    requireBounds(text, input);
    return 0;
}
