// The lexer: one current token over one NUL-terminated input, cut on demand under the context in
// force. A token never spans a line end or the end of the input; there is no lookahead beyond the
// current token and no backtracking.
//
// There are two lexers with the same operations. A BodyLexer reads a body, which is followed by
// padding: its operations are inlined, and the compiler keeps it in registers. A StateLexer reads
// any input from any position, since the exported setters may set any: its operations are
// functions. The exported operations read and write the process-wide State; parsers that are called
// by their exported names start from it and store the position where they stopped.
//
// A body is a text in its normal form, with two exceptions: a line may end in CR LF, and spaces may
// precede the text of any line but the first. A CR occurs only before a LF. The tokens are those of
// the normal form: the token of a CR LF starts at the CR and has the kind of a LF; the spaces
// belong to no token.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "lexer/bytes.hpp"
#include "lexer/position.hpp"
#include "lexer/scan.hpp"
#include "sdpline/sdpinternals.h"
#include "text/inline.hpp"
#include "text/scan.hpp"

namespace sdpline {

constexpr uint32_t kTextSize = 1024; // bytes of the token text buffer, the terminating NUL included

// The special cases of a lexer before it cuts the next token. A BodyLexer has none: its next token
// always begins at `end`.
struct NothingSpecial {
    static constexpr bool kPadded = true; // sixteen bytes after the input's NUL may be read
    static constexpr bool inBody = true;
    static constexpr uint32_t special = 0;
};

struct AnythingSpecial {
    static constexpr bool kPadded = false;
    uint32_t special;    // a set of the bits below
    bool inBody = false; // the input is a body: see the top

    // The end token was cut, and stays current. Parsers never take it, so a lexer without special
    // bits does not record this; store() finds that it is current.
    static constexpr uint32_t kEnded = 1;
    // A token is under construction: the next one begins at the same byte.
    static constexpr uint32_t kHalfCut = 2;
    // The token ended at offset 0 and so counts as none, or its end is before its start.
    static constexpr uint32_t kRepeats = 4;
    // memset_s is not libsipcore's: it is called each time that a text is taken.
    static constexpr uint32_t kCallsForTexts = 8;
};

struct StateLexer;

template <class Special>
struct LexerOn : Position, Special {
    using Special::inBody;
    using Special::kPadded;
    using Special::special;

    // The properties of the input's bytes.
    const lexer::ByteTables &bytes() const { return inBody ? lexer::kBodyBytes : lexer::kBytes; }

    // Takes the text of the current token and returns it as a view into the input. When it has more
    // than 1023 bytes, nothing is taken and the data of the view is null.
    std::string_view text();

    // The value of the current token, whose text is a run of digits. `counted` is not used in a
    // StateLexer, because the token may have been cut before the lexer was made.
    uint32_t valueOf(std::string_view digits) const {
        return kPadded ? counted : scanNumber(digits);
    }

    // Cuts the next token under the context.
    SDPLINE_INLINE void advance(uint32_t under);

    // The same when the current token is a run of the context (in the alphanumeric context, of
    // digits): the next token is then no such run.
    void advanceAfterRun(uint32_t under);

    // If this text follows the current token, which is one comparison, takes it and returns true:
    // its last byte, which must be a token in every context, is then current. Else takes nothing.
    template <size_t Size>
    bool jump(const char (&text)[Size]);
    // The same for a word and the space after it. Takes the word's text.
    template <size_t Size>
    bool jumpWord(const char (&text)[Size]) {
        if (!jump(text)) {
            return false;
        }
        constexpr uint32_t size = Size - 2;
        noteTaken(at - size, size);
        return true;
    }

    // The same for a name whose bytes have been compared already: it is taken if no more bytes of a
    // token follow.
    SDPLINE_INLINE bool jumpName(uint32_t size, std::string_view &name) {
        const uint8_t *const after = end + size;
        if ((bytes().runs[*after] & lexer::kTokenRun) != 0) {
            return false;
        }
        name = {reinterpret_cast<const char *>(end), size};
        noteTaken(end, size);
        context = Context::Token;
        jumpTo(after);
        return true;
    }

