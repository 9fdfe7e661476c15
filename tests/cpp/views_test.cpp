// Views of lines: every kind of line, and the ranges over them.
#include <algorithm>
#include <array>
#include <iterator>
#include <ranges>
#include <utility>
#include <vector>

#include "cpp/cpptest.hpp"

using namespace cpptest;
using namespace sdpline;

static_assert(std::ranges::random_access_range<Texts>);
static_assert(std::ranges::random_access_range<Times>);
static_assert(std::ranges::random_access_range<Repeats>);
static_assert(std::ranges::random_access_range<Repeat>);
static_assert(std::ranges::random_access_range<MediaList>);
static_assert(std::ranges::random_access_range<Attributes>);
static_assert(std::ranges::random_access_range<TextsEditor>);
static_assert(std::ranges::random_access_range<TimesEditor>);
static_assert(std::ranges::random_access_range<MediaListEditor>);
static_assert(std::ranges::random_access_range<AttributesEditor>);
static_assert(std::ranges::sized_range<Attributes> && std::ranges::view<Attributes>);
static_assert(std::ranges::borrowed_range<Attributes> && std::ranges::borrowed_range<Texts>);
static_assert(std::ranges::borrowed_range<AttributesEditor>);
static_assert(std::ranges::common_range<Attributes>);
static_assert(std::ranges::forward_range<ValuesOf<RtpMap>> && std::ranges::view<ValuesOf<RtpMap>>);
static_assert(std::sized_sentinel_for<Texts::iterator, Texts::iterator>);

TEST(CppViews, TheSessionLines) {
    const Body body = decoded(kEveryLine);
    EXPECT_EQ(body.version(), 0u);
    EXPECT_EQ(body.origin().userName, "alice");
    EXPECT_EQ(body.origin().sessionId, "2890844526");
    EXPECT_EQ(body.origin().sessionVersion, "2890842807");
    EXPECT_EQ(body.origin().netType, NetType::In);
    EXPECT_EQ(body.origin().addressType, AddressType::Ip4);
    EXPECT_EQ(body.origin().address, "host.example.com");
    EXPECT_EQ(body.sessionName(), "Weekly call");
    EXPECT_EQ(body.info(), "About everything");
    EXPECT_EQ(body.uri(), "http://example.com/call");
    ASSERT_EQ(body.emails().size(), 2u);
    EXPECT_EQ(body.emails()[1], "bob@example.com (Bob)");
    EXPECT_EQ(body.phones().front(), "+1 617 555 6011");
    EXPECT_EQ(body.bandwidths().back(), "CT:256");
    EXPECT_EQ(body.zone(), "2882844526 -1h");
    EXPECT_EQ(body.key(), "prompt");
    EXPECT_EQ(body.attributes().size(), 2u);
    EXPECT_EQ(body.media().size(), 4u);
}

TEST(CppViews, AbsentLinesAreNothing) {
    const Body body = decoded("v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nm=audio 1 RTP/AVP 0\r\n");
    EXPECT_FALSE(body.info() || body.uri() || body.zone() || body.key() || body.connection());
    EXPECT_TRUE(body.emails().empty() && body.phones().empty() && body.bandwidths().empty());
    EXPECT_TRUE(body.times().empty() && body.attributes().empty());
    EXPECT_EQ(body.emails().record(), nullptr);
    EXPECT_EQ(body.emails().begin(), body.emails().end());
    const Media media = body.media()[0];
    EXPECT_FALSE(media.info() || media.connection() || media.key());
    EXPECT_TRUE(media.bandwidths().empty() && media.attributes().empty());
}

