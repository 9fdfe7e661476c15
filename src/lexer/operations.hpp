// The lexer as its exported operations show it: one byte-by-byte state for the process.
#pragma once

#include <cstdint>

#include "lexer/state.hpp"

namespace sdpline::lexer {

// The kind of the byte at the token's start plus the index. Moves nothing.
uint32_t classifyNext();

// Ends the token under construction, or starts the next one after the current one.
void mark();

// Advances to the next token; does nothing once the end token is current.
void consume();

// Reads the first token and returns its kind. Without an input a check fails, whose result is
// returned.
uint32_t startTracking();

// Advances and returns true when the current token is of the kind.
bool match(uint32_t kind);

// The text of the current token in the text buffer; null when it has more than 1023 bytes.
const char *currentText();

// Writes bytes over the start of the text buffer, at most as many as it has.
void overwriteText(const uint8_t *bytes, int32_t count);

} // namespace sdpline::lexer
