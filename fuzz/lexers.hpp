// The lexer of the library and a simple model of it, on the same input.
#pragma once

#include <cstring>

#include "fuzz.hpp"
#include "sdpline/sdpinternals.h"
#include "support/lexermodel.hpp"

namespace fuzz {

class Lexers {
public:
    // Both at the start of the same bytes, which end in a NUL.
    explicit Lexers(std::string_view text)
        : text_(std::string(text) + '\0'), size_(text_.size() - 1) {
        const SipString input = text_.text();
        setInput(&input);
        clearSdpLexer();
        sdpSetTToken(0);
        sdpSetLastChar(0);
        setLexerContext(SDP_LEXCTX_NONE);
        std::memset(sdpGetThrowAwayBuffer(), '#', model_.text.size());
        model_.text.fill('#');
        model_.input = text_.data();
        compare();
    }

    ~Lexers() {
        const SipString nothing = {0, nullptr};
        setInput(&nothing);
        clearSdpLexer();
    }

    Lexers(const Lexers &) = delete;
    Lexers &operator=(const Lexers &) = delete;

    // One operation on both; half of the operations read the next token.
    void operate(fuzz::Input &input) {
        const uint8_t choice = input.byte();
        const uint32_t argument = choice >> 4;
        switch (choice % 16) {
        case 0: switchTo(argument); break;
        case 1: switchTo(1 + argument % 6); break;
        case 2: match(LA()); break;
        case 3: match(input.below(70)); break;
        case 4: classify(); break;
        case 5: markBoth(); break;
        case 6: start(); break;
        case 7: readText(); break;
        case 8: argument == 0 ? clear() : advance(); break;
        case 9: argument == 0 ? jump(input) : advance(); break;
        case 10: argument == 0 ? build(input) : advance(); break;
        case 11: argument == 0 ? fill(input) : advance(); break;
        default: advance(); break;
        }
        compare();
    }

    void advance() {
        consume();
        model_.consume();
    }

    void switchTo(uint32_t context) {
        setLexerContext(context);
        model_.context = context;
    }

    // Sets any position in the input, as setters may do.
    void jump(fuzz::Input &input) {
        if (size_ == 0) {
            return;
        }
        model_.start = input.below(static_cast<uint32_t>(size_));
        model_.end = model_.start + input.below(static_cast<uint32_t>(size_) - model_.start);
        model_.index = 0;
        model_.kind = input.below(70);
        model_.last = input.byte();
        model_.ended = input.oneIn(8) ? 2 : 0;
        model_.impose();
    }

    support::LexerModel &model() { return model_; }

    // After a parser the model takes the text buffer from the library.
    void shareTextBuffer() {
        std::memcpy(model_.text.data(), sdpGetThrowAwayBuffer(), model_.text.size());
    }

    void compare() const {
        require(sdpGetStartToken() == model_.start, "the token starts where the model's does");
        require(sdpGetEndToken() == model_.end, "the token ends where the model's does");
        require(sdpGetIndex() == model_.index, "the index is the model's");
        require(sdpGetLastChar() == model_.last, "the last byte is the model's");
        require(sdpGetTToken() == model_.kind && LA() == model_.kind, "the kind is the model's");
        require(sdpGetEnd() == model_.ended, "the input ends as the model's");
        require(sdpGetLexerContext() == model_.context, "the context is the model's");
        require(sdpGetInput() == model_.input, "the input is the model's");
    }

private:
    void match(uint32_t kind) {
        const bool matched = sdp_match(kind) != 0;
        require(matched == model_.match(kind), "a kind matches as in the model");
    }

    void classify() {
        if (model_.start + model_.index <= size_) {
            const uint32_t kind = nextToken();
            require(kind == model_.nextToken(), "a byte is of the model's kind");
        }
    }

    void markBoth() {
        if (model_.end < size_) { // or the next token would begin after the NUL
            mark();
            model_.mark();
        }
    }

    void start() {
        const uint32_t kind = startTracking();
        require(kind == model_.startTracking(), "the first token is the model's");
    }

    void clear() {
        clearSdpLexer();
        model_.clear();
    }

    void readText() {
        const auto expected = model_.tokenText();
        const char *const text = LT();
        require((text != nullptr) == expected.has_value(), "a text is given as by the model");
        require(text == nullptr || *expected == text, "the text is the model's");
        require(std::memcmp(sdpGetThrowAwayBuffer(), model_.text.data(), model_.text.size()) == 0,
                "the text buffer is the model's");
    }

    // A token that is half built.
    void build(fuzz::Input &input) {
        if (model_.start < size_) {
            model_.index = input.below(static_cast<uint32_t>(size_) - model_.start + 1);
            sdpSetIndex(model_.index);
        }
    }

    void fill(fuzz::Input &input) {
        const std::string bytes(input.below(20), static_cast<char>(input.byte()));
        sdpSetThrowAwayBuffer(reinterpret_cast<const uint8_t *>(bytes.data()),
                              static_cast<int32_t>(bytes.size()));
        std::memcpy(model_.text.data(), bytes.data(), bytes.size());
    }

    fuzz::Exact text_;
    size_t size_;
    support::LexerModel model_;
};

} // namespace fuzz
