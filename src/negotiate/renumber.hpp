// Keeping the codec of each payload number of a stream for the whole session (RFC 3264 section
// 8.3.2).
#pragma once

#include "negotiate/draft.hpp"

namespace sdpline::negotiate {

// In a draft of `wanted`, replaces each dynamic number that had another codec in `previous` by the
// number that its codec had there, or else by an unused number.
void keepNumbers(const SDPMediaDesc &previous, const SDPMediaDesc &wanted, Arena &arena,
                 MediaDraft &draft);

} // namespace sdpline::negotiate
