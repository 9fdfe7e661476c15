// Copy, clone, clear and free of one line, selected by its kind. The stack's generic services do
// the work for the kinds that the table of lines describes; m= lines and attributes, which the
// descriptors do not cover, are handled in media.cpp and attribute.cpp.
//
// Where those services and the memory are libsipcore's, most lines are copied in place, without
// calls, as long as the whole line fits into the unused rest of the block. A line that does not fit
// is cloned by the same requests that the services would make.
#include "checks/checks.hpp"
#include "copy/records.hpp"
#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

using namespace sdpline;

namespace {

// ---- Records that a service refuses or copies differently, or that are too rare to be copied in
// place

const SDPPreconditionS &preconditionOf(const SDPAttr &attribute) {
    return attribute.unAttrValue.stRsrcMgmtStatus.stPrecondition;
}

bool isUnusual(const SipString &) {
    return false;
}

// A precondition with a text that its code does not use: the services copy the pointer itself.
bool isUnusual(const SDPAttr &attribute) {
    const SDPPreconditionS &type = preconditionOf(attribute);
    return layoutOf(attribute).pointer == Pointer::Precondition &&
           type.enPreconditionType != SDP_PRECONDITION_OTHER &&
           type.pstrOtherPrecondition != nullptr;
}

bool isUnusual(const SDPConnection &connection) {
    return connection.stNetType.enNetType == SDP_NETTYPE_OTHER ||
           connection.stAddrType.enAddrType == SDP_ADDRTYPE_OTHER ||
           connection.stTptAddr.enTptAddrType > SDP_TPTADDR_IPV6;
}

bool isUnusual(const SDPOrigin &origin) {
    return origin.stNetType.enNetType == SDP_NETTYPE_OTHER ||
           origin.stAddrType.enAddrType == SDP_ADDRTYPE_OTHER;
}

bool isUnusual(const SDPMediaField &) {
    return false; // too many payload numbers are a failure of the copier
}

bool isUnusual(const SDPTimeField &time) {
    return time.pstRepeatFieldSet != nullptr;
}

// ---- Copies in place

sipcore::Block &blockOf(const SDPMemCp &memCp) {
    return *static_cast<sipcore::Block *>(memCp.pService);
}

template <class Copier, class Record>
inline void copyRecord(Copier &copier, const Record &source, Record &target) {
    copier.copy(source, target);
}

// The bytes after an IPv4 address become zero; without an address all bytes do.
template <class Copier>
inline void copyRecord(Copier &, const SDPConnection &source, SDPConnection &target) {
    target = source;
    target.stNetType.pstrOtherNetType = nullptr;
    target.stAddrType.pstrOtherAddrType = nullptr;
    auto &address = target.stTptAddr.unTptAddr;
    if (source.stTptAddr.enTptAddrType == SDP_TPTADDR_IPV4) {
        std::memset(address.aucIpv6 + 4, 0, 12);
    } else if (source.stTptAddr.enTptAddrType == SDP_TPTADDR_NONE) {
        address = {};
    }
}

// Returns false also for a text without bytes, which is left to the services.
inline bool cutText(CutMemory &memory, const SipString &from, SipString &to) {
    if (from.pcData == nullptr) [[unlikely]] {
        return false;
    }
    to.pcData = static_cast<char *>(memory.copied(from.pcData, from.ulLen));
    to.ulLen = from.ulLen;
    return to.pcData != nullptr;
}

// These copy the whole record, or nothing if it does not fit.
template <class Record>
inline bool copyWithin(SDPMemCp &memCp, const Record &source, Record &target) {
    RecordCopier copier{CutMemory(memCp)};
    copyRecord(copier, source, target);
    if (copier.failed()) [[unlikely]] {
        copier.memory().drop();
        return false;
    }
    copier.memory().keep();
    return true;
}

inline bool copyWithin(SDPMemCp &memCp, const SDPOrigin &source, SDPOrigin &target) {
    CutMemory memory(memCp);
    target.stNetType = {source.stNetType.enNetType, nullptr};
    target.stAddrType = {source.stAddrType.enAddrType, nullptr};
    if (!cutText(memory, source.strUserName, target.strUserName) ||
        !cutText(memory, source.strSessionId, target.strSessionId) ||
        !cutText(memory, source.strSessionVersion, target.strSessionVersion) ||
        !cutText(memory, source.strAddress, target.strAddress)) [[unlikely]] {
        memory.drop();
        return false;
    }
    memory.keep();
    return true;
}

// A list of payload numbers, and a type and a protocol that have codes.
bool isUsual(const SDPMediaField &line) {
    const SDPRtpPayLoads &numbers = line.stMediaFmt.unMediaFmt.stRtpPayLoads;
    return line.stMedia.enMediaType != SDP_MEDIA_OTHER && line.stProto.enProto != SDP_PROTO_OTHER &&
           line.stMediaFmt.enFmtType == SDP_FMT_RTP_PAYLOADS && numbers.pulPayLoads != nullptr &&
           numbers.ulNoOfPayLoads <= SDP_MAX_PAYLOADS;
}

inline bool copyWithin(SDPMemCp &memCp, const SipString &source, SipString &target) {
    const uint32_t size = source.ulLen;
    void *const bytes =
        source.pcData != nullptr ? sipcore::cutSmall(blockOf(memCp), size) : nullptr;
    if (bytes == nullptr) [[unlikely]] {
        return false;
    }
    copyBytes(bytes, source.pcData, size);
    target = {size, static_cast<char *>(bytes)};
    return true;
}

// A record that refers to nothing else.
template <class Record>
inline Record *cloneWithin(SDPMemCp &memCp, const Record &source) {
    auto *const made = static_cast<Record *>(sipcore::cutSmall(blockOf(memCp), sizeof(Record)));
    if (made != nullptr) [[likely]] {
        RecordCopier copier{CutMemory(memCp)};
        copyRecord(copier, source, *made);
    }
    return made;
}

inline SipString *cloneWithin(SDPMemCp &memCp, const SipString &source) {
    char *bytes = nullptr;
    auto *const made = source.pcData != nullptr
                           ? sipcore::cutWithRecord<SipString>(blockOf(memCp), source.ulLen, bytes)
                           : nullptr;
    if (made != nullptr) [[likely]] {
        *made = {source.ulLen, bytes};
        copyBytes(bytes, source.pcData, source.ulLen);
    }
    return made;
}

[[gnu::noinline]] SDPResult copyByServices(SDPMemCp *memCp, uint32_t type, const void *source,
                                           void *target) {
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

template <class Record>
[[gnu::noinline]] SDPResult copyInPlace(SDPMemCp *memCp, uint32_t type, const void *source,
                                        void *target) {
    const auto &from = *static_cast<const Record *>(source);
    const bool isDone = source != target && !isUnusual(from) &&
                        copyWithin(*memCp, from, *static_cast<Record *>(target));
    return isDone ? 0 : copyByServices(memCp, type, source, target);
}

[[gnu::noinline]] SDPResult copyMediaInPlace(SDPMemCp *memCp, const void *source, void *target) {
    const auto &from = *static_cast<const SDPMediaField *>(source);
    const SDPRtpPayLoads &list = from.stMediaFmt.unMediaFmt.stRtpPayLoads;
    const uint32_t size = list.ulNoOfPayLoads * static_cast<uint32_t>(sizeof(uint32_t));
    void *const numbers =
        source != target && isUsual(from) ? sipcore::cutSmall(blockOf(*memCp), size) : nullptr;
    if (numbers == nullptr) {
        return copyInPlace<SDPMediaField>(memCp, SDP_LINE_MEDIA, source, target);
    }
    auto &to = *static_cast<SDPMediaField *>(target);
    to = from;
    to.stMedia.pstrOtherMedia = nullptr;
    to.stProto.pstrOtherProto = nullptr;
    to.stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads = static_cast<uint32_t *>(numbers);
    copyBytes(numbers, list.pulPayLoads, size);
    return 0;
}

[[gnu::noinline]] SDPResult cloneByServices(SDPMemCp *memCp, uint32_t type, const void *source,
                                            void **target) {
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

// Frees what an incomplete clone allocated, and fails the checks that the services would fail.
[[gnu::cold, gnu::noinline]] SDPResult undoClone(SDPMemCp *memCp, uint32_t type, void *made) {
    if (made == nullptr) {
        return fail(Check::CloneAlloc);
    }
    SdpClearLine(memCp, type, made);
    memCp->pfnFree(made);
    if (type == SDP_LINE_ATTRIBUTE) {
        logAndForward(Check::CopyAttributeText, SIP_NO_MEMORY);
    } else {
        fail(Check::CopyGeneric, SIP_NO_MEMORY);
    }
    return fail(Check::CloneCopy);
}

// Clones with the same requests, in the same order, as the services: these may also take freed
// allocations and new chunks.
template <class Record>
[[gnu::noinline]] SDPResult cloneByRequests(SDPMemCp *memCp, uint32_t type, const void *from,
                                            void **target) {
    const auto &source = *static_cast<const Record *>(from);
    if (isUnusual(source)) {
        return cloneByServices(memCp, type, from, target);
    }
    RecordCopier copier{CopyMemory(*memCp)};
    auto *const made = static_cast<Record *>(copier.memory().take(sizeof(Record)));
    if (made != nullptr) {
        copyRecord(copier, source, *made);
    }
    if (copier.failed()) {
        return undoClone(memCp, type, made);
    }
    *target = made;
    return 0;
}

template <class Record>
[[gnu::noinline]] SDPResult cloneInPlace(SDPMemCp *memCp, uint32_t type, const void *from,
                                         void **target) {
    const auto &source = *static_cast<const Record *>(from);
    Record *const made = isUnusual(source) ? nullptr : cloneWithin(*memCp, source);
    if (made == nullptr) [[unlikely]] {
        return cloneByRequests<Record>(memCp, type, from, target);
    }
    *target = made;
    return 0;
}

// ---- Attributes: most lines are attributes, so their clones are written to need few registers

[[gnu::noinline]] SDPResult clonePlain(sipcore::Block &block, const AttributeLayout &layout,
                                       const SDPAttr &source, void **target) {
    auto *const made = static_cast<SDPAttr *>(sipcore::cutSmall(block, sizeof(SDPAttr)));
    if (made == nullptr) [[unlikely]] {
        return cloneByRequests<SDPAttr>(&block.control, SDP_LINE_ATTRIBUTE, &source, target);
    }
    copyKept(layout, source, *made);
    *target = made;
    return 0;
}

// The record and its text are cut together. A text without bytes is cloned by requests.
[[gnu::noinline]] SDPResult cloneWithText(sipcore::Block &block, const AttributeLayout &layout,
                                          const SDPAttr &source, void **target) {
    const SipString &text = textAt(source, layout.text);
    const char *const from = text.pcData;
    const size_t size = text.ulLen;
    char *to = nullptr;
    auto *const made = from != nullptr ? sipcore::cutWithRecord<SDPAttr>(block, size, to) : nullptr;
    if (made == nullptr) [[unlikely]] {
        return cloneByRequests<SDPAttr>(&block.control, SDP_LINE_ATTRIBUTE, &source, target);
    }
    *target = made;
    copyKept(layout, source, *made);
    textAt(*made, layout.text).pcData = to;
    copyBytes(to, from, size);
    return 0;
}

SDPLINE_INLINE bool cutName(CutMemory &memory, const SDPAttr &from, SDPAttr &to) {
    const SipString *const name = from.pstAttrName;
    if (name == nullptr) {
        return true;
    }
    to.pstAttrName = static_cast<SipString *>(memory.take(sizeof(SipString)));
    return to.pstAttrName != nullptr && cutText(memory, *name, *to.pstAttrName);
}

inline SDPAttr *cutNamedAttribute(CutMemory memory, const SDPAttr &source,
                                  const AttributeLayout &layout) {
    auto *const made = static_cast<SDPAttr *>(memory.take(sizeof(SDPAttr)));
    if (made == nullptr) [[unlikely]] {
        return nullptr;
    }
    copyKept(layout, source, *made);
    if (!cutName(memory, source, *made) ||
        (layout.text != 0 &&
         !cutText(memory, textAt(source, layout.text), textAt(*made, layout.text)))) [[unlikely]] {
        memory.drop();
        return nullptr;
    }
    memory.keep();
    return made;
}

[[gnu::noinline]] SDPResult cloneNamed(SDPMemCp *memCp, const AttributeLayout &layout,
                                       const SDPAttr &source, void **target) {
    SDPAttr *const made = cutNamedAttribute(CutMemory(*memCp), source, layout);
    if (made == nullptr) [[unlikely]] {
        return cloneByRequests<SDPAttr>(memCp, SDP_LINE_ATTRIBUTE, &source, target);
    }
    *target = made;
    return 0;
}

inline SDPResult cloneAttribute(SDPMemCp *memCp, const void *from, void **target) {
    const auto &source = *static_cast<const SDPAttr *>(from);
    if (source.ulAttrType > kLastAttribute) [[unlikely]] {
        return cloneByRequests<SDPAttr>(memCp, SDP_LINE_ATTRIBUTE, from, target);
    }
    const AttributeLayout &layout = kAttributeLayouts[source.ulAttrType];
    sipcore::Block &block = blockOf(*memCp);
    if (layout.refersToText) {
        return cloneWithText(block, layout, source, target);
    }
    if (layout.pointer == Pointer::Name) {
        return cloneNamed(memCp, layout, source, target);
    }
    const bool hasText = layout.pointer == Pointer::Precondition &&
                         preconditionOf(source).pstrOtherPrecondition != nullptr;
    return hasText ? cloneByRequests<SDPAttr>(memCp, SDP_LINE_ATTRIBUTE, from, target)
                   : clonePlain(block, layout, source, target);
}

// ---- Arguments

bool isRefused(const SDPMemCp *memCp, uint32_t type, const void *source, const void *target) {
    return memCp == nullptr || source == nullptr || type >= SDP_LINE_COUNT || target == nullptr;
}

[[gnu::cold, gnu::noinline]] SDPResult refuseCopy() {
    fail(Check::CopyValidate);
    return fail(Check::CopyArgument);
}

[[gnu::cold, gnu::noinline]] SDPResult refuseClone() {
    fail(Check::CloneValidate);
    return fail(Check::CloneArgument);
}

} // namespace

SDPResult SdpCopyLineValidate(SDPMemCp *memCp, uint32_t type, const void *source, void *target) {
    return isRefused(memCp, type, source, target) ? fail(Check::CopyValidate) : 0;
}

// The switch has no case for a type that is refused, so in place it needs no other check.
SDPResult SdpCopyLine(SDPMemCp *memCp, uint32_t type, const void *source, void *target) {
    if (memCp == nullptr || source == nullptr) [[unlikely]] {
        return refuseCopy();
    }
    if (builtin.copiesLines(*memCp) && target != nullptr) [[likely]] {
        switch (type) {
        case SDP_LINE_ORIGIN: return copyInPlace<SDPOrigin>(memCp, type, source, target);
        case SDP_LINE_MEDIA: return copyMediaInPlace(memCp, source, target);
        case SDP_LINE_NAME: return copyInPlace<SipString>(memCp, type, source, target);
        default: break;
        }
    }
    return isRefused(memCp, type, source, target) ? refuseCopy()
                                                  : copyByServices(memCp, type, source, target);
}

SDPResult SdpCloneLineValidate(SDPMemCp *memCp, uint32_t type, const void *source, void **target) {
    return isRefused(memCp, type, source, target) ? fail(Check::CloneValidate) : 0;
}

// Attributes come first, because most lines are attributes.
SDPResult SdpCloneLine(SDPMemCp *memCp, uint32_t type, const void *source, void **target) {
    if (memCp == nullptr || source == nullptr) [[unlikely]] {
        return refuseClone();
    }
    if (builtin.copiesLines(*memCp) && target != nullptr) [[likely]] {
        if (type == SDP_LINE_ATTRIBUTE) [[likely]] {
            return cloneAttribute(memCp, source, target);
        }
        if (type == SDP_LINE_CONNECTION) {
            return cloneInPlace<SDPConnection>(memCp, type, source, target);
        }
        if (type == SDP_LINE_TIME) {
            return cloneInPlace<SDPTimeField>(memCp, type, source, target);
        }
        if (type >= SDP_LINE_INFO && type < SDP_LINE_COUNT) { // lines that are one text
            return cloneInPlace<SipString>(memCp, type, source, target);
        }
    }
    return isRefused(memCp, type, source, target) ? refuseClone()
                                                  : cloneByServices(memCp, type, source, target);
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
    // A record that cannot be cleared is freed all the same: the caller does not use it any more.
    SdpClearLine(memCp, type, record);
    *value = nullptr;
    return memCp->pfnFree(record);
}
