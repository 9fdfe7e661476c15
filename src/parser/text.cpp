// The lines of numbers and free text: v= o= s= i= u= k= z=, and the repeatable e= p= b=.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

struct StoreChecks {
    WordChecks word;
    Check store;
};

// A token of the kind, stored; then the next one under `context`.
SDPLINE_INLINE SDPResult storeToken(Lexer &lexer, SipString &value, uint32_t kind, uint32_t context,
                                    StoreChecks checks, uint32_t line = __builtin_LINE()) {
    std::string_view text;
    if (const SDPResult result = readWord(lexer, text, kind, checks.word)) {
        return result;
    }
    if (storeText(value, text) != 0) {
        return fail(checks.store, 0, line);
    }
    lexer.take(kind, context);
    return 0;
}

// user SP session-id SP session-version
SDPLINE_INLINE SDPResult originNames(Lexer &lexer, SDPOrigin &origin) {
    if (const SDPResult result =
            storeToken(lexer, origin.strUserName, SDP_TOK_STRING, SDP_LEXCTX_STRING,
                       {{Check::OriginUser, Check::OriginUserText}, Check::OriginUserStore})) {
        return result;
    }
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::OriginUserBlank);
    }
    if (const SDPResult result =
            storeToken(lexer, origin.strSessionId, SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM,
                       {{Check::OriginId, Check::OriginIdText}, Check::OriginIdStore})) {
        return result;
    }
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::OriginIdBlank);
    }
    return storeToken(
        lexer, origin.strSessionVersion, SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM,
        {{Check::OriginVersion, Check::OriginVersionText}, Check::OriginVersionStore});
}

// SP "IN" SP ( "IP4" / "IP6" ) SP
SDPLINE_INLINE SDPResult originTypes(Lexer &lexer, SDPOrigin &origin) {
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_SDP)) {
        return fail(Check::OriginVersionBlank);
    }
    if (!lexer.is(SDP_TOK_IN)) {
        return fail(Check::OriginNetType);
    }
    origin.stNetType.enNetType = SDP_NETTYPE_IN;
    origin.stNetType.pstrOtherNetType = nullptr;
    lexer.take(SDP_TOK_IN, SDP_LEXCTX_SDP);
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_SDP)) {
        return fail(Check::OriginNetTypeBlank);
    }
    if (!lexer.is(SDP_TOK_IP4) && !lexer.is(SDP_TOK_IP6)) {
        return fail(Check::OriginAddrType);
    }
    origin.stAddrType.enAddrType = lexer.is(SDP_TOK_IP4) ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6;
    origin.stAddrType.pstrOtherAddrType = nullptr;
    lexer.take(lexer.kind, SDP_LEXCTX_SDP);
    return lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_STRING) ? 0 : fail(Check::OriginAddrTypeBlank);
}

// v= 1*DIGIT LF
SDPLINE_INLINE SDPResult versionField(Lexer &lexer, uint32_t &version) {
    lexer.take(SDP_TOK_VERSION, SDP_LEXCTX_ALNUM);
    if (const SDPResult result = takeNumber(lexer, version, SDP_LEXCTX_ALNUM,
                                            {Check::VersionDigits, Check::VersionText})) {
        return result;
    }
    return takeLineEnd(lexer, Check::VersionEnd);
}

// o= user SP session-id SP session-version SP "IN" SP ( "IP4" / "IP6" ) SP address LF
SDPLINE_INLINE SDPResult originField(Lexer &lexer, SDPOrigin &origin) {
    if (!lexer.take(SDP_TOK_ORIGIN, SDP_LEXCTX_STRING)) {
        return fail(Check::OriginLine);
    }
    if (const SDPResult result = originNames(lexer, origin)) {
        return result;
    }
    if (const SDPResult result = originTypes(lexer, origin)) {
        return result;
    }
    if (const SDPResult result = storeToken(
            lexer, origin.strAddress, SDP_TOK_STRING, SDP_LEXCTX_STRING,
            {{Check::OriginAddress, Check::OriginAddressText}, Check::OriginAddressStore})) {
        return result;
    }
    return takeLineEnd(lexer, Check::OriginEnd);
}

// <key>= 1*1023<any byte but LF> LF
SDPLINE_INLINE SDPResult textField(Lexer &lexer, uint32_t kind, SipString &text) {
    if (!lexer.takeToText(kind)) {
        return fail(Check::TextLine);
    }
    if (lexer.is(SDP_TOK_LF)) {
        return fail(Check::TextEmpty);
    }
    if (lexer.inputEnds()) {
        return fail(Check::TextEnded);
    }
    std::string_view value;
    if (!lexer.takeRestOfLine(value, SDP_MAX_VALUE)) {
        return fail(Check::TextTooLong);
    }
    if (const SDPResult result = storeText(text, value)) {
        return result;
    }
    return takeLineEnd(lexer, Check::TextEnd);
}

} // namespace

SDPResult parseVersion(Lexer &lexer, uint32_t &version) {
    return inRegisters<versionField>(lexer, version);
}

SDPResult parseOrigin(Lexer &lexer, SDPOrigin &origin) {
    return inRegisters<originField>(lexer, origin);
}

SDPResult parseText(Lexer &lexer, uint32_t kind, SipString &text) {
    return inRegisters<textField>(lexer, kind, text);
}

// 1*( <key>= value LF )
SDPResult parseTextList(Lexer &lexer, uint32_t kind, SDPStringList &list) {
    constexpr ListChecks checks = {Check::TextListAlloc, Check::TextListItemAlloc,
                                   Check::TextListGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SipString>(
            lexer, count, checks, [&](SipString **strings) { list.ppstStrings = strings; },
            [kind](Lexer &at, SipString &text) { return parseText(at, kind, text); },
            [kind](const Lexer &at) { return at.is(kind); })) {
        return result;
    }
    list.ulNoOfStrings = count;
    return 0;
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpProtoVersion(SdpLine *pstLine) {
    return onState([=](Lexer &lexer) { return parseVersion(lexer, pstLine->ulProtoVersion); });
}

SDPResult sdpOriginField(SDPOrigin *pstOrigin) {
    return onState([=](Lexer &lexer) { return parseOrigin(lexer, *pstOrigin); });
}

SDPResult sdpStringField(uint32_t enKind, SipString *pstValue) {
    return onState([=](Lexer &lexer) { return parseText(lexer, enKind, *pstValue); });
}

SDPResult sdpStringListFields(uint32_t enKind, SipString ***pppstStrings, uint32_t *pulCount) {
    SDPStringList list = {*pulCount, *pppstStrings};
    const SDPResult result =
        onState([&](Lexer &lexer) { return parseTextList(lexer, enKind, list); });
    *pppstStrings = list.ppstStrings;
    *pulCount = list.ulNoOfStrings;
    return result;
}

} // extern "C"
