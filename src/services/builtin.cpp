// Comparing the core services with those of libsipcore, once, when the library is loaded.
#include "services/builtin.hpp"

#include "sipcore/functions.hpp"

extern "C" {
[[gnu::weak]] extern const SipCoreBuiltin SIPCORE_BUILTIN; // null without libsipcore
}

namespace sdpline {

namespace {

bool describesOctets(const SipDsmTypeDef &def, uint32_t count) {
    const auto *const octets = static_cast<const SipDsmSetDef *>(def.pDetail);
    return def.enKind == SIP_DSM_SET && def.ulSize == count && octets->ulNoOfElements == count &&
           octets->pstElement->enKind == SIP_DSM_UNSIGNED && octets->pstElement->ulSize == 1;
}

// Whether the services that copy a line, and the stack's descriptors that they use, are the known
// ones.
bool copiesLines(const SipCoreBuiltin &core) {
    return core.copyField == SipDsmCopyGeneralField && core.copyText == SipSmCopyString &&
           core.cloneText == SipSmCloneString && core.copy == memcpy_s &&
           g_gstStringDef.enKind == SIP_DSM_STRING && g_gstStringDef.ulSize == sizeof(SipString) &&
           describesOctets(g_gstHostIPV4Def, 4) && describesOctets(g_gstHostIPV6Def, 16);
}

Builtin findBuiltin() {
    if (&SIPCORE_BUILTIN == nullptr) {
        return {};
    }
    const SipCoreBuiltin &core = SIPCORE_BUILTIN;
    return {.appends = core.copyChar == SipSbCopyChar &&
                       core.copyConstString == SipSbCopyConstString &&
                       core.copyString == SipSbCopyString && core.copyLong == SipSbCopyLong,
            .reserve = core.reserve,
            .copy = core.copy == memcpy_s,
            .fill = core.fill == memset_s,
            .blockAlloc = core.blockAlloc,
            .blockTake = core.blockTake,
            .blockFree = core.blockFree,
            .systemAlloc = core.systemAlloc,
            .systemFree = core.systemFree,
            .fillsFreed = core.fillsFreed,
            .lineAlloc = copiesLines(core) ? core.blockAlloc : nullptr};
}

} // namespace

Builtin builtin = findBuiltin();

} // namespace sdpline
