// The c= line parser and its steps alone.
#include "parser/parsing.hpp"

#include <cstring>

namespace {

using support::named;
using support::TextAndResult;
using Texts = std::vector<std::string>;

class ConnectionLine : public support::ParsingTest {
protected:
    std::string parse(std::string_view text) {
        start(text);
        return named(sdpConnectionField(&connection));
    }

    // Makes the blank after the address type current, as the steps find it.
    void startAtBlank(const std::string &address) {
        start("c=IN IP4" + address);
        consume();
        consume();
        consume(); // the address type
        setLexerContext(SDP_LEXCTX_ALNUM);
        consume();
        ASSERT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_SPACE));
    }

    std::string octets() const {
        std::string text;
        for (const uint8_t octet : connection.stTptAddr.unTptAddr.aucIpv4) {
            text += (text.empty() ? "" : ".") + std::to_string(octet);
        }
        return text;
    }

    SDPConnection connection = {};
};

TEST_F(ConnectionLine, FillsTheRecord) {
    SipString other = {};
    connection.stNetType.pstrOtherNetType = &other;
    connection.stAddrType.pstrOtherAddrType = &other;
    EXPECT_EQ(parse("c=IN IP4 224.2.1.1/127/3\nb=x"), "ok");
    EXPECT_EQ(connection.stNetType.enNetType, 1u);
    EXPECT_TRUE(connection.stNetType.pstrOtherNetType == nullptr);
    EXPECT_EQ(connection.stAddrType.enAddrType, 1u);
    EXPECT_TRUE(connection.stAddrType.pstrOtherAddrType == nullptr);
    EXPECT_EQ(connection.stTptAddr.enTptAddrType, 1u);
    EXPECT_EQ(octets(), "224.2.1.1");
    EXPECT_EQ(connection.ulTtl, 127u);
    EXPECT_EQ(connection.ulNoOfAddrs, 3u);
    EXPECT_EQ(sdpGetLexerContext(), static_cast<uint32_t>(SDP_LEXCTX_SDP));
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_BANDWIDTH));
    EXPECT_TRUE(sizesAskedFor().empty());
}

TEST_F(ConnectionLine, FillsSixteenBytesOfAnIpv6Address) {
    EXPECT_EQ(parse("c=IN IP6 2001:db8::1\n"), "ok");
    EXPECT_EQ(connection.stAddrType.enAddrType, 2u);
    EXPECT_EQ(connection.stTptAddr.enTptAddrType, 2u);
    const uint8_t expected[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(std::memcmp(connection.stTptAddr.unTptAddr.aucIpv6, expected, 16), 0);
    EXPECT_EQ(connection.ulTtl, 0xFFFFFFFFu);
    EXPECT_EQ(connection.ulNoOfAddrs, 0xFFFFFFFFu);
}

TEST_F(ConnectionLine, RefusesAnotherLine) {
    EXPECT_EQ(parse("o=IN IP4 1.2.3.4\n"), "ConnLine 102");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_ORIGIN));
}

TEST_F(ConnectionLine, FailsWhereverTheInputEnds) {
    constexpr TextAndResult rows[] = {
        {"c=", "ConnNetType 101"},
        {"c=IN", "ConnNetTypeSpace 101"},
        {"c=IN ", "ConnAddrType 101"},
        {"c=IN IP4", "ConnAddrTypeSpace 101"},
        {"c=IN IP4 ", "ConnOctet 101"},
        {"c=IN IP4 1", "ConnOctetDot 101"},
        {"c=IN IP4 1.2.", "ConnOctet 101"},
        {"c=IN IP4 1.2.3.", "ConnLastOctet 101"},
        {"c=IN IP4 1.2.3.4", "ConnEnd 101"},
        {"c=IN IP4 1.2.3.4/", "ConnTtl 101"},
        {"c=IN IP4 1.2.3.4/5", "ConnEnd 101"},
        {"c=IN IP4 1.2.3.4/5/", "ConnCount 101"},
        {"c=IN IP4 1.2.3.4/5/6", "ConnEnd 101"},
        {"c=IN IP6 ", "ConnIpv6Kind 101"},
        {"c=IN IP6 ::1", "ConnEnd 101"},
    };
    expectResults(sdpConnectionField, rows);
}

TEST_F(ConnectionLine, KeepsWhatItFoundBeforeAFailure) {
    EXPECT_EQ(parse("c=IN IP4 9.8.7.256\n"), "ConnLastOctetRange 101");
    EXPECT_EQ(connection.stNetType.enNetType, 1u);
    EXPECT_EQ(connection.stAddrType.enAddrType, 1u);
    EXPECT_EQ(connection.stTptAddr.enTptAddrType, 1u);
    EXPECT_EQ(octets(), "9.8.7.0");
    EXPECT_EQ(connection.ulTtl, 0u);
}

