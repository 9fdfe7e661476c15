// The o= line.
#include "encoder/sdpencode.hpp"

using namespace sdpline;

extern "C" {

// o= username SP sess-id SP sess-version SP nettype SP addrtype SP unicast-address CRLF
SDPResult sdpLibEncodeOriginField(uint32_t *pulFlag, SDPOrigin *pstOrigin,
                                  SipStringBuffer *pstBuf) {
    return Appender(pstBuf)
        .prefix(pulFlag, 'o')
        .text(&pstOrigin->strUserName)
        .character(' ')
        .text(&pstOrigin->strSessionId)
        .character(' ')
        .text(&pstOrigin->strSessionVersion)
        .character(' ')
        .then([=] { return sdpLibEncodeOriginFieldNetType(pstBuf, pstOrigin); })
        .character(' ')
        .then([=] { return sdpLibEncodeOriginFieldAddrType(pstBuf, pstOrigin); })
        .character(' ')
        .text(&pstOrigin->strAddress)
        .lineEnd()
        .result();
}

// nettype = "IN" / token
SDPResult sdpLibEncodeOriginFieldNetType(SipStringBuffer *pstBuf, SDPOrigin *pstOrigin) {
    const SDPNetType &type = pstOrigin->stNetType;
    if (type.enNetType == SDP_NETTYPE_OTHER) {
        return SipSbCopyString(pstBuf, type.pstrOtherNetType);
    }
    return appendWord(pstBuf, kNetTypeWords, type.enNetType, Check::OriginNetTypeValue);
}

// addrtype = "IP4" / "IP6" / token
SDPResult sdpLibEncodeOriginFieldAddrType(SipStringBuffer *pstBuf, SDPOrigin *pstOrigin) {
    const SDPAddrType &type = pstOrigin->stAddrType;
    if (type.enAddrType == SDP_ADDRTYPE_OTHER) {
        return SipSbCopyString(pstBuf, type.pstrOtherAddrType);
    }
    return appendWord(pstBuf, kAddrTypeWords, type.enAddrType, Check::OriginAddrTypeValue);
}

} // extern "C"
