// Bounds-checked memory and the reports of its failures.
#include "heap.hpp"

#include "sdpline/sipcore.h"

#include <cerrno>
#include <cstring>

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
    std::memmove(pDest, pSrc, ulCount); // overlapping bytes are no reason for damage
    return 0;
}

int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount) {
    if (ulCount == 0) {
        return 0;
    }
    if (pDest == nullptr) {
        return EINVAL;
    }
    if (ulCount > ulDestMax) {
        return ERANGE;
    }
    std::memset(pDest, iValue, ulCount);
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
