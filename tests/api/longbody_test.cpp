// Bodies longer than 4093 bytes: the limit, the copy they are decoded from, the options of one
// decode, and the time they take.
#include <gtest/gtest.h>

#include <string>

#include "sdpline/sdpinternals.h"
#include "support/allocations.hpp"
#include "support/bodies.hpp"
#include "support/guarded.hpp"
#include "support/logs.hpp"

namespace {

using support::Held;

const std::string kHead = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nt=0 0\n";

// A body of exactly that many bytes.
std::string bodyOf(size_t size) {
    const std::string line = "a=x:" + std::string(95, 'y') + '\n';
    std::string body = kHead;
    while (body.size() + 2 * line.size() < size) {
        body += line;
    }
    body += "a=x:" + std::string(size - body.size() - 5, 'z') + '\n';
    return body;
}

std::string nameOf(SDPResult result) {
    SDPResultText text = {};
    return result == 0 ? "ok" : SdpLibDescribeResult(result, &text) == 0 ? text.pcCheck : "unknown";
}

SDPResult decode(const std::string &body, support::Body &decoded,
                 const SDPDecodeOptions *options = nullptr) {
    const support::Guarded input(body);
    const SipString text = input.text();
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdpWithOptions(&text, options, &line);
    decoded.reset(line);
    return result;
}

std::string outcomeOf(const std::string &body, const SDPDecodeOptions *options = nullptr) {
    support::Body decoded;
    const SDPResult result = decode(body, decoded, options);
    EXPECT_EQ(result == 0, decoded != nullptr);
    return nameOf(result);
}

// Counts and refuses requests to the process heap while it exists.
class WatchedMemory {
public:
    explicit WatchedMemory(bool refuses) {
        refuses_ = refuses;
        requests_ = 0;
        releases_ = 0;
        free_ = gSipSystemMemCp->pfnFree;
        gSipSystemMemCp->pfnFree = [](void *memory) {
            ++releases_;
            return free_(memory);
        };
        alloc_ = gSipSystemMemCp->pfnAlloc;
        gSipSystemMemCp->pfnAlloc = [](SDPMemCp *memCp, uint32_t size) {
            ++requests_;
            return refuses_ ? nullptr : alloc_(memCp, size);
        };
    }
    ~WatchedMemory() {
        gSipSystemMemCp->pfnAlloc = alloc_;
        gSipSystemMemCp->pfnFree = free_;
    }
    WatchedMemory(const WatchedMemory &) = delete;
    WatchedMemory &operator=(const WatchedMemory &) = delete;

    static uint32_t requests() { return requests_; }
    static uint32_t releases() { return releases_; }

private:
    static inline decltype(SDPMemCp::pfnAlloc) alloc_ = nullptr;
    static inline decltype(SDPMemCp::pfnFree) free_ = nullptr;
    static inline bool refuses_ = false;
    static inline uint32_t requests_ = 0;
    static inline uint32_t releases_ = 0;
};

class LongBody : public testing::Test {
protected:
    void TearDown() override {
        EXPECT_EQ(SdpSetMaxBodySize(SDP_MAX_BODY), 0u);
        SdpSetSupMedProtoRtpFamily(0);
    }

    support::LogRecorder log;
};

TEST_F(LongBody, TheLimitIs4093AtFirstAndAtMost65535) {
    EXPECT_EQ(SdpGetMaxBodySize(), 4093u);
    EXPECT_EQ(SdpSetMaxBodySize(65535), 0u);
    EXPECT_EQ(SdpGetMaxBodySize(), 65535u);
    for (const uint32_t size : {0u, 65536u, 0xFFFFFFFFu}) {
        EXPECT_EQ(nameOf(SdpSetMaxBodySize(size)), "ConfigMaxBody");
        EXPECT_EQ(SdpGetMaxBodySize(), 65535u) << "a refused size changes nothing";
    }
    EXPECT_EQ(log.texts().size(), 3u);
    EXPECT_EQ(SdpSetMaxBodySize(1), 0u);
    EXPECT_EQ(SdpGetMaxBodySize(), 1u);
}

TEST_F(LongBody, IsDecodedUpToTheLimitAndNotBeyond) {
    EXPECT_EQ(outcomeOf(bodyOf(4093)), "ok");
    EXPECT_EQ(outcomeOf(bodyOf(4094)), "ParseArgument");
    for (const uint32_t limit : {4094u, 4096u, 4097u, 5000u, 65535u}) {
        ASSERT_EQ(SdpSetMaxBodySize(limit), 0u);
        EXPECT_EQ(outcomeOf(bodyOf(limit)), "ok") << limit;
        EXPECT_EQ(outcomeOf(bodyOf(limit + 1)), "ParseArgument") << limit;
    }
}

TEST_F(LongBody, IsTheSameTreeAsInTwoHalves) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    const std::string body = bodyOf(9000);
    support::Body decoded;
    ASSERT_EQ(decode(body, decoded), 0u);
    const std::string written = support::encoded(*decoded);
    std::string expected;
    for (const char byte : body) {
        expected += byte == '\n' ? "\r\n" : std::string(1, byte);
    }
    EXPECT_EQ(written, expected);
}

