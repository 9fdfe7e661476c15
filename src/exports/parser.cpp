// The parser's exported names: each runs a production on the process-wide lexer, or is a forward.
#include "parser/attributes.hpp"
#include "parser/connection.hpp"
#include "parser/driver.hpp"
#include "parser/media.hpp"
#include "parser/normalform.hpp"
#include "parser/time.hpp"

using namespace sdpline;

// The production's call, on the lexer's state.
#define PARSE(call) withGlobalLexer([&](StateParser &p) { return call; })

extern "C" {

// ---- Bodies and lists

SDPResult SdpLibParseSdp(const SipString *text, SdpLine **line) {
    return parseBody(text, line);
}

SDPResult startSdpParsing(SdpLine *line) {
    return parseFromState(*line);
}

void convertCRLFToCR(const uint8_t *text, uint32_t length, uint8_t *out, uint32_t outSize) {
    normaliseCleared(text, length, out, outSize);
}

void **SdpLibUtilExtendDP(void **array, uint32_t count, uint32_t newCount) {
    return extendArray(array, count, newCount);
}

// ---- v= o= and the lines of text

SDPResult sdpProtoVersion(SdpLine *line) {
    return PARSE(parseVersion(p, line->ulProtoVersion));
}

SDPResult sdpOriginField(SDPOrigin *origin) {
    return PARSE(parseOrigin(p, *origin));
}

SDPResult sdpStringField(uint32_t kind, SipString *value) {
    return PARSE(parseText(p, kind, *value));
}

SDPResult sdpStringListFields(uint32_t kind, SipString ***strings, uint32_t *count) {
    SDPStringList list = {*count, *strings};
    const SDPResult result = PARSE(parseTextList(p, kind, list));
    *strings = list.ppstStrings;
    *count = list.ulNoOfStrings;
    return result;
}

// ---- c=

SDPResult sdpConnectionField(SDPConnection *connection) {
    return PARSE(parseConnection(p, *connection));
}

SDPResult sdpConnectionFieldAddrType(SDPConnection *connection, uint32_t kind) {
    return addressType(*connection, kind);
}

SDPResult sdpConnectionFieldAddrIpv4(SDPConnection *connection) {
    return PARSE(parseIpv4(p, *connection));
}

SDPResult sdpConnectionFieldAddrIpv6(SDPConnection *connection) {
    return PARSE(parseIpv6(p, *connection));
}

SDPResult sdpConnectionFieldTtl(SDPConnection *connection) {
    return PARSE(parseTtlAndCount(p, *connection));
}

// ---- t= and r=

SDPResult sdpTimeFieldsSet(SDPTimeSet *set) {
    return PARSE(parseTimes(p, *set));
}

SDPResult sdpTimeFields(SDPTimeField *field) {
    return PARSE(parseTimeAndRepeats(p, *field));
}

SDPResult sdpTimeField(SDPTimeField *field) {
    return PARSE(parseTime(p, *field));
}

SDPResult sdpRepeatFields(SDPRepeatFieldSet *set) {
    return PARSE(parseRepeats(p, *set));
}

SDPResult sdpRepeatField(SDPRepeatField *field) {
    return PARSE(parseRepeat(p, *field));
}

SDPResult sdpTypedTime(SDPTimeUnit *unit) {
    return PARSE(parseTypedTime(p, *unit));
}

// ---- a=

SDPResult sdpAttributeFields(SDPAttrList *list) {
    return PARSE(parseAttributes(p, *list));
}

SDPResult sdpAttributeField(SDPAttr *attr) {
    return PARSE(parseAttribute(p, *attr));
}

SDPResult sdpAttributeFieldType(SDPAttr *attr, const char *name, uint32_t type) {
    return PARSE(parseValue(p, *attr, name, type));
}

SDPResult sdpAttributeFieldDataSink(SDPAttr *attr, const char *name) {
    return PARSE(parseOther(p, *attr, name));
}

SDPResult sdpOtherRecAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseTextValue(p, *attr, type));
}

SDPResult sdpUnRecAttr(const char *name, SDPAttr *attr) {
    return PARSE(keepUnrecognised(p, *attr, name));
}

SDPResult sdpUnRecAttrTypeExtn(const char *name, SDPAttr *attr, char *buffer, uint32_t size) {
    constexpr uint32_t work = SDP_MAX_VALUE + 1;
    const uint32_t space = size < work ? size : work;
    std::string_view value;
    const SDPResult result =
        PARSE(keepNamedText(p, *attr, name, space == 0 ? 0 : space - 1, value));
    if (result == 0 && space != 0) {
        buffer[value.copy(buffer, space - 1)] = '\0';
    }
    return result;
}

SDPResult sdpUnRecAttrTypeNoVal(const char *name, SDPAttr *attr) {
    return PARSE(keepName(p, *attr, name));
}

