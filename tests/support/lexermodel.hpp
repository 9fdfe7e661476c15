// A second, slow and simple lexer: every token is cut byte by byte with nextToken() and mark(), and
// every rule is a comparison of bytes. It shares no table and no code with the library;
// lexer_model_test.cpp compares the two.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "sdpline/sdpinternals.h"

namespace support {

struct LexerModel {
    // Reads the same bytes as the library; they end in a NUL.
    const uint8_t *input = nullptr;
    uint32_t start = 0;
    uint32_t end = 0;
    uint32_t index = 0;
    uint8_t last = 0;
    uint32_t kind = 0;
    uint32_t context = SDP_LEXCTX_NONE;
    uint32_t ended = 0;
    std::array<char, 1024> text = {};

    // The operations of the same names. startTracking needs an input; a text that does not fit is
    // no value.
    uint32_t nextToken();
    void mark();
    void consume();
    uint32_t startTracking();
    bool match(uint32_t expected);
    std::optional<std::string> tokenText();
    void clear();

    // Sets the library's state, all but its context and its text, to that of the model.
    void impose() const {
        sdpSetStartToken(start);
        sdpSetEndToken(end);
        sdpSetIndex(index);
        sdpSetTToken(kind);
        sdpSetLastChar(last);
        sdpSetEnd(ended);
    }

    // Token by token, what the parser does with a rest of line and with an encoding name. No value
    // when the bytes are more than the limit; what no longer fits is then current.
    std::optional<std::string> gatherRestOfLine(uint32_t limit);
    std::optional<std::string> gatherToSlash(uint32_t limit);

private:
    // Takes the byte classified last into the token under construction.
    void take() { ++index; }
    void close(uint32_t tokenKind);
    void cutSdp(uint32_t first);
    void cutWord(char letter);
    void cutRun(uint32_t tokenKind, bool (*belongs)(uint32_t first, uint32_t next), uint32_t first);
    void cutIpv6(uint32_t first);
};

} // namespace support