    // Switches the context, then advances if the current token is of the kind.
    SDPLINE_INLINE bool take(uint32_t wanted, uint32_t under) {
        context = under;
        if (kind != wanted) {
            return false;
        }
        if (inBody && wanted == SDP_TOK_LF) {
            goToNextLine();
        }
        advance(under);
        return true;
    }

    // The same under the alphanumeric context, for the token before digits of which only the text
    // is read: their value is not computed.
    bool takeToDigits(uint32_t wanted);

    // The same for the token before a rest of line. The first token of the rest is not cut: only
    // its first byte and kind are known until takeRestOfLine() or finishText() is called.
    bool takeToText(uint32_t wanted);
    void finishText() {
        if (kind == SDP_TOK_STRING) {
            last = *at;
            scanRun<lexer::kStringRun>(SDP_TOK_STRING);
        }
    }

    // Takes the tokens of the string context from the current one to the end of the line or of the
    // input, which is current afterwards. Returns false when they have more than `limit` bytes; the
    // token that no longer fits is then current.
    bool takeRestOfLine(std::string_view &rest, uint32_t limit);

    // Takes the bytes from the current one to a "/" or the line end, which is current afterwards.
    // Returns false when there are more than `limit` of them or the input ends first.
    SDPLINE_INLINE bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);

    // A lexer at the same position whose operations are not inlined.
    StateLexer anywhere() const;

private:
    // Moves to the position of a lexer that read on token by token.
    void stopAt(const StateLexer &other);
    // Moves the end of the current line end over the spaces before the next line's text.
    void goToNextLine() {
        if (last == '\r') [[likely]] {
            end = at + 2;
        }
        while (*end == ' ')
            [[unlikely]] {
                ++end;
            }
    }
    bool begin();
    void noteTaken(const uint8_t *from, uint32_t size, uint32_t flags = 0);

    void close(uint32_t size, uint32_t closed) {
        end = at + size;
        kind = closed;
    }

    // Ends the token, a run, before `byte`, which is then the byte that was classified last.
    void closeAt(const uint8_t *byte, uint32_t closed) {
        end = byte;
        last = lexer::readAgain(byte);
        kind = closed;
    }

    // The token is one byte.
    void closeByte() { close(1, bytes().kind[last]); }

    // The first byte that does not continue the run.
    const uint8_t *runEnd(const uint8_t *byte, lexer::Run run) const {
        return lexer::runEnd(byte, run, bytes());
    }
    template <lexer::Run run>
    const uint8_t *endOf(const uint8_t *byte) const {
        return runEnd(kPadded ? lexer::skip<run>(byte) : byte, run);
    }
    // The next line end, or the end of the input.
    const uint8_t *lineEnd() const;

    template <lexer::Run run>
    void scanRun(uint32_t closed);
    SDPLINE_INLINE void scanDigits();
    SDPLINE_INLINE void scanSdp();
    SDPLINE_INLINE void scanAlnum();
    void scanLetters();
    void scanIpv6();
    void jumpTo(const uint8_t *byte);
};

using BodyLexer = LexerOn<NothingSpecial>;

// The operations out of line. Those that are not declared here are small, or used with a BodyLexer
// only.
struct StateLexer : LexerOn<AnythingSpecial> {
    std::string_view text();
    void advance(uint32_t under);
    void advanceAfterRun(uint32_t under) { advance(under); } // setters may set any place
    bool take(uint32_t wanted, uint32_t under);
    bool takeToDigits(uint32_t wanted) { return take(wanted, Context::Alnum); }
    bool takeToText(uint32_t wanted);
    void finishText();
    bool takeRestOfLine(std::string_view &rest, uint32_t limit);
    bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);
};

