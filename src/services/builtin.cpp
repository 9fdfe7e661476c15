#include "services/builtin.hpp"

#include "sipcore/own.hpp"

extern "C" {
[[gnu::weak]] extern const SipCoreOwn SIPCORE_OWN; // null without libsipcore
}

namespace sdpline {

namespace {

Own findOwn() {
    if (&SIPCORE_OWN == nullptr) {
        return {};
    }
    const SipCoreOwn &core = SIPCORE_OWN;
    return {.appends = core.copyChar == SipSbCopyChar &&
                       core.copyConstString == SipSbCopyConstString &&
                       core.copyString == SipSbCopyString && core.copyLong == SipSbCopyLong,
            .copy = core.copy == memcpy_s,
            .fill = core.fill == memset_s,
            .blockAlloc = core.blockAlloc,
            .blockTake = core.blockTake,
            .blockFree = core.blockFree};
}

} // namespace

Own own = findOwn();

} // namespace sdpline
