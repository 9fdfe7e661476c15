// Parsing a whole body, and recording why the last one was refused.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

// SdpLibParseSdp and startSdpParsing (sdpinternals.h).
SDPResult parseBody(const SipString *text, SdpLine **line);
SDPResult parseFromState(SdpLine &line);

// Record the last failure, for SdpLibGetLastFailure. A refused text has a place: that of the word
// that the check judged, else that of the current token. A refused call has none.
[[gnu::cold, gnu::noinline]] void rememberPlace(const SipString &text, const Position &position,
                                                SDPResult failure);
void rememberCall(SDPResult result, Check check);

} // namespace sdpline
