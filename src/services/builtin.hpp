// Which core services are libsipcore's, so that what they do may be done in place.
//
// Found out from where the dynamic symbols lead when the library is loaded: a program that defines
// a service itself, or preloads one, sees every call of it. The rest of the library asks whether
// it does, and takes the calls where that is so.
#pragma once

#include "sdpline/sipcore.h"

namespace sdpline {

struct Builtin {
    bool appends; // all four appends of string buffers
    // Grows a string buffer before an append would.
    uint32_t (*makeRoom)(SipStringBuffer *buffer, uint32_t size);
    bool copy; // memcpy_s
    bool fill; // memset_s
    // pfnAlloc and pfnFree of blocks; null where blocks are not handled in place. blockTake is
    // pfnAlloc without its zeroing.
    decltype(SDPMemCp::pfnAlloc) blockAlloc;
    decltype(SDPMemCp::pfnAlloc) blockTake;
    decltype(SDPMemCp::pfnFree) blockFree;
    decltype(SDPMemCp::pfnAlloc) systemAlloc; // of the system's memory control
    decltype(SDPMemCp::pfnFree) systemFree;
    bool fillsFreed; // giving memory back takes the call
    // blockAlloc where all that copies a record by its descriptor, and memcpy_s, is libsipcore's
    // too. Else null, which no control has.
    decltype(SDPMemCp::pfnAlloc) lineAlloc;

    // Whether every function of a memory control is libsipcore's: that of a block, or of the
    // system's control too. Where a program has replaced one of them, each call is made.
    bool ownsBlock(const SDPMemCp &memCp) const {
        return blockAlloc != nullptr && memCp.pfnAlloc == blockAlloc && memCp.pfnFree == blockFree;
    }
    // Whether lines are copied in place into the control's memory.
    bool copiesLines(const SDPMemCp &memCp) const {
        return memCp.pfnAlloc == lineAlloc && memCp.pfnFree == blockFree;
    }
    bool owns(const SDPMemCp &memCp) const {
        return ownsBlock(memCp) || (systemAlloc != nullptr && memCp.pfnAlloc == systemAlloc &&
                                    memCp.pfnFree == systemFree);
    }
};

extern Builtin builtin;

inline bool seesAppends() {
    return !builtin.appends;
}
inline bool seesCopies() {
    return !builtin.copy;
}
inline bool seesFills() {
    return !builtin.fill;
}

// For tests: while it lives, every service is called, as for a program that has replaced them all.
class EveryServiceCalled {
public:
    EveryServiceCalled() : before_(builtin) { builtin = {}; }
    ~EveryServiceCalled() { builtin = before_; }
    EveryServiceCalled(const EveryServiceCalled &) = delete;
    EveryServiceCalled &operator=(const EveryServiceCalled &) = delete;

private:
    Builtin before_;
};

} // namespace sdpline
