// The state of the lexer, and those parts of it that are too rare or too long to be inlined into
// the parsers.
#include "lexer/state.hpp"

#include <cstring>

#include "services/allocation.hpp"
#include "services/builtin.hpp"

namespace sdpline::lexer {

SDPLINE_PER_THREAD State state = {.input = nullptr,
                                  .late = nullptr,
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

// Read in place of an input that no longer exists.
constexpr uint8_t kNothing[] = {'\0'};

uint32_t specialBits(const Position &position) {
    const bool repeats = position.end <= position.input + 1 || position.end <= position.at;
    return (state.ended == 1 ? StateLexer::kEnded : 0) |
           (state.index != 0 ? StateLexer::kHalfCut : 0) | (repeats ? StateLexer::kRepeats : 0) |
           (seesFills() ? StateLexer::kCallsForTexts : 0);
}

} // namespace

const uint8_t *inputBytes() {
    if (const LateInput *const late = state.late) {
        state.late = nullptr;
        late->write(late->text, late->length, late->input);
    }
    return state.input;
}

void loseInput() {
    state.late = nullptr;
    state.inputGone = true;
}

StateLexer load() {
    const uint8_t *const input = state.inputGone ? kNothing : inputBytes();
    const Position position = {.input = input,
                               .at = state.inputGone ? input : input + state.start,
                               .end = state.inputGone ? input : input + (state.end + 1),
                               .kind = state.kind,
                               .context = state.context,
                               .last = state.last,
                               .counted = 0};
    return {{position, {specialBits(position)}}};
}

void store(const Position &position, uint32_t special, bool inBody) {
    publishText();
    const auto start = static_cast<uint32_t>(position.at - position.input);
    const bool moved = start != state.start;
    if ((moved && position.is(SDP_TOK_EOF)) || (special & StateLexer::kEnded) != 0) {
        state.ended = 1;
    }
    const auto size = static_cast<uint32_t>(position.end - position.input);
    state.start = start;
    state.end = size != 0 ? size - 1 : 0;
    state.kind = position.kind;
    state.context = position.context;
    state.last = inBody && position.last == '\r' ? uint8_t{'\n'} : position.last;
    if ((special & StateLexer::kHalfCut) == 0) {
        state.index = 0;
    }
}

bool isUntouched() {
    return (state.start | state.end | state.index | state.ended) == 0 && !seesFills();
}

namespace {

// The result of load() and findStart() in that case: the first token begins at the input's start.
Position atStart(const uint8_t *input) {
    return {.input = input,
            .at = input,
            .end = input,
            .kind = state.kind,
            .context = state.context,
            .last = state.last,
            .counted = 0};
}

} // namespace

StateLexer begin(const uint8_t *input) {
    state.input = input;
    state.late = nullptr;
    state.inputGone = false;
    state.context = SDP_LEXCTX_SDP;
    StateLexer lexer = isUntouched() ? StateLexer{{atStart(input), {0}}} : load();
    lexer.advance(SDP_LEXCTX_SDP);
    store(lexer);
    lexer.special = specialBits(lexer);
    return lexer;
}

// The fields are set one by one: the copy of a lexer that was just made would wait for its stores.
void beginBody(const uint8_t *body, const LateInput &late, BodyLexer &lexer) {
    lexer.input = body;
    lexer.at = body;
    lexer.end = body + 2;
    lexer.kind = SDP_TOK_VERSION;
    lexer.context = SDP_LEXCTX_SDP;
    lexer.last = '=';
    lexer.counted = 0;
    state.input = late.input;
    state.late = &late;
    state.inputGone = false;
    state.end = 1;
    state.kind = SDP_TOK_VERSION;
    state.context = SDP_LEXCTX_SDP;
    state.last = '=';
}

void clear() {
    state.index = 0;
    state.end = 0;
    state.start = 0;
    state.ended = 0;
}

SpecialStart findStart(const uint8_t *input, const uint8_t *at, const uint8_t *end,
                       uint32_t special) {
    if ((special & StateLexer::kEnded) != 0) {
        return {nullptr, special};
    }
    const uint8_t *const next = end <= input + 1 ? input : end;
    const uint8_t *const from = (special & StateLexer::kHalfCut) != 0 ? at : next;
    const uint32_t ended = *from == '\0' ? StateLexer::kEnded : 0;
    const uint32_t repeats = from == input ? StateLexer::kRepeats : 0;
    return {from, ended | repeats | (special & StateLexer::kCallsForTexts)};
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

// The last token of a text: a space or a tab, or the run after the last of them.
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

const uint8_t *findLineEnd(const uint8_t *text) {
    const auto *const from = reinterpret_cast<const char *>(text);
    const char *const end = std::strchr(from, '\n');
    return text + (end != nullptr ? static_cast<size_t>(end - from) : std::strlen(from));
}

StateLexer gatherTokens(StateLexer lexer, uint32_t limit, bool &fits) {
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

StateLexer gatherToSlash(StateLexer lexer, uint32_t limit, bool &fits) {
    uint32_t gathered = 0;
    for (; !lexer.is(SDP_TOK_SLASH) && !lexer.is(SDP_TOK_LF); lexer.advance(SDP_LEXCTX_CHAR)) {
        if (gathered++ == limit) {
            fits = false;
            return lexer;
        }
        lexer.text();
        lexer.special |= lexer.is(SDP_TOK_EOF) ? StateLexer::kEnded : 0;
    }
    fits = true;
    return lexer;
}

} // namespace sdpline::lexer

namespace sdpline {

[[gnu::noinline]] std::string_view StateLexer::text() {
    return LexerOn::text();
}

[[gnu::noinline]] void StateLexer::advance(uint32_t under) {
    LexerOn::advance(under);
}

[[gnu::noinline]] bool StateLexer::take(uint32_t wanted, uint32_t under) {
    return LexerOn::take(wanted, under);
}

[[gnu::noinline]] bool StateLexer::takeToText(uint32_t wanted) {
    return LexerOn::takeToText(wanted);
}

[[gnu::noinline]] void StateLexer::finishText() {
    LexerOn::finishText();
}

[[gnu::noinline]] bool StateLexer::takeRestOfLine(std::string_view &rest, uint32_t limit) {
    return LexerOn::takeRestOfLine(rest, limit);
}

[[gnu::noinline]] bool StateLexer::takeBytesToSlash(std::string_view &bytes, uint32_t limit) {
    return LexerOn::takeBytesToSlash(bytes, limit);
}

} // namespace sdpline
