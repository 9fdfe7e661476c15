// Comparison, scanning, number conversion and search.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "sdpline/sdpinternals.h"
#include "support/each.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::Guarded;
using support::LogRecorder;
using Texts = std::vector<std::string>;

constexpr uint32_t kAllBits = 0xFFFFFFFF;
constexpr uint32_t kUtilsFile = 6;

// ---- Exact comparison

TEST(ChkExactString, IsOneForEqualTextsOnly) {
    EXPECT_EQ(SdpLibChkExactString("abc", "abc"), 1u);
    EXPECT_EQ(SdpLibChkExactString("", ""), 1u);
    EXPECT_EQ(SdpLibChkExactString("abc", "abcd"), 0u);
    EXPECT_EQ(SdpLibChkExactString("abcd", "abc"), 0u);
    EXPECT_EQ(SdpLibChkExactString("", "a"), 0u);
    EXPECT_EQ(SdpLibChkExactString("a", ""), 0u);
    EXPECT_EQ(SdpLibChkExactString("ABC", "abc"), 0u);
    EXPECT_EQ(SdpLibChkExactString("a\xff", "a\xfe"), 0u);
}

TEST(ChkExactString, LogsANullText) {
    const Texts expected = {"3 sdputils SdpLibChkExactString 0 \"str1 or str2 maybe invalid\""};
    {
        LogRecorder log;
        EXPECT_EQ(SdpLibChkExactString(nullptr, "abc"), 0u);
        EXPECT_EQ(log.texts(), expected);
    }
    {
        LogRecorder log;
        EXPECT_EQ(SdpLibChkExactString("abc", nullptr), 0u);
        EXPECT_EQ(log.texts(), expected);
    }
    LogRecorder log;
    EXPECT_EQ(SdpLibChkExactString(nullptr, nullptr), 0u);
    EXPECT_EQ(log.texts(), expected);
}

TEST(ChkExactString, SetsTheCodePointOfANullText) {
    g_gSipCodePoint = 0;
    LogRecorder log;
    SdpLibChkExactString(nullptr, "");
    ASSERT_EQ(log.entries().size(), 1u);
    EXPECT_EQ(log.entries()[0].module, 17u);
    EXPECT_EQ(log.entries()[0].instance, kAllBits);
    EXPECT_EQ(g_gSipCodePoint, kUtilsFile << 16 | log.entries()[0].line);
}

TEST(CmpExactString, IgnoresTheCaseOfAsciiLetters) {
    EXPECT_EQ(SdpiCmpExactString("Request", "rEQUEST"), 1u);
    EXPECT_EQ(SdpiCmpExactString("AZaz09", "azAZ09"), 1u);
    EXPECT_EQ(SdpiCmpExactString("", ""), 1u);
    EXPECT_EQ(SdpiCmpExactString("abc", "abcd"), 0u);
    EXPECT_EQ(SdpiCmpExactString("abcd", "abc"), 0u);
    EXPECT_EQ(SdpiCmpExactString("abc", "abd"), 0u);
}

// "@" and "`", "[" and "{" differ in the bit that is the case of a letter.
TEST(CmpExactString, DistinguishesAllOtherBytes) {
    EXPECT_EQ(SdpiCmpExactString("@", "`"), 0u);
    EXPECT_EQ(SdpiCmpExactString("[", "{"), 0u);
    EXPECT_EQ(SdpiCmpExactString("\xc4", "\xe4"), 0u);
}

// ---- Decimal scanning

struct Scanned {
    uint32_t count;
    uint32_t value;

