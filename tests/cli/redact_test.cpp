// Masks: no hidden value is left in the text, and the text is still a body.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "output/tree.hpp"
#include "redact/redact.hpp"
#include "support/bodies.hpp"
#include "support/damage.hpp"
#include "support/each.hpp"
#include "support/generator.hpp"
#include "support/secrets.hpp"
#include "json/json.hpp"

namespace {

std::string redacted(std::string_view line) {
    return cli::Redactor().redacted(line);
}

// The masks that one redactor gives, line after line.
void expectMasked(cli::Redactor &redactor,
                  std::initializer_list<std::pair<std::string_view, std::string_view>> lines) {
    support::expectEach([&](std::string_view line) { return redactor.redacted(line); }, lines);
}

TEST(Redact, MasksWhatIdentifies) {
    support::expectEach(redacted,
                        {{"o=alice 99 7 IN IP4 10.1.2.3", "o=user1 1 1 IN IP4 198.18.0.1"},
                         {"o=- 99 99 IN IP6 2001:db8::9", "o=- 1 1 IN IP6 2001:db8::1"},
                         {"o=a 1 2 IN IP4 pc.example.com", "o=user1 1 1 IN IP4 host1.invalid"},
                         {"o=bob smith 1 1 IN IP4 h", "o=user1 word1 1 x IN IP4 host1.invalid"},
                         {"c=IN IP4 224.2.1.1/127/3", "c=IN IP4 198.18.0.1/127/3"},
                         {"c=IN IP6 FF15::101/5", "c=IN IP6 2001:db8::1/5"},
                         {"c=IN IP4 pbx/secret", "c=IN IP4 host1.invalid/xxxxxx"},
                         {"u=http://example.com/a", "u=http://redacted.invalid/1"},
                         {"u=alice://example.com/a", "u=http://redacted.invalid/1"},
                         {"e=a@b (A)", "e=email1@redacted.invalid"},
                         {"p=+1 2", "p=phone1"},
                         {"k=clear:x", "k=clear:secret1"},
                         {"k=x:y", "k=secret1"}});
}

TEST(Redact, MasksWhatSessionNamesHold) {
    EXPECT_EQ(redacted("s=from 10.0.0.1:5060, sip:a.b@c.d or [2001:db8::7]."),
              "s=from 198.18.0.1:5060, sip:email1@redacted.invalid or [2001:db8::1].");
    support::expectEach(redacted,
                        {{"s=Alice Example", "s=word1"},
                         {"i=call from +1 617 555-6011 (Alice), pbx", "i=call from phone1 (word1"},
                         {"i=call to <http://pbx/alice>", "i=call to http://redacted.invalid/1"},
                         {"s=SIP call at pc33.example", "s=SIP call at host1.invalid"},
                         {"a=keywds:alice video", "a=keywds:word1 video"}});
}

TEST(Redact, MasksKeysAndCredentials) {
    EXPECT_EQ(redacted("a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:abc|2^20 UNENCRYPTED"),
              "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret1");
    support::expectEach(
        redacted, {{"a=CRYPTO:1 NULL_SUITE other:abc", "a=CRYPTO:1 NULL_SUITE secret1"},
                   {"a=crypto:WVNfX19zZW1jdGwg", "a=crypto:secret1"},
                   {"a=crypto:inline:WVNfX19zZW1jdGwg", "a=crypto:inline:secret1"},
                   {"a=crypto:1 WVNf_X19zZW1jdGwg x", "a=crypto:1 secret1"},
                   {"a=key-mgmt:mikey AQAF", "a=key-mgmt:mikey secret1"},
                   {"a=key-mgmt:AQAF", "a=key-mgmt:secret1"},
                   {"a=fingerprint:sha-1 4A:AD", "a=fingerprint:sha-1 secret1"},
                   {"a=fingerprint:4A:AD:11", "a=fingerprint:secret1"},
                   {"a=ice-ufrag:8hhY", "a=ice-ufrag:secret1"},
                   {"a=ice-pwd asd88", "a=ice-pwd secret1"},
                   {"a=password:1", "a=password:secret1"},
                   {"a=fmtp:96 mode=1;password=alice;x=2", "a=fmtp:96 mode=1;password=secret1"},
                   {"a=crypto:1 alices_key x", "a=crypto:1 secret1"},
                   {"a=fingerprint:mdalice 4A:AD", "a=fingerprint:secret1"},
                   {"a=tls-id:abc3de65cddef001be82", "a=tls-id:secret1"},
                   {"a=zrtp-hash:1.10 fe30efd02423cb054e50efd0", "a=zrtp-hash:secret1"}});
    EXPECT_EQ(redacted("a=alt:1 1 : STu/ZtOu 7hiLQmUp 10.1.1.2 34640"),
              "a=alt:1 1 : secret1 secret2 198.18.0.1 34640");
    support::expectEach(redacted,
                        {{"a=x-a:WVNfX19zZW1jdGwgKCkgewkyMjA7", "a=x-a:secret1"},
                         {"a=fmtp:96 k=WVNfX19zZW1jdGwgKCkgewkyMjA7==", "a=fmtp:96 k=secret1"}});
}

TEST(Redact, MasksAttributesInsideOfOthers) {
    EXPECT_EQ(redacted("a=acap:1 crypto:1 AES_CM_128_HMAC_SHA1_80 inline:abc|2^20"),
              "a=acap:1 crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret1");
    support::expectEach(redacted,
                        {{"a=acap:1 key-mgmt:mikey AQAF", "a=acap:1 key-mgmt:mikey secret1"},
                         {"a=acap:1 acap:1 acap:1 crypto:x", "a=acap:1 acap:1 secret1"},
                         {"a=acap:20 ptime:30", "a=acap:20 ptime:30"}});
    EXPECT_EQ(redacted("a=tcap:1 RTP/SAVPF UDP/TLS/RTP/SAVP"),
              "a=tcap:1 RTP/SAVPF UDP/TLS/RTP/SAVP");
    support::expectEach(redacted,
                        {{"a=tcap:1 crypto:1 alice", "a=tcap:1 crypto:1 secret1"},
                         {"a=cpar:a=crypto:x", "a=cpar:a=crypto:secret1"},
                         {"a=ssrc:1234567890 cname:me@pc", "a=ssrc:1234567890 cname:secret1"},
                         {"a=ssrc:1234567890 label:desk", "a=ssrc:1234567890 label:word1"}});
}

TEST(Redact, MasksHostsByTheirPlace) {
    EXPECT_EQ(
        redacted("a=candidate:c0a80101 1 UDP 21 10.0.1.1 89 typ srflx raddr pbx rport 9 ufrag x"),
        "a=candidate:word1 1 UDP 21 198.18.0.1 89 typ srflx raddr host1.invalid rport 9 ufrag "
        "secret1");
    EXPECT_EQ(redacted("a=candidate:1 1 udp 21 pbx 9 typ host tcptype active generation 0"),
              "a=candidate:1 1 udp 21 host1.invalid 9 typ host tcptype active generation 0");
    EXPECT_EQ(redacted("a=remote-candidates:1 pbx 5000 2 10.0.1.1 5001"),
              "a=remote-candidates:1 host1.invalid 5000 2 198.18.0.1 5001");
    EXPECT_EQ(redacted("a=source-filter: incl IN IP4 * pbx 10.0.0.1 pc.example"),
              "a=source-filter: incl IN IP4 * host1.invalid 198.18.0.1 host2.invalid");
    support::expectEach(redacted,
                        {{"a=rtcp:53020 IN IP4 10.0.0.1", "a=rtcp:53020 IN IP4 198.18.0.1"},
                         {"a=path:msrp://h:7394/x;tcp", "a=path:msrp://redacted.invalid/1"}});
}

TEST(Redact, MasksUrisWithoutAUser) {
    support::expectEach(redacted, {{"a=x-u:sip:pbx:5060", "a=x-u:sip:host1.invalid:5060"},
                                   {"a=x-u:<sips:10.0.0.1>;x", "a=x-u:<word1"},
                                   {"a=x-u:tel:+16175556011", "a=x-u:tel:phone1"}});
    EXPECT_EQ(redacted("a=fmtp:9 a=sip:pbx;b=tel:911"),
              "a=fmtp:9 a=sip:host1.invalid;b=tel:phone1");
}

TEST(Redact, MasksNames) {
    support::expectEach(redacted,
                        {{"a=tool:Alice's phone 2.0", "a=tool:word1"},
                         {"a=label:alice", "a=label:word1"},
                         {"a=msid:- {258E92FB-547C-40CA-92E9-EFE0CEDB4CBA}", "a=msid:- {word1}"}});
    EXPECT_EQ(redacted("a=rtpmap:96 258E92FB-547C-40CA-92E9-EFE0CEDB4CBA/8000"),
              "a=rtpmap:96 word1/8000");
    support::expectEach(redacted, {{"a=x-extension:1234", "a=x-extension:word1"},
                                   {"a=fmtp:96 mac=39-A7-94-FF-FE-07", "a=fmtp:96 mac=secret1"},
                                   {"a=alice@example.com", "a=email1@redacted.invalid"},
                                   {"a=lang:alice", "a=lang:word1"},
                                   {"a=fmtp:96 via=pc33.lab1", "a=fmtp:96 via=host1.invalid"},
                                   {"a=fmtp:96 x\ra=label:alice", "a=fmtp:96 word1"}});
}

TEST(Redact, LeavesTheRest) {
    for (const std::string line : {"v=0",
                                   "s=SIP Call",
                                   "s=-",
                                   "b=AS:128",
                                   "b=X-YZ:1",
                                   "t=0 0",
                                   "t=3724394400 3724398000",
                                   "r=7d 1h 0",
                                   "z=2882844526 -1h",
                                   "k=prompt",
                                   "m=audio 5004 RTP/AVP 0",
                                   "m=application 9 UDP/DTLS/SCTP webrtc-datachannel",
                                   "a=rtpmap:0 PCMU/8000",
                                   "a=rtpmap:107 vnd.onvif.metadata/90000",
                                   "a=fmtp:101 0-15",
                                   "a=fmtp:96 minptime=10;useinbandfec=1;maxaveragebitrate=128000",
                                   "a=sendrecv",
                                   "a=des:qos optional e2e send",
                                   "c=IN IP4 0.0.0.0",
                                   "c=IN IP6 ::",
                                   "a=crypto:1",
                                   "u=",
                                   "k=",
                                   "a=T38FaxVersion:0",
                                   "a=T38FaxTranscodingJBIG",
                                   "a=T38FaxUdpEC:t38UDPRedundancy",
                                   "a=maxptime:150",
                                   "a=group:BUNDLE 0 1 audio",
                                   "a=mid:audio",
                                   "a=rtcp-fb:* nack pli",
                                   "a=extmap:1 urn:ietf:params:rtp-hdrext:ssrc-audio-level",
                                   "a=rtcp:9 IN IP4 0.0.0.0",
                                   "a=ssrc-group:FID 3156517279 2673335628",
                                   "a=setup:actpass",
                                   "a=X-nat:0",
                                   "a=pcfg:1475 a=[20,59,1001] t=10",
                                   "a=sctpmap:5000 webrtc-datachannel 1024"}) {
        EXPECT_EQ(redacted(line), line);
    }
}

// What a mask would show is not known there.
TEST(Redact, LeavesOnlyTheOutlineOfWhatItDoesNotUnderstand) {
    support::expectEach(redacted, {{"c=IN IP4 1.2.3.256", "c=IN IP4 x.x.x.xxx"},
                                   {"hello 1.2.3.4 key=\xff!", "xxxxx x.x.x.x xxx=x!"},
                                   {"j=alice", "x=xxxxx"},
                                   {"t=x", "t=x"},
                                   {"b=10.1.2.3", "b=xx.x.x.x"},
                                   {"  k=clear:x", "  k=clear:secret1"}});
}

TEST(Redact, GivesEqualValuesEqualMasks) {
    cli::Redactor redactor;
    expectMasked(redactor, {{"c=IN IP4 10.0.0.2", "c=IN IP4 198.18.0.1"},
                            {"c=IN IP4 10.0.0.1", "c=IN IP4 198.18.0.2"},
                            {"a=x:10.000.0.2", "a=x:198.18.0.1"},
                            {"c=IN IP6 2001:DB8:0::A", "c=IN IP6 2001:db8::1"},
                            {"a=x:2001:db8::a", "a=x:2001:db8::1"},
                            {"c=IN IP4 PC.example", "c=IN IP4 host1.invalid"},
                            {"s=at pc.EXAMPLE", "s=at host1.invalid"},
                            {"p=+1 617 555-6011", "p=phone1"},
                            {"s=call to +16175556011", "s=call to phone1"},
                            {"a=x:tel:+1-617-555-6011", "a=x:tel:phone1"}});
}

// A user, a key or a label has the same mask in every place.
TEST(Redact, GivesAValueItsMaskInEveryPlace) {
    cli::Redactor redactor;
    expectMasked(redactor, {{"o=alice 5 5 IN IP4 x", "o=user1 1 1 IN IP4 host1.invalid"},
                            {"s=call with alice", "s=call with user1"},
                            {"a=label:alice", "a=label:user1"},
                            {"a=mid:left", "a=mid:word1"},
                            {"a=group:BUNDLE left right", "a=group:BUNDLE word1 word2"},
                            {"o=video 6 5 IN IP4 x", "o=user2 2 1 IN IP4 host1.invalid"},
                            {"s=video", "s=user2"}});
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

TEST(Redact, KeepsPlacesInsideAnOutline) {
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

// Masks can be longer than the values they hide: a value or a body can grow beyond the limits.
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

// Records and text are masked alike: `check` shows the text that `format` writes.
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

TEST(Redact, KeepsMediaOfTheRtpFamily) {
    SdpSetSupMedProtoRtpFamily(1);
    const std::string body = "v=0\r\no=- 1 1 IN IP4 0.0.0.0\r\ns=-\r\nt=0 0\r\n"
                             "m=audio 9 UDP/TLS/RTP/SAVPF 111 0\r\na=rtpmap:111 opus/48000/2\r\n";
    EXPECT_EQ(encodedRedacted(body, body), body);
    SdpSetSupMedProtoRtpFamily(0);
}

// ---- None of the known secrets is left

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char byte) { return byte >= 'A' && byte <= 'Z' ? byte | 0x20 : byte; });
    return text;
}

