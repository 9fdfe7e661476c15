// Writing an o= line.
#include "encoder/writers.hpp"

namespace sdpline {

// nettype = "IN" / token
SDPResult writeOriginNetType(auto &out, const SDPOrigin &origin) {
    const SDPNetType &type = origin.stNetType;
    if (type.enNetType == SDP_NETTYPE_OTHER) {
        return out.text(type.pstrOtherNetType);
    }
    return appendWord<kNetTypeWords>(out, type.enNetType, Check::OriginNetTypeValue);
}

// addrtype = "IP4" / "IP6" / token
SDPResult writeOriginAddrType(auto &out, const SDPOrigin &origin) {
    const SDPAddrType &type = origin.stAddrType;
    if (type.enAddrType == SDP_ADDRTYPE_OTHER) {
        return out.text(type.pstrOtherAddrType);
    }
    return appendWord<kAddrTypeWords>(out, type.enAddrType, Check::OriginAddrTypeValue);
}

// o= username SP sess-id SP sess-version SP nettype SP addrtype SP unicast-address CRLF
SDPResult writeOrigin(auto &out, const uint32_t *flag, const SDPOrigin &origin) {
    return Appender(out)
        .prefix(flag, 'o')
        .text(&origin.strUserName)
        .character(' ')
        .text(&origin.strSessionId)
        .character(' ')
        .text(&origin.strSessionVersion)
        .character(' ')
        .then([&] { return writeOriginNetType(out, origin); })
        .character(' ')
        .then([&] { return writeOriginAddrType(out, origin); })
        .character(' ')
        .text(&origin.strAddress)
        .lineEnd()
        .result();
}

SDPLINE_LINE_WRITER(writeOrigin, const uint32_t *, const SDPOrigin &);
SDPLINE_LINE_WRITER(writeOriginNetType, const SDPOrigin &);
SDPLINE_LINE_WRITER(writeOriginAddrType, const SDPOrigin &);

} // namespace sdpline
