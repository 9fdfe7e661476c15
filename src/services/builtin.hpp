// Which core services are libsipcore's own, so that what they do may be done in place.
//
// Found out from where the dynamic symbols lead when the library is loaded: a program that defines
// a service itself, or preloads one, has every call of it.
#pragma once

#include "sdpline/sipcore.h"

namespace sdpline {

struct Own {
    bool appends; // all four appends of string buffers
    bool copy;    // memcpy_s
    bool fill;    // memset_s
    // pfnAlloc and pfnFree of the blocks; null where that is not to be done in place. blockTake is
    // pfnAlloc without its zeroing.
    decltype(SDPMemCp::pfnAlloc) blockAlloc;
    decltype(SDPMemCp::pfnAlloc) blockTake;
    decltype(SDPMemCp::pfnFree) blockFree;
};

extern Own own;

} // namespace sdpline
