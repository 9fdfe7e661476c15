// IPv6 text to bytes: the pattern, the token table, and the walk over both. Every expectation was
// computed by hand; results that look wrong are intended, because the library must not change them.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "sdpline/sdpinternals.h"
#include "support/each.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"
#include "support/securefaults.hpp"

namespace {

using support::Guarded;
using support::LogRecorder;
using support::SecureFaults;
using Texts = std::vector<std::string>;

constexpr uint32_t kTooManyColons = 0x06000401; // file 6, class 1
constexpr uint32_t kBadAddress = 104;
constexpr uint32_t kMissingArgument = 8;

// ---- Cutting

struct Cut {
    SDPResult result;
    std::string pattern;
    char slots[SDP_IPV6_TOKENS][4];

    // The text of a token; slots follow each other, so one of four bytes ends in the next.
    std::string token(uint32_t at) const {
        return reinterpret_cast<const char *>(slots) + sizeof slots[0] * at;
    }
};

Cut cut(std::string_view text) {
    const Guarded input(text);
    Cut tokens = {};
    char pattern[SDP_IPV6_PATTERN];
    std::memset(pattern, '?', sizeof pattern);
    uint32_t length = 99;
    tokens.result = SdpTokanizeIPv6Str(input.text().pcData, input.text().ulLen, tokens.slots,
                                       pattern, sizeof pattern, &length);
    if (tokens.result == 0) {
        EXPECT_EQ(length, std::strlen(pattern));
        tokens.pattern = pattern;
    }
    return tokens;
}

std::string patternOf(std::string_view text) {
    return cut(text).pattern;
}

TEST(TokanizeIPv6Str, TellsGroupsColonsAndDots) {
    support::expectEach(patternOf, {{"2001:db8::1", "THTHHT"},
                                    {"::ffff:192.0.2.1", "HHTHTDTDTDT"},
                                    {"fe80::", "THH"},
                                    {"::", "HH"},
                                    {"Zz9", "T"}});
}

TEST(TokanizeIPv6Str, KeepsTheTextOfEachGroup) {
    const Cut tokens = cut("2001:db8::1.25");
    EXPECT_EQ(tokens.pattern, "THTHHTDT");
    EXPECT_EQ(tokens.token(0), "2001");
    EXPECT_EQ(tokens.token(2), "db8");
    EXPECT_EQ(tokens.token(5), "1");
    EXPECT_EQ(tokens.token(7), "25");
}

TEST(TokanizeIPv6Str, LeavesSlotsOfMarksEmpty) {
    const Cut tokens = cut("1:.2");
    EXPECT_EQ(tokens.pattern, "THDT");
    EXPECT_EQ(tokens.token(1), "");
    EXPECT_EQ(tokens.token(2), "");
    EXPECT_EQ(tokens.token(3), "2");
    EXPECT_EQ(tokens.token(39), "");
}

TEST(TokanizeIPv6Str, EndsAGroupOfFourInTheNextSlot) {
    const Cut tokens = cut("1234:5");
    EXPECT_EQ(tokens.pattern, "THT");
    EXPECT_EQ(std::string(tokens.slots[0], 4), "1234");
    EXPECT_EQ(tokens.slots[1][0], '\0');
}

TEST(TokanizeIPv6Str, DropsTheFifthDigit) {
    const Cut tokens = cut("12345:6");
    EXPECT_EQ(tokens.pattern, "THT");
    EXPECT_EQ(tokens.token(0), "1234");
    EXPECT_EQ(tokens.token(2), "6");
    support::expectEach(patternOf, {{"12345", "T"}, {"12345.", "TD"}});
}

// The second group's bytes take the place of the first one's NUL.
TEST(TokanizeIPv6Str, StartsAnotherGroupAfterTheFifthDigit) {
    const Cut tokens = cut("123456:7");
    EXPECT_EQ(tokens.pattern, "TTHT");
    EXPECT_EQ(std::string(tokens.slots[0], 4), "1234");
    EXPECT_EQ(tokens.token(1), "6");
    support::expectEach(patternOf, {{"1234567890", "TT"}, {"12345678901", "TTT"}});
}

TEST(TokanizeIPv6Str, SkipsOtherBytes) {
    support::expectEach(patternOf, {{"1-:\xff/2", "THT"}, {"a b", "TT"}, {"%[]@`{", ""}});
}

TEST(TokanizeIPv6Str, EndsAtANul) {
    support::expectEach(
        patternOf, {{std::string_view("1:2\0:3", 6), "THT"}, {std::string_view("\0:3", 3), ""}});
}

// The texts end at the end of the readable memory.
TEST(TokanizeIPv6Str, LooksAtNoByteAfterTheLength) {
    support::expectEach(patternOf, {{"1", "T"}, {"1234", "T"}, {"1:", "TH"}});
    const std::string text = "1:23";
    Cut tokens = {};
    char pattern[SDP_IPV6_PATTERN];
    uint32_t length = 0;
    ASSERT_EQ(SdpTokanizeIPv6Str(text.c_str(), 3, tokens.slots, pattern, sizeof pattern, &length),
              0u);
    EXPECT_STREQ(pattern, "THT");
    EXPECT_EQ(tokens.token(2), "2");
}

TEST(TokanizeIPv6Str, FailsAtTheNinthColon) {
    EXPECT_EQ(cut("::::::::").pattern, "HHHHHHHH");
    EXPECT_EQ(cut(":::::::::").result, kTooManyColons);
    EXPECT_EQ(cut("1:2:3:4:5:6:7:8:9").pattern, "THTHTHTHTHTHTHTHT");
    EXPECT_EQ(cut("1:2:3:4:5:6:7:8:9:").result, kTooManyColons);
}

TEST(TokanizeIPv6Str, DoesNotLogTheNinthColon) {
    LogRecorder log;
    cut(":::::::::");
    EXPECT_TRUE(log.entries().empty());
}

TEST(TokanizeIPv6Str, KeepsTwentyTwoLetters) {
    support::expectEach(patternOf, {{std::string(22, '.'), std::string(22, 'D')},
                                    {std::string(23, '.'), std::string(22, 'D')},
                                    {"1.2.3.4.5.6.7.8.9.a.b.c.d", "TDTDTDTDTDTDTDTDTDTDTD"}});
}

// A step that begins with 21 letters writes two more: a group and its end.
TEST(TokanizeIPv6Str, CutsTheTwentyThirdLetter) {
    const Cut tokens = cut(".1.2.3.4.5.6.7.8.9.a.b.c");
    EXPECT_EQ(tokens.pattern, "DTDTDTDTDTDTDTDTDTDTDT");
    EXPECT_EQ(tokens.token(21), "b");
}

TEST(TokanizeIPv6Str, ReadsNothingAfterTheLimit) {
    const std::string letters = "::::::::" + std::string(14, '.'); // 22 of them
    EXPECT_EQ(patternOf(letters + ":::"), "HHHHHHHH" + std::string(14, 'D'));
}

TEST(TokanizeIPv6Str, FailsAtANinthColonThatWouldBeCut) {
    const std::string letters = "::::::::" + std::string(13, '.'); // 21 of them
    EXPECT_EQ(patternOf(letters + "a."), "HHHHHHHH" + std::string(13, 'D') + "T");
    EXPECT_EQ(cut(letters + "a:").result, kTooManyColons);
}

TEST(TokanizeIPv6Str, RefusesAMissingArgumentWithABareEight) {
    char slots[SDP_IPV6_TOKENS][4];
    char pattern[SDP_IPV6_PATTERN];
    uint32_t length = 99;
    LogRecorder log;
    EXPECT_EQ(SdpTokanizeIPv6Str(nullptr, 5, slots, pattern, 23, &length), kMissingArgument);
    EXPECT_EQ(SdpTokanizeIPv6Str("::1", 0, slots, pattern, 23, &length), kMissingArgument);
    EXPECT_EQ(SdpTokanizeIPv6Str("::1", 3, nullptr, pattern, 23, &length), kMissingArgument);
    EXPECT_EQ(SdpTokanizeIPv6Str("::1", 3, slots, nullptr, 23, &length), kMissingArgument);
    EXPECT_EQ(SdpTokanizeIPv6Str("::1", 3, slots, pattern, 23, nullptr), kMissingArgument);
    EXPECT_EQ(length, 99u);
    const std::string entry = "3 sdputils SdpTokanizeIPv6Str 0 \"iLength:";
    EXPECT_EQ(log.texts(),
              (Texts{entry + "5\"", entry + "0\"", entry + "3\"", entry + "3\"", entry + "3\""}));
}

TEST(TokanizeIPv6Str, ReportsATokenTableThatCannotBeCopied) {
    SecureFaults::reset();
    SecureFaults::failAt(1);
    const Cut tokens = cut("1:2");
    EXPECT_EQ(tokens.result, 0u);
    EXPECT_EQ(tokens.pattern, "THT");
    EXPECT_EQ(tokens.token(0), "");
    ASSERT_EQ(SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(SecureFaults::reports()[0].ex);
    EXPECT_EQ(SecureFaults::reports()[0].name, "SdpTokanizeIPv6Str");
    SecureFaults::reset();
}

// ---- Loading

// The address as eight groups of four digits, or "fails" and the code.
std::string load(std::string_view text) {
    const Guarded input(text);
    Guarded address(16);
    std::memset(address.data(), 0xEE, 16);
    const SDPResult result =
        SdpLoadIpV6StringToArray(input.text().pcData, input.text().ulLen, address.data());
    std::string groups;
    for (size_t i = 0; i < 16; ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", address.data()[i]);
        groups += (i % 2 == 0 && i != 0 ? ":" : "") + std::string(digits);
    }
    if (result == 0) {
        return groups;
    }
    EXPECT_EQ(groups, "eeee:eeee:eeee:eeee:eeee:eeee:eeee:eeee") << "written in spite of failure";
    char code[20];
    std::snprintf(code, sizeof code, "fails 0x%08x", result);
    return code;
}

struct Loaded {
    const char *text;
    const char *address; // "::" is zero groups, as many as are missing
};

// Writes the gap of an expectation as zeros.
std::string spelled(std::string address) {
    const size_t gap = address.find("::");
    if (gap == std::string::npos) {
        return address;
    }
    std::string zeros;
    const std::string before = address.substr(0, gap);
    const std::string after = address.substr(gap + 2);
    const size_t groups = (before.size() + 1) / 5 + (after.size() + 1) / 5;
    for (size_t i = groups; i < 8; ++i) {
        zeros += i == groups ? "0000" : ":0000";
    }
    return before + (before.empty() ? "" : ":") + zeros + (after.empty() ? "" : ":") + after;
}

void PrintTo(const Loaded &row, std::ostream *out) {
    *out << row.text;
}

class LoadIpV6 : public testing::TestWithParam<Loaded> {};

TEST_P(LoadIpV6, GivesTheBytes) {
    EXPECT_EQ(load(GetParam().text), spelled(GetParam().address));
}

// clang-format off
constexpr Loaded kPlain[] = {
    {"::1",                       "::0001"},
    {"::",                        "::"},
    {"fe80::",                    "fe80::"},
    {"2001:db8::1",               "2001:0db8::0001"},
    {"1:2:3:4:5:6:7:8",           "0001:0002:0003:0004:0005:0006:0007:0008"},
    {"FFFF:ABCD:ef01:0:0:0:0:9",  "ffff:abcd:ef01:0000:0000:0000:0000:0009"},
    {"1::2:3",                    "0001::0002:0003"},
    {"1:2:3:4:5:6:7::",           "0001:0002:0003:0004:0005:0006:0007:0000"},
    {"::2:3:4:5:6:7:8",           "0000:0002:0003:0004:0005:0006:0007:0008"},
    {"::ffff:192.0.2.1",          "::ffff:c000:0201"},
    {"::192.0.2.1",               "::c000:0201"},
    {"1:2:3:4:5:6:192.0.2.1",     "0001:0002:0003:0004:0005:0006:c000:0201"},
    {"64:ff9b::192.0.2.33",       "0064:ff9b::c000:0221"},
};

// A head that does not fit the shapes ends where it is; a head without a final group keeps
// what it has.
constexpr Loaded kHeads[] = {
    {"1:2",                       "0001:0002::"},
    {"1:2:",                      "0001:0002::"},
    {"abcd",                      "abcd::"},
    {":1",                        "::"},
    {":1:2",                      "::"},
    {".1",                        "::"},
    {"1.2.3.4",                   "0102:0304::"},
    {"1:2.3.4.5",                 "0001:0203:0405::"},
    {"1.2.3.4:5",                 "0102:0304::"},
    {"1.2.3.4.5",                 "0102:0304::"},
    {"1.2.3.4::5",                "0102:0304::0005"},
    {"1.2.3",                     "0001::"},
    {"1.2",                       "0001::"},
    {"1.2::3",                    "::0003"},
    {"1:2:3:4:5:6:7:8:9",         "0001:0002:0003:0004:0005:0006:0007:0008"},
    {"1:2:3:4:5:6:7:8.9",         "0001:0002:0003:0004:0005:0006:0007:0008"},
    {"1:2:3:4:5:6:7:1.2.3.4",     "0001:0002:0003:0004:0005:0006:0007:0102"},
    {"1:2:3:4:5:6:7:8:1.2.3.4",   "0001:0002:0003:0004:0005:0006:0007:0008"},
};

// Groups of more than four, adjacent groups, letters that are no digits, bytes in between.
constexpr Loaded kGroups[] = {
    {"12345::1",                  "1234::0001"},
    {"12345",                     "1234::"},
    {"1:12345:2",                 "0001:1234:0002::"},
    {"123456",                    "1234::"},
    // TTHHT: the head begins with no known shape.
    {"123456::1",                 "::0001"},
    // THTTHT, HHTT, HHTHTT: the first of the two is taken for the last group.
    {"1:123456:2",                "0001:1234::"},
    {"::123456",                  "::1234"},
    {"::1:123456",                "::0001:1234"},
    {"g::1",                      "::0001"},
    {"1g:2z",                     "0001:0002::"},
    {"12g4:5",                    "0012:0005::"},
    {"1-:2",                      "0001:0002::"},
    {"a-b",                       "000a::"},
    {" 1 : 2 ",                   "0001:0002::"},
    {"-",                         "::"},
};

// What follows the gap, walked two letters at a time where no shape fits, while three are
// left; without a final group or a dotted part it is lost.
constexpr Loaded kTails[] = {
    {"a::b::c",                   "000a::"},
    {"::1::2",                    "::"},
    {"a::b:c:d::e",               "000a::"},
    {"a::b::c:d",                 "000a::"},
    {"a::b:::c",                  "000a::000b:000c"},
    {"1:::2",                     "0001::"},
    {"1::::2",                    "0001::0002"},
    {":::1",                      "::"},
    {"::::1",                     "::0001"},
    {"::::::::",                  "::"},
    {"::1:",                      "::0001"},
    {"::1:2:",                    "::0001:0002"},
    {"a::1:2:3:",                 "000a::0001:0002:0003"},
    {"::.1",                      "::"},
    {"::1.2",                     "::0002"},
    {"::1.2.3",                   "::0003"},
    {"::1:2.3",                   "::0001:0003"},
    {"::1.2.3.4:5",               "::0102:0304"},
    {"::1.2.3.4:5:6:7",           "::0102:0304"},
    {"::1.2.3.4::5",              "::0102:0304"},
    {"::1.2.3.4.5",               "::0102:0304"},
};

// Where the two overlap, the tail overwrites the head.
constexpr Loaded kOverlaps[] = {
    {"1:2:3:4:5:6:7::8",          "0001:0002:0003:0004:0005:0006:0007:0008"},
    {"1:2:3:4:5:6::7:8",          "0001:0002:0003:0004:0005:0006:0007:0008"},
    {"1:2:3:4:5:6:7::1.2.3.4",    "0001:0002:0003:0004:0005:0006:0102:0304"},
    {"1::2:3:4:5:6:7:1.2.3.4",    "0002:0003:0004:0005:0006:0007:0102:0304"},
};

// An octet reads three digits, of a group that was cut at four.
constexpr Loaded kOctets[] = {
    {"::0.0.0.0",                 "::"},
    {"::255.255.255.255",         "::ffff:ffff"},
    {"::010.001.000.1",           "::0a01:0001"},
    {"1.2.3.2555",                "0102:03ff::"},
    {"1.2.3.123a",                "0102:037b::"},
    {"12345.1.1.1",               "7b01:0101::"},
    // After a fifth digit another part follows at once.
    {"1.2.3.123456:7",            "0102:037b:0006::"},
    {"1.2.3.123455.6.7.8",        "0102:037b:0506:0708::"},
    {"::1.2.3.123456:7:8",        "::0102:037b"},
    {"::1.2.3.123451.2.3.4",      "::0102:037b:0102:0304"},
    {"::9:1.2.3.123451.2.3.4",    "::0009:0102:037b:0102:0304"},
    // The second dotted part is cut at the twenty-second letter.
    {"::1:2:3:4:1.2.3.123455.6.7.8", "0000:0000:0001:0002:0003:0004:0102:037b"},
};

constexpr Loaded kFailures[] = {
    {"1:2:3:4:5:6:7:8:9:",        "fails 0x06000401"},
    {":::::::::",                 "fails 0x06000401"},
    {"::ffff:192.0.2.256",        "fails 0x06001068"},
    {"::ffff:192.0.999.1",        "fails 0x06001068"},
    {"::1.2.3.a",                 "fails 0x06001068"},
    {"::1.2.3.25a",               "fails 0x06001068"},
    {"1.2.3.256",                 "fails 0x06000c68"},
    {"256.2.3.4",                 "fails 0x06000c68"},
    {"1.2.3.4567",                "fails 0x06000c68"},
    {"a.b.c.d",                   "fails 0x06000c68"},
    {"1:1.2.c.4::5",              "fails 0x06000c68"},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Plain, LoadIpV6, testing::ValuesIn(kPlain));
INSTANTIATE_TEST_SUITE_P(Heads, LoadIpV6, testing::ValuesIn(kHeads));
INSTANTIATE_TEST_SUITE_P(Groups, LoadIpV6, testing::ValuesIn(kGroups));
INSTANTIATE_TEST_SUITE_P(Tails, LoadIpV6, testing::ValuesIn(kTails));
INSTANTIATE_TEST_SUITE_P(Overlaps, LoadIpV6, testing::ValuesIn(kOverlaps));
INSTANTIATE_TEST_SUITE_P(Octets, LoadIpV6, testing::ValuesIn(kOctets));
INSTANTIATE_TEST_SUITE_P(Failures, LoadIpV6, testing::ValuesIn(kFailures));

// An empty text gives an empty pattern, and that no group at all.
TEST(LoadIpV6StringToArray, ReadsAnEmptyTextAsZeros) {
    EXPECT_EQ(load(std::string_view("\0", 1)), spelled("::"));
}

TEST(LoadIpV6StringToArray, EndsAtANulAndAtTheLength) {
    EXPECT_EQ(load(std::string_view("1:2\0:3", 6)), spelled("0001:0002::"));
    uint8_t address[16];
    ASSERT_EQ(SdpLoadIpV6StringToArray("1:2:3", 3, address), 0u);
    EXPECT_EQ(address[3], 2);
    EXPECT_EQ(address[5], 0);
}

TEST(LoadIpV6StringToArray, RefusesAMissingArgument) {
    uint8_t address[16] = {0xEE};
    LogRecorder log;
    const SDPResult results[] = {SdpLoadIpV6StringToArray(nullptr, 3, address),
                                 SdpLoadIpV6StringToArray("::1", 0, address),
                                 SdpLoadIpV6StringToArray("::1", 2, nullptr)};
    for (const SDPResult result : results) {
        EXPECT_EQ(result >> 24, 6u);
        EXPECT_EQ(result & 0x3FF, kBadAddress);
    }
    EXPECT_EQ(address[0], 0xEE);
    const std::string entry = "3 sdputils SdpLoadIpV6StringToArray 0 \"iLength:";
    EXPECT_EQ(log.texts(), (Texts{entry + "3\"", entry + "0\"", entry + "2\""}));
}

TEST(LoadIpV6StringToArray, LogsATextThatCannotBeCut) {
    LogRecorder log;
    load(":::::::::");
    EXPECT_EQ(log.texts(), Texts{"3 sdputils SdpLoadIpV6StringToArray -"});
}

TEST(LoadIpV6StringToArray, DoesNotLogAnOctet) {
    LogRecorder log;
    load("::1.2.3.256");
    load("1.2.3.256");
    EXPECT_TRUE(log.entries().empty());
}

TEST(LoadIpV6StringToArray, ReportsAnAddressThatCannotBeCopied) {
    SecureFaults::reset();
    SecureFaults::failAt(2); // after the token table
    EXPECT_EQ(load("::1"), "eeee:eeee:eeee:eeee:eeee:eeee:eeee:eeee");
    ASSERT_EQ(SecureFaults::reports().size(), 1u);
    EXPECT_FALSE(SecureFaults::reports()[0].ex);
    EXPECT_EQ(SecureFaults::reports()[0].name, "SdpLoadIpV6StringToArray");
    SecureFaults::reset();
}

} // namespace
