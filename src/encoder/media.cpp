// The exported names of what writes the media descriptions.
#include "encoder/media.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeMediaSet(uint32_t *pulFlag, SDPMediaSet *pstSet, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeMediaSet(out, pulFlag, *pstSet); });
}

SDPResult sdpLibEncodeMediaField(uint32_t *pulFlag, SDPMediaField *pstField,
                                 SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeMediaField(out, pulFlag, *pstField); });
}

SDPResult sdpLibEncodeMediaType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeMediaType(out, pstField->stMedia); });
}

SDPResult sdpLibEncodeMediaProtoType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeProto(out, pstField->stProto); });
}

SDPResult sdpLibEncodeMediaFmtType(SDPMediaField *pstField, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeFormats(out, pstField->stMediaFmt); });
}

} // extern "C"