    bool operator==(const Scanned &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Scanned &scanned) {
    return out << scanned.count << " digits, " << scanned.value;
}

Scanned scan(const char *text) {
    uint32_t value = 77;
    const uint32_t count = SdpLibScanDigits(text, &value);
    return {count, value};
}

TEST(ScanDigits, CountsAndReadsTheLeadingDigits) {
    EXPECT_EQ(scan("0123x"), (Scanned{4, 123}));
    EXPECT_EQ(scan("7"), (Scanned{1, 7}));
    EXPECT_EQ(scan("12 34"), (Scanned{2, 12}));
    EXPECT_EQ(scan("4294967295"), (Scanned{10, 4294967295}));
}

TEST(ScanDigits, StoresZeroWithoutDigits) {
    EXPECT_EQ(scan("x1"), (Scanned{0, 0}));
    EXPECT_EQ(scan(""), (Scanned{0, 0}));
    EXPECT_EQ(scan("-1"), (Scanned{0, 0}));
    EXPECT_EQ(scan(" 1"), (Scanned{0, 0}));
    EXPECT_EQ(scan("\xb1"), (Scanned{0, 0}));
}

TEST(ScanDigits, Wraps) {
    EXPECT_EQ(scan("4294967296"), (Scanned{10, 0}));
    EXPECT_EQ(scan("4294967299"), (Scanned{10, 3}));
    EXPECT_EQ(scan("99999999999"), (Scanned{11, static_cast<uint32_t>(99999999999ull)}));
    const std::string digits = std::string(1000, '0') + "18446744073709551617";
    EXPECT_EQ(scan(digits.c_str()), (Scanned{1020, 1}));
}

TEST(ScanDigits, LogsANullArgumentAndLeavesTheValue) {
    const Texts expected = {"3 sdputils SdpLibScanDigits 0 \"pcData or pulValue maybe invalid\""};
    uint32_t value = 77;
    {
        LogRecorder log;
        EXPECT_EQ(SdpLibScanDigits(nullptr, &value), kAllBits);
        EXPECT_EQ(log.texts(), expected);
    }
    EXPECT_EQ(value, 77u);
    LogRecorder log;
    EXPECT_EQ(SdpLibScanDigits("1", nullptr), kAllBits);
    EXPECT_EQ(log.texts(), expected);
    EXPECT_EQ(g_gSipCodePoint, kUtilsFile << 16 | log.entries()[0].line);
}

// ---- Counted comparison

TEST(StrNCmpCharPtr, IsOneWhenTheFirstBytesAreEqual) {
    EXPECT_EQ(SdpStrNCmpCharPtr("THHT", 4, "TH", 2), 1u);
    EXPECT_EQ(SdpStrNCmpCharPtr("TH", 2, "TH", 2), 1u);
    EXPECT_EQ(SdpStrNCmpCharPtr("HT", 2, "TH", 2), 0u);
    EXPECT_EQ(SdpStrNCmpCharPtr("th", 2, "TH", 2), 0u);
}

TEST(StrNCmpCharPtr, IsZeroWhenTheTextIsTooShort) {
    EXPECT_EQ(SdpStrNCmpCharPtr("TDTDTD", 6, "TDTDTDT", 7), 0u);
    EXPECT_EQ(SdpStrNCmpCharPtr("TDTDTDT", 6, "TDTDTDT", 7), 0u) << "the length counts";
}

// ---- Bytes

TEST(Isdigit, IsOneForDigitsOnly) {
    for (int32_t byte = -1; byte <= 256; ++byte) {
        EXPECT_EQ(SdpIsdigit(byte), byte >= 48 && byte <= 57 ? 1u : 0u) << byte;
    }
}

TEST(Isalnum, IsOneForLettersAndDigitsOnly) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    for (int32_t byte = -1; byte <= 256; ++byte) {
        const bool known =
            byte > 0 && byte < 128 && letters.find(static_cast<char>(byte)) != std::string::npos;
        EXPECT_EQ(SdpIsalnum(byte), known ? 1u : 0u) << byte;
    }
}

// ---- Conversion

uint16_t hex(const char *text) {
    uint16_t value = 7777;
    SdpConvHexStrToDec(text, &value);
    return value;
}

