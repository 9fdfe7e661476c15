// The lexer's exported operations.
#include <cstring>

#include "checks/checks.hpp"
#include "lexer/lexer.hpp"
#include "parser/parser.hpp"

using namespace sdpline;
using lexer::state;

namespace {

bool isContext(uint32_t context) {
    return context >= SDP_LEXCTX_SDP && context <= SDP_LEXCTX_IPV6;
}

} // namespace

extern "C" {

void setInput(const SipString *pstText) {
    state.input = reinterpret_cast<const uint8_t *>(pstText->pcData);
    state.inputGone = false;
}

void setLexerContext(uint32_t enContext) {
    state.context = enContext;
}

uint32_t nextToken() {
    state.last = state.inputGone ? uint8_t{'\0'} : state.input[state.start + state.index];
    return lexer::kBytes.kind[state.last];
}

void mark() {
    if (state.index != 0) {
        state.end = state.start + state.index - 1;
        state.index = 0;
    } else {
        state.start = state.end == 0 ? 0 : state.end + 1; // an end at offset 0 counts as none
    }
}

void consume() {
    if (isContext(state.context)) {
        StateLexer lexer = lexer::load();
        lexer.advance(state.context);
        lexer::store(lexer, lexer.special);
    } else if (state.ended != 1) {
        mark(); // without a context nothing is cut
        state.ended = nextToken() == SDP_TOK_EOF ? 1 : state.ended;
    }
}

uint32_t startTracking() {
    if (state.context == SDP_LEXCTX_NONE) {
        state.context = SDP_LEXCTX_SDP;
    }
    if (state.input == nullptr) {
        return fail(Check::LexerInput);
    }
    consume();
    return state.kind;
}

uint32_t sdp_match(uint32_t enKind) {
    if (state.kind != enKind) {
        return 0;
    }
    consume();
    return 1;
}

uint32_t LA() {
    return state.kind;
}

const char *LT() {
    // A token that ends before it starts is empty.
    const uint32_t size = state.end < state.start ? 0 : state.end - state.start + 1;
    if (size >= kTextSize) {
        return nullptr;
    }
    lexer::publishText();
    if (state.inputGone) {
        lexer::takeText(reinterpret_cast<const uint8_t *>(""), 0);
    } else {
        lexer::takeText(state.input + state.start, size);
    }
    return state.text;
}

uint32_t clearSdpLexer() {
    state.index = 0;
    state.end = 0;
    state.start = 0;
    state.ended = 0;
    return 1;
}

uint32_t sdpGetLexerContext() {
    return state.context;
}

uint32_t sdpGetEnd() {
    return state.ended;
}

void sdpSetEnd(uint32_t bEnd) {
    state.ended = bEnd;
}

uint32_t sdpGetEndToken() {
    return state.end;
}

void sdpSetEndToken(uint32_t ulOffset) {
    state.end = ulOffset;
}

uint32_t sdpGetIndex() {
    return state.index;
}

void sdpSetIndex(uint32_t ulIndex) {
    state.index = ulIndex;
}

const uint8_t *sdpGetInput() {
    return state.input;
}

uint8_t sdpGetLastChar() {
    return state.last;
}

void sdpSetLastChar(uint8_t ucChar) {
    state.last = ucChar;
}

uint32_t sdpGetStartToken() {
    return state.start;
}

void sdpSetStartToken(uint32_t ulOffset) {
    state.start = ulOffset;
}

uint32_t sdpGetTToken() {
    return state.kind;
}

void sdpSetTToken(uint32_t enKind) {
    state.kind = enKind;
}

char *sdpGetThrowAwayBuffer() {
    lexer::publishText();
    return state.text;
}

void sdpSetThrowAwayBuffer(const uint8_t *pucBytes, int32_t iCount) {
    if (iCount <= 0) {
        return;
    }
    lexer::publishText();
    const auto count = static_cast<uint32_t>(iCount);
    std::memcpy(state.text, pucBytes, count < kTextSize ? count : kTextSize);
}

char *sdpGetRtpmapVar() {
    return state.rtpmap;
}

SDPResult sdpSetString(SipString *pstValue, const char *pcText) {
    return storeText(*pstValue, pcText);
}

} // extern "C"
