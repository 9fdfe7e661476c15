// The decode's memory: the hooks, and whether their work is done in place.
#include "services/allocation.hpp"

namespace sdpline {

SDPLINE_PER_THREAD sipcore::Block *decodeBlock = nullptr;

namespace {

// The memory control of the running decode.
SDPLINE_PER_THREAD SDPMemCp *decodeControl = nullptr;

// Whether the work of the hooks can be done in place without any program seeing a difference.
bool isUnseen(const SDPMemCp *memCp) {
    return memCp != nullptr && memCp == g_mSdpDecodeMemCp && g_gSdpFnAlloc == SdpLibAllocSdpMem &&
           g_gSdpFnFree == SdpLibFreeSdpMem && builtin.ownsBlock(*memCp) && !seesFills() &&
           !seesCopies();
}

} // namespace

void beginDecode(SDPMemCp *memCp) {
    g_gSdpFnFree = SdpLibFreeSdpMem;
    g_mSdpDecodeMemCp = memCp;
    g_gSdpFnAlloc = SdpLibAllocSdpMem;
    decodeControl = memCp;
    foreignCodeRan();
}

void endDecode(bool succeeded) {
    decodeControl = nullptr;
    decodeBlock = nullptr;
    g_mSdpDecodeMemCp = nullptr;
    if (!succeeded) {
        g_gSdpFnAlloc = nullptr;
        g_gSdpFnFree = nullptr;
    }
}

void foreignCodeRan() {
    decodeBlock =
        isUnseen(decodeControl) ? static_cast<sipcore::Block *>(decodeControl->pService) : nullptr;
}

void *allocateByHook(uint32_t size) {
    const SdpFnAlloc alloc = g_gSdpFnAlloc;
    return alloc != nullptr ? alloc(size) : nullptr;
}

void freeByHook(void *memory) {
    const SdpFnFree release = g_gSdpFnFree;
    if (release != nullptr) {
        release(memory);
    }
}

void *allocateFilled(uint32_t size, const char *function, uint32_t line) {
    void *const memory = allocateByHook(size);
    if (memory != nullptr && memset_s(memory, size, 0, size) != 0) {
        SIPAbnormalSecureFunc(function, line);
    }
    return memory;
}

} // namespace sdpline
