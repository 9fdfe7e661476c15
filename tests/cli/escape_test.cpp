// Lines of an input for a terminal.
#include <gtest/gtest.h>

#include <string>

#include "text/escape.hpp"
#include "text/strings.hpp"

namespace {

// The line with the mark below it.
std::string shown(const std::string &line, size_t offset) {
    const cli::Excerpt excerpt = cli::excerptOf(line, offset);
    return excerpt.line + '\n' + std::string(excerpt.mark, ' ') + '^';
}

TEST(Excerpt, MarksTheByte) {
    EXPECT_EQ(shown("c=IN IP4 x", 9), "c=IN IP4 x\n         ^");
    EXPECT_EQ(shown("abc", 3), "abc\n   ^");
    EXPECT_EQ(shown("", 0), "\n^");
}

TEST(Excerpt, KeepsUtf8AndCountsItAsOneColumn) {
    EXPECT_EQ(shown("s=\xc3\xa9x", 4), "s=\xc3\xa9x\n   ^");
    EXPECT_EQ(shown("s=\xe2\x82\xac\xf0\x9f\x98\x80x", 9),
              "s=\xe2\x82\xac\xf0\x9f\x98\x80x\n    ^");
}

TEST(Excerpt, EscapesWhatDoesNotPrint) {
    EXPECT_EQ(shown(std::string("\t\r\0\x1b\x7f\xff.", 7), 6),
              "\\t\\r\\0\\x1b\\x7f\\xff.\n" + std::string(18, ' ') + '^');
    EXPECT_EQ(shown("\xc2\x9b"
                    "31m",
                    2),
              "\\xc2\\x9b31m\n        ^"); // a terminal's CSI
}

TEST(Excerpt, CutsALongLineAroundTheMark) {
    const std::string line = std::string(500, 'a') + 'b' + std::string(500, 'c');
    EXPECT_EQ(shown(line, 500), "..." + std::string(60, 'a') + 'b' + std::string(39, 'c') +
                                    "...\n" + std::string(63, ' ') + '^');
    EXPECT_EQ(shown(line, 0), std::string(100, 'a') + "...\n^");
    EXPECT_EQ(shown(line, 1001), "..." + std::string(60, 'c') + '\n' + std::string(63, ' ') + '^');
    EXPECT_EQ(shown(std::string(100, 'a'), 99),
              std::string(100, 'a') + '\n' + std::string(99, ' ') + '^');
}

// Characters that JSON allows in a string: DEL, and the control characters of Latin-1 in UTF-8.
TEST(EscapedJson, HoldsNothingThatATerminalObeys) {
    EXPECT_EQ(cli::escapedJson("{\n  \"a\": \"\x7f\xc2\x80\xc2\x9b"
                               "31m\xc2\xa0\xc3\xa9\"\n}\n"),
              "{\n  \"a\": \"\\u007f\\u0080\\u009b31m\xc2\xa0\xc3\xa9\"\n}\n");
}

TEST(Utf8, TakesShortestFormsOnly) {
    for (const char *const good :
         {"a", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
          "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_TRUE(cli::isUtf8(good)) << cli::hexOf(good);
    }
    for (const char *const bad :
         {"\x80", "\xc0\x80", "\xc1\xbf", "\xc2", "\xc2g", "\xe0\x9f\xbf", "\xed\xa0\x80",
          "\xe1\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff"}) {
        EXPECT_FALSE(cli::isUtf8(bad)) << cli::hexOf(bad);
    }
}

} // namespace
