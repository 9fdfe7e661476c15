// The lexer: one current token over one NUL-terminated input, cut on demand under the context in
// force. A token never spans a line end or the end of the input; there is no lookahead beyond the
// current token and no backtracking.
//
// There are two lexers with the same operations. A BodyLexer reads a body's normal form, which
// bytes that may be read follow: its operations are inlined, and the compiler keeps it in
// registers. A StateLexer reads any input from any place, as setters may have set it: its
// operations are functions. The process-wide State is what the exported operations read and write;
// parsers that are called by their exported names start from it and store where they stopped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "lexer/bytes.hpp"
#include "lexer/scan.hpp"
#include "sdpline/sdpinternals.h"
#include "services/inline.hpp"
#include "text/scan.hpp"

namespace sdpline {

constexpr uint32_t kTextSize = 1024; // of the token text buffer, terminator included

// The contexts, short.
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
    uint32_t counted; // the value of the digits that were cut last, modulo 2^32

    bool is(uint32_t wanted) const { return kind == wanted; }

    // Whether the input ends at the current token.
    bool inputEnds() const { return *at == '\0'; }

    // Moves to another position in the same input. Field by field, so that each field of a local
    // lexer has a register of its own.
    void copyPosition(const Position &other) {
        at = other.at;
        end = other.end;
        kind = other.kind;
        context = other.context;
        last = other.last;
    }
};

// What a lexer has to look for before it cuts the next token: nothing where that begins at `end`.
struct NothingSpecial {
    static constexpr bool kPadded = true; // sixteen bytes after the input's NUL may be read
    static constexpr uint32_t special = 0;
};

struct AnythingSpecial {
    static constexpr bool kPadded = false;
    uint32_t special; // a set of the bits below

    // The end token was cut: it stays. Parsers never take it, so that a lexer without special bits
    // need not remember; store() sees that it is current.
    static constexpr uint32_t kEnded = 1;
    // A token is under construction: the next one begins where it began.
    static constexpr uint32_t kHalfCut = 2;
    // The token ended at offset 0 and so counts as none, or it ends before it starts.
    static constexpr uint32_t kRepeats = 4;
    // memset_s is not libsipcore's: each taking of a text makes its call.
    static constexpr uint32_t kCallsForTexts = 8;
};

struct StateLexer;

template <class Special>
struct LexerOn : Position, Special {
    using Special::kPadded;
    using Special::special;

    // Takes the current token's text: its bytes, in the input. Null data when they are more than
    // 1023, and nothing was taken.
    std::string_view text();

    // The value of the current token, which is a run of digits and has the text. A token that was
    // current before there was this lexer has not been counted.
    uint32_t valueOf(std::string_view digits) const {
        return kPadded ? counted : scanNumber(digits);
    }

    // Cuts the next token under the context.
    SDPLINE_INLINE void advance(uint32_t under);

    // The same when the current token is a run of the context, which under the alphanumeric one is
    // a run of digits: no such run is next.
    void advanceAfterRun(uint32_t under);

    // Takes what follows the current token when it is this text, in one comparison: the text's last
    // byte, which is a token in any context, is then current. Else nothing is taken.
    template <size_t Size>
    bool jump(const char (&text)[Size]);
    // The same for a word and the space after it. The text of the word is taken.
    template <size_t Size>
    bool jumpWord(const char (&text)[Size]) {
        if (!jump(text)) {
            return false;
        }
        constexpr uint32_t size = Size - 2;
        noteTaken(at - size, size);
        return true;
    }

    // The same for a name whose bytes are known: it is a word when a colon or line end is after it.
    SDPLINE_INLINE bool jumpName(uint32_t size, std::string_view &name) {
        const uint8_t *const after = end + size;
        if (*after != ':' && *after != '\n') {
            return false;
        }
        name = {reinterpret_cast<const char *>(end), size};
        noteTaken(end, size);
        context = Context::Token;
        jumpTo(after);
        return true;
    }

    // Switches the context, then takes the current token when it is of the kind.
    SDPLINE_INLINE bool take(uint32_t wanted, uint32_t under) {
        context = under;
        if (kind != wanted) {
            return false;
        }
        advance(under);
        return true;
    }

    // The same for the token before a rest of line: its first token of the string context is known
    // by its first byte and kind only, until takeRestOfLine() or finishText() has gone over it.
    SDPLINE_INLINE bool takeToText(uint32_t wanted);
    void finishText() {
        if (kind == SDP_TOK_STRING) {
            last = *at;
            scanRun<lexer::kStringRun>(SDP_TOK_STRING);
        }
    }

    // Gathers the tokens of the string context from the current one to the end of the line or of
    // the input, which is current afterwards. False when they are more than `limit` bytes; the
    // token that no longer fits is then current.
    SDPLINE_INLINE bool takeRestOfLine(std::string_view &rest, uint32_t limit);

    // Gathers the bytes from the current one to a "/" or the line end, which is current
    // afterwards. False when they are more than `limit` bytes or the input ends first.
    SDPLINE_INLINE bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);

    // The same place, for operations that are not inlined.
    StateLexer anywhere() const;

private:
    // Moves to where token by token has led.
    void stopAt(const StateLexer &other);
    SDPLINE_INLINE bool begin();
    void noteTaken(const uint8_t *from, uint32_t size, uint32_t flags = 0);

    SDPLINE_INLINE void close(uint32_t size, uint32_t closed) {
        end = at + size;
        kind = closed;
    }

    // A run; the byte after it is the one classified last.
    void closeAt(const uint8_t *byte, uint32_t closed) {
        end = byte;
        last = lexer::readAnew(byte);
        kind = closed;
    }

    // One byte, whatever it is.
    SDPLINE_INLINE void closeByte() { close(1, lexer::kBytes.kind[last]); }

    template <lexer::Run run>
    void scanRun(uint32_t closed);
    SDPLINE_INLINE void scanDigits();
    SDPLINE_INLINE void scanSdp();
    SDPLINE_INLINE void scanAlnum();
    void scanLetters();
    SDPLINE_INLINE void scanIpv6();
    SDPLINE_INLINE void jumpTo(const uint8_t *byte);
};

