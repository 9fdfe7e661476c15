// The formats that an offer and its answer have in common.
#pragma once

#include "negotiate/pairing.hpp"

namespace sdpline::negotiate {

// Pairs the formats of both lines; `chosen` is in the order of the answer. A number that the answer
// does not define has its meaning in the offer.
void pairAnswer(const SDPMediaDesc &offered, const SDPMediaDesc &answered, Pairing &pairing);

} // namespace sdpline::negotiate
