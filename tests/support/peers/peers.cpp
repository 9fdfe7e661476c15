// The libraries that are linked.
#include "support/peers/peers.hpp"

#include <arpa/inet.h>

namespace peers {

#define PEER(name) std::optional<Streams> read_##name(const std::string &text);
#include "peers.def"
#undef PEER

namespace {

// A stream of port 0 has a direction in some libraries only.
std::optional<Streams> withoutClosed(std::optional<Streams> streams) {
    for (size_t i = 0; streams && i < streams->size(); ++i) {
        if ((*streams)[i].port == 0) {
            (*streams)[i].direction.clear();
        }
    }
    return streams;
}

} // namespace

const std::vector<Peer> &all() {
    static const std::vector<Peer> peers = {
#define PEER(name)                                                                                 \
    {#name, [](const std::string &text) { return withoutClosed(read_##name(text)); }},
#include "peers.def"
#undef PEER
    };
    return peers;
}

std::string describe(const Stream &stream) {
    std::string text = stream.media + ' ' + std::to_string(stream.port) + ' ' + stream.protocol;
    for (const std::string &format : stream.formats) {
        text += ' ' + format;
    }
    return text + ' ' + stream.direction + ' ' + stream.address;
}

std::string describeWhole(const Stream &stream) {
    in6_addr address;
    char text[INET6_ADDRSTRLEN] = "";
    Stream other = stream;
    for (const int family : {AF_INET, AF_INET6}) {
        if (inet_pton(family, stream.address.c_str(), &address) == 1) {
            other.address = inet_ntop(family, &address, text, sizeof text);
        }
    }
    return describe(other) + ' ' + std::to_string(stream.attributes) + " attributes";
}

} // namespace peers
