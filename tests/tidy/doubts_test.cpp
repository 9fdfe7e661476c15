// The doubts that the library finds in one pass are those that simple tests find.
#include <gtest/gtest.h>

#include <random>

#include "support/bodies.hpp"
#include "support/chance.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"
#include "tidy/plaindoubts.hpp"
#include "tidy/tidied.hpp"
#include "tidy/tidycases.hpp"

namespace {

using support::Chance;
using tidytest::Tidied;

void expectPlain(const std::string &text, const SDPDecodeOptions &options) {
    const Tidied doubted = tidytest::doubted(text, options);
    EXPECT_EQ(doubted.text, text);
    if (doubted.result != 0) {
        EXPECT_TRUE(doubted.rows.empty()) << "a refused text has no doubts";
        EXPECT_FALSE(doubted.hasBody);
        return;
    }
    EXPECT_EQ(doubted.doubts(), tidytest::plainDoubts(text, options.bRtpFamily == 1))
        << support::readable(text);
}

TEST(Doubts, OfEveryCaseAreThosePlainlyFound) {
    for (const tidytest::TidyCase &current : tidytest::readTidyCases()) {
        SCOPED_TRACE(current.file + ':' + std::to_string(current.at));
        expectPlain(current.body(), current.options());
    }
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        SCOPED_TRACE(current.file + ':' + std::to_string(current.at));
        const support::Configured configured(current);
        expectPlain(current.body, {current.family ? 1u : 0u, current.maxBody});
    }
}

// The cases contain every doubt, so the simple tests find every doubt.
TEST(Doubts, AreEachAmongThosePlainlyFound) {
    std::string found;
    for (const tidytest::TidyCase &current : tidytest::readTidyCases()) {
        if (current.doubts) {
            found += tidytest::plainDoubts(current.body(), current.options().bRtpFamily == 1);
        }
    }
    for (uint32_t rule = SDP_TIDY_CR_INSIDE; rule < SDP_TIDY_RULE_COUNT; ++rule) {
        const std::string name = SdpTidyRuleAt(rule)->pcName;
        EXPECT_NE(found.find(' ' + name + '\n'), std::string::npos) << name;
    }
}

// Numbers enlarged, bytes inserted, lines doubled: changes that can cause doubts.
std::string doubtful(std::mt19937 &engine) {
    Chance chance(engine);
    std::string text = support::generateBody(engine);
    const char *const lines[] = {"\na=sendonly",        "\na=inactive",       "\nt=1 2",
                                 "\na=framerate:29.97", "\na=framerate:25.0", "\n a=ptime:20"};
    for (uint32_t i = chance.below(6); i > 0; --i) {
        const size_t at = chance.below(text.size());
        switch (chance.below(5)) {
        case 0: text.insert(at, 1, "\0\r 9"[chance.below(4)]); break;
        case 1: {
            const size_t end = text.find('\n', at);
            text.insert(end == std::string::npos ? text.size() : end, chance.pick(lines));
            break;
        }
        case 2: {
            const size_t digit = text.find_first_of("0123456789", at);
            text.insert(digit == std::string::npos ? 0 : digit, "4294967296");
            break;
        }
        case 3: {
            const size_t digit = text.find_first_of("0123456789", at);
            if (digit != std::string::npos) {
                const size_t end = text.find_first_not_of("0123456789", digit);
                text.replace(digit, end - digit, chance.oneIn(2) ? "0" : "4294967295");
            }
            break;
        }
        default: text.insert(at, chance.oneIn(2) ? "\n\n" : "\r\n\r\nm=audio 5 RTP/AVP 0\r\n");
        }
    }
    return text;
}

TEST(Doubts, OfBodiesMadeByChanceAreThosePlainlyFound) {
    std::mt19937 engine(20);
    uint32_t found = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::string text = doubtful(engine);
        const SDPDecodeOptions options = {static_cast<uint32_t>(i % 2), SDP_MAX_LONG_BODY};
        expectPlain(text, options);
        found += tidytest::doubted(text, options).rows.empty() ? 0 : 1;
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(found, 500u) << "enough of them were doubtful";
}

TEST(Doubts, OfTheStyleThatFlagsAreWrittenInAreLost) {
    const std::string text =
        "v=0\no=- 1 1 IN IP4 h\ns=-\nt=0 0\na=T38FaxFillBitRemoval:0\na=T38FaxTranscodingMMR:1\n"
        "a=T38FaxTranscodingJBIG:4294967296\n";
    EXPECT_EQ(tidytest::doubted(text).doubts(), "5:24 AttributeLost\n7:25 AttributeLost\n");
    ASSERT_EQ(SdpSetT38OptCfg(SDP_T38_STYLE_VALUE), 0u);
    EXPECT_EQ(tidytest::doubted(text).doubts(), "7:25 NumberWraps\n");
    ASSERT_EQ(SdpSetT38OptCfg(SDP_T38_STYLE_FLAG), 0u);
}

TEST(Doubts, OfManyMediaIsThe256th) {
    std::string text = "v=0\no=- 1 1 IN IP4 h\ns=-\nt=0 0\n";
    for (int i = 0; i < 256; ++i) {
        text += "m=a 1 x y\n";
    }
    EXPECT_EQ(tidytest::doubted(text).doubts(), "260:1 MediaCount\n");
}

} // namespace
