// Runs every case of tests/cases/negotiate; an expected answer is also checked, made again with
// itself as the previous one, and evaluated from both sides.
#include <gtest/gtest.h>

#include "negotiate/documents.hpp"
#include "support/casetests.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

class CaseTest : public testing::Test {
public:
    explicit CaseTest(const Case &current) : case_(current) {}

    void SetUp() override { SdpSetSupMedProtoRtpAvpf(1); }
    void TearDown() override { SdpSetSupMedProtoRtpAvpf(0); }

    void TestBody() override {
        const auto outputs = outputsOf(case_);
        uint32_t compared = 0;
        for (const auto &[kind, text] : outputs) {
            if (case_.has(kind)) {
                compare(case_.blocks.at(kind), text);
                ++compared;
            }
        }
        EXPECT_NE(compared, 0u) << "nothing is expected";
        EXPECT_EQ(case_.has("refused"),
                  outputs.count("refused") != 0 && outputs.at("refused") != "");
        if (case_.has("answer")) {
            properties();
        }
        if (case_.has("becomes")) {
            const auto next = sdpline::nextOffer(*bodyOf(case_, "sent"), *bodyOf(case_, "wanted"));
            EXPECT_EQ(textOf(sdpline::checkNext(*bodyOf(case_, "sent"), *next)), "");
        }
    }

private:
    void compare(const Block &block, const std::string &text) {
        SCOPED_TRACE(case_.file + ':' + std::to_string(block.at));
        if (!block.has("part")) {
            EXPECT_EQ(text, block.joined());
            return;
        }
        for (const std::string &line : block.lines) {
            EXPECT_NE(('\n' + text).find('\n' + line + '\n'), std::string::npos)
                << line << "\nis not among\n"
                << text;
        }
    }

    void properties() {
        const auto offer = bodyOf(case_, "offer");
        const auto local = bodyOf(case_, "local");
        const auto options = optionsOf(case_);
        std::optional<Body> previous;
        if (case_.has("previous")) {
            previous = bodyOf(case_, "previous").value();
        }
        const auto first =
            sdpline::answer(*offer, *local, previous ? &*previous : nullptr, options);
        if (!options.avpForAvpf) {
            EXPECT_EQ(textOf(sdpline::check(*offer, first->body)), "");
        }
        const auto second = sdpline::answer(*offer, *local, &first->body, options);
        EXPECT_EQ(textOf(second->body), textOf(first->body)) << "the answer changes";
        const auto ours = sdpline::agree(*offer, first->body);
        for (size_t i = 0; i < first->streams.size(); ++i) {
            EXPECT_EQ(ours->streams[i].accepted, first->streams[i].accepted);
            EXPECT_EQ(ours->streams[i].direction, first->streams[i].direction);
            EXPECT_EQ(ours->streams[i].formats.size(), first->streams[i].formats.size());
            EXPECT_EQ(ours->streams[i].preconditions, first->streams[i].preconditions);
        }
    }

    const Case &case_;
};

const std::vector<Case> cases = readCases(SDPLINE_NEGOTIATE_CASES);
[[maybe_unused]] const bool registered = support::registerCases<CaseTest>("Negotiate_", cases);

} // namespace

} // namespace negotiate_test
