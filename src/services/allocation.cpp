#include "services/allocation.hpp"

namespace sdpline {

SDPLINE_PER_THREAD sipcore::Block *decodeBlock = nullptr;

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
