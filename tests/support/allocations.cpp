#include "support/allocations.hpp"

#include "sdpline/sipcore.h"
#include "support/hidden.hpp"

namespace support {

namespace {

using Allocate = void *(*)(SDPMemCp *, uint32_t);

uint32_t tried = 0;
uint32_t failing = 0; // 0: none
Allocate realAllocate = nullptr;

// Counts one allocation; true if it has to fail.
bool refuses() {
    return ++tried == failing;
}

void *allocate(SDPMemCp *memCp, uint32_t size) {
    return refuses() ? nullptr : realAllocate(memCp, size);
}

} // namespace

void Allocations::reset() {
    tried = 0;
    failing = 0;
}

void Allocations::failAt(uint32_t n) {
    tried = 0;
    failing = n;
}

uint32_t Allocations::count() {
    return tried;
}

bool Allocations::failed() {
    return failing != 0 && tried >= failing;
}

Held Held::now() {
    SipMmStatistics statistics = {};
    SipMmGetStatistics(&statistics);
    return {statistics.ulBlocks, statistics.ulHeapBlocks, statistics.ulHeapBytes};
}

} // namespace support

extern "C" uint32_t SipMmCreateBufMem(uint32_t ulFirstSize, uint32_t ulNextSize,
                                      SDPMemCp **ppstMemCp) {
    static auto *const real = support::hidden<decltype(SipMmCreateBufMem)>("SipMmCreateBufMem");
    *ppstMemCp = nullptr;
    if (support::refuses()) {
        return SIP_NO_MEMORY;
    }
    const uint32_t result = real(ulFirstSize, ulNextSize, ppstMemCp);
    if (result == SIP_OK) {
        support::realAllocate = (*ppstMemCp)->pfnAlloc;
        (*ppstMemCp)->pfnAlloc = support::allocate;
    }
    return result;
}
