// The exported names of what writes a c= line.
#include "encoder/connection.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeConnectionField(uint32_t *pulFlag, SDPConnection *pstConn,
                                      SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeConnection(out, pulFlag, *pstConn); });
}

SDPResult sdpLibEncodeConnectionFieldNetType(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                             uint32_t *pbTypeError) {
    return writeTo(
        pstBuf, [=](Output &out) { return writeConnectionNetType(out, *pstConn, *pbTypeError); });
}

SDPResult sdpLibEncodeConnectionFieldAddrType(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                              uint32_t *pbTypeError) {
    return writeTo(
        pstBuf, [=](Output &out) { return writeConnectionAddrType(out, *pstConn, *pbTypeError); });
}

SDPResult sdpLibEncodeConnectionFieldAddr(SipStringBuffer *pstBuf, SDPConnection *pstConn,
                                          uint32_t *pbTypeError) {
    return writeTo(
        pstBuf, [=](Output &out) { return writeConnectionAddress(out, *pstConn, *pbTypeError); });
}

void sdpLibEncodeConnectionFieldIPv6AddrFmt(SipStringBuffer *pstBuf, SDPConnection *pstConn) {
    writeTo(pstBuf, [=](Output &out) { return writeIpv6(out, pstConn); });
}

SDPResult sdpLibEncodeConnectionFieldTtl(SipStringBuffer *pstBuf, SDPConnection *pstConn) {
    return writeTo(pstBuf, [=](Output &out) { return writeTtl(out, *pstConn); });
}

} // extern "C"
