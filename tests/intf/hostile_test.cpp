// What a body of the greatest length can make a decode cost: bodies of the shortest lines of each
// kind, which give the most records for their bytes.
#include <gtest/gtest.h>

#include <bit>
#include <iterator>
#include <string>
#include <string_view>

#include "sdpline/sdpline.h"
#include "support/allocations.hpp"

namespace {

constexpr uint64_t kMostPerByte = 64;

constexpr std::string_view kStart = "v=0\no=- 1 1 IN IP4 x\ns=-\n";
constexpr std::string_view kTimes = "t=0 0\n";
constexpr std::string_view kMedia = "m=x 1 x x\n";

// A head behind kStart, then one unit as often as there is room for it.
struct Hostile {
    const char *name;
    std::string head;
    std::string unit;
};

// The most payload numbers of one line.
std::string allPayloads() {
    std::string line = "m=x 1 RTP/AVP";
    for (uint32_t i = 0; i < SDP_MAX_PAYLOADS; ++i) {
        line += " 0";
    }
    return line + "\n";
}

const std::string kTimesHead(kTimes);
const std::string kMediaHead(kMedia);

const Hostile kHostile[] = {
    {"attributes without value", kTimesHead, "a=x\n"},
    {"attributes with value", kTimesHead, "a=x:y\n"},
    {"media attributes", kMediaHead, "a=x\n"},
    {"mode attributes", kTimesHead, "a=fax\n"},
    {"text attributes", kTimesHead, "a=cat:x\n"},
    {"rtpmaps", kTimesHead, "a=rtpmap:0 /0\n"},
    {"preconditions", kTimesHead, "a=curr:x e2e none\n"},
    {"e= lines", "", "e=x\n"},
    {"p= lines", "", "p=x\n"},
    {"b= lines", "", "b=x\n"},
    {"media b= lines", kMediaHead, "b=x\n"},
    {"t= lines", "", "t=0 0\n"},
    {"t= lines with an r= line", "", "t=0 0\nr=0\n"},
    {"r= lines", kTimesHead, "r=0\n"},
    {"typed times", kTimesHead + "r=0", " 0"},
    {"typed times with unit", kTimesHead + "r=0", " 0d"},
    {"r= lines of two", kTimesHead, "r=0 0\n"},
    {"m= lines", "", "m=x 1 x x\n"},
    {"m= lines without formats", "", "m=x 0 RTP/AVP\n"},
    {"m= lines with a payload", "", "m=x 1 RTP/AVP 0\n"},
    {"m= lines with all payloads", "", allPayloads()},
    {"m= lines with an attribute", "", "m=x 1 x x\na=x\n"},
    {"m= lines with b= and a=", "", "m=x 1 x x\nb=x\na=x\n"},
    {"m= lines with every line", "", "m=x 1 x x\ni=x\nc=IN IP4 0.0.0.0\nb=x\nk=x\na=x\n"},
};

// A run of one unit within a mixed body, in the order that bodies have.
struct Section {
    std::string_view head;
    std::string_view unit;
    std::string_view tail;
};

constexpr Section kSections[] = {
    {"", "e=x\n", ""},   {"", "p=x\n", ""}, {"", "b=x\n", ""},       {kTimes, "", ""},
    {"r=0", " 0", "\n"}, {"", "a=x\n", ""}, {"", "m=x 1 x x\n", ""}, {"", "a=x\n", ""},
};
constexpr uint32_t kTimesSection = 3;

void fillUp(std::string &body, std::string_view unit, size_t length) {
    while (!unit.empty() && body.size() + unit.size() <= length) {
        body += unit;
    }
}

std::string hostileBody(const Hostile &kind) {
    std::string body = std::string(kStart) + kind.head;
    fillUp(body, kind.unit, SDP_MAX_BODY);
    return body;
}

// The sections of the set, the t= line always among them, share the body's bytes.
std::string mixedBody(uint32_t set) {
    set |= 1u << kTimesSection;
    auto left = static_cast<size_t>(std::popcount(set)) - 1;
    std::string body(kStart);
    for (uint32_t i = 0; i < std::size(kSections); ++i) {
        if ((set >> i & 1) == 0) {
            continue;
        }
        const Section &section = kSections[i];
        body += section.head;
        if (!section.unit.empty()) {
            const size_t share = (SDP_MAX_BODY - kTimes.size() - body.size()) / left--;
            fillUp(body, section.unit, body.size() + share);
        }
        body += section.tail;
    }
    return body;
}

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
        EXPECT_LE(peak, kMostPerByte * body.size()) << name;
        EXPECT_GE(peak, body.size()) << name << ": nothing was measured";
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
    for (const Hostile &kind : kHostile) {
        const std::string body = hostileBody(kind);
        EXPECT_GT(body.size() + kind.unit.size(), SDP_MAX_BODY);
        measure(kind.name, body);
    }
}

// Every two sections, and all of them.
TEST_F(HostileBodies, OfManyKindsTakeASmallMultipleOfTheirLength) {
    constexpr uint32_t all = (1u << std::size(kSections)) - 1;
    for (uint32_t set = 1; set <= all; ++set) {
        const bool two = std::popcount(set & ~(1u << kTimesSection)) == 2;
        if ((two && (set >> kTimesSection & 1) == 0) || set == all) {
            const std::string body = mixedBody(set);
            EXPECT_GT(body.size(), SDP_MAX_BODY - 40);
            EXPECT_LE(body.size(), SDP_MAX_BODY);
            measure("mixture " + std::to_string(set), body);
        }
    }
}

} // namespace
