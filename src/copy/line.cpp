// Copy, clone, clear and free of one line, chosen by its kind. The stack's generic services do the
// work by the table of lines; m= lines and attributes, which the descriptors do not cover, are
// done in media.cpp and attribute.cpp. Where those services are libsipcore's, lines are
// copied in place of them.
#include "checks/checks.hpp"
#include "copy/records.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

namespace {

enum class Target : uint8_t { New, Callers };

template <class Record>
void copyRecord(RecordCopier &copier, const void *source, void *target) {
    copier.copy(*static_cast<const Record *>(source), *static_cast<Record *>(target));
}

// A precondition keeps a text beside a code that does not use it: the caller's, as it is.
bool isUnusual(const SDPAttr &attribute) {
    const SDPPreconditionS &type = attribute.unAttrValue.stRsrcMgmtStatus.stPrecondition;
    return attribute.ulAttrType - SDP_ATTR_DES <= SDP_ATTR_CONF - SDP_ATTR_DES &&
           type.enPreconditionType != SDP_PRECONDITION_OTHER &&
           type.pstrOtherPrecondition != nullptr;
}

// Whether a service refuses to copy the line, or copies it in its way.
bool isUnusual(uint32_t type, const void *source) {
    if (type == SDP_LINE_ATTRIBUTE) {
        return isUnusual(*static_cast<const SDPAttr *>(source));
    }
    if (type == SDP_LINE_CONNECTION) {
        const SDPTptAddr &address = static_cast<const SDPConnection *>(source)->stTptAddr;
        return address.enTptAddrType > SDP_TPTADDR_IPV6;
    }
    if (type == SDP_LINE_MEDIA) {
        const SDPMediaFmt &format = static_cast<const SDPMediaField *>(source)->stMediaFmt;
        return format.enFmtType != SDP_FMT_OTHER &&
               format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads > SDP_MAX_PAYLOADS;
    }
    return false;
}

// The bytes beyond an IPv4 address, and all where there is none, are zero.
void copyConnection(RecordCopier &copier, const SDPConnection &source, SDPConnection &target) {
    copier.copy(source, target);
    auto &address = target.stTptAddr.unTptAddr;
    if (source.stTptAddr.enTptAddrType == SDP_TPTADDR_IPV4) {
        std::memset(address.aucIpv6 + 4, 0, 12);
    } else if (source.stTptAddr.enTptAddrType == SDP_TPTADDR_NONE) {
        address = {};
    }
}

// An attribute without a value leaves that of a target that is the caller's.
void copyAttribute(RecordCopier &copier, const SDPAttr &source, SDPAttr &target, Target kind) {
    if (kind == Target::New) {
        copier.copy(source, target);
        return;
    }
    target.ulAttrType = source.ulAttrType;
    target.pstAttrName = nullptr;
    copier.copyValue(source, target);
}

void copyByType(RecordCopier &copier, uint32_t type, const void *source, void *target,
                Target kind) {
    switch (type) {
    case SDP_LINE_VERSION: std::memcpy(target, source, sizeof(uint32_t)); break;
    case SDP_LINE_CONNECTION:
        copyConnection(copier, *static_cast<const SDPConnection *>(source),
                       *static_cast<SDPConnection *>(target));
        break;
    case SDP_LINE_ORIGIN: copyRecord<SDPOrigin>(copier, source, target); break;
    case SDP_LINE_MEDIA: copyRecord<SDPMediaField>(copier, source, target); break;
    case SDP_LINE_ATTRIBUTE:
        copyAttribute(copier, *static_cast<const SDPAttr *>(source),
                      *static_cast<SDPAttr *>(target), kind);
        break;
    case SDP_LINE_TIME: copyRecord<SDPTimeField>(copier, source, target); break;
    case SDP_LINE_REPEAT: copyRecord<SDPRepeatField>(copier, source, target); break;
    case SDP_LINE_KEY: copyRecord<SDPKey>(copier, source, target); break;
    default: copyRecord<SipString>(copier, source, target); break;
    }
}

// What was taken goes back: the services find out what there is memory for, and tell what is not.
[[gnu::cold, gnu::noinline]] void undo(SDPMemCp &memCp, uint32_t type, void *copy, Target kind) {
    if (copy != nullptr) {
        SdpClearLine(&memCp, type, copy);
    }
    if (kind == Target::New) {
        memCp.pfnFree(copy);
    }
}

// Whether a copy into that memory may be made in place. Where one is not made, the services have
// to: they are not libsipcore's, they refuse the line, or there is no memory. Nothing is taken
// then.
bool isUnseen(CopyMemory memory) {
    return builtin.copiesLines && memory.isInPlace();
}

bool copyInPlace(SDPMemCp &memCp, uint32_t type, const void *source, void *target) {
    const CopyMemory memory(memCp);
    if (!isUnseen(memory) || source == target || isUnusual(type, source)) {
        return false;
    }
    RecordCopier copier(memory);
    copyByType(copier, type, source, target, Target::Callers);
    if (copier.failed()) [[unlikely]] {
        undo(memCp, type, target, Target::Callers);
        return false;
    }
    return true;
}

SDPResult cloneByServices(SDPMemCp &memCp, uint32_t type, const void *source, void **target) {
    void *clone = memCp.pfnAlloc(&memCp, g_gpstSdpLineDef[type]->ulSize);
    if (clone == nullptr) {
        return fail(Check::CloneAlloc);
    }
    if (SdpCopyLine(&memCp, type, source, clone) != 0) {
        memCp.pfnFree(clone);
        return fail(Check::CloneCopy);
    }
    *target = clone;
    return 0;
}

[[gnu::noinline]] SDPResult cloneInPlace(CopyMemory memory, uint32_t type, const void *source,
                                         void **target) {
    RecordCopier copier(memory);
    void *const made = copier.take(g_gpstSdpLineDef[type]->ulSize);
    if (made != nullptr) {
        copyByType(copier, type, source, made, Target::New);
    }
    if (copier.failed()) [[unlikely]] {
        undo(memory.control(), type, made, Target::New);
        return cloneByServices(memory.control(), type, source, target);
    }
    *target = made;
    return 0;
}

// Most lines are attributes: the copier stays in registers.
[[gnu::noinline]] SDPResult cloneInPlace(CopyMemory memory, const SDPAttr &source, void **target) {
    RecordCopier copier(memory);
    SDPAttr *const made = copier.clone(&source);
    if (copier.failed()) [[unlikely]] {
        undo(memory.control(), SDP_LINE_ATTRIBUTE, made, Target::New);
        return cloneByServices(memory.control(), SDP_LINE_ATTRIBUTE, &source, target);
    }
    *target = made;
    return 0;
}

} // namespace

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
    if (copyInPlace(*memCp, type, source, target)) {
        return 0;
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
    const CopyMemory memory(*memCp);
    if (!isUnseen(memory) || isUnusual(type, source)) {
        return cloneByServices(*memCp, type, source, target);
    }
    return type == SDP_LINE_ATTRIBUTE
               ? cloneInPlace(memory, *static_cast<const SDPAttr *>(source), target)
               : cloneInPlace(memory, type, source, target);
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
