// The a= lines: the list, the name, and the dispatch on it; text values and attributes that the
// table of names does not know.
#include "parser/sdpattributes.hpp"
#include "parser/sdpparser.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kWorkSize = SDP_MAX_VALUE + 1;

// A T.38 flag: ":" and a number, or nothing, which says yes.
SDPResult parseFaxFlag(SDPAttr &attr, uint32_t type) {
    if (lexer::at(SDP_TOK_COLON)) {
        return sdpFaxNumericAttr(&attr, type);
    }
    attr.ulAttrType = type;
    attr.unAttrValue.ulValue = 1;
    return takeLineEnd(Check::AttrFlagEnd);
}

// The words that are known in any letter case, by type.
SDPResult parseModeWord(SDPAttr &attr, std::string_view name) {
    constexpr Word modes[] = {
        {"fax", SDP_ATTR_FAX},
        {"modem", SDP_ATTR_MODEM},
        {"X-fax", SDP_ATTR_X_FAX},
        {"X-modem", SDP_ATTR_X_MODEM},
    };
    for (const Word &mode : modes) {
        if (equalIgnoringCase(mode.text, name)) {
            return sdpModeAttr(&attr, mode.code);
        }
    }
    return keepUnrecognised(attr, name);
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
SDPResult keepValue(SDPAttr &attr, std::string_view name, uint32_t limit, std::string_view &value) {
    lexer::take(SDP_TOK_COLON, SDP_LEXCTX_STRING);
    if (lexer::at(SDP_TOK_LF)) {
        return fail(Check::UnrecEmpty);
    }
    if (const SDPResult result =
            keepName(attr, name, {Check::UnrecNameAlloc, Check::UnrecNameStore})) {
        return result;
    }
    if (lexer::inputEnds()) {
        return fail(Check::UnrecEnded);
    }
    if (!lexer::takeRestOfLine(value, limit)) {
        return fail(Check::UnrecTooLong);
    }
    return storeText(attr.unAttrValue.strValue, value) == 0 ? 0 : fail(Check::UnrecStore);
}

} // namespace

SDPResult parseAttributeValue(SDPAttr &attr, std::string_view name, uint32_t type) {
    switch (type) {
    case SDP_ATTR_RTPMAP: return sdpRtpmapAttr(&attr, type);
    case SDP_ATTR_SENDRECV:
    case SDP_ATTR_SENDONLY:
    case SDP_ATTR_RECVONLY:
    case SDP_ATTR_INACTIVE:
    case SDP_ATTR_FAX:
    case SDP_ATTR_MODEM:
    case SDP_ATTR_X_FAX:
    case SDP_ATTR_X_MODEM: return sdpModeAttr(&attr, type);
    case SDP_ATTR_PTIME:
    case SDP_ATTR_MAXPTIME:
    case SDP_ATTR_FRAMERATE: return sdpPacketizationAttr(&attr, type);
    case SDP_ATTR_FMTP:
    case SDP_ATTR_CAT:
    case SDP_ATTR_KEYWDS:
    case SDP_ATTR_TOOL:
    case SDP_ATTR_ORIENT:
    case SDP_ATTR_TYPE:
    case SDP_ATTR_CHARSET:
    case SDP_ATTR_SDPLANG:
    case SDP_ATTR_LANG: return sdpOtherRecAttr(&attr, type);
    case SDP_ATTR_QUALITY: return sdpQualityAttr(&attr, type);
    case SDP_ATTR_T38_FAX_VERSION:
    case SDP_ATTR_T38_MAX_BIT_RATE:
    case SDP_ATTR_T38_MAX_BUFFER:
    case SDP_ATTR_T38_MAX_DATAGRAM: return sdpFaxNumericAttr(&attr, type);
    case SDP_ATTR_T38_FILL_BIT_REMOVAL:
    case SDP_ATTR_T38_TRANSCODING_MMR:
    case SDP_ATTR_T38_TRANSCODING_JBIG: return parseFaxFlag(attr, type);
    case SDP_ATTR_T38_RATE_MANAGEMENT: return sdpFaxRateMgmtAttr(&attr, type);
    case SDP_ATTR_T38_UDP_EC: return sdpFaxUdpEC(&attr, type);
    case SDP_ATTR_SILENCE_SUPP: return sdpSilenceSuppression(&attr, type);
    case SDP_ATTR_ECAN: return sdpEchoCacellation(&attr, type);
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF: return sdpResourceStatus(&attr, type);
    case SDP_ATTR_IPBCP: return sdpIpBcpAttr(&attr);
    case SDP_ATTR_SETUP: return sdpT120Attr(&attr, type);
    default: return parseModeWord(attr, name);
    }
}

