// The parser's memory: everything goes through the two hooks.
#pragma once

#include <cstring>
#include <string_view>

#include "sdpline/sdpline.h"
#include "utils/sdpchecks.hpp"

namespace sdpline {

// Most texts are a word: up to sixteen bytes are copied without a call.
inline void copyBytes(char *to, const char *from, size_t size) {
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        uint64_t first;
        uint64_t last;
        std::memcpy(&first, from, 8);
        std::memcpy(&last, from + size - 8, 8);
        std::memcpy(to, &first, 8);
        std::memcpy(to + size - 8, &last, 8);
    } else {
        for (size_t i = 0; i < size; ++i) {
            to[i] = from[i];
        }
    }
}

// Null when there is no hook, or the hook has no memory.
inline void *allocateBytes(uint32_t size) {
    const SdpFnAlloc alloc = g_gSdpFnAlloc;
    return alloc != nullptr ? alloc(size) : nullptr;
}

inline void freeBytes(void *memory) {
    const SdpFnFree release = g_gSdpFnFree;
    if (release != nullptr) {
        release(memory);
    }
}

inline void zeroFill(void *memory, uint32_t size, const char *function,
                     uint32_t line = __builtin_LINE()) {
    if (memset_s(memory, size, 0, size) != 0) {
        SIPAbnormalSecureFunc(function, line);
    }
}

// A zeroed record, or null.
template <class Record>
Record *allocate(const char *function = __builtin_FUNCTION(), uint32_t line = __builtin_LINE()) {
    void *const memory = allocateBytes(sizeof(Record));
    if (memory != nullptr) {
        zeroFill(memory, sizeof(Record), function, line);
    }
    return static_cast<Record *>(memory);
}

// Stores a copy of the text, without a terminator. Without memory the length stays and the
// pointer is null. A text of length 0 asks for zero bytes all the same.
inline SDPResult storeText(SipString &value, std::string_view text) {
    value.ulLen = static_cast<uint32_t>(text.size());
    value.pcData = static_cast<char *>(allocateBytes(value.ulLen));
    if (value.pcData == nullptr) {
        return fail(Check::SetString);
    }
    copyBytes(value.pcData, text.data(), text.size());
    return 0;
}

} // namespace sdpline
