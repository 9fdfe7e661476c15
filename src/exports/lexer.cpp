// The exported names of the lexer.
#include "lexer/operations.hpp"
#include "parser/parser.hpp"

using namespace sdpline;
using lexer::state;

extern "C" {

void setInput(const SipString *pstText) {
    state.input = reinterpret_cast<const uint8_t *>(pstText->pcData);
    state.late = nullptr;
    state.inputGone = false;
}

void setLexerContext(uint32_t enContext) {
    state.context = enContext;
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

uint32_t sdp_match(uint32_t enKind) {
    return lexer::match(enKind) ? 1 : 0;
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

void sdpSetEnd(uint32_t bEnd) {
    state.ended = bEnd;
}

uint32_t sdpGetEndToken() {
    return state.end;
}

void sdpSetEndToken(uint32_t ulOffset) {
    state.end = ulOffset;
}

uint32_t sdpGetIndex() {
    return state.index;
}

void sdpSetIndex(uint32_t ulIndex) {
    state.index = ulIndex;
}

const uint8_t *sdpGetInput() {
    return lexer::inputBytes();
}

uint8_t sdpGetLastChar() {
    return state.last;
}

void sdpSetLastChar(uint8_t ucChar) {
    state.last = ucChar;
}

uint32_t sdpGetStartToken() {
    return state.start;
}

void sdpSetStartToken(uint32_t ulOffset) {
    state.start = ulOffset;
}

uint32_t sdpGetTToken() {
    return state.kind;
}

void sdpSetTToken(uint32_t enKind) {
    state.kind = enKind;
}

char *sdpGetThrowAwayBuffer() {
    lexer::publishText();
    return state.text;
}

void sdpSetThrowAwayBuffer(const uint8_t *pucBytes, int32_t iCount) {
    lexer::overwriteText(pucBytes, iCount);
}

char *sdpGetRtpmapVar() {
    return state.rtpmap;
}

SDPResult sdpSetString(SipString *pstValue, const char *pcText) {
    return storeText(*pstValue, pcText);
}

} // extern "C"