TEST_F(LongBody, ItsCopyComesThroughTheServiceAndGoesBack) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    const Held before = Held::now();
    {
        const WatchedMemory memory(false);
        EXPECT_EQ(outcomeOf(bodyOf(4093)), "ok");
        EXPECT_EQ(memory.requests(), 0u) << "a short body needs no copy";
        support::Body decoded;
        EXPECT_EQ(decode(bodyOf(60000), decoded), 0u);
        EXPECT_EQ(memory.requests(), 1u);
        EXPECT_EQ(memory.releases(), 1u) << "before the decode returns";
        EXPECT_EQ(outcomeOf(bodyOf(5000) + "?"), "AfterAttributes");
    }
    EXPECT_EQ(Held::now(), before);
}

TEST_F(LongBody, WithoutMemoryForTheCopyIsRefused) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    const Held before = Held::now();
    const WatchedMemory memory(true);
    EXPECT_EQ(outcomeOf(bodyOf(4094)), "ParseCopyAlloc");
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    EXPECT_STREQ(failure.pcCheck, "ParseCopyAlloc");
    EXPECT_EQ(failure.ulLine, 0u);
    EXPECT_EQ(Held::now(), before);
}

TEST_F(LongBody, GivesItsCopyBackWhereverItIsRefused) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    const std::string body = kHead + "m=audio 9 RTP/AVP 0\n" + bodyOf(5000).substr(kHead.size());
    ASSERT_EQ(outcomeOf(body), "ok");
    uint32_t refused = 0;
    for (size_t at = 0; at < body.size() && refused < 40; at = body.find('\n', at) + 1) {
        std::string wrong = body;
        wrong[at] = '?';
        const Held before = Held::now();
        const WatchedMemory memory(false);
        support::Body decoded;
        EXPECT_NE(decode(wrong, decoded), 0u) << at;
        EXPECT_EQ(memory.requests(), 1u) << at;
        EXPECT_EQ(memory.releases(), 1u) << at;
        EXPECT_EQ(Held::now(), before) << at;
        ++refused;
    }
    EXPECT_GE(refused, 6u);
}

TEST_F(LongBody, GivesItsCopyBackWhereverMemoryRunsOut) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    std::string body = kHead;
    while (body.size() < 4100) {
        body += "a=fmtp:96 " + std::string(90, 'x') + '\n';
    }
    const Held before = Held::now();
    for (uint32_t n = 1;; ++n) {
        const WatchedMemory memory(false);
        support::Allocations::reset();
        support::Allocations::failAt(n);
        support::Body decoded;
        const SDPResult result = decode(body, decoded);
        const bool failed = support::Allocations::failed();
        support::Allocations::reset();
        EXPECT_EQ(memory.requests(), memory.releases()) << n;
        if (!failed) {
            EXPECT_EQ(result, 0u);
            EXPECT_GT(n, 80u);
            break;
        }
        EXPECT_NE(result, 0u) << n;
        EXPECT_EQ(Held::now(), before) << n;
    }
}

TEST_F(LongBody, WhatNeedsNoSettingIsDecodedWithTheSameRequests) {
    const std::string bodies[] = {bodyOf(4093),
                                  kHead + "m=audio 9 RTP/AVP 0 8\nm=image 9 udptl t38\n",
                                  kHead + "m=application 9 UDP/DTLS/SCTP webrtc-datachannel\n"};
    for (const std::string &body : bodies) {
        const auto requests = [&body] {
            const WatchedMemory memory(false);
            support::Allocations::reset();
            EXPECT_EQ(outcomeOf(body), "ok");
            EXPECT_EQ(memory.requests(), 0u);
            return support::Allocations::count();
        };
        const uint32_t without = requests();
        ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
        SdpSetSupMedProtoRtpFamily(1);
        EXPECT_EQ(requests(), without);
        ASSERT_EQ(SdpSetMaxBodySize(SDP_MAX_BODY), 0u);
        SdpSetSupMedProtoRtpFamily(0);
    }
}

