// What the writers of lines share: words, prefixes, and lines that end at the first refused append.
//
// Where a line's rule is that a refused append ends it, its writer uses Appender; where the rule is
// that the work goes on, it makes the plain appends and drops their results.
#pragma once

#include <cstdint>
#include <span>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "services/output.hpp"
#include "tables/keywords.hpp"

namespace sdpline {

// Reports a failing check of a writer. The log hook may append to the buffer that is written.
SDPLINE_INLINE SDPResult fail(Output &out, Check check, uint32_t value = 0,
                              uint32_t line = __builtin_LINE()) {
    const SDPResult result = out.call<reportFailed>(check, value, line, nullptr);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

SDPLINE_INLINE SDPResult logAndForward(Output &out, Check check, SDPResult result,
                                uint32_t line = __builtin_LINE()) {
    return out.call<static_cast<SDPResult (*)(Check, SDPResult, uint32_t)>(logAndForward)>(check, result,
                                                                                    line);
}

// The line's letter and "=", when the flag asks for them. The first refused one is the result.
SDPLINE_INLINE uint32_t appendPrefix(Output &out, const uint32_t *flag, char key) {
    if (*flag != 1) {
        return 0;
    }
    const uint32_t result = out.character(key);
    return result != 0 ? result : out.character('=');
}

// The word of a code; a code that the table does not know fails the check.
SDPLINE_INLINE SDPResult appendWord(Output &out, std::span<const Word> table, uint32_t code,
                                    Check unknown, uint32_t line = __builtin_LINE()) {
    const Word *const word = findByCode(table, code);
    return word != nullptr ? out.word(word->text) : fail(out, unknown, code, line);
}

// The same where a code without a word is written as nothing.
SDPLINE_INLINE SDPResult appendKnownWord(Output &out, std::span<const Word> table, uint32_t code) {
    const Word *const word = findByCode(table, code);
    return word != nullptr ? out.word(word->text) : 0;
}

// Makes one append after another until one is refused: the later ones are not tried, and the
// first failure is the result.
class Appender {
public:
    SDPLINE_INLINE explicit Appender(Output &out) : out_(out) {}

    SDPLINE_INLINE Appender &prefix(const uint32_t *flag, char key) {
        return then([=, this] { return appendPrefix(out_, flag, key); });
    }
    SDPLINE_INLINE Appender &character(char letter) {
        return then([=, this] { return out_.character(letter); });
    }
    SDPLINE_INLINE Appender &text(const SipString *text) {
        return then([=, this] { return out_.text(text); });
    }
    SDPLINE_INLINE Appender &word(const Word &word) {
        return then([&, this] { return out_.word(word.text); });
    }
    SDPLINE_INLINE Appender &number(uint32_t value) {
        return then([=, this] { return out_.number(value); });
    }
    SDPLINE_INLINE Appender &lineEnd() {
        return then([this] { return out_.lineEnd(); });
    }

    // A part that has a writer of its own.
    template <class Part>
    SDPLINE_INLINE Appender &then(Part part) {
        if (result_ == 0) [[likely]] {
            result_ = part();
        }
        return *this;
    }

    SDPLINE_INLINE SDPResult result() const { return result_; }

private:
    Output &out_;
    SDPResult result_ = 0;
};

// key "=" byte-string CRLF
SDPLINE_INLINE SDPResult writeTextLine(Output &out, const uint32_t *flag, char key,
                                       const SipString *value) {
    return Appender(out).prefix(flag, key).text(value).lineEnd().result();
}

SDPLINE_INLINE SDPResult writeTextLines(Output &out, const uint32_t *flag, char key, uint32_t count,
                                        SipString *const *items) {
    for (uint32_t i = 0; i < count; ++i) {
        if (const SDPResult result = writeTextLine(out, flag, key, items[i])) {
            return result;
        }
    }
    return 0;
}

} // namespace sdpline
