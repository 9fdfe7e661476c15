// Copy, clone, clear and free of one line, chosen by its kind. The stack's generic services do the
// work by the table of lines; m= lines and attributes, which the descriptors do not cover, are
// done in media.cpp and attribute.cpp.
#include "checks/checks.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

SDPResult SdpCopyLineValidate(SDPMemCp *memCp, uint32_t type, const void *source, void *target) {
    if (memCp == nullptr || type >= SDP_LINE_COUNT || source == nullptr || target == nullptr) {
        return fail(Check::CopyValidate);
    }
    return 0;
}

SDPResult SdpCopyLine(SDPMemCp *memCp, uint32_t type, const void *source, void *target) {
    if (SdpCopyLineValidate(memCp, type, source, target) != 0) {
        return fail(Check::CopyArgument);
    }
    if (type == SDP_LINE_MEDIA) {
        return SdpCopyMediaField(memCp, static_cast<const SDPMediaField *>(source),
                                 static_cast<SDPMediaField *>(target));
    }
    if (type == SDP_LINE_ATTRIBUTE) {
        return SdpCopyAttribute(memCp, static_cast<const SDPAttr *>(source),
                                static_cast<SDPAttr *>(target));
    }
    const uint32_t copied = SipDsmCopyGeneralField(memCp, source, target, g_gpstSdpLineDef[type]);
    return copied == 0 ? 0 : fail(Check::CopyGeneric, copied);
}

SDPResult SdpCloneLineValidate(SDPMemCp *memCp, uint32_t type, const void *source, void **target) {
    if (memCp == nullptr || type >= SDP_LINE_COUNT || source == nullptr || target == nullptr) {
        return fail(Check::CloneValidate);
    }
    return 0;
}

SDPResult SdpCloneLine(SDPMemCp *memCp, uint32_t type, const void *source, void **target) {
    if (SdpCloneLineValidate(memCp, type, source, target) != 0) {
        return fail(Check::CloneArgument);
    }
    void *clone = memCp->pfnAlloc(memCp, g_gpstSdpLineDef[type]->ulSize);
    if (clone == nullptr) {
        return fail(Check::CloneAlloc);
    }
    if (SdpCopyLine(memCp, type, source, clone) != 0) {
        memCp->pfnFree(clone);
        return fail(Check::CloneCopy);
    }
    *target = clone;
    return 0;
}

SDPResult SdpClearLineValidate(SDPMemCp *memCp, uint32_t type, void *value) {
    if (memCp == nullptr || type >= SDP_LINE_COUNT || value == nullptr) {
        return fail(Check::ClearValidate);
    }
    return 0;
}

SDPResult SdpClearLine(SDPMemCp *memCp, uint32_t type, void *value) {
    const SDPResult valid = SdpClearLineValidate(memCp, type, value);
    if (valid != 0) {
        return valid;
    }
    if (type == SDP_LINE_MEDIA) {
        return SdpClearMediaField(memCp, static_cast<SDPMediaField *>(value));
    }
    if (type == SDP_LINE_ATTRIBUTE) {
        return SdpClearAttribute(memCp, static_cast<SDPAttr *>(value));
    }
    return SipDsmClearGeneralField(memCp, value, g_gpstSdpLineDef[type]);
}

SDPResult SdpFreeLineValidate(SDPMemCp *memCp, uint32_t type, void **value) {
    if (memCp == nullptr || type >= SDP_LINE_COUNT || value == nullptr) {
        return fail(Check::FreeValidate);
    }
    return 0;
}

SDPResult SdpFreeLine(SDPMemCp *memCp, uint32_t type, void **value) {
    const SDPResult valid = SdpFreeLineValidate(memCp, type, value);
    if (valid != 0) {
        return valid;
    }
    void *const record = *value;
    if (record == nullptr) {
        return 0;
    }
    // A record that cannot be cleared is given back all the same: the caller is done with it.
    SdpClearLine(memCp, type, record);
    *value = nullptr;
    return memCp->pfnFree(record);
}
