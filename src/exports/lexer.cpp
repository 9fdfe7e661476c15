// The exported names of the lexer.
#include "lexer/operations.hpp"
#include "parser/parser.hpp"

using namespace sdpline;
using lexer::state;

extern "C" {

void setInput(const SipString *text) {
    state.input = reinterpret_cast<const uint8_t *>(text->pcData);
    state.late = nullptr;
    state.inputGone = false;
}

void setLexerContext(uint32_t context) {
    state.context = context;
}

uint32_t nextToken() {
    return lexer::classifyNext();
}

void mark() {
    lexer::mark();
}

void consume() {
    lexer::consume();
}

uint32_t startTracking() {
    return lexer::startTracking();
}

uint32_t sdp_match(uint32_t kind) {
    return lexer::match(kind) ? 1 : 0;
}

uint32_t LA() {
    return state.kind;
}

const char *LT() {
    return lexer::currentText();
}

uint32_t clearSdpLexer() {
    lexer::clear();
    return 1;
}

uint32_t sdpGetLexerContext() {
    return state.context;
}

uint32_t sdpGetEnd() {
    return state.ended;
}

void sdpSetEnd(uint32_t ended) {
    state.ended = ended;
}

uint32_t sdpGetEndToken() {
    return state.end;
}

void sdpSetEndToken(uint32_t offset) {
    state.end = offset;
}

uint32_t sdpGetIndex() {
    return state.index;
}

void sdpSetIndex(uint32_t index) {
    state.index = index;
}

const uint8_t *sdpGetInput() {
    return lexer::inputBytes();
}

uint8_t sdpGetLastChar() {
    return state.last;
}

void sdpSetLastChar(uint8_t byte) {
    state.last = byte;
}

uint32_t sdpGetStartToken() {
    return state.start;
}

void sdpSetStartToken(uint32_t offset) {
    state.start = offset;
}

uint32_t sdpGetTToken() {
    return state.kind;
}

void sdpSetTToken(uint32_t kind) {
    state.kind = kind;
}

char *sdpGetThrowAwayBuffer() {
    lexer::publishText();
    return state.text;
}

void sdpSetThrowAwayBuffer(const uint8_t *bytes, int32_t count) {
    lexer::overwriteText(bytes, count);
}

char *sdpGetRtpmapVar() {
    return state.rtpmap;
}

SDPResult sdpSetString(SipString *value, const char *text) {
    return storeText(*value, text);
}

} // extern "C"
