#include "copy/textfaults.hpp"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "sdpline/sipcore.h"

namespace dsmtest {

namespace {

uint32_t copyRefusal = 0;
uint32_t cloneRefusal = 0;

// The service that this program's own definition hides.
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

NoTexts::NoTexts(uint32_t copyResult, uint32_t cloneResult) {
    copyRefusal = copyResult;
    cloneRefusal = cloneResult;
}

NoTexts::~NoTexts() {
    copyRefusal = 0;
    cloneRefusal = 0;
}

} // namespace dsmtest

extern "C" {

uint32_t SipSmCopyString(SDPMemCp *pstMemCp, const SipString *pstSrc, SipString *pstDst) {
    static auto *const real = dsmtest::next<decltype(SipSmCopyString)>("SipSmCopyString");
    const uint32_t refusal = dsmtest::copyRefusal;
    return refusal != 0 ? refusal : real(pstMemCp, pstSrc, pstDst);
}

uint32_t SipSmCloneString(SDPMemCp *pstMemCp, const SipString *pstSrc, SipString **ppstDst) {
    static auto *const real = dsmtest::next<decltype(SipSmCloneString)>("SipSmCloneString");
    const uint32_t refusal = dsmtest::cloneRefusal;
    return refusal != 0 ? refusal : real(pstMemCp, pstSrc, ppstDst);
}

} // extern "C"
