// The driver: one body from text to records. The text is copied in a normal form, the lexer is
// pointed at the copy, and a table of line kinds says which line may follow which.
#include "parser/parser.hpp"

#include <array>
#include <bit>
#include <cstring>
#include <initializer_list>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace sdpline {

namespace {

// ---- Line order

using LineSet = uint64_t;

constexpr LineSet lines(std::initializer_list<uint32_t> kinds) {
    LineSet set = 0;
    for (const uint32_t kind : kinds) {
        set |= LineSet{1} << kind;
    }
    return set;
}

constexpr bool contains(LineSet set, uint32_t kind) {
    return kind < 64 && (set >> kind & 1) != 0;
}

SDPResult versionLine(Lexer &lexer, SdpLine &line) {
    return parseVersion(lexer, line.ulProtoVersion);
}

SDPResult originLine(Lexer &lexer, SdpLine &line) {
    return parseOrigin(lexer, line.stOrigin);
}

SDPResult nameLine(Lexer &lexer, SdpLine &line) {
    return parseText(lexer, SDP_TOK_SESSION_NAME, line.strSessionName);
}

SDPResult infoLine(Lexer &lexer, SdpLine &line) {
    line.pstrSessionInfo = allocateFor<SipString>(Check::InfoAlloc);
    return parseInto(line.pstrSessionInfo, Check::InfoAlloc,
                     [&](SipString &text) { return parseText(lexer, SDP_TOK_INFO, text); });
}

SDPResult uriLine(Lexer &lexer, SdpLine &line) {
    line.pstrUri = allocateFor<SipString>(Check::UriAlloc);
    return parseInto(line.pstrUri, Check::UriAlloc,
                     [&](SipString &text) { return parseText(lexer, SDP_TOK_URI, text); });
}

SDPResult emailLines(Lexer &lexer, SdpLine &line) {
    line.pstEmailList = allocateFor<SDPStringList>(Check::EmailAlloc);
    return parseInto(line.pstEmailList, Check::EmailAlloc, [&](SDPStringList &list) {
        return parseTextList(lexer, SDP_TOK_EMAIL, list);
    });
}

SDPResult phoneLines(Lexer &lexer, SdpLine &line) {
    line.pstPhoneList = allocateFor<SDPStringList>(Check::PhoneAlloc);
    return parseInto(line.pstPhoneList, Check::PhoneAlloc, [&](SDPStringList &list) {
        return parseTextList(lexer, SDP_TOK_PHONE, list);
    });
}

SDPResult connectionLine(Lexer &lexer, SdpLine &line) {
    line.pstConnection = allocateFor<SDPConnection>(Check::ConnectionAlloc);
    return parseInto(line.pstConnection, Check::ConnectionAlloc,
                     [&](SDPConnection &connection) { return parseConnection(lexer, connection); });
}

SDPResult bandwidthLines(Lexer &lexer, SdpLine &line) {
    line.pstBandwidthList = allocateFor<SDPStringList>(Check::BandwidthAlloc);
    return parseInto(line.pstBandwidthList, Check::BandwidthAlloc, [&](SDPStringList &list) {
        return parseTextList(lexer, SDP_TOK_BANDWIDTH, list);
    });
}

SDPResult timeLines(Lexer &lexer, SdpLine &line) {
    return parseTimes(lexer, line.stTimeSet);
}

SDPResult zoneLine(Lexer &lexer, SdpLine &line) {
    line.pstrTimeZone = allocateFor<SipString>(Check::ZoneAlloc);
    return parseInto(line.pstrTimeZone, Check::ZoneAlloc,
                     [&](SipString &text) { return parseText(lexer, SDP_TOK_ZONE, text); });
}

SDPResult keyLine(Lexer &lexer, SdpLine &line) {
    line.pstKey = allocateFor<SDPKey>(Check::KeyAlloc);
    return parseInto(line.pstKey, Check::KeyAlloc,
                     [&](SDPKey &key) { return parseText(lexer, SDP_TOK_KEY, key.strKey); });
}

SDPResult attributeLines(Lexer &lexer, SdpLine &line) {
    line.pstAttrList = allocateFor<SDPAttrList>(Check::AttributesAlloc);
    return parseInto(line.pstAttrList, Check::AttributesAlloc,
                     [&](SDPAttrList &list) { return parseAttributes(lexer, list); });
}

SDPResult mediaLines(Lexer &lexer, SdpLine &line) {
    return parseMediaDescriptions(lexer, line.stMediaSet);
}

// One line kind, or run of lines: what parses it, what may follow it, and what is wrong otherwise.
struct Step {
    uint32_t kind;
    SDPResult (*parse)(Lexer &lexer, SdpLine &line);
    LineSet next;
    bool mayEnd; // an empty line may follow: the description ends there
    Check unexpected;
};

constexpr Step kSteps[] = {
    {SDP_TOK_VERSION, versionLine, lines({SDP_TOK_ORIGIN}), false, Check::StartOrigin},
    {SDP_TOK_ORIGIN, originLine, lines({SDP_TOK_SESSION_NAME}), false, Check::StartName},
    {SDP_TOK_SESSION_NAME, nameLine,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_MEDIA,
            SDP_TOK_URI, SDP_TOK_INFO, SDP_TOK_EMAIL}),
     true, Check::AfterName},
    {SDP_TOK_INFO, infoLine,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_URI,
            SDP_TOK_EMAIL}),
     true, Check::AfterInfo},
    {SDP_TOK_URI, uriLine,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_EMAIL}),
     true, Check::AfterUri},
    {SDP_TOK_EMAIL, emailLines,
     lines({SDP_TOK_PHONE, SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true,
     Check::AfterEmail},
    {SDP_TOK_PHONE, phoneLines, lines({SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true,
     Check::AfterPhone},
    {SDP_TOK_CONNECTION, connectionLine, lines({SDP_TOK_BANDWIDTH, SDP_TOK_TIME, SDP_TOK_MEDIA}),
     true, Check::AfterConnection},
    {SDP_TOK_BANDWIDTH, bandwidthLines, lines({SDP_TOK_TIME}), true, Check::AfterBandwidth},
    {SDP_TOK_TIME, timeLines, lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA, SDP_TOK_ZONE}),
     true, Check::AfterTime},
    {SDP_TOK_ZONE, zoneLine, lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true,
     Check::AfterZone},
    {SDP_TOK_KEY, keyLine, lines({SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true, Check::AfterKey},
    {SDP_TOK_ATTRIBUTE, attributeLines, lines({SDP_TOK_MEDIA}), true, Check::AfterAttributes},
    {SDP_TOK_MEDIA, mediaLines, lines({}), true, Check::AfterMedia},
};

// The row of each line kind that has one.
constexpr auto kStepRows = [] {
    std::array<uint8_t, 64> rows{};
    for (size_t row = 0; row < std::size(kSteps); ++row) {
        rows[kSteps[row].kind] = static_cast<uint8_t>(row);
    }
    return rows;
}();

const Step *stepOf(uint32_t kind) {
    return &kSteps[kStepRows[kind]];
}

// Every line that may follow another has a step of its own.
constexpr bool stepsAreComplete() {
    LineSet known = 0;
    LineSet followers = 0;
    for (const Step &step : kSteps) {
        known |= lines({step.kind});
        followers |= step.next;
    }
    return (followers & ~known) == 0;
}
static_assert(stepsAreComplete());

// From the version's key to the end of the description.
SDPResult parseLines(Lexer &lexer, SdpLine &line) {
    const Step *step = stepOf(SDP_TOK_VERSION);
    for (;;) {
        if (const SDPResult result = step->parse(lexer, line)) {
            return result;
        }
        const uint32_t next = lexer.kind;
        if (next == SDP_TOK_LF && step->mayEnd) {
            return 0;
        }
        if (!contains(step->next, next)) {
            return fail(step->unexpected, next);
        }
        step = stepOf(next);
    }
}

// ---- Normal form

constexpr uint32_t kEndSize = 3; // LF LF NUL after every body
constexpr uint32_t kBufferSize = 4096;
static_assert(SDP_MAX_BODY + kEndSize <= kBufferSize);

// What stands in the normal form for a text that begins with a byte of CR or below: one byte or
// none. Reading goes on at `next`.
struct Cut {
    const uint8_t *byte;
    uint32_t kept; // 0 or 1
    const uint8_t *next;
};

// The CR of CR LF, blanks at the start of a line but the first, and NUL bytes go; a NUL between a
// line end and a blank hides nothing.
SDPLINE_INLINE Cut cutSpecial(const uint8_t *byte, const uint8_t *end) {
    if (*byte == '\r' && byte + 1 != end && byte[1] == '\n') {
        ++byte;
    }
    if (*byte != '\n') {
        return {byte, *byte != '\0', byte + 1};
    }
    const uint8_t *next = byte + 1;
    while (next != end && (*next == ' ' || *next == '\0')) {
        ++next;
    }
    return {byte, 1, next};
}

// Copies the bytes above CR, which are plain text, from `byte` on, and answers where they end. SSE2
// copies sixteen at once, those behind the end among them: they are written over later.
SDPLINE_INLINE const uint8_t *copyPlain(const uint8_t *byte, const uint8_t *end, uint8_t *&out) {
#ifdef __SSE2__
    const __m128i limit = _mm_set1_epi8('\r');
    for (; end - byte >= 16; byte += 16, out += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), bytes);
        const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(bytes, limit), bytes);
        const auto mask = static_cast<uint32_t>(_mm_movemask_epi8(low));
        if (mask != 0) {
            const int plain = std::countr_zero(mask);
            out += plain;
            return byte + plain;
        }
    }
#endif
    while (byte != end && *byte > '\r') {
        *out++ = *byte++;
    }
    return byte;
}

