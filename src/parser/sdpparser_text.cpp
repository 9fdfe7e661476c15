// The lines of numbers and free text: v= o= s= i= u= k= z=, and the repeatable e= p= b=.
#include "parser/sdpparser.hpp"

namespace sdpline {

namespace {

struct StoreChecks {
    WordChecks word;
    Check store;
};

// A token of the kind, stored; then the next one under `context`.
SDPResult storeToken(SipString &value, uint32_t kind, uint32_t context, StoreChecks checks,
                     uint32_t line = __builtin_LINE()) {
    std::string_view text;
    if (const SDPResult result = readWord(text, kind, checks.word)) {
        return result;
    }
    if (storeText(value, text) != 0) {
        return fail(checks.store, 0, line);
    }
    lexer::take(kind, context);
    return 0;
}

// user SP session-id SP session-version
SDPResult originNames(SDPOrigin &origin) {
    if (const SDPResult result =
            storeToken(origin.strUserName, SDP_TOK_STRING, SDP_LEXCTX_STRING,
                       {{Check::OriginUser, Check::OriginUserText}, Check::OriginUserStore})) {
        return result;
    }
    if (!lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::OriginUserBlank);
    }
    if (const SDPResult result =
            storeToken(origin.strSessionId, SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM,
                       {{Check::OriginId, Check::OriginIdText}, Check::OriginIdStore})) {
        return result;
    }
    if (!lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::OriginIdBlank);
    }
    return storeToken(
        origin.strSessionVersion, SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM,
        {{Check::OriginVersion, Check::OriginVersionText}, Check::OriginVersionStore});
}

// SP "IN" SP ( "IP4" / "IP6" ) SP
SDPResult originTypes(SDPOrigin &origin) {
    if (!lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_SDP)) {
        return fail(Check::OriginVersionBlank);
    }
    if (!lexer::at(SDP_TOK_IN)) {
        return fail(Check::OriginNetType);
    }
    origin.stNetType.enNetType = SDP_NETTYPE_IN;
    origin.stNetType.pstrOtherNetType = nullptr;
    lexer::take(SDP_TOK_IN, SDP_LEXCTX_SDP);
    if (!lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_SDP)) {
        return fail(Check::OriginNetTypeBlank);
    }
    if (!lexer::at(SDP_TOK_IP4) && !lexer::at(SDP_TOK_IP6)) {
        return fail(Check::OriginAddrType);
    }
    origin.stAddrType.enAddrType = lexer::at(SDP_TOK_IP4) ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6;
    origin.stAddrType.pstrOtherAddrType = nullptr;
    lexer::take(lexer::kind(), SDP_LEXCTX_SDP);
    return lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_STRING) ? 0 : fail(Check::OriginAddrTypeBlank);
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// v= 1*DIGIT LF
SDPResult sdpProtoVersion(SdpLine *pstLine) {
    lexer::take(SDP_TOK_VERSION, SDP_LEXCTX_ALNUM);
    if (const SDPResult result = takeNumber(pstLine->ulProtoVersion, SDP_LEXCTX_ALNUM,
                                            {Check::VersionDigits, Check::VersionText})) {
        return result;
    }
    return takeLineEnd(Check::VersionEnd);
}

// o= user SP session-id SP session-version SP "IN" SP ( "IP4" / "IP6" ) SP address LF
SDPResult sdpOriginField(SDPOrigin *pstOrigin) {
    if (!lexer::take(SDP_TOK_ORIGIN, SDP_LEXCTX_STRING)) {
        return fail(Check::OriginLine);
    }
    if (const SDPResult result = originNames(*pstOrigin)) {
        return result;
    }
    if (const SDPResult result = originTypes(*pstOrigin)) {
        return result;
    }
    if (const SDPResult result = storeToken(
            pstOrigin->strAddress, SDP_TOK_STRING, SDP_LEXCTX_STRING,
            {{Check::OriginAddress, Check::OriginAddressText}, Check::OriginAddressStore})) {
        return result;
    }
    return takeLineEnd(Check::OriginEnd);
}

// <key>= 1*1023<any byte but LF> LF
SDPResult sdpStringField(uint32_t enKind, SipString *pstValue) {
    if (!lexer::take(enKind, SDP_LEXCTX_STRING)) {
        return fail(Check::TextLine);
    }
    if (lexer::at(SDP_TOK_LF)) {
        return fail(Check::TextEmpty);
    }
    if (lexer::inputEnds()) {
        return fail(Check::TextEnded);
    }
    std::string_view value;
    if (!lexer::takeRestOfLine(value, SDP_MAX_VALUE)) {
        return fail(Check::TextTooLong);
    }
    if (const SDPResult result = storeText(*pstValue, value)) {
        return result;
    }
    return takeLineEnd(Check::TextEnd);
}

// 1*( <key>= value LF )
SDPResult sdpStringListFields(uint32_t enKind, SipString ***pppstStrings, uint32_t *pulCount) {
    constexpr ListChecks checks = {Check::TextListAlloc, Check::TextListItemAlloc,
                                   Check::TextListGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SipString>(
            count, checks, [&](SipString **strings) { *pppstStrings = strings; },
            [&](SipString *text) { return sdpStringField(enKind, text); },
            [&] { return lexer::at(enKind); })) {
        return result;
    }
    *pulCount = count;
    return 0;
}

} // extern "C"
