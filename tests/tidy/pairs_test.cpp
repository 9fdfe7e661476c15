// Every two rules in one text: the fault of each rule is put into the same body at each possible
// place, together with that of every other rule, in another line or in the same one. Both must be
// repaired and reported; two rules that cannot meet in a line have a row with the reason.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>

#include "tidy/tidied.hpp"
#include "tidy/tidycases.hpp"
#include "tidy/untidybody.hpp"

namespace {

using tidytest::Fault;
using tidytest::Place;
using tidytest::Tidied;
using tidytest::UntidyBody;

// Rules that cannot meet in one line.
struct Never {
    uint32_t first;
    uint32_t second;
    const char *why;
};

constexpr Never kNever[] = {
    {SDP_TIDY_ORIGIN_USER, SDP_TIDY_ORIGIN_SPACES, "a name that is missing has no blanks"},
    {SDP_TIDY_ORIGIN_ADDRESS, SDP_TIDY_ADDR_TYPE_MISSING, "the address shows the type"},
    {SDP_TIDY_ADDR_TYPE_WORD, SDP_TIDY_ADDR_TYPE_MISSING, "there is a word, or none"},
    {SDP_TIDY_ADDR_FAMILY, SDP_TIDY_ADDR_TYPE_MISSING, "IP4 is there, or missing"},
    {SDP_TIDY_ADDR_FAMILY, SDP_TIDY_CONN_HOST, "an IPv6 address is no host name"},
    {SDP_TIDY_ADDR_TYPE_MISSING, SDP_TIDY_CONN_HOST, "a host name shows no type"},
    {SDP_TIDY_LINE_TWICE, SDP_TIDY_CONN_AGAIN, "the earlier of two is gone when a third follows"},
    {SDP_TIDY_LINE_TWICE, SDP_TIDY_LINE_ORDER, "the one that comes late is left out"},
    {SDP_TIDY_LINE_AGAIN, SDP_TIDY_LINE_ORDER, "the one that comes late is left out"},
    {SDP_TIDY_VALUE_MISSING, SDP_TIDY_TRAILING_SPACE, "a value of blanks is none"},
    {SDP_TIDY_FORMAT_MISSING, SDP_TIDY_TRAILING_SPACE, "the blank is where the format belongs"},
    {SDP_TIDY_NAME_MISSING, SDP_TIDY_NAME_EMPTY, "a line that is missing is not empty"},
};

// A rule that removes the line leaves none for the other.
constexpr uint32_t kTakeAway[] = {SDP_TIDY_VERSION_MISSING, SDP_TIDY_ORIGIN_MISSING,
                                  SDP_TIDY_NAME_MISSING, SDP_TIDY_TIME_MISSING};

bool takesAway(uint32_t rule) {
    return std::ranges::find(kTakeAway, rule) != std::end(kTakeAway);
}

bool neverInOneLine(uint32_t first, uint32_t second) {
    return takesAway(first) || takesAway(second) ||
           std::ranges::any_of(kNever, [=](const Never &never) {
               return (never.first == first && never.second == second) ||
                      (never.first == second && never.second == first);
           });
}

bool tells(const Tidied &tidied, uint32_t rule) {
    return std::ranges::any_of(tidied.rows,
                               [=](const SDPTidyRow &row) { return row.enRule == rule; });
}

struct Pair {
    const Fault *first;
    const Fault *second;
    Place firstPlace;
    Place secondPlace;
};

void eachPair(const std::function<void(const Pair &)> &use) {
    const std::vector<Fault> &faults = tidytest::faults();
    for (const Fault &first : faults) {
        for (const Fault *second = &first + 1; second != faults.data() + faults.size(); ++second) {
            for (const Place here : first.places) {
                for (const Place there : second->places) {
                    use({&first, second, here, there});
                }
            }
        }
    }
}

UntidyBody bodyOf(const Pair &pair) {
    UntidyBody body;
    pair.first->apply(body, pair.firstPlace);
    pair.second->apply(body, pair.secondPlace);
    return body;
}

Tidied tidiedPair(const UntidyBody &body, SDPDecodeOptions &options) {
    options = tidytest::kStrict;
    if (body.isTooLong) { // with the carriage returns that it has when all else is repaired
        const Tidied whole = tidytest::tidied(body.text(), tidytest::kAll);
        options.ulMaxBodySize = static_cast<uint32_t>(whole.text.size()) - 1;
    }
    return tidytest::tidied(body.text(), tidytest::kAll, options);
}

TEST(TidyPairs, HaveAFaultForEveryRule) {
    uint64_t rules = 0;
    for (const Fault &fault : tidytest::faults()) {
        EXPECT_EQ(rules & SDP_TIDY_BIT(fault.rule), 0u);
        rules |= SDP_TIDY_BIT(fault.rule);
        for (const Place place : fault.places) {
            UntidyBody body;
            fault.apply(body, place);
            SDPDecodeOptions options;
            const Tidied tidied = tidiedPair(body, options);
            EXPECT_EQ(tidied.outcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED)) << body.text();
            EXPECT_TRUE(tells(tidied, fault.rule)) << body.text();
        }
    }
    EXPECT_EQ(rules, tidytest::kAll);
}

