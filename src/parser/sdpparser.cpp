// The driver: one body from text to records. The text is copied in a normal form, the lexer is
// pointed at the copy, and a table of line kinds says which line may follow which.
#include "parser/sdpparser.hpp"

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

SDPResult parseVersion(SdpLine &line) {
    return sdpProtoVersion(&line);
}

SDPResult parseOrigin(SdpLine &line) {
    return sdpOriginField(&line.stOrigin);
}

SDPResult parseName(SdpLine &line) {
    return sdpStringField(SDP_TOK_SESSION_NAME, &line.strSessionName);
}

SDPResult parseInfo(SdpLine &line) {
    line.pstrSessionInfo = allocate<SipString>();
    return parseText(SDP_TOK_INFO, line.pstrSessionInfo, Check::InfoAlloc);
}

SDPResult parseUri(SdpLine &line) {
    line.pstrUri = allocate<SipString>();
    return parseText(SDP_TOK_URI, line.pstrUri, Check::UriAlloc);
}

SDPResult parseEmails(SdpLine &line) {
    line.pstEmailList = allocate<SDPStringList>();
    return parseTextList(SDP_TOK_EMAIL, line.pstEmailList, Check::EmailAlloc);
}

SDPResult parsePhones(SdpLine &line) {
    line.pstPhoneList = allocate<SDPStringList>();
    return parseTextList(SDP_TOK_PHONE, line.pstPhoneList, Check::PhoneAlloc);
}

SDPResult parseSessionConnection(SdpLine &line) {
    line.pstConnection = allocate<SDPConnection>();
    return parseConnection(line.pstConnection, Check::ConnectionAlloc);
}

SDPResult parseBandwidths(SdpLine &line) {
    line.pstBandwidthList = allocate<SDPStringList>();
    return parseTextList(SDP_TOK_BANDWIDTH, line.pstBandwidthList, Check::BandwidthAlloc);
}

SDPResult parseTimes(SdpLine &line) {
    return sdpTimeFieldsSet(&line.stTimeSet);
}

SDPResult parseZone(SdpLine &line) {
    line.pstrTimeZone = allocate<SipString>();
    return parseText(SDP_TOK_ZONE, line.pstrTimeZone, Check::ZoneAlloc);
}

SDPResult parseSessionKey(SdpLine &line) {
    line.pstKey = allocate<SDPKey>();
    return parseKey(line.pstKey, Check::KeyAlloc);
}

SDPResult parseSessionAttributes(SdpLine &line) {
    line.pstAttrList = allocate<SDPAttrList>();
    return parseAttributes(line.pstAttrList, Check::AttributesAlloc);
}

SDPResult parseMedia(SdpLine &line) {
    return sdpMediaDescriptions(&line.stMediaSet);
}

// One line kind, or run of lines: what parses it, what may follow it, and what is wrong otherwise.
struct Step {
    uint32_t kind;
    SDPResult (*parse)(SdpLine &line);
    LineSet next;
    bool mayEnd; // an empty line may follow: the description ends there
    Check unexpected;
};

