// The values of the media-control attributes: modes, packet times, quality, T.38, silence
// suppression, echo cancellation, IP bearer control and the T.120 setup role.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

struct NumericChecks {
    Check colon;
    NumberChecks number;
};

// ":" 1*DIGIT
SDPLINE_INLINE SDPResult takeNumericValue(Lexer &lexer, SDPAttr &attr, uint32_t type,
                                          NumericChecks checks) {
    attr.ulAttrType = type;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_ALNUM)) {
        return fail(checks.colon);
    }
    return takeNumber(lexer, attr.unAttrValue.ulValue, SDP_LEXCTX_ALNUM, checks.number);
}

struct ChoiceChecks {
    Check colon;
    WordChecks word;
    Check unknown;
    Check end;
};

// ":" token LF, where the token is one of the table's words
SDPLINE_INLINE SDPResult choice(Lexer &lexer, SDPAttr &attr, uint32_t type,
                                std::span<const Word> table, ChoiceChecks checks) {
    attr.ulAttrType = type;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_TOKEN)) {
        return fail(checks.colon);
    }
    std::string_view word;
    if (const SDPResult result =
            takeWord(lexer, word, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN, checks.word)) {
        return result;
    }
    if (const SDPResult result = classify(attr.unAttrValue.ulValue, table, word, checks.unknown)) {
        return result;
    }
    return takeLineEnd(lexer, checks.end);
}

struct ParamsChecks {
    Check missing;
    Check ended;
    Check tooLong;
    Check store;
    Check end;
};

// 1*1023<any byte but LF> LF, kept with the blank it begins with
SDPLINE_INLINE SDPResult takeParams(Lexer &lexer, SipString &params, ParamsChecks checks) {
    if (lexer.is(SDP_TOK_LF)) {
        return fail(checks.missing);
    }
    if (lexer.inputEnds()) {
        return fail(checks.ended);
    }
    std::string_view text;
    if (!lexer.takeRestOfLine(text, SDP_MAX_VALUE)) {
        return fail(checks.tooLong);
    }
    if (storeText(params, text) != 0) {
        return fail(checks.store);
    }
    return takeLineEnd(lexer, checks.end);
}

SDPResult classifySilence(SDPSilenceSuppression &silence, std::string_view word) {
    return classify(silence.bOn, kSwitchWords, word, Check::SilenceWord);
}

SDPResult classifyEcanDirection(SDPEcan &ecan, std::string_view word) {
    return classify(ecan.enEcanDir, kEcanDirWords, word, Check::EcanDirectionWord);
}

SDPResult classifyEcan(SDPEcan &ecan, std::string_view word) {
    return classify(ecan.bOn, kSwitchWords, word, Check::EcanWord);
}

SDPResult classifyIpBcp(SDPIpBcp &ipBcp, std::string_view word) {
    return classify(ipBcp.ucType, kIpBcpWords, word, Check::IpBcpType);
}

SDPResult classifySetup(SDPAttr &attr, std::string_view word) {
    return classify(attr.unAttrValue.enT120Mode, kSetupWords, word, Check::SetupWord);
}

// direction SP ( "on" / "off" ), entered on the direction; the switch is left to the caller
SDPLINE_INLINE SDPResult takeEcanWords(Lexer &lexer, SDPEcan &ecan) {
    std::string_view word;
    if (const SDPResult result = readWord(lexer, word, SDP_TOK_ALPHA,
                                          {Check::EcanDirection, Check::EcanDirectionText})) {
        return result;
    }
    if (const SDPResult result = classifyEcanDirection(ecan, word)) {
        return result;
    }
    lexer.take(SDP_TOK_ALPHA, SDP_LEXCTX_ALNUM);
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::EcanBlank);
    }
    if (const SDPResult result = takeWord(lexer, word, SDP_TOK_ALPHA, SDP_LEXCTX_STRING,
                                          {Check::EcanToken, Check::EcanText})) {
        return result;
    }
    return classifyEcan(ecan, word);
}

// LF
SDPLINE_INLINE SDPResult mode(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    return takeLineEnd(lexer, Check::ModeEnd);
}

// ":" 1*DIGIT LF, and for a frame rate ":" 1*DIGIT [ "." 1*DIGIT ] LF with the fraction dropped
SDPLINE_INLINE SDPResult packetization(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    if (const SDPResult result = takeNumericValue(
            lexer, attr, type, {Check::PacketColon, {Check::PacketNumber, Check::PacketText}})) {
        return result;
    }
    if (type == SDP_ATTR_FRAMERATE && lexer.take(SDP_TOK_DOT, SDP_LEXCTX_ALNUM) &&
        !lexer.take(SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM)) {
        return fail(Check::PacketFraction);
    }
    return takeLineEnd(lexer, Check::PacketEnd);
}

// ":" 1*DIGIT LF
SDPLINE_INLINE SDPResult quality(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    if (const SDPResult result = takeNumericValue(
            lexer, attr, type, {Check::QualityColon, {Check::QualityNumber, Check::QualityText}})) {
        return result;
    }
    return takeLineEnd(lexer, Check::QualityEnd);
}

// ":" 1*DIGIT LF
SDPLINE_INLINE SDPResult faxNumber(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    if (const SDPResult result = takeNumericValue(
            lexer, attr, type, {Check::FaxColon, {Check::FaxNumber, Check::FaxText}})) {
        return result;
    }
    return takeLineEnd(lexer, Check::FaxEnd);
}

// ":" ( "localTCF" / "transferredTCF" ) LF
SDPLINE_INLINE SDPResult faxRate(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return choice(
        lexer, attr, type, kT38RateWords,
        {Check::RateColon, {Check::RateToken, Check::RateText}, Check::RateWord, Check::RateEnd});
}

