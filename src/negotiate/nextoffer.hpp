// The next offer of a side.
#pragma once

#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

// The wanted streams in the m= lines of the description in force, null for none. The o= line is
// that of the last description that was sent, which a refused offer is too: it has used its version
// up, and its m= lines have never been.
Reason makeNextOffer(const SdpLine *inForce, const SdpLine &last, const SdpLine &wanted,
                     SdpLine **offer);

} // namespace sdpline::negotiate
