// Random bodies, decoded, written and decoded again; and the same bodies damaged.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "output/tree.hpp"
#include "support/allocations.hpp"
#include "support/bodies.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"
#include "support/guarded.hpp"

namespace {

using support::Body;
using support::Configured;
using support::Held;

constexpr int kBodies = 3000;
constexpr int kDamagedBodies = 2500;
constexpr int kDamages = 10; // of each
constexpr uint32_t kSeed = 45661998;

// The tree that a body has once it was written and read: one t= block, the first, or 0 0.
std::string treeWritten(const SdpLine &line) {
    SdpLine written = line;
    SDPTimeField unbounded = {0, 0, nullptr};
    SDPTimeField *field =
        line.stTimeSet.ulNoOfTimeFields != 0 ? line.stTimeSet.ppstTimeFields[0] : &unbounded;
    written.stTimeSet = {1, &field};
    return cli::describeTree(written);
}

// The text that SdpLibSerializeSdp writes into a buffer of the exact size.
std::string serialized(SdpLine &line, size_t length) {
    std::string bytes(length, '#');
    uint32_t written = 0;
    EXPECT_EQ(SdpLibSerializeSdp(&line, reinterpret_cast<uint8_t *>(bytes.data()),
                                 static_cast<uint32_t>(length), &written),
              0u);
    EXPECT_EQ(written, length);
    return bytes;
}

Body deserialized(std::string &bytes) {
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDeSerializeSdp(reinterpret_cast<uint8_t *>(bytes.data()),
                                   static_cast<uint32_t>(bytes.size()), &line),
              0u);
    return Body(line);
}

// The text that is written for the body read from `written`. The t= line that is added to a body
// without one ends in CR LF with every configuration; once read, it is a line like the others.
std::string writtenAgain(const SdpLine &line, std::string written) {
    const SipString end = SdpGetCrlfString(0);
    const size_t given = written.find("t=0 0\r\n");
    if (line.stTimeSet.ulNoOfTimeFields == 0 && given != std::string::npos) {
        written.replace(given + 5, 2, end.pcData, end.ulLen);
    }
    return written;
}

class RoundTrip : public testing::Test {
protected:
    void SetUp() override { support::Allocations::reset(); }

    // Whether the written text is short enough to be read again.
    bool survives(std::string_view text) {
        const Body body = support::decoded(text);
        EXPECT_NE(body, nullptr);
        if (body == nullptr) {
            return false;
        }
        const std::string written = support::encoded(*body);
        std::string bytes = serialized(*body, written.size());
        EXPECT_EQ(bytes, written);
        const Body again = support::decoded(written);
        if (written.size() > SDP_MAX_BODY) {
            EXPECT_EQ(again, nullptr);
            return false;
        }
        EXPECT_NE(again, nullptr);
        if (again != nullptr) {
            EXPECT_EQ(cli::describeTree(*again), treeWritten(*body));
            const std::string last = writtenAgain(*body, written);
            EXPECT_EQ(support::encoded(*again), last);
            EXPECT_EQ(serialized(*deserialized(bytes), last.size()), last);
        }
        return true;
    }
};

TEST_F(RoundTrip, GivesTheSameTreeAndTheSameBytes) {
    std::mt19937 engine(kSeed);
    int survivors = 0;
    const Held before = Held::now();
    for (int i = 0; i < kBodies && !HasFailure(); ++i) {
        const Configured configured(SDP_T38_STYLE_VALUE, i % 2 == 0 ? 1 : 0,
                                    i % 4 < 2 ? SDP_LINE_END_CRLF : SDP_LINE_END_LF);
        const std::string body = support::generateBody(engine);
        survivors += survives(body) ? 1 : 0;
        EXPECT_FALSE(HasFailure()) << "body " << i << ":\n" << support::readable(body);
    }
    EXPECT_TRUE(Held::now() == before) << "something leaked";
    EXPECT_GT(survivors, kBodies * 9 / 10);
}

// The position of a refusal is within the text, and its line and column belong to its offset.
void expectPlaceIn(std::string_view text, const SDPFailure &failure) {
    if (failure.ulLine == 0) {
        EXPECT_EQ(failure.ulColumn, 0u);
        EXPECT_EQ(failure.ulOffset, 0u);
        EXPECT_TRUE(text.empty() || text.size() > SDP_MAX_BODY) << "no place";
        return;
    }
    ASSERT_LE(failure.ulOffset, text.size());
    const std::string_view before = text.substr(0, failure.ulOffset);
    const size_t lastFeed = before.rfind('\n');
    const size_t lineStart = lastFeed == std::string_view::npos ? 0 : lastFeed + 1;
    EXPECT_EQ(failure.ulLine, 1 + std::count(before.begin(), before.end(), '\n'));
    EXPECT_EQ(failure.ulColumn, failure.ulOffset - lineStart + 1);
}

void expectKnownRefusal(std::string_view text, SDPResult result) {
    SDPResultText words = {};
    EXPECT_EQ(SdpLibDescribeResult(result, &words), 0u) << result;
    EXPECT_STRNE(words.pcSentence, "");
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_EQ(failure.ulResult, result);
    ASSERT_NE(failure.pcCheck, nullptr);
    EXPECT_TRUE(*words.pcCheck == '\0' || std::string_view(words.pcCheck) == failure.pcCheck);
    expectPlaceIn(text, failure);
}

// True if it is accepted. A body that is accepted can be written.
bool decodeDamaged(const std::string &text) {
    const Held before = Held::now();
    const support::Guarded input(text);
    const SipString body = input.text();
    auto *line = reinterpret_cast<SdpLine *>(1);
    const SDPResult result = SdpLibDecodeSdp(&body, &line);
    if (result == 0) {
        EXPECT_FALSE(support::encoded(*line).empty());
        EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    } else {
        EXPECT_EQ(line, nullptr);
        expectKnownRefusal(text, result);
    }
    EXPECT_TRUE(Held::now() == before) << "something leaked";
    return result == 0;
}

TEST(DamagedBodies, AreAcceptedOrRefusedWithAReasonAndAPlace) {
    support::Allocations::reset();
    std::mt19937 engine(kSeed);
    int accepted = 0;
    for (int i = 0; i < kDamagedBodies; ++i) {
        const std::string body = support::generateBody(engine);
        for (int n = 0; n < kDamages && !HasFailure(); ++n) {
            const std::string damaged = support::damage(body, engine);
            accepted += decodeDamaged(damaged) ? 1 : 0;
            EXPECT_FALSE(HasFailure()) << "body " << i << ", damage " << n << ":\n"
                                       << support::readable(damaged);
        }
    }
    // The damage is neither so small nor so large that one of the two results never occurs.
    EXPECT_GT(accepted, kDamagedBodies * kDamages / 10);
    EXPECT_LT(accepted, kDamagedBodies * kDamages * 9 / 10);
}

} // namespace
