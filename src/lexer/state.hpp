// The process-wide state of the lexer, which the exported operations read and write, and which a
// parse starts from and stores its position in.
#pragma once

#include <cstdint>

#include "lexer/lexer.hpp"

namespace sdpline::lexer {

// An input whose bytes are written when they are first read: by a function, from a text.
struct LateInput {
    uint8_t *(*write)(const uint8_t *text, uint32_t length, uint8_t *input);
    const uint8_t *text;
    uint32_t length;
    uint8_t *input;
};

// The state of the exported operations. Offsets are from the start of the input.
struct State {
    const uint8_t *input;  // its bytes are read through inputBytes()
    const LateInput *late; // null when the bytes of the input have been written
    bool inputGone; // the input was the copy of a parse, which no longer exists: it is not read
    uint32_t start;
    uint32_t end;   // the offset of the last byte, not of the byte after it
    uint32_t index; // bytes of a token under construction
    uint32_t kind;
    uint32_t context;
    uint32_t ended;
    uint8_t last;
    char text[kTextSize];
    char rtpmap[sizeof "rtpmap"];
};
extern SDPLINE_PER_THREAD State state;

// The input; its bytes are written first, if they are late.
const uint8_t *inputBytes();
// To be called before the input's memory is released: it is not read from then on.
void loseInput();

// Returns a lexer at the state's position; stores a lexer's position in the state.
StateLexer load();
void store(const Position &position, uint32_t special, bool inBody);
template <class Special>
void store(const LexerOn<Special> &lexer) {
    store(lexer, lexer.special, lexer.inBody);
}

// Whether no setter changed the positions since they were reset, and no program replaced memset_s.
bool isUntouched();
// Sets the state to the first token of an input, and returns a lexer at that token.
StateLexer begin(const uint8_t *input);
// The same for a body that begins with "v=", when the state is untouched: sets the lexer. The input
// that the exported operations read is the late one, the body's normal form.
void beginBody(const uint8_t *body, const LateInput &late, BodyLexer &lexer);
// Resets the positions to the start of the input.
void clear();

} // namespace sdpline::lexer
