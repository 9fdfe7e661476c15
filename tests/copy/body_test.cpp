// Copies of whole bodies: what they refuse, and what each failed request for memory gives.
#include <gtest/gtest.h>

#include "sdpline/sdpline.h"
#include "support/allocations.hpp"
#include "support/bodies.hpp"
#include "support/logs.hpp"

namespace {

using support::Allocations;
using support::Body;
using support::Held;

constexpr std::string_view kText =
    "v=0\r\no=- 1 2 IN IP4 h\r\ns=-\r\ni=x\r\nu=x\r\ne=x\r\np=x\r\nc=IN IP4 "
    "1.2.3.4/5/6\r\nb=AS:1\r\n"
    "t=1 2\r\nr=7d 1h 0 25h\r\nz=x\r\nk=prompt\r\na=x:y\r\nm=audio 1/2 RTP/AVP 0 8\r\ni=x\r\n"
    "c=IN IP4 1.2.3.4\r\nb=AS:1\r\nk=prompt\r\na=rtpmap:0 PCMU/8000/2\r\na=x\r\n"
    "a=des:other optional remote sendrecv\r\na=ecan:fb on x\r\na=silenceSupp:on x\r\n"
    "m=x 1 y z\r\n";

std::string textOf(SDPResult result) {
    SDPResultText text;
    SdpLibDescribeResult(result, &text);
    return text.pcCheck;
}

TEST(CloneBody, isWrittenTheSame) {
    const Body body = support::decoded(kText);
    ASSERT_TRUE(body);
    SdpLine *clone = nullptr;
    ASSERT_EQ(SdpLibCloneSdp(body.get(), &clone), 0u);
    EXPECT_EQ(support::encoded(*clone), support::encoded(*body));
    EXPECT_NE(clone->pstMemCp, body->pstMemCp);
    SdpLibReleaseSdp(&clone);
}

TEST(CloneBody, refusesNullPointers) {
    SdpLine line = {};
    SdpLine *clone = &line;
    support::LogRecorder logs;
    EXPECT_EQ(textOf(SdpLibCloneSdp(nullptr, &clone)), "CloneBodyArgument");
    EXPECT_EQ(clone, &line) << "an argument that is refused leaves the target alone";
    EXPECT_EQ(textOf(SdpLibCloneSdp(&line, nullptr)), "CloneBodyArgument");
    EXPECT_EQ(logs.texts().size(), 2u);
}

TEST(CloneBody, refusesMorePayloadNumbersThanALineHas) {
    const Body body = support::decoded(kText);
    ASSERT_TRUE(body);
    const Held before = Held::now();
    body->stMediaSet.ppstMediaDescs[0]
        ->stMediaField.stMediaFmt.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads = 101;
    SdpLine *clone = body.get();
    EXPECT_EQ(textOf(SdpLibCloneSdp(body.get(), &clone)), "CloneBodyPayLoads");
    EXPECT_EQ(clone, nullptr);
    EXPECT_TRUE(Held::now() == before);
}

TEST(CloneBody, failsWithEachOfItsRequestsAndLeavesNothing) {
    const Body body = support::decoded(kText);
    ASSERT_TRUE(body);
    for (uint32_t n = 1;; ++n) {
        const Held before = Held::now();
        SdpLine *clone = body.get();
        Allocations::failAt(n);
        const SDPResult result = SdpLibCloneSdp(body.get(), &clone);
        const bool failed = Allocations::failed();
        Allocations::reset();
        EXPECT_EQ(result != 0, failed) << n;
        if (result == 0) {
            EXPECT_GT(n, 60u) << "a request for each record, text and list";
            SdpLibReleaseSdp(&clone);
            return;
        }
        EXPECT_EQ(textOf(result), n <= 1   ? "CreateBlock"
                                  : n == 2 ? "CreateAlloc"
                                           : "CloneBodyAlloc")
            << n;
        EXPECT_EQ(clone, nullptr);
        EXPECT_TRUE(Held::now() == before) << n;
    }
}

} // namespace
