// Several threads that use the C++ API. Threads that change bodies do not share them.
#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "cpp/cpptest.hpp"
#include "support/inthreads.hpp"

using namespace cpptest;
using namespace sdpline;
using support::inThreads;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 400;

} // namespace

TEST(CppThreads, DecodesGoOneAtATime) {
    std::atomic<int> wrong = 0;
    inThreads(kThreads, [&](int i) {
        const std::string name = "thread " + std::to_string(i);
        const std::string text =
            "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=" + name + "\r\nt=0 0\r\na=" + name + "\r\n";
        const std::string refused = std::string(static_cast<std::size_t>(i) + 1, '\n') + "v=0";
        const std::string lines = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\na=" +
                                  std::string(static_cast<std::size_t>(i), 'x') + ":\r\n";
        for (int round = 0; round < kRounds; ++round) {
            auto body = Body::decode(text.substr(0, text.find("a=")));
            const bool edited = body && body->attributes().add("x:" + name).ok() &&
                                body->media().add("audio 1 RTP/AVP 0").ok();
            const auto fails = Body::decode(lines);
            wrong += !edited || body->sessionName() != name || body->attributes().text("x") != name;
            wrong += fails.ok() || fails.error().line != 5 ||
                     (i > 0 && fails.error().column != static_cast<std::uint32_t>(i) + 4);
            wrong += Body::decode(refused).ok();
        }
    });
    EXPECT_EQ(wrong, 0);
}

// The options of a thread affect neither other threads nor the process.
TEST(CppThreads, EachDecodeHasItsOptions) {
    const std::string head = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";
    const std::string offer = head + "m=audio 9 UDP/TLS/RTP/SAVPF 111 63\r\n";
    std::string longBody = head;
    while (longBody.size() <= SDP_MAX_BODY) {
        longBody += "a=x:" + std::string(90, 'x') + "\r\n";
    }
    std::atomic<int> wrong = 0;
    inThreads(kThreads, [&](int i) {
        const DecodeOptions options = {.rtpFamily = i % 2 == 0,
                                       .maxBodySize =
                                           i / 2 % 2 == 0 ? SDP_MAX_LONG_BODY : SDP_MAX_BODY};
        for (int round = 0; round < kRounds; ++round) {
            wrong += Body::decode(offer, options).ok() != options.rtpFamily;
            wrong += Body::decode(longBody, options).ok() != (options.maxBodySize > SDP_MAX_BODY);
            wrong += Body::decode(offer).ok() || Body::decode(longBody).ok();
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(CppThreads, OneBodyIsReadByMany) {
    const Body body = decoded(kEveryLine);
    std::atomic<int> wrong = 0;
    inThreads(kThreads, [&](int) {
        for (int round = 0; round < kRounds; ++round) {
            wrong += *body.encode() != kEveryLine;
            const auto copy = body.clone();
            wrong += !copy || copy->media().size() != 4;
            wrong += body.media()[0].attributes().number(AttributeType::PTime) != 20u;
        }
    });
    EXPECT_EQ(wrong, 0);
}

#ifndef SDPLINE_THREAD_LOCAL
TEST(CppThreads, CallersOfTheCDecoderTakeTheSameLock) {
    std::atomic<int> wrong = 0;
    inThreads(kThreads, [&](int i) {
        for (int round = 0; round < kRounds; ++round) {
            if (i % 2 == 0) {
                wrong += !Body::decode(kEveryLine).ok();
                continue;
            }
            const std::scoped_lock lock(decodeMutex());
            const SipString text = {static_cast<std::uint32_t>(kPlain.size()),
                                    const_cast<char *>(kPlain.data())};
            SdpLine *line = nullptr;
            wrong += SdpLibDecodeSdp(&text, &line) != 0;
            SdpLibReleaseSdp(&line);
        }
    });
    EXPECT_EQ(wrong, 0);
}
#endif
