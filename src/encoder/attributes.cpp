// The exported names of what writes an a= line.
#include "encoder/attributes.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeAttribFields(uint32_t *pulFlag, SDPAttrList *pstList,
                                   SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeAttributes(out, pulFlag, pstList); });
}

SDPResult sdpLibEncodeAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeAttribute(out, *pstAttr); });
}

SDPResult sdpLibEncodeAppAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf,
                                     uint32_t *pbNameWritten) {
    return writeTo(pstBuf,
                   [=](Output &out) { return writeAttributeName(out, *pstAttr, *pbNameWritten); });
}

SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeAttributeValue(out, *pstAttr); });
}

SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf,
                   [=](Output &out) { return writeRtpMap(out, pstAttr->unAttrValue.stRtpMap); });
}

SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeT38RateManagement(out, pstAttr); });
}

SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *pstAttr, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeT38UdpEc(out, pstAttr); });
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
    return writeTo(pstBuf, [=](Output &out) { return writeSetup(out, pstAttr); });
}

SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *pstStatus, uint32_t enAttrType,
                                        SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStatus(out, pstStatus, enAttrType); });
}

SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t enAttrType, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeStatusName(out, enAttrType); });
}

} // extern "C"
