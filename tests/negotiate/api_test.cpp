// Arguments, options and reasons.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

TEST(Negotiate, MissingAndEmptyBodies) {
    const Body body = localOf("m=audio 40000 RTP/AVP 0\n");
    const SdpLine *const good = body.record();
    SdpLine *empty = nullptr;
    ASSERT_EQ(SdpLibCreateSdp(&empty), 0u);
    SdpLine *made = nullptr;
    SdpNegotiateReport *report = nullptr;
    EXPECT_EQ(SdpNegotiateAnswer(nullptr, good, nullptr, nullptr, &made, &report), 1u);
    EXPECT_EQ(SdpNegotiateAnswer(good, nullptr, nullptr, nullptr, &made, &report), 1u);
    EXPECT_EQ(SdpNegotiateAnswer(good, good, nullptr, nullptr, nullptr, &report), 1u);
    EXPECT_EQ(SdpNegotiateAnswer(empty, good, nullptr, nullptr, &made, &report), 2u);
    EXPECT_EQ(SdpNegotiateAnswer(good, empty, nullptr, nullptr, &made, &report), 2u);
    EXPECT_EQ(SdpNegotiateAnswer(good, good, empty, nullptr, &made, &report), 2u);
    EXPECT_EQ(SdpNegotiateAgree(good, empty, SDP_NEGOTIATE_OFFERER, &report), 2u);
    EXPECT_EQ(SdpNegotiateAgree(nullptr, good, SDP_NEGOTIATE_OFFERER, &report), 1u);
    EXPECT_EQ(SdpNegotiateAgree(good, good, SDP_NEGOTIATE_OFFERER, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateAgree(good, good, 0, &report), 7u);
    EXPECT_EQ(SdpNegotiateAgree(good, good, 3, &report), 7u);
    EXPECT_EQ(SdpNegotiateCheck(good, nullptr, &report), 1u);
    EXPECT_EQ(SdpNegotiateCheck(empty, good, &report), 2u);
    EXPECT_EQ(SdpNegotiateCheck(good, good, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateCheckNext(nullptr, good, &report), 1u);
    EXPECT_EQ(SdpNegotiateCheckNext(good, empty, &report), 2u);
    EXPECT_EQ(SdpNegotiateCheckNext(good, good, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateNextOffer(good, nullptr, &made), 1u);
    EXPECT_EQ(SdpNegotiateNextOffer(empty, good, &made), 2u);
    EXPECT_EQ(SdpNegotiateNextOffer(good, good, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateCapabilities(nullptr, &made), 1u);
    EXPECT_EQ(SdpNegotiateCapabilities(empty, &made), 2u);
    EXPECT_EQ(SdpNegotiateCapabilities(good, nullptr), 1u);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(report, nullptr);
    SdpLibReleaseSdp(&empty);
    SdpNegotiateReleaseReport(nullptr);
    SdpNegotiateReleaseReport(&report);
}

TEST(Negotiate, AnAnswerWithoutAReport) {
    const Body body = localOf("m=audio 40000 RTP/AVP 0\n");
    SdpLine *made = nullptr;
    EXPECT_EQ(SdpNegotiateAnswer(body.record(), body.record(), nullptr, nullptr, &made, nullptr),
              0u);
    EXPECT_NE(made, nullptr);
    SdpLibReleaseSdp(&made);
}

// A codec for which no number is left keeps the one that was wanted, and the check says so.
TEST(Negotiate, NumbersThatAreAllInUse) {
    std::string numbers;
    std::string maps;
    for (uint32_t number = 35; number < 128; number += number == 63 ? 33 : 1) {
        numbers += ' ' + std::to_string(number);
        maps += "a=rtpmap:" + std::to_string(number) + " V" + std::to_string(number) + "/90000\n";
    }
    const Body previous = localOf("m=video 40000 RTP/AVP" + numbers + '\n' + maps);
    const Body wanted = localOf("m=video 40000 RTP/AVP 96\na=rtpmap:96 VP9/90000\n");
    const auto next = sdpline::nextOffer(previous, wanted);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->media()[0].payloads()[0], 96u);
    const auto faults = sdpline::checkNext(previous, *next);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].name, "PayloadRemapped");
}

// One fault or several: a check's report is not accepted.
TEST(Negotiate, AReportOfACheckIsAcceptedWithoutFaults) {
    const std::string audio = "m=audio 40000 RTP/AVP 0\n";
    const Body two = localOf(audio + audio);
    const Body three = localOf(audio + audio + audio);
    for (const auto &check : {SdpNegotiateCheck, SdpNegotiateCheckNext}) {
        for (const auto &[first, faults] : {std::pair(&two, 0u), std::pair(&three, 1u)}) {
            SdpNegotiateReport *report = nullptr;
            ASSERT_EQ(check(first->record(), two.record(), &report), 0u);
            EXPECT_EQ(report->bAccepted, faults == 0 ? 1u : 0u);
            EXPECT_GE(report->ulNoOfDecisions, faults);
            SdpNegotiateReleaseReport(&report);
        }
    }
}

// Flags of records are 1, which programs in C compare with.
TEST(Negotiate, FlagsOfAStreamAreOne) {
    const std::string wished = "a=curr:qos local none\na=curr:qos remote none\n"
                               "a=des:qos mandatory local sendrecv\n"
                               "a=des:qos mandatory remote sendrecv\n";
    const Body offer = offerOf("m=audio 49170 RTP/AVP 0\nc=IN IP4 0.0.0.0\n" + wished +
                               "a=conf:qos remote sendrecv\n");
    const Body local = localOf("m=audio 40000 RTP/AVP 0\nc=IN IP4 0.0.0.0\n" + wished);
    SdpLine *answer = nullptr;
    SdpNegotiateReport *made = nullptr;
    SdpNegotiateReport *agreed = nullptr;
    ASSERT_EQ(SdpNegotiateAnswer(offer.record(), local.record(), nullptr, nullptr, &answer, &made),
              0u);
    ASSERT_EQ(SdpNegotiateAgree(offer.record(), answer, SDP_NEGOTIATE_ANSWERER, &agreed), 0u);
    for (const SdpNegotiateReport *const report : {made, agreed}) {
        ASSERT_EQ(report->ulNoOfStreams, 1u);
        const SdpNegotiateStream &stream = *report->ppstStreams[0];
        EXPECT_EQ(report->bAccepted, 1u);
        EXPECT_EQ(stream.bAccepted, 1u);
        EXPECT_EQ(stream.bConfirm, 1u);
        EXPECT_EQ(stream.bHeld, 1u);
        EXPECT_EQ(stream.bPeerHeld, 1u);
        EXPECT_EQ(stream.enPreconditions, uint32_t{SDP_NEGOTIATE_PRECONDITIONS_UNMET});
    }
    SdpNegotiateReleaseReport(&made);
    SdpNegotiateReleaseReport(&agreed);
    SdpLibReleaseSdp(&answer);
}

std::string lines(const std::string &line, int count) {
    std::string text;
    for (; count > 0; --count) {
        text += line;
    }
    return text;
}

TEST(Negotiate, ABodyThatWouldBeTooLong) {
    const Body offer = offerOf(lines("m=audio 49170 RTP/AVP 0\n", 5));
    std::string local = "a=x:" + std::string(500, 'x') + '\n';
    const Body wide = localOf("m=audio 40000 RTP/AVP 0\n" + lines(local, 3));
    sdpline::AnswerOptions options;
    options.ports = {1, 2, 3, 4};
    const auto answer = sdpline::answer(offer, wide, nullptr, options);
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().check, "TooLong");
    options.ports = {1};
    EXPECT_TRUE(sdpline::answer(offer, wide, nullptr, options));
    // With a previous description too.
    options.ports = {1, 2, 3, 4};
    EXPECT_EQ(sdpline::answer(offer, wide, &wide, options).error().check, "TooLong");
}

