// What the tests of the lexer share: an input that may not be read beyond its end, and tokens to
// compare.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "sdpline/sdpinternals.h"
#include "support/guarded.hpp"
#include "support/securefaults.hpp"

namespace support {

// One token as the getters tell it.
struct Token {
    uint32_t kind;
    uint32_t start;
    uint32_t end;

    bool operator==(const Token &) const = default;
};

inline std::ostream &operator<<(std::ostream &out, const Token &token) {
    return out << "kind " << token.kind << " at " << token.start << " to " << token.end;
}

using Tokens = std::vector<std::pair<uint32_t, std::string>>;

class LexerTest : public testing::Test {
protected:
    void SetUp() override { SdpSetFnAlloc(nullptr); }

    void TearDown() override {
        clearSdpLexer();
        const SipString nothing = {0, nullptr};
        setInput(&nothing);
        setLexerContext(SDP_LEXCTX_NONE);
        g_gSipStackFileId = 0;
        SdpSetFnAlloc(nullptr);
        SecureFaults::reset();
    }

    // Starts on a text, whose end is the end of readable memory.
    void use(const std::string &text, uint32_t context) {
        input_ = std::make_unique<Guarded>(std::string_view(text.c_str(), text.size() + 1));
        const SipString input = input_->text();
        setInput(&input);
        clearSdpLexer();
        sdpSetTToken(0);
        sdpSetLastChar(0);
        setLexerContext(context);
    }

    // The same, past a line feed, so that no token begins at offset 0.
    void useInside(const std::string &text, uint32_t context) {
        use("\n\n" + text, SDP_LEXCTX_CHAR);
        sdpSetStartToken(1);
        sdpSetEndToken(1);
        setLexerContext(context);
    }

    static Token current() { return {LA(), sdpGetStartToken(), sdpGetEndToken()}; }

    static Token next() {
        consume();
        return current();
    }

    // Kinds and texts of the tokens up to the end of the input, which tests keep near.
    static Tokens rest() {
        Tokens tokens;
        for (consume(); LA() != SDP_TOK_EOF && tokens.size() < 100; consume()) {
            tokens.emplace_back(LA(), LT());
        }
        return tokens;
    }

    std::unique_ptr<Guarded> input_;
};

} // namespace support
