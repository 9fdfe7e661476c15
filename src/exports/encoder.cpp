// The exported names of the encoder.
#include "encoder/writers.hpp"

using namespace sdpline;

extern "C" {

SDPResult SdpLibEncodeSdpInt(SdpLine *line, SipStringBuffer *buffer) {
    return encodeBody(line, buffer);
}

SDPResult SdpLibEncodeLine(int32_t type, uint32_t *flag, void *field, SipStringBuffer *buffer) {
    return encodeLine(type, flag, field, buffer);
}

SDPResult sdpLibEncodeProtocolField(uint32_t *flag, uint32_t *version, SipStringBuffer *buffer) {
    return writeTo(buffer, writeVersion<ServiceLine>, flag, *version);
}

SDPResult sdpLibEncodeStringField(uint32_t *flag, char key, SipString *value,
                                  SipStringBuffer *buffer) {
    return writeTo(buffer, writeTextLine<ServiceLine>, flag, key, value);
}

SDPResult sdpLibEncodeStringListField(uint32_t *flag, char key, uint32_t count, SipString **items,
                                      SipStringBuffer *buffer) {
    return writeTo(buffer, writeTextLines<ServiceLine>, flag, key, count, items);
}

// ---- o=

SDPResult sdpLibEncodeOriginField(uint32_t *flag, SDPOrigin *origin, SipStringBuffer *buffer) {
    return writeTo(buffer, writeOrigin<ServiceLine>, flag, *origin);
}

SDPResult sdpLibEncodeOriginFieldNetType(SipStringBuffer *buffer, SDPOrigin *origin) {
    return writeTo(buffer, writeOriginNetType<ServiceLine>, *origin);
}

SDPResult sdpLibEncodeOriginFieldAddrType(SipStringBuffer *buffer, SDPOrigin *origin) {
    return writeTo(buffer, writeOriginAddrType<ServiceLine>, *origin);
}

// ---- c=

SDPResult sdpLibEncodeConnectionField(uint32_t *flag, SDPConnection *connection,
                                      SipStringBuffer *buffer) {
    return writeTo(buffer, writeConnection<ServiceLine>, flag, *connection);
}

SDPResult sdpLibEncodeConnectionFieldNetType(SipStringBuffer *buffer, SDPConnection *connection,
                                             uint32_t *typeError) {
    return writeTo(buffer, writeConnectionNetType<ServiceLine>, *connection, *typeError);
}

SDPResult sdpLibEncodeConnectionFieldAddrType(SipStringBuffer *buffer, SDPConnection *connection,
                                              uint32_t *typeError) {
    return writeTo(buffer, writeConnectionAddrType<ServiceLine>, *connection, *typeError);
}

SDPResult sdpLibEncodeConnectionFieldAddr(SipStringBuffer *buffer, SDPConnection *connection,
                                          uint32_t *typeError) {
    return writeTo(buffer, writeConnectionAddress<ServiceLine>, *connection, *typeError);
}

void sdpLibEncodeConnectionFieldIPv6AddrFmt(SipStringBuffer *buffer, SDPConnection *connection) {
    writeTo(buffer, writeIpv6<ServiceLine>, *connection);
}

SDPResult sdpLibEncodeConnectionFieldTtl(SipStringBuffer *buffer, SDPConnection *connection) {
    return writeTo(buffer, writeTtl<ServiceLine>, *connection);
}

// ---- t= and r=

SDPResult sdpLibEncodeTimeSet(uint32_t *flag, SDPTimeSet *set, SipStringBuffer *buffer) {
    return writeTo(buffer, writeTimes<ServiceLine>, flag, *set);
}

SDPResult sdpLibEncodeRepeatFields(uint32_t *flag, SDPRepeatFieldSet *set,
                                   SipStringBuffer *buffer) {
    return writeTo(buffer, writeRepeats<ServiceLine>, flag, set);
}

SDPResult sdpLibEncodeTimeUnit(SDPTimeUnit *unit, SipStringBuffer *buffer) {
    return writeTo(buffer, writeTimeUnit<ServiceLine>, *unit);
}

// ---- m=

SDPResult sdpLibEncodeMediaSet(uint32_t *flag, SDPMediaSet *set, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaSet<ServiceLine>, flag, *set);
}

SDPResult sdpLibEncodeMediaField(uint32_t *flag, SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaField<ServiceLine>, flag, *field);
}

SDPResult sdpLibEncodeMediaType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeMediaType<ServiceLine>, field->stMedia);
}

SDPResult sdpLibEncodeMediaProtoType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeProto<ServiceLine>, field->stProto);
}

SDPResult sdpLibEncodeMediaFmtType(SDPMediaField *field, SipStringBuffer *buffer) {
    return writeTo(buffer, writeFormats<ServiceLine>, field->stMediaFmt);
}

// ---- a=

SDPResult sdpLibEncodeAttribFields(uint32_t *flag, SDPAttrList *list, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttributes<ServiceLine>, flag, list);
}

SDPResult sdpLibEncodeAttribField(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttribute<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAppAttribField(SDPAttr *attr, SipStringBuffer *buffer,
                                     uint32_t *nameWritten) {
    return writeTo(buffer, writeAttributeName<ServiceLine>, *attr, *nameWritten);
}

SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeAttributeValue<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeRtpMap<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword<ServiceLine>, attributeRow(SDP_ATTR_T38_RATE_MANAGEMENT),
                   *attr);
}

SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword<ServiceLine>, attributeRow(SDP_ATTR_T38_UDP_EC), *attr);
}

SDPResult sdpLibEncodeAttribFieldT38SilenceSupp(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeSilenceSupp<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAttribFieldEchoCan(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeEcan<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAttribFieldIbpCp(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeIpBcp<ServiceLine>, *attr);
}

SDPResult sdpLibEncodeAttribT120Setup(SDPAttr *attr, SipStringBuffer *buffer) {
    return writeTo(buffer, writeKeyword<ServiceLine>, attributeRow(SDP_ATTR_SETUP), *attr);
}

SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *status, uint32_t type,
                                        SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatus<ServiceLine>, status, type);
}

SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t type, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatusName<ServiceLine>, type);
}

SDPResult sdpLibEncodeStatusStrengthTag(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStrengthTag<ServiceLine>, *status);
}

SDPResult sdpLibEncodeStatusType(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeStatusType<ServiceLine>, *status);
}

SDPResult sdpLibEncodeStatusDirTag(SDPRsrcMgmtStatus *status, SipStringBuffer *buffer) {
    return writeTo(buffer, writeDirTag<ServiceLine>, *status);
}

} // extern "C"
