// The operations: arguments, the table of rules, ownership, texts that are never repaired, and the
// cost of a text.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/allocations.hpp"
#include "tidy/tidied.hpp"

namespace {

using support::Allocations;
using support::Held;
using tidytest::Tidied;
using tidytest::tidied;

const std::string kHead = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";
const std::string kNoName = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=\r\nt=0 0\r\n";

// ---- Rules

TEST(TidyRules, AreFoundByNumberAndByName) {
    for (uint32_t number = 0; number < SDP_TIDY_RULE_COUNT; ++number) {
        const SDPTidyRule *const rule = SdpTidyRuleAt(number);
        ASSERT_NE(rule, nullptr);
        EXPECT_EQ(rule->enRule, number);
        std::string name = rule->pcName;
        EXPECT_EQ(SdpTidyRuleByName(name.data(), static_cast<uint32_t>(name.size())), rule);
        for (char &letter : name) {
            letter = static_cast<char>(std::toupper(letter));
        }
        EXPECT_EQ(SdpTidyRuleByName(name.data(), static_cast<uint32_t>(name.size())), rule);
        for (const char *const text : {rule->pcWrong, rule->pcDone, rule->pcReference}) {
            EXPECT_STRNE(text, "");
        }
    }
    EXPECT_EQ(SdpTidyRuleAt(SDP_TIDY_RULE_COUNT), nullptr);
    EXPECT_EQ(SdpTidyRuleByName("NameEmptyy", 10), nullptr);
    EXPECT_EQ(SdpTidyRuleByName("NameEmpt", 8), nullptr);
    EXPECT_EQ(SdpTidyRuleByName(nullptr, 3), nullptr);
}

TEST(TidyRules, AreInOneSetEach) {
    uint64_t all = 0;
    for (const uint32_t set :
         {SDP_TIDY_DEFAULT, SDP_TIDY_OPTIONAL, SDP_TIDY_BY_NAME, SDP_TIDY_DOUBT}) {
        EXPECT_EQ(all & SdpTidyRulesOf(set), 0u);
        all |= SdpTidyRulesOf(set);
    }
    EXPECT_EQ(all, SDP_TIDY_BIT(SDP_TIDY_RULE_COUNT) - 1);
    EXPECT_EQ(SdpTidyRulesOf(0), 0u);
    EXPECT_EQ(SdpTidyRulesOf(SDP_TIDY_DOUBT), all & ~tidytest::kAll);
}

TEST(TidyRules, OfTheDefaultSetLoseAndChangeNothing) {
    for (uint32_t number = 0; number < SDP_TIDY_RULE_COUNT; ++number) {
        const SDPTidyRule &rule = *SdpTidyRuleAt(number);
        if (rule.enSet == SDP_TIDY_DEFAULT) {
            EXPECT_EQ(rule.bLoses, 0u) << rule.pcName;
            EXPECT_EQ(rule.bChanges, 0u) << rule.pcName;
        }
    }
}

// ---- Arguments and ownership

TEST(TidyText, RefusesWhatIsNoText) {
    char byte = 'v';
    const SipString empty = {0, &byte};
    const SipString none = {1, nullptr};
    SDPTidyReport report;
    for (const auto operation : {SdpTidyText, SdpTidyFindDoubts}) {
        for (const SipString *const text :
             {static_cast<const SipString *>(nullptr), &empty, &none}) {
            EXPECT_EQ(operation(text, nullptr, &report), static_cast<uint32_t>(SDP_TIDY_ARGUMENT));
            EXPECT_EQ(report.enOutcome, static_cast<uint32_t>(SDP_TIDY_REFUSED));
            EXPECT_EQ(report.pstLine, nullptr);
            SdpTidyRelease(&report);
        }
        EXPECT_EQ(operation(&empty, nullptr, nullptr), static_cast<uint32_t>(SDP_TIDY_ARGUMENT));
    }
    SdpTidyRelease(nullptr);
}

TEST(TidyText, LooksAtNoMoreThan65535Bytes) {
    const std::string body = kHead + "a=x:" + std::string(65535, 'y');
    EXPECT_EQ(tidied(body, tidytest::kAll).result, static_cast<uint32_t>(SDP_TIDY_ARGUMENT));
    EXPECT_NE(tidied(body.substr(0, 65535), tidytest::kAll).result,
              static_cast<uint32_t>(SDP_TIDY_ARGUMENT));
}

TEST(TidyText, WithoutOptionsMakesTheDefaultRepairs) {
    const SipString text = {static_cast<uint32_t>(kNoName.size()),
                            const_cast<char *>(kNoName.data())};
    SDPTidyReport report;
    ASSERT_EQ(SdpTidyText(&text, nullptr, &report), 0u);
    EXPECT_EQ(report.enOutcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED));
    ASSERT_EQ(report.ulNoOfRows, 1u);
    EXPECT_EQ(report.pstRows[0].enRule, static_cast<uint32_t>(SDP_TIDY_NAME_EMPTY));
    EXPECT_STREQ(report.stFailure.pcCheck, "TextEmpty");
    SdpTidyRelease(&report);
}

