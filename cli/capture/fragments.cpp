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
        ages_.emplace(order_, key);
    }
    Pending &pending = found->second;
    put(pending, packet);
    if (pending.size != 0 &&
        pending.end > pending.size) { // beyond the end that another fragment gave
        forget(found);
        ++lost_;
        return false;
    }
    if (pending.size == 0 || pending.units * kUnit < pending.size) {
        return false;
    }
    whole_.resize(pending.size);
    for (const Part &part : pending.parts) {
        part.bytes.copy(whole_.data() + part.offset, part.bytes.size());
    }
    forget(found);
    packet.payload = whole_;
    packet.isFragment = false;
    packet.moreFragments = false;
    packet.offset = 0;
    return true;
}

// Bytes that were received before are kept; each run of new units becomes a part.
void Fragments::put(Pending &pending, const IpPacket &packet) {
    const std::string_view bytes = packet.payload;
    pending.end = std::max(pending.end, packet.offset + bytes.size());
    if (!packet.moreFragments && pending.size == 0) {
        pending.size = packet.offset + bytes.size();
    }
    bool runs = false;
    for (size_t at = 0; at < bytes.size(); at += kUnit) {
        const size_t unit = (packet.offset + at) / kUnit;
        const bool fresh = !pending.have[unit];
        if (fresh) {
            pending.have[unit] = true;
            ++pending.units;
            if (!runs) {
                pending.parts.push_back({packet.offset + at, {}});
            }
            pending.parts.back().bytes.append(bytes.substr(at, kUnit));
        }
        runs = fresh;
    }
}

void Fragments::forget(Table::iterator entry) {
    ages_.erase(entry->second.order);
    pending_.erase(entry);
}

void Fragments::giveUpOldest() {
    forget(pending_.find(ages_.begin()->second));
    ++lost_;
}

} // namespace cli