void expectNothingOf(const support::SecretBody &body, const std::string &output) {
    for (const std::string &secret : body.secrets) {
        ASSERT_EQ(lower(output).find(lower(secret)), std::string::npos)
            << secret << " is left in\n"
            << support::readable(output) << "\nof\n"
            << support::readable(body.text);
    }
}

TEST(Redact, LeavesNoSecretInTheText) {
    std::mt19937 engine(11);
    for (int i = 0; i < 1500; ++i) {
        const support::SecretBody body = support::generateSecrets(engine);
        ASSERT_NO_FATAL_FAILURE(expectNothingOf(body, maskedText(body.text)));
    }
}

// Lines with any damage, even those that are no SDP line.
TEST(Redact, LeavesNoSecretInLinesWithoutTheirStart) {
    std::mt19937 engine(12);
    for (int i = 0; i < 500; ++i) {
        support::SecretBody body = support::generateSecrets(engine);
        for (size_t at = body.text.find("\r\n"); at + 2 < body.text.size();
             at = body.text.find("\r\n", at + 2)) {
            body.text.erase(at + 2, 2);
        }
        ASSERT_NO_FATAL_FAILURE(expectNothingOf(body, maskedText(body.text)));
    }
}

TEST(Redact, LeavesNoSecretInRecords) {
    std::mt19937 engine(13);
    size_t decoded = 0;
    for (int i = 0; i < 600; ++i) {
        const support::SecretBody body = support::generateSecrets(engine);
        const support::Body records = support::decoded(body.text);
        if (!records) {
            EXPECT_GT(body.text.size(), SDP_MAX_BODY) << body.text;
            continue;
        }
        ++decoded;
        cli::Redactor redactor;
        redactor.learn(body.text);
        cli::redactRecords(*records, redactor);
        ASSERT_NO_FATAL_FAILURE(expectNothingOf(body, support::encoded(*records)));
        ASSERT_NO_FATAL_FAILURE(expectNothingOf(body, cli::describeTree(*records)));
        ASSERT_NO_FATAL_FAILURE(expectNothingOf(body, cli::jsonOf(*records).dump()));
    }
    EXPECT_GT(decoded, 400u);
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
