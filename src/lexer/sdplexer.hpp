// The lexer as the parser uses it: one current token over one NUL-terminated input, cut on demand
// under the context in force. The exported operations are thin wrappers of what stands here.
//
// A token never spans a line end or the end of the input. There is no lookahead beyond the
// current token and no way back.
#pragma once

#include <cstdint>
#include <string_view>

#include "lexer/sdplexer_bytes.hpp"
#include "sdpline/sdpinternals.h"

namespace sdpline::lexer {

constexpr uint32_t kTextSize = 1024; // of the token text buffer, terminator included

// Offsets count from the start of the input.
//
//   o=- 2890844526 ...
//       ^start   ^end      kind: SDP_TOK_DIGIT, last: the blank behind the run
struct State {
    const uint8_t *input;
    uint32_t start;
    uint32_t end; // of the last byte, not behind it
    uint32_t index;
    uint32_t kind;
    uint32_t context;
    uint32_t ended;
    uint8_t last;
    char text[kTextSize];
    char rtpmap[sizeof "rtpmap"];
};

extern State state;

// Ends the token under construction, or starts the next one behind the last. A token that ended at
// offset 0 is taken for none.
inline void moveMark() {
    if (state.index != 0) {
        state.end = state.start + state.index - 1;
        state.index = 0;
    } else {
        state.start = state.end == 0 ? 0 : state.end + 1;
    }
}

// Cuts the next token under one context. After the end token they do nothing.
void advanceNone();
void advanceSdp();
void advanceChar();
void advanceString();
void advanceAlnum();
void advanceToken();
void advanceIpv6();

inline void advance(uint32_t context) {
    switch (context) {
    case SDP_LEXCTX_SDP: return advanceSdp();
    case SDP_LEXCTX_CHAR: return advanceChar();
    case SDP_LEXCTX_STRING: return advanceString();
    case SDP_LEXCTX_ALNUM: return advanceAlnum();
    case SDP_LEXCTX_TOKEN: return advanceToken();
    case SDP_LEXCTX_IPV6: return advanceIpv6();
    default: return advanceNone();
    }
}

inline uint32_t kind() {
    return state.kind;
}

inline bool at(uint32_t kind) {
    return state.kind == kind;
}

inline void switchTo(uint32_t context) {
    state.context = context;
}

// Switches the context, then takes the current token when it is of the kind.
inline bool take(uint32_t kind, uint32_t context) {
    state.context = context;
    if (state.kind != kind) {
        return false;
    }
    advance(context);
    return true;
}

// The current token's bytes, in the input; null data when it is longer than 1023 bytes.
inline std::string_view text() {
    const uint32_t size = state.end - state.start + 1;
    if (size >= kTextSize) {
        return {};
    }
    return {reinterpret_cast<const char *>(state.input + state.start), size};
}

// Whether the input ends at the current token.
inline bool inputEnds() {
    return state.input[state.start] == '\0';
}

// Gathers the tokens of the string context from the current one to the end of the line or of the
// input, which is current afterwards. False when they are more than `limit` bytes; the token that
// no longer fits is then current.
bool takeRestOfLine(std::string_view &rest, uint32_t limit);

// Gathers the bytes from the current one to a "/" or the line end, which is current afterwards.
// False when they are more than `limit` bytes or the input ends first.
bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);

} // namespace sdpline::lexer
