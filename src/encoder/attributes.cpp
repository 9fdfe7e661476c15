// The exported names of what writes an a= line.
#include "encoder/attributes.hpp"

using namespace sdpline;

namespace {

// The words of a type, whatever type the attribute is of.
SDPResult writeWordOf(uint32_t type, const SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer,
                   [=](Output &out) { return writeKeyword(out, attributeRow(type), *attr); });
}

} // namespace

extern "C" {

SDPResult sdpLibEncodeAttribFields(uint32_t *pulFlag, SDPAttrList *pstList,
                                   SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeAttributes(out, pulFlag, pstList); });
}

SDPResult sdpLibEncodeAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) {
        return writeAttribute(out, *pstAttr, shapeOf(pstAttr->ulAttrType));
    });
}

SDPResult sdpLibEncodeAppAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf,
                                     uint32_t *pbNameWritten) {
    const Shape shape = shapeOf(pstAttr->ulAttrType);
    if (shape != Shape::Precondition) {
        *pbNameWritten = 1;
    }
    return writeTo(pstBuf, [=](Output &out) {
        return isNamedByTable(shape) ? writeTableName(out, *pstAttr)
                                     : writeWhole(out, pstAttr, shape);
    });
}

SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) {
        return writeAttributeValue(out, *pstAttr, shapeOf(pstAttr->ulAttrType));
    });
}

SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf,
                   [=](Output &out) { return writeRtpMap(out, pstAttr->unAttrValue.stRtpMap); });
}

SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeWordOf(SDP_ATTR_T38_RATE_MANAGEMENT, pstAttr, pstBuf);
}

SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeWordOf(SDP_ATTR_T38_UDP_EC, pstAttr, pstBuf);
}

SDPResult sdpLibEncodeAttribFieldT38SilenceSupp(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeSilenceSupp(out, pstAttr); });
}

SDPResult sdpLibEncodeAttribFieldEchoCan(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeEcan(out, pstAttr); });
}

SDPResult sdpLibEncodeAttribFieldIbpCp(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeIpBcp(out, pstAttr); });
}

SDPResult sdpLibEncodeAttribT120Setup(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeWordOf(SDP_ATTR_SETUP, pstAttr, pstBuf);
}

SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *pstStatus, uint32_t enAttrType,
                                        SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStatus(out, pstStatus, enAttrType); });
}

SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t enAttrType, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStatusName(out, enAttrType); });
}

} // extern "C"
