// Lines that differ only for a few inputs: transport, groups, next offers, preconditions.
#include <gtest/gtest.h>

#include <algorithm>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

// ---- Transport

TEST(NegotiateDetail, ProtocolsOverTcpHaveASetup) {
    const auto answered = [](const std::string &protocol) {
        const std::string stream = "m=message 40000 " + protocol + " x\n";
        return textOf(sdpline::answer(offerOf(stream + "a=setup:actpass\n"),
                                      localOf(stream + "a=setup:passive\n"))
                          .value()
                          .body);
    };
    for (const char *const protocol : {"TCP", "tcp", "TCP/MSRP", "tcp/TLS/MSRP", "TCP/x"}) {
        EXPECT_TRUE(contains(answered(protocol), "a=setup:passive\n")) << protocol;
    }
    for (const char *const protocol : {"TC", "xTCP", "UDP", "x/TCP"}) {
        EXPECT_FALSE(contains(answered(protocol), "a=setup")) << protocol;
    }
}

TEST(NegotiateDetail, SessionParametersOfKeys) {
    const std::string names[] = {"UNENCRYPTED_SRTP", "UNENCRYPTED_SRTCP", "UNAUTHENTICATED_SRTP",
                                 "KDR=1"};
    const auto stream = [&](unsigned set) {
        std::string text = "m=audio 40000 RTP/SAVP 0\na=crypto:1 A inline:x";
        for (unsigned i = 0; i < 4; ++i) {
            text += (set >> i & 1) != 0 ? ' ' + names[i] : "";
        }
        return text + '\n';
    };
    for (unsigned one = 0; one < 16; ++one) {
        for (unsigned two = 0; two < 16; ++two) {
            EXPECT_EQ(sdpline::answer(offerOf(stream(one)), localOf(stream(two))).value().accepted,
                      (one & 7) == (two & 7))
                << stream(one) << stream(two);
        }
    }
}

TEST(NegotiateDetail, FeedbackForAllFormatsIsTakenOver) {
    const std::string stream = "m=audio 40000 RTP/AVPF 0\na=rtcp-fb:* nack\n";
    SdpSetSupMedProtoRtpAvpf(1);
    const auto answer = sdpline::answer(offerOf(stream), localOf(stream));
    SdpSetSupMedProtoRtpAvpf(0);
    EXPECT_EQ(textOf(answer->decisions), "stream 1 accepted: PCMU 0; sendrecv [Accepted]\n");
    EXPECT_TRUE(contains(textOf(answer->body), "a=rtcp-fb:* nack\n"));
}

TEST(NegotiateDetail, OnlyMultiplexingThatIsDroppedIsSaid) {
    const std::string stream = "m=audio 40000 RTP/AVP 0\n";
    const std::string said =
        decisionsOf(offerOf(stream + "a=rtcp-mux\na=rtcp-rsize\n"), localOf(stream));
    EXPECT_TRUE(contains(said, "RtcpMuxDropped"));
    EXPECT_FALSE(contains(decisionsOf(offerOf(stream + "a=rtcp-rsize\n"), localOf(stream)),
                          "RtcpMuxDropped"));
}

// ---- Groups

TEST(NegotiateDetail, AStreamThatIsOnlyInAnotherGroup) {
    const Body offer = offerOf("a=group:LS a b\nm=audio 49170 RTP/AVP 0\na=mid:a\n"
                               "m=video 0 RTP/AVP 31\na=mid:b\na=bundle-only\n");
    const Body local =
        localOf("a=group:BUNDLE a b\na=group:LS a b\nm=audio 40000 RTP/AVP 0\na=mid:a\n"
                "m=video 40002 RTP/AVP 31\na=mid:b\n");
    const auto answer = sdpline::answer(offer, local);
    EXPECT_TRUE(answer->streams[0].accepted);
    EXPECT_FALSE(answer->streams[1].accepted);
    EXPECT_TRUE(contains(textOf(answer->decisions), "PortZero"));
}

