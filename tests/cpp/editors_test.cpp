// The editors of the other lines.
#include <array>
#include <utility>

#include "cpp/cpptest.hpp"
#include "support/allocations.hpp"

using namespace cpptest;
using namespace sdpline;

TEST(CppSession, EveryLineIsSetAndReadBack) {
    auto made = Body::create();
    ASSERT_TRUE(made);
    Body &body = *made;
    EXPECT_DONE(body.setOrigin({.userName = "alice",
                                .sessionId = "2890844526",
                                .sessionVersion = "2890842807",
                                .address = "host.example.com"}));
    EXPECT_DONE(body.setSessionName("Weekly call"));
    EXPECT_DONE(body.setInfo("About everything"));
    EXPECT_DONE(body.setUri("http://example.com/call"));
    EXPECT_DONE(body.emails().add("alice@example.com"));
    EXPECT_DONE(body.emails().add("bob@example.com (Bob)"));
    EXPECT_DONE(body.phones().add("+1 617 555 6011"));
    EXPECT_DONE(body.setConnection(
        {.address = Address::v4({224, 2, 1, 1}), .ttl = 127, .addressCount = 3}));
    EXPECT_DONE(body.bandwidths().add("AS:128"));
    EXPECT_DONE(body.times().add(1, 2));
    EXPECT_DONE(body.setZone("2882844526 -1h"));
    EXPECT_DONE(body.setKey("prompt"));
    EXPECT_DONE(body.attributes().add(Direction::RecvOnly));
    const std::string text = "v=0\r\no=alice 2890844526 2890842807 IN IP4 host.example.com\r\n"
                             "s=Weekly call\r\ni=About everything\r\nu=http://example.com/call\r\n"
                             "e=alice@example.com\r\ne=bob@example.com (Bob)\r\n"
                             "p=+1 617 555 6011\r\nc=IN IP4 224.2.1.1/127/3\r\nb=AS:128\r\n"
                             "t=1 2\r\nz=2882844526 -1h\r\nk=prompt\r\na=recvonly\r\n";
    EXPECT_EQ(written(body), text);
    EXPECT_EQ(written(decoded(text)), text);
}

TEST(CppSession, EveryLineGoes) {
    Body body = decoded(kEveryLine);
    body.removeInfo();
    body.removeUri();
    EXPECT_EQ(body.emails().removeIf([](std::string_view one) { return one.starts_with("bob"); }),
              1u);
    EXPECT_EQ(body.emails().size(), 1u);
    EXPECT_EQ(body.emails().clear(), 1u);
    EXPECT_EQ(body.phones().clear(), 1u);
    body.removeConnection();
    EXPECT_EQ(body.bandwidths().clear(), 2u);
    EXPECT_EQ(body.times().clear(), 1u);
    body.removeZone();
    body.removeKey();
    EXPECT_EQ(body.attributes().clear(), 2u);
    EXPECT_EQ(body.media().clear(), 4u);
    EXPECT_EQ(written(body), "v=0\r\no=alice 2890844526 2890842807 IN IP4 host.example.com\r\n"
                             "s=Weekly call\r\nt=0 0\r\n");
    body.removeInfo(); // twice
    body.removeConnection();
    EXPECT_EQ(body.phones().clear(), 0u);
}

TEST(CppSession, LinesAreReplacedByTextsOfTheirOwn) {
    Body body = decoded(kEveryLine);
    EXPECT_DONE(body.setSessionName(body.sessionName().substr(7)));
    EXPECT_DONE(body.setInfo(body.info()->substr(6)));
    Origin origin = body.origin();
    origin.userName = origin.address;
    EXPECT_DONE(body.setOrigin(origin));
    EXPECT_EQ(body.sessionName(), "call");
    EXPECT_EQ(body.info(), "everything");
    EXPECT_EQ(body.origin().userName, "host.example.com");
    EXPECT_EQ(body.origin().sessionId, "2890844526");
    EXPECT_DONE(body.emails().add(body.emails()[0]));
    EXPECT_EQ(body.emails()[2], "alice@example.com");
}

