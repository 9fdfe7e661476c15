// Deep copy and clear of a value by the descriptor of its type: one recursive walk each.
//
// A copy starts with an all-zero target, and links every new allocation into it before filling it:
// clearing the target undoes the copy at any point. Values are packed to 4 bytes: the pointers in
// them may be unaligned, and are copied with memcpy.
#include "sipcore/block.hpp"
#include "sipcore/functions.hpp"

#include "sdpline/sipcore.h"

#include <cstring>

namespace sipcore {
namespace {

using Bytes = uint8_t *;
using ConstBytes = const uint8_t *;

// The limit for descriptors that contain themselves, directly or through others.
constexpr uint32_t kMaxDepth = 32;

constexpr uint32_t kPointerSize = sizeof(void *);
constexpr uint32_t kAfterCode = 4; // offset of a union, array or pointer that follows a u32

template <class T>
T load(const void *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void store(void *to, T value) {
    std::memcpy(to, &value, sizeof value);
}

template <class T>
const T &detailOf(const SipDsmTypeDef &def) {
    return *static_cast<const T *>(def.pDetail);
}

// Whether a descriptor has a known kind, the detail that the kind needs, and a sufficient size.
bool isSound(const SipDsmTypeDef *def) {
    if (def == nullptr) {
        return false;
    }
    const bool hasDetail = def->pDetail != nullptr;
    switch (def->enKind) {
    case SIP_DSM_SEQUENCE:
    case SIP_DSM_SET: return hasDetail && def->ulSize >= 1;
    case SIP_DSM_CHOICE: return hasDetail && def->ulSize >= kAfterCode;
    case SIP_DSM_LIST:
    case SIP_DSM_CODED_TEXT: return hasDetail && def->ulSize >= kAfterCode + kPointerSize;
    case SIP_DSM_POINTER: return hasDetail && def->ulSize >= kPointerSize;
    case SIP_DSM_RANGED_U32: return hasDetail && def->ulSize >= sizeof(uint32_t);
    case SIP_DSM_RANGED_U8: return hasDetail && def->ulSize >= sizeof(uint8_t);
    case SIP_DSM_VERSION: return def->ulSize >= sizeof(uint32_t);
    case SIP_DSM_UNSIGNED: return def->ulSize >= 1;
    case SIP_DSM_STRING: return def->ulSize >= sizeof(SipString);
    default: return false;
    }
}

// Calls visit(offset, member) for the members of a sequence until one returns a failure. Members
// of 4 bytes and more begin at a multiple of 4, those of 2 bytes at a multiple of 2; none may
// reach beyond the size of the whole.
template <class Visit>
uint32_t visitMembers(const SipDsmTypeDef &def, const SipDsmSequenceDef &sequence, Visit visit) {
    uint64_t offset = 0;
    for (uint32_t i = 0; i < sequence.ulNoOfMembers; ++i) {
        const SipDsmTypeDef *member = sequence.ppstMembers[i];
        if (!isSound(member)) {
            return SIP_INVALID_ARGUMENT;
        }
        const uint64_t alignment = member->ulSize >= 4 ? 4 : member->ulSize == 2 ? 2 : 1;
        offset = (offset + alignment - 1) & ~(alignment - 1);
        if (offset + member->ulSize > def.ulSize) {
            return SIP_INVALID_ARGUMENT;
        }
        const uint32_t result = visit(static_cast<uint32_t>(offset), *member);
        if (result != SIP_OK) {
            return result;
        }
        offset += member->ulSize;
    }
    return SIP_OK;
}

// The same for the elements of a fixed array, which follow one another without gaps.
template <class Visit>
uint32_t visitElements(const SipDsmTypeDef &def, const SipDsmSetDef &set, Visit visit) {
    if (!isSound(set.pstElement)) {
        return SIP_INVALID_ARGUMENT;
    }
    const SipDsmTypeDef &element = *set.pstElement;
    if (uint64_t{set.ulNoOfElements} * element.ulSize > def.ulSize) {
        return SIP_INVALID_ARGUMENT;
    }
    for (uint32_t i = 0; i < set.ulNoOfElements; ++i) {
        const uint32_t result = visit(i * element.ulSize, element);
        if (result != SIP_OK) {
            return result;
        }
    }
    return SIP_OK;
}

template <class Visit>
uint32_t visitParts(const SipDsmTypeDef &def, Visit visit) {
    if (def.enKind == SIP_DSM_SEQUENCE) {
        return visitMembers(def, detailOf<SipDsmSequenceDef>(def), visit);
    }
    return visitElements(def, detailOf<SipDsmSetDef>(def), visit);
}

// Finds the alternative that follows a choice's selector; null for selector 0, which has none.
uint32_t findAlternative(const SipDsmTypeDef &def, uint32_t selector,
                         const SipDsmTypeDef *&alternative) {
    alternative = nullptr;
    const auto &choice = detailOf<SipDsmChoiceDef>(def);
    if (selector == 0) {
        return SIP_OK;
    }
    if (selector >= choice.ulNoOfSelectors || choice.ppstAlternatives[selector - 1] == nullptr) {
        return SIP_OUT_OF_RANGE;
    }
    const SipDsmTypeDef *found = choice.ppstAlternatives[selector - 1];
    if (!isSound(found) || found->ulSize > def.ulSize - kAfterCode) {
        return SIP_INVALID_ARGUMENT;
    }
    alternative = found;
    return SIP_OK;
}

bool usesPointer(const SipDsmCPointerDef &detail, uint32_t code) {
    return code >= detail.ulLowest && code <= detail.ulHighest;
}

bool admits(const SipDsmRangeDef &range, uint32_t value) {
    return value >= range.ulMinimum && value <= range.ulMaximum;
}

class Copier {
public:
    explicit Copier(SDPMemCp *memCp) : memCp_(memCp) {}

    uint32_t copy(ConstBytes src, Bytes dst, const SipDsmTypeDef *def, uint32_t depth) {
        if (!isSound(def) || depth >= kMaxDepth) {
            return SIP_INVALID_ARGUMENT;
        }
        switch (def->enKind) {
        case SIP_DSM_CHOICE: return copyChoice(src, dst, *def, depth);
        case SIP_DSM_LIST: return copyList(src, dst, detailOf<SipDsmTypeDef>(*def), depth);
        case SIP_DSM_POINTER: return copyPointee(src, dst, &detailOf<SipDsmTypeDef>(*def), depth);
        case SIP_DSM_CODED_TEXT: return copyCodedText(src, dst, *def, depth);
        case SIP_DSM_RANGED_U32:
            store(dst, load<uint32_t>(src));
            return checkRange(*def, load<uint32_t>(src));
        case SIP_DSM_RANGED_U8: *dst = *src; return checkRange(*def, *src);
        case SIP_DSM_VERSION: store(dst, load<uint32_t>(src)); return SIP_OK;
        case SIP_DSM_UNSIGNED: std::memcpy(dst, src, def->ulSize); return SIP_OK;
        case SIP_DSM_STRING: return copyString(src, dst);
        default: break; // sequence or set
        }
        return visitParts(*def, [&](uint32_t offset, const SipDsmTypeDef &part) {
            return copy(src + offset, dst + offset, &part, depth + 1);
        });
    }

private:
    static uint32_t checkRange(const SipDsmTypeDef &def, uint32_t value) {
        return admits(detailOf<SipDsmRangeDef>(def), value) ? SIP_OK : SIP_OUT_OF_RANGE;
    }

    uint32_t copyString(ConstBytes src, Bytes dst) {
        const auto from = load<SipString>(src);
        SipString to{0, nullptr};
        const uint32_t result = SipSmCopyString(memCp_, &from, &to);
        store(dst, to);
        return result;
    }

    uint32_t copyChoice(ConstBytes src, Bytes dst, const SipDsmTypeDef &def, uint32_t depth) {
        const auto selector = load<uint32_t>(src);
        const SipDsmTypeDef *alternative = nullptr;
        const uint32_t result = findAlternative(def, selector, alternative);
        if (result != SIP_OK) {
            return result;
        }
        store(dst, selector);
        if (alternative == nullptr) {
            return SIP_OK;
        }
        return copy(src + kAfterCode, dst + kAfterCode, alternative, depth + 1);
    }

    uint32_t copyCodedText(ConstBytes src, Bytes dst, const SipDsmTypeDef &def, uint32_t depth) {
        const auto &detail = detailOf<SipDsmCPointerDef>(def);
        const auto code = load<uint32_t>(src);
        store(dst, code);
        if (!usesPointer(detail, code)) {
            return SIP_OK;
        }
        return copyPointee(src + kAfterCode, dst + kAfterCode, detail.pstPointee, depth);
    }

    // A count with a null array is copied as it is, and so is a null slot of an array.
    uint32_t copyList(ConstBytes src, Bytes dst, const SipDsmTypeDef &element, uint32_t depth) {
        const auto count = load<uint32_t>(src);
        const auto from = load<ConstBytes>(src + kAfterCode);
        store(dst, count);
        if (count == 0 || from == nullptr) {
            return SIP_OK;
        }
        Bytes slots = count > UINT32_MAX / kPointerSize ? nullptr : take(count * kPointerSize);
        if (slots == nullptr) {
            return SIP_NO_MEMORY;
        }
        store(dst + kAfterCode, slots);
        for (uint32_t i = 0; i < count; ++i) {
            const size_t at = size_t{i} * kPointerSize;
            const uint32_t result = copyPointee(from + at, slots + at, &element, depth);
            if (result != SIP_OK) {
                return result;
            }
        }
        return SIP_OK;
    }

    // src and dst are the addresses of the two pointers.
    uint32_t copyPointee(ConstBytes src, Bytes dst, const SipDsmTypeDef *def, uint32_t depth) {
        const auto from = load<ConstBytes>(src);
        if (from == nullptr) {
            return SIP_OK;
        }
        if (!isSound(def)) {
            return SIP_INVALID_ARGUMENT;
        }
        Bytes value = take(def->ulSize);
        if (value == nullptr) {
            return SIP_NO_MEMORY;
        }
        store(dst, value);
        return copy(from, value, def, depth + 1);
    }

    // Not every memory service returns zeroed memory.
    Bytes take(uint32_t size) {
        auto memory = static_cast<Bytes>(takeUnfilled(memCp_, size));
        if (memory != nullptr) {
            std::memset(memory, 0, size);
        }
        return memory;
    }

    SDPMemCp *memCp_;
};

// Clearing goes on after a failure, so that only the part that failed is not freed. The result is
// the first failure.
class Clearer {
public:
    explicit Clearer(SDPMemCp *memCp) : memCp_(memCp) {}

    void clear(Bytes value, const SipDsmTypeDef *def, uint32_t depth) {
        if (!isSound(def) || depth >= kMaxDepth) {
            note(SIP_INVALID_ARGUMENT);
            return;
        }
        switch (def->enKind) {
        case SIP_DSM_CHOICE: clearChoice(value, *def, depth); break;
        case SIP_DSM_LIST: clearList(value, detailOf<SipDsmTypeDef>(*def), depth); break;
        case SIP_DSM_POINTER: clearPointee(value, &detailOf<SipDsmTypeDef>(*def), depth); break;
        case SIP_DSM_CODED_TEXT: clearCodedText(value, *def, depth); break;
        case SIP_DSM_STRING: clearString(value); break;
        case SIP_DSM_SEQUENCE:
        case SIP_DSM_SET:
            note(visitParts(*def, [&](uint32_t offset, const SipDsmTypeDef &part) {
                clear(value + offset, &part, depth + 1);
                return uint32_t{SIP_OK};
            }));
            break;
        default: break; // plain integers stay
        }
    }

    uint32_t firstFailure() const { return result_; }

private:
    void note(uint32_t result) {
        if (result_ == SIP_OK) {
            result_ = result;
        }
    }

    void clearString(Bytes value) {
        auto text = load<SipString>(value);
        SipSmClearString(memCp_, &text);
        store(value, text);
    }

    void clearChoice(Bytes value, const SipDsmTypeDef &def, uint32_t depth) {
        const SipDsmTypeDef *alternative = nullptr;
        note(findAlternative(def, load<uint32_t>(value), alternative));
        if (alternative != nullptr) {
            clear(value + kAfterCode, alternative, depth + 1);
        }
    }

    // A code that uses no pointer owns nothing.
    void clearCodedText(Bytes value, const SipDsmTypeDef &def, uint32_t depth) {
        const auto &detail = detailOf<SipDsmCPointerDef>(def);
        if (usesPointer(detail, load<uint32_t>(value))) {
            clearPointee(value + kAfterCode, detail.pstPointee, depth);
        }
        store<void *>(value + kAfterCode, nullptr);
    }

    void clearList(Bytes value, const SipDsmTypeDef &element, uint32_t depth) {
        const auto count = load<uint32_t>(value);
        const auto slots = load<Bytes>(value + kAfterCode);
        store(value, uint32_t{0});
        store<void *>(value + kAfterCode, nullptr);
        if (slots == nullptr) {
            return;
        }
        for (uint32_t i = 0; i < count; ++i) {
            clearPointee(slots + size_t{i} * kPointerSize, &element, depth);
        }
        memCp_->pfnFree(slots);
    }

    void clearPointee(Bytes slot, const SipDsmTypeDef *def, uint32_t depth) {
        const auto pointee = load<Bytes>(slot);
        if (pointee == nullptr) {
            return;
        }
        clear(pointee, def, depth + 1);
        memCp_->pfnFree(pointee);
        store<void *>(slot, nullptr);
    }

    SDPMemCp *memCp_;
    uint32_t result_ = SIP_OK;
};

// The descriptors that a stack defines.

constexpr SipDsmTypeDef kOctetDef{1, SIP_DSM_UNSIGNED, nullptr};
constexpr SipDsmSetDef kHostIpv4Octets{4, &kOctetDef};
constexpr SipDsmSetDef kHostIpv6Octets{16, &kOctetDef};

} // namespace
} // namespace sipcore

const SipDsmTypeDef g_gstStringDef{sizeof(SipString), SIP_DSM_STRING, nullptr};
const SipDsmTypeDef g_gstStringPointerDef{sizeof(void *), SIP_DSM_POINTER, &g_gstStringDef};
const SipDsmTypeDef g_gstHostIPV4Def{4, SIP_DSM_SET, &sipcore::kHostIpv4Octets};
const SipDsmTypeDef g_gstHostIPV6Def{16, SIP_DSM_SET, &sipcore::kHostIpv6Octets};

uint32_t SipDsmCopyGeneralField(SDPMemCp *memCp, const void *source, void *target,
                                const SipDsmTypeDef *descriptor) {
    using namespace sipcore;
    if (memCp == nullptr || source == nullptr || target == nullptr || source == target ||
        !isSound(descriptor)) {
        return SIP_INVALID_ARGUMENT;
    }
    auto dst = static_cast<Bytes>(target);
    std::memset(dst, 0, descriptor->ulSize);
    const uint32_t result = Copier(memCp).copy(static_cast<ConstBytes>(source), dst, descriptor, 0);
    if (result != SIP_OK) {
        Clearer(memCp).clear(dst, descriptor, 0);
        std::memset(dst, 0, descriptor->ulSize);
    }
    return result;
}

uint32_t SipDsmClearGeneralField(SDPMemCp *memCp, void *value, const SipDsmTypeDef *descriptor) {
    using namespace sipcore;
    if (memCp == nullptr || value == nullptr || !isSound(descriptor)) {
        return SIP_INVALID_ARGUMENT;
    }
    Clearer clearer(memCp);
    clearer.clear(static_cast<Bytes>(value), descriptor, 0);
    return clearer.firstFailure();
}

extern "C" {
SIPCORE_ALIAS(SipDsmCopyGeneralField, sipcoreCopyField)
}
