// How the words of a precondition are written (RFC 3312 section 4). They report as part of the
// encoder's driver.
#pragma once

#include "encoder/encoder.hpp"

namespace sdpline {

// strength-tag = "mandatory" / "optional" / "none" / "failure" / "unknown"
SDPLINE_INLINE SDPResult writeStrengthTag(Output &out, const SDPRsrcMgmtStatus &status) {
    return appendWord(out, kStrengthWords, status.enStrengthTag, Check::WordStrength);
}

// status-type = "e2e" / "local" / "remote"
SDPLINE_INLINE SDPResult writeStatusType(Output &out, const SDPRsrcMgmtStatus &status) {
    return appendWord(out, kStatusWords, status.enStatusType, Check::WordStatusType);
}

// direction-tag = "none" / "send" / "recv" / "sendrecv"
SDPLINE_INLINE SDPResult writeDirTag(Output &out, const SDPRsrcMgmtStatus &status) {
    return appendWord(out, kDirWords, status.enDirTag, Check::WordDirection);
}

} // namespace sdpline
