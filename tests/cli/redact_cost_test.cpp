// The cost of masking hostile lines: four times the length costs only a few times as much.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "redact/redact.hpp"

namespace {

std::string repeated(const std::string &pattern, size_t size) {
    std::string text;
    while (text.size() < size) {
        text += pattern;
    }
    return text;
}

// The processor time of masking the line, in milliseconds, without the time of other programs.
double costOf(const std::string &line) {
    cli::Redactor redactor;
    const std::clock_t start = std::clock();
    redactor.learn(line);
    EXPECT_FALSE(redactor.redacted(line).empty());
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

const char *const kPatterns[] = {"%",    "1:",      "1.",    "a@",      "+1",   "a.b",   ":",
                                 "::",   "1 ",      "sip:",  "tel:",    "A1b",  "-",     "(",
                                 "a://", "inline:", "cname", "cname:",  "a,",   "4A:",   "IN IP4 ",
                                 "1-",   "a b ",    "acap:", "acap:1 ", "\xff", "1.2.3", "user="};

void expectLinear(const std::string &before) {
    constexpr size_t kSize = 2000;
    for (const std::string pattern : kPatterns) {
        const std::string line = before + repeated(pattern, kSize);
        const std::string longLine = before + repeated(pattern, 4 * kSize);
        double small = costOf(line);
        double large = costOf(longLine);
        // The minimum of a few runs: a slow moment of the processor only adds time.
        for (int again = 0; again < 5 && large >= 8 * small + 4; ++again) {
            small = std::min(small, costOf(line));
            large = std::min(large, costOf(longLine));
        }
        EXPECT_LT(large, 8 * small + 4) << before << pattern << "..."; // 16 times if quadratic
    }
}

TEST(RedactCost, OfTextIsLinear) {
    expectLinear("s=");
    expectLinear("s=call with ");
}

TEST(RedactCost, OfAttributesIsLinear) {
    for (const char *const name : {"a=x:", "a=fmtp:96 ", "a=candidate:", "a=crypto:1 ", "a=acap:1 ",
                                   "a=source-filter: ", "a=alt:", "a="}) {
        expectLinear(name);
    }
}

TEST(RedactCost, OfOtherLinesIsLinear) {
    for (const char *const start : {"o=", "c=IN IP4 ", "m=", "b=", "k=", ""}) {
        expectLinear(start);
    }
}

// A line of 80 kB once took seconds.
TEST(RedactCost, OfALongLineIsSmall) {
    for (const char *const pattern : {"%", "1:", "A1b"}) {
        EXPECT_LT(costOf("a=x:" + repeated(pattern, 80000)), 1500) << pattern;
    }
}

} // namespace
