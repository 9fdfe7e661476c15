// The exported names of the encoder.
#include "encoder/encoder.hpp"

using namespace sdpline;

extern "C" {

SDPResult SdpLibEncodeSdpInt(SdpLine *line, SipStringBuffer *buffer) {
    return encodeBody(line, buffer);
}

SDPResult SdpLibEncodeLine(int32_t type, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return encodeLine(type, flag, field, buffer);
}

SDPResult sdpLibEncodeProtocolField(uint32_t *flag, uint32_t *version, SipStringBuffer *buffer) {
    return writeTo(buffer, writeVersion, flag, *version);
}

SDPResult sdpLibEncodeStringField(uint32_t *flag, char key, SipString *value,
                                  SipStringBuffer *buffer) {
    return writeTo(buffer, writeTextLine, flag, key, value);
}

SDPResult sdpLibEncodeStringListField(uint32_t *flag, char key, uint32_t count, SipString **items,
                                      SipStringBuffer *buffer) {
    return writeTo(buffer, writeTextLines, flag, key, count, items);
}

// ---- o=

SDPResult sdpLibEncodeOriginField(uint32_t *flag, SDPOrigin *origin, SipStringBuffer *buffer) {
    return writeTo(buffer, writeOrigin, flag, *origin);
}

SDPResult sdpLibEncodeOriginFieldNetType(SipStringBuffer *buffer, SDPOrigin *origin) {
    return writeTo(buffer, writeOriginNetType, *origin);
}

SDPResult sdpLibEncodeOriginFieldAddrType(SipStringBuffer *buffer, SDPOrigin *origin) {
    return writeTo(buffer, writeOriginAddrType, *origin);
}

// ---- c=

SDPResult sdpLibEncodeConnectionField(uint32_t *flag, SDPConnection *connection,
                                      SipStringBuffer *buffer) {
    return writeTo(buffer, writeConnection, flag, *connection);
}

SDPResult sdpLibEncodeConnectionFieldNetType(SipStringBuffer *buffer, SDPConnection *connection,
                                             uint32_t *typeError) {
    return writeTo(buffer, writeConnectionNetType, *connection, *typeError);
}

SDPResult sdpLibEncodeConnectionFieldAddrType(SipStringBuffer *buffer, SDPConnection *connection,
                                              uint32_t *typeError) {
    return writeTo(buffer, writeConnectionAddrType, *connection, *typeError);
}

SDPResult sdpLibEncodeConnectionFieldAddr(SipStringBuffer *buffer, SDPConnection *connection,
                                          uint32_t *typeError) {
    return writeTo(buffer, writeConnectionAddress, *connection, *typeError);
}

void sdpLibEncodeConnectionFieldIPv6AddrFmt(SipStringBuffer *buffer, SDPConnection *connection) {
    writeTo(buffer, writeIpv6, *connection);
}

SDPResult sdpLibEncodeConnectionFieldTtl(SipStringBuffer *buffer, SDPConnection *connection) {
    return writeTo(buffer, writeTtl, *connection);
}

// ---- t= and r=

SDPResult sdpLibEncodeTimeSet(uint32_t *flag, SDPTimeSet *set, SipStringBuffer *buffer) {
    return writeTo(buffer, writeTimes, flag, *set);
}

SDPResult sdpLibEncodeRepeatFields(uint32_t *flag, SDPRepeatFieldSet *set,
                                   SipStringBuffer *buffer) {
    return writeTo(buffer, writeRepeats, flag, set);
}

SDPResult sdpLibEncodeTimeUnit(SDPTimeUnit *unit, SipStringBuffer *buffer) {
    return writeTo(buffer, writeTimeUnit, *unit);
}

// ---- m=

SDPResult sdpLibEncodeMediaSet(uint32_t *flag, SDPMediaSet *set, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaSet, flag, *set);
}

SDPResult sdpLibEncodeMediaField(uint32_t *flag, SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaField, flag, *field);
}

SDPResult sdpLibEncodeMediaType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaType, field->stMedia);
}

SDPResult sdpLibEncodeMediaProtoType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeProto, field->stProto);
}

SDPResult sdpLibEncodeMediaFmtType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeFormats, field->stMediaFmt);
}

// ---- a=

SDPResult sdpLibEncodeAttribFields(uint32_t *flag, SDPAttrList *list, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttributes, flag, list);
}

SDPResult sdpLibEncodeAttribField(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttribute, *attr);
}

SDPResult sdpLibEncodeAppAttribField(SDPAttr *attr, SipStringBuffer *buffer,
                                     uint32_t *nameWritten) {
    return writeTo(buffer, writeAttributeName, *attr, *nameWritten);
}

SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttributeValue, *attr);
}

SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeRtpMap, *attr);
}

SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword, attributeRow(SDP_ATTR_T38_RATE_MANAGEMENT), *attr);
}

SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword, attributeRow(SDP_ATTR_T38_UDP_EC), *attr);
}

SDPResult sdpLibEncodeAttribFieldT38SilenceSupp(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeSilenceSupp, *attr);
}

SDPResult sdpLibEncodeAttribFieldEchoCan(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeEcan, *attr);
}

SDPResult sdpLibEncodeAttribFieldIbpCp(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeIpBcp, *attr);
}

SDPResult sdpLibEncodeAttribT120Setup(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword, attributeRow(SDP_ATTR_SETUP), *attr);
}

SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *status, uint32_t type,
                                        SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatus, status, type);
}

SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t type, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatusName, type);
}

SDPResult sdpLibEncodeStatusStrengthTag(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStrengthTag, *status);
}

SDPResult sdpLibEncodeStatusType(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatusType, *status);
}

SDPResult sdpLibEncodeStatusDirTag(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeDirTag, *status);
}

} // extern "C"