TEST(CppViews, AConnectionHasItsAddressTtlAndCount) {
    const Body body = decoded(kEveryLine);
    const auto connection = body.connection();
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->netType, NetType::In);
    EXPECT_EQ(connection->addressType, AddressType::Ip4);
    EXPECT_TRUE(connection->address.isV4());
    EXPECT_EQ(connection->address, Address::v4({224, 2, 1, 1}));
    EXPECT_EQ(connection->address.text(), "224.2.1.1");
    EXPECT_EQ(connection->ttl, 127u);
    EXPECT_EQ(connection->addressCount, 3u);

    const auto own = body.media()[0].connection();
    ASSERT_TRUE(own && own->address.isV6());
    EXPECT_EQ(own->address.text(), "2001:0DB8:0000:0000:0000:0000:0000:0065");
    EXPECT_EQ(own->address.octets().size(), 16u);
    EXPECT_FALSE(own->ttl || own->addressCount);
    EXPECT_TRUE(Address().empty());
    EXPECT_EQ(Address().text(), "");
}

TEST(CppViews, WhatHoldsForAMediaIsItsOwnLineOrTheSessions) {
    const Body body = decoded(kEveryLine);
    EXPECT_TRUE(body.connectionOf(body.media()[0])->address.isV6());
    EXPECT_TRUE(body.connectionOf(body.media()[1])->address.isV4());
    EXPECT_EQ(body.directionOf(body.media()[0]), Direction::SendOnly);
    EXPECT_EQ(body.directionOf(body.media()[1]), Direction::RecvOnly);
    const Body plain = decoded(kPlain);
    EXPECT_EQ(plain.directionOf(plain.media()[0]), Direction::SendRecv);
    EXPECT_FALSE(plain.connectionOf(plain.media()[0]));
}

TEST(CppViews, TimesHaveTheirRepeats) {
    const Body body = decoded(kEveryLine);
    ASSERT_EQ(body.times().size(), 1u);
    const Time time = body.times()[0];
    EXPECT_EQ(time.start(), 3034423619u);
    EXPECT_EQ(time.stop(), 3042462419u);
    ASSERT_EQ(time.repeats().size(), 2u);
    const Repeat repeat = time.repeats()[0];
    ASSERT_EQ(repeat.size(), 4u);
    EXPECT_EQ(repeat[0].unit, TimeUnit::Days);
    EXPECT_EQ(repeat[0].seconds(), 604800u);
    EXPECT_EQ(repeat[1].seconds(), 3600u);
    EXPECT_EQ(repeat[3].value, 25u);
    EXPECT_EQ(time.repeats()[1][1].seconds(), 3600u); // 60m
    EXPECT_EQ((TypedTime{5, TimeUnit::Seconds}.seconds()), 5u);
    EXPECT_EQ((TypedTime{0xFFFFFFFF, TimeUnit::Days}.seconds()), 86400u * 0xFFFFFFFFull);
}

TEST(CppViews, TheMediaLines) {
    const Body body = decoded(kEveryLine);
    const Media audio = body.media()[0];
    EXPECT_EQ(audio.type(), MediaType::Audio);
    EXPECT_EQ(audio.type(), "audio");
    EXPECT_EQ(audio.port(), 49170u);
    EXPECT_EQ(audio.portCount(), 1u);
    EXPECT_EQ(audio.protocol(), Protocol::RtpAvp);
    EXPECT_EQ(audio.format(), Format::Payloads);
    EXPECT_TRUE(std::ranges::equal(audio.payloads(), std::array{0u, 96u, 101u}));
    EXPECT_EQ(audio.info(), "Speech");
    EXPECT_EQ(audio.bandwidths()[0], "AS:64");
    EXPECT_EQ(audio.key(), "clear:secret");
    EXPECT_EQ(body.media()[1].portCount(), 2u);

    const Media image = body.media()[2];
    EXPECT_EQ(image.protocol(), Protocol::Udptl);
    EXPECT_EQ(image.format(), Format::T38);
    EXPECT_EQ(image.format(), "t38");
    EXPECT_TRUE(image.payloads().empty());

    const Media message = body.media()[3];
    EXPECT_EQ(message.type(), MediaType::Other);
    EXPECT_EQ(message.type(), "message");
    EXPECT_EQ(message.protocol(), Protocol::Other);
    EXPECT_EQ(message.protocol().text(), "TCP/MSRP");
    EXPECT_EQ(message.format(), "*");
    EXPECT_EQ(message.line().format.text(), "*");
    EXPECT_TRUE(message.payloads().empty());
}

