// Reference strings, made by string buffers.
#pragma once

#include "sdpline/sipcore.h"

namespace sipcore {

// A copy of the text with one hold, in one allocation of the memory control; null without memory.
SipRefString *newRefString(SDPMemCp *memCp, const char *text, uint32_t length);

} // namespace sipcore
