// Where a text was refused, in the caller's own text.
#include "parser/body.hpp"
#include "parser/normalform.hpp"

namespace sdpline {

namespace {

struct Place {
    uint32_t line;
    uint32_t column;
};

Place placeOf(const SipString &text, uint32_t offset) {
    uint32_t line = 1;
    uint32_t lineStart = 0;
    for (uint32_t i = 0; i < offset; ++i) {
        if (text.pcData[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return {line, offset - lineStart + 1};
}

// A line ends where its CR LF begins.
uint32_t beforeCr(const SipString &text, uint32_t offset) {
    const bool inPair = offset > 0 && offset < text.ulLen && text.pcData[offset] == '\n' &&
                        text.pcData[offset - 1] == '\r';
    return inPair ? offset - 1 : offset;
}

} // namespace

void rememberPlace(const SipString &text, const Parser &parser) {
    const auto *const word = reinterpret_cast<const uint8_t *>(lastFailed.word);
    const uint8_t *const refused = word != nullptr ? word : parser.at;
    const uint32_t offset =
        beforeCr(text, originalOffset(reinterpret_cast<const uint8_t *>(text.pcData), text.ulLen,
                                      static_cast<uint32_t>(refused - parser.input)));
    const Place place = placeOf(text, offset);
    lastFailure = {parser.failure, parser.kind, place.line,
                   place.column,   offset,      row(lastFailed.check).name};
}

void rememberCall(SDPResult result, Check check) {
    lastFailure = {result, 0, 0, 0, 0, row(check).name};
}

} // namespace sdpline
