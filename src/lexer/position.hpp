// A lexer's position in its input, and the contexts.
#pragma once

#include <cstdint>

#include "sdpline/sdpinternals.h"

namespace sdpline {

// Short names of the contexts.
struct Context {
    static constexpr uint32_t Sdp = SDP_LEXCTX_SDP;
    static constexpr uint32_t Char = SDP_LEXCTX_CHAR;
    static constexpr uint32_t String = SDP_LEXCTX_STRING;
    static constexpr uint32_t Alnum = SDP_LEXCTX_ALNUM;
    static constexpr uint32_t Token = SDP_LEXCTX_TOKEN;
    static constexpr uint32_t Ipv6 = SDP_LEXCTX_IPV6;
};

//   o=- 2890844526 ...
//       ^at       ^end      kind: SDP_TOK_DIGIT, last: the space after the run
struct Position {
    const uint8_t *input;
    const uint8_t *at;  // the current token's first byte
    const uint8_t *end; // the byte after it
    uint32_t kind;
    uint32_t context;
    uint8_t last;     // the byte that was classified last
    uint32_t counted; // the value of the last run of digits that was cut, modulo 2^32

    bool is(uint32_t wanted) const { return kind == wanted; }

    // Whether the input ends at the current token.
    bool inputEnds() const { return *at == '\0'; }

    // Moves to another position in the same input. The fields are copied one by one, so that the
    // compiler can keep each field of a local lexer in its own register.
    void copyPosition(const Position &other) {
        at = other.at;
        end = other.end;
        kind = other.kind;
        context = other.context;
        last = other.last;
    }
};

} // namespace sdpline
