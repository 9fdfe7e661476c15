// The c= line.
#include <algorithm>
#include <initializer_list>

#include "encoder/encodetest.hpp"

namespace {

using namespace support;

class EncodeConnection : public EncodeTest {
protected:
    EncodeConnection() {
        connection.stNetType.enNetType = SDP_NETTYPE_IN;
        connection.stAddrType.enAddrType = SDP_ADDRTYPE_IP4;
        connection.stTptAddr = {SDP_TPTADDR_IPV4, {{224, 2, 1, 1}}};
        connection.ulTtl = SDP_NOT_GIVEN;
        connection.ulNoOfAddrs = SDP_NOT_GIVEN;
    }

    SDPResult encode() { return sdpLibEncodeConnectionField(&prefixed, &connection, buffer); }

    std::string encoded() {
        startAnew();
        EXPECT_EQ(encode(), 0u);
        return text();
    }

    void useIpv6(std::initializer_list<uint8_t> octets) {
        connection.stAddrType.enAddrType = SDP_ADDRTYPE_IP6;
        connection.stTptAddr.enTptAddrType = SDP_TPTADDR_IPV6;
        std::copy(octets.begin(), octets.end(), connection.stTptAddr.unTptAddr.aucIpv6);
    }

    SDPConnection connection = {};
    SipString atm = str("ATM");
    SipString nsap = str("NSAP");
};

TEST_F(EncodeConnection, WritesIpv4WithoutLeadingZeros) {
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1\r\n");
    connection.stTptAddr = {SDP_TPTADDR_IPV4, {{0, 0, 0, 0}}};
    EXPECT_EQ(encoded(), "c=IN IP4 0.0.0.0\r\n");
    connection.stTptAddr = {SDP_TPTADDR_IPV4, {{255, 10, 9, 255}}};
    EXPECT_EQ(encoded(), "c=IN IP4 255.10.9.255\r\n");
}

TEST_F(EncodeConnection, WritesTheTtlAndTheCountThatAreGiven) {
    connection.ulTtl = 127;
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1/127\r\n");
    connection.ulNoOfAddrs = 3;
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1/127/3\r\n");
    connection.ulTtl = 0;
    connection.ulNoOfAddrs = 0;
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1/0/0\r\n");
    connection.ulTtl = 0xFFFFFFFE;
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1/4294967294/0\r\n");
}

TEST_F(EncodeConnection, DropsTheCountWithTheTtl) {
    connection.ulNoOfAddrs = 3;
    EXPECT_EQ(encoded(), "c=IN IP4 224.2.1.1\r\n");
}

TEST_F(EncodeConnection, WritesIpv6AsEightFullGroups) {
    useIpv6({0xFF, 0x15, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1});
    EXPECT_EQ(encoded(), "c=IN IP6 FF15:0000:0000:0000:0000:0000:0000:0101\r\n");
    useIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(encoded(), "c=IN IP6 0000:0000:0000:0000:0000:0000:0000:0001\r\n");
    useIpv6({0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef, 0xfe, 0xdc, 0xba, 0x98, 0x76, 0x54,
             0x32, 0x10});
    EXPECT_EQ(encoded(), "c=IN IP6 0123:4567:89AB:CDEF:FEDC:BA98:7654:3210\r\n");
}

TEST_F(EncodeConnection, WritesATtlAfterIpv6Too) {
    useIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    connection.ulTtl = 16;
    connection.ulNoOfAddrs = 2;
    EXPECT_EQ(encoded(), "c=IN IP6 0000:0000:0000:0000:0000:0000:0000:0001/16/2\r\n");
}

TEST_F(EncodeConnection, WritesIpv6LetterByLetter) {
    useIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    sdpLibEncodeConnectionFieldIPv6AddrFmt(buffer, &connection);
    EXPECT_EQ(Appends::count(), 39u);
    for (const std::string &append : Appends::texts()) {
        EXPECT_EQ(append.size(), 1u);
    }
}

TEST_F(EncodeConnection, TriesEveryLetterOfIpv6) {
    useIpv6({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    const std::string address = "0000:0000:0000:0000:0000:0000:0000:0001";
    for (uint32_t n = 1; n <= 39; ++n) {
        startAnew();
        Appends::failAt(n);
        uint32_t typeError = 0;
        EXPECT_EQ(sdpLibEncodeConnectionFieldAddr(buffer, &connection, &typeError), 0u);
        std::string left = address;
        left.erase(n - 1, 1);
        EXPECT_EQ(text(), left);
        EXPECT_EQ(typeError, 0u);
    }
}

// The address type has the family of the text, the transport address that of the bytes; both are
// written unchanged.
TEST_F(EncodeConnection, DoesNotTieTheAddressTypeToTheAddress) {
    connection.stAddrType.enAddrType = SDP_ADDRTYPE_IP6;
    EXPECT_EQ(encoded(), "c=IN IP6 224.2.1.1\r\n");
}

TEST_F(EncodeConnection, WritesOtherTypesByTheirText) {
    connection.stNetType = {SDP_NETTYPE_OTHER, &atm};
    EXPECT_EQ(encoded(), "c=ATM IP4 224.2.1.1\r\n");
    connection.stAddrType = {SDP_ADDRTYPE_OTHER, &nsap};
    EXPECT_EQ(encoded(), "c=ATM NSAP 224.2.1.1\r\n");
    connection.stNetType.pstrOtherNetType = nullptr;
    connection.stAddrType.pstrOtherAddrType = nullptr;
    EXPECT_EQ(encoded(), "c=  224.2.1.1\r\n");
}

TEST_F(EncodeConnection, RefusesAnUnknownTypeWithoutTheTtl) {
    connection.ulTtl = 127;
    const auto write = [this] { return encode(); };
    expectCodesRefused(write, connection.stNetType.enNetType, 3, 0xDC00D001u,
                       "c=", {"3 sdpencodeconnection sdpLibEncodeConnectionFieldNetType 21"});
    expectCodesRefused(write, connection.stAddrType.enAddrType, 4, 0xDC015001u, "c=IN ",
                       {"3 sdpencodeconnection sdpLibEncodeConnectionFieldAddrType 21"});
    expectCodesRefused(write, connection.stTptAddr.enTptAddrType, 3, 0xDC026001u, "c=IN IP4 ",
                       {"3 sdpencodeconnection sdpLibEncodeConnectionFieldAddr 21"});
}

TEST_F(EncodeConnection, PartsSetTheTypeErrorForUnknownTypesOnly) {
    uint32_t typeError = 0;
    EXPECT_EQ(sdpLibEncodeConnectionFieldNetType(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(sdpLibEncodeConnectionFieldAddrType(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(sdpLibEncodeConnectionFieldAddr(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(text(), "INIP4224.2.1.1");
    Appends::failFrom(1);
    EXPECT_EQ(sdpLibEncodeConnectionFieldNetType(buffer, &connection, &typeError),
              Appends::kRefused);
    EXPECT_EQ(sdpLibEncodeConnectionFieldAddrType(buffer, &connection, &typeError),
              Appends::kRefused);
    EXPECT_EQ(typeError, 0u);
    connection.stNetType.enNetType = 0;
    EXPECT_NE(sdpLibEncodeConnectionFieldNetType(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(typeError, 1u);
    typeError = 0;
    connection.stAddrType.enAddrType = 0;
    EXPECT_NE(sdpLibEncodeConnectionFieldAddrType(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(typeError, 1u);
    typeError = 0;
    connection.stTptAddr.enTptAddrType = 0;
    EXPECT_NE(sdpLibEncodeConnectionFieldAddr(buffer, &connection, &typeError), 0u);
    EXPECT_EQ(typeError, 1u);
}

TEST_F(EncodeConnection, StillTriesTheTtlAfterARefusedAppend) {
    connection.ulTtl = 127;
    connection.ulNoOfAddrs = 3;
    EXPECT_EQ(trace([this] { return encode(); }), R"("c" refused "/127/3"
"=" refused "c/127/3"
"IN" refused "c=/127/3"
" " refused "c=IN/127/3"
"IP4" refused "c=IN /127/3"
" " refused "c=IN IP4/127/3"
"224" ok "c=IN IP4 .2.1.1/127/3\r\n"
"." ok "c=IN IP4 2242.1.1/127/3\r\n"
"2" ok "c=IN IP4 224..1.1/127/3\r\n"
"." ok "c=IN IP4 224.21.1/127/3\r\n"
"1" ok "c=IN IP4 224.2..1/127/3\r\n"
"." ok "c=IN IP4 224.2.11/127/3\r\n"
"1" ok "c=IN IP4 224.2.1./127/3\r\n"
"/" ok "c=IN IP4 224.2.1.1\r\n"
"127" ok "c=IN IP4 224.2.1.1/\r\n"
"/" ok "c=IN IP4 224.2.1.1/127\r\n"
"3" ok "c=IN IP4 224.2.1.1/127/\r\n"
"\r\n" refused "c=IN IP4 224.2.1.1/127/3"
)");
}

TEST_F(EncodeConnection, LogsNoRefusedAppend) {
    connection.ulTtl = 127;
    for (uint32_t n = 1; n <= 16; ++n) {
        startAnew();
        Appends::failAt(n);
        encode();
        EXPECT_EQ(log.texts(), Lines());
    }
}

TEST_F(EncodeConnection, TtlPartAnswersItsFirstRefusedAppend) {
    connection.ulTtl = 127;
    connection.ulNoOfAddrs = 3;
    const auto ttl = [this] { return sdpLibEncodeConnectionFieldTtl(buffer, &connection); };
    EXPECT_EQ(trace(ttl), R"("/" refused ""
"127" refused "/"
"/" refused "/127"
"3" refused "/127/"
)");
    connection.ulTtl = SDP_NOT_GIVEN;
    EXPECT_EQ(ttl(), 0u);
    EXPECT_EQ(text(), "");
}

} // namespace