TEST(TidyText, UnderTheSettingsOfTheProcessWithoutOthers) {
    const std::string offer = kHead + "m=audio 9 RTP/SAVPF 0 8 \r\n";
    const SipString text = {static_cast<uint32_t>(offer.size()), const_cast<char *>(offer.data())};
    SDPTidyReport report;
    EXPECT_NE(SdpTidyText(&text, nullptr, &report), 0u);
    SdpTidyRelease(&report);
    SdpSetSupMedProtoRtpFamily(1);
    EXPECT_EQ(SdpTidyText(&text, nullptr, &report), 0u);
    SdpTidyRelease(&report);
    SdpSetSupMedProtoRtpFamily(0);
}

TEST(TidyText, LeavesTheBodyToWhoeverTakesIt) {
    const Held before = Held::now();
    const SipString text = {static_cast<uint32_t>(kNoName.size()),
                            const_cast<char *>(kNoName.data())};
    SDPTidyReport report;
    ASSERT_EQ(SdpTidyText(&text, nullptr, &report), 0u);
    SdpLine *line = report.pstLine;
    report.pstLine = nullptr;
    SdpTidyRelease(&report);
    EXPECT_EQ(line->strSessionName.ulLen, 1u);
    SdpLibReleaseSdp(&line);
    EXPECT_EQ(Held::now(), before);
}

TEST(TidyText, ThatIsTakenIsTheCallersAndNeedsNoMemoryOfItsOwn) {
    const SipString text = {static_cast<uint32_t>(kHead.size()), const_cast<char *>(kHead.data())};
    SdpLine *line = nullptr;
    Allocations::reset();
    ASSERT_EQ(SdpLibDecodeSdp(&text, &line), 0u);
    const uint32_t decode = Allocations::count();
    SdpLibReleaseSdp(&line);
    SDPTidyReport report;
    Allocations::reset();
    ASSERT_EQ(SdpTidyText(&text, nullptr, &report), 0u);
    EXPECT_EQ(Allocations::count(), decode);
    EXPECT_EQ(report.strText.pcData, kHead.data());
    EXPECT_EQ(report.pstMemCp, nullptr);
    SdpTidyRelease(&report);
}

// A text that the decoder accepts is not repaired when memory runs out.
TEST(TidyText, ThatMemoryRunsOutForIsNotRepaired) {
    const std::string body = kHead + "a=x:y \r\nm=audio 5 RTP/AVP 0\r\n";
    for (uint32_t n = 1;; ++n) {
        Allocations::failAt(n);
        const Tidied refused = tidied(body, tidytest::kAll);
        const bool failed = Allocations::failed();
        Allocations::reset();
        if (!failed) {
            EXPECT_EQ(refused.outcome, static_cast<uint32_t>(SDP_TIDY_UNCHANGED));
            return;
        }
        EXPECT_NE(refused.outcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED)) << n;
        EXPECT_TRUE(refused.rows.empty());
    }
}

// A lack of memory is reported as the decoder's failure, also where its class is another one than
// that of the others, and though a later line has a fault.
TEST(TidyText, ThatMemoryRunsOutForHasTheFailureOfTheDecoder) {
    const std::string body = kHead + "m=audio 5 RTP/AVP 0\r\nc=IN IP4 192.0.2.1\r\na=ptime: 20\r\n";
    uint32_t found = 0; // first in the decode of the given text, then in that of the repaired one
    for (uint32_t n = 1; n < 100; ++n) {
        Allocations::failAt(n);
        const Tidied refused = tidied(body, tidytest::kAll);
        Allocations::reset();
        if (refused.remaining.pcCheck == std::string_view("MediaConnectionAlloc") && ++found == 1) {
            EXPECT_EQ(refused.result, refused.remaining.ulResult);
            EXPECT_EQ(refused.outcome, static_cast<uint32_t>(SDP_TIDY_REFUSED));
            EXPECT_TRUE(refused.rows.empty());
        }
    }
    EXPECT_GE(found, 1u);
}

