// What the line encoders share: the appends that every line is made of.
//
// Each append is one call of the string buffer, as small as a letter, a number or a word, in text
// order. Where a line's rule is that a refused append ends it, its encoder uses Appender; where
// the rule is that the work goes on, it calls the plain functions and drops their results.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "sdpline/sdpinternals.h"
#include "utils/sdpchecks.hpp"
#include "utils/sdpwords.hpp"

namespace sdpline {

inline uint32_t append(SipStringBuffer *buffer, std::string_view text) {
    return SipSbCopyConstString(buffer, text.data(), static_cast<uint32_t>(text.size()));
}

// The line's letter and "=", when the flag asks for them. The first refused one is the result.
inline uint32_t appendPrefix(SipStringBuffer *buffer, const uint32_t *flag, char key) {
    if (*flag != 1) {
        return 0;
    }
    const uint32_t result = SipSbCopyChar(buffer, key);
    return result != 0 ? result : SipSbCopyChar(buffer, '=');
}

// The line end that is configured at this moment.
inline uint32_t appendLineEnd(SipStringBuffer *buffer) {
    const SipString *const lineEnd = g_gpstSdpCrlfCfg;
    return SipSbCopyConstString(buffer, lineEnd->pcData, lineEnd->ulLen);
}

// The word of a code; a code that the table does not know fails the check.
inline SDPResult appendWord(SipStringBuffer *buffer, std::span<const Word> table, uint32_t code,
                            Check unknown, uint32_t line = __builtin_LINE()) {
    const Word *const word = findByCode(table, code);
    return word != nullptr ? append(buffer, word->text) : fail(unknown, code, line);
}

// The same where a code without a word is written as nothing.
inline SDPResult appendKnownWord(SipStringBuffer *buffer, std::span<const Word> table,
                                 uint32_t code) {
    const Word *const word = findByCode(table, code);
    return word != nullptr ? append(buffer, word->text) : 0;
}

// Makes one append after another until one is refused: the later ones are not tried, and the
// first failure is the result.
class Appender {
public:
    explicit Appender(SipStringBuffer *buffer) : buffer_(buffer) {}

    Appender &prefix(const uint32_t *flag, char key) {
        return then([=, this] { return appendPrefix(buffer_, flag, key); });
    }
    Appender &character(char letter) {
        return then([=, this] { return SipSbCopyChar(buffer_, letter); });
    }
    Appender &text(const SipString *text) {
        return then([=, this] { return SipSbCopyString(buffer_, text); });
    }
    Appender &number(uint32_t value) {
        return then([=, this] { return SipSbCopyLong(buffer_, value); });
    }
    Appender &lineEnd() {
        return then([this] { return appendLineEnd(buffer_); });
    }

    // A part that has an encoder of its own.
    template <class Part>
    Appender &then(Part part) {
        if (result_ == 0) {
            result_ = part();
        }
        return *this;
    }

    SDPResult result() const { return result_; }

private:
    SipStringBuffer *buffer_;
    SDPResult result_ = 0;
};

} // namespace sdpline
