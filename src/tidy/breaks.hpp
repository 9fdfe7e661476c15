// Finds the line ends of a text. It compares 64 bytes at once, 16 of them by one SSE2 instruction,
// so that the search costs little for each line.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace sdpline::tidy {

class Breaks {
public:
    // `byte` is the byte that ends a line. `hasOthers` is set to true if the bytes compared so far
    // may include a NUL, or a CR that no LF follows.
    Breaks(std::string_view text, char byte, bool &hasOthers)
        : block_(text.data()), begin_(text.data()), end_(block_ + text.size()), byte_(byte),
          hasOthers_(&hasOthers), marks_(marked()) {}

    // Continues the search at that place.
    void jump(const char *to) {
        block_ = to;
        marks_ = marked();
    }

    // Returns the next line end, else the end of the text.
    const char *next() {
        while (marks_ == 0) {
            if (end_ - block_ <= kBlock) {
                return end_;
            }
            block_ += kBlock;
            marks_ = marked();
        }
        const char *const found = block_ + std::countr_zero(marks_);
        marks_ &= marks_ - 1;
        return found;
    }

private:
    static constexpr ptrdiff_t kBlock = 64;

    // One bit for each byte of the block, the lowest for the first byte; a bit is set for a line
    // end. The last block is read from 64 bytes before the end of the text, so that nothing after
    // it is read.
    [[gnu::noinline]] uint64_t marked() {
        const ptrdiff_t left = end_ - block_;
        if (left >= kBlock) {
            return marksOf(block_);
        }
        if (end_ - begin_ >= kBlock) {
            return left == 0 ? 0 : marksOf(end_ - kBlock) >> (kBlock - left);
        }
        *hasOthers_ = true;
        uint64_t marks = 0;
        for (ptrdiff_t i = 0; i < left; ++i) {
            marks |= uint64_t{block_[i] == byte_} << i;
        }
        return marks;
    }

    uint64_t marksOf(const char *bytes) {
        uint64_t marks = 0;
#ifdef __SSE2__
        const __m128i wanted = _mm_set1_epi8(byte_);
        const __m128i cr = _mm_set1_epi8('\r');
        __m128i least = cr;
        uint64_t crs = 0;
        for (uint32_t at = 0; at < kBlock; at += 16) {
            __m128i part;
            std::memcpy(&part, bytes + at, sizeof part);
            marks |= maskOf(_mm_cmpeq_epi8(part, wanted)) << at;
            crs |= maskOf(_mm_cmpeq_epi8(part, cr)) << at;
            least = _mm_min_epu8(least, part);
        }
        const char *const next = bytes + kBlock;
        const uint64_t first = next != end_ && *next == byte_ ? uint64_t{1} << 63 : 0;
        const uint64_t others =
            (crs & ~(marks >> 1 | first)) | maskOf(_mm_cmpeq_epi8(least, _mm_setzero_si128()));
        if (others != 0) [[unlikely]] {
            *hasOthers_ = true;
        }
#else
        *hasOthers_ = true;
        for (uint32_t at = 0; at < kBlock; ++at) {
            marks |= uint64_t{bytes[at] == byte_} << at;
        }
#endif
        return marks;
    }

#ifdef __SSE2__
    static uint64_t maskOf(__m128i bytes) {
        return static_cast<uint32_t>(_mm_movemask_epi8(bytes));
    }
#endif

    const char *block_;
    const char *begin_;
    const char *end_;
    char byte_;
    bool *hasOthers_;
    uint64_t marks_; // of those in the block that were not returned
};

} // namespace sdpline::tidy
