// The c= line. Only numeric addresses are accepted; they are stored as bytes in network order.
#include "parser/connection.hpp"

namespace sdpline {

namespace {

// The number, which wraps modulo 2^32, is compared as a signed one: from 2^31 on it passes, and
// only its low byte is stored.
constexpr bool octetFits(uint32_t value) {
    return static_cast<int32_t>(value) <= 255;
}

struct OctetChecks {
    WordChecks digits;
    Check range;
};

// 1*DIGIT
SDPLINE_INLINE bool octet(Parser auto &p, uint8_t &byte, OctetChecks checks,
                          uint32_t line = __builtin_LINE()) {
    std::string_view digits;
    if (!p.read(digits, SDP_TOK_DIGIT, checks.digits, line)) {
        return false;
    }
    const uint32_t value = p.valueOf(digits);
    if (!octetFits(value)) {
        return p.refuse(checks.range, 0, line);
    }
    byte = static_cast<uint8_t>(value);
    return p.nextAfterRun(Context::Alnum);
}

} // namespace

SDPResult addressType(SDPConnection &connection, uint32_t kind) {
    if (kind != SDP_TOK_IP4 && kind != SDP_TOK_IP6) {
        return fail(Check::ConnAddrType);
    }
    connection.stAddrType.enAddrType = kind == SDP_TOK_IP4 ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6;
    connection.stAddrType.pstrOtherAddrType = nullptr;
    return 0;
}

// 3( 1*DIGIT "." ) 1*DIGIT, with the space before it as the current token
bool parseIpv4(Parser auto &p, SDPConnection &connection) {
    p.take(SDP_TOK_SPACE, Context::Alnum);
    connection.stTptAddr.enTptAddrType = SDP_TPTADDR_IPV4;
    uint8_t *const octets = connection.stTptAddr.unTptAddr.aucIpv4;
    for (uint32_t i = 0; i < 3; ++i) {
        if (!octet(p, octets[i],
                   {{Check::ConnOctet, Check::ConnOctetText}, Check::ConnOctetRange}) ||
            !p.expect(SDP_TOK_DOT, Context::Alnum, Check::ConnOctetDot)) {
            return false;
        }
    }
    return octet(p, octets[3],
                 {{Check::ConnLastOctet, Check::ConnLastOctetText}, Check::ConnLastOctetRange});
}

// One run of letters, digits, ":" and ".", with the space before it as the current token
bool parseIpv6(Parser auto &p, SDPConnection &connection) {
    p.take(SDP_TOK_SPACE, Context::Ipv6);
    if (!p.is(SDP_TOK_DIGIT) && !p.is(SDP_TOK_ALPHA) && !p.is(SDP_TOK_COLON)) {
        return p.refuse(Check::ConnIpv6Kind);
    }
    const std::string_view text = p.text();
    if (text.data() == nullptr) {
        return p.refuse(Check::ConnIpv6Text);
    }
    connection.stTptAddr.enTptAddrType = SDP_TPTADDR_IPV6;
    const SDPResult result = loadIpv6Text(text.data(), static_cast<uint32_t>(text.size()),
                                          connection.stTptAddr.unTptAddr.aucIpv6);
    if (result != 0) {
        return p.accept(logAndForward(Check::ConnIpv6Refused, result));
    }
    return p.next(Context::Alnum);
}

// [ "/" ttl [ "/" count ] ]
bool parseTtlAndCount(Parser auto &p, SDPConnection &connection) {
    if (!p.is(SDP_TOK_SLASH)) {
        connection.ulTtl = SDP_NOT_GIVEN;
        connection.ulNoOfAddrs = SDP_NOT_GIVEN;
        return true;
    }
    p.next(Context::Alnum);
    if (!p.number(connection.ulTtl, {Check::ConnTtl, Check::ConnTtlText})) {
        return false;
    }
    if (!p.take(SDP_TOK_SLASH, Context::Alnum)) {
        connection.ulNoOfAddrs = SDP_NOT_GIVEN;
        return true;
    }
    return p.number(connection.ulNoOfAddrs, {Check::ConnCount, Check::ConnCountText});
}

namespace {

// c= "IN" SP
SDPLINE_INLINE bool networkType(Parser auto &p, SDPConnection &connection) {
    if (!p.expect(SDP_TOK_CONNECTION, Context::Sdp, Check::ConnLine) ||
        !p.see(SDP_TOK_IN, Check::ConnNetType)) {
        return false;
    }
    connection.stNetType.enNetType = SDP_NETTYPE_IN;
    connection.stNetType.pstrOtherNetType = nullptr;
    p.next(Context::Sdp);
    return p.expect(SDP_TOK_SPACE, Context::Sdp, Check::ConnNetTypeSpace);
}

// ( "IP4" / "IP6" ) SP address
SDPLINE_INLINE bool address(Parser auto &p, SDPConnection &connection) {
    const uint32_t family = p.kind;
    return p.accept(addressType(connection, family)) && p.next(Context::Alnum) &&
           p.see(SDP_TOK_SPACE, Check::ConnAddrTypeSpace) &&
           (family == SDP_TOK_IP4 ? parseIpv4(p, connection) : parseIpv6(p, connection));
}

// Fast path: "IN IP4 " after the key, as one comparison. False when other types follow.
SDPLINE_INLINE bool ipv4Types(Parser auto &p, SDPConnection &connection) {
    if (!p.is(SDP_TOK_CONNECTION) || !p.jump("IN IP4 ")) {
        return false;
    }
    connection.stNetType = {SDP_NETTYPE_IN, nullptr};
    connection.stAddrType = {SDP_ADDRTYPE_IP4, nullptr};
    return true;
}

} // namespace

// c= "IN" SP ( "IP4" / "IP6" ) SP address [ "/" ttl [ "/" count ] ] LF
bool parseConnection(Parser auto &parser, SDPConnection &connection) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        return (ipv4Types(p, connection) ? parseIpv4(p, connection)
                                         : networkType(p, connection) && address(p, connection)) &&
               parseTtlAndCount(p, connection) && p.endLine(Check::ConnEnd);
    });
}

template bool parseConnection(BodyParser &, SDPConnection &);
template bool parseConnection(StateParser &, SDPConnection &);
template bool parseIpv4(StateParser &, SDPConnection &);
template bool parseIpv6(StateParser &, SDPConnection &);
template bool parseTtlAndCount(StateParser &, SDPConnection &);

} // namespace sdpline
