// The driver: parses one body from text to records. It copies the text, as it is or in its normal
// form, makes a parser over the copy, and walks a table of line kinds that says which line may
// follow which.
#include "parser/driver.hpp"

#include <array>
#include <initializer_list>

#include "lexer/operations.hpp"
#include "parser/normalform.hpp"

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

// One line kind, or run of lines of it: its production, the kinds that may follow it, and the check
// that fails when another kind follows.
struct Step {
    uint32_t kind;
    Production<SdpLine> parse;
    LineSet next;
    bool mayEnd; // an empty line may follow, which ends the description
    Check unexpected;

    constexpr bool mayEndAt(uint32_t following) const { return mayEnd && following == SDP_TOK_LF; }
};

// Every description begins with these, in this order.
constexpr Step kHead[] = {
    {SDP_TOK_VERSION,
     [](Parser auto &p, SdpLine &line) { return parseVersion(p, line.ulProtoVersion); },
     lines({SDP_TOK_ORIGIN}), false, Check::StartOrigin},
    {SDP_TOK_ORIGIN, [](Parser auto &p, SdpLine &line) { return parseOrigin(p, line.stOrigin); },
     lines({SDP_TOK_SESSION_NAME}), false, Check::StartName},
    {SDP_TOK_SESSION_NAME,
     [](Parser auto &p, SdpLine &line) {
         return parseText(p, SDP_TOK_SESSION_NAME, line.strSessionName);
     },
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_MEDIA,
            SDP_TOK_URI, SDP_TOK_INFO, SDP_TOK_EMAIL}),
     true, Check::AfterName},
};

constexpr Step kSteps[] = {
    {SDP_TOK_INFO,
     [](Parser auto &p, SdpLine &line) {
         return textInto<&SdpLine::pstrSessionInfo>(p, line, SDP_TOK_INFO, Check::InfoAlloc);
     },
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_URI,
            SDP_TOK_EMAIL}),
     true, Check::AfterInfo},
    {SDP_TOK_URI,
     [](Parser auto &p, SdpLine &line) {
         return textInto<&SdpLine::pstrUri>(p, line, SDP_TOK_URI, Check::UriAlloc);
     },
     lines({SDP_TOK_PHONE, SDP_TOK_BANDWIDTH, SDP_TOK_CONNECTION, SDP_TOK_TIME, SDP_TOK_EMAIL}),
     true, Check::AfterUri},
    {SDP_TOK_EMAIL,
     [](Parser auto &p, SdpLine &line) {
         return listInto<&SdpLine::pstEmailList>(p, line, SDP_TOK_EMAIL, Check::EmailAlloc);
     },
     lines({SDP_TOK_PHONE, SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true,
     Check::AfterEmail},
    {SDP_TOK_PHONE,
     [](Parser auto &p, SdpLine &line) {
         return listInto<&SdpLine::pstPhoneList>(p, line, SDP_TOK_PHONE, Check::PhoneAlloc);
     },
     lines({SDP_TOK_CONNECTION, SDP_TOK_BANDWIDTH, SDP_TOK_TIME}), true, Check::AfterPhone},
    {SDP_TOK_CONNECTION,
     [](Parser auto &p, SdpLine &line) {
         return connectionInto<&SdpLine::pstConnection>(p, line, Check::ConnectionAlloc);
     },
     lines({SDP_TOK_BANDWIDTH, SDP_TOK_TIME, SDP_TOK_MEDIA}), true, Check::AfterConnection},
    {SDP_TOK_BANDWIDTH,
     [](Parser auto &p, SdpLine &line) {
         return listInto<&SdpLine::pstBandwidthList>(p, line, SDP_TOK_BANDWIDTH,
                                                     Check::BandwidthAlloc);
     },
     lines({SDP_TOK_TIME}), true, Check::AfterBandwidth},
    {SDP_TOK_TIME, [](Parser auto &p, SdpLine &line) { return parseTimes(p, line.stTimeSet); },
     lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA, SDP_TOK_ZONE}), true, Check::AfterTime},
    {SDP_TOK_ZONE,
     [](Parser auto &p, SdpLine &line) {
         return textInto<&SdpLine::pstrTimeZone>(p, line, SDP_TOK_ZONE, Check::ZoneAlloc);
     },
     lines({SDP_TOK_KEY, SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true, Check::AfterZone},
    {SDP_TOK_KEY,
     [](Parser auto &p, SdpLine &line) {
         return keyInto<&SdpLine::pstKey>(p, line, Check::KeyAlloc);
     },
     lines({SDP_TOK_ATTRIBUTE, SDP_TOK_MEDIA}), true, Check::AfterKey},
    {SDP_TOK_ATTRIBUTE,
     [](Parser auto &p, SdpLine &line) {
         return attributesInto<&SdpLine::pstAttrList>(p, line, Check::AttributesAlloc);
     },
     lines({SDP_TOK_MEDIA}), true, Check::AfterAttributes},
    {SDP_TOK_MEDIA,
     [](Parser auto &p, SdpLine &line) { return parseMediaDescriptions(p, line.stMediaSet); },
     lines({}), true, Check::AfterMedia},
};

// The index into kSteps by line kind; 0 for kinds without a step.
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

// Every line kind that may follow another one has a step.
constexpr bool stepsAreComplete() {
    LineSet known = 0;
    LineSet followers = std::end(kHead)[-1].next;
    for (const Step &step : kSteps) {
        known |= lines({step.kind});
        followers |= step.next;
    }
    return (followers & ~known) == 0;
}
static_assert(stepsAreComplete());
static_assert(kHead[0].next == lines({kHead[1].kind}) && kHead[1].next == lines({kHead[2].kind}));

// Runs a step's production, and returns whether the line after it may follow it.
SDPLINE_INLINE bool runStep(Parser auto &p, SdpLine &line, const Step &step) {
    return step.parse(p, line) && (contains(step.next, p.kind) || step.mayEndAt(p.kind) ||
                                   p.refuse(step.unexpected, p.kind));
}

// version origin session-name. One onLine() for all three keeps the parser in registers.
bool parseHead(Parser auto &parser, SdpLine &line) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        return p.see(kHead[0].kind, Check::StartVersion) && runStep(p, line, kHead[0]) &&
               runStep(p, line, kHead[1]) && runStep(p, line, kHead[2]);
    });
}

} // namespace