constexpr Step kSteps[] = {
    {SDP_TOK_VERSION, parseVersion, lines({SDP_TOK_ORIGIN}), false, Check::StartOrigin},
    {SDP_TOK_ORIGIN, parseOrigin, lines({SDP_TOK_SESSION_NAME}), false, Check::StartName},
    {SDP_TOK_SESSION_NAME, parseName,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_MEDIA,
            SDP_TOK_URI, SDP_TOK_INFO, SDP_TOK_EMAIL}),
     true, Check::AfterName},
    {SDP_TOK_INFO, parseInfo,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_URI,
            SDP_TOK_EMAIL}),
     true, Check::AfterInfo},
    {SDP_TOK_URI, parseUri,
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_EMAIL}),
     true, Check::AfterUri},
    {SDP_TOK_EMAIL, parseEmails,
     lines({SDP_TOK_PHONE, SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true,
     Check::AfterEmail},
    {SDP_TOK_PHONE, parsePhones, lines({SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true,
     Check::AfterPhone},
    {SDP_TOK_CONNECTION, parseSessionConnection,
     lines({SDP_TOK_BANDWIDTH, SDP_TOK_TIME, SDP_TOK_MEDIA}), true, Check::AfterConnection},
    {SDP_TOK_BANDWIDTH, parseBandwidths, lines({SDP_TOK_TIME}), true, Check::AfterBandwidth},
    {SDP_TOK_TIME, parseTimes, lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA, SDP_TOK_ZONE}),
     true, Check::AfterTime},
    {SDP_TOK_ZONE, parseZone, lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true,
     Check::AfterZone},
    {SDP_TOK_KEY, parseSessionKey, lines({SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true,
     Check::AfterKey},
    {SDP_TOK_ATTRIBUTE, parseSessionAttributes, lines({SDP_TOK_MEDIA}), true,
     Check::AfterAttributes},
    {SDP_TOK_MEDIA, parseMedia, lines({}), true, Check::AfterMedia},
};

constexpr const Step *stepOf(uint32_t kind) {
    const Step *step = kSteps;
    while (step->kind != kind) {
        ++step;
    }
    return step;
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

// ---- Normal form

constexpr uint32_t kBufferSize = 4096;
static_assert(SDP_MAX_BODY + 3 <= kBufferSize, "LF LF NUL is put behind every body");

// The first byte that is not above CR: all others are plain text. SSE2 looks at sixteen at once.
const uint8_t *skipPlain(const uint8_t *byte, const uint8_t *end) {
#ifdef __SSE2__
    const __m128i limit = _mm_set1_epi8('\r');
    for (; end - byte >= 16; byte += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
        const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(bytes, limit), bytes);
        const auto mask = static_cast<uint32_t>(_mm_movemask_epi8(low));
        if (mask != 0) {
            return byte + std::countr_zero(mask);
        }
    }
#endif
    while (byte != end && *byte > '\r') {
        ++byte;
    }
    return byte;
}

// Hands `keep` the runs of bytes that go into the normal form, in order. The CR of CR LF, blanks at
// the start of a line but the first, and NUL bytes do not; a NUL between a line end and a blank
// hides nothing.
template <class Keep>
void normalise(const uint8_t *begin, const uint8_t *end, Keep keep) {
    const uint8_t *run = begin;
    for (const uint8_t *byte = begin; (byte = skipPlain(byte, end)) != end;) {
        if (*byte == '\n') {
            keep(run, ++byte);
            while (byte != end && (*byte == ' ' || *byte == '\0')) {
                ++byte;
            }
            run = byte;
        } else if (*byte == '\0' || (*byte == '\r' && byte + 1 != end && byte[1] == '\n')) {
            keep(run, byte);
            run = ++byte;
        } else {
            ++byte;
        }
    }
    keep(run, end);
}

// ---- Place of a failure

// The offset in the caller's text of a byte of the normal form; the text's length for what was put
// behind it.
uint32_t originalOffset(const SipString &text, uint32_t offset) {
    const auto *const begin = reinterpret_cast<const uint8_t *>(text.pcData);
    uint32_t before = 0; // bytes of the normal form before the run
    uint32_t found = text.ulLen;
    normalise(begin, begin + text.ulLen, [&](const uint8_t *run, const uint8_t *end) {
        const auto size = static_cast<uint32_t>(end - run);
        if (offset >= before && offset - before < size) {
            found = static_cast<uint32_t>(run - begin) + (offset - before);
        }
        before += size;
    });
    return found;
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
    lastFailure = {
        result, lexer::kind(), line, offset - lineStart + 1, offset, row(lastFailed.check).name};
}

SDPResult refuse(Check check) {
    const SDPResult result = fail(check);
    lastFailure = {result, 0, 0, 0, 0, row(check).name};
    return result;
}

} // namespace

SDPFailure lastFailure = {};

// ---- Records that the session and the media descriptions share

SDPResult parseText(uint32_t kind, SipString *text, Check noMemory, uint32_t line) {
    return text != nullptr ? sdpStringField(kind, text) : fail(noMemory, 0, line);
}

SDPResult parseKey(SDPKey *key, Check noMemory, uint32_t line) {
    return parseText(SDP_TOK_KEY, key != nullptr ? &key->strKey : nullptr, noMemory, line);
}

SDPResult parseTextList(uint32_t kind, SDPStringList *list, Check noMemory, uint32_t line) {
    if (list == nullptr) {
        return fail(noMemory, 0, line);
    }
    SipString **strings = nullptr;
    const SDPResult result = sdpStringListFields(kind, &strings, &list->ulNoOfStrings);
    list->ppstStrings = strings;
    return result;
}

SDPResult parseConnection(SDPConnection *connection, Check noMemory, uint32_t line) {
    return connection != nullptr ? sdpConnectionField(connection) : fail(noMemory, 0, line);
}

SDPResult parseAttributes(SDPAttrList *list, Check noMemory, uint32_t line) {
    return list != nullptr ? sdpAttributeFields(list) : fail(noMemory, 0, line);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult SdpLibParseSdp(const SipString *pstText, SdpLine **ppstLine) {
    if (pstText == nullptr || pstText->ulLen == 0 || pstText->ulLen > SDP_MAX_BODY ||
        pstText->pcData == nullptr || ppstLine == nullptr) {
        return refuse(Check::ParseArgument);
    }
    *ppstLine = nullptr;
    auto *const line = allocate<SdpLine>();
    if (line == nullptr) {
        return refuse(Check::ParseAlloc);
    }
    uint8_t buffer[kBufferSize];
    convertCRLFToCR(reinterpret_cast<const uint8_t *>(pstText->pcData), pstText->ulLen, buffer,
                    kBufferSize);
    const SipString input = {pstText->ulLen, reinterpret_cast<char *>(buffer)};
    setInput(&input);
    setLexerContext(SDP_LEXCTX_SDP);
    const SDPResult result = startSdpParsing(line);
    if (result != 0) {
        rememberPlace(*pstText, result);
        clearSdpLexer();
        freeBytes(line);
        return passUp(Check::ParseRefused, result);
    }
    *ppstLine = line;
    clearSdpLexer();
    return 0;
}

SDPResult startSdpParsing(SdpLine *pstLine) {
    if (startTracking() != SDP_TOK_VERSION) {
        return fail(Check::StartVersion);
    }
    const Step *step = stepOf(SDP_TOK_VERSION);
    for (;;) {
        if (const SDPResult result = step->parse(*pstLine)) {
            return result;
        }
        const uint32_t next = lexer::kind();
        if (next == SDP_TOK_LF && step->mayEnd) {
            return 0;
        }
        if (!contains(step->next, next)) {
            return fail(step->unexpected, next);
        }
        step = stepOf(next);
    }
}

void convertCRLFToCR(const uint8_t *pucText, uint32_t ulLen, uint8_t *pucOut, uint32_t ulOutSize) {
    if (memset_s(pucOut, ulOutSize, 0, ulLen) != 0) {
        SIPAbnormalSecureFunc("convertCRLFToCR   ", __LINE__);
    }
    uint8_t *out = pucOut;
    normalise(pucText, pucText + ulLen, [&out](const uint8_t *run, const uint8_t *end) {
        const auto size = static_cast<size_t>(end - run);
        if (size != 0) {
            std::memcpy(out, run, size);
        }
        out += size;
    });
    *out++ = '\n';
    *out++ = '\n';
    *out = '\0';
}

// Arrays hold pointers of any type: their slots are copied and cleared as bytes.
void **SdpLibUtilExtendDP(void **ppArray, uint32_t ulCount, uint32_t ulNewCount) {
    auto *const longer = static_cast<void **>(allocateBytes(ulNewCount * sizeof(void *)));
    if (longer == nullptr || ppArray == nullptr || ulCount == 0) {
        return longer;
    }
    const size_t kept = ulCount * sizeof(void *);
    std::memcpy(longer, ppArray, kept);
    std::memset(longer + ulCount, 0, ulNewCount * sizeof(void *) - kept);
    freeBytes(ppArray);
    return longer;
}

} // extern "C"
