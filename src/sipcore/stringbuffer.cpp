// String buffers: one contiguous text that grows by at least doubling, or a fixed range of the
// caller's bytes. The first bytes of a growable buffer are in the same allocation as its record;
// growth moves the text to a separate one. Memory that the heap returns beyond a request is used.
#include "sipcore/stringbuffer.hpp"

#include "sipcore/block.hpp"
#include "sipcore/functions.hpp"
#include "sipcore/heap.hpp"
#include "sipcore/refstring.hpp"

#include <algorithm>
#include <cstring>

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

// A text that grows for the first time gets the largest size that the heap caches: growing again
// would cost more than writing, and the next text reuses the memory.
uint32_t grownSize(const SDPMemCp *memCp, uint32_t least) {
    return isSystem(memCp) ? std::max(least, kLargestKept) : least;
}

// After a failure the buffer is unchanged.
uint32_t grow(SipStringBuffer &buffer, uint32_t size) {
    const uint32_t length = buffer.length();
    const uint64_t wanted = uint64_t{length} + size;
    if (wanted > UINT32_MAX) {
        return SIP_NO_SPACE;
    }
    const uint64_t grown =
        uint64_t{buffer.capacity()} + std::max(buffer.capacity(), buffer.growSize);
    const auto capacity =
        grownSize(buffer.memCp,
                  static_cast<uint32_t>(std::min<uint64_t>(std::max(wanted, grown), UINT32_MAX)));
    auto *data = static_cast<char *>(takeUnfilled(buffer.memCp, capacity));
    if (data == nullptr) {
        return SIP_NO_MEMORY;
    }
    std::memcpy(data, buffer.data, length);
    dropText(buffer);
    buffer.data = data;
    buffer.at = data + length;
    buffer.end = data + capacity;
    return SIP_OK;
}

uint32_t growAndAppend(SipStringBuffer &buffer, const char *text, uint32_t size) {
    if (const uint32_t result = grow(buffer, size)) {
        return refuse(buffer, result);
    }
    std::memcpy(buffer.at, text, size);
    buffer.at += size;
    return SIP_OK;
}

// Handles all appends that do not simply fit.
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

[[gnu::noinline]] uint32_t appendSlowly(SipStringBuffer *buffer, char letter) {
    return appendSlowly(buffer, &letter, 1);
}

inline bool fits(const SipStringBuffer *buffer, uint32_t size) {
    return buffer != nullptr && int64_t{size} <= buffer->end - buffer->at;
}

[[gnu::noinline]] uint32_t appendLong(SipStringBuffer *buffer, const char *text, uint32_t size) {
    char *const at = buffer->at;
    buffer->at = at + size;
    std::memcpy(at, text, size);
    return SIP_OK;
}

// Only a short text that fits is written here. All else is done by tail calls, before which no
// registers have to be saved.
inline uint32_t append(SipStringBuffer *buffer, const char *text, uint32_t size) {
    if (!fits(buffer, size) || text == nullptr) [[unlikely]] {
        return appendSlowly(buffer, text, size);
    }
    if (size > kShortText) [[unlikely]] {
        return appendLong(buffer, text, size);
    }
    buffer->at = putShortText(buffer->at, text, size);
    return SIP_OK;
}

[[gnu::noinline]] uint32_t appendNumberSlowly(SipStringBuffer *buffer, uint32_t value) {
    char digits[kMostDigits];
    const char *const end = putNumber(digits, value);
    const auto size = static_cast<uint32_t>(end - digits);
    return fits(buffer, size) ? appendLong(buffer, digits, size)
                              : appendSlowly(buffer, digits, size);
}

SipStringBuffer *newBuffer(SDPMemCp *memCp, uint32_t firstSize) {
    if (firstSize > UINT32_MAX - kRecordSize) {
        return nullptr;
    }
    const uint32_t size =
        isSystem(memCp) ? wholeSystemSize(kRecordSize + firstSize) : kRecordSize + firstSize;
    auto *buffer = static_cast<SipStringBuffer *>(takeUnfilled(memCp, size));
    if (buffer != nullptr) {
        char *const first = buffer->firstBytes();
        *buffer = {first, first, first + size - kRecordSize, 0, false, memCp};
    }
    return buffer;
}

} // namespace

uint32_t reserve(SipStringBuffer *buffer, uint32_t size) {
    if (buffer->failed() || buffer->fixed) {
        return SIP_NO_SPACE;
    }
    return fits(buffer, size) ? uint32_t{SIP_OK} : grow(*buffer, size);
}

} // namespace sipcore