// From the version's key to the end of the description.
bool parseLines(Parser auto &parser, SdpLine &line) {
    if (!parseHead(parser, line)) {
        return false;
    }
    while (parser.kind != SDP_TOK_LF) {
        if (!runStep(parser, line, *stepOf(parser.kind))) {
            return false;
        }
    }
    return true;
}

[[gnu::noinline]] StateParser loadParser() {
    return {lexer::load(), 0};
}

[[gnu::noinline]] SDPResult storeParser(const StateParser &parser) {
    lexer::store(parser);
    return parser.failure;
}

SDPResult parseFromState(SdpLine &line) {
    lexer::startTracking();
    return withGlobalLexer([&](StateParser &parser) { return parseLines(parser, line); });
}

namespace {

constexpr uint32_t kEndSize = 3;       // LF LF NUL after every body
constexpr uint32_t kBufferSize = 4096; // without the lexer's padding, which follows
static_assert(SDP_MAX_BODY + kEndSize <= kBufferSize);

SDPResult refuseCall(Check check, uint32_t line = __builtin_LINE()) {
    const SDPResult result = fail(check, 0, line);
    rememberCall(result, check);
    return result;
}

const uint8_t *bytesOf(const SipString &text) {
    return reinterpret_cast<const uint8_t *>(text.pcData);
}

// Parses the text and stores the position at which the parser stopped in the lexer's state.
SDPResult parseWith(Parser auto &parser, const SipString &text, SdpLine &line, PlaceOf placeOf) {
    const bool done = parseLines(parser, line);
    lexer::store(parser);
    lexer::loseInput();
    if (!done) [[unlikely]] {
        rememberPlace(text, parser, parser.failure, placeOf);
    }
    return parser.failure;
}

// Writes the text's normal form into the buffer, and parses that. With a CR in it, it is not a body
// as a BodyParser reads it.
[[gnu::noinline]] SDPResult parseNormalForm(uint8_t *buffer, uint32_t size, const SipString &text,
                                            SdpLine &line) {
    // Clearing the buffer first has no effect but the visible call of memset_s.
    uint8_t *const end = seesFills() ? normaliseCleared(bytesOf(text), text.ulLen, buffer, size)
                                     : normalise(bytesOf(text), text.ulLen, buffer);
    std::memset(end, 0, lexer::kPadding);
    const bool hasCr = std::memchr(buffer, '\r', static_cast<size_t>(end - buffer)) != nullptr;
    const StateLexer start = lexer::begin(buffer);
    if (start.special == 0 && !hasCr) {
        BodyParser parser = {{start, {}}, 0};
        return parseWith(parser, text, line, originalPlace);
    }
    StateParser parser = {start, 0};
    return parseWith(parser, text, line, originalPlace);
}

// For a body longer than SDP_MAX_BODY bytes: the buffer is allocated, and freed after the parse.
[[gnu::cold, gnu::noinline]] SDPResult parseLong(const SipString &text, SdpLine &line) {
    const uint32_t size = text.ulLen + kEndSize;
    auto *const buffer =
        static_cast<uint8_t *>(gSipSystemMemCp->pfnAlloc(gSipSystemMemCp, size + lexer::kPadding));
    foreignCodeRan(); // the stack may have replaced the memory control
    if (buffer == nullptr) {
        return refuseCall(Check::ParseCopyAlloc);
    }
    const SDPResult result = parseNormalForm(buffer, size, text, line);
    gSipSystemMemCp->pfnFree(buffer);
    foreignCodeRan();
    return result;
}

// Most texts are parsed without being normalised. The normal form is then made only if a log hook
// reads the lexer's input.
SDPLINE_INLINE SDPResult parseShort(const SipString &text, SdpLine &line) {
    uint8_t normalForm[kBufferSize + lexer::kPadding];
    uint8_t body[kBufferSize + lexer::kPadding];
    if (!lexer::isUntouched() || !copyBody(bytesOf(text), text.ulLen, body)) [[unlikely]] {
        return parseNormalForm(normalForm, kBufferSize, text, line);
    }
    const lexer::LateInput late = {normalise, bytesOf(text), text.ulLen, normalForm};
    BodyParser parser;
    parser.failure = 0;
    lexer::beginBody(body, late, parser);
    return parseWith(parser, text, line, bodyPlace);
}

} // namespace

SDPResult parseBody(const SipString *text, SdpLine **line) {
    if (text == nullptr || text->ulLen == 0 || text->ulLen > settings().ulMaxBodySize ||
        text->pcData == nullptr || line == nullptr) {
        return refuseCall(Check::ParseArgument);
    }
    *line = nullptr;
    auto *const body = allocate<SdpLine>("SdpLibParseSdp");
    if (body == nullptr) {
        return refuseCall(Check::ParseAlloc);
    }
    const SDPResult result =
        text->ulLen <= SDP_MAX_BODY ? parseShort(*text, *body) : parseLong(*text, *body);
    lexer::clear();
    if (result != 0) {
        freeBytes(body);
        return logAndForward(Check::ParseRefused, result);
    }
    *line = body;
    return 0;
}

} // namespace sdpline
