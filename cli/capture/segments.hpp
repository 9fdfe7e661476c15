// Reassembles one direction of a TCP connection from segments in any order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace cli {

// Bytes that are received twice are taken the first time. The bytes that wait for an earlier
// segment are bounded: where isStuck() returns true, the caller gives the missing ones up by
// skipGap().
class Segments {
public:
    static constexpr size_t kMostWaiting = 256u << 10; // bytes
    static constexpr size_t kMostParts = 512;

    // The first byte of the stream has this sequence number.
    void begin(uint32_t sequence);
    bool hasBegun() const { return begun_; }
    // Whether a SYN with this number opened the connection that is being read.
    bool isFirst(uint32_t sequence) const { return begun_ && first_ == sequence; }

    // Appends to `taken` the bytes that are next in order. Without begin(), the first call begins
    // the stream.
    void add(uint32_t sequence, std::string_view bytes, std::string &taken);

    // Whether bytes must have been lost: more wait than a connection has in flight.
    bool isStuck() const { return waitingBytes_ > kMostWaiting || waiting_.size() > kMostParts; }
    bool hasGap() const { return !waiting_.empty(); }
    // Continues after the missing bytes, and appends the bytes that waited for them.
    void skipGap(std::string &taken);

    // The bytes from the expected one up to this sequence number are known to be missing.
    void lose(uint32_t upTo);

    size_t waitingBytes() const { return waitingBytes_; }

private:
    uint64_t placeOf(uint32_t sequence) const;
    void takeWaiting(std::string &taken);

    bool begun_ = false;
    uint32_t first_ = 0;
    uint64_t next_ = 0;                       // place of the next byte in order
    std::map<uint64_t, std::string> waiting_; // by their places
    size_t waitingBytes_ = 0;
};

} // namespace cli
