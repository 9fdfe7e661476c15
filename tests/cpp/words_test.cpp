// The words of the enumerations are those that the library reads and writes.
#include <vector>

#include "cpp/cpptest.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

// What the encoder writes for an attribute with this line, read by the decoder.
std::string rewritten(const std::string &line) {
    Body body = decoded(kPlain);
    EXPECT_DONE(body.attributes().add(line));
    const auto text = body.attributes()[0].text();
    return text ? *text : text.error().message();
}

template <class Value>
std::optional<Value> valueOf(const std::string &line) {
    Body body = decoded(kPlain);
    EXPECT_DONE(body.attributes().add(line));
    return body.attributes().first<Value>();
}

// The values that have a word.
template <class Code>
std::vector<Code> codesOf() {
    std::vector<Code> codes;
    for (std::uint32_t code = 0; code <= 41; ++code) {
        if (!wordOf(Code{code}).empty()) {
            codes.push_back(Code{code});
        }
    }
    EXPECT_FALSE(codes.empty());
    return codes;
}

template <class Code>
void expectWords(const std::string &before) {
    for (const Code code : codesOf<Code>()) {
        const std::string line = before + std::string(wordOf(code));
        EXPECT_EQ(rewritten(line), line);
        EXPECT_EQ(valueOf<Code>(line), code) << line;
    }
}

Precondition preconditionOf(const std::string &line) {
    const auto precondition = valueOf<Precondition>(line);
    EXPECT_TRUE(precondition) << line;
    return precondition.value_or(Precondition());
}

} // namespace

TEST(CppWords, OfAttributesWithOneWord) {
    expectWords<Direction>("");
    expectWords<SetupRole>("setup:");
    expectWords<T38RateManagement>("T38FaxRateManagement:");
    expectWords<T38ErrorCorrection>("T38FaxUdpEC:");
}

TEST(CppWords, OfPreconditions) {
    for (const StatusLine line : codesOf<StatusLine>()) {
        const std::string strength = line == StatusLine::Desired ? "mandatory " : "";
        const std::string text = std::string(wordOf(line)) + ":qos " + strength + "e2e none";
        EXPECT_EQ(preconditionOf(text).line, line);
    }
    for (const Strength strength : codesOf<Strength>()) {
        const std::string text = "des:qos " + std::string(wordOf(strength)) + " e2e none";
        EXPECT_EQ(preconditionOf(text).strength, strength);
        EXPECT_EQ(rewritten(text), text);
    }
    for (const StatusType status : codesOf<StatusType>()) {
        const std::string text = "curr:qos " + std::string(wordOf(status)) + " none";
        EXPECT_EQ(preconditionOf(text).status, status);
        EXPECT_EQ(rewritten(text), text);
    }
    for (const Flow flow : codesOf<Flow>()) {
        const std::string text = "conf:qos e2e " + std::string(wordOf(flow));
        EXPECT_EQ(preconditionOf(text).flow, flow);
        EXPECT_EQ(rewritten(text), text);
    }
}

TEST(CppWords, OfEcanAndIpbcp) {
    for (const EcanDirection direction : codesOf<EcanDirection>()) {
        const std::string text = "ecan:" + std::string(wordOf(direction)) + " on -";
        EXPECT_EQ(valueOf<Ecan>(text).value().direction, direction);
        EXPECT_EQ(rewritten(text), text);
    }
    for (const IpBcpType type : codesOf<IpBcpType>()) {
        const std::string text = "ipbcp:1 " + std::string(wordOf(type));
        EXPECT_EQ(valueOf<IpBcp>(text).value().type, type);
        EXPECT_EQ(rewritten(text), text);
    }
}

