// SDP answers decoded by other libraries: media, ports, protocols, formats, directions, addresses
// and the number of attributes are as intended.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <set>

#include "negotiate/documents.hpp"
#include "support/peers/peers.hpp"

namespace negotiate_test {

namespace {

using peers::Stream;
using peers::Streams;
using sdpline::Body;

// sofia-sip returns words that it knows in its spelling.
std::string lowered(std::string_view word) {
    std::string text(word);
    std::transform(text.begin(), text.end(), text.begin(), [](char byte) {
        return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
    });
    return text;
}

// The intended values.
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
        for (const sdpline::Attribute attribute : media.attributes()) {
            stream.attributes += peers::isDirection(sdpline::wordOf(attribute.type())) ? 0 : 1;
        }
        if (const auto connection = body.connectionOf(media)) {
            stream.address = connection->address.text();
        }
        streams.push_back(stream);
    }
    return streams;
}

std::string describe(const Streams &streams) {
    std::string text;
    for (const Stream &stream : streams) {
        text += lowered(peers::describeWhole(stream)) + '\n';
    }
    return text;
}

// The differences of a library, by case.
struct Exception {
    std::string_view peer;
    std::string_view title;
};
constexpr Exception kExceptions[] = {
    {"gstreamer", "Port 0 without formats"},      // an empty word is a format
    {"libre", "A multicast stream among others"}, // a number of ports after the port:
    {"libre", "Ports of a hierarchical stream"},  // it is read as port 0
    {"sofia", "Only numbers above 127"},          // refused
    // a multicast address with its TTL is not read: that of the session is used
    {"libre", "A multicast stream that is sendrecv"},
    {"libre", "A multicast stream that is sendonly"},
    {"libre", "A multicast stream that is recvonly"},
    {"libre", "A multicast stream that is inactive"},
    {"libre", "Packet time and bandwidth of the offer"},
    {"libre", "Our packet time where the offer has none"},
    {"libre", "A multicast address of IPv6"},
    {"libre", "A multicast stream with a TTL, ours is unicast"},
    {"libre", "A multicast stream keeps its direction, ours is recvonly"},
    {"libre", "Multicast with several addresses"},
    // a=rtcp becomes an address, which is no attribute
    {"libre", "What a stream says of itself stays in a bundle"},
    {"libre", "A local stream again, by a list of ports"},
    {"libre", "The attributes of a local stream that is taken again"},
    {"libre", "One port for RTP and RTCP, which the offer lacks in one stream"},
    // an address that is missing is 0.0.0.0
    {"libre", "A local stream without a c= line"},
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

// ---- Random offers with lines of phones and browsers

class Offers {
public:
    std::string make() {
        number_ = 96;
        const bool shared = chance(2);
        std::string text = "v=0\no=- " + std::to_string(random()) + " 1 IN IP4 192.0.2.1\ns=-\n" +
                           (shared ? connection() : "") + "t=0 0\n" +
                           (chance(5) ? direction() : "");
        for (uint32_t i = 1 + below(4); i > 0; --i) {
            text += stream(!shared || chance(4));
        }
        return text;
    }

private:
    uint32_t random() { return static_cast<uint32_t>(engine_()); }
    uint32_t below(uint32_t limit) { return random() % limit; }
    bool chance(uint32_t in) { return below(in) == 0; }

    std::string connection() {
        return chance(3) ? "c=IN IP6 2001:db8::" + std::to_string(1 + below(99)) + '\n'
                         : "c=IN IP4 192.0.2." + std::to_string(1 + below(250)) + '\n';
    }
    std::string direction() {
        static constexpr const char *kWords[] = {"sendrecv", "sendonly", "recvonly", "inactive"};
        return std::string("a=") + kWords[below(4)] + '\n';
    }

    std::string stream(bool addressed) {
        const std::string port = std::to_string(chance(12) ? 0 : 1024 + 2 * below(30000));
        const std::string address = addressed ? connection() : "";
        if (chance(5)) {
            return "m=image " + port + " udptl t38\n" + address +
                   "a=T38FaxVersion:" + std::to_string(below(4)) +
                   "\na=T38FaxRateManagement:transferredTCF\n" +
                   (chance(2) ? "a=T38FaxUdpEC:t38UDPRedundancy\n" : "");
        }
        const bool video = chance(3);
        std::string numbers;
        std::string lines;
        for (uint32_t i = 1 + below(5); i > 0; --i) {
            addFormat(video, numbers, lines);
        }
        return std::string("m=") + (video ? "video " : "audio ") + port +
               (chance(4) ? " RTP/SAVP" : " RTP/AVP") + numbers + '\n' + address + lines + key() +
               (chance(2) ? direction() : "") + (chance(3) ? "a=ptime:20\n" : "") +
               (chance(4) ? "a=rtcp-mux\n" : "") + (chance(4) ? "a=x-other:1\n" : "");
    }

    static std::string key() {
        return "a=crypto:1 AES_CM_128_HMAC_SHA1_80 "
               "inline:WVNfX19zZW1jdGwgKCkgewkyMjA7fQp9CnVubGVz\n";
    }

    void addFormat(bool video, std::string &numbers, std::string &lines) {
        struct Codec {
            bool video;
            const char *number; // a static one
            const char *map;    // or what a dynamic one is
            const char *parameters;
        };
        static constexpr Codec kCodecs[] = {
            {false, "0", "", ""},
            {false, "8", "", ""},
            {false, "9", "", ""},
            {false, "18", "", "annexb=no"},
            {false, "", "opus/48000/2", "useinbandfec=1"},
            {false, "", "iLBC/8000", "mode=30"},
            {false, "", "AMR-WB/16000", "octet-align=1"},
            {false, "", "telephone-event/8000", "0-15"},
            {true, "31", "", ""},
            {true, "34", "", ""},
            {true, "", "H264/90000", "profile-level-id=42e01f;packetization-mode=1"},
            {true, "", "VP8/90000", ""},
        };
        const Codec *codec = nullptr;
        do {
            codec = &kCodecs[below(std::size(kCodecs))];
        } while (codec->video != video);
        const std::string number =
            *codec->number != '\0' ? codec->number : std::to_string(number_++);
        if ((numbers + ' ').find(' ' + number + ' ') != std::string::npos) {
            return;
        }
        numbers += ' ' + number;
        lines += *codec->map != '\0' ? "a=rtpmap:" + number + ' ' + codec->map + '\n' : "";
        lines +=
            *codec->parameters != '\0' ? "a=fmtp:" + number + ' ' + codec->parameters + '\n' : "";
    }

    std::mt19937 engine_{17};
    uint32_t number_ = 96;
};

// The body of a gateway: each stream twice, some with their address.
const char *const kGateway =
    "v=0\no=- 2 1 IN IP4 198.51.100.2\ns=-\nc=IN IP4 198.51.100.2\nt=0 0\n"
    "m=audio 40000 RTP/AVP 8 0 9 18 96 97 98 101\na=rtpmap:96 opus/48000/2\n"
    "a=rtpmap:97 iLBC/8000\na=fmtp:97 mode=20\na=rtpmap:98 AMR-WB/16000\na=fmtp:98 octet-align=1\n"
    "a=rtpmap:101 telephone-event/8000\na=fmtp:101 0-15\na=fmtp:18 annexb=no\na=ptime:30\n"
    "a=rtcp-mux\n"
    "m=audio 40010 RTP/SAVP 0 8 96\nc=IN IP6 2001:db8::2\na=rtpmap:96 opus/48000/2\n"
    "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:d0RmdmcmVCspeEc3QGZiNWpVLFJhQX1cfHAwJSoj\n"
    "m=video 40020 RTP/AVP 99 100 31 34\nc=IN IP4 198.51.100.7\na=rtpmap:99 VP8/90000\n"
    "a=rtpmap:100 H264/90000\na=fmtp:100 profile-level-id=42e01f;packetization-mode=1\n"
    "a=label:v\n"
    "m=image 40030 udptl t38\na=T38FaxVersion:1\na=T38MaxBitRate:14400\n"
    "a=T38FaxRateManagement:transferredTCF\na=T38FaxUdpEC:t38UDPRedundancy\n";

TEST_F(NegotiatePeers, ReadFiveHundredAnswersToDifferentOffers) {
    Offers offers;
    std::set<std::string> different;
    std::map<std::string_view, size_t> compared;
    const auto local = Body::decode(kGateway);
    ASSERT_TRUE(local) << local.error().message();
    sdpline::AnswerOptions options;
    options.port = [](uint32_t stream, uint32_t, uint32_t own) {
        return own != 0 ? own : 42000 + 2 * stream;
    };
    while (different.size() < 600) {
        const std::string offer = offers.make();
        if (!different.insert(offer.substr(offer.find("s=-"))).second) {
            continue; // another session id makes no other offer
        }
        const auto decoded = Body::decode(offer);
        ASSERT_TRUE(decoded) << decoded.error().message() << '\n' << offer;
        const auto answer = sdpline::answer(*decoded, *local, nullptr, options);
        ASSERT_TRUE(answer) << answer.error().message();
        const std::string expected = describe(meant(answer->body));
        for (const peers::Peer &peer : peers::all()) {
            const auto streams = peer.read(*answer->body.encode());
            ASSERT_EQ(streams ? describe(*streams) : "refused\n", expected) << peer.name << '\n'
                                                                            << textOf(answer->body);
            ++compared[peer.name];
        }
    }
    for (const peers::Peer &peer : peers::all()) {
        EXPECT_EQ(compared[peer.name], different.size()) << peer.name;
    }
    EXPECT_GE(different.size(), 500u);
}

} // namespace

} // namespace negotiate_test
