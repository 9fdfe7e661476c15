// The state machine: the calls that each state allows, and the description in force.
#include <gtest/gtest.h>

#include "negotiate/documents.hpp"

namespace negotiate_test {

namespace {

using sdpline::Body;
using sdpline::Negotiator;
using State = Negotiator::State;

std::string textOf(const SdpLine *line) {
    uint8_t bytes[SDP_MAX_BODY];
    uint32_t size = 0;
    EXPECT_EQ(SdpLibSerializeSdp(const_cast<SdpLine *>(line), bytes, sizeof bytes, &size), 0u);
    std::string text(reinterpret_cast<const char *>(bytes), size);
    std::erase(text, '\r');
    return text;
}

const std::string kAudio = "m=audio 40000 RTP/AVP 0\n";
const std::string kHold = kAudio + "a=sendonly\n";

std::string media(const Body &body) {
    const std::string text = negotiate_test::textOf(body);
    return text.substr(text.find("m="));
}

std::string versionOf(const Body &body) {
    return std::string(body.origin().sessionVersion);
}

TEST(Negotiator, AnOfferAndItsAnswer) {
    Negotiator session;
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(session.local(), nullptr);
    const auto offer = session.offer(localOf(kAudio));
    ASSERT_TRUE(offer);
    EXPECT_EQ(negotiate_test::textOf(*offer), kLocalHead + kAudio);
    EXPECT_EQ(session.state(), State::HaveLocalOffer);
    EXPECT_EQ(session.local(), nullptr) << "not in force before the answer";

    const Body answer = offerOf("m=audio 49170 RTP/AVP 0\na=recvonly\n");
    const auto early = session.receiveAnswer(answer, true);
    ASSERT_TRUE(early);
    EXPECT_EQ(session.state(), State::HaveLocalOffer);
    EXPECT_EQ(session.remote(), nullptr);
    const auto agreement = session.receiveAnswer(answer);
    ASSERT_TRUE(agreement);
    EXPECT_TRUE(agreement->decisions.empty());
    EXPECT_EQ(agreement->streams.at(0).direction, sdpline::Direction::SendOnly) << "as we see it";
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(textOf(session.local()), kLocalHead + kAudio);
    EXPECT_EQ(textOf(session.remote()), negotiate_test::textOf(answer));
}

TEST(Negotiator, AnAnswerWithFaultsIsTakenAndJudged) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio + "m=video 40002 RTP/AVP 31\n")));
    const auto agreement = session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n"));
    ASSERT_TRUE(agreement);
    ASSERT_EQ(agreement->decisions.size(), 1u);
    EXPECT_EQ(agreement->decisions[0].sentence,
              "stream 2: an m= line of the offer has none in the answer");
    EXPECT_EQ(agreement->streams.size(), 2u);
    EXPECT_EQ(session.state(), State::Stable);
}