TEST(CppSession, TextsThatNoLineCarriesAreRefused) {
    Body body = decoded(kPlain);
    const char *const lineEnd = "a text holds a line end or a NUL";
    const std::string tooLong(SDP_MAX_VALUE + 1, 'x');
    EXPECT_REFUSED(body.setSessionName("x\r\nm=audio 1 RTP/AVP 0"), lineEnd);
    EXPECT_REFUSED(body.setSessionName(""), "a text is empty");
    EXPECT_REFUSED(body.setInfo("x\r"), lineEnd);
    EXPECT_REFUSED(body.setUri(tooLong), "a text is longer than a decoder of this library reads");
    EXPECT_REFUSED(body.setZone("\n"), lineEnd);
    EXPECT_REFUSED(body.setKey("\n"), lineEnd);
    EXPECT_REFUSED(body.emails().add("\n"), lineEnd);
    EXPECT_EQ(written(body), kPlain);
}

TEST(CppSession, UnfitBytesAreFoundWhereverTheyAre) {
    Body body = decoded(kPlain);
    for (std::size_t size = 1; size <= 20; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(size, 'x');
                text[at] = static_cast<char>(byte);
                const bool breaksLine = byte == '\r' || byte == '\n' || byte == '\0';
                const bool endsWord = breaksLine || byte == ' ' || byte == '\t';
                const bool endsToken =
                    endsWord || std::string_view(":;@,()<>").find(text[at]) != std::string::npos;
                using namespace sdpline::internal;
                ASSERT_EQ(refusedText(text).has_value(), breaksLine) << byte << " at " << at;
                ASSERT_EQ(refusedWord(text).has_value(), endsWord) << byte << " at " << at;
                ASSERT_EQ(refusedToken(text).has_value(), endsToken) << byte << " at " << at;
                text.assign(size, '7');
                text[at] = static_cast<char>(byte);
                ASSERT_EQ(refusedDigits(text).has_value(), byte < '0' || byte > '9') << byte;
            }
        }
    }
    EXPECT_REFUSED(body.setOrigin({.sessionId = ""}), "a text is empty");
    EXPECT_REFUSED(body.setOrigin({.sessionId = std::string(SDP_MAX_VALUE + 1, '1')}),
                   "a text is longer than a decoder of this library reads");
}

TEST(CppSession, OriginsThatNoDecoderReadsAreRefused) {
    Body body = decoded(kPlain);
    const char *const digits = "a number holds something else than digits";
    const char *const word = "a word holds a blank, a line end or a NUL";
    EXPECT_REFUSED(body.setOrigin({.userName = "a b"}), word);
    EXPECT_REFUSED(body.setOrigin({.userName = ""}), "a text is empty");
    EXPECT_REFUSED(body.setOrigin({.sessionId = "-1"}), digits);
    EXPECT_REFUSED(body.setOrigin({.sessionVersion = "1a"}), digits);
    EXPECT_REFUSED(body.setOrigin({.address = "a\tb"}), word);
    EXPECT_REFUSED(body.setOrigin({.netType = "ATM"}), "an origin is IN and IP4 or IP6");
    EXPECT_REFUSED(body.setOrigin({.addressType = "NSAP"}), "an origin is IN and IP4 or IP6");
    EXPECT_DONE(body.setOrigin({.addressType = AddressType::Ip6, .address = "::1"}));
    EXPECT_EQ(body.origin().addressType, AddressType::Ip6);
}

