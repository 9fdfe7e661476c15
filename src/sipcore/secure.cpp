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

int memcpy_s(void *target, size_t capacity, const void *source, size_t count) {
    if (count == 0) {
        return 0;
    }
    if (target == nullptr || source == nullptr) {
        return EINVAL;
    }
    if (count > capacity) {
        return ERANGE;
    }
    std::memmove(target, source, count); // the ranges may overlap
    return 0;
}

int memset_s(void *target, size_t capacity, int value, size_t count) {
    if (count > sipcore::kSmallFill || count > capacity || target == nullptr || value != 0)
        [[unlikely]] {
        return fill(target, capacity, value, count);
    }
    sipcore::zeroSmall(static_cast<char *>(target), count);
    return 0;
}

int SS_MemCmp(const void *first, const void *second, uint32_t length) {
    if (length == 0 || first == second) {
        return 0;
    }
    if (first == nullptr || second == nullptr) {
        return first == nullptr ? -1 : 1;
    }
    return std::memcmp(first, second, length);
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
