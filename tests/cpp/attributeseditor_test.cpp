// The editor of attributes.
#include <utility>

#include "cpp/cpptest.hpp"
#include "support/allocations.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

// The a= lines of a body without any others.
std::string attributesOf(const Body &body) {
    return linesOf(written(body), 'a');
}

void addEveryValue(AttributesEditor &lines) {
    EXPECT_DONE(lines.add(RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000}));
    EXPECT_DONE(lines.add(
        RtpMap{.payload = 10, .name = "L16", .clockRate = 44100, .channels = 2, .profile = 99}));
    EXPECT_DONE(lines.add(RtpMap{.payload = 1, .name = "x y", .clockRate = 1, .channels = 0}));
    EXPECT_DONE(lines.add(Fmtp{.format = "96", .parameters = "mode-set=0"}));
    EXPECT_DONE(lines.add(Fmtp{.format = "97"}));
    EXPECT_DONE(lines.add(Direction::Inactive));
    EXPECT_DONE(lines.add(SetupRole::Passive));
    EXPECT_DONE(lines.add(T38RateManagement::LocalTcf));
    EXPECT_DONE(lines.add(T38ErrorCorrection::Fec));
    EXPECT_DONE(lines.add(SilenceSupp{.on = true, .parameters = "1 2"}));
    EXPECT_DONE(lines.add(Ecan{.direction = EcanDirection::Backward, .on = false}));
    EXPECT_DONE(lines.add(Precondition{.line = StatusLine::Desired,
                                       .status = StatusType::Remote,
                                       .flow = Flow::Send,
                                       .strength = Strength::Optional}));
    EXPECT_DONE(
        lines.add(Precondition{.type = "sec", .flow = Flow::Recv, .strength = Strength::Failure}));
    EXPECT_DONE(lines.add(IpBcp{.version = 2, .type = IpBcpType::Accepted}));
    EXPECT_DONE(lines.add(AttributeType::XModem));
    EXPECT_DONE(lines.add(AttributeType::T38FillBitRemoval));
    EXPECT_DONE(lines.add(AttributeType::PTime, 20));
    EXPECT_DONE(lines.add(AttributeType::Lang, "en"));
    EXPECT_DONE(lines.add("maxptime:40"));
    EXPECT_DONE(lines.add("candidate:1 1"));
    EXPECT_DONE(lines.add("FAX"));
}

} // namespace

TEST(CppAttributesEditor, EveryValueIsWrittenAndReadBack) {
    Body body = decoded(kPlain);
    AttributesEditor lines = body.media()[0].attributes();
    addEveryValue(lines);
    EXPECT_EQ(lines.size(), 21u);
    EXPECT_EQ(lines.rtpMap(10)->profile, 10u);
    EXPECT_EQ(lines.rtpMap(96)->profile, 0u);
    EXPECT_EQ(lines.rtpMap(1)->channels, 1u);
    EXPECT_EQ(lines.back().type(), AttributeType::Fax);

    const std::string expected =
        "rtpmap:96 AMR-WB/16000|rtpmap:10 L16/44100/2|rtpmap:1 x y/1|fmtp:96 mode-set=0|fmtp:97|"
        "inactive|setup:passive|T38FaxRateManagement:localTCF|T38FaxUdpEC:t38UDPFEC|"
        "silenceSupp:on 1 2|ecan:b off -|des:qos optional remote send|curr:sec e2e recv|"
        "ipbcp:2 Accepted|X-modem|T38FaxFillBitRemoval|ptime:20|lang:en|maxptime:40|candidate:1 1|"
        "fax";
    EXPECT_EQ(attributesOf(body), expected);
    const Body again = decoded(written(body));
    EXPECT_EQ(attributesOf(again), expected);
    EXPECT_EQ(again.media()[0].attributes()[8].as<T38ErrorCorrection>(), T38ErrorCorrection::Fec);
}

