// Decisions that differ only for a few inputs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

// ---- The reason comes from the local stream whose comparison got furthest

struct Failure {
    const char *local;
    const char *reason;
};

// In the order of the comparisons of a stream.
const Failure kFailures[] = {
    {"m=video 40000 RTP/SAVP 0\n", "NoMediaType"},
    {"m=audio 40000 RTP/AVP 0\nc=IN IP4 192.0.2.9\na=crypto:1 A inline:x\n", "NoProtocol"},
    {"m=audio 40000 RTP/SAVP 0\na=crypto:1 A inline:x\n", "NoLocalConnection"},
    {"m=audio 40000 RTP/SAVP 3\nc=IN IP4 192.0.2.9\na=crypto:1 A inline:x\n", "NoCommonFormat"},
    {"m=audio 40000 RTP/SAVP 101\nc=IN IP4 192.0.2.9\na=rtpmap:101 telephone-event/8000\n",
     "OnlyAuxiliary"},
    {"m=audio 40000 RTP/SAVP 0\nc=IN IP4 192.0.2.9\na=crypto:1 B inline:x\n", "NoCommonCrypto"}};

TEST(NegotiateDetail, TheFurthestStreamSaysWhy) {
    const Body offer = offerOf("m=audio 49170 RTP/SAVP 0 101\na=rtpmap:101 telephone-event/8000\n"
                               "a=crypto:1 A inline:x\n");
    const std::string head = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nt=0 0\n";
    for (const Failure &lesser : kFailures) {
        for (const Failure *greater = &lesser; greater != std::end(kFailures); ++greater) {
            for (const bool turned : {false, true}) {
                const std::string local = turned ? std::string(greater->local) + lesser.local
                                                 : std::string(lesser.local) + greater->local;
                const auto answer = sdpline::answer(offer, Body::decode(head + local).value());
                EXPECT_EQ(answer->decisions[0].name, greater->reason)
                    << local << textOf(answer->decisions);
            }
        }
    }
}

// A stream in use ranks above another media type, and below another protocol.
TEST(NegotiateDetail, AStreamInUseSaysWhy) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 0\nm=audio 49172 RTP/AVP 0\n");
    const std::string used = "m=audio 40000 RTP/AVP 0\n";
    const std::string video = "m=video 40002 RTP/AVP 31\n";
    const std::string other = "m=audio 40004 RTP/AVPF 0\n";
    for (const auto &[local, reason] :
         {std::pair(used + video, "StreamsUsedUp"), std::pair(video + used, "StreamsUsedUp"),
          std::pair(used + other, "NoProtocol"), std::pair(other + used, "NoProtocol")}) {
        EXPECT_TRUE(contains(decisionsOf(offer, localOf(local)), reason)) << local;
    }
}

// ---- Whether anything was accepted

TEST(NegotiateDetail, AnAgreementIsAcceptedOrNot) {
    const struct {
        const char *offer;
        const char *answer;
        bool accepted;
    } agreements[] = {
        {"m=audio 49170 RTP/AVP 0\n", "m=audio 40000 RTP/AVP 0\n", true},
        {"m=audio 49170 RTP/AVP 0\n", "m=audio 0 RTP/AVP 0\n", false},
        {"m=audio 1 RTP/AVP 0\n", "m=audio 0 RTP/AVP 0\n", false},
        {"m=audio 0 RTP/AVP 0\n", "m=audio 0 RTP/AVP 0\n", true},
        {"m=audio 0 RTP/AVP 0\nm=video 5000 RTP/AVP 31\n",
         "m=audio 0 RTP/AVP 0\nm=video 0 RTP/AVP 31\n", false},
        {"m=video 5000 RTP/AVP 31\nm=audio 0 RTP/AVP 0\n",
         "m=video 0 RTP/AVP 31\nm=audio 0 RTP/AVP 0\n", false},
        {"m=audio 49170 RTP/AVP 0\nm=video 5000 RTP/AVP 31\n",
         "m=audio 40000 RTP/AVP 0\nm=video 0 RTP/AVP 31\n", true},
        {"m=audio 49170 RTP/AVP 0\nm=video 5000 RTP/AVP 31\n", "m=audio 0 RTP/AVP 0\n", false},
    };
    for (const auto &one : agreements) {
        const auto made = sdpline::agree(offerOf(one.offer), localOf(one.answer));
        EXPECT_EQ(made->accepted, one.accepted) << one.offer << one.answer;
        const Body offer = offerOf(one.offer);
        EXPECT_EQ(made->streams.size(), offer.media().size());
    }
}