TEST(CppSession, ConnectionsByValueAndByText) {
    Body body = decoded(kPlain);
    EXPECT_DONE(body.setConnection("IN IP6 2001:db8::65"));
    EXPECT_EQ(body.connection()->address.text(), "2001:0DB8:0000:0000:0000:0000:0000:0065");
    EXPECT_DONE(body.setConnection({.address = Address::v4({192, 0, 2, 1}), .ttl = 5}));
    EXPECT_EQ(linesOf(written(body), 'c'), "IN IP4 192.0.2.1/5");
    EXPECT_DONE(body.setConnection(*body.connection()));
    EXPECT_EQ(linesOf(written(body), 'c'), "IN IP4 192.0.2.1/5");
    EXPECT_DONE(body.media()[0].setConnection(*body.connection()));
    EXPECT_DONE(body.media()[0].setConnection("IN IP4 192.0.2.9"));
    EXPECT_EQ(body.media()[0].connection()->address, Address::v4({192, 0, 2, 9}));

    const auto refused = body.setConnection("IN IP4 host.example.com");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().line, 1u);
    EXPECT_EQ(refused.error().column, 8u);
    EXPECT_REFUSED(body.setConnection(Connection{}), "a connection has no address");
    EXPECT_REFUSED(body.setConnection({.netType = "ATM", .address = Address::v4({1, 2, 3, 4})}),
                   "a connection is IN and of its address's type");
    EXPECT_REFUSED(
        body.setConnection({.addressType = AddressType::Ip6, .address = Address::v4({1, 2, 3, 4})}),
        "a connection is IN and of its address's type");
    EXPECT_REFUSED(body.setConnection({.address = Address::v4({1, 2, 3, 4}), .addressCount = 2}),
                   "a number of addresses needs a TTL before it");
    EXPECT_REFUSED(body.setConnection({.address = Address::v4({1, 2, 3, 4}), .ttl = SDP_NOT_GIVEN}),
                   "a TTL or a number of addresses is that of none");
    EXPECT_EQ(body.connection()->ttl, 5u);
}

TEST(CppMedia, LinesAreAddedByValueAndByText) {
    auto made = Body::create();
    ASSERT_TRUE(made);
    Body &body = *made;
    const std::array payloads{0u, 8u};
    auto audio = body.media().add(MediaLine{.port = 49170, .payloads = payloads});
    ASSERT_TRUE(audio) << audio.error().message();
    EXPECT_DONE(audio->attributes().add(Direction::SendRecv));
    EXPECT_TRUE(body.media().add(
        {.type = MediaType::Image, .port = 4, .protocol = Protocol::Udptl, .format = "t38"}));
    EXPECT_TRUE(body.media().add(
        {.type = "message", .port = 7, .portCount = 2, .protocol = "TCP/MSRP", .format = "*"}));
    EXPECT_TRUE(body.media().add(MediaLine{.type = MediaType::Video})); // rejected, nothing offered
    EXPECT_TRUE(body.media().add("application 5 TCP t120"));
    EXPECT_TRUE(
        body.media().add({.port = 6, .protocol = "UDP/TLS/RTP/SAVPF", .payloads = payloads}));
    EXPECT_EQ(linesOf(written(body), 'm'),
              "audio 49170 RTP/AVP 0 8|image 4 udptl t38|message 7/2 TCP/MSRP *|"
              "video 0 RTP/AVP|application 5 TCP t120|audio 6 UDP/TLS/RTP/SAVPF 0 8");
    EXPECT_EQ(linesOf(written(body), 'a'), "sendrecv");

    const DecodeOptions family{.rtpFamily = true};
    EXPECT_FALSE(body.media().add("audio 7 UDP/TLS/RTP/SAVPF 111 0"));
    const auto ofFamily = body.media().insert(0, "audio 7 UDP/TLS/RTP/SAVPF 111 0", family);
    ASSERT_TRUE(ofFamily);
    EXPECT_EQ(ofFamily->payloads().size(), 2u);
    EXPECT_TRUE(body.media().remove(*ofFamily));
    const auto last = body.media().add("audio 7 RTP/AVPF 111 0", family);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->line().payloads.size(), 2u);
    EXPECT_TRUE(body.media().remove(*last));

    const auto refused = body.media().add("audio 1 RTP/AVP x");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().column, 17u);
    EXPECT_EQ(body.media().size(), 6u);
}