TEST(CppWords, OfMediaLines) {
    for (const MediaType type : codesOf<MediaType>()) {
        Body body = decoded(kPlain);
        const auto media = body.media().add(std::string(wordOf(type)) + " 1 RTP/AVP 0");
        ASSERT_TRUE(media) << media.error().message();
        EXPECT_EQ(media->type(), type);
        EXPECT_NE(written(body).find("m=" + std::string(wordOf(type)) + " 1 "), std::string::npos);
    }
    SdpSetSupMedProtoRtpAvpf(1);
    for (const auto &row : internal::kRows<Protocol>) {
        Body body = decoded(kPlain);
        const auto media = body.media().add("audio 1 " + std::string(row.text) + " 0");
        ASSERT_TRUE(media) << media.error().message();
        const Protocol protocol{row.code};
        EXPECT_EQ(media->protocol(), protocol);
        EXPECT_NE(written(body).find(" 1 " + std::string(wordOf(protocol)) + " 0"),
                  std::string::npos);
    }
    SdpSetSupMedProtoRtpAvpf(0);
    for (const Format format : codesOf<Format>()) {
        Body body = decoded(kPlain);
        const auto media = body.media().add("image 1 TCP " + std::string(wordOf(format)));
        ASSERT_TRUE(media) << media.error().message();
        EXPECT_EQ(media->format(), format);
    }
}

TEST(CppWords, OfTimeUnitsAndNetworks) {
    for (const TimeUnit unit : codesOf<TimeUnit>()) {
        const Body body = decoded("v=0\no=- 1 1 IN IP6 ::\ns=-\nt=0 0\nr=1" +
                                  std::string(wordOf(unit)) + " 1 0\n");
        EXPECT_EQ(body.times()[0].repeats()[0][0].unit, unit);
        EXPECT_EQ(body.origin().addressType, AddressType::Ip6);
        EXPECT_EQ(body.origin().addressType.text(), wordOf(AddressType::Ip6));
        EXPECT_EQ(body.origin().netType.text(), wordOf(NetType::In));
    }
}

TEST(CppWords, AttributeNamesAreThoseOfTheTable) {
    EXPECT_EQ(wordOf(AttributeType::RtpMap), "rtpmap");
    EXPECT_EQ(wordOf(AttributeType::SendRecv), "sendrecv");
    EXPECT_EQ(wordOf(AttributeType::T38FillBitRemoval), "T38FaxFillBitRemoval");
    EXPECT_EQ(wordOf(AttributeType::Setup), "setup");
    EXPECT_EQ(wordOf(AttributeType::OtherValue), "");
    EXPECT_EQ(wordOf(AttributeType::OtherFlag), "");
    EXPECT_EQ(wordOf(AttributeType{0}), "");
    EXPECT_EQ(wordOf(AttributeType{41}), "");
}

TEST(CppKeyword, ACodeAndItsWordAreTheSame) {
    static_assert(Keyword<MediaType>("audio") == Keyword<MediaType>(MediaType::Audio));
    static_assert(Keyword<MediaType>("message") == MediaType::Other);
    static_assert(Keyword<MediaType>("message") == "message");
    static_assert(Keyword<Protocol>("tcp") == Protocol::Tcp);
    static_assert(Keyword<Protocol>("tcp").text() == "TCP"); // what is written
    static_assert(Keyword<MediaType>("Audio") == MediaType::Other);
    static_assert(Keyword<MediaType>().text().empty());
    static_assert(Keyword<MediaType>::of(MediaType::Audio, "stray") == "audio");
    EXPECT_NE(Keyword<MediaType>("message"), Keyword<MediaType>("text"));
    EXPECT_NE(Keyword<MediaType>("message"), MediaType::Audio);
}

TEST(CppKeyword, NamesAreComparedWithoutCase) {
    static_assert(v1::equalIgnoringCase("PCMU", "pcmu") && v1::equalIgnoringCase("", ""));
    static_assert(!v1::equalIgnoringCase("PCMU", "PCMA") && !v1::equalIgnoringCase("PCM", "PCMU"));
    static_assert(!v1::equalIgnoringCase("@", "`") &&
                  !v1::equalIgnoringCase("[", "{")); // no letters
    static_assert(!v1::equalIgnoringCase("\xC4", "\xE4"));
}

TEST(CppDirection, TheOtherSideSeesItReversed) {
    EXPECT_EQ(reversed(Direction::SendOnly), Direction::RecvOnly);
    EXPECT_EQ(reversed(Direction::RecvOnly), Direction::SendOnly);
    EXPECT_EQ(reversed(Direction::SendRecv), Direction::SendRecv);
    EXPECT_EQ(reversed(Direction::Inactive), Direction::Inactive);
}