// ---- Codecs

TEST(NegotiateDetail, OneChannelIsWhatAnRtpmapMeansThatSaysNone) {
    const auto with = [](const char *codec, bool local) {
        const std::string text =
            std::string("m=audio 40000 RTP/AVP 97\na=rtpmap:97 ") + codec + '\n';
        return local ? localOf(text) : offerOf(text);
    };
    EXPECT_TRUE(
        sdpline::answer(with("L16/8000", false), with("L16/8000/1", true)).value().accepted);
    EXPECT_TRUE(
        sdpline::answer(with("L16/8000/1", false), with("L16/8000", true)).value().accepted);
    EXPECT_FALSE(
        sdpline::answer(with("L16/8000/2", false), with("L16/8000", true)).value().accepted);
    EXPECT_TRUE(contains(decisionsOf(with("L16/8000/2", false), with("L16/8000", true)),
                         "offered L16/8000/2, ours L16/8000)"));
    EXPECT_TRUE(contains(decisionsOf(with("X/4294967295/3", false), with("X/4294967294/1", true)),
                         "offered X/4294967295/3, ours X/4294967294)"));
}

TEST(NegotiateDetail, NumbersAreWrittenWhole) {
    for (const char *const number : {"0", "8", "9", "10", "11", "98", "99", "100", "101", "127"}) {
        const std::string n = number;
        const std::string text = "m=audio 40000 RTP/AVP " + n + "\na=rtpmap:" + n + " X/8000\n";
        EXPECT_TRUE(contains(decisionsOf(offerOf(text), localOf(text)), "accepted: X " + n + ";"))
            << n;
    }
    const Body offer = offerOf("m=audio 40000 RTP/AVP 0 127 128\na=rtpmap:127 X/8000\n");
    EXPECT_EQ(decisionsOf(offer, localOf("m=audio 40000 RTP/AVP 0 127\na=rtpmap:127 X/8000\n")),
              "stream 1 accepted: PCMU 0, X 127; sendrecv [Accepted]\n"
              "stream 1: a payload number above 127 is no format (128) [FormatNumberTooHigh]\n");
}

// The rule of a caller receives 1 or 0, and returns any value but 0.
uint32_t sameByName(void *context, const SdpNegotiateCodec *, const SdpNegotiateCodec *,
                    uint32_t same) {
    *static_cast<uint32_t *>(context) = same;
    return 2;
}

TEST(NegotiateDetail, ARuleOfTheCallerInC) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 18\na=fmtp:18 annexb=no\n");
    for (const bool equal : {false, true}) {
        const Body local = localOf(std::string("m=audio 40000 RTP/AVP 18\n") +
                                   (equal ? "a=fmtp:18 annexb=no\n" : ""));
        uint32_t told = 7;
        SdpNegotiateOptions options = {};
        options.pfnSame = sameByName;
        options.pContext = &told;
        SdpLine *made = nullptr;
        SdpNegotiateReport *report = nullptr;
        ASSERT_EQ(
            SdpNegotiateAnswer(offer.record(), local.record(), nullptr, &options, &made, &report),
            0u);
        EXPECT_EQ(told, equal ? 1u : 0u);
        EXPECT_EQ(report->bAccepted, 1u);
        EXPECT_EQ(report->ppstStreams[0]->bAccepted, 1u);
        SdpNegotiateReleaseReport(&report);
        SdpLibReleaseSdp(&made);
    }
}

