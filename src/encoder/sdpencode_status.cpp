// The words of a precondition (RFC 3312 section 4). They report as part of the encoder's driver.
#include "encoder/sdpencode.hpp"

using namespace sdpline;

extern "C" {

// strength-tag = "mandatory" / "optional" / "none" / "failure" / "unknown"
SDPResult sdpLibEncodeStatusStrengthTag(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return appendWord(pstBuf, kStrengthWords, pstStatus->enStrengthTag, Check::WordStrength);
}

// status-type = "e2e" / "local" / "remote"
SDPResult sdpLibEncodeStatusType(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return appendWord(pstBuf, kStatusWords, pstStatus->enStatusType, Check::WordStatusType);
}

// direction-tag = "none" / "send" / "recv" / "sendrecv"
SDPResult sdpLibEncodeStatusDirTag(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf) {
    return appendWord(pstBuf, kDirWords, pstStatus->enDirTag, Check::WordDirection);
}

} // extern "C"
