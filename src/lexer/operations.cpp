// The operations on the lexer's state that are exported (src/exports/lexer.cpp).
#include "lexer/operations.hpp"

#include <algorithm>
#include <cstring>

#include "checks/checks.hpp"

namespace sdpline::lexer {

namespace {

bool isContext(uint32_t context) {
    return context >= SDP_LEXCTX_SDP && context <= SDP_LEXCTX_IPV6;
}

} // namespace

uint32_t classifyNext() {
    state.last = state.inputGone ? uint8_t{'\0'} : inputBytes()[state.start + state.index];
    return kBytes.kind[state.last];
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
        StateLexer lexer = load();
        lexer.advance(state.context);
        store(lexer);
    } else if (state.ended != 1) {
        mark(); // without a context no token is cut
        state.ended = classifyNext() == SDP_TOK_EOF ? 1 : state.ended;
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

bool match(uint32_t kind) {
    if (state.kind != kind) {
        return false;
    }
    consume();
    return true;
}

const char *currentText() {
    // A token that ends before it starts is empty.
    const uint32_t size = state.end < state.start ? 0 : state.end - state.start + 1;
    if (size >= kTextSize) {
        return nullptr;
    }
    publishText();
    if (state.inputGone) {
        takeText(reinterpret_cast<const uint8_t *>(""), 0);
    } else {
        takeText(inputBytes() + state.start, size);
    }
    return state.text;
}

void overwriteText(const uint8_t *bytes, int32_t count) {
    if (count <= 0) {
        return;
    }
    publishText();
    std::memcpy(state.text, bytes, std::min(static_cast<uint32_t>(count), kTextSize));
}

} // namespace sdpline::lexer
