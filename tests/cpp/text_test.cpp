// Errors and values as text.
#include <array>
#include <sstream>

#include "cpp/cpptest.hpp"
#include "sdpline/cpp/format.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

template <class Value>
std::string shown(const Value &value) {
    std::ostringstream out;
    out << value;
    EXPECT_EQ(out.str(), toText(value));
#ifdef __cpp_lib_format
    EXPECT_EQ(std::format("{}", value), out.str());
#endif
    return out.str();
}

} // namespace

TEST(CppText, OfValuesIsWhatTheEncoderWrites) {
    const std::array payloads{0u, 8u};
    EXPECT_EQ(shown(Address::v4({192, 0, 2, 1})), "192.0.2.1");
    EXPECT_EQ(shown(Connection{.address = Address::v4({224, 2, 1, 1}), .ttl = 127}),
              "IN IP4 224.2.1.1/127");
    EXPECT_EQ(shown(Origin{.userName = "gw", .address = "host"}), "gw 0 0 IN IP4 host");
    EXPECT_EQ(shown(MediaLine{.port = 4, .payloads = payloads}), "audio 4 RTP/AVP 0 8");
    EXPECT_EQ(shown(TypedTime{7, TimeUnit::Days}), "7d");
    EXPECT_EQ(shown(TypedTime{7}), "7");
    EXPECT_EQ(shown(RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000}),
              "rtpmap:96 AMR-WB/16000");
    EXPECT_EQ(shown(Fmtp{"96", "x=1"}), "fmtp:96 x=1");
    EXPECT_EQ(shown(Direction::SendOnly), "sendonly");
    EXPECT_EQ(shown(SetupRole::ActPass), "setup:actpass");
    EXPECT_EQ(shown(Precondition{}), "curr:qos e2e none");
    EXPECT_EQ(shown(IpBcp{}), "ipbcp:1 Request");
    EXPECT_EQ(shown(AttributeType::PTime), "ptime");
    EXPECT_EQ(shown(MediaType::Video), "video");
    EXPECT_EQ(shown(Flow::SendRecv), "sendrecv");
    EXPECT_EQ(shown(Keyword<Protocol>("UDP/TLS/RTP/SAVPF")), "UDP/TLS/RTP/SAVPF");
}

TEST(CppText, OfTimesAndRepeats) {
    Body body = decoded(kPlain);
    EXPECT_DONE(body.times().add(1, 4294967295));
    EXPECT_DONE(body.times().back().addRepeat(
        {{7, TimeUnit::Days}, {1, TimeUnit::Hours}, {0}, {25, TimeUnit::Hours}}));
    EXPECT_EQ(shown(body.times().back()), "1 4294967295");
    std::ostringstream out;
    out << body.times().back().repeats()[0];
    EXPECT_EQ(out.str(), "7d 1h 0 25h");
}

TEST(CppText, OfWhatCannotBeWrittenIsTheReason) {
    EXPECT_EQ(shown(Connection{}), "[a connection has no address]");
    EXPECT_EQ(shown(Origin{.userName = ""}), "[a text is empty]");
    EXPECT_EQ(shown(MediaLine{.port = 1}), "[there are no payload numbers]");
    EXPECT_EQ(shown(Direction{9}), "[a code has no word]");
    Body body = decoded(kPlain);
    body.record()->stOrigin.stNetType.enNetType = 9;
    EXPECT_EQ(shown(body).front(), '[');
}

TEST(CppText, OfLinesAndBodies) {
    const Body body = decoded(kEveryLine);
    EXPECT_EQ(shown(body), kEveryLine);
    EXPECT_EQ(shown(body.media()[1]), "video 51372/2 RTP/AVP 31");
    EXPECT_EQ(shown(body.media()[0].attributes()[1]), "fmtp:96 mode-set=0,1,2; octet-align=1");
    const auto refused = Body::decode("v=0\nx=\n");
    EXPECT_EQ(shown(refused.error()), refused.error().message());
}
