#include "support/securefaults.hpp"

#include <cerrno>

#include "sdpline/sipcore.h"
#include "support/hidden.hpp"

namespace {

struct State {
    uint32_t calls = 0;
    uint32_t failing = 0; // 0: none
    std::vector<support::SecureReport> reports;
};

thread_local State state;

// Counts one call; true if it has to fail.
bool refuses() {
    return ++state.calls == state.failing;
}

} // namespace

namespace support {

void SecureFaults::reset() {
    state = State();
}

void SecureFaults::failAt(uint32_t n) {
    state.failing = n;
}

uint32_t SecureFaults::count() {
    return state.calls;
}

const std::vector<SecureReport> &SecureFaults::reports() {
    return state.reports;
}

} // namespace support

extern "C" {

int memcpy_s(void *pDest, size_t ulDestMax, const void *pSrc, size_t ulCount) {
    static auto *const real = support::hidden<decltype(memcpy_s)>("memcpy_s");
    return refuses() ? ERANGE : real(pDest, ulDestMax, pSrc, ulCount);
}

int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount) {
    static auto *const real = support::hidden<decltype(memset_s)>("memset_s");
    return refuses() ? ERANGE : real(pDest, ulDestMax, iValue, ulCount);
}

void SIPAbnormalSecureFunc(const char *pcName, uint32_t ulNumber) {
    static auto *const real =
        support::hidden<decltype(SIPAbnormalSecureFunc)>("SIPAbnormalSecureFunc");
    state.reports.push_back({false, pcName, ulNumber});
    real(pcName, ulNumber);
}

void SIPAbnormalSecureFuncEx(const char *pcName, uint32_t ulNumber) {
    static auto *const real =
        support::hidden<decltype(SIPAbnormalSecureFuncEx)>("SIPAbnormalSecureFuncEx");
    state.reports.push_back({true, pcName, ulNumber});
    real(pcName, ulNumber);
}

} // extern "C"
