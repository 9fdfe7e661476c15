// The exported names of what writes an o= line.
#include "encoder/origin.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeOriginField(uint32_t *pulFlag, SDPOrigin *pstOrigin,
                                  SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeOrigin(out, pulFlag, *pstOrigin); });
}

SDPResult sdpLibEncodeOriginFieldNetType(SipStringBuffer *pstBuf, SDPOrigin *pstOrigin) {
    return writeTo(pstBuf, [=](Output &out) { return writeOriginNetType(out, *pstOrigin); });
}

SDPResult sdpLibEncodeOriginFieldAddrType(SipStringBuffer *pstBuf, SDPOrigin *pstOrigin) {
    return writeTo(pstBuf, [=](Output &out) { return writeOriginAddrType(out, *pstOrigin); });
}

} // extern "C"
