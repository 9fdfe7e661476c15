// Addresses from and to text.
#include <array>
#include <utility>

#include "cpp/cpptest.hpp"

using namespace cpptest;
using sdpline::Address;

namespace {

std::string shortened(std::string_view text) {
    const auto address = Address::fromText(text);
    return address ? address->shortText() : address.error().message();
}

} // namespace

TEST(CppAddress, Ipv4ComesAndGoesAsText) {
    const auto address = Address::fromText("192.0.2.255");
    ASSERT_TRUE(address);
    EXPECT_EQ(*address, Address::v4({192, 0, 2, 255}));
    EXPECT_EQ(address->text(), "192.0.2.255");
    EXPECT_EQ(address->shortText(), "192.0.2.255");
    EXPECT_EQ(Address::fromText("0.0.0.0")->text(), "0.0.0.0");
    EXPECT_EQ(Address().text(), "");
    EXPECT_EQ(Address().shortText(), "");
}

TEST(CppAddress, Ipv6ComesInEveryForm) {
    const Address one = Address::v6({0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    for (const char *const text :
         {"2001:db8::1", "2001:0DB8:0:0:0:0:0:1", "2001:db8:0:0::1", "2001:db8::0:1",
          "2001:db8::0.0.0.1", "2001:db8:0:0:0:0:0.0.0.1"}) {
        const auto address = Address::fromText(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(*address, one) << text;
    }
    EXPECT_EQ(one.text(), "2001:0DB8:0000:0000:0000:0000:0000:0001");
    EXPECT_EQ(Address::fromText(one.text()).value_or(Address()), one);
    EXPECT_EQ(*Address::fromText("1::"), Address::v6({0, 1}));
    EXPECT_EQ(*Address::fromText("1:2:3:4:5:6:7::"),
              Address::v6({0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7}));
    EXPECT_EQ(*Address::fromText("::2:3:4:5:6:7:8"),
              Address::v6({0, 0, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8}));
}

// RFC 5952 section 4
TEST(CppAddress, TheShortFormIsTheRecommendedOne) {
    constexpr std::pair<const char *, const char *> kForms[] = {
        {"::", "::"},
        {"::1", "::1"},
        {"1::", "1::"},
        {"2001:DB8::1", "2001:db8::1"},
        {"2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"}, // one group is not shortened
        {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},    // of two runs the first
        {"2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},          // the longest
        {"0:0:1:2:3:4:5:6", "::1:2:3:4:5:6"},
        {"1:2:3:4:5:6:0:0", "1:2:3:4:5:6::"},
        {"::ffff:192.0.2.1", "::ffff:192.0.2.1"}, // section 5
        {"::fffe:192.0.2.1", "::fffe:c000:201"},
        {"ABCD:EF01:2345:6789:abcd:ef01:2345:6789", "abcd:ef01:2345:6789:abcd:ef01:2345:6789"},
    };
    for (const auto &[text, expected] : kForms) {
        EXPECT_EQ(shortened(text), expected);
        EXPECT_EQ(shortened(expected), expected);
    }
}

TEST(CppAddress, WhatIsNoAddressIsRefused) {
    for (const char *const text : {"",
                                   "1",
                                   "1.2.3",
                                   "1.2.3.",
                                   "1.2.3.4.",
                                   "1.2.3.4.5",
                                   ".1.2.3",
                                   "1..2.3",
                                   "1.2.3.256",
                                   "01.2.3.4",
                                   "1.2.3.4 ",
                                   " 1.2.3.4",
                                   "1.2.3.a",
                                   "1.2.3.-4",
                                   "host",
                                   ":",
                                   ":::",
                                   "1",
                                   "1:2:3:4:5:6:7",
                                   "1:2:3:4:5:6:7:8:9",
                                   "1:2:3:4:5:6:7:",
                                   ":1:2:3:4:5:6:7",
                                   "1::2::3",
                                   "::1:2:3:4:5:6:7:8",
                                   "1:2:3:4:5:6:7:8::",
                                   "12345::",
                                   "g::",
                                   "1:2:3:4:5:6:7:1.2.3.4",
                                   "::1.2.3",
                                   "::1.2.3.4:5",
                                   "::1.2.3.4.5",
                                   "fe80::1%eth0",
                                   "[::1]",
                                   "::1 ",
                                   "1:2:3:4::5:6:7:8"}) {
        EXPECT_REFUSED(Address::fromText(text), "a text is neither an IPv4 nor an IPv6 address");
    }
}

TEST(CppAddress, AConnectionTakesItWithoutDecoding) {
    sdpline::Body body = decoded(kPlain);
    EXPECT_DONE(body.setConnection(Address::v4({192, 0, 2, 7})));
    EXPECT_DONE(body.media()[0].setConnection(*Address::fromText("::1")));
    EXPECT_EQ(linesOf(written(body), 'c'),
              "IN IP4 192.0.2.7|IN IP6 0000:0000:0000:0000:0000:0000:0000:0001");
    EXPECT_REFUSED(body.setConnection(Address()), "a connection has no address");
    EXPECT_EQ(body.connection()->address.shortText(), "192.0.2.7");
}
