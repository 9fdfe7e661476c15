// What of cutting is too rare or too long to be inlined into the parsers.
#include "lexer/lexer.hpp"

#include <cstring>

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

Lexer enterNothing() {
    return {.input = kNothing,
            .at = kNothing,
            .behind = kNothing,
            .kind = state.kind,
            .context = state.context,
            .odd = Lexer::kRepeats | (state.ended == 1 ? Lexer::kEnded : 0),
            .last = state.last};
}

Lexer enterInput() {
    Lexer lexer = {.input = state.input,
                   .at = state.input + state.start,
                   .behind = state.input + (state.end + 1),
                   .kind = state.kind,
                   .context = state.context,
                   .odd = 0,
                   .last = state.last};
    if (state.ended == 1) {
        lexer.odd |= Lexer::kEnded;
    }
    if (state.index != 0) {
        lexer.odd |= Lexer::kHalfCut;
    }
    if (lexer.behind <= lexer.input + 1 || lexer.behind <= lexer.at) {
        lexer.odd |= Lexer::kRepeats;
    }
    return lexer;
}

} // namespace

Lexer enter() {
    Lexer lexer = state.inputGone ? enterNothing() : enterInput();
    lexer.odd |= !seesFills() ? 0 : Lexer::kCallsForTexts;
    return lexer;
}

void leave(const Lexer &lexer) {
    publishText();
    const auto start = static_cast<uint32_t>(lexer.at - lexer.input);
    const bool moved = start != state.start;
    if ((moved && lexer.is(SDP_TOK_EOF)) || (lexer.odd & Lexer::kEnded) != 0) {
        state.ended = 1;
    }
    state.start = start;
    state.end =
        lexer.behind == lexer.input ? 0 : static_cast<uint32_t>(lexer.behind - lexer.input) - 1;
    state.kind = lexer.kind;
    state.context = lexer.context;
    state.last = lexer.last;
    if ((lexer.odd & Lexer::kHalfCut) == 0) {
        state.index = 0;
    }
}

namespace {

// Texts and their last tokens: a blank or tab, or the run behind the last of them.
const uint8_t *lastToken(const uint8_t *from, const uint8_t *end) {
    const uint8_t *token = end - 1;
    if (*token == ' ' || *token == '\t') {
        return token;
    }
    while (token != from && token[-1] != ' ' && token[-1] != '\t') {
        --token;
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
    std::memcpy(state.text, from, size);
    state.text[size] = '\0';
    takenText.from = nullptr;
}

OddStart startOddly(const uint8_t *input, const uint8_t *at, const uint8_t *behind, uint32_t odd) {
    if ((odd & Lexer::kEnded) != 0) {
        return {nullptr, odd};
    }
    const uint8_t *const next = behind <= input + 1 ? input : behind;
    const uint8_t *const from = (odd & Lexer::kHalfCut) != 0 ? at : next;
    const uint32_t ended = *from == '\0' ? Lexer::kEnded : 0;
    const uint32_t repeats = from == input ? Lexer::kRepeats : 0;
    return {from, ended | repeats | (odd & Lexer::kCallsForTexts)};
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

uint32_t lineSize(const uint8_t *text) {
    const auto *const from = reinterpret_cast<const char *>(text);
    const char *const end = std::strchr(from, '\n');
    return static_cast<uint32_t>(end != nullptr ? static_cast<size_t>(end - from)
                                                : std::strlen(from));
}

Lexer gatherTokens(Lexer lexer, uint32_t limit, bool &fits) {
    uint32_t gathered = 0;
    for (; !lexer.is(SDP_TOK_LF) && !lexer.is(SDP_TOK_EOF); lexer.advance(SDP_LEXCTX_STRING)) {
        gathered += static_cast<uint32_t>(lexer.behind - lexer.at);
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
        lexer.odd |= lexer.is(SDP_TOK_EOF) ? Lexer::kEnded : 0;
    }
    fits = true;
    return lexer;
}

} // namespace sdpline::lexer
