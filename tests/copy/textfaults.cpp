#include "copy/textfaults.hpp"

#include "sdpline/sipcore.h"
#include "support/hidden.hpp"

namespace dsmtest {

namespace {

uint32_t copyRefusal = 0;
uint32_t cloneRefusal = 0;

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
    static auto *const real = support::hidden<decltype(SipSmCopyString)>("SipSmCopyString");
    const uint32_t refusal = dsmtest::copyRefusal;
    return refusal != 0 ? refusal : real(pstMemCp, pstSrc, pstDst);
}

uint32_t SipSmCloneString(SDPMemCp *pstMemCp, const SipString *pstSrc, SipString **ppstDst) {
    static auto *const real = support::hidden<decltype(SipSmCloneString)>("SipSmCloneString");
    const uint32_t refusal = dsmtest::cloneRefusal;
    return refusal != 0 ? refusal : real(pstMemCp, pstSrc, ppstDst);
}

} // extern "C"
