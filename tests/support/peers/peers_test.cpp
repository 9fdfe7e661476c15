// What the readers make of a body: each of them the same.
#include "support/peers/peers.hpp"

#include <gtest/gtest.h>

namespace peers {

namespace {

std::string readBy(const Peer &peer, const std::string &text) {
    const auto streams = peer.read(text);
    std::string all = streams ? "" : "refused";
    for (const Stream &stream : streams.value_or(Streams())) {
        all += describe(stream) + '\n';
    }
    return all;
}

TEST(Peers, ReadStreams) {
    ASSERT_FALSE(all().empty());
    for (const Peer &peer : all()) {
        EXPECT_EQ(readBy(peer, "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nc=IN IP4 192.0.2.1\r\n"
                               "t=0 0\r\nm=audio 49170 RTP/AVP 8 0 101\r\n"
                               "a=rtpmap:101 telephone-event/8000\r\na=sendonly\r\n"
                               "m=video 0 RTP/AVP 31\r\nm=audio 49180 RTP/AVP 3\r\n"
                               "c=IN IP4 192.0.2.7\r\na=recvonly\r\n"
                               "m=audio 49190 RTP/AVP 96\r\na=rtpmap:96 iLBC/8000\r\n"
                               "a=inactive\r\nm=image 49200 udptl t38\r\n"),
                  "audio 49170 RTP/AVP 8 0 101 sendonly 192.0.2.1\n"
                  "video 0 RTP/AVP 31  192.0.2.1\n"
                  "audio 49180 RTP/AVP 3 recvonly 192.0.2.7\n"
                  "audio 49190 RTP/AVP 96 inactive 192.0.2.1\n"
                  "image 49200 udptl t38 sendrecv 192.0.2.1\n")
            << peer.name;
    }
}

TEST(Peers, RefuseWhatIsNoBody) {
    for (const Peer &peer : all()) {
        if (peer.name != "gstreamer") { // which takes any text
            EXPECT_EQ(readBy(peer, "no body at all"), "refused") << peer.name;
        }
    }
}

} // namespace

} // namespace peers
