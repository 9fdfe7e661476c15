// Runs every case of tests/cases/tidy: the report, the repaired text, the properties of any text,
// and all of it again with each allocation failing in turn.
#include <gtest/gtest.h>

#include "support/allocations.hpp"
#include "support/casetests.hpp"
#include "tidy/tidied.hpp"
#include "tidy/tidycases.hpp"

namespace {

using support::Allocations;
using support::Held;
using tidytest::Tidied;
using tidytest::TidyCase;

class TidyCaseTest : public testing::Test {
public:
    explicit TidyCaseTest(const TidyCase &current) : case_(current) {}

    void TestBody() override {
        const Held before = Held::now();
        if (case_.doubts) {
            runDoubts();
        } else {
            runRepairs();
        }
        runFailingAllocations();
        EXPECT_EQ(Held::now(), before) << "something leaked";
    }

private:
    Tidied run() const {
        return case_.doubts ? tidytest::doubted(case_.body(), case_.options())
                            : tidytest::tidied(case_.body(), case_.rules(), case_.options());
    }

    void runDoubts() {
        SCOPED_TRACE(place(*case_.doubts));
        const Tidied doubted = run();
        EXPECT_EQ(doubted.result, 0u);
        EXPECT_EQ(doubted.text, case_.body());
        EXPECT_EQ(doubted.doubts(), case_.doubts->joined());
    }

    void runRepairs() {
        const Tidied tidied = run();
        {
            SCOPED_TRACE(place(*case_.report));
            EXPECT_EQ(tidied.report(), case_.report->joined());
        }
        tidytest::expectProperties(case_.body(), tidied, case_.rules(), case_.options());
        if (case_.refused) {
            SCOPED_TRACE(place(*case_.refused));
            EXPECT_EQ(tidied.outcome, static_cast<uint32_t>(SDP_TIDY_REFUSED));
            EXPECT_EQ(refusal(tidied), case_.refused->joined());
            return;
        }
        SCOPED_TRACE(place(*case_.text));
        EXPECT_EQ(tidied.outcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED));
        std::string text = tidytest::visible(tidied.text);
        text += text.ends_with('\n') ? "" : "\n"; // a block cannot show that the last line is open
        EXPECT_EQ(text, case_.text->joined());
    }

    static std::string refusal(const Tidied &tidied) {
        return std::string(tidied.remaining.pcCheck) + " at " +
               std::to_string(tidied.remaining.ulLine) + ':' +
               std::to_string(tidied.remaining.ulColumn) + '\n';
    }

    // Without memory the text is refused; with memory the report is the expected one.
    void runFailingAllocations() {
        const std::string expected = run().report();
        for (uint32_t n = 1;; ++n) {
            Allocations::failAt(n);
            const Tidied tidied = run();
            const bool failed = Allocations::failed();
            Allocations::reset();
            if (!failed) {
                EXPECT_EQ(tidied.report(), expected);
                return;
            }
            EXPECT_TRUE(tidied.result != 0 || tidied.report() == expected) << "allocation " << n;
            EXPECT_EQ(tidied.result == 0, tidied.hasBody);
        }
    }

    std::string place(const support::Block &block) const {
        return case_.file + ':' + std::to_string(block.at);
    }

    const TidyCase &case_;
};

const std::vector<TidyCase> cases = tidytest::readTidyCases();
[[maybe_unused]] const bool registered = support::registerCases<TidyCaseTest>("TidyCases_", cases);

// Every rule has a case that shows it.
TEST(TidyCases, ShowEveryRule) {
    std::string shown;
    for (const TidyCase &current : tidytest::readTidyCases()) {
        shown += current.report ? current.report->joined() : current.doubts->joined();
    }
    for (uint32_t rule = 0; rule < SDP_TIDY_RULE_COUNT; ++rule) {
        const std::string name = SdpTidyRuleAt(rule)->pcName;
        const bool there = shown.find(' ' + name + ' ') != std::string::npos ||
                           shown.find(' ' + name + '\n') != std::string::npos;
        EXPECT_TRUE(there) << name << " has no case";
    }
}

} // namespace