// Blanks too many at one place of an o= line and of an m= line: in each gap, so many that the lines
// are short or long, and with or without text after the last line.
TEST(TidyText, OfBlanksTooManyIsRepairedWhereverTheyAre) {
    const std::string origin = "v=0\r\no=user 2890844526 2890842807 IN IP4 192.0.2.1";
    const std::string media = "\r\ns=-\r\nt=0 0\r\nm=audio 5004 RTP/AVP 0 8 101";
    size_t atOrigin = origin.find(' ');
    size_t atMedia = media.find(' ', media.find("m="));
    while (atOrigin != std::string::npos && atMedia != std::string::npos) {
        for (uint32_t count = 1; count <= 40; ++count) {
            for (const std::string end : {"", "\r\n", "\r\na=sendrecv\r\na=ptime:20\r\n"}) {
                const std::string more(count, count % 3 == 0 ? '\t' : ' ');
                std::string body = origin + media + end;
                body.insert(origin.size() + atMedia + 1, more);
                body.insert(atOrigin + 1, more);
                const Tidied repaired = tidied(body, tidytest::kAll);
                EXPECT_EQ(repaired.text, origin + media + end) << body;
                const auto column = std::to_string(atOrigin + 1 - origin.find("o="));
                const auto below = std::to_string(atMedia + 1 - media.find("m="));
                EXPECT_EQ(repaired.report(),
                          "2:" + column + " SpaceRun -> 2\n5:" + below + " SpaceRun -> 5\n")
                    << body;
            }
        }
        atOrigin = origin.find(' ', atOrigin + 1);
        atMedia = media.find(' ', atMedia + 1);
    }
}

// Tidies with each allocation failing in turn, which must not give a repaired text, and at last
// with all memory.
Tidied tidiedInTheEnd(const std::string &body) {
    for (uint32_t n = 1;; ++n) {
        Allocations::failAt(n);
        Tidied repaired = tidied(body, tidytest::kAll);
        const bool failed = Allocations::failed();
        Allocations::reset();
        if (!failed) {
            return repaired;
        }
        EXPECT_NE(repaired.outcome, static_cast<uint32_t>(SDP_TIDY_REPAIRED)) << n;
    }
}

// More lines than the first array of them holds: their rows are the same after it has grown, and
// each allocation may fail.
TEST(TidyText, OfManyFaultyLinesIsRepaired) {
    constexpr uint32_t lines = 150;
    std::string body = kHead;
    for (uint32_t i = 0; i < lines; ++i) {
        body += "a=y" + std::to_string(i) + "\r\n"; // which the decoder accepts
    }
    for (uint32_t i = 0; i < 3; ++i) {
        body += "m=audio 5 RTP/AVP 0\r\nb=AS:64\r\nb=CT:64\r\na=sendrecv\r\n";
    }
    const auto before = static_cast<uint32_t>(std::count(body.begin(), body.end(), '\n'));
    std::string expected = body;
    for (uint32_t i = 0; i < lines; ++i) {
        body += "a=x" + std::to_string(i) + ":\r\n";
        expected += "a=x" + std::to_string(i) + "\r\n";
    }
    body += "a=ptime: 20\r\n";
    expected += "a=ptime:20\r\n";
    const Tidied repaired = tidiedInTheEnd(body);
    EXPECT_EQ(repaired.text, expected);
    ASSERT_EQ(repaired.rows.size(), lines + 1);
    for (uint32_t i = 0; i <= lines; ++i) {
        EXPECT_EQ(repaired.rows[i].ulLine, before + 1 + i);
        EXPECT_EQ(repaired.rows[i].ulNewLine, before + 1 + i);
    }
}

// Lines of the last description are out of their order, and one belongs to the session; before them
// are lines and descriptions that the decoder accepts. Each allocation may fail, also where there
// are more lines than the first array of them holds.
class TidyOrder : public testing::TestWithParam<std::tuple<uint32_t, uint32_t>> {};

TEST_P(TidyOrder, IsRestoredAfterAcceptedLines) {
    const auto [descriptions, lines] = GetParam();
    std::string session = kHead;
    std::string media;
    for (uint32_t i = 0; i < lines; ++i) {
        session += "a=y" + std::to_string(i) + "\r\n";
    }
    for (uint32_t i = 0; i < descriptions; ++i) {
        media += "m=audio 5 RTP/AVP 0\r\nb=AS:64\r\nb=CT:64\r\n";
        for (uint32_t line = 0; line < lines; ++line) {
            media += "a=z" + std::to_string(line) + "\r\n";
        }
    }
    media += "m=video 7 RTP/AVP 31\r\n";
    const std::string connection = "c=IN IP4 192.0.2.2\r\n";
    const std::string attributes = "a=sendrecv\r\na=ptime:20\r\n";
    const std::string ofSession = "z=0 0\r\n";
    const std::string body = session + media + attributes + connection + ofSession + "a=x";
    const auto place = session.find("a=") == std::string::npos ? session.size() : kHead.size();
    const std::string expected = session.substr(0, place) + ofSession + session.substr(place) +
                                 media + connection + attributes + "a=x";
    const Tidied repaired = tidiedInTheEnd(body);
    EXPECT_EQ(repaired.text, expected);
    const auto all = static_cast<uint32_t>(std::count(body.begin(), body.end(), '\n'));
    EXPECT_EQ(repaired.report(), std::to_string(all - 1) + ":1 LineOrder -> " +
                                     std::to_string(all - 2) + '\n' + std::to_string(all) +
                                     ":1 LineLevel -> 5\n");
}

