// Repairs and doubts in C++: tidy.hpp with the shared libraries.
#include <gtest/gtest.h>

#include "sdpline/tidy.hpp"
#include "support/allocations.hpp"

namespace {

using sdpline::TidyRules;
using support::Allocations;
using support::Held;

constexpr std::string_view kUntidy = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=\r\nt=0 0\r\n";
constexpr std::string_view kTidy = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";

TEST(TidyApi, ARepairedTextHasABodyAndItsRepairs) {
    auto tidied = sdpline::tidy(kUntidy);
    ASSERT_TRUE(tidied) << tidied.error().message();
    EXPECT_TRUE(tidied->isRepaired());
    EXPECT_EQ(tidied->text(), kTidy);
    ASSERT_EQ(tidied->repairs().size(), 1u);
    EXPECT_EQ(tidied->repairs()[0].message(),
              "3:3: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3]");
    EXPECT_EQ(tidied->repairs()[0].newLine, 3u);
    ASSERT_TRUE(tidied->body());
    EXPECT_EQ(tidied->body()->sessionName(), "-");
    EXPECT_FALSE(tidied->error());
}

TEST(TidyApi, ATextThatIsTakenIsTheCallers) {
    const auto tidied = sdpline::tidy(kTidy);
    ASSERT_TRUE(tidied);
    EXPECT_TRUE(tidied->isUnchanged());
    EXPECT_EQ(tidied->text().data(), kTidy.data());
    EXPECT_TRUE(tidied->repairs().empty());
    EXPECT_TRUE(tidied->body());
}

TEST(TidyApi, ARefusedTextTellsWhyItStillIs) {
    const std::string text = std::string(kUntidy) + "m=audio 5004 x\r\n";
    const auto tidied = sdpline::tidy(text);
    ASSERT_TRUE(tidied);
    EXPECT_TRUE(tidied->isRefused());
    EXPECT_FALSE(tidied->body());
    EXPECT_EQ(tidied->text().data(), text.data());
    EXPECT_EQ(tidied->repairs().size(), 1u);
    ASSERT_TRUE(tidied->error());
    EXPECT_EQ(tidied->error()->check, "FormatSpace");
    EXPECT_EQ(tidied->error()->line, 5u);
}

TEST(TidyApi, RulesAreChosenByNumberAndName) {
    const TidyRules rules;
    EXPECT_TRUE(rules.contains(SDP_TIDY_NAME_EMPTY));
    EXPECT_FALSE(rules.contains(SDP_TIDY_ORIGIN_USER));
    EXPECT_TRUE(TidyRules::withOptional().contains(SDP_TIDY_ORIGIN_USER));
    EXPECT_FALSE(TidyRules::withOptional().contains(SDP_TIDY_CONN_HOST));
    EXPECT_TRUE(rules.with(SDP_TIDY_CONN_HOST).contains(SDP_TIDY_CONN_HOST));
    EXPECT_EQ(rules.with(SDP_TIDY_CR_INSIDE), rules) << "a doubt is no repair";
    EXPECT_EQ(rules.with(SDP_TIDY_RULE_COUNT), rules);
    EXPECT_EQ(TidyRules::numberOf("connhost"), std::uint32_t{SDP_TIDY_CONN_HOST});
    EXPECT_FALSE(TidyRules::numberOf("nothing"));
    EXPECT_TRUE(sdpline::tidy(kUntidy, rules.without(SDP_TIDY_NAME_EMPTY)).value().isRefused());
    EXPECT_TRUE(sdpline::tidy(kUntidy, TidyRules::none()).value().isRefused());
}

TEST(TidyApi, OptionsGoWithTheirDecode) {
    const std::string offer = std::string(kUntidy) + "m=audio 9 UDP/TLS/RTP/SAVPF 111 63\r\n";
    EXPECT_TRUE(sdpline::tidy(offer).value().isRefused());
    const auto tidied = sdpline::tidy(offer, {}, {.rtpFamily = true});
    ASSERT_TRUE(tidied->isRepaired());
    EXPECT_EQ(tidied->body()->media()[0].payloads().size(), 2u);
}

TEST(TidyApi, DoubtsAreRows) {
    const std::string text = std::string(kTidy) + "m=audio 70000 RTP/AVP 0\r\n";
    const auto doubted = sdpline::findDoubts(text);
    ASSERT_TRUE(doubted);
    EXPECT_TRUE(doubted->isUnchanged());
    ASSERT_EQ(doubted->repairs().size(), 1u);
    for (const sdpline::Repair doubt : doubted->repairs()) {
        EXPECT_EQ(doubt.name(), "PortRange");
        EXPECT_EQ(doubt.column, 9u);
    }
    EXPECT_TRUE(sdpline::findDoubts(kUntidy).value().isRefused());
    EXPECT_TRUE(sdpline::findDoubts(text, {.rtpFamily = true}).value().isUnchanged());
}

TEST(TidyApi, TheBodyMayBeMovedAway) {
    const Held before = Held::now();
    {
        auto tidied = sdpline::tidy(kUntidy);
        std::optional<sdpline::Body> body = std::move(*tidied).body();
        auto other = sdpline::tidy(kTidy);
        *tidied = std::move(*other);
        ASSERT_TRUE(body);
        EXPECT_EQ(body->sessionName(), "-");
    }
    EXPECT_EQ(Held::now(), before);
}

TEST(TidyApi, WhatIsNoMatterOfTheTextIsAnError) {
    EXPECT_FALSE(sdpline::tidy(""));
    EXPECT_FALSE(sdpline::tidy(std::string(65536, 'v')));
    const Held before = Held::now();
    Allocations::reset();
    ASSERT_TRUE(sdpline::tidy(kUntidy));
    const std::uint32_t requests = Allocations::count();
    for (std::uint32_t n = 1; n <= requests; ++n) {
        Allocations::failAt(n);
        const auto tidied = sdpline::tidy(kUntidy);
        EXPECT_TRUE(!tidied || tidied->isRefused()) << n;
    }
    Allocations::reset();
    EXPECT_EQ(Held::now(), before);
}

} // namespace
