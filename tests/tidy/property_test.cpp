// The properties of any text, tested on random and randomly damaged bodies.
#include <gtest/gtest.h>

#include <random>

#include "support/bodies.hpp"
#include "support/chance.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"
#include "tidy/tidied.hpp"
#include "tidy/tidycases.hpp"

namespace {

using support::Chance;
using tidytest::Tidied;

TEST(TidyProperty, AcceptedTextIsReturnedByteForByte) {
    std::mt19937 engine(1);
    for (int i = 0; i < 500 && !HasFailure(); ++i) {
        const std::string text = support::generateBody(engine);
        const Tidied tidied = tidytest::tidied(text, tidytest::kAll);
        EXPECT_EQ(tidied.outcome, static_cast<uint32_t>(SDP_TIDY_UNCHANGED));
        EXPECT_EQ(tidied.text, text);
        EXPECT_TRUE(tidied.rows.empty());
    }
}

// Faults of the kinds that the rules repair.
std::string untidy(std::mt19937 &engine) {
    Chance chance(engine);
    std::string text = support::generateBody(engine);
    const char *const pieces[] = {" ",
                                  "  ",
                                  "\t",
                                  "\n",
                                  "\r\n\r\n",
                                  "a=x:\n",
                                  "s=\n",
                                  "=",
                                  "b=x\n",
                                  "c=IN IP4 host.example.com\n",
                                  "y=1\n",
                                  "t=0 0\n",
                                  "\r",
                                  ":",
                                  "i=x\r\n",
                                  "v=0\n",
                                  "a=rtpmap: 0 PCMU\n"};
    for (uint32_t i = 1 + chance.below(4); i > 0 && !text.empty(); --i) {
        const size_t at = chance.below(text.size());
        const size_t lineEnd = text.find('\n', at);
        switch (chance.below(4)) {
        case 0: text.insert(at, chance.pick(pieces)); break;
        case 1:
            if (lineEnd != std::string::npos) {
                text.insert(lineEnd + 1, chance.pick(pieces));
            }
            break;
        case 2:
            if (lineEnd != std::string::npos) {
                text.erase(at, lineEnd - at); // the end of a line
            }
            break;
        default:
            if (lineEnd != std::string::npos) {
                const size_t begin = text.rfind('\n', at) + 1;
                text.erase(begin, lineEnd + 1 - begin);
            }
        }
    }
    return text;
}

TEST(TidyProperty, HoldsForUntidyBodies) {
    std::mt19937 engine(2);
    uint32_t repaired = 0;
    for (int i = 0; i < 3000 && !HasFailure(); ++i) {
        const std::string text = untidy(engine);
        if (text.empty()) {
            continue;
        }
        const uint64_t rules =
            i % 4 == 0   ? SdpTidyRulesOf(SDP_TIDY_DEFAULT)
            : i % 4 == 1 ? tidytest::kAll & (uint64_t{engine()} | uint64_t{engine()} << 32)
                         : tidytest::kAll;
        const SDPDecodeOptions options = {static_cast<uint32_t>(i % 2), SDP_MAX_BODY};
        const Tidied tidied = tidytest::tidied(text, rules, options);
        tidytest::expectProperties(text, tidied, rules, options);
        repaired += tidied.outcome == SDP_TIDY_REPAIRED ? 1 : 0;
        if (HasFailure()) {
            ADD_FAILURE() << support::readable(text) << "\n---- repaired\n"
                          << support::readable(tidied.text) << "\n----\n"
                          << tidied.report();
        }
    }
    EXPECT_GT(repaired, 300u) << "enough of them could be repaired";
}

TEST(TidyProperty, HoldsForDamagedBodies) {
    std::mt19937 engine(3);
    for (int i = 0; i < 2000 && !HasFailure(); ++i) {
        const std::string text = support::damage(support::generateBody(engine), engine);
        if (text.empty() || text.size() > SDP_MAX_LONG_BODY) {
            continue;
        }
        const Tidied tidied = tidytest::tidied(text, tidytest::kAll);
        tidytest::expectProperties(text, tidied, tidytest::kAll, tidytest::kStrict);
        if (HasFailure()) {
            ADD_FAILURE() << support::readable(text) << "\n---- repaired\n"
                          << support::readable(tidied.text) << "\n----\n"
                          << tidied.report();
        }
    }
}

// A rule that is switched off repairs nothing, and no other rule makes its repair without a report.
TEST(TidyProperty, EachRuleIsNeededByACaseThatShowsIt) {
    for (const tidytest::TidyCase &current : tidytest::readTidyCases()) {
        if (!current.text) {
            continue;
        }
        SCOPED_TRACE(current.file + ':' + std::to_string(current.at));
        const Tidied with = tidytest::tidied(current.body(), current.rules(), current.options());
        for (const SDPTidyRow &row : with.rows) {
            const uint64_t rules = current.rules() & ~SDP_TIDY_BIT(row.enRule);
            const Tidied without = tidytest::tidied(current.body(), rules, current.options());
            EXPECT_TRUE(without.outcome == SDP_TIDY_REFUSED || without.report() != with.report())
                << SdpTidyRuleAt(row.enRule)->pcName;
            tidytest::expectProperties(current.body(), without, rules, current.options());
        }
    }
}

} // namespace
