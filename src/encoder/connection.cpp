// Writing a c= line.
//
// A code without a word ends the line. A refused append ends it too, but the TTL is still tried
// then: the two cases leave different text in the buffer.
#include "encoder/writers.hpp"

namespace sdpline {

// nettype = "IN" / token
SDPResult writeConnectionNetType(auto &out, const SDPConnection &connection, uint32_t &typeError) {
    const SDPNetType &type = connection.stNetType;
    if (type.enNetType == SDP_NETTYPE_OTHER) {
        return out.text(type.pstrOtherNetType);
    }
    return appendWordOr<kNetTypeWords>(out, type.enNetType, [&] {
        typeError = 1;
        return fail(out, Check::ConnNetTypeValue);
    });
}

// addrtype = "IP4" / "IP6" / token
SDPResult writeConnectionAddrType(auto &out, const SDPConnection &connection, uint32_t &typeError) {
    const SDPAddrType &type = connection.stAddrType;
    if (type.enAddrType == SDP_ADDRTYPE_OTHER) {
        return out.text(type.pstrOtherAddrType);
    }
    return appendWordOr<kAddrTypeWords>(out, type.enAddrType, [&] {
        typeError = 1;
        return fail(out, Check::ConnAddrTypeValue);
    });
}

static void writeIpv4(auto &out, const uint8_t (&address)[4]) {
    out.number(address[0]);
    for (uint32_t i = 1; i < 4; ++i) {
        out.character('.');
        out.number(address[i]);
    }
}

// 7( 4HEXDIG ":" ) 4HEXDIG. Zeros are never left out, so each address has exactly one text.
SDPResult writeIpv6(auto &out, const SDPConnection &connection) {
    const auto hexDigit = [](uint32_t value) { return "0123456789ABCDEF"[value & 0xF]; };
    for (uint32_t i = 0; i < 16; ++i) {
        if (i != 0 && i % 2 == 0) {
            out.character(':');
        }
        const uint32_t octet = connection.stTptAddr.unTptAddr.aucIpv6[i];
        out.character(hexDigit(octet >> 4));
        out.character(hexDigit(octet));
    }
    return 0;
}

// address = IP4-address / IP6-address, from the binary form. Refused appends are ignored.
SDPResult writeConnectionAddress(auto &out, const SDPConnection &connection, uint32_t &typeError) {
    switch (connection.stTptAddr.enTptAddrType) {
    case SDP_TPTADDR_IPV4: writeIpv4(out, connection.stTptAddr.unTptAddr.aucIpv4); return 0;
    case SDP_TPTADDR_IPV6: return writeIpv6(out, connection);
    default: typeError = 1; return fail(out, Check::ConnTptAddrValue);
    }
}

// [ "/" ttl [ "/" count ] ]
SDPResult writeTtl(auto &out, const SDPConnection &connection) {
    Appender ttl(out);
    if (connection.ulTtl != SDP_NOT_GIVEN) {
        ttl.character('/').number(connection.ulTtl);
        if (connection.ulNoOfAddrs != SDP_NOT_GIVEN) {
            ttl.character('/').number(connection.ulNoOfAddrs);
        }
    }
    return ttl.result();
}

// c= nettype SP addrtype SP address [ "/" ttl [ "/" count ] ] CRLF
SDPResult writeConnection(auto &out, const uint32_t *flag, const SDPConnection &connection) {
    uint32_t typeError = 0;
    Appender line(out);
    line.prefix(flag, 'c')
        .then([&] { return writeConnectionNetType(out, connection, typeError); })
        .character(' ')
        .then([&] { return writeConnectionAddrType(out, connection, typeError); })
        .character(' ')
        .then([&] { return writeConnectionAddress(out, connection, typeError); });
    if (typeError == 0) {
        writeTtl(out, connection);
    }
    return line.lineEnd().result();
}

SDPLINE_LINE_WRITER(writeConnection, const uint32_t *, const SDPConnection &);
SDPLINE_LINE_WRITER(writeConnectionNetType, const SDPConnection &, uint32_t &);
SDPLINE_LINE_WRITER(writeConnectionAddrType, const SDPConnection &, uint32_t &);
SDPLINE_LINE_WRITER(writeConnectionAddress, const SDPConnection &, uint32_t &);
SDPLINE_LINE_WRITER(writeIpv6, const SDPConnection &);
SDPLINE_LINE_WRITER(writeTtl, const SDPConnection &);

} // namespace sdpline
