// The exported names of what writes the words of a precondition.
#include "encoder/precondition.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeStatusStrengthTag(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStrengthTag(out, *pstStatus); });
}

SDPResult sdpLibEncodeStatusType(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStatusType(out, *pstStatus); });
}

SDPResult sdpLibEncodeStatusDirTag(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeDirTag(out, *pstStatus); });
}

} // extern "C"
