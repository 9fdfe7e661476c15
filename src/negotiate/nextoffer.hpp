// Making the next offer of a side.
#pragma once

#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

// Puts the wanted streams into the m= lines of the description in force, which may be null. The o=
// line continues that of the description that was sent last. That may be a refused offer: its
// version cannot be used again, but its m= lines never were in force.
Reason makeNextOffer(const SdpLine *inForce, const SdpLine &last, const SdpLine &wanted,
                     SdpLine **offer);

} // namespace sdpline::negotiate