namespace lexer {

// The token that begins with a letter which is not a line's key: "IN", "IP4", "IP6", "X-", or the
// letter itself.
struct LetterToken {
    uint32_t kind;
    uint8_t size;
    uint8_t last;
};
[[gnu::noinline]] LetterToken cutLetter(const uint8_t *letter);

// The start of the next token when special bits are set.
struct SpecialStart {
    const uint8_t *from; // null: there is no next token
    uint32_t special;
};
[[gnu::cold, gnu::noinline]] SpecialStart findStart(const uint8_t *input, const uint8_t *at,
                                                    const uint8_t *end, uint32_t special);

// The token text that was taken last, if it is not in the text buffer yet: bytes of the input, or a
// rest of line, whose last token is then the one that was taken last.
struct TakenText {
    const uint8_t *from; // null: the text is in the buffer
    uint32_t size;
    static constexpr uint32_t kRestOfLine = 1u << 31; // a bit of `size`
};
extern SDPLINE_PER_THREAD TakenText takenText;

// Copies a text into the text buffer, after the call of memset_s that belongs to each taking.
[[gnu::cold, gnu::noinline]] void takeText(const uint8_t *from, uint32_t size);
// Copies the text of takenText into the text buffer, without that call.
void publishText();

// takeRestOfLine() and takeBytesToSlash() token by token, for a text that does not fit its limit
// and for a lexer with special bits.
[[gnu::cold, gnu::noinline]] StateLexer gatherTokens(StateLexer lexer, uint32_t limit, bool &fits);
[[gnu::cold, gnu::noinline]] StateLexer gatherToSlash(StateLexer lexer, uint32_t limit, bool &fits);

} // namespace lexer

template <class Special>
inline void LexerOn<Special>::noteTaken(const uint8_t *from, uint32_t size, uint32_t flags) {
    if ((special & AnythingSpecial::kCallsForTexts) != 0) [[unlikely]] {
        return lexer::takeText(from, size);
    }
    lexer::takenText.from = from;
    lexer::takenText.size = size | flags;
}

template <class Special>
inline std::string_view LexerOn<Special>::text() {
    const auto size = static_cast<uint32_t>(end - at);
    if (size >= kTextSize) [[unlikely]] {
        return {};
    }
    const uint8_t *from = at;
    if constexpr (!kPadded) { // no production reads a line end's text from a BodyLexer
        from += static_cast<uint32_t>(inBody && *at == '\r');
    }
    noteTaken(from, size);
    return {reinterpret_cast<const char *>(from), size};
}

// Moves to the first byte of the next token; returns false when there is none.
template <class Special>
inline bool LexerOn<Special>::begin() {
    const uint8_t *from = end;
    if constexpr (!kPadded) {
        if (special != 0) {
            const lexer::SpecialStart start = lexer::findStart(input, at, end, special);
            special = start.special;
            if (start.from == nullptr) {
                return false;
            }
            from = start.from;
        }
    }
    at = from;
    last = *from;
    return true;
}

template <class Special>
inline void LexerOn<Special>::advance(uint32_t under) {
    if (!begin()) [[unlikely]] {
        return;
    }
    switch (under) {
    case Context::Sdp: return scanSdp();
    case Context::Char: return closeByte();
    case Context::String: return scanRun<lexer::kStringRun>(SDP_TOK_STRING);
    case Context::Token: return scanRun<lexer::kTokenRun>(SDP_TOK_TOKEN);
    case Context::Alnum: return scanAlnum();
    default: return scanIpv6();
    }
}

template <class Special>
inline void LexerOn<Special>::advanceAfterRun(uint32_t under) {
    begin();
    constexpr uint8_t letters = lexer::kLetterRun | lexer::kMinusRun;
    if (under != Context::Alnum || (bytes().runs[last] & letters) == 0) [[likely]] {
        return closeByte();
    }
    scanLetters();
}

template <class Special>
template <size_t Size>
inline bool LexerOn<Special>::jump(const char (&text)[Size]) {
    constexpr size_t size = Size - 1;
    static_assert(size <= lexer::kPadding);
    if (!kPadded || std::memcmp(end, text, size) != 0) {
        return false;
    }
    at = end + (size - 1);
    last = static_cast<uint8_t>(text[size - 1]);
    closeByte();
    return true;
}

template <class Special>
inline bool LexerOn<Special>::takeToDigits(uint32_t wanted) {
    context = Context::Alnum;
    if (kind != wanted) {
        return false;
    }
    begin();
    if (isDigit(last)) [[likely]] {
        closeAt(endOf<lexer::kDigitRun>(at + 1), SDP_TOK_DIGIT);
    } else {
        scanLetters();
    }
    return true;
}

template <class Special>
inline bool LexerOn<Special>::takeToText(uint32_t wanted) {
    context = Context::String;
    if (kind != wanted) {
        return false;
    }
    if (begin()) [[likely]] {
        closeByte();
        if ((bytes().runs[last] & lexer::kStringRun) != 0) {
            kind = SDP_TOK_STRING;
        }
    }
    return true;
}

