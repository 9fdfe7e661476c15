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

uint32_t SipSmGetLenFromRefString(const SipRefString *pstRef) {
    return pstRef == nullptr ? 0 : pstRef->length;
}

const char *SipSmGetDataFromRefString(const SipRefString *pstRef) {
    return pstRef == nullptr ? nullptr : reinterpret_cast<const char *>(pstRef + 1);
}

void SipSmHoldRefString(SipRefString *pstRef) {
    if (pstRef != nullptr) {
        pstRef->holds.fetch_add(1, std::memory_order_relaxed);
    }
}

void SipSmReleaseRefString(SipRefString *pstRef) {
    // Acquire and release: all reads of the text by other holders happen before it is freed.
    if (pstRef != nullptr && pstRef->holds.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        pstRef->pfnFree(pstRef);
    }
}

uint32_t SipSmCopyString(SDPMemCp *pstMemCp, const SipString *pstSrc, SipString *pstDst) {
    if (pstDst == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    // The target may be a shallow copy of the source, whose pointer it must not keep.
    const SipString source = pstSrc == nullptr ? SipString{0, nullptr} : *pstSrc;
    *pstDst = {0, nullptr};
    if (pstMemCp == nullptr || pstSrc == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (source.ulLen == 0 || source.pcData == nullptr) {
        pstDst->ulLen = source.ulLen;
        return SIP_OK;
    }
    auto *data = static_cast<char *>(sipcore::takeUnfilled(pstMemCp, source.ulLen));
    if (data == nullptr) {
        return SIP_NO_MEMORY;
    }
    std::memcpy(data, source.pcData, source.ulLen);
    *pstDst = {source.ulLen, data};
    return SIP_OK;
}

uint32_t SipSmCloneString(SDPMemCp *pstMemCp, const SipString *pstSrc, SipString **ppstDst) {
    if (pstMemCp == nullptr || ppstDst == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *ppstDst = nullptr;
    if (pstSrc == nullptr) {
        return SIP_OK;
    }
    auto *clone = static_cast<SipString *>(pstMemCp->pfnAlloc(pstMemCp, sizeof(SipString)));
    if (clone == nullptr) {
        return SIP_NO_MEMORY;
    }
    const uint32_t result = SipSmCopyString(pstMemCp, pstSrc, clone);
    if (result != SIP_OK) {
        pstMemCp->pfnFree(clone);
        return result;
    }
    *ppstDst = clone;
    return SIP_OK;
}

void SipSmClearString(SDPMemCp *pstMemCp, SipString *pstText) {
    if (pstText == nullptr) {
        return;
    }
    if (pstMemCp != nullptr && pstText->pcData != nullptr) {
        pstMemCp->pfnFree(pstText->pcData);
    }
    *pstText = {0, nullptr};
}

void SipSmFreeString(SDPMemCp *pstMemCp, SipString **ppstText) {
    if (ppstText == nullptr || *ppstText == nullptr) {
        return;
    }
    SipSmClearString(pstMemCp, *ppstText);
    if (pstMemCp != nullptr) {
        pstMemCp->pfnFree(*ppstText);
    }
    *ppstText = nullptr;
}

uint32_t SipSmStringNCmp(const SipString *pstFirst, const SipString *pstSecond, uint32_t ulCount) {
    if (pstFirst == nullptr || pstSecond == nullptr) {
        return 0;
    }
    if (pstFirst->ulLen < ulCount || pstSecond->ulLen < ulCount) {
        return 0;
    }
    if (ulCount == 0) {
        return 1;
    }
    if (pstFirst->pcData == nullptr || pstSecond->pcData == nullptr) {
        return 0;
    }
    return std::memcmp(pstFirst->pcData, pstSecond->pcData, ulCount) == 0 ? 1 : 0;
}

extern "C" {
SIPCORE_ALIAS(SipSmCopyString, sipcoreCopyText)
SIPCORE_ALIAS(SipSmCloneString, sipcoreCloneText)
}
