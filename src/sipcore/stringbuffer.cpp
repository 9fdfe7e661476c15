// String buffers: one contiguous text that grows by at least doubling, or a fixed range of the
// caller's. A growable buffer's first bytes share the record's allocation; growth moves the text
// to a piece of its own.
#include "refstring.hpp"

#include "sdpline/sipcore.h"

#include <algorithm>
#include <array>
#include <cstring>

//   data          at                end
//   |  the text   |  room           |
struct SipStringBuffer {
    char *data;
    char *at;  // where the next byte goes
    char *end; // behind the room; before `at` once an append failed, so that nothing fits any more
    uint32_t growSize;
    bool fixed;
    SDPMemCp *memCp;

    char *firstBytes() { return reinterpret_cast<char *>(this + 1); }
    uint32_t length() const { return static_cast<uint32_t>(at - data); }
    uint32_t capacity() const { return static_cast<uint32_t>(end - data); }
    bool failed() const { return end < at; }
};

namespace sipcore {
namespace {

constexpr uint32_t kRecordSize = sizeof(SipStringBuffer);

uint32_t refuse(SipStringBuffer &buffer, uint32_t result) {
    buffer.end = buffer.at - 1;
    return result;
}

void dropText(SipStringBuffer &buffer) {
    if (!buffer.fixed && buffer.data != buffer.firstBytes()) {
        buffer.memCp->pfnFree(buffer.data);
    }
}

// Copies without a call what is at most sixteen bytes long, as most words are.
inline void copyBytes(char *to, const char *from, uint32_t size) {
    const auto copyEnds = [=]<class Part>(Part) {
        Part first;
        Part last;
        std::memcpy(&first, from, sizeof(Part));
        std::memcpy(&last, from + size - sizeof(Part), sizeof(Part));
        std::memcpy(to, &first, sizeof(Part));
        std::memcpy(to + size - sizeof(Part), &last, sizeof(Part));
    };
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        copyEnds(uint64_t{});
    } else if (size >= 4) {
        copyEnds(uint32_t{});
    } else if (size >= 2) {
        copyEnds(uint16_t{});
    } else if (size == 1) {
        *to = *from;
    }
}

uint32_t growAndAppend(SipStringBuffer &buffer, const char *text, uint32_t size) {
    const uint64_t wanted = uint64_t{buffer.length()} + size;
    if (wanted > UINT32_MAX) {
        return refuse(buffer, SIP_NO_SPACE);
    }
    const uint64_t grown =
        uint64_t{buffer.capacity()} + std::max(buffer.capacity(), buffer.growSize);
    const auto capacity =
        static_cast<uint32_t>(std::min<uint64_t>(std::max(wanted, grown), UINT32_MAX));
    auto *data = static_cast<char *>(buffer.memCp->pfnAlloc(buffer.memCp, capacity));
    if (data == nullptr) {
        return refuse(buffer, SIP_NO_MEMORY);
    }
    const uint32_t length = buffer.length();
    std::memcpy(data, buffer.data, length);
    std::memcpy(data + length, text, size);
    dropText(buffer);
    buffer.data = data;
    buffer.at = data + wanted;
    buffer.end = data + capacity;
    return SIP_OK;
}

// Everything but an append that simply fits.
[[gnu::noinline]] uint32_t appendSlowly(SipStringBuffer *buffer, const char *text, uint32_t size) {
    if (buffer == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (buffer->failed()) {
        return SIP_NO_SPACE;
    }
    if (size == 0) {
        return SIP_OK;
    }
    if (text == nullptr) {
        return refuse(*buffer, SIP_INVALID_ARGUMENT);
    }
    if (buffer->fixed) {
        return refuse(*buffer, SIP_NO_SPACE);
    }
    return growAndAppend(*buffer, text, size);
}

inline bool fits(const SipStringBuffer *buffer, uint32_t size) {
    return buffer != nullptr && int64_t{size} <= buffer->end - buffer->at;
}

inline uint32_t append(SipStringBuffer *buffer, const char *text, uint32_t size) {
    if (!fits(buffer, size) || text == nullptr) [[unlikely]] {
        return appendSlowly(buffer, text, size);
    }
    copyBytes(buffer->at, text, size);
    buffer->at += size;
    return SIP_OK;
}

// ---- Decimal numbers

constexpr uint32_t kMostDigits = 10; // 4294967295

// "00" to "99", one behind the other.
constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t value = 0; value < 100; ++value) {
        pairs[2 * value] = static_cast<char>('0' + value / 10);
        pairs[2 * value + 1] = static_cast<char>('0' + value % 10);
    }
    return pairs;
}();

inline uint32_t digitsOf(uint32_t value) {
    if (value < 1000) {
        return value < 10 ? 1 : value < 100 ? 2 : 3;
    }
    uint32_t digits = 4;
    for (value /= 10000; value != 0; value /= 10) {
        ++digits;
    }
    return digits;
}

// Writes the digits, as many as the value has, from their end.
inline void writeDigits(char *end, uint32_t value) {
    for (; value >= 100; value /= 100) {
        end -= 2;
        std::memcpy(end, &kPairs[2 * (value % 100)], 2);
    }
    if (value >= 10) {
        std::memcpy(end - 2, &kPairs[2 * value], 2);
    } else {
        end[-1] = static_cast<char>('0' + value);
    }
}

SipStringBuffer *newBuffer(SDPMemCp *memCp, uint32_t firstSize) {
    if (firstSize > UINT32_MAX - kRecordSize) {
        return nullptr;
    }
    void *memory = memCp->pfnAlloc(memCp, kRecordSize + firstSize);
    auto *buffer = static_cast<SipStringBuffer *>(memory);
    if (buffer != nullptr) {
        char *const first = buffer->firstBytes();
        *buffer = {first, first, first + firstSize, 0, false, memCp};
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
    buffer->at = buffer->data;
    buffer->end = buffer->data + ulBufLen;
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
        *pulLen = fixed ? pstBuf->length() : 0;
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
    if (pstBuf->failed()) {
        return SIP_NO_SPACE;
    }
    *ppstRef = sipcore::newRefString(pstBuf->memCp, pstBuf->data, pstBuf->length());
    return *ppstRef == nullptr ? SIP_NO_MEMORY : SIP_OK;
}

uint32_t SipSbCopyChar(SipStringBuffer *pstBuf, char cChar) {
    if (!sipcore::fits(pstBuf, 1)) [[unlikely]] {
        return sipcore::appendSlowly(pstBuf, &cChar, 1);
    }
    *pstBuf->at++ = cChar;
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
    const uint32_t size = sipcore::digitsOf(ulValue);
    if (sipcore::fits(pstBuf, size)) [[likely]] {
        pstBuf->at += size;
        sipcore::writeDigits(pstBuf->at, ulValue);
        return SIP_OK;
    }
    char digits[sipcore::kMostDigits];
    sipcore::writeDigits(digits + size, ulValue);
    return sipcore::appendSlowly(pstBuf, digits, size);
}