// Line by line longer: an answer is refused where it has to be, and not before.
TEST(Negotiate, TheLongestAnswer) {
    const Body offer = offerOf(lines("m=audio 49170 RTP/AVP 0\n", 4));
    sdpline::AnswerOptions options;
    options.ports = {1, 2, 3};
    size_t longest = 0;
    bool refused = false;
    for (size_t size = 880; size < 1015; ++size) {
        const Body local = localOf("m=audio 40000 RTP/AVP 0\na=x:" + std::string(size, 'x') + '\n');
        const auto answer = sdpline::answer(offer, local, nullptr, options);
        ASSERT_TRUE(!answer || !refused) << size;
        refused = !answer;
        if (answer) {
            const auto text = answer->body.encode();
            longest = text->size();
        }
    }
    EXPECT_TRUE(refused);
    EXPECT_LE(longest, SDP_MAX_BODY);
    EXPECT_GT(longest + 4, SDP_MAX_BODY) << "one byte more for each of the streams";
}

TEST(Negotiate, AValueThatWouldBeTooLong) {
    const std::string parameters(1018, 'x');
    const Body offer = offerOf("m=audio 49170 RTP/AVP 100\na=rtpmap:100 x/8000\n");
    const Body local =
        localOf("m=audio 40000 RTP/AVP 99\na=rtpmap:99 x/8000\na=fmtp:99 " + parameters + "xx\n");
    EXPECT_EQ(sdpline::answer(offer, local).error().check, "TooLong");
    const Body shorter =
        localOf("m=audio 40000 RTP/AVP 99\na=rtpmap:99 x/8000\na=fmtp:99 " + parameters + "x\n");
    EXPECT_TRUE(sdpline::answer(offer, shorter));
}

