// Parsing a whole body, and recording why the last one was refused.
#pragma once

#include "parser/normalform.hpp"
#include "parser/parser.hpp"

namespace sdpline {

// SdpLibParseSdp and startSdpParsing (sdpinternals.h).
SDPResult parseBody(const SipString *text, SdpLine **line);
SDPResult parseFromState(SdpLine &line);

// Finds the place in the text of a byte that the parser read, by its offset.
using PlaceOf = OriginalPlace (*)(const uint8_t *text, uint32_t length, uint32_t offset);

// Record the last failure, for SdpLibGetLastFailure. A refused text has a place: that of the word
// that the check judged, else that of the current token. A refused call has none.
[[gnu::cold, gnu::noinline]] void rememberPlace(const SipString &text, const Position &position,
                                                SDPResult failure, PlaceOf placeOf);
void rememberCall(SDPResult result, Check check);

} // namespace sdpline
