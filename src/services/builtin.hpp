// Which core services are libsipcore's built-in ones, so that their work may be done in place.
//
// This is found out when the library is loaded, from where the dynamic symbols lead. A program that
// defines a service itself, or preloads one, sees every call of it: the rest of the library asks
// whether one does (seesAppends() and the like), and then makes the calls.
#pragma once

#include "sdpline/sipcore.h"

namespace sdpline {

struct Builtin {
    bool appends; // all four appends of string buffers
    // Grows a string buffer in advance, as an append would.
    uint32_t (*reserve)(SipStringBuffer *buffer, uint32_t size);
    bool copy; // memcpy_s
    bool fill; // memset_s
    // pfnAlloc and pfnFree of blocks; null, which no control has, where blocks are not handled in
    // place. blockTake is pfnAlloc without its zeroing.
    decltype(SDPMemCp::pfnAlloc) blockAlloc;
    decltype(SDPMemCp::pfnAlloc) blockTake;
    decltype(SDPMemCp::pfnFree) blockFree;
    decltype(SDPMemCp::pfnAlloc) systemAlloc; // of the system's memory control
    decltype(SDPMemCp::pfnFree) systemFree;
    bool fillsFreed; // blockFree fills what is freed, so it must be called
    // blockAlloc if the services that copy a record by its descriptor, and memcpy_s, are
    // libsipcore's too. Else null, which is no control's function.
    decltype(SDPMemCp::pfnAlloc) lineAlloc;

    // Whether both functions of a memory control are libsipcore's functions of a block; owns() also
    // accepts those of the system's control. Where a program replaced one of them, it is called.
    bool ownsBlock(const SDPMemCp &memCp) const {
        return memCp.pfnAlloc == blockAlloc && memCp.pfnFree == blockFree;
    }
    // Whether lines are copied in place into memory of the control.
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

// For tests: while an object of this class exists, every service is called, as for a program that
// replaced them all.
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
