// The a= lines: the list, the name, and the dispatch on it; text values and attributes that the
// table of names does not know.
#include "tables/attributes.hpp"
#include "parser/parser.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kWorkSize = SDP_MAX_VALUE + 1;

// A T.38 flag: ":" and a number, or nothing, which says yes.
SDPLINE_INLINE SDPResult parseFaxFlag(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    if (lexer.is(SDP_TOK_COLON)) {
        return parseFaxNumber(lexer, attr, type);
    }
    attr.ulAttrType = type;
    attr.unAttrValue.ulValue = 1;
    return takeLineEnd(lexer, Check::AttrFlagEnd);
}

struct NameChecks {
    Check alloc;
    Check store;
};

SDPResult keepName(SDPAttr &attr, std::string_view name, NameChecks checks) {
    auto *const text = allocate<SipString>(row(checks.alloc).function);
    attr.pstAttrName = text;
    if (text == nullptr) {
        return fail(checks.alloc);
    }
    return storeText(*text, name) == 0 ? 0 : fail(checks.store);
}

SDPResult keepFlag(SDPAttr &attr, std::string_view name) {
    attr.ulAttrType = SDP_ATTR_UNREC_NOVALUE;
    return keepName(attr, name, {Check::UnrecFlagNameAlloc, Check::UnrecFlagNameStore});
}

// ":" value, entered on the colon; the value is at most `limit` bytes
SDPLINE_INLINE SDPResult keepValue(Lexer &lexer, SDPAttr &attr, std::string_view name,
                                   uint32_t limit, std::string_view &value) {
    lexer.takeToText(SDP_TOK_COLON);
    if (lexer.is(SDP_TOK_LF)) {
        return fail(Check::UnrecEmpty);
    }
    if (const SDPResult result =
            keepName(attr, name, {Check::UnrecNameAlloc, Check::UnrecNameStore})) {
        lexer.closeText();
        return result;
    }
    if (lexer.inputEnds()) {
        return fail(Check::UnrecEnded);
    }
    if (!lexer.takeRestOfLine(value, limit)) {
        return fail(Check::UnrecTooLong);
    }
    return storeText(attr.unAttrValue.strValue, value) == 0 ? 0 : fail(Check::UnrecStore);
}

// [ ":" value ] LF
SDPLINE_INLINE SDPResult keepUnrecognised(Lexer &lexer, SDPAttr &attr, std::string_view name) {
    attr.ulAttrType = SDP_ATTR_UNREC_VALUE;
    lexer.context = SDP_LEXCTX_STRING;
    std::string_view value;
    if (const SDPResult result = lexer.is(SDP_TOK_COLON)
                                     ? keepValue(lexer, attr, name, SDP_MAX_VALUE, value)
                                     : keepFlag(attr, name)) {
        return result;
    }
    return takeLineEnd(lexer, Check::UnrecEnd);
}

// The words that are known in any letter case, by type.
SDPLINE_INLINE SDPResult parseModeWord(Lexer &lexer, SDPAttr &attr, std::string_view name) {
    constexpr Word modes[] = {
        {"fax", SDP_ATTR_FAX},
        {"modem", SDP_ATTR_MODEM},
        {"X-fax", SDP_ATTR_X_FAX},
        {"X-modem", SDP_ATTR_X_MODEM},
    };
    for (const Word &mode : modes) {
        if (equalIgnoringCase(mode.text, name)) {
            return parseMode(lexer, attr, mode.code);
        }
    }
    return keepUnrecognised(lexer, attr, name);
}

// ":" 1*1023<any byte but LF> LF
SDPLINE_INLINE SDPResult otherValue(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    if (!lexer.takeToText(SDP_TOK_COLON)) {
        return fail(Check::ValueColon);
    }
    if (lexer.is(SDP_TOK_LF)) {
        return fail(Check::ValueEmpty);
    }
    if (lexer.inputEnds()) {
        return fail(Check::ValueEnded);
    }
    std::string_view value;
    if (!lexer.takeRestOfLine(value, SDP_MAX_VALUE)) {
        return fail(Check::ValueTooLong);
    }
    if (storeText(attr.unAttrValue.strValue, value) != 0) {
        return fail(Check::ValueStore);
    }
    return takeLineEnd(lexer, Check::ValueEnd);
}

SDPResult parseOtherValue(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<otherValue>(lexer, attr, type);
}

