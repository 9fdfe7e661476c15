// The c= line.
//
// A code that has no text ends the line where it stands. A refused append does so too, but the
// TTL is then still tried: the two differ in what they leave in the buffer.
#include "encoder/sdpencode.hpp"

namespace sdpline {

namespace {

char hexDigit(uint32_t value) {
    return "0123456789ABCDEF"[value & 0xF];
}

void appendIpv4(SipStringBuffer *buffer, const uint8_t (&address)[4]) {
    SipSbCopyLong(buffer, address[0]);
    for (uint32_t i = 1; i < 4; ++i) {
        SipSbCopyChar(buffer, '.');
        SipSbCopyLong(buffer, address[i]);
    }
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// c= nettype SP addrtype SP address [ "/" ttl [ "/" count ] ] CRLF
SDPResult sdpLibEncodeConnectionField(uint32_t *pulFlag, SDPConnection *pstConn,
                                      SipStringBuffer *pstBuf) {
    uint32_t typeError = 0;
    Appender line(pstBuf);
    line.prefix(pulFlag, 'c')
        .then([&] { return sdpLibEncodeConnectionFieldNetType(pstBuf, pstConn, &typeError); })
        .character(' ')
        .then([&] { return sdpLibEncodeConnectionFieldAddrType(pstBuf, pstConn, &typeError); })
        .character(' ')
        .then([&] { return sdpLibEncodeConnectionFieldAddr(pstBuf, pstConn, &typeError); });
    if (typeError == 0) {
        sdpLibEncodeConnectionFieldTtl(pstBuf, pstConn);
    }
    return line.lineEnd().result();
}

// nettype = "IN" / token
SDPResult sdpLibEncodeConnectionFieldNetType(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                             uint32_t *pbTypeError) {
    const SDPNetType &type = pstConn->stNetType;
    if (type.enNetType == SDP_NETTYPE_OTHER) {
        return SipSbCopyString(pstBuf, type.pstrOtherNetType);
    }
    if (const Word *const word = findByCode(kNetTypeWords, type.enNetType)) {
        return append(pstBuf, word->text);
    }
    *pbTypeError = 1;
    return fail(Check::ConnNetTypeValue);
}

// addrtype = "IP4" / "IP6" / token
SDPResult sdpLibEncodeConnectionFieldAddrType(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                              uint32_t *pbTypeError) {
    const SDPAddrType &type = pstConn->stAddrType;
    if (type.enAddrType == SDP_ADDRTYPE_OTHER) {
        return SipSbCopyString(pstBuf, type.pstrOtherAddrType);
    }
    if (const Word *const word = findByCode(kAddrTypeWords, type.enAddrType)) {
        return append(pstBuf, word->text);
    }
    *pbTypeError = 1;
    return fail(Check::ConnAddrTypeValue);
}

// address = IP4-address / IP6-address, from the binary form; refused appends are no failure
SDPResult sdpLibEncodeConnectionFieldAddr(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                          uint32_t *pbTypeError) {
    switch (pstConn->stTptAddr.enTptAddrType) {
    case SDP_TPTADDR_IPV4: appendIpv4(pstBuf, pstConn->stTptAddr.unTptAddr.aucIpv4); return 0;
    case SDP_TPTADDR_IPV6: sdpLibEncodeConnectionFieldIPv6AddrFmt(pstBuf, pstConn); return 0;
    default: *pbTypeError = 1; return fail(Check::ConnTptAddrValue);
    }
}

// 7( 4HEXDIG ":" ) 4HEXDIG: nothing is shortened, so that one address has one text
void sdpLibEncodeConnectionFieldIPv6AddrFmt(SipStringBuffer *pstBuf, SDPConnection *pstConn) {
    for (uint32_t i = 0; i < 16; ++i) {
        if (i != 0 && i % 2 == 0) {
            SipSbCopyChar(pstBuf, ':');
        }
        const uint32_t octet = pstConn->stTptAddr.unTptAddr.aucIpv6[i];
        SipSbCopyChar(pstBuf, hexDigit(octet >> 4));
        SipSbCopyChar(pstBuf, hexDigit(octet));
    }
}

// [ "/" ttl [ "/" count ] ]
SDPResult sdpLibEncodeConnectionFieldTtl(SipStringBuffer *pstBuf, SDPConnection *pstConn) {
    Appender ttl(pstBuf);
    if (pstConn->ulTtl != SDP_NOT_GIVEN) {
        ttl.character('/').number(pstConn->ulTtl);
        if (pstConn->ulNoOfAddrs != SDP_NOT_GIVEN) {
            ttl.character('/').number(pstConn->ulNoOfAddrs);
        }
    }
    return ttl.result();
}

} // extern "C"
