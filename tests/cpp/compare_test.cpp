// Equality of values, lines and bodies.
#include <array>
#include <random>

#include "cpp/cpptest.hpp"
#include "support/generator.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

// The body with one additional line, or with one part of its text replaced.
Body changed(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return decoded(text.replace(at, from.size(), to));
}

} // namespace

TEST(CppCompare, AnyBodyIsItsCloneAndItsOwnText) {
    std::mt19937 engine(7);
    for (int i = 0; i < 100; ++i) {
        const Body body = decoded(support::generateBody(engine));
        const auto copy = body.clone();
        ASSERT_TRUE(copy) << copy.error();
        EXPECT_TRUE(body == *copy) << body;
    }
    EXPECT_TRUE(decoded(kEveryLine) == decoded(kEveryLine));
}

TEST(CppCompare, EveryLineCounts) {
    const Body body = decoded(kEveryLine);
    constexpr std::pair<std::string_view, std::string_view> kChanges[] = {
        {"v=0", "v=1"},
        {"2890842807", "2890842808"},
        {"host.example", "gw.example"},
        {"s=Weekly", "s=Daily"},
        {"i=About", "i=Around"},
        {"u=http", "u=https"},
        {"e=bob@example.com (Bob)\r\n", ""},
        {"e=alice", "e=carol"},
        {"p=+1", "p=+2"},
        {"224.2.1.1/127/3", "224.2.1.1/127/2"},
        {"224.2.1.1/127/3", "224.2.1.1/127"},
        {"b=AS:128\r\nb=CT:256", "b=CT:256\r\nb=AS:128"},
        {"t=3034423619", "t=3034423618"},
        {"r=7d 1h 0s 25h", "r=7d 1h 0s 26h"},
        {"r=604800s 60m 0s\r\n", ""},
        {"z=2882844526", "z=2882844527"},
        {"k=prompt", "k=clear:x"},
        {"a=recvonly", "a=sendonly"},
        {"m=audio 49170", "m=audio 49172"},
        {"RTP/AVP 0 96 101", "RTP/AVP 96 0 101"},
        {"RTP/AVP 0 96 101", "RTP/SAVP 0 96 101"},
        {"i=Speech\r\n", ""},
        {"0065", "0066"},
        {"b=AS:64", "b=AS:65"},
        {"k=clear:secret\r\n", ""},
        {"AMR-WB/16000", "AMR-WB/8000"},
        {"octet-align=1", "octet-align=0"},
        {"a=ptime:20\r\n", "a=ptime:20\r\na=ptime:20\r\n"},
        {"a=ptime:20\r\na=sendonly", "a=sendonly\r\na=sendonly"},
        {"51372/2", "51372"},
        {"a=T38FaxVersion:3\r\n", ""},
        {"TCP/MSRP *", "TCP/MSRP x"},
        {"m=message 7000 TCP/MSRP *\r\n", ""},
    };
    for (const auto &[from, to] : kChanges) {
        const Body other = changed(std::string(kEveryLine), from, to);
        EXPECT_FALSE(body == other) << from << " and " << to;
        EXPECT_FALSE(other == body) << from << " and " << to;
    }
}

TEST(CppCompare, SpellingsDoNotCount) {
    const Body body = decoded(kEveryLine);
    constexpr std::pair<std::string_view, std::string_view> kSpellings[] = {
        {"2001:0DB8:0000:0000:0000:0000:0000:0065", "2001:db8::65"},
        {"r=7d 1h 0s 25h", "r=604800 3600 0 90000s"},
        {"AMR-WB/16000", "amr-wb/16000/1"},
        {"a=ptime:20\r\na=sendonly", "a=sendonly\r\na=ptime:20"},
        {"a=rtpmap:96 AMR-WB/16000\r\n", ""},
    };
    for (const auto &[from, to] : kSpellings) {
        Body other = changed(std::string(kEveryLine), from, to);
        if (to.empty()) {
            EXPECT_DONE(other.media()[0].attributes().add(
                RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000, .channels = 0}));
        }
        EXPECT_TRUE(body == other) << from << " and " << to;
    }
    Body empty = decoded(kPlain);
    EXPECT_DONE(empty.attributes().add("x"));
    EXPECT_EQ(empty.attributes().clear(), 1u);
    EXPECT_TRUE(empty == decoded(kPlain)); // an empty list and none
}