// [ ":" value ] LF
SDPResult keepUnrecognised(SDPAttr &attr, std::string_view name) {
    attr.ulAttrType = SDP_ATTR_UNREC_VALUE;
    lexer::switchTo(SDP_LEXCTX_STRING);
    std::string_view value;
    if (const SDPResult result = lexer::at(SDP_TOK_COLON)
                                     ? keepValue(attr, name, SDP_MAX_VALUE, value)
                                     : keepFlag(attr, name)) {
        return result;
    }
    return takeLineEnd(Check::UnrecEnd);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

// 1*attribute-field
SDPResult sdpAttributeFields(SDPAttrList *pstList) {
    constexpr ListChecks checks = {Check::AttrArrayAlloc, Check::AttrAlloc, Check::AttrGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPAttr>(
            count, checks, [&](SDPAttr **attrs) { pstList->ppstAttrs = attrs; }, sdpAttributeField,
            [] { return lexer::at(SDP_TOK_ATTRIBUTE); })) {
        return result;
    }
    pstList->ulNoOfAttrs = count;
    return 0;
}

// a= name [ ":" value ] LF
SDPResult sdpAttributeField(SDPAttr *pstAttr) {
    if (!lexer::take(SDP_TOK_ATTRIBUTE, SDP_LEXCTX_TOKEN)) {
        return fail(Check::AttrLine);
    }
    std::string_view name;
    if (const SDPResult result = takeWord(name, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN,
                                          {Check::AttrName, Check::AttrNameText})) {
        return result;
    }
    return parseAttributeValue(*pstAttr, name, attributeType(name));
}

SDPResult sdpAttributeFieldType(SDPAttr *pstAttr, const char *pcName, uint32_t enType) {
    return parseAttributeValue(*pstAttr, pcName, enType);
}

SDPResult sdpAttributeFieldDataSink(SDPAttr *pstAttr, const char *pcName) {
    return parseModeWord(*pstAttr, pcName);
}

// ":" 1*1023<any byte but LF> LF
SDPResult sdpOtherRecAttr(SDPAttr *pstAttr, uint32_t enType) {
    pstAttr->ulAttrType = enType;
    if (!lexer::take(SDP_TOK_COLON, SDP_LEXCTX_STRING)) {
        return fail(Check::ValueColon);
    }
    if (lexer::at(SDP_TOK_LF)) {
        return fail(Check::ValueEmpty);
    }
    if (lexer::inputEnds()) {
        return fail(Check::ValueEnded);
    }
    std::string_view value;
    if (!lexer::takeRestOfLine(value, SDP_MAX_VALUE)) {
        return fail(Check::ValueTooLong);
    }
    if (storeText(pstAttr->unAttrValue.strValue, value) != 0) {
        return fail(Check::ValueStore);
    }
    return takeLineEnd(Check::ValueEnd);
}

SDPResult sdpUnRecAttr(const char *pcName, SDPAttr *pstAttr) {
    return keepUnrecognised(*pstAttr, pcName);
}

SDPResult sdpUnRecAttrTypeExtn(const char *pcName, SDPAttr *pstAttr, char *pcBuffer,
                               uint32_t ulSize) {
    std::string_view value;
    const uint32_t room = ulSize < kWorkSize ? ulSize : kWorkSize;
    const SDPResult result = keepValue(*pstAttr, pcName, room == 0 ? 0 : room - 1, value);
    if (result == 0 && room != 0) {
        pcBuffer[value.copy(pcBuffer, room - 1)] = '\0';
    }
    return result;
}

SDPResult sdpUnRecAttrTypeNoVal(const char *pcName, SDPAttr *pstAttr) {
    return keepFlag(*pstAttr, pcName);
}

} // extern "C"
