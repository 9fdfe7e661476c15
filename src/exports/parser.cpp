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

SDPResult SdpLibParseSdp(const SipString *pstText, SdpLine **ppstLine) {
    return parseBody(pstText, ppstLine);
}

SDPResult startSdpParsing(SdpLine *pstLine) {
    return parseFromState(*pstLine);
}

void convertCRLFToCR(const uint8_t *pucText, uint32_t ulLen, uint8_t *pucOut, uint32_t ulOutSize) {
    normaliseCleared(pucText, ulLen, pucOut, ulOutSize);
}

void **SdpLibUtilExtendDP(void **ppArray, uint32_t ulCount, uint32_t ulNewCount) {
    return extendArray(ppArray, ulCount, ulNewCount);
}

// ---- v= o= and the lines of text

SDPResult sdpProtoVersion(SdpLine *pstLine) {
    return PARSE(parseVersion(p, pstLine->ulProtoVersion));
}

SDPResult sdpOriginField(SDPOrigin *pstOrigin) {
    return PARSE(parseOrigin(p, *pstOrigin));
}

SDPResult sdpStringField(uint32_t enKind, SipString *pstValue) {
    return PARSE(parseText(p, enKind, *pstValue));
}

SDPResult sdpStringListFields(uint32_t enKind, SipString ***pppstStrings, uint32_t *pulCount) {
    SDPStringList list = {*pulCount, *pppstStrings};
    const SDPResult result = PARSE(parseTextList(p, enKind, list));
    *pppstStrings = list.ppstStrings;
    *pulCount = list.ulNoOfStrings;
    return result;
}

// ---- c=

SDPResult sdpConnectionField(SDPConnection *pstConnection) {
    return PARSE(parseConnection(p, *pstConnection));
}

SDPResult sdpConnectionFieldAddrType(SDPConnection *pstConnection, uint32_t enKind) {
    return addressType(*pstConnection, enKind);
}

SDPResult sdpConnectionFieldAddrIpv4(SDPConnection *pstConnection) {
    return PARSE(parseIpv4(p, *pstConnection));
}

SDPResult sdpConnectionFieldAddrIpv6(SDPConnection *pstConnection) {
    return PARSE(parseIpv6(p, *pstConnection));
}

SDPResult sdpConnectionFieldTtl(SDPConnection *pstConnection) {
    return PARSE(parseTtlAndCount(p, *pstConnection));
}

// ---- t= and r=

SDPResult sdpTimeFieldsSet(SDPTimeSet *pstSet) {
    return PARSE(parseTimes(p, *pstSet));
}

SDPResult sdpTimeFields(SDPTimeField *pstField) {
    return PARSE(parseTimeAndRepeats(p, *pstField));
}

SDPResult sdpTimeField(SDPTimeField *pstField) {
    return PARSE(parseTime(p, *pstField));
}

SDPResult sdpRepeatFields(SDPRepeatFieldSet *pstSet) {
    return PARSE(parseRepeats(p, *pstSet));
}

SDPResult sdpRepeatField(SDPRepeatField *pstField) {
    return PARSE(parseRepeat(p, *pstField));
}

SDPResult sdpTypedTime(SDPTimeUnit *pstUnit) {
    return PARSE(parseTypedTime(p, *pstUnit));
}

// ---- a=

SDPResult sdpAttributeFields(SDPAttrList *pstList) {
    return PARSE(parseAttributes(p, *pstList));
}

SDPResult sdpAttributeField(SDPAttr *pstAttr) {
    return PARSE(parseAttribute(p, *pstAttr));
}

SDPResult sdpAttributeFieldType(SDPAttr *pstAttr, const char *pcName, uint32_t enType) {
    return PARSE(parseValue(p, *pstAttr, pcName, enType));
}

SDPResult sdpAttributeFieldDataSink(SDPAttr *pstAttr, const char *pcName) {
    return PARSE(parseOther(p, *pstAttr, pcName));
}

SDPResult sdpOtherRecAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseTextValue(p, *pstAttr, enType));
}

SDPResult sdpUnRecAttr(const char *pcName, SDPAttr *pstAttr) {
    return PARSE(keepUnrecognised(p, *pstAttr, pcName));
}

SDPResult sdpUnRecAttrTypeExtn(const char *pcName, SDPAttr *pstAttr, char *pcBuffer,
                               uint32_t ulSize) {
    constexpr uint32_t work = SDP_MAX_VALUE + 1;
    const uint32_t space = ulSize < work ? ulSize : work;
    std::string_view value;
    const SDPResult result =
        PARSE(keepNamedText(p, *pstAttr, pcName, space == 0 ? 0 : space - 1, value));
    if (result == 0 && space != 0) {
        pcBuffer[value.copy(pcBuffer, space - 1)] = '\0';
    }
    return result;
}

