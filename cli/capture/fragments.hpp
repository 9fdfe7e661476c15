// Reassembles fragmented IP packets.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "capture/ip.hpp"

namespace cli {

// Memory is bounded: kMostPending packets of at most 64 KiB each. A new packet replaces the oldest
// one. Of bytes that are received twice the first are kept.
class Fragments {
public:
    static constexpr size_t kMostPending = 256;
    static constexpr size_t kLongest = 65536;

    // Takes a fragment. Returns true for the last missing one: then `packet` is the whole packet,
    // and valid until the next call.
    bool take(IpPacket &packet);

    size_t pending() const { return pending_.size(); }
    size_t lost() const { return lost_; } // packets that were dropped

private:
    static constexpr size_t kUnit = 8; // bytes; offsets count these units

    struct Key {
        IpAddress source;
        IpAddress destination;
        uint32_t id;
        uint8_t protocol;

        auto operator<=>(const Key &) const = default;
    };
    struct Part {
        size_t offset;
        std::string bytes;
    };
    struct Pending {
        std::vector<Part> parts; // in the order of arrival, without overlaps
        std::bitset<kLongest / kUnit> have;
        size_t units = 0; // received
        size_t end = 0;   // of the last byte received
        size_t size = 0;  // of the whole packet; 0 until its last fragment is received
        uint64_t order = 0;
    };

    using Table = std::map<Key, Pending>;

    void forget(Table::iterator entry);
    void giveUpOldest();
    static void put(Pending &pending, const IpPacket &packet);

    Table pending_;
    std::map<uint64_t, Key> ages_; // by order
    std::string whole_;
    uint64_t order_ = 0;
    size_t lost_ = 0;
};

} // namespace cli