TEST(CppAttributesEditor, ValuesThatGoWithNoTypeAreRefused) {
    Body body = decoded(kPlain);
    auto lines = body.attributes();
    const char *const noNumber = "the attribute's value is no number";
    const char *const noText = "the attribute's value is no text";
    const char *const needsValue = "the attribute needs a value";
    for (std::uint32_t code = 0; code <= 42; ++code) {
        const AttributeType type{code};
        const bool flag =
            (code >= 2 && code <= 5) || (code >= 30 && code <= 33) || (code >= 21 && code <= 23);
        const bool number =
            (code >= 6 && code <= 8) || (code >= 18 && code <= 23) || code == 25 || code == 26;
        const bool text = code >= 9 && code <= 17;
        EXPECT_EQ(lines.add(type).ok(), flag) << code;
        EXPECT_EQ(lines.add(type, 1).ok(), number) << code;
        EXPECT_EQ(lines.add(type, "x").ok(), text) << code;
    }
    EXPECT_REFUSED(lines.add(AttributeType::RtpMap, 1), noNumber);
    EXPECT_REFUSED(lines.add(AttributeType::PTime, "1"), noText);
    EXPECT_REFUSED(lines.add(AttributeType::PTime), needsValue);
}

constexpr const char *kTooLong = "a text is longer than a decoder of this library reads";
constexpr const char *kLineEnd = "a text holds a line end or a NUL";
constexpr const char *kNoWord = "a code has no word";

TEST(CppAttributesEditor, TextsThatNoLineCarriesAreRefused) {
    Body body = decoded(kPlain);
    auto lines = body.attributes();
    const std::string longest(SDP_MAX_VALUE, 'x');

    EXPECT_DONE(lines.add(AttributeType::Tool, longest));
    EXPECT_REFUSED(lines.add(AttributeType::Tool, longest + "x"), kTooLong);
    EXPECT_REFUSED(lines.add(AttributeType::Tool, ""), "a text is empty");
    EXPECT_REFUSED(lines.add(AttributeType::Tool, "x\r\na=sendonly"), kLineEnd);
    EXPECT_REFUSED(lines.add(AttributeType::Tool, "x\n"), kLineEnd);
    EXPECT_REFUSED(lines.add(AttributeType::Tool, std::string_view("x\0y", 3)), kLineEnd);

    EXPECT_DONE(lines.add(RtpMap{.name = std::string_view(longest).substr(0, 255)}));
    EXPECT_REFUSED(lines.add(RtpMap{.name = std::string_view(longest).substr(0, 256)}), kTooLong);
    EXPECT_REFUSED(lines.add(RtpMap{.name = "a/b"}),
                   "an encoding name holds a \"/\", a line end or a NUL");
    EXPECT_REFUSED(lines.add(RtpMap{}), "a text is empty");

    const std::string_view rest(longest);
    EXPECT_DONE(lines.add(Fmtp{.format = "96", .parameters = rest.substr(0, 1020)}));
    EXPECT_REFUSED(lines.add(Fmtp{.format = "96", .parameters = rest.substr(0, 1021)}), kTooLong);
    EXPECT_DONE(lines.add(Fmtp{.format = rest}));
    EXPECT_REFUSED(lines.add(Fmtp{.format = rest, .parameters = "x"}), kTooLong);
    EXPECT_REFUSED(lines.add(Fmtp{.format = "9 6"}), "a word holds a blank, a line end or a NUL");
    EXPECT_DONE(lines.add(SilenceSupp{.parameters = rest.substr(0, 1022)}));
    EXPECT_REFUSED(lines.add(SilenceSupp{.parameters = rest}), kTooLong);
    EXPECT_REFUSED(lines.add(SilenceSupp{.parameters = ""}), "a text is empty");
    EXPECT_REFUSED(lines.add(Ecan{.parameters = "\r"}), kLineEnd);
    EXPECT_REFUSED(lines.add(Precondition{.type = "a b"}),
                   "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(lines.add(Precondition{.type = PreconditionType::Other}), "a text is empty");
}

TEST(CppAttributesEditor, CodesWithoutAWordAreRefused) {
    Body body = decoded(kPlain);
    auto lines = body.attributes();
    EXPECT_REFUSED(lines.add(Ecan{.direction = EcanDirection{0}}), kNoWord);
    EXPECT_REFUSED(lines.add(Direction{6}), kNoWord);
    EXPECT_REFUSED(lines.add(SetupRole{0}), kNoWord);
    EXPECT_REFUSED(lines.add(IpBcp{.type = IpBcpType{5}}), kNoWord);
    EXPECT_REFUSED(lines.add(Precondition{.line = StatusLine{35}}), kNoWord);
    EXPECT_REFUSED(lines.add(Precondition{.status = StatusType{3}}), kNoWord);
    EXPECT_REFUSED(lines.add(Precondition{.flow = Flow{4}}), kNoWord);
    EXPECT_REFUSED(lines.add(Precondition{.line = StatusLine::Desired, .strength = Strength{5}}),
                   kNoWord);
    EXPECT_REFUSED(lines.setT38({.rateManagement = T38RateManagement{3}}), kNoWord);
    EXPECT_REFUSED(lines.setT38({.errorCorrection = T38ErrorCorrection{0}}), kNoWord);
}

TEST(CppAttributesEditor, ALineThatIsNotUnderstoodTellsItsPlace) {
    Body body = decoded(kPlain);
    const auto refused = body.attributes().add("ptime:20ms");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().fault, Fault::Library);
    EXPECT_EQ(refused.error().line, 1u);
    EXPECT_EQ(refused.error().column, 9u);
    EXPECT_EQ(refused.error().offset, 8u);
    EXPECT_EQ(refused.error().function, "sdpPacketizationAttr");
    EXPECT_REFUSED(body.attributes().add("x\ny"), "a text holds a line end or a NUL");
    EXPECT_REFUSED(body.attributes().add(""), "a text is empty");
    EXPECT_REFUSED(body.attributes().add(std::string(SDP_MAX_BODY, 'x')),
                   "a text is longer than a decoder of this library reads");
    EXPECT_FALSE(body.attributes().add(std::string(4000, 'x')));
    EXPECT_EQ(written(body), kPlain);
}