TEST(NegotiateDetail, StreamsOfABundleHaveTheAddressOfTheFirst) {
    const Body offer = offerOf("a=group:BUNDLE a b\nm=audio 49170 RTP/AVP 0\na=mid:a\n"
                               "m=video 49172 RTP/AVP 31\na=mid:b\n");
    const Body local =
        localOf("a=group:BUNDLE a b\nm=audio 40000 RTP/AVP 0\nc=IN IP4 198.51.100.8\n"
                "a=mid:a\nm=video 40002 RTP/AVP 31\nc=IN IP4 198.51.100.9\na=mid:b\n");
    const std::string text = textOf(sdpline::answer(offer, local).value().body);
    EXPECT_TRUE(contains(text, "m=audio 40000 RTP/AVP 0\nc=IN IP4 198.51.100.8\n")) << text;
    EXPECT_TRUE(contains(text, "m=video 40000 RTP/AVP 31\nc=IN IP4 198.51.100.8\n")) << text;
}

// ---- Lines of the transport in a bundle, and of capabilities

TEST(NegotiateDetail, LinesOfABundledStream) {
    const std::string lines = "a=crypto:1 A inline:x\na=rtcp-mux\na=rtcp-rsize\na=rtcp-fb:* nack\n"
                              "a=ice-lite\na=ice-ufrag:u\na=x-other\n";
    const auto body = [&](const char *head) {
        return Body::decode(std::string(head) + "a=group:BUNDLE a b\nm=audio 5000 RTP/SAVPF 0\n" +
                            "a=mid:a\n" + lines + "m=video 5002 RTP/SAVPF 31\na=mid:b\n" + lines)
            .value();
    };
    const std::string text =
        textOf(sdpline::answer(body(kOfferHead.c_str()), body(kLocalHead.c_str())).value().body);
    const std::string second = text.substr(text.find("m=video"));
    for (const char *const kept : {"a=rtcp-rsize\n", "a=rtcp-fb:* nack\n", "a=x-other\n"}) {
        EXPECT_TRUE(contains(second, kept)) << kept << text;
    }
    for (const char *const dropped : {"a=crypto", "a=rtcp-mux", "a=ice-lite", "a=ice-ufrag"}) {
        EXPECT_FALSE(contains(second, dropped)) << dropped << text;
        EXPECT_TRUE(contains(text, dropped)) << dropped << text;
    }
    const std::string able = textOf(*sdpline::capabilities(body(kLocalHead.c_str())));
    for (const char *const kept : {"a=rtcp-rsize\n", "a=rtcp-fb:* nack\n", "a=rtcp-mux\n"}) {
        EXPECT_TRUE(contains(able, kept)) << kept << able;
    }
    for (const char *const dropped : {"a=crypto", "a=ice-", "a=x-other", "a=mid"}) {
        EXPECT_FALSE(contains(able, dropped)) << dropped << able;
    }
}

// The first word of a group is no id.
TEST(NegotiateDetail, AnIdThatIsNamedAsTheGroup) {
    const Body offer = offerOf("a=group:BUNDLE a\nm=audio 5000 RTP/AVP 0\na=mid:a\n"
                               "m=video 0 RTP/AVP 31\na=mid:BUNDLE\na=bundle-only\n");
    const Body local =
        localOf("a=group:BUNDLE a\nm=audio 6000 RTP/AVP 0\nm=video 6002 RTP/AVP 31\n");
    EXPECT_TRUE(contains(decisionsOf(offer, local), "PortZero"));
}

TEST(NegotiateDetail, IdsOfEachStreamAreCompared) {
    const auto body = [](const char *second, const char *third) {
        return Body::decode(kOfferHead +
                            "m=audio 5000 RTP/AVP 0\na=mid:1\nm=audio 5002 RTP/AVP 0\n" +
                            "a=mid:" + second + "\nm=audio 5004 RTP/AVP 0\na=mid:" + third + "\n")
            .value();
    };
    EXPECT_EQ(textOf(sdpline::check(body("2", "3"), body("2", "3"))), "");
    EXPECT_TRUE(contains(textOf(sdpline::check(body("2", "3"), body("2", "4"))), "stream 3"));
    EXPECT_TRUE(contains(textOf(sdpline::check(body("2", "3"), body("4", "3"))), "stream 2"));
}

// ---- The next offer

