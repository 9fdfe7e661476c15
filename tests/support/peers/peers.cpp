// The libraries that are linked.
#include "support/peers/peers.hpp"

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

} // namespace peers
