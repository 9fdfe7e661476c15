// Bodies at the size limit of the decoder, lengthened by each kind of text in turn: a call refuses
// to make one that is too long, and makes every shorter one.
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

// Four lines of that number of bytes.
std::string lines(const std::string &begin, size_t width) {
    const std::string line = begin + std::string(width - begin.size() - 2, 'y') + "\r\n";
    return line + line + line + line;
}
// Streams that are rejected; they stay in an answer and in a next offer.
std::string closed(size_t width) {
    return lines("m=y 0 udp ", width);
}

// The length of four other lines, and the lengths of a text that reach the limit with them.
struct Span {
    size_t width;
    size_t from;
    size_t to;
};
constexpr Span kSpans[] = {{900, 300, 440}, {755, 880, 1020}};

// Calls with a text that gets one byte longer each time: bodies up to the limit, then TooLong.
template <class Make>
void expectLimit(const Place &place, const Span &span, Make make) {
    SCOPED_TRACE(place.name);
    size_t longest = 0;
    bool refused = false;
    for (size_t size = span.from; size < span.to && !refused; ++size) {
        const auto body = Body::decode(with(place.body, size));
        ASSERT_TRUE(body) << size << ": " << body.error().message();
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
    // Text that only the other side has is not copied: then nothing grows.
    EXPECT_TRUE(refused ? longest == SDP_MAX_BODY : longest < SDP_MAX_BODY) << longest;
}

template <class Test>
void eachPlace(Test test) {
    for (const Place &place : kPlaces) {
        for (const Span &span : kSpans) {
            test(place, span);
        }
    }
}

sdpline::Result<Body> answerTo(const Body &offer, const Body &local) {
    return sdpline::answer(offer, local).and_then([](auto answer) {
        return sdpline::Result<Body>(std::move(answer.body));
    });
}

TEST(NegotiateLength, AnswersWithALongTextOfOurs) {
    eachPlace([](const Place &place, const Span &span) {
        const auto offer = Body::decode(with(place.body, 1) + closed(span.width));
        expectLimit(place, span, [&](const Body &local) { return answerTo(*offer, local); });
    });
}

TEST(NegotiateLength, AnswersToAnOfferWithALongText) {
    eachPlace([](const Place &place, const Span &span) {
        const auto local =
            Body::decode(HEAD TAIL + lines("a=y:", span.width) + "m=audio 40000 RTP/AVP 0\n");
        expectLimit(place, span, [&](const Body &offer) { return answerTo(offer, *local); });
    });
}

TEST(NegotiateLength, NextOffersWithALongText) {
    eachPlace([](const Place &place, const Span &span) {
        const auto previous = Body::decode(with(place.body, 1) + closed(span.width));
        expectLimit(place, span,
                    [&](const Body &wanted) { return sdpline::nextOffer(*previous, wanted); });
    });
}

} // namespace

} // namespace negotiate_test