TEST(NegotiateDetail, AClosedStreamHasOnePort) {
    const Body previous = localOf("m=video 5000/2 RTP/AVP 31\nm=audio 6000 RTP/AVP 0\n");
    const auto next = sdpline::nextOffer(previous, localOf("m=audio 6000 RTP/AVP 0\n"));
    EXPECT_TRUE(contains(textOf(*next), "m=video 0 RTP/AVP 31\n")) << textOf(*next);
}

TEST(NegotiateDetail, OnlySpeechAndFaxTakeTurns) {
    const std::string audio = "m=audio 6000 RTP/AVP 0\n";
    const std::string video = "m=video 6000 RTP/AVP 31\n";
    const std::string image = "m=image 6000 udptl t38\n";
    const auto streams = [](const std::string &before, const std::string &after) {
        const auto next = sdpline::nextOffer(localOf(before), localOf(after));
        return next->media().size();
    };
    EXPECT_EQ(streams(audio, image), 1u);
    EXPECT_EQ(streams(image, audio), 1u);
    EXPECT_EQ(streams(audio, video), 2u);
    EXPECT_EQ(streams(image, video), 2u);
    EXPECT_EQ(streams(video, audio), 2u);
    EXPECT_EQ(streams(video, image), 2u);
}

std::string streamOf(const std::vector<std::pair<unsigned, std::string>> &formats) {
    std::string numbers;
    std::string maps;
    for (const auto &[number, codec] : formats) {
        numbers += ' ' + std::to_string(number);
        maps += "a=rtpmap:" + std::to_string(number) + ' ' + codec + "/8000\n";
    }
    return "m=audio 6000 RTP/AVP" + numbers + '\n' + maps;
}

// A number keeps its codec, no two codecs share one, and a free number is used as requested.
TEST(NegotiateDetail, NumbersOfTheNextOffer) {
    uint32_t seed = 1;
    const auto below = [&](uint32_t count) {
        seed = seed * 1664525 + 1013904223;
        return (seed >> 16) % count;
    };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::pair<unsigned, std::string>> sides[2];
        for (auto &formats : sides) {
            const unsigned first = 96 + below(5);
            for (unsigned i = 0; i < 1 + below(4); ++i) {
                const std::string codec(1, static_cast<char>('A' + below(6)));
                const bool known =
                    std::any_of(formats.begin(), formats.end(),
                                [&](const auto &one) { return one.second == codec; });
                if (!known) {
                    formats.emplace_back(first == 100 ? 127 - i : first + i, codec);
                }
            }
        }
        const auto next =
            sdpline::nextOffer(localOf(streamOf(sides[0])), localOf(streamOf(sides[1])));
        const std::string text = textOf(*next);
        std::vector<unsigned> given;
        for (const auto &[wanted, codec] : sides[1]) {
            const size_t at = text.find(' ' + codec + "/8000\n");
            ASSERT_NE(at, std::string::npos) << text;
            const size_t begin = text.rfind("a=rtpmap:", at) + 9;
            const unsigned number =
                static_cast<unsigned>(std::stoul(text.substr(begin, at - begin)));
            EXPECT_EQ(std::count(given.begin(), given.end(), number), 0) << text;
            given.push_back(number);
            bool free = true;
            for (const auto &[before, old] : sides[0]) {
                EXPECT_TRUE(before != number || old == codec) << text << streamOf(sides[0]);
                free = free && before != wanted;
            }
            EXPECT_TRUE(!free || number == wanted) << text << streamOf(sides[0]);
        }
    }
}

TEST(NegotiateDetail, TheLastNumberThatIsFree) {
    std::vector<std::pair<unsigned, std::string>> all;
    for (unsigned number = 35; number < 128; number += number == 62 ? 34 : 1) {
        all.emplace_back(number, "V" + std::to_string(number));
    }
    const auto next = sdpline::nextOffer(localOf(streamOf(all)), localOf(streamOf({{96, "new"}})));
    EXPECT_TRUE(contains(textOf(*next), "a=rtpmap:63 new/8000\n")) << textOf(*next);
}

// ---- Preconditions

