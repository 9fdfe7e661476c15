#include "services/builtin.hpp"

#include "sipcore/builtin.hpp"

extern "C" {
[[gnu::weak]] extern const SipCoreBuiltin SIPCORE_BUILTIN; // null without libsipcore
}

namespace sdpline {

namespace {

Builtin findBuiltin() {
    if (&SIPCORE_BUILTIN == nullptr) {
        return {};
    }
    const SipCoreBuiltin &core = SIPCORE_BUILTIN;
    return {.appends = core.copyChar == SipSbCopyChar &&
                       core.copyConstString == SipSbCopyConstString &&
                       core.copyString == SipSbCopyString && core.copyLong == SipSbCopyLong,
            .copy = core.copy == memcpy_s,
            .fill = core.fill == memset_s,
            .blockAlloc = core.blockAlloc,
            .blockTake = core.blockTake,
            .blockFree = core.blockFree,
            .systemAlloc = core.systemAlloc,
            .systemFree = core.systemFree,
            .fillsFreed = core.fillsFreed};
}

} // namespace

Builtin builtin = findBuiltin();

} // namespace sdpline
