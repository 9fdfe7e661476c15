// The place where a body was refused, as line, column and offset of the caller's text.
#include "parser/driver.hpp"
#include "parser/normalform.hpp"

namespace sdpline {

namespace {

// A failure at the line end is reported at the CR of its CR LF.
uint32_t beforeCr(const SipString &text, uint32_t offset) {
    const bool inPair = offset > 0 && offset < text.ulLen && text.pcData[offset] == '\n' &&
                        text.pcData[offset - 1] == '\r';
    return inPair ? offset - 1 : offset;
}

} // namespace

void rememberPlace(const SipString &text, const Position &position, SDPResult failure,
                   PlaceOf placeOf) {
    const auto *const word = reinterpret_cast<const uint8_t *>(lastFailure.word);
    const uint8_t *const refused = word != nullptr ? word : position.at;
    const OriginalPlace place = placeOf(reinterpret_cast<const uint8_t *>(text.pcData), text.ulLen,
                                        static_cast<uint32_t>(refused - position.input));
    const uint32_t offset = beforeCr(text, place.offset);
    lastFailure.refusal = {failure,    position.kind,
                           place.line, offset - place.lineStart + 1,
                           offset,     row(lastFailure.check).name};
}

void rememberCall(SDPResult result, Check check) {
    lastFailure.refusal = {result, 0, 0, 0, 0, row(check).name};
}

} // namespace sdpline
