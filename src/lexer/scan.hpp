// Finding the end of a run of bytes: byte by byte, or sixteen bytes at once (SSE2) in an input that
// is followed by padding.
#pragma once

#include <bit>
#include <cstdint>

#include "lexer/bytes.hpp"
#include "text/inline.hpp"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace sdpline::lexer {

// How many bytes may be read after the NUL of a padded input; their values do not matter.
constexpr uint32_t kPadding = 16;

// The first byte that does not continue the run; the NUL after the input continues none.
inline const uint8_t *runEnd(const uint8_t *byte, Run run, const ByteTables &bytes) {
    while ((bytes.runs[*byte] & run) != 0) {
        ++byte;
    }
    return byte;
}

// Reads a byte again that a loop has just read. Without the volatile access the compiler would keep
// every byte of the loop in a register, in case it is the last one.
inline uint8_t readAgain(const uint8_t *byte) {
    return *const_cast<const volatile uint8_t *>(byte);
}

// The next line end of any input, or the end of the input.
const uint8_t *findLineEnd(const uint8_t *text);

// Skips bytes of a run in a padded input, sixteen at once. It may stop early: the byte that it
// stops at may continue the run. Without SSE2 it skips nothing.
template <Run run>
SDPLINE_INLINE const uint8_t *skip(const uint8_t *byte) {
    return byte;
}

#ifdef __SSE2__

// The first byte that `stops` marks. The NUL at the end of the input must be marked.
template <class Stops>
inline const uint8_t *findInPadded(const uint8_t *byte, const Stops &stops) {
    for (;; byte += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
        const auto found = static_cast<uint32_t>(_mm_movemask_epi8(stops(bytes)));
        if (found != 0) {
            return byte + std::countr_zero(found);
        }
    }
}

inline __m128i equals(__m128i bytes, char byte) {
    return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte));
}
inline __m128i atMost(__m128i bytes, char limit) {
    return _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(limit)), bytes);
}

// Words end at a space, seldom at another byte below it, such as a tab.
template <>
SDPLINE_INLINE const uint8_t *skip<kStringRun>(const uint8_t *byte) {
    return findInPadded(byte, [](__m128i bytes) { return atMost(bytes, ' '); });
}

// Most words consist of letters, digits, "-", "." and "/".
template <>
SDPLINE_INLINE const uint8_t *skip<kTokenRun>(const uint8_t *byte) {
    return findInPadded(byte, [](__m128i bytes) {
        const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8('a' - 'A'));
        const __m128i letters = atMost(_mm_sub_epi8(lower, _mm_set1_epi8('a')), 'z' - 'a');
        const __m128i digits = atMost(_mm_sub_epi8(bytes, _mm_set1_epi8('-')), '9' - '-');
        return _mm_cmpeq_epi8(_mm_or_si128(letters, digits), _mm_setzero_si128());
    });
}

template <>
inline const uint8_t *skip<kDigitRun>(const uint8_t *byte) {
    return findInPadded(byte, [](__m128i bytes) {
        const __m128i digits = atMost(_mm_sub_epi8(bytes, _mm_set1_epi8('0')), '9' - '0');
        return _mm_cmpeq_epi8(digits, _mm_setzero_si128());
    });
}

template <>
SDPLINE_INLINE const uint8_t *skip<kNameRun>(const uint8_t *byte) {
    return findInPadded(
        byte, [](__m128i bytes) { return _mm_or_si128(atMost(bytes, '\r'), equals(bytes, '/')); });
}

// Skips to a line end or the end of the body. It may stop early, at another byte up to CR.
inline const uint8_t *skipLine(const uint8_t *byte) {
    return findInPadded(byte, [](__m128i bytes) { return atMost(bytes, '\r'); });
}

#else

inline const uint8_t *skipLine(const uint8_t *byte) {
    return byte;
}

#endif

// The next line end of a body, or the end of the body.
inline const uint8_t *bodyLineEnd(const uint8_t *byte) {
    const auto endsLine = [](uint8_t one) { return one == '\r' || one == '\n' || one == '\0'; };
    for (byte = skipLine(byte); !endsLine(*byte); byte = skipLine(byte + 1)) {
    }
    return byte;
}

} // namespace sdpline::lexer