TEST(Negotiate, PortsByACallback) {
    const Body offer = offerOf(lines("m=audio 49170 RTP/AVP 0\n", 3));
    const Body local = localOf("m=audio 40000 RTP/AVP 0\n");
    std::string calls;
    sdpline::AnswerOptions options;
    options.port = [&](uint32_t stream, uint32_t description, uint32_t own) -> uint32_t {
        calls += std::to_string(stream) + '/' + std::to_string(description) + '/' +
                 std::to_string(own) + ' ';
        return stream == 1 ? 0 : 41000 + stream;
    };
    const auto answer = sdpline::answer(offer, local, nullptr, options);
    EXPECT_EQ(calls, "0/0/40000 1/0/0 2/0/0 ");
    EXPECT_EQ(answer->body.media()[0].port(), 41000u);
    EXPECT_EQ(answer->body.media()[1].port(), 0u);
    EXPECT_EQ(answer->body.media()[2].port(), 41002u);
    options.port = [](uint32_t, uint32_t, uint32_t) -> uint32_t { return 65536; };
    EXPECT_FALSE(sdpline::answer(offer, local, nullptr, options).value().accepted);
}

TEST(Negotiate, PortsThatAreMissing) {
    const Body offer = offerOf(lines("m=audio 49170 RTP/AVP 0\n", 2));
    const Body local = localOf("m=audio 40000 RTP/AVP 0\n");
    SdpNegotiateOptions options = {};
    options.ulNoOfPorts = 1; // without an array
    SdpLine *made = nullptr;
    ASSERT_EQ(SdpNegotiateAnswer(offer.record(), local.record(), nullptr, &options, &made, nullptr),
              0u);
    const Body answer = Body::adopt(made);
    EXPECT_EQ(answer.media()[1].port(), 0u);
}

TEST(Negotiate, ARuleOfTheCaller) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 18 0\na=fmtp:18 annexb=no\n");
    const Body local = localOf("m=audio 40000 RTP/AVP 18 0\n");
    sdpline::AnswerOptions options;
    std::string seen;
    options.same = [&](const sdpline::Codec &offered, const sdpline::Codec &own, bool same) {
        seen += std::string(offered.name) + '/' + std::to_string(offered.clockRate) + '/' +
                std::to_string(offered.channels) + ' ' + std::string(offered.parameters) + '|' +
                std::string(own.parameters) + '|' + std::to_string(own.payload) +
                (same ? " yes;" : " no;");
        return offered.name == "G729";
    };
    const auto answer = sdpline::answer(offer, local, nullptr, options);
    EXPECT_EQ(seen, "G729/8000/1 annexb=no||18 no;PCMU/8000/1 ||0 yes;");
    EXPECT_EQ(negotiate_test::textOf(answer->body), kLocalHead + "m=audio 40000 RTP/AVP 18\n");
}

TEST(Negotiate, AnExistingConnectionThatWeDoNotHave) {
    const Body offer = offerOf("m=image 9 TCP t38\na=setup:active\na=connection:existing\n");
    const Body local = localOf("m=image 40000 TCP t38\na=setup:passive\n");
    const Body closed = localOf("m=image 0 TCP t38\n");
    const Body other = localOf("m=image 40000 udptl t38\n");
    const auto connectionOf = [&](const Body *previous) {
        const auto answer = sdpline::answer(offer, local, previous);
        return std::string(answer->body.media()[0].attributes().text("connection").value());
    };
    EXPECT_EQ(connectionOf(nullptr), "new");
    EXPECT_EQ(connectionOf(&closed), "new");
    EXPECT_EQ(connectionOf(&other), "new");
    EXPECT_EQ(connectionOf(&local), "existing");
}

