// What memory a body of the greatest length can make a decode take. What it can make it do is
// measured in instructions, by hostile/cost.sh.
#include <gtest/gtest.h>

#include <string>

#include "sdpline/sdpline.h"
#include "support/allocations.hpp"
#include "support/hostile.hpp"

namespace {

constexpr uint64_t kMostPerByte = 64;

// The most bytes that the process heap held for the decode at once.
uint64_t peakOfDecoding(const std::string &body) {
    const support::Held before = support::Held::now();
    SipMmResetPeak();
    const SipString text = {static_cast<uint32_t>(body.size()), const_cast<char *>(body.data())};
    SdpLine *line = nullptr;
    EXPECT_EQ(SdpLibDecodeSdp(&text, &line), 0u) << body.substr(0, 100);
    SipMmStatistics statistics = {};
    SipMmGetStatistics(&statistics);
    EXPECT_EQ(SdpLibReleaseSdp(&line), 0u);
    EXPECT_TRUE(support::Held::now() == before);
    return statistics.ulHeapBytesPeak - before.heapBytes;
}

class HostileBodies : public testing::Test {
protected:
    void SetUp() override { support::Allocations::reset(); }

    void TearDown() override { RecordProperty("worst", worstName_ + " " + std::to_string(worst_)); }

    void measure(const std::string &name, const std::string &body) {
        const uint64_t peak = peakOfDecoding(body);
        EXPECT_LE(body.size(), SDP_MAX_BODY) << name;
        EXPECT_LE(peak, kMostPerByte * body.size()) << name;
        EXPECT_GT(peak, 0u) << name << ": nothing was measured";
        if (peak > worst_) {
            worst_ = peak;
            worstName_ = name;
        }
    }

private:
    uint64_t worst_ = 0;
    std::string worstName_;
};

TEST_F(HostileBodies, OfOneKindTakeASmallMultipleOfTheirLength) {
    for (const support::HostileBody &body : support::hostileBodies()) {
        EXPECT_GT(body.text.size(), SDP_MAX_BODY - 1100);
        measure(body.name, body.text);
    }
}

TEST_F(HostileBodies, OfManyKindsTakeASmallMultipleOfTheirLength) {
    for (const support::HostileBody &body : support::hostileMixtures()) {
        EXPECT_GT(body.text.size(), SDP_MAX_BODY - 40);
        measure(body.name, body.text);
    }
}

} // namespace