// ":" ( "t38UDPFEC" / "t38UDPRedundancy" ) LF
SDPLINE_INLINE SDPResult faxErrorCorrection(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return choice(lexer, attr, type, kT38UdpEcWords,
                  {Check::UdpEcColon,
                   {Check::UdpEcToken, Check::UdpEcText},
                   Check::UdpEcWord,
                   Check::UdpEcEnd});
}

// ":" ( "on" / "off" ) params LF
SDPLINE_INLINE SDPResult silence(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPSilenceSuppression &suppression = attr.unAttrValue.stSilenceSupp;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_ALNUM)) {
        return fail(Check::SilenceColon);
    }
    std::string_view word;
    if (const SDPResult result = takeWord(lexer, word, SDP_TOK_ALPHA, SDP_LEXCTX_STRING,
                                          {Check::SilenceToken, Check::SilenceText})) {
        return result;
    }
    if (const SDPResult result = classifySilence(suppression, word)) {
        return result;
    }
    return takeParams(lexer, suppression.strParams,
                      {Check::SilenceNoParams, Check::SilenceEnded, Check::SilenceTooLong,
                       Check::SilenceStore, Check::SilenceEnd});
}

// ":" ( "fb" / "f" / "b" ) SP ( "on" / "off" ) params LF
SDPLINE_INLINE SDPResult echoCancellation(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPEcan &ecan = attr.unAttrValue.stEcan;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_ALNUM)) {
        return fail(Check::EcanColon);
    }
    if (const SDPResult result = takeEcanWords(lexer, ecan)) {
        return result;
    }
    return takeParams(lexer, ecan.strParams,
                      {Check::EcanNoParams, Check::EcanEnded, Check::EcanTooLong, Check::EcanStore,
                       Check::EcanEnd});
}

// ":" 1*DIGIT SP ( "Request" / "Accepted" / "Confused" / "Rejected" ) LF
SDPLINE_INLINE SDPResult ipBearerControl(Lexer &lexer, SDPAttr &attr) {
    attr.ulAttrType = SDP_ATTR_IPBCP;
    SDPIpBcp &ipBcp = attr.unAttrValue.stIpBcp;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_ALNUM)) {
        return fail(Check::IpBcpColon);
    }
    uint32_t version = 1;
    if (const SDPResult result = takeNumber(lexer, version, SDP_LEXCTX_ALNUM,
                                            {Check::IpBcpVersion, Check::IpBcpVersionText})) {
        return result;
    }
    ipBcp.ucVersion = static_cast<uint8_t>(version);
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::IpBcpBlank);
    }
    const std::string_view word = lexer.text();
    if (word.data() == nullptr) {
        return fail(Check::IpBcpTypeText);
    }
    lexer.take(SDP_TOK_ALPHA, SDP_LEXCTX_STRING);
    if (const SDPResult result = classifyIpBcp(ipBcp, word)) {
        return result;
    }
    return takeLineEnd(lexer, Check::IpBcpEnd);
}

// ":" ( "passive" / "active" / "actpass" ) LF
SDPLINE_INLINE SDPResult setup(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    if (!lexer.takeToText(SDP_TOK_COLON)) {
        return fail(Check::SetupColon);
    }
    if (lexer.is(SDP_TOK_LF)) {
        return fail(Check::SetupEmpty);
    }
    if (lexer.inputEnds()) {
        return fail(Check::SetupEnded);
    }
    std::string_view role;
    if (!lexer.takeRestOfLine(role, SDP_MAX_VALUE)) {
        return fail(Check::SetupTooLong);
    }
    if (const SDPResult result = classifySetup(attr, role)) {
        return result;
    }
    return takeLineEnd(lexer, Check::SetupEnd);
}

} // namespace

SDPResult parseMode(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<mode>(lexer, attr, type);
}

SDPResult parsePacketization(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<packetization>(lexer, attr, type);
}

SDPResult parseQuality(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<quality>(lexer, attr, type);
}

SDPResult parseFaxNumber(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<faxNumber>(lexer, attr, type);
}

SDPResult parseFaxRate(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<faxRate>(lexer, attr, type);
}

SDPResult parseFaxErrorCorrection(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<faxErrorCorrection>(lexer, attr, type);
}

SDPResult parseSilence(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<silence>(lexer, attr, type);
}

SDPResult parseEcan(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<echoCancellation>(lexer, attr, type);
}

SDPResult parseIpBcp(Lexer &lexer, SDPAttr &attr) {
    return inRegisters<ipBearerControl>(lexer, attr);
}

SDPResult parseSetup(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<setup>(lexer, attr, type);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpModeAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseMode(lexer, *pstAttr, enType); });
}

SDPResult sdpPacketizationAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parsePacketization(lexer, *pstAttr, enType); });
}

SDPResult sdpQualityAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseQuality(lexer, *pstAttr, enType); });
}

SDPResult sdpFaxNumericAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseFaxNumber(lexer, *pstAttr, enType); });
}

SDPResult sdpFaxRateMgmtAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseFaxRate(lexer, *pstAttr, enType); });
}

SDPResult sdpFaxUdpEC(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseFaxErrorCorrection(lexer, *pstAttr, enType); });
}

SDPResult sdpSilenceSuppression(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseSilence(lexer, *pstAttr, enType); });
}

SDPResult sdpEchoCacellation(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseEcan(lexer, *pstAttr, enType); });
}

SDPResult sdpIpBcpAttr(SDPAttr *pstAttr) {
    return onState([=](Lexer &lexer) { return parseIpBcp(lexer, *pstAttr); });
}

SDPResult sdpT120Attr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseSetup(lexer, *pstAttr, enType); });
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

} // extern "C"