TEST(NegotiateDetail, PreconditionsOfOtherTypes) {
    const auto with = [](const char *type, const char *strength, bool local) {
        const std::string stream = std::string("m=audio 5000 RTP/AVP 0\na=curr:") + type +
                                   " e2e none\na=des:" + type + ' ' + strength + " e2e sendrecv\n";
        return local ? localOf(stream) : offerOf(stream);
    };
    EXPECT_TRUE(
        contains(decisionsOf(with("foo", "mandatory", false), with("bar", "mandatory", true)),
                 "PreconditionUnknown"));
    EXPECT_TRUE(sdpline::answer(with("foo", "mandatory", false), with("foo", "mandatory", true))
                    .value()
                    .accepted);
    EXPECT_TRUE(sdpline::answer(with("foo", "optional", false), with("bar", "mandatory", true))
                    .value()
                    .accepted);
    const std::string said =
        decisionsOf(with("foo", "mandatory", false), localOf("m=audio 6000 RTP/AVP 0\n"));
    const size_t at = said.find("PreconditionsIgnored");
    ASSERT_NE(at, std::string::npos) << said;
    EXPECT_EQ(said.find("PreconditionsIgnored", at + 1), std::string::npos) << said;
}

TEST(NegotiateDetail, StrengthsThatAnAnswerLowers) {
    const char *const strengths[] = {"none", "optional", "mandatory"};
    const auto body = [&](const char *status, int send, int receive) {
        return Body::decode(kOfferHead + "m=audio 5000 RTP/AVP 0\na=curr:qos local none\n" +
                            "a=curr:qos remote none\na=des:qos " + strengths[send] + ' ' + status +
                            " send\na=des:qos " + strengths[receive] + ' ' + status + " recv\n")
            .value();
    };
    for (int i = 0; i < 81; ++i) {
        const int send = i % 3, receive = i / 3 % 3, ourSend = i / 9 % 3, ourReceive = i / 27;
        // What the offerer sends the answerer receives.
        const bool lowered = ourReceive < send || ourSend < receive;
        EXPECT_EQ(contains(textOf(sdpline::check(body("local", send, receive),
                                                 body("remote", ourSend, ourReceive))),
                           "PreconditionLowered"),
                  lowered)
            << send << receive << ourSend << ourReceive;
    }
}

// ---- Transport, further cases

TEST(NegotiateDetail, KeysOfOtherProtocols) {
    const Body offer = offerOf("m=audio 5000 x/y 0\na=crypto:1 A inline:x\n");
    EXPECT_TRUE(sdpline::answer(offer, localOf("m=audio 6000 x/y 0\n")).value().accepted);
    const std::string stream = "m=audio 5000 RTP/AVP 0\n";
    EXPECT_EQ(textOf(sdpline::check(offerOf(stream), localOf(stream + "a=setup:actpass\n"))), "");
}

TEST(NegotiateDetail, ASetupOfOurSession) {
    const Body offer = offerOf("m=message 5000 TCP x\n");
    const Body local = localOf("a=setup:passive\nm=message 6000 TCP x\n");
    EXPECT_TRUE(contains(textOf(sdpline::answer(offer, local).value().body), "a=setup:passive\n"));
    const Body theirs = offerOf("a=setup:passive\nm=message 5000 TCP x\n");
    EXPECT_TRUE(
        contains(textOf(sdpline::answer(theirs, localOf("m=message 6000 TCP x\n")).value().body),
                 "a=setup:active\n"));
}

// ---- Records that programs make: no t= line, no number of channels

TEST(NegotiateDetail, RecordsWithoutATimeOrChannels) {
    const std::string stream = "m=audio 5000 RTP/AVP 97\na=rtpmap:97 L16/8000\n";
    const Body offer = offerOf(stream);
    Body local = localOf(stream);
    local.record()->stTimeSet.ulNoOfTimeFields = 0;
    EXPECT_EQ(textOf(sdpline::check(offer, local)), "");
    SDPMediaDesc &media = *local.record()->stMediaSet.ppstMediaDescs[0];
    media.pstAttrList->ppstAttrs[0]->unAttrValue.stRtpMap.ulEncodingParams = 0;
    EXPECT_TRUE(sdpline::answer(offer, local).value().accepted);
}

} // namespace

} // namespace negotiate_test
