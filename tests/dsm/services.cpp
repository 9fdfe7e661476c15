#include "services.hpp"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "sdpline/sipcore.h"

namespace dsmtest {

namespace {

uint32_t blockRefusal = 0;
NoCopies *noCopies = nullptr;

template <class Function>
Function *next(const char *name) {
    void *const found = dlsym(RTLD_NEXT, name);
    if (found == nullptr) {
        std::fprintf(stderr, "no %s behind this program\n", name);
        std::abort();
    }
    return reinterpret_cast<Function *>(found);
}

} // namespace

struct Reporter {
    static void report(const char *name, uint32_t number) {
        noCopies->reports_.emplace_back(name, number);
    }
};

NoBlocks::NoBlocks(uint32_t result) {
    blockRefusal = result;
}

NoBlocks::~NoBlocks() {
    blockRefusal = 0;
}

NoCopies::NoCopies() {
    noCopies = this;
}

NoCopies::~NoCopies() {
    noCopies = nullptr;
}

} // namespace dsmtest

using namespace dsmtest;

uint32_t SipMmCreateBufMem(uint32_t ulFirstSize, uint32_t ulNextSize, SDPMemCp **ppstMemCp) {
    static auto *const real = next<decltype(SipMmCreateBufMem)>("SipMmCreateBufMem");
    if (blockRefusal != 0) {
        *ppstMemCp = nullptr;
        return blockRefusal;
    }
    return real(ulFirstSize, ulNextSize, ppstMemCp);
}

int memcpy_s(void *pDest, size_t ulDestMax, const void *pSrc, size_t ulCount) {
    static auto *const real = next<decltype(memcpy_s)>("memcpy_s");
    return noCopies != nullptr ? ERANGE : real(pDest, ulDestMax, pSrc, ulCount);
}

void SIPAbnormalSecureFunc(const char *pcName, uint32_t ulNumber) {
    static auto *const real = next<decltype(SIPAbnormalSecureFunc)>("SIPAbnormalSecureFunc");
    if (noCopies != nullptr) {
        Reporter::report(pcName, ulNumber);
        return;
    }
    real(pcName, ulNumber);
}
