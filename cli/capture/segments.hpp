// One direction of a TCP connection: segments in any order become the bytes that were sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace cli {

// Bytes that come twice are taken once, the first time. What waits for an earlier segment is
// bounded; the caller gives up the missing bytes by skipGap().
class Segments {
public:
    static constexpr size_t kMostWaiting = 256u << 10; // bytes
    static constexpr size_t kMostParts = 512;

    // The first byte that is expected has that number.
    void begin(uint32_t sequence);
    bool hasBegun() const { return begun_; }
    // Whether a SYN with that number opens the connection that is being read.
    bool isFirst(uint32_t sequence) const { return begun_ && first_ == sequence; }

    // Appends the bytes that follow what was taken before. Without begin() the first call begins.
    void add(uint32_t sequence, std::string_view bytes, std::string &taken);

    // Whether bytes must have been lost: more wait than a connection has on the way.
    bool isStuck() const { return waitingBytes_ > kMostWaiting || waiting_.size() > kMostParts; }
    bool hasGap() const { return !waiting_.empty(); }
    // Goes on after the missing bytes, and appends what waited for them.
    void skipGap(std::string &taken);

    // The bytes from the expected one up to that number are known to be missing.
    void lose(uint32_t upTo);

    size_t waitingBytes() const { return waitingBytes_; }

private:
    uint64_t placeOf(uint32_t sequence) const;
    void takeWaiting(std::string &taken);

    bool begun_ = false;
    uint32_t first_ = 0;
    uint64_t next_ = 0;                       // place of the byte that is expected
    std::map<uint64_t, std::string> waiting_; // by their places
    size_t waitingBytes_ = 0;
};

} // namespace cli
