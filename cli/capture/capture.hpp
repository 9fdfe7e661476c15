// Finds the SIP messages in the packets of a capture.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "capture/container.hpp"
#include "capture/fragments.hpp"
#include "capture/streams.hpp"
#include "sip/origin.hpp"

namespace cli {

class Capture {
public:
    // Called with a message and the packet that completed it. The text is valid during the call.
    using Use = std::function<void(const Packet &packet, std::string_view message)>;

    void take(const Frame &frame, const Use &use);

    // At the end of the capture: reads what waited for packets that did not come.
    void finish(const Use &use);

    // What was not read, with one sentence for each reason: "3 packets are encrypted (TLS)".
    std::vector<std::string> unread() const;

    size_t cutMessages() const { return cutMessages_; } // of which the capture has only a part
    uint64_t packets() const { return packets_; }

private:
    void takeUdp(const IpPacket &packet, const Use &use);
    Streams::Use handTo(const Use &use) const;

    Fragments fragments_;
    Streams streams_;
    Frame frame_; // the last one, without its bytes
    uint64_t packets_ = 0;
    size_t unknownLinks_ = 0;
    uint32_t unknownLink_ = 0; // the first link type that is not known
    size_t encryptedDatagrams_ = 0;
    size_t cutMessages_ = 0;
};

} // namespace cli