TEST(Negotiator, ARejectedOfferStaysOpenToBeRefused) {
    Negotiator session;
    ASSERT_TRUE(session.receiveOffer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    ASSERT_TRUE(session.answer(localOf(kAudio)));
    const std::string before = textOf(session.local());

    ASSERT_TRUE(session.receiveOffer(offerOf("m=video 49180 RTP/AVP 31\n")));
    const auto none = session.answer(localOf(kAudio), {.openIfRejected = true});
    ASSERT_TRUE(none);
    EXPECT_FALSE(none->accepted);
    EXPECT_EQ(session.state(), State::HaveRemoteOffer);
    ASSERT_TRUE(session.refuse());
    EXPECT_EQ(textOf(session.local()), before);

    ASSERT_TRUE(session.receiveOffer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    const auto again = session.answer(localOf(kAudio), {.openIfRejected = true});
    ASSERT_TRUE(again && again->accepted);
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(textOf(session.local()), before) << "the text that was not sent used no version up";
}

TEST(Negotiator, AnOfferOfThePeer) {
    Negotiator session;
    const Body offer = offerOf("m=audio 49170 RTP/AVP 0 8\n");
    ASSERT_TRUE(session.receiveOffer(offer));
    EXPECT_EQ(session.state(), State::HaveRemoteOffer);
    const auto early = session.answer(localOf(kAudio), {}, true);
    ASSERT_TRUE(early);
    EXPECT_EQ(session.state(), State::HaveRemoteOffer);
    EXPECT_EQ(session.local(), nullptr);
    const auto final = session.answer(localOf(kAudio));
    ASSERT_TRUE(final);
    EXPECT_EQ(negotiate_test::textOf(final->body), negotiate_test::textOf(early->body))
        << "the same answer, with the same version";
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(textOf(session.remote()), negotiate_test::textOf(offer));
    EXPECT_EQ(textOf(session.local()), kLocalHead + kAudio);
}

TEST(Negotiator, HoldAndResume) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    ASSERT_TRUE(session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    const auto hold = session.offer(localOf(kHold));
    ASSERT_TRUE(hold);
    EXPECT_EQ(versionOf(*hold), "2");
    const auto held = session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\na=recvonly\n"));
    EXPECT_EQ(held->streams.at(0).direction, sdpline::Direction::SendOnly);
    const auto resumed = session.offer(localOf(kAudio));
    EXPECT_EQ(versionOf(*resumed), "3");
}

TEST(Negotiator, ARefusedOfferLeavesWhatIsInForceAndUsesItsVersionUp) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    ASSERT_TRUE(session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    const std::string inForce = textOf(session.local());
    ASSERT_TRUE(session.offer(localOf(kHold)));
    ASSERT_TRUE(session.refused());
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(textOf(session.local()), inForce);
    // An equal description is sent unchanged; another one has the next version.
    const auto again = session.offer(localOf(kHold));
    EXPECT_EQ(versionOf(*again), "2");
    ASSERT_TRUE(session.refused());
    ASSERT_TRUE(session.receiveOffer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    const auto answer = session.answer(localOf(kAudio));
    EXPECT_EQ(versionOf(answer->body), "3");
}

// The m= lines of a refused offer do not count; its version does.
TEST(Negotiator, ARefusedOfferLeavesNoLines) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    ASSERT_TRUE(session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    ASSERT_TRUE(session.offer(localOf(kAudio + "m=video 40002 RTP/AVP 31\n")));
    ASSERT_TRUE(session.refused());
    const auto next = session.offer(localOf(kHold));
    ASSERT_TRUE(next);
    EXPECT_EQ(next->media().size(), 1u);
    EXPECT_EQ(versionOf(*next), "3");
    ASSERT_TRUE(session.refused());

    // The description in force differs from the one that was sent last.
    const auto back = session.offer(localOf(kAudio));
    EXPECT_EQ(versionOf(*back), "4");
}

TEST(Negotiator, ARefusedFirstOffer) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio + "m=video 40002 RTP/AVP 31\n")));
    ASSERT_TRUE(session.refused());
    const auto next = session.offer(localOf(kAudio));
    ASSERT_TRUE(next);
    EXPECT_EQ(next->media().size(), 1u);
    EXPECT_EQ(versionOf(*next), "2");
    const auto agreement = session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n"));
    ASSERT_TRUE(agreement);
    EXPECT_TRUE(agreement->decisions.empty());
}

TEST(Negotiator, ARefusedOfferOfThePeer) {
    Negotiator session;
    ASSERT_TRUE(session.receiveOffer(offerOf(kAudio)));
    ASSERT_TRUE(session.refuse());
    EXPECT_EQ(session.state(), State::Stable);
    EXPECT_EQ(session.remote(), nullptr);
    ASSERT_TRUE(session.receiveOffer(offerOf(kAudio)));
    ASSERT_TRUE(session.answer(localOf(kAudio)));
}

TEST(Negotiator, Glare) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    const auto status = session.receiveOffer(offerOf(kAudio));
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().check, "Glare");
    EXPECT_EQ(status.error().fault, sdpline::Fault::Argument);
    EXPECT_EQ(status.error().sentence, "an offer arrived while ours waits for its answer");
    EXPECT_EQ(session.state(), State::HaveLocalOffer);
    EXPECT_TRUE(session.receiveAnswer(offerOf(kAudio)));
}

