// Cutting tokens: one function per context, runs found in one loop over the byte tables.
#include "lexer/sdplexer.hpp"

#include <cstring>

namespace sdpline::lexer {

State state = {.input = nullptr,
               .start = 0,
               .end = 0,
               .index = 0,
               .kind = 0,
               .context = SDP_LEXCTX_NONE,
               .ended = 0,
               .last = 0,
               .text = {},
               .rtpmap = "rtpmap"};

namespace {

uint32_t classify(uint32_t offset) {
    state.last = state.input[offset];
    return kBytes.kind[state.last];
}

// Moves to the next token's first byte and answers its kind.
uint32_t begin() {
    moveMark();
    const uint32_t first = classify(state.start);
    if (first == SDP_TOK_EOF) {
        state.ended = 1;
    }
    return first;
}

void close(uint32_t size, uint32_t kind) {
    state.end = state.start + size - 1;
    state.kind = kind;
}

// The run that the first byte begins; the byte behind it is the last one classified.
void closeRun(Run run, uint32_t kind) {
    const uint8_t *byte = state.input + state.start;
    do {
        ++byte;
    } while ((kBytes.runs[*byte] & run) != 0);
    state.last = *byte;
    close(static_cast<uint32_t>(byte - state.input) - state.start, kind);
}

// "IN", "IP4", "IP6" and "X-", whatever follows them; any other letter stands alone.
void closeLetter(uint8_t letter, uint8_t next) {
    if (letter == 'I' && next == 'N') {
        close(2, SDP_TOK_IN);
    } else if (letter == 'I' && next == 'P') {
        classify(state.start + 2);
        if (state.last == '4') {
            close(3, SDP_TOK_IP4);
        } else if (state.last == '6') {
            close(3, SDP_TOK_IP6);
        } else {
            close(1, SDP_TOK_ALPHA);
        }
    } else if (letter == 'X' && next == '-') {
        close(2, SDP_TOK_X_DASH);
    } else {
        close(1, SDP_TOK_ALPHA);
    }
}

// Makes the byte at `offset` the current token.
void jumpTo(uint32_t offset) {
    state.start = offset;
    const uint32_t kind = classify(offset);
    if (kind == SDP_TOK_EOF) {
        state.ended = 1;
    }
    close(1, kind);
}

bool lineEnds(uint32_t kind) {
    return kind == SDP_TOK_LF || kind == SDP_TOK_EOF;
}

} // namespace

void advanceNone() {
    if (state.ended != 1) {
        begin();
    }
}

void advanceChar() {
    if (state.ended != 1) {
        close(1, begin());
    }
}

void advanceSdp() {
    if (state.ended == 1) {
        return;
    }
    const uint32_t first = begin();
    if (first != SDP_TOK_ALPHA) {
        close(1, first);
        return;
    }
    const uint8_t letter = state.last;
    classify(state.start + 1);
    if (state.last != '=') {
        closeLetter(letter, state.last);
    } else if (kLineKinds[letter] != 0) {
        close(2, kLineKinds[letter]);
    } else {
        close(1, SDP_TOK_ALPHA);
    }
}

void advanceString() {
    if (state.ended == 1) {
        return;
    }
    const uint32_t first = begin();
    if ((kBytes.runs[state.last] & kStringRun) != 0) {
        closeRun(kStringRun, SDP_TOK_STRING);
    } else {
        close(1, first);
    }
}

void advanceToken() {
    if (state.ended == 1) {
        return;
    }
    const uint32_t first = begin();
    if ((kBytes.runs[state.last] & kTokenRun) != 0) {
        closeRun(kTokenRun, SDP_TOK_TOKEN);
    } else {
        close(1, first);
    }
}

void advanceAlnum() {
    if (state.ended == 1) {
        return;
    }
    const uint32_t first = begin();
    switch (first) {
    case SDP_TOK_ALPHA: return closeRun(kLetterRun, first);
    case SDP_TOK_DIGIT: return closeRun(kDigitRun, first);
    case SDP_TOK_MINUS: return closeRun(kMinusRun, first);
    default: return close(1, first);
    }
}

// The kind of such a run is that of its last byte: an address that ends in "." is told by it.
void advanceIpv6() {
    if (state.ended == 1) {
        return;
    }
    const uint32_t first = begin();
    if ((kBytes.runs[state.last] & kIpv6Run) != 0) {
        closeRun(kIpv6Run, first);
        state.kind = kBytes.kind[state.input[state.end]];
    } else {
        close(1, first);
    }
}

bool takeRestOfLine(std::string_view &rest, uint32_t limit) {
    const auto *const from = reinterpret_cast<const char *>(state.input + state.start);
    const char *const lineEnd = std::strchr(from, '\n');
    const size_t length =
        lineEnd != nullptr ? static_cast<size_t>(lineEnd - from) : std::strlen(from);
    const auto size = static_cast<uint32_t>(length);
    rest = {from, size};
    // A token that ended at offset 0 comes again and again, and so never fits.
    const bool repeats = state.end == 0;
    if (size <= limit && !repeats) {
        if (size != 0) {
            jumpTo(state.start + size);
        }
        return true;
    }
    for (uint32_t gathered = 0; !lineEnds(state.kind); advanceString()) {
        gathered += state.end - state.start + 1;
        if (gathered > limit) {
            return false;
        }
    }
    return true;
}

bool takeBytesToSlash(std::string_view &bytes, uint32_t limit) {
    const uint8_t *const from = state.input + state.start;
    uint32_t size = 0;
    while (from[size] != '/' && from[size] != '\n' && from[size] != '\0' && size <= limit) {
        ++size;
    }
    if (state.end == 0 && size != 0) {
        return false; // the byte at offset 0 comes again and again
    }
    if (size > limit || from[size] == '\0') {
        jumpTo(state.start + (size > limit ? limit : size));
        return false;
    }
    bytes = {reinterpret_cast<const char *>(from), size};
    if (size != 0) {
        jumpTo(state.start + size);
    }
    return true;
}

} // namespace sdpline::lexer
