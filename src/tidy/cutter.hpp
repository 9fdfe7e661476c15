// Cuts a text into lines, and finds their letters.
#pragma once

#include "tidy/breaks.hpp"
#include "tidy/workspace.hpp"

namespace sdpline::tidy {

// Whether the decoder drops the byte at the start of a line.
constexpr bool isLeftOut(char byte) {
    return byte == ' ' || byte == '\0';
}

constexpr bool isLetter(char byte) {
    return static_cast<uint8_t>((byte | 0x20) - 'a') < 26;
}

[[gnu::noinline]] inline char keyAfterLeftOut(std::string_view line) {
    size_t at = 0;
    while (at < line.size() && isLeftOut(line[at])) {
        ++at;
    }
    return at + 1 < line.size() && line[at + 1] == '=' && isLetter(line[at]) ? line[at] : '\0';
}

// The letter before "="; 0 for none. Nearly all lines begin with it.
inline char keyOf(std::string_view line) {
    const bool isFirst = line.size() > 1 && line[1] == '=' && isLetter(line[0]);
    return isFirst ? line[0] : keyAfterLeftOut(line);
}

// The current line of a text, and the way to the next one. Lines end in LF, or in CR in a text
// without LF.
class Cutter {
public:
    Cutter(std::string_view text, char breakByte, bool &hasInnerEnd)
        : next_(text.data()), textEnd_(next_ + text.size()), breaks_(text, breakByte, hasInnerEnd),
          beforeBreak_(breakByte == '\n' ? '\r' : '\n') { // which a text without LF has not
        advance();
    }

    // Whether there are no more lines.
    bool done() const { return at_ == textEnd_; }
    std::string_view line() const { return {at_, static_cast<size_t>(lineEnd_ - at_)}; }
    std::string_view end() const { return {lineEnd_, static_cast<size_t>(next_ - lineEnd_)}; }
    // The text from the current line on.
    std::string_view rest() const { return {at_, static_cast<size_t>(textEnd_ - at_)}; }

    // Continues with the line that begins there.
    void jump(const char *to) {
        next_ = to;
        breaks_.jump(to);
        advance();
    }
    void advance() {
        at_ = next_;
        lineEnd_ = next_ = breaks_.next();
        if (next_ != textEnd_) [[likely]] {
            if (next_ != at_ && next_[-1] == beforeBreak_) {
                --lineEnd_;
            }
            ++next_;
        }
    }

private:
    const char *at_ = nullptr;
    const char *lineEnd_ = nullptr;
    const char *next_;
    const char *textEnd_;
    Breaks breaks_;
    char beforeBreak_; // which may end a line too
};

// The line end that precedes that place, the start of a line of the text that begins there.
inline std::string_view endBefore(const char *begin, const char *place) {
    const size_t size = place - begin > 1 && place[-2] == '\r' ? 2 : 1;
    return {place - size, size};
}

} // namespace sdpline::tidy