TEST(CppAttributesEditor, LinesComeFromOtherBodies) {
    const Body offer = decoded(kEveryLine);
    Body answer = decoded(kPlain);
    for (const Attribute &one : offer.media()[0].attributes()) {
        EXPECT_DONE(answer.media()[0].attributes().add(one));
    }
    EXPECT_EQ(attributesOf(answer),
              "rtpmap:96 AMR-WB/16000|fmtp:96 mode-set=0,1,2; octet-align=1|"
              "rtpmap:101 telephone-event/8000|fmtp:101 0-15|ptime:20|sendonly");
}

TEST(CppAttributesEditor, LinesAreAddedByNameAndValue) {
    Body body = decoded(kPlain);
    auto lines = body.media()[0].attributes();
    EXPECT_DONE(lines.add("label", "main"));
    EXPECT_DONE(lines.add("ptime", "20"));
    EXPECT_DONE(lines.add("mid", lines[0].name())); // from itself
    EXPECT_EQ(attributesOf(body), "label:main|ptime:20|mid:label");
    EXPECT_EQ(lines[0].type(), AttributeType::OtherValue);
    EXPECT_EQ(lines.text("label"), "main");
    EXPECT_EQ(lines.number(AttributeType::PTime), 20u);

    EXPECT_REFUSED(lines.add("a b", "x"), "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(lines.add("a:b", "x"), "a word holds a blank or one of :;@,()<>");
    EXPECT_REFUSED(lines.add("", "x"), "a text is empty");
    EXPECT_REFUSED(lines.add("label", ""), "a text is empty");
    EXPECT_REFUSED(lines.add("label", "x\r\na=sendonly"), "a text holds a line end or a NUL");
    const auto refused = lines.add("ptime", "20ms");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().place(), "1:9");
    EXPECT_EQ(lines.size(), 3u);
}

TEST(CppAttributesEditor, SetByNameTakesThePlaceOfAllOfTheName) {
    Body body = decoded(std::string(kPlain) + "a=x:1\r\na=label:a\r\na=x:2\r\na=ptime:20\r\n");
    auto lines = body.media()[0].attributes();
    EXPECT_DONE(lines.set("x", "3"));
    EXPECT_DONE(lines.set("ptime", "30"));
    EXPECT_DONE(lines.set("label", *lines.text("label"))); // from itself
    EXPECT_DONE(lines.set("mid", "0"));
    EXPECT_EQ(attributesOf(body), "x:3|label:a|ptime:30|mid:0");
    EXPECT_REFUSED(lines.set("x", ""), "a text is empty");
    EXPECT_FALSE(lines.set("ptime", "x"));
    EXPECT_EQ(attributesOf(body), "x:3|label:a|ptime:30|mid:0");
}

