// A reassembled packet does not depend on the order or repetition of its fragments; whatever
// fragments arrive, no more than the limit is kept.
#include <algorithm>
#include <string>
#include <vector>

#include "capture/fragments.hpp"
#include "fuzz.hpp"

namespace {

using fuzz::require;

void requireWhole(std::string_view text, fuzz::Input &input) {
    std::vector<size_t> begins;
    for (size_t at = 0; at < text.size(); at += 8 * (1 + input.below(20))) {
        begins.push_back(at);
    }
    std::vector<size_t> order(begins.size());
    for (size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    for (size_t i = 0; i + 1 < order.size(); ++i) {
        std::swap(order[i], order[i + input.below(static_cast<uint32_t>(order.size() - i))]);
    }
    cli::Fragments fragments;
    for (size_t i = 0; i < order.size(); ++i) {
        const size_t begin = begins[order[i]];
        const size_t end = order[i] + 1 < begins.size() ? begins[order[i] + 1] : text.size();
        fuzz::Exact bytes(text.substr(begin, end - begin));
        cli::IpPacket packet;
        packet.isFragment = true;
        packet.moreFragments = end < text.size();
        packet.offset = begin;
        packet.payload = bytes.view();
        const bool isWhole = fragments.take(packet);
        require(isWhole == (i + 1 == order.size()), "the last one completes the packet");
        require(!isWhole || packet.payload == text, "the packet is what was sent");
    }
    require(fragments.pending() == 0 && fragments.lost() == 0, "nothing is left");
}

void requireBounds(std::string_view text, fuzz::Input &input) {
    cli::Fragments fragments;
    for (size_t at = 0; at < text.size();) {
        cli::IpPacket packet;
        const uint32_t numbers = input.number();
        packet.isFragment = true;
        packet.moreFragments = (numbers & 1) != 0;
        packet.id = numbers >> 1 & 7;
        packet.offset = (numbers >> 4 & 0x1fff) * 8;
        packet.missing = numbers % 31 == 0 ? 1 : 0;
        fuzz::Exact bytes(text.substr(at, 1 + (numbers >> 24)));
        packet.payload = bytes.view();
        at += bytes.view().size();
        if (fragments.take(packet)) {
            require(packet.payload.size() <= cli::Fragments::kLongest, "a packet has a limit");
        }
        require(fragments.pending() <= cli::Fragments::kMostPending, "so has what is kept");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const std::string text(input.rest());
    if (!text.empty()) {
        requireWhole(text, input);
        requireBounds(text, input);
    }
    return 0;
}