// Words that no decoded body has: a program makes them.
TEST(Negotiate, TextsOfAnAnswerAreCopies) {
    const Body offer = offerOf("m=x-media 49170 x-proto y\n");
    Body local = localOf("m=x-media 40000 x-proto y\nc=IN IP4 198.51.100.3\nk=prompt\n");
    char bytes[] = "X-one";
    SipString word = {5, bytes};
    SDPOrigin &origin = local.record()->stOrigin;
    SDPConnection &connection = *local.record()->stMediaSet.ppstMediaDescs[0]->pstConnection;
    origin.stNetType = {SDP_NETTYPE_OTHER, &word};
    origin.stAddrType = {SDP_ADDRTYPE_OTHER, &word};
    connection.stNetType = {SDP_NETTYPE_OTHER, &word};
    connection.stAddrType = {SDP_ADDRTYPE_OTHER, &word};
    const auto answer = sdpline::answer(offer, local);
    origin.stNetType = {SDP_NETTYPE_IN, nullptr};
    origin.stAddrType = {SDP_ADDRTYPE_IP4, nullptr};
    connection.stNetType = {SDP_NETTYPE_IN, nullptr};
    connection.stAddrType = {SDP_ADDRTYPE_IP4, nullptr};
    std::memset(bytes, '#', sizeof bytes);
    ASSERT_TRUE(answer);
    const SdpLine &made = *answer->body.record();
    const SDPConnection &copy = *made.stMediaSet.ppstMediaDescs[0]->pstConnection;
    for (const SipString *const text :
         {made.stOrigin.stNetType.pstrOtherNetType, made.stOrigin.stAddrType.pstrOtherAddrType,
          copy.stNetType.pstrOtherNetType, copy.stAddrType.pstrOtherAddrType}) {
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(std::string(text->pcData, text->ulLen), "X-one");
    }
}

TEST(Negotiate, StreamsOfAnAnswer) {
    const Body offer = offerOf("m=video 49172 RTP/AVP 31\nm=audio 49170 RTP/AVP 97\n"
                               "a=rtpmap:97 iLBC/8000\na=fmtp:97 mode=30\na=ptime:30\n");
    const Body local =
        localOf("m=text 1 RTP/AVP 0\nm=audio 40000 RTP/AVP 98\na=rtpmap:98 iLBC/8000\n"
                "a=fmtp:98 mode=20\na=ptime:20\na=maxptime:40\n");
    const auto answer = sdpline::answer(offer, local);
    ASSERT_EQ(answer->streams.size(), 2u);
    const auto &rejected = answer->streams[0];
    EXPECT_FALSE(rejected.accepted);
    EXPECT_EQ(rejected.reason, 23u);
    EXPECT_EQ(rejected.local, std::nullopt);
    EXPECT_EQ(rejected.direction, sdpline::Direction::Inactive);
    const auto &stream = answer->streams[1];
    EXPECT_TRUE(stream.accepted);
    EXPECT_EQ(stream.local, 1u);
    EXPECT_EQ(stream.sendPTime, 30u);
    EXPECT_EQ(stream.receivePTime, 20u);
    EXPECT_EQ(stream.sendMaxPTime, std::nullopt);
    EXPECT_EQ(stream.receiveMaxPTime, 40u);
    ASSERT_EQ(stream.formats.size(), 1u);
    EXPECT_EQ(stream.formats[0].send, 97u);
    EXPECT_EQ(stream.formats[0].receive, 97u);
    EXPECT_EQ(stream.formats[0].sendParameters, "mode=30");
    EXPECT_EQ(stream.formats[0].receiveParameters, "mode=20");
    const sdpline::Decision &first = answer->decisions.at(0);
    EXPECT_EQ(first.name, "NoMediaType");
    EXPECT_EQ(first.kind, sdpline::DecisionKind::Rejection);
    EXPECT_EQ(first.rfc, "RFC 3264");
    EXPECT_EQ(first.section, "6");
    EXPECT_EQ(first.stream, 0u);
    EXPECT_EQ(first.payload, std::nullopt);
}

TEST(Negotiate, BothEndsSeeTheSame) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 96 0\na=rtpmap:96 iLBC/8000\na=sendonly\n"
                               "a=ptime:30\n");
    const Body reply = localOf("m=audio 40000 RTP/AVP 97 0\na=rtpmap:97 iLBC/8000\na=recvonly\n");
    const auto one = sdpline::agree(offer, reply, sdpline::Side::Offerer).value().streams.at(0);
    const auto two = sdpline::agree(offer, reply).value().streams.at(0);
    EXPECT_EQ(one.direction, sdpline::reversed(two.direction));
    EXPECT_EQ(one.formats.at(0).send, 97u);
    EXPECT_EQ(one.formats.at(0).receive, 96u);
    EXPECT_EQ(two.formats.at(0).send, 96u);
    EXPECT_EQ(two.formats.at(0).receive, 97u);
    EXPECT_EQ(one.receivePTime, 30u);
    EXPECT_EQ(two.sendPTime, 30u);
}

