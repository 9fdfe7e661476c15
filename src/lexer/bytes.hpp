// The byte tables of the lexer: the token kind of each of the 256 bytes, and the runs it continues.
#pragma once

#include <array>
#include <cstdint>

#include "sdpline/sdpinternals.h"

namespace sdpline::lexer {

// The runs that a byte may continue, one bit each. NUL and LF continue none.
enum Run : uint8_t {
    kStringRun = 1,
    kTokenRun = 2,
    kIpv6Run = 4,
    kLetterRun = 8,
    kDigitRun = 16,
    kMinusRun = 32,
    kNameRun = 64, // the name of an rtpmap: all bytes but "/"
};

struct ByteTables {
    std::array<uint8_t, 256> kind{};
    std::array<uint8_t, 256> runs{};
};

namespace detail {

struct Single {
    char byte;
    uint8_t kind;
};

inline constexpr Single kSingles[] = {
    {'_', SDP_TOK_UNDERSCORE},  {'+', SDP_TOK_PLUS},        {'-', SDP_TOK_MINUS},
    {'\'', SDP_TOK_APOSTROPHE}, {'!', SDP_TOK_EXCLAMATION}, {'%', SDP_TOK_PERCENT},
    {'~', SDP_TOK_TILDE},       {'`', SDP_TOK_BACKQUOTE},   {'*', SDP_TOK_ASTERISK},
    {'.', SDP_TOK_DOT},         {'=', SDP_TOK_EQUAL},       {'\n', SDP_TOK_LF},
    {'"', SDP_TOK_DQUOTE},      {';', SDP_TOK_SEMICOLON},   {'/', SDP_TOK_SLASH},
    {'?', SDP_TOK_QUESTION},    {':', SDP_TOK_COLON},       {'@', SDP_TOK_AT},
    {'&', SDP_TOK_AMPERSAND},   {'$', SDP_TOK_DOLLAR},      {',', SDP_TOK_COMMA},
    {'(', SDP_TOK_LPAREN},      {')', SDP_TOK_RPAREN},      {'#', SDP_TOK_HASH},
    {'\0', SDP_TOK_EOF},        {' ', SDP_TOK_SPACE},       {'\t', SDP_TOK_TAB},
    {'<', SDP_TOK_LESS},        {'>', SDP_TOK_GREATER},     {'[', SDP_TOK_LBRACKET},
    {']', SDP_TOK_RBRACKET},    {'^', SDP_TOK_CARET},       {'{', SDP_TOK_LBRACE},
    {'|', SDP_TOK_BAR},         {'}', SDP_TOK_RBRACE},      {'\\', SDP_TOK_BACKSLASH},
};

constexpr uint8_t runsOf(uint8_t kind) {
    constexpr uint8_t text = kStringRun | kNameRun;
    constexpr uint8_t runs = text | kTokenRun;
    switch (kind) {
    case SDP_TOK_LF:
    case SDP_TOK_EOF: return 0;
    case SDP_TOK_SPACE:
    case SDP_TOK_TAB: return kNameRun;
    case SDP_TOK_SLASH: return kStringRun | kTokenRun;
    case SDP_TOK_LESS:
    case SDP_TOK_GREATER:
    case SDP_TOK_LPAREN:
    case SDP_TOK_RPAREN:
    case SDP_TOK_SEMICOLON:
    case SDP_TOK_AT:
    case SDP_TOK_COMMA: return text;
    case SDP_TOK_COLON: return text | kIpv6Run;
    case SDP_TOK_DOT: return runs | kIpv6Run;
    case SDP_TOK_MINUS: return runs | kMinusRun;
    case SDP_TOK_ALPHA: return runs | kIpv6Run | kLetterRun;
    case SDP_TOK_DIGIT: return runs | kIpv6Run | kDigitRun;
    default: return runs;
    }
}

constexpr ByteTables makeByteTables() {
    ByteTables tables;
    tables.kind.fill(SDP_TOK_OTHER);
    for (uint32_t digit = '0'; digit <= '9'; ++digit) {
        tables.kind[digit] = SDP_TOK_DIGIT;
    }
    for (uint32_t letter = 'A'; letter <= 'Z'; ++letter) {
        tables.kind[letter] = SDP_TOK_ALPHA;
        tables.kind[letter + ('a' - 'A')] = SDP_TOK_ALPHA;
    }
    for (const Single &single : kSingles) {
        tables.kind[static_cast<uint8_t>(single.byte)] = single.kind;
    }
    for (size_t byte = 0; byte < 256; ++byte) {
        tables.runs[byte] = runsOf(tables.kind[byte]);
    }
    return tables;
}

} // namespace detail

inline constexpr ByteTables kBytes = detail::makeByteTables();

// The same for a body, where a CR is part of a line end (lexer.hpp).
inline constexpr ByteTables kBodyBytes = [] {
    ByteTables tables = kBytes;
    tables.kind['\r'] = SDP_TOK_LF;
    tables.runs['\r'] = 0;
    return tables;
}();

// The token kind of "<letter>=" by letter; 0 for letters that are not a line's key.
inline constexpr std::array<uint8_t, 256> kLineKinds = [] {
    std::array<uint8_t, 256> kinds{};
    kinds['o'] = SDP_TOK_ORIGIN;
    kinds['s'] = SDP_TOK_SESSION_NAME;
    kinds['v'] = SDP_TOK_VERSION;
    kinds['u'] = SDP_TOK_URI;
    kinds['i'] = SDP_TOK_INFO;
    kinds['e'] = SDP_TOK_EMAIL;
    kinds['p'] = SDP_TOK_PHONE;
    kinds['c'] = SDP_TOK_CONNECTION;
    kinds['b'] = SDP_TOK_BANDWIDTH;
    kinds['t'] = SDP_TOK_TIME;
    kinds['k'] = SDP_TOK_KEY;
    kinds['a'] = SDP_TOK_ATTRIBUTE;
    kinds['m'] = SDP_TOK_MEDIA;
    kinds['r'] = SDP_TOK_REPEAT;
    kinds['z'] = SDP_TOK_ZONE;
    return kinds;
}();

} // namespace sdpline::lexer
