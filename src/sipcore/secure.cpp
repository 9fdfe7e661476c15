// Bounds-checked memory and the reports of its failures.
#include "heap.hpp"

#include "sdpline/sipcore.h"

#include <cerrno>
#include <cstring>
#include <type_traits>

namespace {

// Records of a few fields are what is filled most: two overlapping stores of a fixed size each do
// without a call.
constexpr size_t kSmallFill = 64;

void fillSmall(char *to, int value, size_t count) {
    const auto fillEnds = [=]<size_t Half>(std::integral_constant<size_t, Half>) {
        std::memset(to, value, Half);
        std::memset(to + count - Half, value, Half);
    };
    if (count > 32) {
        fillEnds(std::integral_constant<size_t, 32>());
    } else if (count > 16) {
        fillEnds(std::integral_constant<size_t, 16>());
    } else if (count >= 8) {
        fillEnds(std::integral_constant<size_t, 8>());
    } else {
        for (size_t i = 0; i < count; ++i) {
            to[i] = static_cast<char>(value);
        }
    }
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
    if (ulCount <= kSmallFill) {
        fillSmall(static_cast<char *>(pDest), iValue, ulCount);
    } else {
        std::memset(pDest, iValue, ulCount);
    }
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
