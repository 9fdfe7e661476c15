// The lexer: one current token over one NUL-terminated input, cut on demand under the context in
// force. A token never spans a line end or the end of the input; there is no lookahead beyond the
// current token and no way back.
//
// A parser works on a Lexer of its own, which the compiler keeps in registers. The process-wide
// State is what the exported operations read and write; parsers that are called by their exported
// names start from it and put back where they stopped.
#pragma once

#include <cstdint>
#include <string_view>

#include "lexer/bytes.hpp"
#include "sdpline/sdpinternals.h"
#include "services/inline.hpp"

namespace sdpline {

constexpr uint32_t kTextSize = 1024; // of the token text buffer, terminator included

// What a letter begins that is no line's key: "IN", "IP4", "IP6", "X-", or nothing but itself.
struct LetterToken {
    uint32_t kind;
    uint8_t size;
    uint8_t last;
};

// The token text that was taken last and has not been put into the text buffer yet: bytes of the
// input, or a rest of line, of which the last token was taken last.
struct TakenText {
    const uint8_t *from; // null: the buffer holds what was taken last
    uint32_t size;
    static constexpr uint32_t kRestOfLine = 1u << 31; // a bit of `size`
};

// Where the next token begins, when that is not behind the current one.
struct OddStart {
    const uint8_t *from; // null: there is no next token
    uint32_t odd;
};

//   o=- 2890844526 ...
//       ^at       ^behind      kind: SDP_TOK_DIGIT, last: the blank behind the run
struct Lexer {
    const uint8_t *input;
    const uint8_t *at;     // the current token's first byte
    const uint8_t *behind; // the byte behind it
    uint32_t kind;
    uint32_t context;
    uint32_t odd; // the bits below; 0 where the next token stands behind the current one
    uint8_t last; // the byte that was classified last

    // The end token was cut: it stays. Parsers never take it, so that a lexer on which nothing else
    // is odd need not remember; leave() sees that it stands there.
    static constexpr uint32_t kEnded = 1;
    // A token is under construction: the next one begins where it began.
    static constexpr uint32_t kHalfCut = 2;
    // The token ended at offset 0 and so is taken for none, or it ends before it starts.
    static constexpr uint32_t kRepeats = 4;
    // memset_s is not libsipcore's: each taking of a text makes its call.
    static constexpr uint32_t kCallsForTexts = 8;

    SDPLINE_INLINE bool is(uint32_t wanted) const { return kind == wanted; }

    // Takes the current token's text: its bytes, in the input. Null data when they are more than
    // 1023, and nothing was taken.
    SDPLINE_INLINE std::string_view text();

    // Whether the input ends at the current token.
    SDPLINE_INLINE bool inputEnds() const { return *at == '\0'; }

    // Cuts the next token under the context.
    SDPLINE_INLINE void advance(uint32_t under);

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
    // by its first byte and kind only, until takeRestOfLine() or closeText() has gone over it.
    SDPLINE_INLINE bool takeToText(uint32_t wanted);
    SDPLINE_INLINE void closeText() {
        if (kind == SDP_TOK_STRING) {
            last = *at;
            closeString();
        }
    }

    // Gathers the tokens of the string context from the current one to the end of the line or of
    // the input, which is current afterwards. False when they are more than `limit` bytes; the
    // token that no longer fits is then current.
    SDPLINE_INLINE bool takeRestOfLine(std::string_view &rest, uint32_t limit);

    // Gathers the bytes from the current one to a "/" or the line end, which is current
    // afterwards. False when they are more than `limit` bytes or the input ends first.
    SDPLINE_INLINE bool takeBytesToSlash(std::string_view &bytes, uint32_t limit);

    // Stands where another lexer of the same input stands. Field by field, so that each field of a
    // local lexer has a register of its own.
    SDPLINE_INLINE void standAs(const Lexer &other) {
        at = other.at;
        behind = other.behind;
        kind = other.kind;
        context = other.context;
        last = other.last;
    }

private:
    // The same, and odd where that one is: but a lexer on which nothing is odd stays so.
    SDPLINE_INLINE void standWhere(const Lexer &other) {
        standAs(other);
        odd = odd != 0 ? other.odd : 0;
    }
    SDPLINE_INLINE bool begin();
    SDPLINE_INLINE void taken(const uint8_t *from, uint32_t size, uint32_t flags = 0);