// A line's key, a keyword of letters, or one byte.
template <class Special>
inline void LexerOn<Special>::scanSdp() {
    const uint32_t key = lexer::kLineKinds[last];
    if (key != 0 && at[1] == '=') {
        last = '=';
        close(2, key);
    } else if (bytes().kind[last] != SDP_TOK_ALPHA) {
        closeByte();
    } else {
        const lexer::LetterToken token = lexer::cutLetter(at);
        last = token.last;
        close(token.size, token.kind);
    }
}

// The run that begins with the first byte, or that byte alone.
template <class Special>
template <lexer::Run run>
inline void LexerOn<Special>::scanRun(uint32_t closed) {
    if ((bytes().runs[last] & run) == 0) {
        return closeByte();
    }
    closeAt(endOf<run>(at + 1), closed);
}

template <class Special>
inline void LexerOn<Special>::scanDigits() {
    const uint8_t *byte = at;
    counted = 0;
    do {
        counted = counted * 10 + (uint32_t{*byte} - '0');
    } while (isDigit(*++byte));
    closeAt(byte, SDP_TOK_DIGIT);
}

template <class Special>
inline void LexerOn<Special>::scanAlnum() {
    return isDigit(last) ? scanDigits() : scanLetters();
}

template <class Special>
inline void LexerOn<Special>::scanLetters() {
    switch (bytes().kind[last]) {
    case SDP_TOK_ALPHA: return closeAt(runEnd(at + 1, lexer::kLetterRun), SDP_TOK_ALPHA);
    case SDP_TOK_MINUS: return closeAt(runEnd(at + 1, lexer::kMinusRun), SDP_TOK_MINUS);
    default: return closeByte();
    }
}

// The token kind is that of the run's last byte, so that an address that ends in "." is recognised.
template <class Special>
inline void LexerOn<Special>::scanIpv6() {
    scanRun<lexer::kIpv6Run>(SDP_TOK_ALPHA);
    kind = bytes().kind[end[-1]];
}

// Makes one byte the current token.
template <class Special>
inline void LexerOn<Special>::jumpTo(const uint8_t *byte) {
    at = byte;
    last = *byte;
    closeByte();
}

template <class Special>
inline StateLexer LexerOn<Special>::anywhere() const {
    return {{static_cast<const Position &>(*this), {special, inBody}}};
}

template <class Special>
inline void LexerOn<Special>::stopAt(const StateLexer &other) {
    copyPosition(other);
    if constexpr (!kPadded) {
        special = other.special;
    }
}

template <class Special>
inline const uint8_t *LexerOn<Special>::lineEnd() const {
    if constexpr (kPadded) {
        return lexer::bodyLineEnd(at);
    }
    const uint8_t *const byte = lexer::findLineEnd(at);
    return byte - static_cast<uint32_t>(inBody && byte != at && byte[-1] == '\r');
}

template <class Special>
inline bool LexerOn<Special>::takeRestOfLine(std::string_view &rest, uint32_t limit) {
    const uint8_t *const byte = lineEnd();
    const auto size = static_cast<uint32_t>(byte - at);
    rest = {reinterpret_cast<const char *>(at), size};
    if (kPadded && size <= limit) [[likely]] {
        if (size != 0) {
            noteTaken(at, size, lexer::TakenText::kRestOfLine);
            jumpTo(byte);
        }
        return true;
    }
    finishText();
    bool fits = false;
    stopAt(lexer::gatherTokens(anywhere(), limit, fits));
    return fits;
}

template <class Special>
inline bool LexerOn<Special>::takeBytesToSlash(std::string_view &bytes, uint32_t limit) {
    const uint8_t *const byte = endOf<lexer::kNameRun>(at);
    const auto size = static_cast<uint32_t>(byte - at);
    bytes = {reinterpret_cast<const char *>(at), size};
    if (!kPadded || size > limit || *byte == '\0') [[unlikely]] {
        bool fits = false;
        stopAt(lexer::gatherToSlash(anywhere(), limit, fits));
        return fits;
    }
    if (size != 0) {
        noteTaken(byte - 1, 1);
        jumpTo(byte);
    }
    return true;
}

} // namespace sdpline
