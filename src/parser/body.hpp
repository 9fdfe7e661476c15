// A body from text to records, and why the last one was refused.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

// SdpLibParseSdp, startSdpParsing and SdpLibUtilExtendDP.
SDPResult parseBody(const SipString *text, SdpLine **line);
SDPResult parseFromState(SdpLine &line);

// Remembers that the text was refused, and where: at the word that was judged, or else where the
// parser is. A refused call has no place.
[[gnu::cold, gnu::noinline]] void rememberPlace(const SipString &text, const Position &position,
                                                SDPResult failure);
void rememberCall(SDPResult result, Check check);

} // namespace sdpline
