#include "support/lexermodel.hpp"

namespace support {

namespace {

bool isDigit(uint8_t byte) {
    return byte >= '0' && byte <= '9';
}

bool isLetter(uint8_t byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

uint32_t kindOf(uint8_t byte) {
    switch (byte) {
    case 0: return SDP_TOK_EOF;
    case 9: return SDP_TOK_TAB;
    case 10: return SDP_TOK_LF;
    case ' ': return SDP_TOK_SPACE;
    case '!': return SDP_TOK_EXCLAMATION;
    case '"': return SDP_TOK_DQUOTE;
    case '#': return SDP_TOK_HASH;
    case '$': return SDP_TOK_DOLLAR;
    case '%': return SDP_TOK_PERCENT;
    case '&': return SDP_TOK_AMPERSAND;
    case '\'': return SDP_TOK_APOSTROPHE;
    case '(': return SDP_TOK_LPAREN;
    case ')': return SDP_TOK_RPAREN;
    case '*': return SDP_TOK_ASTERISK;
    case '+': return SDP_TOK_PLUS;
    case ',': return SDP_TOK_COMMA;
    case '-': return SDP_TOK_MINUS;
    case '.': return SDP_TOK_DOT;
    case '/': return SDP_TOK_SLASH;
    case ':': return SDP_TOK_COLON;
    case ';': return SDP_TOK_SEMICOLON;
    case '<': return SDP_TOK_LESS;
    case '=': return SDP_TOK_EQUAL;
    case '>': return SDP_TOK_GREATER;
    case '?': return SDP_TOK_QUESTION;
    case '@': return SDP_TOK_AT;
    case '[': return SDP_TOK_LBRACKET;
    case '\\': return SDP_TOK_BACKSLASH;
    case ']': return SDP_TOK_RBRACKET;
    case '^': return SDP_TOK_CARET;
    case '_': return SDP_TOK_UNDERSCORE;
    case '`': return SDP_TOK_BACKQUOTE;
    case '{': return SDP_TOK_LBRACE;
    case '|': return SDP_TOK_BAR;
    case '}': return SDP_TOK_RBRACE;
    case '~': return SDP_TOK_TILDE;
    default: break;
    }
    return isDigit(byte) ? SDP_TOK_DIGIT : isLetter(byte) ? SDP_TOK_ALPHA : SDP_TOK_OTHER;
}

// The kind of "<letter>=", 0 when no line begins so.
uint32_t lineKindOf(char letter) {
    switch (letter) {
    case 'a': return SDP_TOK_ATTRIBUTE;
    case 'b': return SDP_TOK_BANDWIDTH;
    case 'c': return SDP_TOK_CONNECTION;
    case 'e': return SDP_TOK_EMAIL;
    case 'i': return SDP_TOK_INFO;
    case 'k': return SDP_TOK_KEY;
    case 'm': return SDP_TOK_MEDIA;
    case 'o': return SDP_TOK_ORIGIN;
    case 'p': return SDP_TOK_PHONE;
    case 'r': return SDP_TOK_REPEAT;
    case 's': return SDP_TOK_SESSION_NAME;
    case 't': return SDP_TOK_TIME;
    case 'u': return SDP_TOK_URI;
    case 'v': return SDP_TOK_VERSION;
    case 'z': return SDP_TOK_ZONE;
    default: return 0;
    }
}

bool endsString(uint32_t kind) {
    return kind == SDP_TOK_LF || kind == SDP_TOK_EOF || kind == SDP_TOK_SPACE ||
           kind == SDP_TOK_TAB;
}

bool endsToken(uint32_t kind) {
    return endsString(kind) || kind == SDP_TOK_LESS || kind == SDP_TOK_GREATER ||
           kind == SDP_TOK_LPAREN || kind == SDP_TOK_RPAREN || kind == SDP_TOK_SEMICOLON ||
           kind == SDP_TOK_COLON || kind == SDP_TOK_AT || kind == SDP_TOK_COMMA;
}

bool isOfIpv6(uint32_t kind) {
    return kind == SDP_TOK_ALPHA || kind == SDP_TOK_DIGIT || kind == SDP_TOK_COLON ||
           kind == SDP_TOK_DOT;
}

bool continuesString(uint32_t, uint32_t next) {
    return !endsString(next);
}

bool continuesToken(uint32_t, uint32_t next) {
    return !endsToken(next);
}

bool continuesAlnum(uint32_t first, uint32_t next) {
    return next == first &&
           (first == SDP_TOK_ALPHA || first == SDP_TOK_DIGIT || first == SDP_TOK_MINUS);
}

} // namespace

uint32_t LexerModel::nextToken() {
    last = input[start + index];
    return kindOf(last);
}

void LexerModel::mark() {
    if (index != 0) {
        end = start + index - 1;
        index = 0;
    } else if (end == 0) {
        start = 0;
    } else {
        start = end + 1;
    }
}

void LexerModel::close(uint32_t tokenKind) {
    mark();
    kind = tokenKind;
}

void LexerModel::consume() {
    if (ended == 1) {
        return;
    }
    mark();
    const uint32_t first = nextToken();
    if (first == SDP_TOK_EOF) {
        ended = 1;
    }
    switch (context) {
    case SDP_LEXCTX_SDP: return cutSdp(first);
    case SDP_LEXCTX_CHAR: take(); return close(first);
    case SDP_LEXCTX_STRING:
        return endsString(first) ? (take(), close(first))
                                 : cutRun(SDP_TOK_STRING, continuesString, first);
    case SDP_LEXCTX_ALNUM:
        return continuesAlnum(first, first) ? cutRun(first, continuesAlnum, first)
                                            : (take(), close(first));
    case SDP_LEXCTX_TOKEN:
        return endsToken(first) ? (take(), close(first))
                                : cutRun(SDP_TOK_TOKEN, continuesToken, first);
    case SDP_LEXCTX_IPV6: return cutIpv6(first);
    default: return;
    }
}

void LexerModel::cutRun(uint32_t tokenKind, bool (*belongs)(uint32_t, uint32_t), uint32_t first) {
    take();
    while (belongs(first, nextToken())) {
        take();
    }
    close(tokenKind);
}

// The kind of the byte taken last.
void LexerModel::cutIpv6(uint32_t first) {
    take();
    uint32_t kindOfLast = first;
    if (isOfIpv6(first)) {
        for (uint32_t next = nextToken(); isOfIpv6(next); next = nextToken()) {
            kindOfLast = next;
            take();
        }
    }
    close(kindOfLast);
}

void LexerModel::cutSdp(uint32_t first) {
    take();
    if (first != SDP_TOK_ALPHA) {
        return close(first);
    }
    const char letter = static_cast<char>(last);
    if (nextToken() != SDP_TOK_EQUAL) {
        return cutWord(letter);
    }
    if (lineKindOf(letter) == 0) {
        return close(SDP_TOK_ALPHA);
    }
    take();
    close(lineKindOf(letter));
}

// The byte after the letter has been classified, and is no "=".
void LexerModel::cutWord(char letter) {
    if (letter == 'X' && last == '-') {
        take();
        return close(SDP_TOK_X_DASH);
    }
    if (letter == 'I' && last == 'N') {
        take();
        return close(SDP_TOK_IN);
    }
    if (letter != 'I' || last != 'P') {
        return close(SDP_TOK_ALPHA);
    }
    take();
    nextToken();
    if (last == '4' || last == '6') {
        take();
        return close(last == '4' ? SDP_TOK_IP4 : SDP_TOK_IP6);
    }
    index = 1; // the "P" belongs to the next token
    close(SDP_TOK_ALPHA);
}

uint32_t LexerModel::startTracking() {
    if (context == SDP_LEXCTX_NONE) {
        context = SDP_LEXCTX_SDP;
    }
    consume();
    return kind;
}

bool LexerModel::match(uint32_t expected) {
    if (kind != expected) {
        return false;
    }
    consume();
    return true;
}

std::optional<std::string> LexerModel::tokenText() {
    std::string token;
    for (uint32_t at = start; at <= end; ++at) {
        token += static_cast<char>(input[at]);
    }
    if (token.size() + 1 > text.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < token.size(); ++i) {
        text[i] = token[i];
    }
    text[token.size()] = '\0';
    return token.substr(0, token.find('\0'));
}

void LexerModel::clear() {
    index = 0;
    end = 0;
    start = 0;
    ended = 0;
}

std::optional<std::string> LexerModel::gatherRestOfLine(uint32_t limit) {
    std::string gathered;
    while (kind != SDP_TOK_LF && kind != SDP_TOK_EOF) {
        if (gathered.size() + (end - start + 1) > limit) {
            return std::nullopt;
        }
        const std::optional<std::string> token = tokenText();
        if (!token) {
            return std::nullopt;
        }
        gathered += *token;
        consume();
    }
    return gathered;
}

std::optional<std::string> LexerModel::gatherToSlash(uint32_t limit) {
    std::string gathered;
    while (kind != SDP_TOK_SLASH && kind != SDP_TOK_LF) {
        if (gathered.size() == limit) {
            return std::nullopt;
        }
        gathered += static_cast<char>(input[start]);
        consume();
    }
    return gathered;
}

} // namespace support