// Other protocols have a word as format, even if it is a number.
TEST(NegotiateDetail, NumbersOfOtherProtocolsAreWords) {
    const char *const stream = "m=application 49170 DTLS/SCTP 5000\n";
    EXPECT_EQ(decisionsOf(offerOf(stream), localOf(stream)),
              "stream 1 accepted: 5000; sendrecv [Accepted]\n");
    EXPECT_FALSE(sdpline::answer(offerOf(stream), localOf("m=application 1 DTLS/SCTP 5001\n"))
                     .value()
                     .accepted);
}

// ---- T.38 lines of another stream

TEST(NegotiateDetail, FaxLinesOfSpeech) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 0\na=T38FaxVersion:0\n");
    const Body reply = localOf("m=audio 40000 RTP/AVP 0\na=T38FaxVersion:3\n");
    EXPECT_EQ(textOf(sdpline::check(offer, reply)), "");
    const Body fax = offerOf("m=image 49170 udptl t38\na=T38FaxVersion:0\n");
    const Body higher = localOf("m=image 40000 udptl t38\na=T38FaxVersion:3\n");
    EXPECT_TRUE(contains(textOf(sdpline::check(fax, higher)), "FaxVersionRaised"));
}

TEST(NegotiateDetail, FaxVersionsThatOneSideDoesNotSay) {
    const auto decided = [](const char *offered, const char *own) {
        const std::string stream = "m=image 40000 udptl t38\n";
        return decisionsOf(offerOf(stream + offered), localOf(stream + own));
    };
    EXPECT_TRUE(contains(decided("a=T38FaxVersion:2\n", ""), "(offered 2, ours 0)"));
    EXPECT_TRUE(contains(decided("", "a=T38FaxVersion:2\n"), "(offered 0, ours 2)"));
    for (const auto &[one, two] :
         {std::pair("a=T38FaxVersion:0\n", ""), {"", "a=T38FaxVersion:0\n"}}) {
        EXPECT_FALSE(contains(decided(one, two), "FaxVersionLowered")) << one << two;
    }
}

// ---- Times of an answer

TEST(NegotiateDetail, TimesOfAnAnswer) {
    const auto with = [](const char *time) {
        return Body::decode(
                   std::string("v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1\nt=") +
                   time + "\nm=audio 5000 RTP/AVP 0\n")
            .value();
    };
    for (const char *const one : {"0 0", "1 0", "0 1", "1 2"}) {
        for (const char *const two : {"0 0", "1 0", "0 1", "1 2"}) {
            EXPECT_EQ(textOf(sdpline::check(with(one), with(two))).empty(), std::string(one) == two)
                << one << " and " << two;
        }
    }
}

// ---- Sentences that do not fit

TEST(NegotiateDetail, ASentenceIsCut) {
    for (size_t size = SDP_MAX_VALUE - 70; size < SDP_MAX_VALUE - 20; ++size) {
        const std::string feedback = "* " + std::string(size, 'x');
        const Body offer = offerOf("m=audio 49170 RTP/AVP 0\na=rtcp-fb:" + feedback + "\n");
        const auto answer = sdpline::answer(offer, localOf("m=audio 40000 RTP/AVP 0\n"));
        const sdpline::Decision &last = answer->decisions.back();
        ASSERT_EQ(last.name, "FeedbackDropped");
        const size_t at = last.sentence.find(" (");
        const std::string whole = last.sentence.substr(0, at) + " (" + feedback + ')';
        ASSERT_EQ(last.sentence, whole.substr(0, SDP_MAX_VALUE)) << size;
    }
}

// ---- Formats of an agreement

