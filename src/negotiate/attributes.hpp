// Attributes by name: what an answer does with them.
#pragma once

#include <cstdint>

#include "negotiate/records.hpp"

namespace sdpline::negotiate {

enum class Handling : uint8_t {
    Ours,       // each side says it of itself: ours goes into the answer
    Negotiated, // decided by a rule of its own
    Ice,        // ours goes into the answer when the offer has ICE
    Dtls,       // ours goes into the answer when the offer has a fingerprint
    Offered,    // makes sense only where the offer has its counterpart, which is not looked for
    Unknown     // ours is passed through; the offer's is left out
};

Handling handlingOf(const SDPAttr &attribute);

// Of the transport: in a bundle only the line whose address counts has it (RFC 8843 section 7.1.3).
bool isTransport(const SDPAttr &attribute);

// Describes what a stream can do, whoever asks (RFC 3264 section 9).
bool isCapability(const SDPAttr &attribute);

} // namespace sdpline::negotiate
