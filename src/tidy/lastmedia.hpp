// Finds the last media description of lines that the decoder accepted, 16 bytes at once.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace sdpline::tidy {

// The start of the last m= line among lines that the decoder accepted, or their end if there is
// none. Null if the lines have to be read one by one: a NUL, or a blank at the start of a line,
// which the decoder skips, hides the key; and without SSE2 this search would be no faster.
inline const char *lastMedia([[maybe_unused]] const char *at, [[maybe_unused]] const char *end) {
#ifdef __SSE2__
    if (end - at > 16) {
        const __m128i lf = _mm_set1_epi8('\n');
        const __m128i m = _mm_set1_epi8('m');
        const __m128i blank = _mm_set1_epi8(' ');
        __m128i least = lf;
        for (const char *byte = end - 17;; byte = byte - at > 16 ? byte - 16 : at) {
            __m128i these;
            __m128i next;
            std::memcpy(&these, byte, sizeof these);
            std::memcpy(&next, byte + 1, sizeof next);
            least = _mm_min_epu8(least, these);
            const __m128i found =
                _mm_and_si128(_mm_cmpeq_epi8(these, lf),
                              _mm_or_si128(_mm_cmpeq_epi8(next, m), _mm_cmpeq_epi8(next, blank)));
            const auto marks = static_cast<uint32_t>(_mm_movemask_epi8(found));
            if (marks != 0 || byte == at) {
                const auto nul = _mm_cmpeq_epi8(least, _mm_setzero_si128());
                const char *const media = marks != 0 ? byte + 32 - std::countl_zero(marks) : end;
                const bool isLeftOut = _mm_movemask_epi8(nul) != 0 || (marks != 0 && *media == ' ');
                return isLeftOut ? nullptr : media;
            }
        }
    }
#endif
    return nullptr;
}

} // namespace sdpline::tidy
