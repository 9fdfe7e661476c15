// What of cutting is too rare or too long to be inlined into the parsers.
#include "lexer/lexer.hpp"

#include <cstring>

namespace sdpline::lexer {

SDPLINE_PER_THREAD State state = {.input = nullptr,
                                  .start = 0,
                                  .end = 0,
                                  .index = 0,
                                  .kind = 0,
                                  .context = SDP_LEXCTX_NONE,
                                  .ended = 0,
                                  .last = 0,
                                  .text = {},
                                  .rtpmap = "rtpmap"};

Lexer enter() {
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

void leave(const Lexer &lexer) {
    const auto start = static_cast<uint32_t>(lexer.at - lexer.input);
    const bool moved = start != state.start;
    if ((moved && lexer.is(SDP_TOK_EOF)) || (lexer.odd & Lexer::kEnded) != 0) {
        state.ended = 1;
    }
    state.start = start;
    state.end = static_cast<uint32_t>(lexer.behind - lexer.input) - 1;
    state.kind = lexer.kind;
    state.context = lexer.context;
    state.last = lexer.last;
    if ((lexer.odd & Lexer::kHalfCut) == 0) {
        state.index = 0;
    }
}

namespace {

OddStart startAt(const uint8_t *from, const uint8_t *input) {
    const uint32_t ended = *from == '\0' ? Lexer::kEnded : 0;
    return {from, ended | (from == input ? Lexer::kRepeats : 0)};
}

} // namespace

OddStart startOddly(const uint8_t *input, const uint8_t *at, const uint8_t *behind, uint32_t odd) {
    if ((odd & Lexer::kEnded) != 0) {
        return {nullptr, odd};
    }
    if ((odd & Lexer::kHalfCut) != 0) {
        return startAt(at, input);
    }
    return startAt(behind <= input + 1 ? input : behind, input);
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
    }
    fits = true;
    return lexer;
}

} // namespace sdpline::lexer
