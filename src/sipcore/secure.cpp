// Bounds-checked memory functions, and the reports of their failures.
#include "sipcore/fill.hpp"
#include "sipcore/functions.hpp"
#include "sipcore/heap.hpp"

#include "sdpline/sipcore.h"

#include <cerrno>
#include <cstring>

namespace {

[[gnu::noinline]] int fill(void *to, size_t max, int value, size_t count) {
    if (count == 0) {
        return 0;
    }
    if (to == nullptr) {
        return EINVAL;
    }
    if (count > max) {
        return ERANGE;
    }
    std::memset(to, value, count);
    return 0;
}

} // namespace

int memcpy_s(void *pDest, size_t ulDestMax, const void *pSrc, size_t ulCount) {
    if (ulCount == 0) {
        return 0;
    }
    if (pDest == nullptr || pSrc == nullptr) {
        return EINVAL;
    }
    if (ulCount > ulDestMax) {
        return ERANGE;
    }
    std::memmove(pDest, pSrc, ulCount); // the ranges may overlap
    return 0;
}

int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount) {
    if (ulCount > sipcore::kSmallFill || ulCount > ulDestMax || pDest == nullptr || iValue != 0)
        [[unlikely]] {
        return fill(pDest, ulDestMax, iValue, ulCount);
    }
    sipcore::zeroSmall(static_cast<char *>(pDest), ulCount);
    return 0;
}

int SS_MemCmp(const void *pFirst, const void *pSecond, uint32_t ulLen) {
    if (ulLen == 0 || pFirst == pSecond) {
        return 0;
    }
    if (pFirst == nullptr || pSecond == nullptr) {
        return pFirst == nullptr ? -1 : 1;
    }
    return std::memcmp(pFirst, pSecond, ulLen);
}

void SIPAbnormalSecureFunc(const char *, uint32_t) {
    sipcore::countAbnormalReport();
}

void SIPAbnormalSecureFuncEx(const char *, uint32_t) {
    sipcore::countAbnormalReport();
}

extern "C" {
SIPCORE_ALIAS(memcpy_s, sipcoreCopy)
SIPCORE_ALIAS(memset_s, sipcoreFill)
}