template <class... Outcome>
void expectWrongState(const Outcome &...outcome) {
    for (const std::string_view check : {std::string_view(outcome.error().check)...}) {
        EXPECT_EQ(check, "WrongState");
    }
}

// Each call in the states that do not allow it: an error, and nothing changes.
TEST(Negotiator, CallsInTheWrongState) {
    const Body local = localOf(kAudio);
    const Body remote = offerOf(kAudio);
    Negotiator stable;
    expectWrongState(stable.receiveAnswer(remote), stable.answer(local), stable.refuse(),
                     stable.refused());
    EXPECT_EQ(stable.state(), State::Stable);

    Negotiator offering;
    ASSERT_TRUE(offering.offer(local));
    expectWrongState(offering.offer(local), offering.answer(local), offering.refuse());
    EXPECT_EQ(offering.state(), State::HaveLocalOffer);

    Negotiator offered;
    ASSERT_TRUE(offered.receiveOffer(remote));
    expectWrongState(offered.offer(local), offered.receiveOffer(remote),
                     offered.receiveAnswer(remote), offered.refused());
    EXPECT_EQ(offered.state(), State::HaveRemoteOffer);
}

TEST(Negotiator, ProvisionalAnswersOfTwoPeers) {
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    const auto one = session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\na=sendonly\n"), true);
    EXPECT_EQ(one->streams.at(0).direction, sdpline::Direction::RecvOnly);
    const auto two = session.receiveAnswer(offerOf("m=audio 49180 RTP/AVP 0\n"), true);
    EXPECT_EQ(two->streams.at(0).direction, sdpline::Direction::SendRecv);
    EXPECT_EQ(session.remote(), nullptr);
    const Body last = offerOf("m=audio 49190 RTP/AVP 0\n");
    ASSERT_TRUE(session.receiveAnswer(last));
    EXPECT_EQ(textOf(session.remote()), negotiate_test::textOf(last));
}

TEST(Negotiator, NoStreamAtFirst) {
    Negotiator session;
    ASSERT_TRUE(session.receiveOffer(offerOf("")));
    const auto answer = session.answer(localOf(kAudio));
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->accepted);
    EXPECT_EQ(negotiate_test::textOf(answer->body), kLocalHead);
    const auto offer = session.offer(localOf(kAudio));
    ASSERT_TRUE(offer);
    EXPECT_EQ(versionOf(*offer), "2");
    const auto agreement = session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n"));
    EXPECT_TRUE(agreement->accepted);
}