TEST_F(ConnectionLine, TestsEveryOctet) {
    EXPECT_EQ(parse("c=IN IP4 256.0.0.0\n"), "ConnOctetRange 101");
    EXPECT_EQ(parse("c=IN IP4 0.256.0.0\n"), "ConnOctetRange 101");
    EXPECT_EQ(parse("c=IN IP4 0.0.256.0\n"), "ConnOctetRange 101");
    EXPECT_EQ(parse("c=IN IP4 0.0.0.256\n"), "ConnLastOctetRange 101");
    EXPECT_EQ(log.texts(), Texts(4, "3 sdpparser sdpConnectionFieldAddrIpv4 -"));
    EXPECT_EQ(parse("c=IN IP4 255.255.255.255\n"), "ok");
}

TEST_F(ConnectionLine, TestsOctetsAsSignedNumbers) {
    EXPECT_EQ(parse("c=IN IP4 0.2147483647.0.0\n"), "ConnOctetRange 101");
    EXPECT_EQ(parse("c=IN IP4 0.0.0.2147483647\n"), "ConnLastOctetRange 101");
    EXPECT_EQ(parse("c=IN IP4 2147483648.2147483903.4294967295.4294967041\n"), "ok");
    EXPECT_EQ(octets(), "0.255.255.1");
}

TEST_F(ConnectionLine, LeavesTheSixteenBytesOfARefusedAddress) {
    std::memset(connection.stTptAddr.unTptAddr.aucIpv6, 0xEE, 16);
    EXPECT_EQ(parse("c=IN IP6 ::1.2.3.256\n"), "Ipv6TailOctet 104");
    EXPECT_EQ(connection.stTptAddr.enTptAddrType, 2u);
    EXPECT_EQ(connection.stTptAddr.unTptAddr.aucIpv6[15], 0xEE);
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpConnectionFieldAddrIpv6 -"});
}

// Only the token before the address's end counts, so a kind that does not fit leaves the record.
TEST_F(ConnectionLine, LeavesTheAddressKindOfATokenThatDoesNotFit) {
    EXPECT_EQ(parse("c=IN IP6 ::1.\n"), "ConnIpv6Kind 101");
    EXPECT_EQ(connection.stTptAddr.enTptAddrType, 0u);
    EXPECT_EQ(log.texts(), Texts{"3 sdpparser sdpConnectionFieldAddrIpv6 -"});
}

// ---- Steps

TEST_F(ConnectionLine, AddrTypeIsToldByTheKind) {
    SipString other = {};
    connection.stAddrType.pstrOtherAddrType = &other;
    EXPECT_EQ(named(sdpConnectionFieldAddrType(&connection, SDP_TOK_IP6)), "ok");
    EXPECT_EQ(connection.stAddrType.enAddrType, 2u);
    EXPECT_TRUE(connection.stAddrType.pstrOtherAddrType == nullptr);
    EXPECT_EQ(named(sdpConnectionFieldAddrType(&connection, SDP_TOK_IP4)), "ok");
    EXPECT_EQ(connection.stAddrType.enAddrType, 1u);
    for (const uint32_t kind : {0u, 30u, 31u, 57u, 60u, 64u}) {
        EXPECT_EQ(named(sdpConnectionFieldAddrType(&connection, kind)), "ConnAddrType 101");
    }
    EXPECT_EQ(connection.stAddrType.enAddrType, 1u);
    EXPECT_EQ(log.texts(), Texts(6, "3 sdpparser sdpConnectionFieldAddrType 3"));
}

TEST_F(ConnectionLine, Ipv4StepStopsAfterTheFourthOctet) {
    startAtBlank(" 1.2.3.4/5\n");
    EXPECT_EQ(named(sdpConnectionFieldAddrIpv4(&connection)), "ok");
    EXPECT_EQ(octets(), "1.2.3.4");
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_SLASH));
}

TEST_F(ConnectionLine, Ipv6StepStopsAfterTheRun) {
    startAtBlank(" ::a-\n");
    EXPECT_EQ(named(sdpConnectionFieldAddrIpv6(&connection)), "ok");
    EXPECT_EQ(connection.stTptAddr.unTptAddr.aucIpv6[15], 10);
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_MINUS));
}

TEST_F(ConnectionLine, TtlStepSetsBothNumbersWithoutASlash) {
    start("c=");
    connection.ulTtl = 1;
    connection.ulNoOfAddrs = 2;
    EXPECT_EQ(named(sdpConnectionFieldTtl(&connection)), "ok");
    EXPECT_EQ(connection.ulTtl, 0xFFFFFFFFu);
    EXPECT_EQ(connection.ulNoOfAddrs, 0xFFFFFFFFu);
    EXPECT_EQ(LA(), static_cast<uint32_t>(SDP_TOK_CONNECTION)) << "nothing is consumed";
}

TEST_F(ConnectionLine, TtlAloneLeavesTheCountNotGiven) {
    EXPECT_EQ(parse("c=IN IP6 ff15::1/7\n"), "ok");
    EXPECT_EQ(connection.ulTtl, 7u);
    EXPECT_EQ(connection.ulNoOfAddrs, 0xFFFFFFFFu);
}

} // namespace
