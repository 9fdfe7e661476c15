// Payload numbers of one stream that keep their codec for the whole session (RFC 3264 section
// 8.3.2).
#pragma once

#include "negotiate/draft.hpp"

namespace sdpline::negotiate {

// Replaces each dynamic number of the draft, made of `wanted`, that had another codec in
// `previous`: by the number that the codec had, or by one that is free.
void keepNumbers(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena,
                 MediaDraft &draft);

} // namespace sdpline::negotiate