TEST(CppAttributesEditor, LinesGoWhereTheyAreInserted) {
    Body body = decoded(std::string(kPlain) + "a=x:1\r\na=y:1\r\n");
    auto lines = body.media()[0].attributes();
    EXPECT_DONE(lines.insert(0, Direction::SendOnly));
    EXPECT_DONE(lines.insert(1, AttributeType::PTime, 20));
    EXPECT_DONE(lines.insert(3, AttributeType::Tool, "t"));
    EXPECT_DONE(lines.insert(5, "label", "main"));
    EXPECT_DONE(lines.insert(6, "z"));
    EXPECT_DONE(lines.insert(0, lines[2]));
    EXPECT_EQ(attributesOf(body), "x:1|sendonly|ptime:20|x:1|tool:t|y:1|label:main|z");
    EXPECT_REFUSED(lines.insert(0, AttributeType::Tool, 1), "the attribute's value is no number");
    EXPECT_EQ(lines.size(), 8u);
    auto session = body.attributes(); // where there never was a list
    EXPECT_DONE(session.insert(0, "s"));
    EXPECT_EQ(session.size(), 1u);
    EXPECT_DEATH((void)session.insert(2, "s"), "");
}

TEST(CppAttributesEditor, ChosenLinesOfAListAreAddedAtOnce) {
    const Body offer = decoded(kEveryLine);
    Body answer = decoded(std::string(kPlain) + "a=x\r\n");
    auto lines = answer.media()[0].attributes();
    EXPECT_DONE(lines.addAll(offer.media()[0].attributes(), [](const Attribute &line) {
        return line.as<RtpMap>() || line.as<Fmtp>();
    }));
    EXPECT_EQ(attributesOf(answer),
              "x|rtpmap:96 AMR-WB/16000|fmtp:96 mode-set=0,1,2; octet-align=1|"
              "rtpmap:101 telephone-event/8000|fmtp:101 0-15");
    EXPECT_DONE(lines.addAll(lines, [](const Attribute &) { return false; }));
    EXPECT_EQ(lines.size(), 5u);
    EXPECT_DONE(lines.addAll(lines)); // itself
    EXPECT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[5].name(), "x");
    auto session = answer.attributes();
    EXPECT_DONE(session.addAll(offer.media()[3].attributes())); // nothing, from no list to none
    EXPECT_TRUE(session.empty());
}

TEST(CppAttributesEditor, ValuesFollowTheChosenLinesOfAList) {
    const Body offer = decoded(kEveryLine);
    Body answer = decoded(std::string(kPlain) + "a=x\r\n");
    auto lines = answer.media()[0].attributes();
    const auto isMap = [](const Attribute &line) { return line.as<RtpMap>().has_value(); };
    EXPECT_DONE(lines.addAll(offer.media()[0].attributes(), isMap, Direction::RecvOnly,
                             Fmtp{"101", "0-11"}, AttributeType::Fax));
    EXPECT_EQ(attributesOf(answer), "x|rtpmap:96 AMR-WB/16000|rtpmap:101 telephone-event/8000|"
                                    "recvonly|fmtp:101 0-11|fax");
    EXPECT_REFUSED(lines.addAll(lines, isMap, Direction::Inactive, AttributeType::PTime),
                   "the attribute needs a value");
    EXPECT_EQ(lines.size(), 6u); // and nothing of it is there
    EXPECT_DONE(answer.attributes().addAll(Attributes(), isMap, Direction::SendOnly));
    EXPECT_EQ(answer.attributes().direction(), Direction::SendOnly);
}

TEST(CppAttributesEditor, SetTakesThePlaceOfAllOfTheType) {
    Body body = decoded(std::string(kPlain) + "a=sendonly\r\na=ptime:20\r\na=recvonly\r\n"
                                              "a=ptime:30\r\na=tool:x\r\n");
    auto lines = body.media()[0].attributes();
    EXPECT_DONE(lines.setDirection(Direction::Inactive));
    EXPECT_EQ(attributesOf(body), "inactive|ptime:20|ptime:30|tool:x");
    EXPECT_DONE(lines.set(AttributeType::PTime, 40));
    EXPECT_EQ(attributesOf(body), "inactive|ptime:40|tool:x");
    EXPECT_DONE(lines.set(AttributeType::Tool, *lines.text(AttributeType::Tool))); // from itself
    EXPECT_DONE(lines.setSetup(SetupRole::Active));
    EXPECT_DONE(lines.setSetup(SetupRole::Passive));
    EXPECT_EQ(attributesOf(body), "inactive|ptime:40|tool:x|setup:passive");
    EXPECT_EQ(lines.size(), 4u);
    EXPECT_REFUSED(lines.set(AttributeType::Tool, 1), "the attribute's value is no number");
}

