// Bounds-checked memory and the reports of its failures.
#include "heap.hpp"

#include "sdpline/sipcore.h"

#include <cerrno>
#include <cstring>

namespace {

// Records of a few fields are what is filled most, and with zeroes: stores of a fixed size, the
// last of which overlaps the one before, do without a call.
constexpr size_t kSmallFill = 256;

inline void zeroSmall(char *to, size_t count) {
    if (count >= 16) {
        for (size_t at = 0; at + 16 < count; at += 16) {
            std::memset(to + at, 0, 16);
        }
        std::memset(to + count - 16, 0, 16);
    } else if (count >= 8) {
        std::memset(to, 0, 8);
        std::memset(to + count - 8, 0, 8);
    } else {
        for (size_t i = 0; i < count; ++i) {
            to[i] = 0;
        }
    }
}

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
    std::memmove(pDest, pSrc, ulCount); // overlapping bytes are no reason for damage
    return 0;
}

int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount) {
    if (ulCount > kSmallFill || ulCount > ulDestMax || pDest == nullptr || iValue != 0)
        [[unlikely]] {
        return fill(pDest, ulDestMax, iValue, ulCount);
    }
    zeroSmall(static_cast<char *>(pDest), ulCount);
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