using BodyLexer = LexerOn<NothingSpecial>;

// The operations out of line. What is not named here is small, or for a BodyLexer alone.
struct StateLexer : LexerOn<AnythingSpecial> {
    std::string_view text();
    void advance(uint32_t under);
    void advanceAfterRun(uint32_t under) { advance(under); } // setters may set any place
    bool take(uint32_t wanted, uint32_t under);
    bool takeToText(uint32_t wanted);
    void finishText();
    bool takeRestOfLine(std::string_view &rest, uint32_t limit);
    bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);
};

namespace lexer {

// What a letter begins that is no line's key: "IN", "IP4", "IP6", "X-", or nothing but itself.
struct LetterToken {
    uint32_t kind;
    uint8_t size;
    uint8_t last;
};
[[gnu::noinline]] LetterToken cutLetter(const uint8_t *letter);

// Where the next token begins when special bits are set.
struct SpecialStart {
    const uint8_t *from; // null: there is no next token
    uint32_t special;
};
[[gnu::cold, gnu::noinline]] SpecialStart findStart(const uint8_t *input, const uint8_t *at,
                                                    const uint8_t *end, uint32_t special);

// The token text that was taken last and is not in the text buffer yet: bytes of the input, or a
// rest of line, of which the last token was taken last.
struct TakenText {
    const uint8_t *from; // null: the buffer holds what was taken last
    uint32_t size;
    static constexpr uint32_t kRestOfLine = 1u << 31; // a bit of `size`
};
extern SDPLINE_PER_THREAD TakenText takenText;

// Puts a text into the text buffer, with the call of memset_s that each taking makes.
[[gnu::cold, gnu::noinline]] void takeText(const uint8_t *from, uint32_t size);
// Puts the text that is noted there, without that call.
void publishText();

// Token by token, where a text does not fit or special bits are set.
[[gnu::cold, gnu::noinline]] StateLexer gatherTokens(StateLexer lexer, uint32_t limit, bool &fits);
[[gnu::cold, gnu::noinline]] StateLexer gatherToSlash(StateLexer lexer, uint32_t limit, bool &fits);

// The state of the exported operations. Offsets count from the start of the input.
struct State {
    const uint8_t *input;
    bool inputGone; // the input was a parse's copy, which lives no longer: nothing is read there
    uint32_t start;
    uint32_t end;   // of the last byte, not after it
    uint32_t index; // bytes of a token under construction
    uint32_t kind;
    uint32_t context;
    uint32_t ended;
    uint8_t last;
    char text[kTextSize];
    char rtpmap[sizeof "rtpmap"];
};
extern SDPLINE_PER_THREAD State state;

// A lexer at the state's position, and the state put to where a lexer is.
StateLexer load();
void store(const Position &position, uint32_t special);
// A lexer on the first token of an input, and the state with it.
StateLexer begin(const uint8_t *input);
// The positions back to the start.
void clear();

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
    noteTaken(at, size);
    return {reinterpret_cast<const char *>(at), size};
}

// Moves to the next token's first byte; false when there is none.
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
    if (under != Context::Alnum || (lexer::kBytes.runs[last] & letters) == 0) [[likely]] {
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
inline bool LexerOn<Special>::takeToText(uint32_t wanted) {
    context = Context::String;
    if (kind != wanted) {
        return false;
    }
    if (begin()) [[likely]] {
        closeByte();
        if ((lexer::kBytes.runs[last] & lexer::kStringRun) != 0) {
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
    } else if (lexer::kBytes.kind[last] != SDP_TOK_ALPHA) {
        closeByte();
    } else {
        const lexer::LetterToken token = lexer::cutLetter(at);
        last = token.last;
        close(token.size, token.kind);
    }
}

// The run that the first byte begins, or that byte alone.
template <class Special>
template <lexer::Run run>
inline void LexerOn<Special>::scanRun(uint32_t closed) {
    if ((lexer::kBytes.runs[last] & run) == 0) {
        return closeByte();
    }
    closeAt(lexer::endOf<run, kPadded>(at + 1), closed);
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
    switch (lexer::kBytes.kind[last]) {
    case SDP_TOK_ALPHA: return closeAt(lexer::runEnd(at + 1, lexer::kLetterRun), SDP_TOK_ALPHA);
    case SDP_TOK_MINUS: return closeAt(lexer::runEnd(at + 1, lexer::kMinusRun), SDP_TOK_MINUS);
    default: return closeByte();
    }
}

// The kind of such a run is that of its last byte, which shows whether an address ends in ".".
template <class Special>
inline void LexerOn<Special>::scanIpv6() {
    scanRun<lexer::kIpv6Run>(SDP_TOK_ALPHA);
    kind = lexer::kBytes.kind[end[-1]];
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
    return {{static_cast<const Position &>(*this), {special}}};
}

template <class Special>
inline void LexerOn<Special>::stopAt(const StateLexer &other) {
    copyPosition(other);
    if constexpr (!kPadded) {
        special = other.special;
    }
}

template <class Special>
inline bool LexerOn<Special>::takeRestOfLine(std::string_view &rest, uint32_t limit) {
    const uint8_t *const byte = lexer::lineEnd<kPadded>(at);
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
    const uint8_t *const byte = lexer::endOf<lexer::kNameRun, kPadded>(at);
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
