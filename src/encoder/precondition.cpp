// Writing a=curr, a=des and a=conf (RFC 3312 section 4). The checks of their words are reported
// under the number of the encoder's driver.
#include "encoder/writers.hpp"

namespace sdpline {

// strength-tag = "mandatory" / "optional" / "none" / "failure" / "unknown"
SDPResult writeStrengthTag(auto &out, const SDPRsrcMgmtStatus &status) {
    return appendWord<kStrengthWords>(out, status.enStrengthTag, Check::WordStrength);
}

// status-type = "e2e" / "local" / "remote"
SDPResult writeStatusType(auto &out, const SDPRsrcMgmtStatus &status) {
    return appendWord<kStatusWords>(out, status.enStatusType, Check::WordStatusType);
}

// direction-tag = "none" / "send" / "recv" / "sendrecv"
SDPResult writeDirTag(auto &out, const SDPRsrcMgmtStatus &status) {
    return appendWord<kDirWords>(out, status.enDirTag, Check::WordDirection);
}

SDPResult writeStatusName(auto &out, uint32_t type) {
    return shapeOf(type) == Shape::Precondition ? appendName(out, type)
                                                : fail(out, Check::WordAttrType, type);
}

// ( "curr:" / "des:" / "conf:" ) precondition-type [ SP strength-tag ] SP status-type
// SP direction-tag. Only "des:" has a strength.
SDPResult writeStatus(auto &out, const SDPRsrcMgmtStatus *status, uint32_t type) {
    if (status == nullptr || !out.hasBuffer()) {
        return fail(out, Check::StatusArgument);
    }
    if (writeStatusName(out, type) != 0) {
        return fail(out, Check::StatusAttrFailed, type);
    }
    const SDPPreconditionS &precondition = status->stPrecondition;
    if (precondition.enPreconditionType != SDP_PRECONDITION_OTHER) {
        appendKnownWord<kPreconditionWords>(out, precondition.enPreconditionType);
    } else if (precondition.pstrOtherPrecondition != nullptr) {
        out.text(precondition.pstrOtherPrecondition);
    }
    out.character(' ');
    if (attributeRow(type).has(kStrengthTag)) {
        if (writeStrengthTag(out, *status) != 0) {
            return fail(out, Check::StatusStrengthFailed, status->enStrengthTag);
        }
        out.character(' ');
    }
    if (writeStatusType(out, *status) != 0) {
        return fail(out, Check::StatusTypeFailed, status->enStatusType);
    }
    out.character(' ');
    if (writeDirTag(out, *status) != 0) {
        return fail(out, Check::StatusDirectionFailed, status->enDirTag);
    }
    return 0;
}

SDPLINE_LINE_WRITER(writeStatus, const SDPRsrcMgmtStatus *, uint32_t);
SDPLINE_LINE_WRITER(writeStatusName, uint32_t);
SDPLINE_LINE_WRITER(writeStrengthTag, const SDPRsrcMgmtStatus &);
SDPLINE_LINE_WRITER(writeStatusType, const SDPRsrcMgmtStatus &);
SDPLINE_LINE_WRITER(writeDirTag, const SDPRsrcMgmtStatus &);

} // namespace sdpline