// ---- a=rtpmap

SDPResult sdpRtpmapAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseRtpmap(p, *attr, type));
}

SDPResult sdpRtpmapAttrLocateStdRtpProfile(SDPRtpMapAttr *rtpMap) {
    return locateProfile(*rtpMap);
}

SDPResult sdpRtpmapAttrPayloadDvi4For8K(SDPRtpMapAttr *rtpMap) {
    return refineDvi4(*rtpMap), 0;
}

SDPResult sdpRtpmapAttrPayloadL16For2C(SDPRtpMapAttr *rtpMap) {
    return refineL16(*rtpMap), 0;
}

// ---- Media control

SDPResult sdpModeAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseFlag(p, *attr, type));
}

SDPResult sdpPacketizationAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parsePacketNumber(p, *attr, type));
}

SDPResult sdpQualityAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseQuality(p, *attr, type));
}

SDPResult sdpFaxNumericAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseFaxNumber(p, *attr, type));
}

SDPResult sdpFaxRateMgmtAttr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseFaxRate(p, *attr, type));
}

SDPResult sdpFaxUdpEC(SDPAttr *attr, uint32_t type) {
    return PARSE(parseFaxErrorCorrection(p, *attr, type));
}

SDPResult sdpSilenceSuppression(SDPAttr *attr, uint32_t type) {
    return PARSE(parseSilenceSupp(p, *attr, type));
}

SDPResult sdpEchoCacellation(SDPAttr *attr, uint32_t type) {
    return PARSE(parseEcan(p, *attr, type));
}

SDPResult sdpIpBcpAttr(SDPAttr *attr) {
    return PARSE(parseIpBcp(p, *attr));
}

SDPResult sdpT120Attr(SDPAttr *attr, uint32_t type) {
    return PARSE(parseSetup(p, *attr, type));
}

SDPResult sdpSilenceSuppressionOn(SDPAttr *attr, const char *word) {
    return classifySilence(attr->unAttrValue.stSilenceSupp, word);
}

SDPResult sdpEchoCacellationDirection(SDPAttr *attr, const char *word) {
    return classifyEcanDirection(attr->unAttrValue.stEcan, word);
}

SDPResult sdpEchoCacellationOn(SDPAttr *attr, const char *word) {
    return classifyEcan(attr->unAttrValue.stEcan, word);
}

SDPResult sdpIpBcpAttrType(SDPAttr *attr, const char *word) {
    return classifyIpBcp(attr->unAttrValue.stIpBcp, word);
}

SDPResult sdpT120AttrT120Mode(SDPAttr *attr, const char *word) {
    return classifySetup(*attr, word);
}

// ---- Preconditions

SDPResult sdpResourceStatus(SDPAttr *attr, uint32_t type) {
    return PARSE(parsePrecondition(p, *attr, type));
}

SDPResult sdpResourceStatusExtractPrecondition(SDPRsrcMgmtStatus *status, const char *word) {
    return classifyPrecondition(*status, word);
}

SDPResult sdpResourceStatusExtractStrengthTag(SDPRsrcMgmtStatus *status, const char *word) {
    return classifyStrength(*status, word);
}

SDPResult sdpResourceExtractStatusType(SDPRsrcMgmtStatus *status, const char *word) {
    return classifyStatus(*status, word);
}

SDPResult sdpResourceStatusExtractDirTag(SDPRsrcMgmtStatus *status, const char *word) {
    return classifyDirection(*status, word);
}

// ---- m=

SDPResult sdpMediaDescriptions(SDPMediaSet *set) {
    return PARSE(parseMediaDescriptions(p, *set));
}

SDPResult sdpMediaDescription(SDPMediaDesc *desc) {
    return PARSE(parseMediaDescription(p, *desc));
}

SDPResult sdpMediaField(SDPMediaField *field) {
    return PARSE(parseMediaField(p, *field));
}

SDPResult sdpMediaType(SDPMediaField *field, const char *word) {
    return classifyMedia(*field, word);
}

SDPResult sdpMediaFmt(SDPMediaField *field, const char *proto) {
    return PARSE(parseFormats(p, *field, proto));
}

SDPResult sdpRtpAvpMediaFmt(SDPMediaField *field, uint32_t proto) {
    return PARSE(parsePayloads(p, *field, proto));
}

SDPResult sdpRtpAvpMediaFmtGetNoOfPayloads(uint32_t *count, uint32_t *payLoads, uint32_t limit) {
    return PARSE(parsePayloadNumbers(p, *count, payLoads, limit));
}

SDPResult sdpOtherMediaFmt(SDPMediaField *field, uint32_t proto) {
    return PARSE(parseOtherFormat(p, *field, proto));
}

} // extern "C"