TEST(Negotiator, AFaxThatIsRefusedOrRejectedAndSpeechAgain) {
    const std::string fax = "m=image 40010 udptl t38\n";
    Negotiator session;
    ASSERT_TRUE(session.offer(localOf(kAudio)));
    ASSERT_TRUE(session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n")));
    const auto first = session.offer(localOf(fax));
    EXPECT_EQ(media(*first), fax);
    ASSERT_TRUE(session.refused());
    const auto speech = session.offer(localOf(kAudio));
    EXPECT_EQ(media(*speech), kAudio);
    EXPECT_EQ(versionOf(*speech), "3");
    ASSERT_TRUE(session.receiveAnswer(offerOf("m=audio 49170 RTP/AVP 0\n")));

    ASSERT_TRUE(session.offer(localOf(fax)));
    const auto rejected = session.receiveAnswer(offerOf("m=image 0 udptl t38\n"));
    EXPECT_FALSE(rejected->accepted);
    EXPECT_TRUE(rejected->decisions.empty()) << "that is no fault";
    const auto again = session.offer(localOf(kAudio));
    EXPECT_EQ(media(*again), kAudio) << "in the line that was fax";
    EXPECT_EQ(versionOf(*again), "5");
}

TEST(Negotiator, PreconditionsOfBothSides) {
    const std::string none = "a=curr:qos local none\na=curr:qos remote none\n";
    const std::string reserved = "a=curr:qos local sendrecv\n";
    const std::string desired =
        "a=des:qos mandatory local sendrecv\na=des:qos mandatory remote sendrecv\n";
    const std::string peerAudio = "m=audio 49170 RTP/AVP 0\n";
    using sdpline::Preconditions;
    Negotiator caller;
    Negotiator called;
    ASSERT_TRUE(called.receiveOffer(*caller.offer(localOf(kAudio + none + desired))));
    const auto first = called.answer(offerOf(peerAudio + none + desired));
    EXPECT_EQ(first->streams.at(0).preconditions, Preconditions::Unmet);
    const auto seen = caller.receiveAnswer(first->body);
    EXPECT_EQ(negotiate_test::textOf(seen->decisions), "");
    EXPECT_EQ(seen->streams.at(0).preconditions, Preconditions::Unmet);
    EXPECT_TRUE(seen->streams.at(0).confirm) << "the caller is asked to tell of its reservation";

    ASSERT_TRUE(called.receiveOffer(*caller.offer(localOf(kAudio + reserved + desired))));
    const auto second = called.answer(offerOf(peerAudio + reserved + desired));
    EXPECT_EQ(second->streams.at(0).preconditions, Preconditions::Met);
    const auto met = caller.receiveAnswer(second->body);
    EXPECT_EQ(met->streams.at(0).preconditions, Preconditions::Met);
    EXPECT_FALSE(met->streams.at(0).confirm);
}

TEST(Negotiator, TheLinesOfAnAnswerAreThoseOfTheNextOffer) {
    const std::string video = "m=video 40002 RTP/AVP 31\n";
    Negotiator session;
    ASSERT_TRUE(
        session.receiveOffer(offerOf("m=video 49172 RTP/AVP 31\nm=audio 49170 RTP/AVP 0\n")));
    ASSERT_TRUE(session.answer(localOf(kAudio)));
    EXPECT_EQ(media(*session.offer(localOf(kAudio + video))), video + kAudio);
}

TEST(Negotiator, NullArguments) {
    const Body local = localOf(kAudio);
    SdpLine *body = nullptr;
    EXPECT_EQ(SdpNegotiateCreate(nullptr), 1u);
    EXPECT_EQ(SdpNegotiateGetState(nullptr), 0u);
    EXPECT_EQ(SdpNegotiateGetLocal(nullptr), nullptr);
    EXPECT_EQ(SdpNegotiateGetRemote(nullptr), nullptr);
    EXPECT_EQ(SdpNegotiateOffer(nullptr, local.record(), &body), 1u);
    EXPECT_EQ(SdpNegotiateReceiveAnswer(nullptr, local.record(), 0, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateRefused(nullptr), 1u);
    EXPECT_EQ(SdpNegotiateReceiveOffer(nullptr, local.record()), 1u);
    EXPECT_EQ(SdpNegotiateMakeAnswer(nullptr, local.record(), nullptr, 0, &body, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateRefuse(nullptr), 1u);
    SdpNegotiateRelease(nullptr);
    SdpNegotiator *session = nullptr;
    SdpNegotiateRelease(&session);
    ASSERT_EQ(SdpNegotiateCreate(&session), 0u);
    EXPECT_EQ(SdpNegotiateOffer(session, nullptr, &body), 1u);
    EXPECT_EQ(SdpNegotiateOffer(session, local.record(), nullptr), 1u);
    EXPECT_EQ(SdpNegotiateReceiveOffer(session, nullptr), 1u);
    ASSERT_EQ(SdpNegotiateReceiveOffer(session, local.record()), 0u);
    EXPECT_EQ(SdpNegotiateMakeAnswer(session, local.record(), nullptr, 0, nullptr, nullptr), 1u);
    EXPECT_EQ(SdpNegotiateMakeAnswer(session, local.record(), nullptr, 0, &body, nullptr), 0u);
    SdpLibReleaseSdp(&body);
    EXPECT_EQ(SdpNegotiateOffer(session, local.record(), &body), 0u);
    SdpLibReleaseSdp(&body);
    EXPECT_EQ(SdpNegotiateReceiveAnswer(session, local.record(), 0, nullptr), 0u);
    SdpNegotiateRelease(&session);
    EXPECT_EQ(session, nullptr);
}

} // namespace

} // namespace negotiate_test
