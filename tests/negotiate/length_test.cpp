// Bodies at the limit of what a decoder reads, made long by each kind of text in turn: a call
// refuses to make one that is too long, and makes every shorter one.
#include <gtest/gtest.h>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

// A body of one stream with a text of any length in one place; "@" marks the place.
struct Place {
    const char *name;
    const char *body;
};

#define HEAD "v=0\no=- 2 1 IN IP4 198.51.100.2\ns=-\n"
#define TAIL "c=IN IP4 198.51.100.2\nt=0 0\n"
constexpr Place kPlaces[] = {
    {"user", "v=0\no=@ 2 1 IN IP4 198.51.100.2\ns=-\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"session", "v=0\no=- 2 1 IN IP4 198.51.100.2\ns=@\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"bandwidth", HEAD "c=IN IP4 198.51.100.2\nb=X@:1\nt=0 0\nm=audio 40000 RTP/AVP 0\n"},
    {"information", HEAD "i=@\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"address", HEAD "u=@\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"mail", HEAD "e=@\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"phone", HEAD "p=@\n" TAIL "m=audio 40000 RTP/AVP 0\n"},
    {"zone", HEAD TAIL "z=@\nm=audio 40000 RTP/AVP 0\n"},
    {"key", HEAD TAIL "k=@\nm=audio 40000 RTP/AVP 0\n"},
    {"attribute", HEAD TAIL "a=x:@\nm=audio 40000 RTP/AVP 0\n"},
    {"flag", HEAD TAIL "a=x@\nm=audio 40000 RTP/AVP 0\n"},
    {"language", HEAD TAIL "a=lang:@\nm=audio 40000 RTP/AVP 0\n"},
    {"stream information", HEAD TAIL "m=audio 40000 RTP/AVP 0\ni=@\n"},
    {"stream bandwidth", HEAD TAIL "m=audio 40000 RTP/AVP 0\nb=X@:1\n"},
    {"stream key", HEAD TAIL "m=audio 40000 RTP/AVP 0\nk=@\n"},
    {"stream attribute", HEAD TAIL "m=audio 40000 RTP/AVP 0\na=x:@\n"},
    {"parameters", HEAD TAIL "m=audio 40000 RTP/AVP 0\na=fmtp:0 @\n"},
    {"media", HEAD TAIL "m=x@ 40000 udp wb\n"},
    {"protocol", HEAD TAIL "m=application 40000 x@ wb\n"},
    {"format", HEAD TAIL "m=application 40000 udp x@\n"},
};

std::string with(const char *body, size_t size) {
    std::string text(body);
    return text.replace(text.find('@'), 1, size, 'x');
}

// Streams that nobody takes, 3600 bytes of them; they stay in an answer and in a next offer.
std::string closed() {
    std::string text;
    for (int i = 0; i < 4; ++i) {
        text += "m=y 0 udp " + std::string(888, 'y') + "\n";
    }
    return text;
}

// What a call makes of a text, one byte longer each time: bodies up to the limit, then TooLong.
template <class Make>
void expectLimit(const Place &place, Make make) {
    SCOPED_TRACE(place.name);
    size_t longest = 0;
    bool refused = false;
    for (size_t size = 300; size < 440 && !refused; ++size) {
        const auto body = Body::decode(with(place.body, size));
        if (!body) {
            FAIL() << size << ": " << body.error().message();
        }
        const sdpline::Result<Body> made = make(*body);
        refused = !made;
        if (refused) {
            EXPECT_EQ(made.error().check, "TooLong");
            break;
        }
        const auto text = made->encode();
        ASSERT_TRUE(text) << size;
        longest = text->size();
    }
    // Text of the other side only is not copied: then nothing grows.
    EXPECT_TRUE(refused ? longest == SDP_MAX_BODY : longest < SDP_MAX_BODY) << longest;
}

TEST(NegotiateLength, AnswersWithALongTextOfOurs) {
    for (const Place &place : kPlaces) {
        expectLimit(place, [&](const Body &local) {
            const auto offer = Body::decode(with(place.body, 1) + closed());
            return sdpline::answer(*offer, local).and_then([](auto answer) {
                return sdpline::Result<Body>(std::move(answer.body));
            });
        });
    }
}

TEST(NegotiateLength, AnswersToAnOfferWithALongText) {
    const Body local =
        Body::decode(HEAD "c=IN IP4 198.51.100.2\nt=0 0\na=x:" + std::string(900, 'x') +
                     "\na=y:" + std::string(900, 'y') + "\na=z:" + std::string(900, 'z') +
                     "\na=w:" + std::string(900, 'w') + "\nm=audio 40000 RTP/AVP 0\n")
            .value();
    for (const Place &place : kPlaces) {
        expectLimit(place, [&](const Body &offer) {
            return sdpline::answer(offer, local).and_then([](auto answer) {
                return sdpline::Result<Body>(std::move(answer.body));
            });
        });
    }
}

TEST(NegotiateLength, NextOffersWithALongText) {
    for (const Place &place : kPlaces) {
        const auto previous = Body::decode(with(place.body, 1) + closed());
        expectLimit(place,
                    [&](const Body &wanted) { return sdpline::nextOffer(*previous, wanted); });
    }
}

} // namespace

} // namespace negotiate_test
