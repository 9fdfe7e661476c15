// The differences of meaning between two bodies.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "compare/difference.hpp"
#include "redact/redact.hpp"
#include "support/bodies.hpp"
#include "support/generator.hpp"
#include "support/secrets.hpp"

namespace {

std::string differencesOf(const std::string &first, const std::string &second) {
    const auto a = sdpline::Body::decode(first);
    const auto b = sdpline::Body::decode(second);
    EXPECT_TRUE(a && b);
    std::string text;
    for (const cli::Change &change : cli::differences(*a, *b)) {
        text += text.empty() ? "" : "; ";
        text +=
            (change.media ? std::to_string(*change.media) + ' ' + change.mediaType : "session") +
            ' ' + std::string(change.what) + ' ' + change.from.value_or("-") + " > " +
            change.to.value_or("-");
    }
    return text;
}

const std::string kSession = "v=0\no=- 1 1 IN IP4 x\ns=-\n";

std::string withMedia(const std::string &media) {
    return kSession + "c=IN IP4 10.0.0.1\nt=0 0\n" + media;
}

std::string mediaDifference(const std::string &first, const std::string &second) {
    return differencesOf(withMedia(first), withMedia(second));
}

TEST(Differences, OfTheSession) {
    EXPECT_EQ(differencesOf(kSession, "v=1\no=me 2 3 IN IP6 y\ns=x\n"),
              "session origin user - > me; session origin session id 1 > 2; "
              "session origin session version 1 > 3; session origin address type IP4 > IP6; "
              "session origin address x > y; session version 0 > 1; session name - > x");
    EXPECT_EQ(differencesOf(kSession, kSession +
                                          "i=a\nu=b\ne=c\np=d\nc=IN IP4 10.0.0.1\nb=f\nt=1 2\n"
                                          "r=7d 1h 0\nz=g\nk=h\na=i\n"),
              "session info - > a; session uri - > b; session email - > c; session phone - > d; "
              "session connection - > IN IP4 10.0.0.1; session bandwidth - > f; "
              "session time - > 1 2 r=7d 1h 0; session zone - > g; session key - > h; "
              "session attribute - > a=i");
    EXPECT_EQ(differencesOf(kSession + "e=a\ne=b\n", kSession + "e=b\ne=c\ne=d\n"),
              "session email a > c; session email - > d");
}

TEST(Differences, OfAMediaLine) {
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 0\n", "m=video 2/3 RTP/SAVP 0\n"),
              "1 video type audio > video; 1 video port 1 > 2; 1 video ports 1 > 3; "
              "1 video protocol RTP/AVP > RTP/SAVP");
    EXPECT_EQ(mediaDifference("m=image 1 udptl t38\n", "m=image 1 x y\n"),
              "1 image protocol udptl > x; 1 image format t38 > y");
}

TEST(Differences, OfPayloads) {
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 0 8 96\na=rtpmap:96 AMR/8000\n",
                              "m=audio 1 RTP/AVP 8 0 97\na=rtpmap:97 opus/48000/2\n"),
              "1 audio payload 96 (AMR/8000) > -; 1 audio payload - > 97 (opus/48000); "
              "1 audio payload order 0 8 > 8 0; 1 audio attribute a=rtpmap:96 AMR/8000 > -; "
              "1 audio attribute - > a=rtpmap:97 opus/48000/2");
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 18 3\n", "m=audio 1 RTP/AVP 3 99\n"),
              "1 audio payload 18 (G729/8000) > -; 1 audio payload - > 99");
}

TEST(Differences, OfPayloadsOfTheRtpFamily) {
    SdpSetSupMedProtoRtpFamily(1);
    EXPECT_EQ(mediaDifference("m=audio 1 UDP/TLS/RTP/SAVPF 0 111\na=rtpmap:111 opus/48000/2\n",
                              "m=audio 1 UDP/TLS/RTP/SAVPF 111 8\na=rtpmap:111 opus/48000/2\n"),
              "1 audio payload 0 (PCMU/8000) > -; 1 audio payload - > 8 (PCMA/8000)");
    EXPECT_EQ(mediaDifference("", "m=audio 1 RTP/SAVPF 0 8\n"),
              "1 audio description - > m=audio 1 RTP/SAVPF 0 8");
    SdpSetSupMedProtoRtpFamily(0);
}

TEST(Differences, OfAttributesPairThoseOfOneName) {
    EXPECT_EQ(
        mediaDifference("m=audio 1 RTP/AVP 0\na=ptime:20\na=fmtp:0 x\na=fmtp:8 y\na=gone\n",
                        "m=audio 1 RTP/AVP 0\na=fmtp:8 z\na=ptime:30\na=fmtp:0 x\na=new:1\n"),
        "1 audio attribute a=ptime:20 > a=ptime:30; 1 audio attribute a=fmtp:8 y > a=fmtp:8 z; "
        "1 audio attribute a=gone > -; 1 audio attribute - > a=new:1");
    EXPECT_EQ(mediaDifference("m=image 1 udptl t38\na=T38FaxFillBitRemoval\n",
                              "m=image 1 udptl t38\na=T38FaxFillBitRemoval:0\n"),
              "1 image attribute a=T38FaxFillBitRemoval:1 > a=T38FaxFillBitRemoval:0");
}