TEST(CppAttributesEditor, TheT38SetIsReplaced) {
    Body body = decoded(std::string(kPlain) +
                        "a=T38FaxVersion:0\r\na=sendrecv\r\na=T38FaxUdpEC:t38UDPFEC\r\n");
    auto lines = body.media()[0].attributes();
    EXPECT_DONE(lines.setT38({.version = 3,
                              .maxBitRate = 14400,
                              .fillBitRemoval = true,
                              .transcodingMmr = true,
                              .transcodingJbig = true,
                              .rateManagement = T38RateManagement::TransferredTcf,
                              .maxBuffer = 262,
                              .maxDatagram = 176,
                              .errorCorrection = T38ErrorCorrection::Redundancy}));
    EXPECT_EQ(attributesOf(body),
              "sendrecv|T38FaxVersion:3|T38MaxBitRate:14400|T38FaxFillBitRemoval|"
              "T38FaxTranscodingMMR|T38FaxTranscodingJBIG|T38FaxRateManagement:transferredTCF|"
              "T38FaxMaxBuffer:262|T38FaxMaxDatagram:176|T38FaxUdpEC:t38UDPRedundancy");
    EXPECT_EQ(lines.t38()->maxBuffer, 262u);
    EXPECT_DONE(lines.setT38({}));
    EXPECT_EQ(attributesOf(body), "sendrecv");
}

TEST(CppAttributesEditor, LinesGo) {
    Body body =
        decoded(std::string(kPlain) + "a=x:1\r\na=ptime:20\r\na=x:2\r\na=sendonly\r\na=y\r\n");
    auto lines = body.media()[0].attributes();
    const Attribute last = lines.back();
    EXPECT_EQ(lines.removeAll(lines[0].name()), 2u); // the name lies in a line that goes
    EXPECT_EQ(attributesOf(body), "ptime:20|sendonly|y");
    EXPECT_EQ(last.name(), "y"); // the others stay where they are
    EXPECT_EQ(lines.removeAll(AttributeType::PTime), 1u);
    EXPECT_EQ(lines.removeAll(AttributeType::PTime), 0u);
    EXPECT_TRUE(lines.remove(last));
    EXPECT_EQ(attributesOf(body), "sendonly");
    Body other = decoded(std::string(kPlain) + "a=sendonly\r\n");
    EXPECT_FALSE(lines.remove(other.media()[0].attributes()[0]));
    EXPECT_EQ(lines.clear(), 1u);
    EXPECT_EQ(lines.clear(), 0u);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(written(body), kPlain);
    EXPECT_TRUE(lines.record()->ppstAttrs == nullptr);
    EXPECT_EQ(body.attributes().clear(), 0u); // where there never was a list
    EXPECT_DONE(lines.add(Direction::SendRecv));
    EXPECT_EQ(attributesOf(body), "sendrecv");
}

TEST(CppAttributesEditor, RemovalNeedsNoMemory) {
    Body body = decoded(std::string(kPlain) + "a=ptime:20\r\na=x:2\r\na=sendonly\r\n");
    auto lines = body.media()[0].attributes();
    support::Allocations::failAt(1);
    EXPECT_EQ(lines.removeAll("x"), 1u);
    EXPECT_FALSE(support::Allocations::failed()); // nor does it ask for any
    support::Allocations::reset();
    EXPECT_EQ(attributesOf(body), "ptime:20|sendonly");
    EXPECT_DONE(lines.add("y"));
    EXPECT_EQ(attributesOf(body), "ptime:20|sendonly|y");
}

TEST(CppAttributesEditor, RangesKeepLookingAtTheList) {
    Body body = decoded(kPlain);
    auto one = body.attributes();
    auto two = body.attributes();
    EXPECT_DONE(one.add("x"));
    EXPECT_EQ(one.size(), 1u);
    EXPECT_DONE(two.add("y")); // found the list that the other one made
    EXPECT_EQ(one.size(), 2u);
    const auto view = std::as_const(body).attributes();
    EXPECT_DONE(two.setDirection(Direction::SendOnly));
    EXPECT_EQ(view.size(), 3u);
    EXPECT_EQ(one.clear(), 3u);
    EXPECT_TRUE(view.empty());
    EXPECT_TRUE(two.empty());
}
