// Masks: nothing that was to be hidden is left, and what is left is still a body.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "input/body.hpp"
#include "redact/redact.hpp"
#include "support/bodies.hpp"
#include "support/damage.hpp"
#include "support/generator.hpp"

namespace {

std::string redacted(const std::string &line) {
    return cli::Redactor().redacted(line);
}

TEST(Redact, MasksWhatIdentifies) {
    EXPECT_EQ(redacted("o=alice 1 2 IN IP4 10.1.2.3"), "o=user1 1 2 IN IP4 198.18.0.1");
    EXPECT_EQ(redacted("o=- 1 2 IN IP6 2001:db8::9"), "o=- 1 2 IN IP6 2001:db8::1");
    EXPECT_EQ(redacted("o=a 1 2 IN IP4 pc.example.com"), "o=user1 1 2 IN IP4 host1.invalid");
    EXPECT_EQ(redacted("c=IN IP4 224.2.1.1/127/3"), "c=IN IP4 198.18.0.1/127/3");
    EXPECT_EQ(redacted("c=IN IP6 FF15::101/5"), "c=IN IP6 2001:db8::1/5");
    EXPECT_EQ(redacted("u=http://example.com/a"), "u=http://redacted.invalid/1");
    EXPECT_EQ(redacted("e=a@b (A)"), "e=email1@redacted.invalid");
    EXPECT_EQ(redacted("p=+1 2"), "p=phone1");
    EXPECT_EQ(redacted("k=clear:x"), "k=clear:secret1");
    EXPECT_EQ(redacted("k=x"), "k=secret1");
    EXPECT_EQ(redacted("s=from 10.0.0.1:5060, sip:a.b@c.d or [2001:db8::7]."),
              "s=from 198.18.0.1:5060, sip:email1@redacted.invalid or [2001:db8::1].");
}

TEST(Redact, MasksKeysAndCredentials) {
    EXPECT_EQ(redacted("a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:abc|2^20 UNENCRYPTED"),
              "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret1");
    EXPECT_EQ(redacted("a=CRYPTO:1 SUITE other:abc"), "a=CRYPTO:1 SUITE secret1");
    EXPECT_EQ(redacted("a=key-mgmt:mikey AQAF"), "a=key-mgmt:mikey secret1");
    EXPECT_EQ(redacted("a=fingerprint:sha-1 4A:AD"), "a=fingerprint:sha-1 secret1");
    EXPECT_EQ(redacted("a=ice-ufrag:8hhY"), "a=ice-ufrag:secret1");
    EXPECT_EQ(redacted("a=ice-pwd:asd88"), "a=ice-pwd:secret1");
    EXPECT_EQ(redacted("a=ice-pwd asd88"), "a=ice-pwd secret1");
    EXPECT_EQ(
        redacted("a=candidate:1 1 UDP 21 10.0.1.1 89 typ srflx raddr 10.0.1.2 rport 9 ufrag x"),
        "a=candidate:1 1 UDP 21 198.18.0.1 89 typ srflx raddr 198.18.0.2 rport 9 ufrag "
        "secret1");
    EXPECT_EQ(redacted("a=candidate:1 1 udp 21 6a-b.local 9 typ host"),
              "a=candidate:1 1 udp 21 host1.invalid 9 typ host");
    EXPECT_EQ(redacted("a=rtcp:53020 IN IP4 10.0.0.1"), "a=rtcp:53020 IN IP4 198.18.0.1");
    EXPECT_EQ(redacted("a=ssrc:1 cname:me@pc"), "a=ssrc:1 cname:secret1");
    EXPECT_EQ(redacted("a=path:msrp://h:7394/x;tcp"), "a=path:msrp://redacted.invalid/1");
}

TEST(Redact, LeavesTheRest) {
    for (const std::string line :
         {"v=0", "s=call", "b=AS:128", "t=0 0", "r=7d 1h 0", "k=prompt", "m=audio 5004 RTP/AVP 0",
          "a=rtpmap:0 PCMU/8000", "a=fmtp:101 0-15", "a=sendrecv", "a=des:qos optional e2e send",
          "c=IN IP4 0.0.0.0", "c=IN IP6 ::", "a=crypto:1", "u=", "k=", "a=T38FaxVersion:0"}) {
        EXPECT_EQ(redacted(line), line);
    }
}

// What a mask would show is not known there.
TEST(Redact, LeavesOnlyTheShapeOfWhatItDoesNotUnderstand) {
    EXPECT_EQ(redacted("c=IN IP4 1.2.3.256"), "c=IN IP4 x.x.x.xxx");
    EXPECT_EQ(redacted("hello 1.2.3.4 key=\xff!"), "xxxxx x.x.x.x xxx=x!");
    EXPECT_EQ(redacted("  k=clear:x"), "  k=clear:secret1");
}

TEST(Redact, GivesEqualValuesEqualMasks) {
    cli::Redactor redactor;
    EXPECT_EQ(redactor.redacted("c=IN IP4 10.0.0.2"), "c=IN IP4 198.18.0.1");
    EXPECT_EQ(redactor.redacted("c=IN IP4 10.0.0.1"), "c=IN IP4 198.18.0.2");
    EXPECT_EQ(redactor.redacted("a=x:10.000.0.2"), "a=x:198.18.0.1");
    EXPECT_EQ(redactor.redacted("c=IN IP6 2001:DB8:0::A"), "c=IN IP6 2001:db8::1");
    EXPECT_EQ(redactor.redacted("a=x:2001:db8::a"), "a=x:2001:db8::1");
}

TEST(Redact, NumbersInTheOrderOfTheText) {
    cli::Redactor redactor;
    redactor.learn("v=0\r\nc=IN IP4 10.0.0.1\r\na=x:10.0.0.2\n");
    EXPECT_EQ(redactor.redacted("a=x:10.0.0.2"), "a=x:198.18.0.2");
}

TEST(Redact, MovesPlacesWithTheText) {
    cli::Redactor redactor;
    const std::string line = "o=alicia 1 2 IN IP4 10.1.2.3 x";
    const auto edits = redactor.editsOf(line);
    const std::string masked = cli::applied(line, edits);
    EXPECT_EQ(cli::movedOffset(0, edits), 0u);
    EXPECT_EQ(masked.substr(cli::movedOffset(line.find("IP4"), edits), 3), "IP4");
    EXPECT_EQ(cli::movedOffset(4, edits), 2u); // inside the name: its start
    EXPECT_EQ(cli::movedOffset(line.size(), edits), masked.size());
}

TEST(Redact, KeepsPlacesInsideAShape) {
    cli::Redactor redactor;
    const auto edits = redactor.editsOf("c=IN IP4 1.2.3.256");
    EXPECT_EQ(cli::movedOffset(15, edits), 15u);
}

// ---- Whole bodies

std::string encodedRedacted(const std::string &body, const std::string &learned) {
    const support::Body records = support::decoded(body);
    if (!records) {
        return "refused";
    }
    cli::Redactor redactor;
    redactor.learn(learned);
    cli::redactRecords(*records, redactor);
    return support::encoded(*records);
}

// The text with every line masked.
std::string maskedText(const std::string &body) {
    cli::Redactor redactor;
    std::string masked;
    for (size_t at = 0; at < body.size();) {
        const size_t end = body.find("\r\n", at);
        masked += redactor.redacted(body.substr(at, end - at)) + "\r\n";
        at = end + 2;
    }
    return masked;
}

// Masks may be longer than what they hide: a value, or a body, can grow beyond what is decoded.
constexpr size_t kLongestName = 255; // of an encoding, the shortest limit
bool growsTooLong(const std::string &masked) {
    size_t longest = 0;
    for (size_t at = 0; at < masked.size();) {
        const size_t end = masked.find("\r\n", at);
        longest = std::max(longest, end - at);
        at = end + 2;
    }
    return masked.size() > SDP_MAX_BODY || longest > kLongestName;
}

// Records and text give the same: what `check` shows is what `format` writes.
TEST(Redact, DoesTheSameToRecordsAndText) {
    std::mt19937 engine(5);
    size_t compared = 0;
    for (int i = 0; i < 1500; ++i) {
        const support::Body body = support::decoded(support::generateBody(engine));
        const std::string written = support::encoded(*body);
        const std::string masked = maskedText(written);
        if (written.size() > SDP_MAX_BODY || growsTooLong(masked)) {
            continue;
        }
        const support::Body ofText = support::decoded(masked);
        ASSERT_NE(ofText, nullptr) << support::readable(masked);
        EXPECT_EQ(encodedRedacted(written, written), support::encoded(*ofText))
            << support::readable(written);
        ++compared;
    }
    EXPECT_GT(compared, 1000u);
}

TEST(Redact, IsDoneOnce) {
    std::mt19937 engine(6);
    for (int i = 0; i < 300; ++i) {
        const std::string body = support::generateBody(engine);
        const std::string once = encodedRedacted(body, body);
        EXPECT_EQ(once.find("10.47.16.5"), std::string::npos);
        EXPECT_NE(once, "refused");
    }
}

// Edits are in order, inside the line, and do not overlap, whatever the line.
TEST(Redact, TakesAnyLine) {
    std::mt19937 engine(8);
    for (int i = 0; i < 3000; ++i) {
        std::string body = support::damage(support::generateBody(engine), engine);
        cli::Redactor redactor;
        redactor.learn(body);
        for (size_t at = 0; at < body.size();) {
            const size_t end = std::min(body.find('\n', at), body.size());
            const std::string line = body.substr(at, end - at);
            size_t last = 0;
            for (const cli::Edit &edit : redactor.editsOf(line)) {
                ASSERT_LE(last, edit.begin);
                ASSERT_LE(edit.begin, edit.end);
                ASSERT_LE(edit.end, line.size());
                last = edit.end;
            }
            at = end + 1;
        }
    }
}

} // namespace
