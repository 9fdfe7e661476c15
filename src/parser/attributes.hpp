// The productions of the a= lines that also have exported names. The production of a value starts
// after the attribute's name; `type` is the attribute type that it stores.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

bool parseAttribute(Parser auto &parser, SDPAttr &attr);
bool parseValue(Parser auto &p, SDPAttr &attr, std::string_view name, uint32_t type);
bool parseOther(Parser auto &p, SDPAttr &attr, std::string_view name);
bool parseTextValue(Parser auto &p, SDPAttr &attr, uint32_t type);
bool keepUnrecognised(Parser auto &p, SDPAttr &attr, std::string_view name);
bool keepNamedText(Parser auto &p, SDPAttr &attr, std::string_view name, uint32_t limit,
                   std::string_view &value);
bool keepName(Parser auto &p, SDPAttr &attr, std::string_view name);

bool parseRtpmap(Parser auto &p, SDPAttr &attr, uint32_t type);
SDPResult locateProfile(SDPRtpMapAttr &rtpMap);
void refineDvi4(SDPRtpMapAttr &rtpMap);
void refineL16(SDPRtpMapAttr &rtpMap);

bool parseFlag(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parsePacketNumber(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseQuality(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseFaxNumber(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseSwitch(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseFaxRate(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseFaxErrorCorrection(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseKeyword(StateParser &p, SDPAttr &attr, uint32_t type);
bool parseSilenceSupp(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseEcan(Parser auto &p, SDPAttr &attr, uint32_t type);
bool parseIpBcp(Parser auto &p, SDPAttr &attr);
bool parseSetup(Parser auto &p, SDPAttr &attr, uint32_t type);
SDPResult classifySilence(SDPSilenceSuppression &silence, std::string_view word);
SDPResult classifyEcanDirection(SDPEcan &ecan, std::string_view word);
SDPResult classifyEcan(SDPEcan &ecan, std::string_view word);
SDPResult classifyIpBcp(SDPIpBcp &ipBcp, std::string_view word);
SDPResult classifySetup(SDPAttr &attr, std::string_view word);

bool parsePrecondition(Parser auto &p, SDPAttr &attr, uint32_t type);
SDPResult classifyPrecondition(SDPRsrcMgmtStatus &status, std::string_view word);
SDPResult classifyStrength(SDPRsrcMgmtStatus &status, std::string_view word);
SDPResult classifyStatus(SDPRsrcMgmtStatus &status, std::string_view word);
SDPResult classifyDirection(SDPRsrcMgmtStatus &status, std::string_view word);

} // namespace sdpline
