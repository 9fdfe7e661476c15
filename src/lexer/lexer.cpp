// The lexer's state, and the parts of cutting that are too rare or too long to be inlined into the
// parsers.
#include "lexer/lexer.hpp"

#include <cstring>

#include "services/allocation.hpp"
#include "services/builtin.hpp"

namespace sdpline::lexer {

SDPLINE_PER_THREAD State state = {.input = nullptr,
                                  .inputGone = false,
                                  .start = 0,
                                  .end = 0,
                                  .index = 0,
                                  .kind = 0,
                                  .context = SDP_LEXCTX_NONE,
                                  .ended = 0,
                                  .last = 0,
                                  .text = {},
                                  .rtpmap = "rtpmap"};

SDPLINE_PER_THREAD TakenText takenText = {};

namespace {

// What is read of an input that is gone.
constexpr uint8_t kNothing[] = {'\0'};

uint32_t specialBits(const Lexer &lexer) {
    return (state.ended == 1 ? Lexer::kEnded : 0) | (state.index != 0 ? Lexer::kHalfCut : 0) |
           (lexer.end <= lexer.input + 1 || lexer.end <= lexer.at ? Lexer::kRepeats : 0) |
           (seesFills() ? Lexer::kCallsForTexts : 0);
}

} // namespace

Lexer load() {
    const uint8_t *const input = state.inputGone ? kNothing : state.input;
    Lexer lexer = {.input = input,
                   .at = state.inputGone ? input : input + state.start,
                   .end = state.inputGone ? input : input + (state.end + 1),
                   .kind = state.kind,
                   .context = state.context,
                   .special = 0,
                   .last = state.last,
                   .counted = 0};
    lexer.special = specialBits(lexer) | Lexer::kUnpadded;
    return lexer;
}

void store(const Lexer &lexer) {
    publishText();
    const auto start = static_cast<uint32_t>(lexer.at - lexer.input);
    const bool moved = start != state.start;
    if ((moved && lexer.is(SDP_TOK_EOF)) || (lexer.special & Lexer::kEnded) != 0) {
        state.ended = 1;
    }
    const auto size = static_cast<uint32_t>(lexer.end - lexer.input);
    state.start = start;
    state.end = size != 0 ? size - 1 : 0;
    state.kind = lexer.kind;
    state.context = lexer.context;
    state.last = lexer.last;
    if ((lexer.special & Lexer::kHalfCut) == 0) {
        state.index = 0;
    }
}

namespace {

// Whether no setter moved the state since it was cleared, and no program sees texts being taken.
bool isUntouched() {
    return (state.start | state.end | state.index | state.ended) == 0 && !seesFills();
}

// What load() and the search for a special start come to then: the first token begins the input.
Lexer atStart(const uint8_t *input) {
    return {.input = input,
            .at = input,
            .end = input,
            .kind = state.kind,
            .context = state.context,
            .special = 0,
            .last = state.last,
            .counted = 0};
}

} // namespace

Lexer begin(const uint8_t *input) {
    state.input = input;
    state.inputGone = false;
    state.context = SDP_LEXCTX_SDP;
    Lexer lexer = isUntouched() ? atStart(input) : load();
    lexer.advance(SDP_LEXCTX_SDP);
    store(lexer);
    lexer.special = specialBits(lexer);
    return lexer;
}

void clear() {
    state.index = 0;
    state.end = 0;
    state.start = 0;
    state.ended = 0;
}

SpecialStart findStart(const uint8_t *input, const uint8_t *at, const uint8_t *end,
                       uint32_t special) {
    if ((special & Lexer::kEnded) != 0) {
        return {nullptr, special};
    }
    const uint8_t *const next = end <= input + 1 ? input : end;
    const uint8_t *const from = (special & Lexer::kHalfCut) != 0 ? at : next;
    const uint32_t ended = *from == '\0' ? Lexer::kEnded : 0;
    const uint32_t repeats = from == input ? Lexer::kRepeats : 0;
    return {from, ended | repeats | (special & (Lexer::kCallsForTexts | Lexer::kUnpadded))};
}

LetterToken cutLetter(const uint8_t *letter) {
    const uint8_t next = letter[1];
    if (*letter == 'I' && next == 'N') {
        return {SDP_TOK_IN, 2, next};
    }
    if (*letter == 'I' && next == 'P') {
        const uint8_t version = letter[2];
        switch (version) {
        case '4': return {SDP_TOK_IP4, 3, version};
        case '6': return {SDP_TOK_IP6, 3, version};
        default: return {SDP_TOK_ALPHA, 1, version};
        }
    }
    if (*letter == 'X' && next == '-') {
        return {SDP_TOK_X_DASH, 2, next};
    }
    return {SDP_TOK_ALPHA, 1, next};
}

// ---- Texts

namespace {

constexpr bool isSpace(uint8_t byte) {
    return byte == ' ' || byte == '\t';
}

// A space or tab, or the run after the last of them.
const uint8_t *lastToken(const uint8_t *from, const uint8_t *end) {
    const uint8_t *token = end - 1;
    if (!isSpace(*token)) {
        while (token != from && !isSpace(token[-1])) {
            --token;
        }
    }
    return token;
}

} // namespace

void takeText(const uint8_t *from, uint32_t size) {
    if (memset_s(state.text, kTextSize, 0, size + 1) != 0) {
        SIPAbnormalSecureFuncEx("sdplexer", __LINE__);
    }
    std::memcpy(state.text, from, size);
    state.text[size] = '\0';
}

void publishText() {
    const uint8_t *from = takenText.from;
    if (from == nullptr) {
        return;
    }
    uint32_t size = takenText.size & ~TakenText::kRestOfLine;
    if (size != takenText.size) {
        const uint8_t *const end = from + size;
        from = lastToken(from, end);
        size = static_cast<uint32_t>(end - from);
    }
    copyBytes(state.text, from, size);
    state.text[size] = '\0';
    takenText.from = nullptr;
}

const uint8_t *runEndByBytes(const uint8_t *byte, Run run) {
    return runEnd(byte, run);
}

const uint8_t *lineEnd(const uint8_t *text) {
    const auto *const from = reinterpret_cast<const char *>(text);
    const char *const end = std::strchr(from, '\n');
    return text + (end != nullptr ? static_cast<size_t>(end - from) : std::strlen(from));
}

Lexer gatherTokens(Lexer lexer, uint32_t limit, bool &fits) {
    uint32_t gathered = 0;
    for (; !lexer.is(SDP_TOK_LF) && !lexer.is(SDP_TOK_EOF); lexer.advance(SDP_LEXCTX_STRING)) {
        gathered += static_cast<uint32_t>(lexer.end - lexer.at);
        if (gathered > limit) {
            fits = false;
            return lexer;
        }
        lexer.text();
    }
    fits = true;
    return lexer;
}

Lexer gatherToSlash(Lexer lexer, uint32_t limit, bool &fits) {
    uint32_t gathered = 0;
    for (; !lexer.is(SDP_TOK_SLASH) && !lexer.is(SDP_TOK_LF); lexer.advance(SDP_LEXCTX_CHAR)) {
        if (gathered++ == limit) {
            fits = false;
            return lexer;
        }
        lexer.text();
        lexer.special |= lexer.is(SDP_TOK_EOF) ? Lexer::kEnded : 0;
    }
    fits = true;
    return lexer;
}

} // namespace sdpline::lexer
