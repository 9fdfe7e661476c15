// The values of the media-control attributes: flags, packet times, quality, T.38, silence
// suppression, echo cancellation, IP bearer control and the T.120 setup role.
#include "parser/attributes.hpp"

namespace sdpline {

namespace {

struct NumericChecks {
    Check colon;
    WordChecks number;
};

// ":" 1*DIGIT
SDPLINE_INLINE bool numericValue(Parser auto &p, SDPAttr &attr, uint32_t type, NumericChecks checks,
                                 uint32_t line = __builtin_LINE()) {
    attr.ulAttrType = type;
    return p.expect(SDP_TOK_COLON, Context::Alnum, checks.colon, line) &&
           p.number(attr.unAttrValue.ulValue, checks.number, line);
}

struct ChoiceChecks {
    Check colon;
    WordChecks word;
    Check unknown;
    Check end;
};

// ":" token LF, where the token is one of the table's words
template <const auto &Table>
SDPLINE_INLINE bool choice(Parser auto &p, SDPAttr &attr, uint32_t type, ChoiceChecks checks,
                           uint32_t line = __builtin_LINE()) {
    attr.ulAttrType = type;
    std::string_view word;
    return p.expect(SDP_TOK_COLON, Context::Token, checks.colon, line) &&
           p.read(word, SDP_TOK_TOKEN, checks.word, line) && p.nextAfterRun(Context::Token) &&
           p.accept(classify<Table>(attr.unAttrValue.ulValue, word, checks.unknown, line)) &&
           p.endLine(checks.end, line);
}

struct ParamsChecks {
    Check missing;
    Check ended;
    Check tooLong;
    Check store;
    Check end;
};

// 1*1023<any byte but LF> LF, stored with its leading space
SDPLINE_INLINE bool params(Parser auto &p, SipString &value, ParamsChecks checks,
                           uint32_t line = __builtin_LINE()) {
    if (p.is(SDP_TOK_LF)) {
        return p.refuse(checks.missing, 0, line);
    }
    if (p.inputEnds()) {
        return p.refuse(checks.ended, 0, line);
    }
    std::string_view text;
    if (!p.takeRestOfLine(text, SDP_MAX_VALUE)) {
        return p.refuse(checks.tooLong, 0, line);
    }
    return store(p, value, text, checks.store, line) && p.endLine(checks.end, line);
}

} // namespace

SDPResult classifySilence(SDPSilenceSuppression &silence, std::string_view word) {
    return classify<kSwitchWords>(silence.bOn, word, Check::SilenceWord);
}

SDPResult classifyEcanDirection(SDPEcan &ecan, std::string_view word) {
    return classify<kEcanDirWords>(ecan.enEcanDir, word, Check::EcanDirectionWord);
}

SDPResult classifyEcan(SDPEcan &ecan, std::string_view word) {
    return classify<kSwitchWords>(ecan.bOn, word, Check::EcanWord);
}

SDPResult classifyIpBcp(SDPIpBcp &ipBcp, std::string_view word) {
    return classify<kIpBcpWords>(ipBcp.ucType, word, Check::IpBcpType);
}

SDPResult classifySetup(SDPAttr &attr, std::string_view word) {
    return classify<kSetupWords>(attr.unAttrValue.enT120Mode, word, Check::SetupWord);
}

// LF
bool parseFlag(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    return p.endLine(Check::ModeEnd);
}

// ":" 1*DIGIT LF; for a frame rate ":" 1*DIGIT [ "." 1*DIGIT ] LF, of which the fraction is dropped
bool parsePacketNumber(Parser auto &p, SDPAttr &attr, uint32_t type) {
    if (!numericValue(p, attr, type,
                      {Check::PacketColon, {Check::PacketNumber, Check::PacketText}})) {
        return false;
    }
    if (shapeOf(type) == Shape::Decimal && p.take(SDP_TOK_DOT, Context::Alnum) &&
        !p.expect(SDP_TOK_DIGIT, Context::Alnum, Check::PacketFraction)) {
        return false;
    }
    return p.endLine(Check::PacketEnd);
}

// ":" 1*DIGIT LF
bool parseQuality(Parser auto &p, SDPAttr &attr, uint32_t type) {
    return numericValue(p, attr, type,
                        {Check::QualityColon, {Check::QualityNumber, Check::QualityText}}) &&
           p.endLine(Check::QualityEnd);
}

// ":" 1*DIGIT LF
bool parseFaxNumber(Parser auto &p, SDPAttr &attr, uint32_t type) {
    return numericValue(p, attr, type, {Check::FaxColon, {Check::FaxNumber, Check::FaxText}}) &&
           p.endLine(Check::FaxEnd);
}

// [ ":" 1*DIGIT ] LF. Without a number the value is 1.
bool parseSwitch(Parser auto &p, SDPAttr &attr, uint32_t type) {
    if (p.is(SDP_TOK_COLON)) {
        return parseFaxNumber(p, attr, type);
    }
    attr.ulAttrType = type;
    attr.unAttrValue.ulValue = 1;
    return p.endLine(Check::AttrFlagEnd);
}

// ":" ( "localTCF" / "transferredTCF" ) LF
bool parseFaxRate(Parser auto &p, SDPAttr &attr, uint32_t type) {
    return choice<kT38RateWords>(
        p, attr, type,
        {Check::RateColon, {Check::RateToken, Check::RateText}, Check::RateWord, Check::RateEnd});
}

// ":" ( "t38UDPFEC" / "t38UDPRedundancy" ) LF
bool parseFaxErrorCorrection(Parser auto &p, SDPAttr &attr, uint32_t type) {
    return choice<kT38UdpEcWords>(p, attr, type,
                                  {Check::UdpEcColon,
                                   {Check::UdpEcToken, Check::UdpEcText},
                                   Check::UdpEcWord,
                                   Check::UdpEcEnd});
}

// ":" token LF, where the token is one of the words of the type's row. All attributes of this kind
// that have no production of their own fail the checks of T38FaxRateManagement.
bool parseKeyword(StateParser &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    std::string_view word;
    if (!p.expect(SDP_TOK_COLON, Context::Token, Check::RateColon) ||
        !p.read(word, SDP_TOK_TOKEN, {Check::RateToken, Check::RateText})) {
        return false;
    }
    const KeywordRow *const row = findByText(attributeRow(type).words, word);
    p.next(Context::Token);
    if (row == nullptr) {
        return p.accept(failWord(Check::RateWord, word.data()));
    }
    attr.unAttrValue.ulValue = row->code;
    return p.endLine(Check::RateEnd);
}

// ":" ( "on" / "off" ) params LF
bool parseSilenceSupp(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPSilenceSuppression &silence = attr.unAttrValue.stSilenceSupp;
    std::string_view word;
    return p.expect(SDP_TOK_COLON, Context::Alnum, Check::SilenceColon) &&
           p.read(word, SDP_TOK_ALPHA, {Check::SilenceToken, Check::SilenceText}) &&
           p.next(Context::String) && p.accept(classifySilence(silence, word)) &&
           params(p, silence.strParams,
                  {Check::SilenceNoParams, Check::SilenceEnded, Check::SilenceTooLong,
                   Check::SilenceStore, Check::SilenceEnd});
}

// ":" ( "fb" / "f" / "b" ) SP ( "on" / "off" ) params LF
bool parseEcan(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    SDPEcan &ecan = attr.unAttrValue.stEcan;
    std::string_view word;
    return p.expect(SDP_TOK_COLON, Context::Alnum, Check::EcanColon) &&
           p.read(word, SDP_TOK_ALPHA, {Check::EcanDirection, Check::EcanDirectionText}) &&
           p.accept(classifyEcanDirection(ecan, word)) && p.next(Context::Alnum) &&
           p.expect(SDP_TOK_SPACE, Context::Alnum, Check::EcanSpace) &&
           p.read(word, SDP_TOK_ALPHA, {Check::EcanToken, Check::EcanText}) &&
           p.next(Context::String) && p.accept(classifyEcan(ecan, word)) &&
           params(p, ecan.strParams,
                  {Check::EcanNoParams, Check::EcanEnded, Check::EcanTooLong, Check::EcanStore,
                   Check::EcanEnd});
}

// ":" 1*DIGIT SP ( "Request" / "Accepted" / "Confused" / "Rejected" ) LF
bool parseIpBcp(Parser auto &p, SDPAttr &attr) {
    attr.ulAttrType = SDP_ATTR_IPBCP;
    SDPIpBcp &ipBcp = attr.unAttrValue.stIpBcp;
    uint32_t version = 1;
    if (!p.expect(SDP_TOK_COLON, Context::Alnum, Check::IpBcpColon) ||
        !p.number(version, {Check::IpBcpVersion, Check::IpBcpVersionText})) {
        return false;
    }
    ipBcp.ucVersion = static_cast<uint8_t>(version);
    if (!p.expect(SDP_TOK_SPACE, Context::Alnum, Check::IpBcpSpace)) {
        return false;
    }
    const std::string_view word = p.text();
    if (word.data() == nullptr) {
        return p.refuse(Check::IpBcpTypeText);
    }
    p.take(SDP_TOK_ALPHA, Context::String);
    return p.accept(classifyIpBcp(ipBcp, word)) && p.endLine(Check::IpBcpEnd);
}

// ":" ( "passive" / "active" / "actpass" ) LF
bool parseSetup(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    if (!p.takeToText(SDP_TOK_COLON)) {
        return p.refuse(Check::SetupColon);
    }
    if (p.is(SDP_TOK_LF)) {
        return p.refuse(Check::SetupEmpty);
    }
    if (p.inputEnds()) {
        return p.refuse(Check::SetupEnded);
    }
    std::string_view role;
    if (!p.takeRestOfLine(role, SDP_MAX_VALUE)) {
        return p.refuse(Check::SetupTooLong);
    }
    return p.accept(classifySetup(attr, role)) && p.endLine(Check::SetupEnd);
}

template bool parseFlag(BodyParser &, SDPAttr &, uint32_t);
template bool parseFlag(StateParser &, SDPAttr &, uint32_t);
template bool parsePacketNumber(BodyParser &, SDPAttr &, uint32_t);
template bool parsePacketNumber(StateParser &, SDPAttr &, uint32_t);
template bool parseQuality(StateParser &, SDPAttr &, uint32_t);
template bool parseFaxNumber(BodyParser &, SDPAttr &, uint32_t);
template bool parseFaxNumber(StateParser &, SDPAttr &, uint32_t);
template bool parseSwitch(StateParser &, SDPAttr &, uint32_t);
template bool parseFaxRate(BodyParser &, SDPAttr &, uint32_t);
template bool parseFaxRate(StateParser &, SDPAttr &, uint32_t);
template bool parseFaxErrorCorrection(BodyParser &, SDPAttr &, uint32_t);
template bool parseFaxErrorCorrection(StateParser &, SDPAttr &, uint32_t);
template bool parseSilenceSupp(StateParser &, SDPAttr &, uint32_t);
template bool parseEcan(StateParser &, SDPAttr &, uint32_t);
template bool parseIpBcp(StateParser &, SDPAttr &);
template bool parseSetup(BodyParser &, SDPAttr &, uint32_t);
template bool parseSetup(StateParser &, SDPAttr &, uint32_t);

} // namespace sdpline
