// The c= line: numeric addresses only, kept as bytes in network order.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

// The range is tested on the number as signed: digits that wrap beyond 2^31 pass, and only their
// low byte is kept.
constexpr bool octetFits(uint32_t value) {
    return static_cast<int32_t>(value) <= 255;
}

SDPLINE_INLINE SDPResult addressType(SDPConnection &connection, uint32_t kind) {
    if (kind != SDP_TOK_IP4 && kind != SDP_TOK_IP6) {
        return fail(Check::ConnAddrType);
    }
    connection.stAddrType.enAddrType = kind == SDP_TOK_IP4 ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6;
    connection.stAddrType.pstrOtherAddrType = nullptr;
    return 0;
}

// 3( 1*DIGIT "." ) 1*DIGIT, behind the blank that is still current
SDPLINE_INLINE SDPResult ipv4Address(Lexer &lexer, SDPConnection &connection) {
    lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM);
    connection.stTptAddr.enTptAddrType = SDP_TPTADDR_IPV4;
    uint8_t *const octets = connection.stTptAddr.unTptAddr.aucIpv4;
    uint32_t value = 0;
    for (uint32_t i = 0; i < 3; ++i) {
        if (const SDPResult result =
                readNumber(lexer, value, {Check::ConnOctet, Check::ConnOctetText})) {
            return result;
        }
        if (!octetFits(value)) {
            return fail(Check::ConnOctetRange);
        }
        octets[i] = static_cast<uint8_t>(value);
        lexer.take(SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM);
        if (!lexer.take(SDP_TOK_DOT, SDP_LEXCTX_ALNUM)) {
            return fail(Check::ConnOctetDot);
        }
    }
    if (const SDPResult result =
            readNumber(lexer, value, {Check::ConnLastOctet, Check::ConnLastOctetText})) {
        return result;
    }
    if (!octetFits(value)) {
        return fail(Check::ConnLastOctetRange);
    }
    octets[3] = static_cast<uint8_t>(value);
    lexer.take(SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM);
    return 0;
}

// One run of letters, digits, ":" and ".", behind the blank that is still current
SDPLINE_INLINE SDPResult ipv6Address(Lexer &lexer, SDPConnection &connection) {
    lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_IPV6);
    const uint32_t kind = lexer.kind;
    if (kind != SDP_TOK_DIGIT && kind != SDP_TOK_ALPHA && kind != SDP_TOK_COLON) {
        return fail(Check::ConnIpv6Kind);
    }
    const std::string_view text = lexer.text();
    if (text.data() == nullptr) {
        return fail(Check::ConnIpv6Text);
    }
    connection.stTptAddr.enTptAddrType = SDP_TPTADDR_IPV6;
    if (const SDPResult result =
            SdpLoadIpV6StringToArray(text.data(), static_cast<uint32_t>(text.size()),
                                     connection.stTptAddr.unTptAddr.aucIpv6)) {
        return passUp(Check::ConnIpv6Refused, result);
    }
    lexer.take(kind, SDP_LEXCTX_ALNUM);
    return 0;
}

// [ "/" ttl [ "/" count ] ]
SDPLINE_INLINE SDPResult ttlAndCount(Lexer &lexer, SDPConnection &connection) {
    if (!lexer.is(SDP_TOK_SLASH)) {
        connection.ulTtl = SDP_NOT_GIVEN;
        connection.ulNoOfAddrs = SDP_NOT_GIVEN;
        return 0;
    }
    lexer.take(SDP_TOK_SLASH, SDP_LEXCTX_ALNUM);
    if (const SDPResult result = takeNumber(lexer, connection.ulTtl, SDP_LEXCTX_ALNUM,
                                            {Check::ConnTtl, Check::ConnTtlText})) {
        return result;
    }
    if (!lexer.take(SDP_TOK_SLASH, SDP_LEXCTX_ALNUM)) {
        connection.ulNoOfAddrs = SDP_NOT_GIVEN;
        return 0;
    }
    return takeNumber(lexer, connection.ulNoOfAddrs, SDP_LEXCTX_ALNUM,
                      {Check::ConnCount, Check::ConnCountText});
}

// c= "IN" SP ( "IP4" / "IP6" ) SP address [ "/" ttl [ "/" count ] ] LF
SDPLINE_INLINE SDPResult connectionField(Lexer &lexer, SDPConnection &connection) {
    if (!lexer.take(SDP_TOK_CONNECTION, SDP_LEXCTX_SDP)) {
        return fail(Check::ConnLine);
    }
    if (!lexer.is(SDP_TOK_IN)) {
        return fail(Check::ConnNetType);
    }
    connection.stNetType.enNetType = SDP_NETTYPE_IN;
    connection.stNetType.pstrOtherNetType = nullptr;
    lexer.take(SDP_TOK_IN, SDP_LEXCTX_SDP);
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_SDP)) {
        return fail(Check::ConnNetTypeBlank);
    }
    const uint32_t family = lexer.kind;
    if (const SDPResult result = addressType(connection, family)) {
        return result;
    }
    lexer.take(family, SDP_LEXCTX_ALNUM);
    if (!lexer.is(SDP_TOK_SPACE)) {
        return fail(Check::ConnAddrTypeBlank);
    }
    if (const SDPResult result = family == SDP_TOK_IP4 ? ipv4Address(lexer, connection)
                                                       : ipv6Address(lexer, connection)) {
        return result;
    }
    if (const SDPResult result = ttlAndCount(lexer, connection)) {
        return result;
    }
    return takeLineEnd(lexer, Check::ConnEnd);
}

} // namespace

SDPResult parseConnection(Lexer &lexer, SDPConnection &connection) {
    return inRegisters<connectionField>(lexer, connection);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpConnectionField(SDPConnection *pstConnection) {
    return onState([=](Lexer &lexer) { return parseConnection(lexer, *pstConnection); });
}

SDPResult sdpConnectionFieldAddrType(SDPConnection *pstConnection, uint32_t enKind) {
    return addressType(*pstConnection, enKind);
}

SDPResult sdpConnectionFieldAddrIpv4(SDPConnection *pstConnection) {
    return onState([=](Lexer &lexer) { return ipv4Address(lexer, *pstConnection); });
}

SDPResult sdpConnectionFieldAddrIpv6(SDPConnection *pstConnection) {
    return onState([=](Lexer &lexer) { return ipv6Address(lexer, *pstConnection); });
}

SDPResult sdpConnectionFieldTtl(SDPConnection *pstConnection) {
    return onState([=](Lexer &lexer) { return ttlAndCount(lexer, *pstConnection); });
}

} // extern "C"