SDPLINE_INLINE SDPResult parseValue(Lexer &lexer, SDPAttr &attr, std::string_view name,
                                    uint32_t type) {
    switch (type) {
    case SDP_ATTR_RTPMAP: return parseRtpmap(lexer, attr, type);
    case SDP_ATTR_SENDRECV:
    case SDP_ATTR_SENDONLY:
    case SDP_ATTR_RECVONLY:
    case SDP_ATTR_INACTIVE:
    case SDP_ATTR_FAX:
    case SDP_ATTR_MODEM:
    case SDP_ATTR_X_FAX:
    case SDP_ATTR_X_MODEM: return parseMode(lexer, attr, type);
    case SDP_ATTR_PTIME:
    case SDP_ATTR_MAXPTIME:
    case SDP_ATTR_FRAMERATE: return parsePacketization(lexer, attr, type);
    case SDP_ATTR_FMTP:
    case SDP_ATTR_CAT:
    case SDP_ATTR_KEYWDS:
    case SDP_ATTR_TOOL:
    case SDP_ATTR_ORIENT:
    case SDP_ATTR_TYPE:
    case SDP_ATTR_CHARSET:
    case SDP_ATTR_SDPLANG:
    case SDP_ATTR_LANG: return parseOtherValue(lexer, attr, type);
    case SDP_ATTR_QUALITY: return parseQuality(lexer, attr, type);
    case SDP_ATTR_T38_FAX_VERSION:
    case SDP_ATTR_T38_MAX_BIT_RATE:
    case SDP_ATTR_T38_MAX_BUFFER:
    case SDP_ATTR_T38_MAX_DATAGRAM: return parseFaxNumber(lexer, attr, type);
    case SDP_ATTR_T38_FILL_BIT_REMOVAL:
    case SDP_ATTR_T38_TRANSCODING_MMR:
    case SDP_ATTR_T38_TRANSCODING_JBIG: return parseFaxFlag(lexer, attr, type);
    case SDP_ATTR_T38_RATE_MANAGEMENT: return parseFaxRate(lexer, attr, type);
    case SDP_ATTR_T38_UDP_EC: return parseFaxErrorCorrection(lexer, attr, type);
    case SDP_ATTR_SILENCE_SUPP: return parseSilence(lexer, attr, type);
    case SDP_ATTR_ECAN: return parseEcan(lexer, attr, type);
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF: return parseResourceStatus(lexer, attr, type);
    case SDP_ATTR_IPBCP: return parseIpBcp(lexer, attr);
    case SDP_ATTR_SETUP: return parseSetup(lexer, attr, type);
    default: return parseModeWord(lexer, attr, name);
    }
}

// a= name
SDPLINE_INLINE SDPResult attributeName(Lexer &lexer, std::string_view &name) {
    if (!lexer.take(SDP_TOK_ATTRIBUTE, SDP_LEXCTX_TOKEN)) {
        return fail(Check::AttrLine);
    }
    return takeWord(lexer, name, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN,
                    {Check::AttrName, Check::AttrNameText});
}

// a= name [ ":" value ] LF
SDPLINE_INLINE SDPResult attributeField(Lexer &lexer, SDPAttr &attr) {
    std::string_view name;
    if (const SDPResult result = attributeName(lexer, name)) {
        return result;
    }
    return parseValue(lexer, attr, name, attributeType(name));
}

// 1*attribute-field
SDPLINE_INLINE SDPResult attributeFields(Lexer &lexer, SDPAttrList &list) {
    constexpr ListChecks checks = {Check::AttrArrayAlloc, Check::AttrAlloc, Check::AttrGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPAttr>(
            lexer, count, checks, [&](SDPAttr **attrs) { list.ppstAttrs = attrs; }, attributeField,
            [](const Lexer &at) { return at.is(SDP_TOK_ATTRIBUTE); })) {
        return result;
    }
    list.ulNoOfAttrs = count;
    return 0;
}

SDPResult parseAttribute(Lexer &lexer, SDPAttr &attr) {
    return inRegisters<attributeField>(lexer, attr);
}

} // namespace

// Most of a body is attributes: the parsers of their values are inlined here.
[[gnu::flatten]] SDPResult parseAttributes(Lexer &lexer, SDPAttrList &list) {
    return inRegisters<attributeFields>(lexer, list);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpAttributeFields(SDPAttrList *pstList) {
    return onState([=](Lexer &lexer) { return parseAttributes(lexer, *pstList); });
}

SDPResult sdpAttributeField(SDPAttr *pstAttr) {
    return onState([=](Lexer &lexer) { return parseAttribute(lexer, *pstAttr); });
}

SDPResult sdpAttributeFieldType(SDPAttr *pstAttr, const char *pcName, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseValue(lexer, *pstAttr, pcName, enType); });
}

SDPResult sdpAttributeFieldDataSink(SDPAttr *pstAttr, const char *pcName) {
    return onState([=](Lexer &lexer) { return parseModeWord(lexer, *pstAttr, pcName); });
}

SDPResult sdpOtherRecAttr(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseOtherValue(lexer, *pstAttr, enType); });
}

SDPResult sdpUnRecAttr(const char *pcName, SDPAttr *pstAttr) {
    return onState([=](Lexer &lexer) { return keepUnrecognised(lexer, *pstAttr, pcName); });
}

SDPResult sdpUnRecAttrTypeExtn(const char *pcName, SDPAttr *pstAttr, char *pcBuffer,
                               uint32_t ulSize) {
    std::string_view value;
    const uint32_t room = ulSize < kWorkSize ? ulSize : kWorkSize;
    const SDPResult result = onState([&](Lexer &lexer) {
        return keepValue(lexer, *pstAttr, pcName, room == 0 ? 0 : room - 1, value);
    });
    if (result == 0 && room != 0) {
        pcBuffer[value.copy(pcBuffer, room - 1)] = '\0';
    }
    return result;
}

SDPResult sdpUnRecAttrTypeNoVal(const char *pcName, SDPAttr *pstAttr) {
    return keepFlag(*pstAttr, pcName);
}

} // extern "C"