// Attribute lists beyond 2047 items grow by doubling, with as many pointers as there are lines.
TEST_F(LongBody, HoldsListsOfAnyLength) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    for (const uint32_t lines : {2047u, 2048u, 2049u, 4096u, 4097u, 16000u}) {
        std::string body = kHead;
        for (uint32_t i = 0; i < lines; ++i) {
            body += "a=x\n";
        }
        support::Body decoded;
        ASSERT_EQ(decode(body, decoded), 0u) << lines;
        ASSERT_EQ(decoded->pstAttrList->ulNoOfAttrs, lines);
        for (uint32_t i = 0; i < lines; ++i) {
            ASSERT_EQ(decoded->pstAttrList->ppstAttrs[i]->ulAttrType, 35u);
        }
    }
}

// Lists that grow by one slot at a time would need the square of this.
TEST_F(LongBody, TakesRequestsInProportionToItsLength) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    std::string body = kHead + "r=";
    while (body.size() + 3 < 65535) {
        body += "1 ";
    }
    body += "1\n";
    support::Allocations::reset();
    EXPECT_EQ(outcomeOf(body), "ok");
    EXPECT_LT(support::Allocations::count(), 32800u + 2048u + 64u);
}

// ---- Options of one decode

TEST_F(LongBody, OptionsHoldForOneDecodeAndLeaveTheSettings) {
    const std::string offer = kHead + "m=audio 9 UDP/TLS/RTP/SAVPF 111 63\n";
    const SDPDecodeOptions family = {1, SDP_MAX_BODY};
    EXPECT_EQ(outcomeOf(offer), "FormatEnd");
    EXPECT_EQ(outcomeOf(offer, &family), "ok");
    EXPECT_EQ(outcomeOf(offer), "FormatEnd");
    EXPECT_EQ(SdpGetSupMedProtoRtpFamily(), 0u);
    const SDPDecodeOptions size = {0, 65535};
    EXPECT_EQ(outcomeOf(bodyOf(65535), &size), "ok");
    EXPECT_EQ(outcomeOf(bodyOf(65535)), "ParseArgument");
    EXPECT_EQ(SdpGetMaxBodySize(), 4093u);
}

TEST_F(LongBody, OptionsGoBeforeTheSettings) {
    ASSERT_EQ(SdpSetMaxBodySize(65535), 0u);
    SdpSetSupMedProtoRtpFamily(1);
    const SDPDecodeOptions strict = {0, SDP_MAX_BODY};
    EXPECT_EQ(outcomeOf(kHead + "m=audio 9 RTP/SAVPF 0 8\n", &strict), "FormatEnd");
    EXPECT_EQ(outcomeOf(bodyOf(4094), &strict), "ParseArgument");
    EXPECT_EQ(outcomeOf(kHead + "m=audio 9 RTP/SAVPF 0 8\n"), "ok");
}

TEST_F(LongBody, OptionsWithASizeOutOfBoundsAreRefused) {
    for (const uint32_t size : {0u, 65536u}) {
        const SDPDecodeOptions options = {0, size};
        const SipString text = {0, nullptr};
        auto *line = reinterpret_cast<SdpLine *>(1);
        EXPECT_EQ(nameOf(SdpLibDecodeSdpWithOptions(&text, &options, &line)), "DecodeOptions");
        EXPECT_EQ(line, reinterpret_cast<SdpLine *>(1));
    }
}

TEST_F(LongBody, OnlyTheValue1SwitchesTheFamilyOn) {
    for (const uint32_t value : {0u, 1u, 2u, 0xFFFFFFFFu}) {
        SdpSetSupMedProtoRtpFamily(value);
        EXPECT_EQ(SdpGetSupMedProtoRtpFamily(), value);
        EXPECT_EQ(outcomeOf(kHead + "m=audio 9 RTP/SAVPF 0 8\n"), value == 1 ? "ok" : "FormatEnd");
    }
}

} // namespace