// A number without a=rtpmap in the answer has its meaning in the offer, for RTX too.
TEST(NegotiateDetail, AnswersMayLeaveOutWhatTheOfferDefines) {
    const Body offer = offerOf("m=video 5000 RTP/AVP 96 97\na=rtpmap:96 VP8/90000\n"
                               "a=rtpmap:97 rtx/90000\na=fmtp:97 apt=96\n");
    const Body answer = localOf("m=video 6000 RTP/AVP 96 97\na=rtpmap:96 VP8/90000\n"
                                "a=fmtp:97 apt=96\n");
    const auto agreement = sdpline::agree(offer, answer);
    ASSERT_EQ(agreement->streams[0].formats.size(), 2u);
    EXPECT_EQ(agreement->streams[0].formats[1].name, "rtx");
}

TEST(NegotiateDetail, OfEqualFormatsThatOfTheSameNumber) {
    for (const char *const numbers : {"96 97", "97 96"}) {
        const Body offer = offerOf(std::string("m=video 5000 RTP/AVP ") + numbers +
                                   "\na=rtpmap:96 VP8/90000\na=rtpmap:97 VP8/90000\n");
        for (const char *const answered : {"96", "97"}) {
            const std::string n = answered;
            const Body answer =
                localOf("m=video 6000 RTP/AVP " + n + "\na=rtpmap:" + n + " VP8/90000\n");
            const auto agreement = sdpline::agree(offer, answer);
            ASSERT_EQ(agreement->streams[0].formats.size(), 1u);
            EXPECT_EQ(std::to_string(*agreement->streams[0].formats[0].send), n) << numbers;
            EXPECT_EQ(std::to_string(*agreement->streams[0].formats[0].receive), n) << numbers;
        }
    }
}

// Two formats of the offer that match one of ours keep their order.
TEST(NegotiateDetail, OurOrderOfFormatsThatAreOne) {
    const Body offer = offerOf("m=video 5000 RTP/AVP 96 97\na=rtpmap:96 VP8/90000\n"
                               "a=rtpmap:97 VP8/90000\n");
    const Body local = localOf("m=video 6000 RTP/AVP 98\na=rtpmap:98 VP8/90000\n");
    const auto answer = sdpline::answer(offer, local, nullptr, {.ourOrder = true});
    EXPECT_TRUE(contains(textOf(answer->body), "RTP/AVP 96 97\n"));
}

TEST(NegotiateDetail, AParameterEndsItsNameAtTheFirstEqualsSign) {
    const Body offer = offerOf("m=audio 5000 RTP/AVP 18\na=fmtp:18 annexb=no=x\n");
    EXPECT_FALSE(sdpline::answer(offer, localOf("m=audio 6000 RTP/AVP 18\n")).value().accepted);
}

// ---- Words: only the case of letters is ignored

bool equalWords(const std::string &one, const std::string &two) {
    return std::equal(one.begin(), one.end(), two.begin(), two.end(), [](char a, char b) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        return lower(a) == lower(b);
    });
}

TEST(NegotiateDetail, WordsWithoutCase) {
    const std::string letters = "aBcXyZkMnOpQrSdEfGhI";
    const std::pair<char, char> changes[] = {
        {'q', 'Q'}, {'Q', 'q'}, {'q', 'w'}, {'A', 'a'}, {'Z', 'z'}, {'a', 'A'}, {'z', 'Z'},
        {'^', '~'}, {'_', '-'}, {'1', '2'}, {'!', '1'}, {'q', '1'}, {'p', 'q'}};
    for (size_t size = 1; size <= letters.size(); ++size) {
        for (size_t at = 0; at < size; ++at) {
            for (const auto &[from, to] : changes) {
                std::string one = letters.substr(0, size);
                std::string two = one;
                one[at] = from;
                two[at] = to;
                const auto with = [](const std::string &name) {
                    return "m=audio 5000 RTP/AVP 97\na=rtpmap:97 " + name + "/8000\n";
                };
                ASSERT_EQ(sdpline::answer(offerOf(with(one)), localOf(with(two))).value().accepted,
                          equalWords(one, two))
                    << one << ' ' << two;
            }
        }
    }
}

// ---- Slots that were closed

