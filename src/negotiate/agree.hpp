// What an offer and its answer have in common.
#pragma once

#include "negotiate/pairing.hpp"

namespace sdpline::negotiate {

// The formats of both lines, paired; `chosen` in the answer's order. A number that the answer does
// not define means what it means in the offer.
void pairAnswer(const SDPMediaDesc &offered, const SDPMediaDesc &answered, Pairing &pairing);

} // namespace sdpline::negotiate