// Writes the normal form of a text and the end of the description behind it: at most two bytes more
// than the text has, and the NUL.
void normalise(const uint8_t *text, uint32_t length, uint8_t *out) {
    const uint8_t *const end = text + length;
    for (const uint8_t *byte = text; (byte = copyPlain(byte, end, out)) != end;) {
        if (end - byte > 2 && byte[0] == '\r' && byte[1] == '\n' && byte[2] > ' ') [[likely]] {
            *out++ = '\n'; // as nearly all lines end
            byte += 2;
            continue;
        }
        const Cut cut = cutSpecial(byte, end);
        *out = *cut.byte;
        out += cut.kept;
        byte = cut.next;
    }
    *out++ = '\n';
    *out++ = '\n';
    *out = '\0';
}

// ---- Place of a failure

// The offset in the caller's text of a byte of the normal form; the text's length for what was put
// behind it.
uint32_t originalOffset(const SipString &text, uint32_t offset) {
    const auto *const begin = reinterpret_cast<const uint8_t *>(text.pcData);
    const uint8_t *const end = begin + text.ulLen;
    for (const uint8_t *byte = begin; byte != end;) {
        const Cut cut = *byte > '\r' ? Cut{byte, 1, byte + 1} : cutSpecial(byte, end);
        if (offset < cut.kept) {
            return static_cast<uint32_t>(cut.byte - begin);
        }
        offset -= cut.kept;
        byte = cut.next;
    }
    return text.ulLen;
}

