// Answers as other libraries read them: media, ports, protocols, formats and directions are those
// that we meant.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "negotiate/documents.hpp"
#include "support/peers/peers.hpp"

namespace negotiate_test {

namespace {

using peers::Stream;
using peers::Streams;
using sdpline::Body;

// sofia-sip returns words that it knows as it writes them itself.
std::string lowered(std::string_view word) {
    std::string text(word);
    std::transform(text.begin(), text.end(), text.begin(), [](char byte) {
        return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
    });
    return text;
}

// What we meant; addresses are left out.
Streams meant(const Body &body) {
    Streams streams;
    for (const sdpline::Media media : body.media()) {
        Stream stream;
        stream.media = media.type().text();
        stream.port = media.port();
        stream.protocol = media.protocol().text();
        for (const uint32_t number : media.payloads()) {
            stream.formats.push_back(std::to_string(number));
        }
        if (stream.formats.empty() && !media.format().text().empty()) {
            stream.formats.emplace_back(media.format().text());
        }
        if (stream.port != 0) {
            stream.direction = sdpline::wordOf(body.directionOf(media));
        }
        streams.push_back(stream);
    }
    return streams;
}

std::string describe(Streams streams) {
    std::string text;
    for (Stream &stream : streams) {
        stream.address.clear();
        text += lowered(peers::describe(stream)) + '\n';
    }
    return text;
}

// What a library reads in another way, by case.
struct Exception {
    std::string_view peer;
    std::string_view title;
};
constexpr Exception kExceptions[] = {
    {"gstreamer", "Port 0 without formats"},      // an empty word is a format
    {"libre", "A multicast stream among others"}, // a number of ports after the port:
    {"libre", "Ports of a hierarchical stream"},  // it is read as port 0
    {"sofia", "Only numbers above 127"},          // refused
};

bool isExcepted(std::string_view peer, const std::string &title) {
    return std::any_of(std::begin(kExceptions), std::end(kExceptions), [&](const Exception &one) {
        return one.peer == peer && one.title == title;
    });
}

class NegotiatePeers : public testing::Test {
public:
    void SetUp() override { SdpSetSupMedProtoRtpAvpf(1); }
    void TearDown() override { SdpSetSupMedProtoRtpAvpf(0); }
};

TEST_F(NegotiatePeers, ReadAnswersAsTheyAreMeant) {
    size_t read = 0;
    for (const Case &current : readCases(SDPLINE_NEGOTIATE_CASES)) {
        if (!current.has("offer") || !current.has("local")) {
            continue;
        }
        const auto answer = sdpline::answer(*bodyOf(current, "offer"), *bodyOf(current, "local"),
                                            nullptr, optionsOf(current));
        if (!answer) {
            continue;
        }
        const std::string expected = describe(meant(answer->body));
        for (const peers::Peer &peer : peers::all()) {
            const auto streams = peer.read(*answer->body.encode());
            const std::string found = streams ? describe(*streams) : "refused\n";
            EXPECT_EQ(found != expected, isExcepted(peer.name, current.title))
                << peer.name << ": " << current.file << ": " << current.title << "\nmeant\n"
                << expected << "read\n"
                << found;
            ++read;
        }
    }
    EXPECT_GT(read, 100u);
}

} // namespace

} // namespace negotiate_test
