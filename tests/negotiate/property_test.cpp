// Properties of any two bodies, tested on random bodies and those of the cases.
#include <gtest/gtest.h>

#include <algorithm>

#include "negotiate/documents.hpp"
#include "support/bodies.hpp"
#include "support/generator.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;

std::vector<std::string> casesBodies() {
    std::vector<std::string> bodies;
    for (const Case &current : readCases(SDPLINE_NEGOTIATE_CASES)) {
        for (const char *const kind : {"offer", "local", "reply", "sent", "wanted", "previous"}) {
            if (current.has(kind)) {
                bodies.push_back(textOf(*bodyOf(current, kind)));
            }
        }
    }
    return bodies;
}

// The formats of a stream without their order.
std::vector<std::string> formatsOf(const sdpline::NegotiatedStream &stream, bool turned) {
    std::vector<std::string> formats;
    for (const auto &format : stream.formats) {
        const auto send = turned ? format.receive : format.send;
        const auto receive = turned ? format.send : format.receive;
        formats.push_back(format.name + ' ' + std::to_string(send.value_or(999)) + ' ' +
                          std::to_string(receive.value_or(999)));
    }
    std::sort(formats.begin(), formats.end());
    return formats;
}

bool isMulticast(const Body &body, const sdpline::Media &media) {
    const auto connection = body.connectionOf(media);
    const auto octets = connection ? connection->address.octets() : std::span<const uint8_t>();
    return !octets.empty() && (octets.size() == 4 ? octets[0] >> 4 == 0xE : octets[0] == 0xFF);
}

void expectBothEnds(const Body &offer, const Body &answer) {
    const auto one = sdpline::agree(offer, answer, sdpline::Side::Offerer);
    const auto two = sdpline::agree(offer, answer, sdpline::Side::Answerer);
    ASSERT_TRUE(one && two);
    ASSERT_EQ(one->streams.size(), two->streams.size());
    for (size_t i = 0; i < one->streams.size(); ++i) {
        const auto &ours = one->streams[i];
        const auto &theirs = two->streams[i];
        ASSERT_EQ(ours.accepted, theirs.accepted);
        const bool multicast = isMulticast(offer, offer.media()[i]);
        ASSERT_EQ(ours.direction,
                  multicast ? theirs.direction : sdpline::reversed(theirs.direction));
        ASSERT_EQ(formatsOf(ours, true), formatsOf(theirs, false));
        ASSERT_EQ(ours.held, theirs.peerHeld);
        ASSERT_EQ(ours.sendPTime, theirs.receivePTime);
        ASSERT_EQ(ours.sendMaxPTime, theirs.receiveMaxPTime);
    }
}

// The part that must be equal in two answers to one offer: see chooseConnection.
bool hasExistingConnection(const std::string &offer) {
    return offer.find("a=connection:existing") != std::string::npos;
}

void expectAnswer(const std::string &offerText, const std::string &localText) {
    const auto offer = Body::decode(offerText);
    const auto local = Body::decode(localText);
    if (!offer || !local) {
        return;
    }
    const auto answer = sdpline::answer(*offer, *local);
    if (!answer) {
        ASSERT_EQ(answer.error().check, "TooLong");
        return;
    }
    SCOPED_TRACE("offer\n" + offerText + "\nlocal\n" + localText + "\nanswer\n" +
                 textOf(answer->body));
    ASSERT_EQ(textOf(sdpline::check(*offer, answer->body)), "");
    ASSERT_EQ(answer->body.media().size(), offer->media().size());
    const auto again = sdpline::answer(*offer, *local, &answer->body);
    ASSERT_TRUE(again);
    if (!hasExistingConnection(offerText)) {
        ASSERT_EQ(textOf(again->body), textOf(answer->body));
    }
    ASSERT_TRUE(Body::decode(textOf(answer->body)));
    expectBothEnds(*offer, answer->body);
}

void expectNext(const std::string &previousText, const std::string &wantedText) {
    const auto previous = Body::decode(previousText);
    const auto wanted = Body::decode(wantedText);
    if (!previous || !wanted) {
        return;
    }
    const auto next = sdpline::nextOffer(*previous, *wanted);
    if (!next) {
        ASSERT_EQ(next.error().check, "TooLong");
        return;
    }
    SCOPED_TRACE("previous\n" + previousText + "\nwanted\n" + wantedText + "\nnext\n" +
                 textOf(*next));
    std::string faults = textOf(sdpline::checkNext(*previous, *next));
    // The port of the wanted body is not changed.
    while (faults.find("[NextPortTooHigh]") != std::string::npos) {
        const size_t end = faults.find("[NextPortTooHigh]\n") + 18;
        const size_t begin = faults.rfind('\n', end - 2);
        faults.erase(begin == std::string::npos ? 0 : begin + 1, end);
    }
    ASSERT_EQ(faults, "");
    const auto capabilities = sdpline::capabilities(*wanted);
    ASSERT_TRUE(capabilities);
    for (const sdpline::Media media : capabilities->media()) {
        ASSERT_EQ(media.port(), 0u);
    }
}

class NegotiateProperty : public testing::Test {
public:
    void SetUp() override { SdpSetSupMedProtoRtpAvpf(1); }
    void TearDown() override { SdpSetSupMedProtoRtpAvpf(0); }
};

TEST_F(NegotiateProperty, AnyTwoBodiesMadeByChance) {
    // Without flags of 0 the description would differ from the decision: they are written with
    // values.
    const support::Configured configured(SDP_T38_STYLE_VALUE, 1, SDP_LINE_END_CRLF);
    std::mt19937 engine(16);
    for (int i = 0; i < 400; ++i) {
        const std::string one = support::generateBody(engine);
        const std::string two = support::generateBody(engine);
        ASSERT_NO_FATAL_FAILURE(expectAnswer(one, two));
        ASSERT_NO_FATAL_FAILURE(expectAnswer(one, one));
        ASSERT_NO_FATAL_FAILURE(expectNext(one, two));
        ASSERT_NO_FATAL_FAILURE(expectNext(one, one));
    }
}

TEST_F(NegotiateProperty, AnyTwoBodiesOfTheCases) {
    const auto bodies = casesBodies();
    std::mt19937 engine(17);
    std::uniform_int_distribution<size_t> any(0, bodies.size() - 1);
    for (const std::string &body : bodies) {
        for (int i = 0; i < 8; ++i) {
            const std::string &other = bodies[any(engine)];
            ASSERT_NO_FATAL_FAILURE(expectAnswer(body, other));
            ASSERT_NO_FATAL_FAILURE(expectNext(body, other));
        }
    }
}

// Any two bodies as an offer and its answer: the check ends, and both sides agree.
TEST_F(NegotiateProperty, AnyReply) {
    const auto bodies = casesBodies();
    std::mt19937 engine(18);
    std::uniform_int_distribution<size_t> any(0, bodies.size() - 1);
    for (const std::string &body : bodies) {
        const auto offer = Body::decode(body);
        const auto reply = Body::decode(bodies[any(engine)]);
        SCOPED_TRACE("offer\n" + body + "\nreply\n" + textOf(*reply));
        ASSERT_NO_FATAL_FAILURE(expectBothEnds(*offer, *reply));
        for (const auto &fault : sdpline::check(*offer, *reply)) {
            ASSERT_EQ(fault.kind, sdpline::DecisionKind::Fault);
        }
    }
}

} // namespace

} // namespace negotiate_test