TEST(Differences, OfMediaDescriptionsAtTheEnd) {
    EXPECT_EQ(
        mediaDifference("m=audio 1 RTP/AVP 0\n", "m=audio 1 RTP/AVP 0\nm=video 2 RTP/AVP 31\n"),
        "2 video description - > m=video 2 RTP/AVP 31");
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 0\n", ""),
              "1 audio description m=audio 1 RTP/AVP 0 > -");
}

// ---- Texts without a difference

TEST(Differences, AreNotInOrderBlanksOrSpelling) {
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 0\nc=IN IP6 2001:DB8::1\na=ptime:20\na=x\n",
                              "m=audio 001/1 RTP/AVP 0 \r\nc=IN IP6 2001:db8:0:0::1\na=x\n"
                              "a=ptime:020\n"),
              "");
}

TEST(Differences, AreNotWhereAConnectionOrDirectionIsWritten) {
    const std::string media = "m=audio 1 RTP/AVP 0\n";
    EXPECT_EQ(differencesOf(withMedia(media), kSession + "t=0 0\n" + media + "c=IN IP4 10.0.0.1\n"),
              "");
    EXPECT_EQ(mediaDifference(media, media + "a=sendrecv\n"), "");
    EXPECT_EQ(differencesOf(withMedia("a=sendonly\n" + media), withMedia(media + "a=sendonly\n")),
              "");
}

TEST(Differences, InForceAreNamedOnceWhereTheyCome) {
    const std::string two = "m=audio 1 RTP/AVP 0\nm=video 2 RTP/AVP 31\n";
    EXPECT_EQ(
        differencesOf(withMedia(two), kSession + "c=IN IP4 10.0.0.9\nt=0 0\na=inactive\n" + two),
        "session connection IN IP4 10.0.0.1 > IN IP4 10.0.0.9; "
        "session direction sendrecv > inactive");
    EXPECT_EQ(mediaDifference("m=audio 1 RTP/AVP 0\n",
                              "m=audio 1 RTP/AVP 0\nc=IN IP4 0.0.0.0\na=sendonly\n"),
              "1 audio connection IN IP4 10.0.0.1 > IN IP4 0.0.0.0; "
              "1 audio direction sendrecv > sendonly");
}

TEST(Differences, NoneOfABodyToItself) {
    std::mt19937 engine(9);
    for (int i = 0; i < 500; ++i) {
        const std::string body = support::generateBody(engine);
        EXPECT_EQ(differencesOf(body, body), "");
    }
}

// The texts of a change follow the text before them in a line of the bodies.
TEST(Differences, NameTheLineOfTheirTexts) {
    std::mt19937 engine(10);
    size_t checked = 0;
    for (int i = 0; i < 200; ++i) {
        const auto a = sdpline::Body::decode(support::generateSecrets(engine).text);
        const auto b = sdpline::Body::decode(support::generateSecrets(engine).text);
        if (!a || !b) {
            continue;
        }
        const std::string written = *a->encode();
        for (const cli::Change &change : cli::differences(*a, *b)) {
            const bool isWhole = change.before.empty() || change.before.size() == 2;
            if (isWhole && change.from && change.what != "direction") {
                const std::string line = std::string(change.before) + *change.from;
                EXPECT_NE(written.find(line), std::string::npos) << line << "\n" << written;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 1000u);
}

// Masks of a change are those of the line that it comes from.
TEST(Differences, HaveNoSecretsOnceMasked) {
    std::mt19937 engine(12);
    for (int i = 0; i < 300; ++i) {
        const support::SecretBody first = support::generateSecrets(engine);
        const support::SecretBody second = support::generateSecrets(engine);
        const auto a = sdpline::Body::decode(first.text);
        const auto b = sdpline::Body::decode(second.text);
        if (!a || !b) {
            continue;
        }
        std::string shown;
        cli::Redactor redactor;
        for (const cli::Change &change : cli::differences(*a, *b)) {
            for (const auto &text : {change.from, change.to}) {
                shown += text ? redactor.redactedAfter(change.before, *text) + '\n' : "";
            }
        }
        for (const support::SecretBody &body : {first, second}) {
            for (const std::string &secret : body.secrets) {
                ASSERT_EQ(shown.find(secret), std::string::npos) << secret << "\n" << shown;
            }
        }
    }
}

TEST(Differences, LeaveTheConfiguredStyle) {
    SdpSetT38OptCfg(SDP_T38_STYLE_FLAG_TOO);
    EXPECT_EQ(differencesOf(kSession, kSession), "");
    EXPECT_EQ(SdpGetT380ptCfg(), static_cast<uint32_t>(SDP_T38_STYLE_FLAG_TOO));
    SdpSetT38OptCfg(SDP_T38_STYLE_FLAG);
}

} // namespace
