// What other SDP libraries read in a body, for tests that compare. Each is a source that is
// compiled where pkg-config finds its library; one that is not installed is not in the list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace peers {

struct Stream {
    std::string media;
    uint32_t port = 0;
    std::string protocol;
    std::vector<std::string> formats; // payload numbers and words, in the order of the m= line
    std::string direction; // "sendrecv" ..., of the stream or the session; none for port 0
    std::string address;   // of the stream's c= line, or else of the session's
    size_t attributes = 0; // a= lines of the stream, without those of directions

    bool operator==(const Stream &) const = default;
};
using Streams = std::vector<Stream>;

// Nothing for a text that the library refuses.
struct Peer {
    std::string_view name;
    std::optional<Streams> (*read)(const std::string &text);
};
const std::vector<Peer> &all();

// The line of a stream for messages: "audio 49170 RTP/AVP 0 8 sendrecv 192.0.2.1".
std::string describe(const Stream &stream);
// The same with the address in its shortest spelling and the number of attributes.
std::string describeWhole(const Stream &stream);

inline bool isDirection(std::string_view name) {
    return name == "sendrecv" || name == "sendonly" || name == "recvonly" || name == "inactive";
}

} // namespace peers
