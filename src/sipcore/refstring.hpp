// Reference strings, made by string buffers.
#ifndef SIPCORE_REFSTRING_HPP
#define SIPCORE_REFSTRING_HPP

#include "sdpline/sipcore.h"

namespace sipcore {

// A copy of the text with one hold, in one allocation of the memory control; null without memory.
SipRefString *newRefString(SDPMemCp *memCp, const char *text, uint32_t length);

} // namespace sipcore

#endif