    SDPLINE_INLINE void close(uint32_t size, uint32_t closed) {
        behind = at + size;
        kind = closed;
    }

    // One byte, whatever it is.
    SDPLINE_INLINE void closeByte() { close(1, lexer::kBytes.kind[last]); }

    SDPLINE_INLINE void closeRun(lexer::Run run, uint32_t closed);
    SDPLINE_INLINE void closeString() { closeRun(lexer::kStringRun, SDP_TOK_STRING); }
    SDPLINE_INLINE void closeSdp();
    SDPLINE_INLINE void closeAlnum();
    SDPLINE_INLINE void closeIpv6();
    SDPLINE_INLINE void jumpTo(const uint8_t *byte);
};

namespace lexer {

// The first byte that does not continue the run; the NUL behind the input continues none.
SDPLINE_INLINE const uint8_t *runEnd(const uint8_t *byte, Run run) {
    while ((kBytes.runs[*byte] & run) != 0) {
        ++byte;
    }
    return byte;
}

// A byte that a loop has just read, read once more: else the loop would keep each one for the case
// that it is the last.
SDPLINE_INLINE uint8_t readAnew(const uint8_t *byte) {
    return *const_cast<const volatile uint8_t *>(byte);
}

// Bytes before the line end or the end of the input.
uint32_t lineSize(const uint8_t *text);

// Puts a text into the text buffer: by the calls of a lexer without tables, and without them.
[[gnu::cold, gnu::noinline]] void takeText(const uint8_t *from, uint32_t size);
void publishText();

LetterToken cutLetter(const uint8_t *letter);
OddStart startOddly(const uint8_t *input, const uint8_t *at, const uint8_t *behind, uint32_t odd);
Lexer gatherTokens(Lexer lexer, uint32_t limit, bool &fits);
Lexer gatherToSlash(Lexer lexer, uint32_t limit, bool &fits);

// The state behind the exported operations. Offsets count from the start of the input.
struct State {
    const uint8_t *input;
    bool inputGone; // the input was a parse's copy, which lives no longer: nothing is read there
    uint32_t start;
    uint32_t end;   // of the last byte, not behind it
    uint32_t index; // bytes of a token under construction
    uint32_t kind;
    uint32_t context;
    uint32_t ended;
    uint8_t last;
    char text[kTextSize];
    char rtpmap[sizeof "rtpmap"];
};

extern SDPLINE_PER_THREAD State state;
extern SDPLINE_PER_THREAD TakenText takenText;

// A lexer that stands where the state stands, and the state put where a lexer stands.
Lexer enter();
void leave(const Lexer &lexer);

} // namespace lexer

// Runs a parser on the process-wide state. A log hook that decodes another body leaves another
// input there.
template <class Parse>
SDPResult onState(Parse parse) {
    const uint8_t *const input = lexer::state.input;
    Lexer lexer = lexer::enter();
    const SDPResult result = parse(lexer);
    lexer::state.input = input;
    lexer::leave(lexer);
    return result;
}

// Where a parser stopped, and its result.
struct Stop {
    Lexer lexer;
    SDPResult result;
};

// The same parser where the next token may begin oddly.
template <auto Parse, class... Arguments>
[[gnu::cold, gnu::noinline]] Stop inMemory(Lexer lexer, Arguments &...arguments) {
    const SDPResult result = Parse(lexer, arguments...);
    return {lexer, result};
}

// Runs a parser that is inlined as a whole on a copy of the lexer: nothing else knows the copy's
// address, so it lives in registers, and nothing odd is looked for.
template <auto Parse, class... Arguments>
SDPLINE_INLINE SDPResult inRegisters(Lexer &lexer, Arguments &...arguments) {
    if (lexer.odd != 0) [[unlikely]] {
        const Stop stop = inMemory<Parse>(lexer, arguments...);
        lexer = stop.lexer;
        return stop.result;
    }
    Lexer copy;
    copy.input = lexer.input;
    copy.odd = 0;
    copy.standAs(lexer);
    const SDPResult result = Parse(copy, arguments...);
    lexer.standAs(copy);
    return result;
}

inline void Lexer::taken(const uint8_t *from, uint32_t size, uint32_t flags) {
    if ((odd & kCallsForTexts) != 0) [[unlikely]] {
        return lexer::takeText(from, size);
    }
    lexer::takenText.from = from;
    lexer::takenText.size = size | flags;
}

inline std::string_view Lexer::text() {
    const auto size = static_cast<uint32_t>(behind - at);
    if (size >= kTextSize) [[unlikely]] {
        return {};
    }
    taken(at, size);
    return {reinterpret_cast<const char *>(at), size};
}

// Moves to the next token's first byte; false when there is none.
inline bool Lexer::begin() {
    const uint8_t *from = behind;
    if (odd != 0) [[unlikely]] {
        const OddStart start = lexer::startOddly(input, at, behind, odd);
        odd = start.odd;
        if (start.from == nullptr) {
            return false;
        }
        from = start.from;
    }
    at = from;
    last = *from;
    return true;
}

inline void Lexer::advance(uint32_t under) {
    if (!begin()) [[unlikely]] {
        return;
    }
    switch (under) {
    case SDP_LEXCTX_SDP: return closeSdp();
    case SDP_LEXCTX_CHAR: return closeByte();
    case SDP_LEXCTX_STRING: return closeString();
    case SDP_LEXCTX_TOKEN: return closeRun(lexer::kTokenRun, SDP_TOK_TOKEN);
    case SDP_LEXCTX_ALNUM: return closeAlnum();
    default: return closeIpv6();
    }
}

inline bool Lexer::takeToText(uint32_t wanted) {
    context = SDP_LEXCTX_STRING;
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

// The run that the first byte begins, or that byte alone; the byte behind a run is the one
// classified last.
inline void Lexer::closeRun(lexer::Run run, uint32_t closed) {
    if ((lexer::kBytes.runs[last] & run) == 0) {
        return closeByte();
    }
    behind = lexer::runEnd(at + 1, run);
    last = lexer::readAnew(behind);
    kind = closed;
}

// A line's key, a keyword of letters, or one byte.
inline void Lexer::closeSdp() {
    const uint32_t key = lexer::kLineKinds[last];
    if (key != 0 && at[1] == '=') {
        last = '=';
        close(2, key);
    } else if (lexer::kBytes.kind[last] != SDP_TOK_ALPHA) {
        closeByte();
    } else {
        const LetterToken token = lexer::cutLetter(at);
        last = token.last;
        close(token.size, token.kind);
    }
}

inline void Lexer::closeAlnum() {
    switch (lexer::kBytes.kind[last]) {
    case SDP_TOK_DIGIT: return closeRun(lexer::kDigitRun, SDP_TOK_DIGIT);
    case SDP_TOK_ALPHA: return closeRun(lexer::kLetterRun, SDP_TOK_ALPHA);
    case SDP_TOK_MINUS: return closeRun(lexer::kMinusRun, SDP_TOK_MINUS);
    default: return closeByte();
    }
}

// The kind of such a run is that of its last byte: an address that ends in "." is told by it.
inline void Lexer::closeIpv6() {
    closeRun(lexer::kIpv6Run, SDP_TOK_ALPHA);
    kind = lexer::kBytes.kind[behind[-1]];
}

// Makes one byte the current token.
inline void Lexer::jumpTo(const uint8_t *byte) {
    at = byte;
    last = *byte;
    closeByte();
}

inline bool Lexer::takeRestOfLine(std::string_view &rest, uint32_t limit) {
    const uint32_t size = lexer::lineSize(at);
    rest = {reinterpret_cast<const char *>(at), size};
    if (size <= limit && odd == 0) [[likely]] {
        if (size != 0) {
            taken(at, size, TakenText::kRestOfLine);
            jumpTo(at + size);
        }
        return true;
    }
    closeText();
    bool fits = false;
    standWhere(lexer::gatherTokens(*this, limit, fits));
    return fits;
}

inline bool Lexer::takeBytesToSlash(std::string_view &bytes, uint32_t limit) {
    const uint8_t *const byte = lexer::runEnd(at, lexer::kNameRun);
    const auto size = static_cast<uint32_t>(byte - at);
    bytes = {reinterpret_cast<const char *>(at), size};
    if (odd != 0 || size > limit || *byte == '\0') [[unlikely]] {
        bool fits = false;
        standWhere(lexer::gatherToSlash(*this, limit, fits));
        return fits;
    }
    if (size != 0) {
        taken(byte - 1, 1);
        jumpTo(byte);
    }
    return true;
}

} // namespace sdpline
