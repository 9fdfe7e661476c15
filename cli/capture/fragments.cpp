#include "capture/fragments.hpp"

#include <algorithm>

namespace cli {

bool Fragments::take(IpPacket &packet) {
    const size_t end = packet.offset + packet.payload.size();
    const bool whole = packet.missing == 0 && !packet.payload.empty() && end <= kLongest &&
                       (!packet.moreFragments || packet.payload.size() % kUnit == 0);
    if (!whole) {
        ++lost_;
        return false;
    }
    const Key key = {packet.source, packet.destination, packet.id, packet.protocol};
    auto found = pending_.find(key);
    if (found == pending_.end()) {
        if (pending_.size() == kMostPending) {
            giveUpOldest();
        }
        found = pending_.emplace(key, Pending()).first;
        found->second.order = ++order_;
    }
    Pending &pending = found->second;
    put(pending, packet);
    if (pending.size != 0 &&
        pending.bytes.size() > pending.size) { // its end was said to be earlier
        pending_.erase(found);
        ++lost_;
        return false;
    }
    if (pending.size == 0 || pending.units * kUnit < pending.size) {
        return false;
    }
    whole_ = std::move(pending.bytes);
    whole_.resize(pending.size);
    pending_.erase(found);
    packet.payload = whole_;
    packet.isFragment = false;
    packet.moreFragments = false;
    packet.offset = 0;
    return true;
}

// Units that are there already stay as they are.
void Fragments::put(Pending &pending, const IpPacket &packet) {
    const std::string_view bytes = packet.payload;
    const size_t end = packet.offset + bytes.size();
    if (!packet.moreFragments && pending.size == 0) {
        pending.size = end;
    }
    if (pending.bytes.size() < end) {
        pending.bytes.resize(end);
    }
    for (size_t at = 0; at < bytes.size(); at += kUnit) {
        const size_t unit = (packet.offset + at) / kUnit;
        if (!pending.have[unit]) {
            pending.have[unit] = true;
            ++pending.units;
            bytes.copy(pending.bytes.data() + packet.offset + at, kUnit, at);
        }
    }
}

void Fragments::giveUpOldest() {
    const auto oldest = std::ranges::min_element(
        pending_, {}, [](const auto &entry) { return entry.second.order; });
    pending_.erase(oldest);
    ++lost_;
}

} // namespace cli