TEST(CppCompare, Values) {
    const std::array payloads{0u, 8u};
    const std::array others{8u, 0u};
    const MediaLine line{.port = 4, .payloads = payloads};
    EXPECT_EQ(line, (MediaLine{.port = 4, .portCount = 0, .payloads = payloads}));
    EXPECT_NE(line, (MediaLine{.port = 4, .payloads = others}));
    EXPECT_NE(line, (MediaLine{.port = 4, .payloads = std::span(payloads).first(1)}));
    EXPECT_EQ(Origin{}, Origin{});
    EXPECT_NE(Origin{}, Origin{.sessionVersion = "1"});
    EXPECT_EQ((TypedTime{60, TimeUnit::Minutes}), (TypedTime{1, TimeUnit::Hours}));
    EXPECT_NE((TypedTime{60, TimeUnit::Minutes}), (TypedTime{60, TimeUnit::Hours}));
    EXPECT_EQ((RtpMap{.payload = 9, .name = "g722", .profile = 8}),
              (RtpMap{.payload = 9, .name = "G722"}));
    EXPECT_NE((RtpMap{.payload = 9, .name = "G722"}), (RtpMap{.payload = 8, .name = "G722"}));
    EXPECT_TRUE((RtpMap{.payload = 9, .name = "G722"})
                    .sameEncoding(RtpMap{.payload = 8, .name = "g722", .channels = 0}));
    EXPECT_FALSE((RtpMap{.name = "L16", .channels = 2}).sameEncoding(RtpMap{.name = "L16"}));
    EXPECT_FALSE((RtpMap{.name = "L16", .clockRate = 1}).sameEncoding(RtpMap{.name = "L16"}));
    EXPECT_NE((Fmtp{"96", "x"}), (Fmtp{"96", "X"}));
    EXPECT_NE(Precondition{}, Precondition{.type = "sec"});
    EXPECT_NE(Connection{}, Connection{.ttl = 1});
    EXPECT_NE(T38{}, T38{.version = 0});
    EXPECT_NE(IpBcp{}, IpBcp{.version = 2});
    EXPECT_NE(Ecan{}, Ecan{.on = true});
    EXPECT_NE(SilenceSupp{}, SilenceSupp{.on = true});
}

TEST(CppStatic, PayloadNumbersOfRfc3551HaveEncodings) {
    const auto expect = [](std::uint32_t payload, std::string_view name, std::uint32_t clockRate,
                           std::uint32_t channels) {
        const auto map = staticEncoding(payload);
        ASSERT_TRUE(map) << payload;
        EXPECT_EQ(map->payload, payload);
        EXPECT_EQ(map->name, name);
        EXPECT_EQ(map->clockRate, clockRate);
        EXPECT_EQ(map->channels, channels);
    };
    expect(0, "PCMU", 8000, 1);
    expect(8, "PCMA", 8000, 1);
    expect(9, "G722", 8000, 1);
    expect(10, "L16", 44100, 2);
    expect(11, "L16", 44100, 1);
    expect(17, "DVI4", 22050, 1);
    expect(18, "G729", 8000, 1);
    expect(26, "JPEG", 90000, 1);
    expect(33, "MP2T", 90000, 1);
    expect(34, "H263", 90000, 1);
    EXPECT_EQ(staticEncoding(10)->profile, 9u);
    for (const std::uint32_t payload : {1u, 2u, 19u, 24u, 27u, 35u, 96u, 127u, 255u, 256u}) {
        EXPECT_FALSE(staticEncoding(payload)) << payload;
    }
    const Body body = decoded(kEveryLine);
    const Attributes lines = body.media()[0].attributes();
    EXPECT_EQ(lines.encoding(0)->name, "PCMU");
    EXPECT_EQ(lines.encoding(96)->name, "AMR-WB");
    EXPECT_FALSE(lines.encoding(97));
}