TEST(CppMedia, LinesThatNoDecoderReadsAreRefused) {
    Body body = decoded(kPlain);
    const std::array<std::uint32_t, 101> many{};
    const auto add = [&](const MediaLine &line) { return body.media().add(line); };
    EXPECT_REFUSED(add({.type = "a b"}), "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(add({.type = MediaType::Other}), "a text is empty");
    EXPECT_REFUSED(add({.type = MediaType{9}}), "a text is empty");
    EXPECT_REFUSED(add({.protocol = "RTP AVP"}), "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(add({.port = 65536, .payloads = std::span(many).first(1)}),
                   "a port is above 65535");
    EXPECT_REFUSED(add({.port = 1}), "there are no payload numbers");
    EXPECT_REFUSED(add({.protocol = "x"}), "there are no payload numbers");
    EXPECT_REFUSED(add({.port = 1, .payloads = many}), "there are more than 100 payload numbers");
    EXPECT_TRUE(add({.port = 1, .payloads = std::span(many).first(100)}));
    EXPECT_REFUSED(add({.protocol = Protocol::Udp, .payloads = std::span(many).first(1)}),
                   "the protocol takes a format word, no payload numbers");
    EXPECT_REFUSED(add({.format = "t38"}), "the protocol takes payload numbers, no format word");
    EXPECT_REFUSED(add({.protocol = Protocol::Udp, .format = "t120"}),
                   "the format t120 goes over TCP only");
    EXPECT_REFUSED(add({.protocol = Protocol::Udp, .format = "a;b"}),
                   "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(add({.protocol = Protocol::Udp, .format = Format::Other}), "a text is empty");
    EXPECT_EQ(body.media().size(), 2u);
}

TEST(CppMedia, TheLineChanges) {
    Body body = decoded(kPlain);
    const MediaEditor media = body.media()[0];
    EXPECT_DONE(media.setPort(5004));
    EXPECT_DONE(media.setPort(5006, 2));
    EXPECT_EQ(linesOf(written(body), 'm'), "audio 5006/2 RTP/AVP 0");
    EXPECT_DONE(media.setPort(5006, 0));
    EXPECT_EQ(media.portCount(), 1u);
    EXPECT_DONE(media.setPayloads(std::array{8u, 0u, 101u}));
    EXPECT_DONE(media.setPayloads(media.payloads().subspan(1))); // from itself
    EXPECT_EQ(linesOf(written(body), 'm'), "audio 5006 RTP/AVP 0 101");
    EXPECT_REFUSED(media.setPayloads({}), "there are no payload numbers");
    EXPECT_REFUSED(media.setPort(70000), "a port is above 65535");
    EXPECT_DONE(media.setPort(0));
    EXPECT_DONE(media.setPayloads({}));
    EXPECT_EQ(linesOf(written(body), 'm'), "audio 0 RTP/AVP");
    EXPECT_REFUSED(media.setPort(1), "there are no payload numbers");

    EXPECT_DONE(media.setLine({.type = "text", .port = 9, .protocol = "x/y", .format = "z"}));
    EXPECT_DONE(media.setLine(media.line())); // from itself
    EXPECT_EQ(linesOf(written(body), 'm'), "text 9 x/y z");
}

TEST(CppMedia, TheLinesBelowChange) {
    Body body = decoded(kPlain);
    const MediaEditor media = body.media()[0];
    EXPECT_DONE(media.setInfo("Speech"));
    EXPECT_DONE(media.setConnection({.address = Address::v6({0x20, 0x01, 0x0D, 0xB8})}));
    EXPECT_DONE(media.bandwidths().add("AS:64"));
    EXPECT_DONE(media.setKey("prompt"));
    EXPECT_DONE(media.attributes().add("x"));
    EXPECT_EQ(written(body), std::string(kPlain) +
                                 "i=Speech\r\nc=IN IP6 2001:0DB8:0000:0000:0000:0000:0000:0000\r\n"
                                 "b=AS:64\r\nk=prompt\r\na=x\r\n");
    EXPECT_REFUSED(media.setInfo(""), "a text is empty");
    EXPECT_REFUSED(media.setKey("\n"), "a text holds a line end or a NUL");
    media.removeInfo();
    media.removeConnection();
    media.removeKey();
    EXPECT_EQ(media.bandwidths().clear(), 1u);
    EXPECT_EQ(media.attributes().clear(), 1u);
    EXPECT_EQ(written(body), kPlain);
}

TEST(CppMedia, DescriptionsGoWithAllTheirLines) {
    Body body = decoded(kEveryLine);
    const MediaEditor last = body.media().back();
    EXPECT_TRUE(body.media().remove(body.media()[0]));
    EXPECT_EQ(body.media().removeIf([](const Media &one) { return one.type() == "video"; }), 1u);
    EXPECT_EQ(linesOf(written(body), 'm'), "image 49180 udptl t38|message 7000 TCP/MSRP *");
    EXPECT_EQ(last.port(), 7000u); // the others stay where they are
    Body other = decoded(kPlain);
    EXPECT_FALSE(body.media().remove(other.media()[0]));
}

TEST(CppMedia, ALoopOverAnyBodyEditsIt) {
    Body body = decoded(kEveryLine);
    for (const MediaEditor &media : body.media()) {
        EXPECT_DONE(media.setPort(0));
        EXPECT_DONE(media.attributes().setDirection(reversed(body.directionOf(media))));
    }
    EXPECT_EQ(linesOf(written(body), 'm'), "audio 0 RTP/AVP 0 96 101|video 0 RTP/AVP 31|"
                                           "image 0 udptl t38|message 0 TCP/MSRP *");
}

TEST(CppTimes, TheFirstOneIsWritten) {
    auto made = Body::create();
    ASSERT_TRUE(made);
    EXPECT_DONE(made->times().add(10, 20));
    EXPECT_DONE(made->times().add(30, 40));
    EXPECT_EQ(made->times().size(), 2u);
    EXPECT_EQ(made->times()[1].stop(), 40u);
    EXPECT_EQ(linesOf(written(*made), 't'), "10 20");
}

TEST(CppMemory, WhatIsReplacedIsGivenBack) {
    const support::Held before = support::Held::now();
    {
        Body body = decoded(kEveryLine);
        const std::string longText(900, 'x');
        const auto turn = [&] {
            EXPECT_DONE(body.setSessionName(longText));
            EXPECT_DONE(body.setInfo(longText));
            EXPECT_DONE(body.setOrigin({.userName = longText}));
            EXPECT_DONE(body.setConnection("IN IP4 192.0.2.1"));
            EXPECT_DONE(body.emails().add(longText));
            EXPECT_EQ(body.emails().clear(), 1u);
            EXPECT_DONE(body.media()[0].setLine({.type = "other", .port = 0}));
            auto added = body.media().add("message 1 TCP/MSRP *");
            ASSERT_TRUE(added);
            EXPECT_DONE(added->setInfo(longText));
            EXPECT_DONE(added->bandwidths().add(longText));
            EXPECT_DONE(added->attributes().add(AttributeType::Tool, longText));
            EXPECT_DONE(added->attributes().setDirection(Direction::SendOnly));
            EXPECT_TRUE(body.media().remove(*added));
        };
        body.emails().clear();
        turn();
        turn(); // the first one replaced shorter texts
        const support::Held once = support::Held::now();
        for (int i = 0; i < 200; ++i) {
            turn();
        }
        EXPECT_EQ(support::Held::now(), once); // the block no longer grows
    }
    EXPECT_EQ(support::Held::now(), before);
}

TEST(CppSession, TextsGoWhereTheyAreInserted) {
    Body body = decoded(kPlain);
    auto emails = body.emails();
    EXPECT_DONE(emails.insert(0, "b@x"));
    EXPECT_DONE(emails.insert(0, "a@x"));
    EXPECT_DONE(emails.insert(1, emails[0]));
    EXPECT_EQ(linesOf(written(body), 'e'), "a@x|a@x|b@x");
    EXPECT_DEATH((void)emails.insert(4, "x"), "");
}

TEST(CppTimes, RepeatsAreWrittenAndReadBack) {
    Body body = decoded(kPlain);
    auto times = body.times();
    times[0].set(3034423619, 3042462419);
    EXPECT_DONE(times[0].addRepeat(
        {{7, TimeUnit::Days}, {1, TimeUnit::Hours}, {0}, {25, TimeUnit::Hours}}));
    EXPECT_DONE(times[0].addRepeat({{604800}, {60, TimeUnit::Minutes}, {0}}));
    EXPECT_EQ(linesOf(written(body), 't'), "3034423619 3042462419");
    const std::string repeats = "7d 1h 0s 25h|604800s 60m 0s";
    EXPECT_EQ(linesOf(written(body), 'r'), repeats);
    EXPECT_EQ(linesOf(written(decoded(written(body))), 'r'), repeats);

    const char *const few = "an r= line has an interval, a duration and at least one offset";
    EXPECT_REFUSED(times[0].addRepeat({}), few);
    EXPECT_REFUSED(times[0].addRepeat({{1}, {2}}), few);
    EXPECT_REFUSED(times[0].addRepeat({{1}, {2}, {3, TimeUnit{9}}}), "a code has no word");
    EXPECT_EQ(times[0].repeats().size(), 2u);

    EXPECT_EQ(times[0].clearRepeats(), 2u);
    EXPECT_EQ(times[0].clearRepeats(), 0u);
    EXPECT_EQ(linesOf(written(body), 'r'), "");
    EXPECT_DONE(times[0].addRepeat({{1}, {2}, {3}}));
    EXPECT_EQ(linesOf(written(body), 'r'), "1s 2s 3s");
    EXPECT_EQ(times.clear(), 1u); // with its r= lines
}

TEST(CppMedia, AWholeDescriptionIsCopied) {
    const Body offer = decoded(kEveryLine);
    Body answer = decoded(kPlain);
    const auto added = answer.media().add(offer.media()[0]);
    ASSERT_TRUE(added) << added.error();
    EXPECT_TRUE(sameContent(*added, offer.media()[0]));
    EXPECT_NE(added->record(), offer.media()[0].record());
    EXPECT_EQ(added->info()->data() == offer.media()[0].info()->data(), false);

    const auto first = answer.media().insert(
        0, offer.media()[0], [](const Attribute &line) { return line.as<Fmtp>().has_value(); });
    ASSERT_TRUE(first) << first.error();
    EXPECT_EQ(first->attributes().size(), 2u);
    EXPECT_EQ(first->key(), "clear:secret");
    const auto bare = answer.media().add(offer.media()[0], [](const Attribute &) { return false; });
    ASSERT_TRUE(bare);
    EXPECT_TRUE(bare->attributes().empty());
    EXPECT_DONE(bare->attributes().add("x"));
    const auto plain = answer.media().add(offer.media()[3], [](const Attribute &) { return true; });
    ASSERT_TRUE(plain);
    EXPECT_TRUE(plain->attributes().record() == nullptr);

    const auto twice = answer.media().insert(1, answer.media()[2]); // of the same body
    ASSERT_TRUE(twice);
    EXPECT_EQ(linesOf(written(answer), 'm'),
              "audio 49170 RTP/AVP 0 96 101|audio 49170 RTP/AVP 0 96 101|audio 49170 RTP/AVP 0|"
              "audio 49170 RTP/AVP 0 96 101|audio 49170 RTP/AVP 0 96 101|message 7000 TCP/MSRP *");
    EXPECT_TRUE(decoded(written(answer)) == answer);
}

TEST(CppMedia, DescriptionsGoWhereTheyAreInserted) {
    Body body = decoded(kPlain);
    EXPECT_TRUE(body.media().insert(0, {.port = 4, .payloads = std::array{8u}}));
    EXPECT_TRUE(body.media().insert(2, "video 6 RTP/AVP 31"));
    EXPECT_TRUE(body.media().insert(1, body.media()[2]));
    EXPECT_EQ(linesOf(written(body), 'm'),
              "audio 4 RTP/AVP 8|video 6 RTP/AVP 31|audio 49170 RTP/AVP 0|video 6 RTP/AVP 31");
    EXPECT_DEATH((void)body.media().insert(5, "video 6 RTP/AVP 31"), "");
    EXPECT_EQ(body.media().removeIf([](const Media &media) { return media.type() == "video"; }),
              2u);
}

TEST(CppMedia, PayloadsAreListed) {
    Body body = decoded(kEveryLine);
    const MediaEditor audio = body.media()[0];
    EXPECT_DONE(audio.setPayloads({8, 0}));
    EXPECT_EQ(linesOf(written(body), 'm').substr(0, 23), "audio 49170 RTP/AVP 8 0");
    EXPECT_EQ(audio.attributes().size(), 6u); // nothing else changes
    const MediaEditor image = body.media()[2];
    EXPECT_REFUSED(image.setPayloads({0}), "the protocol takes a format word, no payload numbers");
}
