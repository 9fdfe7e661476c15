// Writing the normal form of a text, and finding the byte of the text that a byte of it comes from.
#include "parser/normalform.hpp"

#include <bit>

#include "sdpline/sipcore.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace sdpline {

namespace {

// Copies plain text, that is the bytes above CR, starting at `byte`, and returns its end. With SSE2
// sixteen bytes are copied at once; the ones after the end are overwritten later.
SDPLINE_INLINE const uint8_t *copyPlain(const uint8_t *byte, const uint8_t *end, uint8_t *&out) {
#ifdef __SSE2__
    const __m128i limit = _mm_set1_epi8('\r');
    for (; end - byte >= 16; byte += 16, out += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), bytes);
        const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(bytes, limit), bytes);
        const auto mask = static_cast<uint32_t>(_mm_movemask_epi8(low));
        if (mask != 0) {
            const int plain = std::countr_zero(mask);
            out += plain;
            return byte + plain;
        }
    }
#endif
    while (byte != end && *byte > '\r') {
        *out++ = *byte++;
    }
    return byte;
}

// Returns the end of the plain text that starts at `byte`.
const uint8_t *afterPlain(const uint8_t *byte, const uint8_t *end) {
#ifdef __SSE2__
    const __m128i limit = _mm_set1_epi8('\r');
    for (; end - byte >= 16; byte += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
        const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(bytes, limit), bytes);
        if (const auto mask = static_cast<uint32_t>(_mm_movemask_epi8(low)); mask != 0) {
            return byte + std::countr_zero(mask);
        }
    }
#endif
    while (byte != end && *byte > '\r') {
        ++byte;
    }
    return byte;
}

} // namespace

uint8_t *normalise(const uint8_t *text, uint32_t length, uint8_t *out) {
    const uint8_t *const end = text + length;
    for (const uint8_t *byte = text; (byte = copyPlain(byte, end, out)) != end;) {
        if (end - byte > 2 && byte[0] == '\r' && byte[1] == '\n' && byte[2] > ' ') [[likely]] {
            *out++ = '\n'; // nearly all lines end like this
            byte += 2;
            continue;
        }
        const NormaliseStep step = normaliseSpecial(byte, end);
        *out = *step.byte;
        out += step.kept;
        byte = step.next;
    }
    *out++ = '\n';
    *out++ = '\n';
    *out++ = '\0';
    return out;
}

uint8_t *normaliseCleared(const uint8_t *text, uint32_t length, uint8_t *out, uint32_t size) {
    if (memset_s(out, size, 0, length) != 0) {
        SIPAbnormalSecureFunc("convertCRLFToCR   ", __LINE__);
    }
    return normalise(text, length, out);
}

OriginalPlace originalPlace(const uint8_t *text, uint32_t length, uint32_t offset) {
    const uint8_t *const end = text + length;
    OriginalPlace place = {length, 1, 0};
    for (const uint8_t *byte = text;;) {
        const uint8_t *const special = afterPlain(byte, end);
        const auto plain = static_cast<uint32_t>(special - byte);
        if (offset < plain) {
            place.offset = static_cast<uint32_t>(byte - text) + offset;
            return place;
        }
        if (special == end) {
            return place;
        }
        offset -= plain;
        const NormaliseStep step = normaliseSpecial(special, end);
        if (offset < step.kept) {
            place.offset = static_cast<uint32_t>(step.byte - text);
            return place;
        }
        offset -= step.kept;
        if (*step.byte == '\n') {
            ++place.line;
            place.lineStart = static_cast<uint32_t>(step.byte - text) + 1;
        }
        byte = step.next;
    }
}

} // namespace sdpline
