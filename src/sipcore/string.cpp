// Counted strings and reference strings.
#include "sipcore/block.hpp"
#include "sipcore/functions.hpp"
#include "sipcore/refstring.hpp"

#include "sdpline/sipcore.h"

#include <atomic>
#include <cstring>
#include <new>

// The text follows the record. pfnFree needs no memory control, so only its pointer is stored.
struct SipRefString {
    std::atomic<uint32_t> holds;
    uint32_t length;
    uint32_t (*pfnFree)(void *);
};

SipRefString *sipcore::newRefString(SDPMemCp *memCp, const char *text, uint32_t length) {
    if (length > UINT32_MAX - sizeof(SipRefString)) {
        return nullptr;
    }
    void *memory = takeUnfilled(memCp, static_cast<uint32_t>(sizeof(SipRefString)) + length);
    if (memory == nullptr) {
        return nullptr;
    }
    auto *ref = new (memory) SipRefString{1, length, memCp->pfnFree};
    if (length != 0) {
        std::memcpy(reinterpret_cast<char *>(ref + 1), text, length);
    }
    return ref;
}

uint32_t SipSmGetLenFromRefString(const SipRefString *reference) {
    return reference == nullptr ? 0 : reference->length;
}

const char *SipSmGetDataFromRefString(const SipRefString *reference) {
    return reference == nullptr ? nullptr : reinterpret_cast<const char *>(reference + 1);
}

void SipSmHoldRefString(SipRefString *reference) {
    if (reference != nullptr) {
        reference->holds.fetch_add(1, std::memory_order_relaxed);
    }
}

void SipSmReleaseRefString(SipRefString *reference) {
    // Acquire and release: all reads of the text by other holders happen before it is freed.
    if (reference != nullptr && reference->holds.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        reference->pfnFree(reference);
    }
}

uint32_t SipSmCopyString(SDPMemCp *memCp, const SipString *from, SipString *to) {
    if (to == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    // The target may be a shallow copy of the source, whose pointer it must not keep.
    const SipString source = from == nullptr ? SipString{0, nullptr} : *from;
    *to = {0, nullptr};
    if (memCp == nullptr || from == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (source.ulLen == 0 || source.pcData == nullptr) {
        to->ulLen = source.ulLen;
        return SIP_OK;
    }
    auto *data = static_cast<char *>(sipcore::takeUnfilled(memCp, source.ulLen));
    if (data == nullptr) {
        return SIP_NO_MEMORY;
    }
    std::memcpy(data, source.pcData, source.ulLen);
    *to = {source.ulLen, data};
    return SIP_OK;
}

uint32_t SipSmCloneString(SDPMemCp *memCp, const SipString *source, SipString **target) {
    if (memCp == nullptr || target == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *target = nullptr;
    if (source == nullptr) {
        return SIP_OK;
    }
    auto *clone = static_cast<SipString *>(memCp->pfnAlloc(memCp, sizeof(SipString)));
    if (clone == nullptr) {
        return SIP_NO_MEMORY;
    }
    const uint32_t result = SipSmCopyString(memCp, source, clone);
    if (result != SIP_OK) {
        memCp->pfnFree(clone);
        return result;
    }
    *target = clone;
    return SIP_OK;
}

void SipSmClearString(SDPMemCp *memCp, SipString *text) {
    if (text == nullptr) {
        return;
    }
    if (memCp != nullptr && text->pcData != nullptr) {
        memCp->pfnFree(text->pcData);
    }
    *text = {0, nullptr};
}

void SipSmFreeString(SDPMemCp *memCp, SipString **text) {
    if (text == nullptr || *text == nullptr) {
        return;
    }
    SipSmClearString(memCp, *text);
    if (memCp != nullptr) {
        memCp->pfnFree(*text);
    }
    *text = nullptr;
}

uint32_t SipSmStringNCmp(const SipString *first, const SipString *second, uint32_t count) {
    if (first == nullptr || second == nullptr) {
        return 0;
    }
    if (first->ulLen < count || second->ulLen < count) {
        return 0;
    }
    if (count == 0) {
        return 1;
    }
    if (first->pcData == nullptr || second->pcData == nullptr) {
        return 0;
    }
    return std::memcmp(first->pcData, second->pcData, count) == 0 ? 1 : 0;
}

extern "C" {
SIPCORE_ALIAS(SipSmCopyString, sipcoreCopyText)
SIPCORE_ALIAS(SipSmCloneString, sipcoreCloneText)
}