TEST(TidyPairs, AreRepairedAndToldTogether) {
    uint32_t pairs = 0;
    uint32_t inOneLine = 0;
    eachPair([&](const Pair &pair) {
        const bool sameLine =
            pair.firstPlace == pair.secondPlace && pair.firstPlace != Place::Whole;
        if (sameLine && neverInOneLine(pair.first->rule, pair.second->rule)) {
            return;
        }
        const UntidyBody body = bodyOf(pair);
        SDPDecodeOptions options;
        const Tidied tidied = tidiedPair(body, options);
        const std::string what = std::string(SdpTidyRuleAt(pair.first->rule)->pcName) + " and " +
                                 SdpTidyRuleAt(pair.second->rule)->pcName + ":\n" + body.text() +
                                 "----\n" + tidied.report();
        EXPECT_EQ(tidied.outcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED)) << what;
        EXPECT_TRUE(tells(tidied, pair.first->rule)) << what;
        EXPECT_TRUE(tells(tidied, pair.second->rule)) << what;
        tidytest::expectProperties(body.text(), tidied, tidytest::kAll, options);
        ++pairs;
        inOneLine += sameLine ? 1 : 0;
    });
    EXPECT_GT(pairs, 3000u);
    EXPECT_GT(inOneLine, 150u);
}

using Names = std::set<std::string>;

// The rules of a report, of which each line is a place, a rule, and where the line went.
Names namesOf(const std::string &report) {
    Names names;
    std::istringstream rows(report);
    std::string place;
    std::string rule;
    std::string rest;
    while (rows >> place >> rule && std::getline(rows, rest)) {
        names.insert(rule);
    }
    return names;
}

// Those that can be in one line, and those of the whole text, are shown together by a document.
TEST(TidyPairs, ThatMeetHaveACase) {
    std::vector<Names> shown;
    for (const tidytest::TidyCase &current : tidytest::readTidyCases()) {
        shown.push_back(current.report ? namesOf(current.report->joined()) : Names());
    }
    std::set<std::pair<uint32_t, uint32_t>> meeting;
    eachPair([&](const Pair &pair) {
        if (pair.firstPlace == pair.secondPlace &&
            !neverInOneLine(pair.first->rule, pair.second->rule)) {
            meeting.insert(std::minmax(pair.first->rule, pair.second->rule));
        }
    });
    EXPECT_GT(meeting.size(), 100u);
    for (const auto &[first, second] : meeting) {
        const std::string one = SdpTidyRuleAt(first)->pcName;
        const std::string other = SdpTidyRuleAt(second)->pcName;
        EXPECT_TRUE(std::ranges::any_of(
            shown,
            [&](const Names &names) { return names.contains(one) && names.contains(other); }))
            << one << " and " << other;
    }
}

// Two that are said never to meet in a line do not.
TEST(TidyPairs, ThatNeverMeetDoNot) {
    for (const Never &never : kNever) {
        uint32_t tried = 0;
        eachPair([&](const Pair &pair) {
            if (pair.firstPlace != pair.secondPlace || pair.firstPlace == Place::Whole ||
                std::minmax(pair.first->rule, pair.second->rule) !=
                    std::minmax(never.first, never.second)) {
                return;
            }
            const UntidyBody body = bodyOf(pair);
            SDPDecodeOptions options;
            const Tidied tidied = tidiedPair(body, options);
            EXPECT_FALSE(tells(tidied, never.first) && tells(tidied, never.second))
                << never.why << ":\n"
                << body.text() << tidied.report();
            ++tried;
        });
        EXPECT_GT(tried, 0u) << never.why;
    }
}

} // namespace