TEST(ConvHexStrToDec, ReadsUpToFourDigits) {
    support::expectEach<const char *, uint16_t>(
        hex, {{"fFfF", 65535}, {"0", 0}, {"a9", 0xA9}, {"01bC", 0x1BC}, {"12345", 0x1234}});
}

TEST(ConvHexStrToDec, EndsAtAnyOtherByte) {
    support::expectEach<const char *, uint16_t>(
        hex, {{"g", 0}, {"", 0}, {"12g4", 0x12}, {"1:2", 1}, {"@", 0}, {"G", 0}, {"`", 0}});
}

TEST(ConvHexStrToDec, LooksAtFourBytesAtMost) {
    const Guarded digits("1234");
    EXPECT_EQ(hex(digits.text().pcData), 0x1234);
}

uint16_t dec(const char *text) {
    uint16_t value = 7777;
    SdpConvDecStrToDec(text, &value);
    return value;
}

TEST(ConvDecStrToDec, ReadsUpToThreeDigits) {
    support::expectEach<const char *, uint16_t>(
        dec, {{"255", 255}, {"0", 0}, {"007", 7}, {"1234", 123}, {"999", 999}});
}

TEST(ConvDecStrToDec, EndsAtAByteThatIsNoLetter) {
    support::expectEach<const char *, uint16_t>(dec, {{"25.", 25}, {"", 0}, {".1", 0}, {"1-a", 1}});
}

TEST(ConvDecStrToDec, RefusesALetterAmongTheFirstThree) {
    support::expectEach<const char *, uint16_t>(dec, {{"1a", 65535}, {"25a", 65535}, {"Z", 65535}});
    EXPECT_EQ(dec("123a"), 123) << "the fourth is not looked at";
}

TEST(ConvDecStrToDec, LooksAtThreeBytesAtMost) {
    const Guarded digits("123");
    EXPECT_EQ(dec(digits.text().pcData), 123);
}

// ---- Search

// The position of the needle, counted from 1; 0 if it was not found.
uint32_t found(const char *hay, uint32_t hayLength, const char *needle) {
    const auto needleLength = static_cast<uint32_t>(std::strlen(needle));
    const char *const at = SdpSmStrstr(hay, hayLength, needle, needleLength);
    return at != nullptr ? static_cast<uint32_t>(at - hay) + 1 : 0;
}

TEST(SmStrstr, FindsTheFirstOccurrence) {
    EXPECT_EQ(found("HHTHHT", 6, "HH"), 1u);
    EXPECT_EQ(found("THTHHTHH", 8, "HH"), 4u);
    EXPECT_EQ(found("THHH", 4, "HH"), 2u);
    EXPECT_EQ(found("TTHH", 4, "HH"), 3u);
    EXPECT_EQ(found("HH", 2, "HH"), 1u) << "the haystack itself";
}

TEST(SmStrstr, IsNullWithoutAnOccurrence) {
    EXPECT_EQ(found("THTHT", 5, "HH"), 0u);
    EXPECT_EQ(found("H", 1, "HH"), 0u);
    EXPECT_EQ(found("", 0, "HH"), 0u);
    EXPECT_EQ(found("THH", 2, "HH"), 0u) << "the length counts";
}

TEST(SmStrstr, FindsAnEmptyNeedleAtTheStart) {
    EXPECT_EQ(found("abc", 3, ""), 1u);
    EXPECT_EQ(found("abc", 0, ""), 1u);
}

TEST(SmStrstr, LooksAtBytesNotAtTerminators) {
    const Guarded hay(std::string_view("a\0bH\0H", 6));
    const char *const at = SdpSmStrstr(hay.text().pcData, 6, "H\0H", 3);
    EXPECT_EQ(at, hay.text().pcData + 3);
    EXPECT_EQ(SdpSmStrstr(hay.text().pcData, 6, "Hx", 2), nullptr);
}

} // namespace