TEST(CppViews, AlgorithmsWorkOnTheRanges) {
    const Body body = decoded(kEveryLine);
    const auto emails = body.emails();
    EXPECT_EQ(std::ranges::find(emails, "alice@example.com"), emails.begin());
    EXPECT_EQ(std::ranges::find(emails, "nobody"), emails.end());
    const auto media = body.media();
    EXPECT_EQ(std::ranges::count(media, 49180u, &Media::port), 1);
    EXPECT_EQ(std::ranges::distance(media), 4);
    std::vector<std::string_view> reversed(std::make_reverse_iterator(emails.end()),
                                           std::make_reverse_iterator(emails.begin()));
    EXPECT_EQ(reversed.front(), "bob@example.com (Bob)");
    const auto attributes = media[0].attributes();
    EXPECT_TRUE(std::ranges::any_of(
        attributes, [](const Attribute &one) { return one.type() == AttributeType::PTime; }));
    const auto maps = attributes.each<RtpMap>();
    EXPECT_EQ(std::ranges::distance(maps), 2);
}

TEST(CppViews, IteratorsGoEveryWay) {
    const Body body = decoded(kEveryLine);
    const auto media = body.media();
    auto at = media.begin();
    EXPECT_EQ(at->port(), 49170u);
    EXPECT_EQ(at++->port(), 49170u);
    EXPECT_EQ((*at--).port(), 51372u);
    EXPECT_EQ((++at)->port(), 51372u);
    EXPECT_EQ(at[1].port(), 49180u);
    EXPECT_EQ((at + 2)->port(), 7000u);
    EXPECT_EQ((2 + at)->port(), 7000u);
    EXPECT_EQ((at - 1)->port(), 49170u);
    EXPECT_EQ((at += 2) - media.begin(), 3);
    EXPECT_EQ(at -= 3, media.begin());
    EXPECT_LT(at, media.end());
    EXPECT_EQ(--(++at), media.begin());
    EXPECT_EQ(Texts::iterator(), Texts::iterator());
}

TEST(CppViews, ABorrowedIteratorOutlivesItsRange) {
    const Body body = decoded(kEveryLine);
    const auto found = std::ranges::find(body.emails(), "bob@example.com (Bob)");
    EXPECT_EQ(*found, "bob@example.com (Bob)");
    const auto map =
        std::ranges::find(body.media()[0].attributes().each<RtpMap>(), 101u, &RtpMap::payload);
    EXPECT_EQ(map->name, "telephone-event");
}

TEST(CppViewsDeathTest, AnIndexBeyondAListEndsTheProgram) {
    const Body body = decoded(kPlain);
    EXPECT_DEATH((void)body.media()[1], "");
    EXPECT_DEATH((void)body.emails()[0], "");
    EXPECT_DEATH((void)body.emails().front(), "");
    EXPECT_DEATH((void)body.emails().back(), "");
}

TEST(CppViews, ACountWithoutAnArrayIsEmpty) {
    Body body = decoded(kPlain);
    SDPRtpPayLoads &payloads = body.record()
                                   ->stMediaSet.ppstMediaDescs[0]
                                   ->stMediaField.stMediaFmt.unMediaFmt.stRtpPayLoads;
    payloads = {3, nullptr};
    EXPECT_TRUE(body.media()[0].payloads().empty());
    body.record()->stMediaSet.ppstMediaDescs = nullptr;
    EXPECT_TRUE(std::as_const(body).media().empty());
}

TEST(CppViews, NumbersThatAreNoCodeComeThrough) {
    Body body = decoded(kPlain);
    SDPMediaField &field = body.record()->stMediaSet.ppstMediaDescs[0]->stMediaField;
    field.stMedia.enMediaType = 99;
    field.stProto.enProto = 0;
    field.stMediaFmt.enFmtType = 7;
    const Media media = std::as_const(body).media()[0];
    EXPECT_EQ(static_cast<std::uint32_t>(media.type().code()), 99u);
    EXPECT_EQ(media.type().text(), "");
    EXPECT_EQ(media.protocol().text(), "");
    EXPECT_EQ(media.format().text(), "");
}
