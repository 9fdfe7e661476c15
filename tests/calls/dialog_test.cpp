// The dialog of the example without a stack: its statuses, bodies and descriptions in force.
#include <gtest/gtest.h>

#include "../../examples/calls/dialog.hpp"

namespace {

using calls::Dialog;
using calls::Reply;
using calls::Wanted;

const std::string kHead = "v=0\no=peer 5 1 IN IP4 192.0.2.9\ns=-\nc=IN IP4 192.0.2.9\nt=0 0\n";
const std::string kSpeech = "m=audio 30000 RTP/AVP 8\n";

const calls::Local &here() {
    static const calls::Local local = calls::localAt("192.0.2.1").value();
    return local;
}

bool has(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

TEST(Dialog, AnswersAnOffer) {
    Dialog dialog(here(), 7);
    EXPECT_FALSE(dialog.established());
    const Reply reply = dialog.receiveOffer(kHead + kSpeech);
    EXPECT_EQ(reply.status, 200);
    EXPECT_TRUE(has(reply.body, "o=- 7 1 IN IP4 192.0.2.1\r\n")) << reply.body;
    EXPECT_TRUE(has(reply.body, "m=audio 20072 RTP/AVP 8\r\n")) << reply.body;
    EXPECT_FALSE(reply.unmet);
    EXPECT_TRUE(reply.warning.empty());
    EXPECT_TRUE(dialog.established());
    EXPECT_EQ(dialog.receiveOffer(kHead + kSpeech).body, reply.body);
}

TEST(Dialog, TellsThePeerThePlaceOfAMalformedBodyAndNothingElse) {
    Dialog dialog(here(), 7);
    const Reply reply =
        dialog.receiveOffer("v=0\no=- 1 1 IN IP4 1.2.3.4\ns=-\nc=IN IP4 1.2.3.256\nt=0 0\n");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.warning, "399 192.0.2.1 \"4:16: expected an octet of at most 255\"");
    EXPECT_TRUE(has(reply.log, "0x")) << reply.log;
    EXPECT_FALSE(dialog.established());
}

TEST(Dialog, ARefusedOfferLeavesTheSessionAsItWas) {
    Dialog dialog(here(), 7);
    const std::string agreed = dialog.receiveOffer(kHead + kSpeech).body;
    const Reply none = dialog.receiveOffer(kHead + "m=audio 30000 RTP/AVP 18\n");
    EXPECT_EQ(none.status, 488);
    EXPECT_TRUE(has(none.warning, "399 192.0.2.1 \"stream 1 rejected: no common format"));
    EXPECT_TRUE(none.body.empty());
    EXPECT_TRUE(dialog.established());
    EXPECT_EQ(dialog.receiveOffer(kHead + kSpeech).body, agreed) << "no version was used up";
}

TEST(Dialog, OffersThatMeetAreGlare) {
    Dialog dialog(here(), 7);
    ASSERT_TRUE(dialog.offer(Wanted::Speech));
    EXPECT_TRUE(dialog.awaitsAnswer());
    const Reply reply = dialog.receiveOffer(kHead + kSpeech);
    EXPECT_EQ(reply.status, 491);
    EXPECT_TRUE(dialog.awaitsAnswer());
    const auto agreement = dialog.receiveAnswer(kHead + kSpeech);
    ASSERT_TRUE(agreement);
    EXPECT_TRUE(agreement->accepted);
    EXPECT_TRUE(dialog.established());
}

TEST(Dialog, OffersSpeechHoldAndFaxInOneLine) {
    Dialog dialog(here(), 7);
    ASSERT_TRUE(dialog.offer(Wanted::Speech));
    ASSERT_TRUE(dialog.receiveAnswer(kHead + kSpeech));
    const auto held = dialog.offer(Wanted::Held);
    ASSERT_TRUE(held);
    EXPECT_TRUE(has(*held, "a=sendonly")) << *held;
    dialog.offerRefused();
    const auto fax = dialog.offer(Wanted::Fax);
    ASSERT_TRUE(fax);
    EXPECT_TRUE(has(*fax, "m=image ")) << *fax;
    EXPECT_FALSE(has(*fax, "m=audio ")) << *fax;
    EXPECT_TRUE(has(*fax, "o=- 7 3 IN")) << "the version of the refused offer is used up";
}

TEST(Dialog, AMalformedAnswerEndsTheOffer) {
    Dialog dialog(here(), 7);
    ASSERT_TRUE(dialog.offer(Wanted::Speech));
    EXPECT_FALSE(dialog.receiveAnswer("v=1\n"));
    EXPECT_FALSE(dialog.awaitsAnswer());
    EXPECT_FALSE(dialog.established());
}

TEST(Dialog, MandatoryPreconditionsAreUnmetUntilThePeerReserved) {
    Dialog dialog(here(), 7);
    const std::string wished = "a=curr:qos remote none\na=des:qos mandatory local sendrecv\n"
                               "a=des:qos mandatory remote sendrecv\n";
    const Reply first = dialog.receiveOffer(kHead + kSpeech + "a=curr:qos local none\n" + wished);
    EXPECT_EQ(first.status, 200);
    EXPECT_TRUE(first.unmet);
    const Reply second =
        dialog.receiveOffer(kHead + kSpeech + "a=curr:qos local sendrecv\n" + wished);
    EXPECT_FALSE(second.unmet) << second.body;
}

TEST(Dialog, AnAddressThatIsNoneIsRefusedAtOnce) {
    EXPECT_FALSE(calls::localAt("192.0.2.256"));
    EXPECT_FALSE(calls::localAt("host.example"));
    const auto six = calls::localAt("2001:db8::1");
    ASSERT_TRUE(six);
    EXPECT_EQ(six->host, "[2001:db8::1]");
}

} // namespace
