// String buffers: one contiguous text that grows by at least doubling, or a fixed range of the
// caller's. A growable buffer's first bytes share the record's allocation; growth moves the text
// to a piece of its own.
#include "refstring.hpp"

#include "sdpline/sipcore.h"

#include <algorithm>
#include <cstring>

struct SipStringBuffer {
    char *data;
    uint32_t length;
    uint32_t capacity;
    bool failed; // set by the first append that failed, never taken back
    bool fixed;
    uint32_t growSize;
    SDPMemCp *memCp;

    char *firstBytes() { return reinterpret_cast<char *>(this + 1); }
};

namespace sipcore {
namespace {

constexpr uint32_t kRecordSize = sizeof(SipStringBuffer);

uint32_t refuse(SipStringBuffer &buffer, uint32_t result) {
    buffer.failed = true;
    return result;
}

void dropText(SipStringBuffer &buffer) {
    if (!buffer.fixed && buffer.data != buffer.firstBytes()) {
        buffer.memCp->pfnFree(buffer.data);
    }
}

uint32_t growAndAppend(SipStringBuffer &buffer, const char *text, uint32_t length) {
    const uint64_t wanted = uint64_t{buffer.length} + length;
    if (wanted > UINT32_MAX) {
        return refuse(buffer, SIP_NO_SPACE);
    }
    const uint64_t grown = uint64_t{buffer.capacity} + std::max(buffer.capacity, buffer.growSize);
    const auto capacity =
        static_cast<uint32_t>(std::min<uint64_t>(std::max(wanted, grown), UINT32_MAX));
    auto *data = static_cast<char *>(buffer.memCp->pfnAlloc(buffer.memCp, capacity));
    if (data == nullptr) {
        return refuse(buffer, SIP_NO_MEMORY);
    }
    std::memcpy(data, buffer.data, buffer.length);
    std::memcpy(data + buffer.length, text, length);
    dropText(buffer);
    buffer.data = data;
    buffer.length += length;
    buffer.capacity = capacity;
    return SIP_OK;
}

// Everything but an append that simply fits.
uint32_t appendSlowly(SipStringBuffer *buffer, const char *text, uint32_t length) {
    if (buffer == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (buffer->failed) {
        return SIP_NO_SPACE;
    }
    if (length == 0) {
        return SIP_OK;
    }
    if (text == nullptr) {
        return refuse(*buffer, SIP_INVALID_ARGUMENT);
    }
    if (buffer->fixed) {
        return refuse(*buffer, SIP_NO_SPACE);
    }
    return growAndAppend(*buffer, text, length);
}

inline bool fits(const SipStringBuffer *buffer, uint32_t length) {
    return buffer != nullptr && !buffer->failed && length <= buffer->capacity - buffer->length;
}

inline uint32_t append(SipStringBuffer *buffer, const char *text, uint32_t length) {
    if (!fits(buffer, length) || text == nullptr) [[unlikely]] {
        return appendSlowly(buffer, text, length);
    }
    std::memcpy(buffer->data + buffer->length, text, length);
    buffer->length += length;
    return SIP_OK;
}

SipStringBuffer *newBuffer(SDPMemCp *memCp, uint32_t firstSize) {
    if (firstSize > UINT32_MAX - kRecordSize) {
        return nullptr;
    }
    void *memory = memCp->pfnAlloc(memCp, kRecordSize + firstSize);
    auto *buffer = static_cast<SipStringBuffer *>(memory);
    if (buffer != nullptr) {
        *buffer = {buffer->firstBytes(), 0, firstSize, false, false, 0, memCp};
    }
    return buffer;
}

} // namespace
} // namespace sipcore

uint32_t SipSbCreateStringBufferNew(SDPMemCp *pstMemCp, uint32_t ulFirstSize, uint32_t ulGrowSize,
                                    SipStringBuffer **ppstBuf) {
    if (ppstBuf == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *ppstBuf = nullptr;
    if (pstMemCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    SipStringBuffer *buffer = sipcore::newBuffer(pstMemCp, ulFirstSize);
    if (buffer == nullptr) {
        return SIP_NO_MEMORY;
    }
    buffer->growSize = ulGrowSize;
    *ppstBuf = buffer;
    return SIP_OK;
}

uint32_t SipSbCreateFixedStringBuffer(SDPMemCp *pstMemCp, uint8_t *pucBuf, uint32_t ulBufLen,
                                      SipStringBuffer **ppstBuf) {
    if (ppstBuf == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *ppstBuf = nullptr;
    if (pstMemCp == nullptr || pucBuf == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    SipStringBuffer *buffer = sipcore::newBuffer(pstMemCp, 0);
    if (buffer == nullptr) {
        return SIP_NO_MEMORY;
    }
    buffer->fixed = true;
    buffer->data = reinterpret_cast<char *>(pucBuf);
    buffer->capacity = ulBufLen;
    *ppstBuf = buffer;
    return SIP_OK;
}

void SipSbReleaseStringBuffer(SipStringBuffer *pstBuf) {
    if (pstBuf != nullptr) {
        sipcore::dropText(*pstBuf);
        pstBuf->memCp->pfnFree(pstBuf);
    }
}

void SipSbReleaseFixedStringBuffer(SipStringBuffer *pstBuf, uint8_t **ppucData, uint32_t *pulLen) {
    // The text of a growable buffer goes with it and is not reported.
    const bool fixed = pstBuf != nullptr && pstBuf->fixed;
    if (ppucData != nullptr) {
        *ppucData = fixed ? reinterpret_cast<uint8_t *>(pstBuf->data) : nullptr;
    }
    if (pulLen != nullptr) {
        *pulLen = fixed ? pstBuf->length : 0;
    }
    SipSbReleaseStringBuffer(pstBuf);
}

uint32_t SipSbConvertToRefString(SipStringBuffer *pstBuf, SipRefString **ppstRef) {
    if (ppstRef == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *ppstRef = nullptr;
    if (pstBuf == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (pstBuf->failed) {
        return SIP_NO_SPACE;
    }
    *ppstRef = sipcore::newRefString(pstBuf->memCp, pstBuf->data, pstBuf->length);
    return *ppstRef == nullptr ? SIP_NO_MEMORY : SIP_OK;
}

uint32_t SipSbCopyChar(SipStringBuffer *pstBuf, char cChar) {
    if (!sipcore::fits(pstBuf, 1)) [[unlikely]] {
        return sipcore::appendSlowly(pstBuf, &cChar, 1);
    }
    pstBuf->data[pstBuf->length++] = cChar;
    return SIP_OK;
}

uint32_t SipSbCopyConstString(SipStringBuffer *pstBuf, const char *pcText, uint32_t ulLen) {
    return sipcore::append(pstBuf, pcText, ulLen);
}

uint32_t SipSbCopyString(SipStringBuffer *pstBuf, const SipString *pstText) {
    if (pstText == nullptr || pstText->pcData == nullptr) {
        return sipcore::append(pstBuf, "", 0);
    }
    return sipcore::append(pstBuf, pstText->pcData, pstText->ulLen);
}

uint32_t SipSbCopyLong(SipStringBuffer *pstBuf, uint32_t ulValue) {
    char digits[10]; // 4294967295
    uint32_t first = sizeof digits;
    do {
        digits[--first] = static_cast<char>('0' + ulValue % 10);
        ulValue /= 10;
    } while (ulValue != 0);
    return sipcore::append(pstBuf, digits + first, static_cast<uint32_t>(sizeof digits) - first);
}