TEST(NegotiateDetail, NumbersOfClosedStreamsMayMeanSomethingElse) {
    const auto with = [](const char *version, const char *port, const char *codec) {
        return Body::decode(std::string("v=0\no=- 1 ") + version +
                            " IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1\nt=0 0\nm=audio " + port +
                            " RTP/AVP 96\na=rtpmap:96 " + codec + "\n")
            .value();
    };
    const auto faults = [&](const char *before, const char *after) {
        return textOf(sdpline::checkNext(with("1", before, "A/8000"), with("2", after, "B/8000")));
    };
    EXPECT_NE(faults("5000", "5000"), "");
    EXPECT_EQ(faults("0", "5000"), "");
    EXPECT_EQ(faults("5000", "0"), "");
    EXPECT_NE(faults("1", "1"), "");
}

// ---- Reports

TEST(NegotiateDetail, TheTimeOfAMulticastStreamIsTheOffers) {
    const Body offer = offerOf("m=audio 5000 RTP/AVP 0\nc=IN IP4 224.2.1.1/127\na=ptime:40\n");
    const Body local = localOf("m=audio 6000 RTP/AVP 0\na=ptime:20\n");
    const auto answer = sdpline::answer(offer, local);
    EXPECT_EQ(answer->streams[0].receivePTime, 40u);
    EXPECT_EQ(answer->streams[0].sendPTime, 40u);
    const auto unicast = sdpline::answer(offerOf("m=audio 5000 RTP/AVP 0\na=ptime:40\na=ptime:50\n"
                                                 "a=maxptime:60\na=maxptime:70\n"),
                                         local);
    EXPECT_EQ(unicast->streams[0].receivePTime, 20u);
    EXPECT_EQ(unicast->streams[0].sendPTime, 40u);
    EXPECT_EQ(unicast->streams[0].sendMaxPTime, 60u);
    EXPECT_FALSE(unicast->streams[0].receiveMaxPTime);
}

TEST(NegotiateDetail, ConfirmationIsOneOrNone) {
    const std::string stream = "m=audio 5000 RTP/AVP 0\na=curr:qos local none\n"
                               "a=curr:qos remote none\na=des:qos mandatory local sendrecv\n"
                               "a=des:qos mandatory remote sendrecv\n";
    for (const bool asked : {false, true}) {
        const Body offer = offerOf(stream + (asked ? "a=conf:qos remote sendrecv\n" : ""));
        const Body local = localOf(stream);
        SdpLine *made = nullptr;
        SdpNegotiateReport *report = nullptr;
        ASSERT_EQ(
            SdpNegotiateAnswer(offer.record(), local.record(), nullptr, nullptr, &made, &report),
            0u);
        EXPECT_EQ(report->ppstStreams[0]->bConfirm, asked ? 1u : 0u);
        SdpNegotiateReleaseReport(&report);
        ASSERT_EQ(SdpNegotiateAgree(offer.record(), made, SDP_NEGOTIATE_ANSWERER, &report), 0u);
        EXPECT_EQ(report->ppstStreams[0]->bConfirm, asked ? 1u : 0u);
        SdpNegotiateReleaseReport(&report);
        SdpLibReleaseSdp(&made);
    }
}

TEST(NegotiateDetail, AllFaultsOfAReceivedAnswerAreKept) {
    sdpline::Negotiator session;
    const Body offer = localOf("m=audio 40000 RTP/AVP 0\nm=video 40002 RTP/AVP 31\n"
                               "m=audio 40004 RTP/AVP 8\n");
    const Body answer = offerOf("m=audio 5000 RTP/AVP 0\n");
    ASSERT_TRUE(session.offer(offer));
    const auto agreement = session.receiveAnswer(answer);
    EXPECT_EQ(textOf(agreement->decisions), textOf(sdpline::check(offer, answer)));
    EXPECT_EQ(agreement->decisions.size(), 2u);
}

} // namespace

} // namespace negotiate_test