SDPResult sdpUnRecAttrTypeNoVal(const char *pcName, SDPAttr *pstAttr) {
    return PARSE(keepName(p, *pstAttr, pcName));
}

// ---- a=rtpmap

SDPResult sdpRtpmapAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseRtpmap(p, *pstAttr, enType));
}

SDPResult sdpRtpmapAttrLocateStdRtpProfile(SDPRtpMapAttr *pstRtpMap) {
    return locateProfile(*pstRtpMap);
}

SDPResult sdpRtpmapAttrPayloadDvi4For8K(SDPRtpMapAttr *pstRtpMap) {
    return refineDvi4(*pstRtpMap), 0;
}

SDPResult sdpRtpmapAttrPayloadL16For2C(SDPRtpMapAttr *pstRtpMap) {
    return refineL16(*pstRtpMap), 0;
}

// ---- Media control

SDPResult sdpModeAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseFlag(p, *pstAttr, enType));
}

SDPResult sdpPacketizationAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parsePacketNumber(p, *pstAttr, enType));
}

SDPResult sdpQualityAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseQuality(p, *pstAttr, enType));
}

SDPResult sdpFaxNumericAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseFaxNumber(p, *pstAttr, enType));
}

SDPResult sdpFaxRateMgmtAttr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseFaxRate(p, *pstAttr, enType));
}

SDPResult sdpFaxUdpEC(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseFaxErrorCorrection(p, *pstAttr, enType));
}

SDPResult sdpSilenceSuppression(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseSilenceSupp(p, *pstAttr, enType));
}

SDPResult sdpEchoCacellation(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseEcan(p, *pstAttr, enType));
}

SDPResult sdpIpBcpAttr(SDPAttr *pstAttr) {
    return PARSE(parseIpBcp(p, *pstAttr));
}

SDPResult sdpT120Attr(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parseSetup(p, *pstAttr, enType));
}

SDPResult sdpSilenceSuppressionOn(SDPAttr *pstAttr, const char *pcWord) {
    return classifySilence(pstAttr->unAttrValue.stSilenceSupp, pcWord);
}

SDPResult sdpEchoCacellationDirection(SDPAttr *pstAttr, const char *pcWord) {
    return classifyEcanDirection(pstAttr->unAttrValue.stEcan, pcWord);
}

SDPResult sdpEchoCacellationOn(SDPAttr *pstAttr, const char *pcWord) {
    return classifyEcan(pstAttr->unAttrValue.stEcan, pcWord);
}

SDPResult sdpIpBcpAttrType(SDPAttr *pstAttr, const char *pcWord) {
    return classifyIpBcp(pstAttr->unAttrValue.stIpBcp, pcWord);
}

SDPResult sdpT120AttrT120Mode(SDPAttr *pstAttr, const char *pcWord) {
    return classifySetup(*pstAttr, pcWord);
}

// ---- Preconditions

SDPResult sdpResourceStatus(SDPAttr *pstAttr, uint32_t enType) {
    return PARSE(parsePrecondition(p, *pstAttr, enType));
}

SDPResult sdpResourceStatusExtractPrecondition(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyPrecondition(*pstStatus, pcWord);
}

SDPResult sdpResourceStatusExtractStrengthTag(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyStrength(*pstStatus, pcWord);
}

SDPResult sdpResourceExtractStatusType(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyStatus(*pstStatus, pcWord);
}

SDPResult sdpResourceStatusExtractDirTag(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyDirection(*pstStatus, pcWord);
}

// ---- m=

SDPResult sdpMediaDescriptions(SDPMediaSet *pstSet) {
    return PARSE(parseMediaDescriptions(p, *pstSet));
}

SDPResult sdpMediaDescription(SDPMediaDesc *pstDesc) {
    return PARSE(parseMediaDescription(p, *pstDesc));
}

SDPResult sdpMediaField(SDPMediaField *pstField) {
    return PARSE(parseMediaField(p, *pstField));
}

SDPResult sdpMediaType(SDPMediaField *pstField, const char *pcWord) {
    return classifyMedia(*pstField, pcWord);
}

SDPResult sdpMediaFmt(SDPMediaField *pstField, const char *pcProto) {
    return PARSE(parseFormats(p, *pstField, pcProto));
}

SDPResult sdpRtpAvpMediaFmt(SDPMediaField *pstField, uint32_t enProto) {
    return PARSE(parsePayloads(p, *pstField, enProto));
}

SDPResult sdpRtpAvpMediaFmtGetNoOfPayloads(uint32_t *pulCount, uint32_t *pulPayLoads,
                                           uint32_t ulLimit) {
    return PARSE(parsePayloadNumbers(p, *pulCount, pulPayLoads, ulLimit));
}

SDPResult sdpOtherMediaFmt(SDPMediaField *pstField, uint32_t enProto) {
    return PARSE(parseOtherFormat(p, *pstField, enProto));
}

} // extern "C"
