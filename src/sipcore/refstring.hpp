// Reference strings, made by string buffers.
#pragma once

#include "sdpline/sipcore.h"

namespace sipcore {

// Returns a reference string with a copy of the text and a count of one, in one allocation of the
// memory control; null without memory.
SipRefString *newRefString(SDPMemCp *memCp, const char *text, uint32_t length);

} // namespace sipcore