// Remembers why the text was refused and where: at the word that was judged, or else where the
// lexer stands.
[[gnu::cold, gnu::noinline]] void rememberPlace(const SipString &text, SDPResult result) {
    const char *const word = lastFailed.word;
    const auto *const input = reinterpret_cast<const char *>(lexer::state.input);
    uint32_t offset = originalOffset(text, word != nullptr ? static_cast<uint32_t>(word - input)
                                                           : lexer::state.start);
    const bool atPair = offset > 0 && offset < text.ulLen && text.pcData[offset] == '\n' &&
                        text.pcData[offset - 1] == '\r';
    offset -= atPair ? 1 : 0; // a line ends where its CR LF begins
    uint32_t line = 1;
    uint32_t lineStart = 0;
    for (uint32_t i = 0; i < offset; ++i) {
        if (text.pcData[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    lastFailure = {result, lexer::state.kind,         line, offset - lineStart + 1,
                   offset, row(lastFailed.check).name};
}

SDPResult refuse(Check check) {
    const SDPResult result = fail(check);
    lastFailure = {result, 0, 0, 0, 0, row(check).name};
    return result;
}

// ---- From the text to the records

// Parses the text from its normal form, which is made in the buffer.
SDPLINE_INLINE SDPResult parseIn(uint8_t *buffer, uint32_t size, const SipString &text,
                                 SdpLine &line) {
    const auto *const bytes = reinterpret_cast<const uint8_t *>(text.pcData);
    if (!seesFills()) [[likely]] {
        normalise(bytes, text.ulLen, buffer); // what would be cleared is written over
    } else {
        convertCRLFToCR(bytes, text.ulLen, buffer, size);
    }
    const SipString input = {text.ulLen, reinterpret_cast<char *>(buffer)};
    setInput(&input);
    setLexerContext(SDP_LEXCTX_SDP);
    const SDPResult result = startSdpParsing(&line);
    if (result != 0) {
        rememberPlace(text, result);
    }
    return result;
}

// The same for a body that SdpSetMaxBodySize admits: its normal form lives as long as the parse.
[[gnu::cold, gnu::noinline]] SDPResult parseLong(const SipString &text, SdpLine &line) {
    const uint32_t size = text.ulLen + kEndSize;
    auto *const buffer = static_cast<uint8_t *>(gSipSystemMemCp->pfnAlloc(gSipSystemMemCp, size));
    if (buffer == nullptr) {
        return refuse(Check::ParseCopyAlloc);
    }
    const SDPResult result = parseIn(buffer, size, text, line);
    gSipSystemMemCp->pfnFree(buffer);
    return result;
}

SDPLINE_INLINE SDPResult parseShort(const SipString &text, SdpLine &line) {
    uint8_t buffer[kBufferSize];
    return parseIn(buffer, kBufferSize, text, line);
}

} // namespace

void **extendLong(void **array, uint32_t count, uint32_t &room) {
    if (count < room) {
        return array;
    }
    room = settings().ulMaxBodySize > SDP_MAX_BODY ? 2 * count : count + 1;
    return extendArray(array, count, room);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult SdpLibParseSdp(const SipString *pstText, SdpLine **ppstLine) {
    if (pstText == nullptr || pstText->ulLen == 0 || pstText->ulLen > settings().ulMaxBodySize ||
        pstText->pcData == nullptr || ppstLine == nullptr) {
        return refuse(Check::ParseArgument);
    }
    *ppstLine = nullptr;
    auto *const line = allocate<SdpLine>();
    if (line == nullptr) {
        return refuse(Check::ParseAlloc);
    }
    const SDPResult result = pstText->ulLen <= SDP_MAX_BODY ? parseShort(*pstText, *line)
                                                            : parseLong(*pstText, *line);
    if (result != 0) {
        clearSdpLexer();
        freeBytes(line);
        passUp(Check::ParseRefused, result);
        lexer::state.inputGone = true;
        return result;
    }
    *ppstLine = line;
    clearSdpLexer();
    lexer::state.inputGone = true;
    return 0;
}

SDPResult startSdpParsing(SdpLine *pstLine) {
    if (startTracking() != SDP_TOK_VERSION) {
        return fail(Check::StartVersion);
    }
    return onState([pstLine](Lexer &lexer) { return parseLines(lexer, *pstLine); });
}

void convertCRLFToCR(const uint8_t *pucText, uint32_t ulLen, uint8_t *pucOut, uint32_t ulOutSize) {
    if (memset_s(pucOut, ulOutSize, 0, ulLen) != 0) {
        SIPAbnormalSecureFunc("convertCRLFToCR   ", __LINE__);
    }
    normalise(pucText, ulLen, pucOut);
}

void **SdpLibUtilExtendDP(void **ppArray, uint32_t ulCount, uint32_t ulNewCount) {
    return extendArray(ppArray, ulCount, ulNewCount);
}

} // extern "C"