TEST(NegotiateReasons, NumbersAndTexts) {
    uint32_t rows = 0;
    std::set<std::string> names;
    for (uint32_t number = 0; number <= SDP_NEGOTIATE_REASONS; ++number) {
        const SdpNegotiateReason *const reason = SdpNegotiateGetReason(number);
        if (reason == nullptr) {
            continue;
        }
        ++rows;
        EXPECT_EQ(reason->ulNumber, number);
        EXPECT_TRUE(names.insert(reason->pcName).second) << reason->pcName;
        EXPECT_GE(reason->enKind, uint32_t{SDP_NEGOTIATE_REFUSAL});
        EXPECT_LE(reason->enKind, uint32_t{SDP_NEGOTIATE_FAULT});
        for (const char *const text : {reason->pcRfc, reason->pcSection, reason->pcSentence}) {
            EXPECT_NE(std::string(text), "") << reason->pcName;
        }
    }
    EXPECT_EQ(SdpNegotiateGetReason(0), nullptr);
    EXPECT_EQ(rows, names.size());
    EXPECT_EQ(std::string(SdpNegotiateGetReason(26)->pcName), "NoCommonFormat");
}

// docs/decisions.md has a row for each of them, and no other.
TEST(NegotiateReasons, AreListed) {
    constexpr const char *kKinds[] = {"", "refusal", "rejection", "note", "fault"};
    std::string expected;
    for (uint32_t number = 1; number < SDP_NEGOTIATE_REASONS; ++number) {
        if (const SdpNegotiateReason *const reason = SdpNegotiateGetReason(number)) {
            expected += "| " + std::to_string(number) + " | " + reason->pcName + " | " +
                        kKinds[reason->enKind] + " | " + reason->pcRfc + " " + reason->pcSection +
                        " | " + reason->pcSentence + " |\n";
        }
    }
    std::string listed;
    std::ifstream in(SDPLINE_DECISIONS);
    for (std::string line; std::getline(in, line);) {
        const bool row = line.size() > 2 && line[0] == '|' && line[2] >= '0' && line[2] <= '9';
        listed += row ? line + '\n' : "";
    }
    EXPECT_EQ(listed, expected);
}

// No text has an open m= line without formats: a program makes one.
TEST(Negotiate, AnAcceptedStreamWithoutFormats) {
    const Body offer = offerOf("m=audio 49170 RTP/AVP 0\n");
    Body reply = localOf("m=audio 40000 RTP/AVP 0\n");
    SDPMediaField &field = reply.record()->stMediaSet.ppstMediaDescs[0]->stMediaField;
    field.stMediaFmt.unMediaFmt.stRtpPayLoads = {0, nullptr};
    EXPECT_EQ(negotiate_test::textOf(sdpline::check(offer, reply)),
              "stream 1: an accepted stream without formats [NoFormats]\n");

    const Body board = offerOf("m=application 49170 udp wb\n");
    Body wordless = localOf("m=application 40000 udp wb\n");
    wordless.record()
        ->stMediaSet.ppstMediaDescs[0]
        ->stMediaField.stMediaFmt.unMediaFmt.strOtherFmts.ulLen = 0;
    EXPECT_EQ(negotiate_test::textOf(sdpline::check(board, wordless)),
              "stream 1: an accepted stream without formats [NoFormats]\n");
}

// Every reason of a decision is one that a case document shows, but for NoFormats (127); those of
// refused calls are reached by the tests of this program.
TEST(NegotiateReasons, EveryOneIsReached) {
    SdpSetSupMedProtoRtpAvpf(1);
    std::string all;
    for (const Case &current : readCases(SDPLINE_NEGOTIATE_CASES)) {
        for (const auto &[kind, text] : outputsOf(current)) {
            if (current.has(kind)) {
                all += text;
            }
        }
    }
    SdpSetSupMedProtoRtpAvpf(0);
    for (uint32_t number = 1; number < SDP_NEGOTIATE_REASONS; ++number) {
        const SdpNegotiateReason *const reason = SdpNegotiateGetReason(number);
        if (reason == nullptr || reason->enKind == SDP_NEGOTIATE_REFUSAL || number == 127) {
            continue;
        }
        const std::string name = reason->pcName;
        EXPECT_TRUE(all.find('[' + name + ']') != std::string::npos ||
                    all.find("rejected " + name) != std::string::npos)
            << name;
    }
}

} // namespace

} // namespace negotiate_test
