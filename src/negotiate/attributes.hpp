// The handling of attributes in an answer, by their names.
#pragma once

#include <cstdint>

#include "negotiate/records.hpp"

namespace sdpline::negotiate {

enum class Handling : uint8_t {
    Ours,       // each side describes itself by it: our line is copied to the answer
    Negotiated, // written by the code that negotiates it
    Ice,        // our line is copied if the offer has ICE
    Dtls,       // our line is copied if the offer has a fingerprint
    Offered,    // valid only with a counterpart in the offer, which is not examined: left out
    Unknown     // our line is copied; the offer's is left out
};

Handling handlingOf(const SDPAttr &attribute);

// Whether the attribute describes the transport: in a bundle, only the m= line whose address is
// used has it (RFC 8843 section 7.1.3).
bool isTransport(const SDPAttr &attribute);

// Whether the attribute describes a capability of a stream (RFC 3264 section 9).
bool isCapability(const SDPAttr &attribute);

} // namespace sdpline::negotiate