INSTANTIATE_TEST_SUITE_P(Bodies, TidyOrder,
                         testing::Combine(testing::Values(0u, 1u, 2u, 3u),
                                          testing::Values(0u, 1u, 20u, 60u)));

// The library recognises a lack of memory by the classes and names of the decoder's checks.
TEST(TidyText, KnowsTheChecksOfMemory) {
    struct Row {
        std::string_view name;
        std::string_view outcome;
        std::string_view sentence;
    };
    const Row rows[] = {
#define CHECK(source, name, function, outcome, logged, sentence) {#name, #outcome, sentence},
#include "checks/parser.def"
#include "checks/parser_attribute.def"
#include "checks/parser_media.def"
#include "checks/parser_time.def"
#include "checks/text.def"
#undef CHECK
        {"DecodeBlock", "CODE(152, RESOURCE)", "no memory"},
    };
    const auto isOfMemory = [](std::string_view check) {
        return check.ends_with("Alloc") || check.ends_with("Grow") || check.ends_with("Store") ||
               check.ends_with("Block") || check == "SetString";
    };
    for (const Row &row : rows) {
        EXPECT_EQ(isOfMemory(row.name), row.sentence.starts_with("no memory")) << row.name;
        if (isOfMemory(row.name) && row.name != "MediaConnectionAlloc") {
            EXPECT_TRUE(row.outcome.ends_with(" RESOURCE)")) << row.name;
        }
    }
}

// ---- Never repaired

TEST(TidyNever, IsTextBeforeTheVersion) {
    for (const std::string before : {"x", "--boundary\r\n", "a=x\r\n", ";"}) {
        const Tidied refused = tidied(before + kNoName, tidytest::kAll);
        EXPECT_EQ(refused.outcome, static_cast<uint32_t>(SDP_TIDY_REFUSED)) << before;
    }
}

TEST(TidyNever, IsASecondVersion) {
    const Tidied refused = tidied(kNoName + "v=0\r\n", tidytest::kAll);
    EXPECT_EQ(refused.outcome, static_cast<uint32_t>(SDP_TIDY_REFUSED));
    EXPECT_TRUE(refused.rows.empty());
}

TEST(TidyNever, IsACrInsideALine) {
    for (const std::string line :
         {"m=audio 5 RTP/AVP\r0\r\n", "m=audio 5 RTP/AVP 0\r\r\n", "c=IN IP4\r192.0.2.1\r\n"}) {
        const Tidied refused = tidied(kHead + line, tidytest::kAll);
        EXPECT_EQ(refused.outcome, static_cast<uint32_t>(SDP_TIDY_REFUSED)) << line;
    }
}

// ---- Cost

// Twice the text needs twice the requests, whatever is repaired.
TEST(TidyCost, IsLinear) {
    const std::string lines[] = {"a=x:\r\n",  "a=ptime: 20 \r\n",
                                 "\r\n",      "y=1\r\n",
                                 "b=x\r\n",   "c=IN IP4 h.example\r\n",
                                 "i=x\r\n",   "m=a 1 b \r\n",
                                 "t=0 0\r\n", "a=rtpmap:0 PCMU\r\nm=audio 5 RTP/AVP\r\n"};
    const SDPDecodeOptions options = {1, SDP_MAX_LONG_BODY};
    for (const std::string &line : lines) {
        uint32_t requests[2] = {};
        for (uint32_t i = 0; i < 2; ++i) {
            std::string body = kHead + "m=audio 5 RTP/AVP\r\n";
            while (body.size() + line.size() < 30000u * (i + 1)) {
                body += line;
            }
            Allocations::reset();
            tidied(body, tidytest::kAll, options);
            requests[i] = Allocations::count();
        }
        EXPECT_LE(requests[1], 2 * requests[0] + 2)
            << line << requests[0] << " and " << requests[1];
    }
}

} // namespace
