// The o= line.
#include "encoder/encodetest.hpp"

namespace {

using namespace support;

class EncodeOrigin : public EncodeTest {
protected:
    SDPResult encode() { return sdpLibEncodeOriginField(&prefixed, &origin, buffer); }

    SDPOrigin origin = {str("-"),
                        str("1"),
                        str("2"),
                        {SDP_NETTYPE_IN, nullptr},
                        {SDP_ADDRTYPE_IP4, nullptr},
                        str("host.example.com")};
    SipString atm = str("ATM");
    SipString nsap = str("NSAP");
};

TEST_F(EncodeOrigin, WritesSixItems) {
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o=- 1 2 IN IP4 host.example.com\r\n");
}

TEST_F(EncodeOrigin, WritesIp6ByItsName) {
    origin.stAddrType.enAddrType = SDP_ADDRTYPE_IP6;
    origin.strAddress = str("2001:db8::1");
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o=- 1 2 IN IP6 2001:db8::1\r\n");
}

TEST_F(EncodeOrigin, WritesOtherTypesByTheirText) {
    origin.stNetType = {SDP_NETTYPE_OTHER, &atm};
    origin.stAddrType = {SDP_ADDRTYPE_OTHER, &nsap};
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o=- 1 2 ATM NSAP host.example.com\r\n");
}

TEST_F(EncodeOrigin, WritesAnOtherTypeWithoutTextAsNothing) {
    origin.stNetType = {SDP_NETTYPE_OTHER, nullptr};
    origin.stAddrType = {SDP_ADDRTYPE_OTHER, nullptr};
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o=- 1 2   host.example.com\r\n");
}

TEST_F(EncodeOrigin, WritesEmptyTextsAsNothing) {
    origin.strUserName = {0, nullptr};
    origin.strAddress = {0, nullptr};
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o= 1 2 IN IP4 \r\n");
    EXPECT_EQ(Appends::count(), 14u) << "an empty text is an append too";
}

TEST_F(EncodeOrigin, IgnoresTheTextOfAKnownType) {
    origin.stNetType.pstrOtherNetType = &atm;
    origin.stAddrType.pstrOtherAddrType = &nsap;
    EXPECT_EQ(encode(), 0u);
    EXPECT_EQ(text(), "o=- 1 2 IN IP4 host.example.com\r\n");
}

TEST_F(EncodeOrigin, RefusesUnknownTypes) {
    const auto write = [this] { return encode(); };
    expectCodesRefused(write, origin.stNetType.enNetType, 3, 0xDE00C001u, "o=- 1 2 ",
                       {"3 sdpencodeorigin sdpLibEncodeOriginFieldNetType 21"});
    expectCodesRefused(write, origin.stAddrType.enAddrType, 4, 0xDE014001u, "o=- 1 2 IN ",
                       {"3 sdpencodeorigin sdpLibEncodeOriginFieldAddrType 21"});
}

TEST_F(EncodeOrigin, StopsAtTheFirstRefusedAppend) {
    EXPECT_EQ(trace([this] { return encode(); }), R"("o" refused ""
"=" refused "o"
"-" refused "o="
" " refused "o=-"
"1" refused "o=- "
" " refused "o=- 1"
"2" refused "o=- 1 "
" " refused "o=- 1 2"
"IN" refused "o=- 1 2 "
" " refused "o=- 1 2 IN"
"IP4" refused "o=- 1 2 IN "
" " refused "o=- 1 2 IN IP4"
"host.example.com" refused "o=- 1 2 IN IP4 "
"\r\n" refused "o=- 1 2 IN IP4 host.example.com"
)");
}

TEST_F(EncodeOrigin, LogsNoRefusedAppend) {
    for (uint32_t n = 1; n <= 14; ++n) {
        startAnew();
        Appends::failAt(n);
        EXPECT_EQ(encode(), Appends::kRefused);
        EXPECT_EQ(Appends::count(), n) << "nothing more is tried";
        EXPECT_EQ(log.texts(), Lines());
    }
}

TEST_F(EncodeOrigin, PassesTheRefusedTextOfAnOtherTypeOn) {
    origin.stNetType = {SDP_NETTYPE_OTHER, &atm};
    origin.stAddrType = {SDP_ADDRTYPE_OTHER, &nsap};
    Appends::failAt(1);
    EXPECT_EQ(sdpLibEncodeOriginFieldNetType(buffer, &origin), Appends::kRefused);
    Appends::failAt(2);
    EXPECT_EQ(sdpLibEncodeOriginFieldAddrType(buffer, &origin), Appends::kRefused);
}

} // namespace