uint32_t SipSbCreateStringBufferNew(SDPMemCp *memCp, uint32_t firstSize, uint32_t growSize,
                                    SipStringBuffer **made) {
    if (made == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *made = nullptr;
    if (memCp == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    SipStringBuffer *buffer = sipcore::newBuffer(memCp, firstSize);
    if (buffer == nullptr) {
        return SIP_NO_MEMORY;
    }
    buffer->growSize = growSize;
    *made = buffer;
    return SIP_OK;
}

uint32_t SipSbCreateFixedStringBuffer(SDPMemCp *memCp, uint8_t *bytes, uint32_t size,
                                      SipStringBuffer **made) {
    if (made == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *made = nullptr;
    if (memCp == nullptr || bytes == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    SipStringBuffer *buffer = sipcore::newBuffer(memCp, 0);
    if (buffer == nullptr) {
        return SIP_NO_MEMORY;
    }
    buffer->fixed = true;
    buffer->data = reinterpret_cast<char *>(bytes);
    buffer->at = buffer->data;
    buffer->end = buffer->data + size;
    *made = buffer;
    return SIP_OK;
}

void SipSbReleaseStringBuffer(SipStringBuffer *buffer) {
    if (buffer != nullptr) {
        sipcore::dropText(*buffer);
        buffer->memCp->pfnFree(buffer);
    }
}

void SipSbReleaseFixedStringBuffer(SipStringBuffer *buffer, uint8_t **data, uint32_t *length) {
    // The text of a growable buffer is released with it, and not reported.
    const bool fixed = buffer != nullptr && buffer->fixed;
    if (data != nullptr) {
        *data = fixed ? reinterpret_cast<uint8_t *>(buffer->data) : nullptr;
    }
    if (length != nullptr) {
        *length = fixed ? buffer->length() : 0;
    }
    SipSbReleaseStringBuffer(buffer);
}

uint32_t SipSbConvertToRefString(SipStringBuffer *buffer, SipRefString **reference) {
    if (reference == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    *reference = nullptr;
    if (buffer == nullptr) {
        return SIP_INVALID_ARGUMENT;
    }
    if (buffer->failed()) {
        return SIP_NO_SPACE;
    }
    *reference = sipcore::newRefString(buffer->memCp, buffer->data, buffer->length());
    return *reference == nullptr ? SIP_NO_MEMORY : SIP_OK;
}

uint32_t SipSbCopyChar(SipStringBuffer *buffer, char letter) {
    if (buffer == nullptr || buffer->at >= buffer->end) [[unlikely]] {
        return sipcore::appendSlowly(buffer, letter);
    }
    char *const at = buffer->at;
    *at = letter;
    buffer->at = at + 1;
    return SIP_OK;
}

uint32_t SipSbCopyConstString(SipStringBuffer *buffer, const char *text, uint32_t length) {
    return sipcore::append(buffer, text, length);
}

uint32_t SipSbCopyString(SipStringBuffer *buffer, const SipString *text) {
    if (text == nullptr || text->pcData == nullptr) [[unlikely]] {
        return sipcore::append(buffer, "", 0);
    }
    return sipcore::append(buffer, text->pcData, text->ulLen);
}

uint32_t SipSbCopyLong(SipStringBuffer *buffer, uint32_t value) {
    if (!sipcore::fits(buffer, sipcore::kMostDigits)) [[unlikely]] {
        return sipcore::appendNumberSlowly(buffer, value);
    }
    buffer->at = sipcore::putNumber(buffer->at, value);
    return SIP_OK;
}

// ---- The record that libsdpline compares with

extern "C" {
SIPCORE_ALIAS(SipSbCopyChar, sipcoreCopyChar)
SIPCORE_ALIAS(SipSbCopyConstString, sipcoreCopyConstString)
SIPCORE_ALIAS(SipSbCopyString, sipcoreCopyString)
SIPCORE_ALIAS(SipSbCopyLong, sipcoreCopyLong)

// Defined in this file, because every program that uses string buffers links it from a static
// libsipcore.
SIPCORE_API extern const SipCoreBuiltin SIPCORE_BUILTIN;
const SipCoreBuiltin SIPCORE_BUILTIN = {.copyChar = sipcoreCopyChar,
                                        .copyConstString = sipcoreCopyConstString,
                                        .copyString = sipcoreCopyString,
                                        .copyLong = sipcoreCopyLong,
                                        .reserve = sipcore::reserve,
                                        .copy = sipcoreCopy,
                                        .fill = sipcoreFill,
                                        .blockAlloc = sipcore::blockAlloc,
                                        .blockTake = sipcore::blockTake,
                                        .blockFree = sipcore::blockFree,
                                        .systemAlloc = sipcore::systemAlloc,
                                        .systemFree = sipcore::systemFree,
                                        .fillsFreed = sipcore::kFillsFreed,
                                        .copyField = sipcoreCopyField,
                                        .copyText = sipcoreCopyText,
                                        .cloneText = sipcoreCloneText};
}
