// Finds the white space in the value of a short line. It compares 16 bytes by one SSE2 instruction,
// so that the most frequent fault, a blank too many at one place, costs no reading byte by byte.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "tidy/values.hpp"

namespace sdpline::tidy {

class Gaps {
public:
    // `value` is not empty, and is a part of the given text. Returns true for words with one blank
    // between each two, and at one place at most more blanks. Returns false where it takes more to
    // tell: for control characters and white space around the words, for a long value, and for one
    // at the end of the text, where there are no 16 bytes to read.
    [[gnu::noinline]] bool find(const Workspace &work, std::string_view value) {
        const size_t size = value.size();
        const char *const textEnd = work.text.data() + work.text.size();
        const size_t read = (size + kBlock - 1) & ~(kBlock - 1);
        if (size > kMost || read > static_cast<size_t>(textEnd - value.data())) {
            return false;
        }
        begin_ = next_ = value.data();
        const uint64_t blanks = blanksOf(size);
        const uint64_t ends = uint64_t{1} | uint64_t{1} << (size - 1);
        const uint64_t extra = blanks & blanks << 1;
        const uint64_t afterExtra = extra + (extra & ~(extra - 1));
        if ((blanks & ends) != 0 || (extra & afterExtra) != 0) {
            return false;
        }
        wordEnds_ = (blanks & ~extra) | uint64_t{1} << size;
        if (extra != 0) {
            extra_ = begin_ + std::countr_zero(extra);
            afterExtra_ = begin_ + std::countr_zero(afterExtra);
        }
        return true;
    }

    // Returns the next word, an empty text after the last one.
    std::string_view next() {
        if (wordEnds_ == 0) {
            return {};
        }
        const char *const word = next_;
        const char *const end = begin_ + std::countr_zero(wordEnds_);
        wordEnds_ &= wordEnds_ - 1;
        next_ = end + 1 == extra_ ? afterExtra_ : end + 1;
        return {word, static_cast<size_t>(end - word)};
    }

    // Whether next() has returned all words.
    bool done() const { return wordEnds_ == 0; }

    // Whether there are more words than that, of those that next() has not returned.
    bool hasMoreThan(uint32_t words) const {
        uint64_t left = wordEnds_;
        for (; words != 0; --words) {
            left &= left - 1; // 0 stays 0
        }
        return left != 0;
    }

    // Whether there are blanks too many; the removal of them.
    Look look(const Workspace &work, Cut &cut) const {
        if (extra_ == nullptr || !work.wants(Rule::SpaceRun)) {
            return Look::Plain;
        }
        cut = {Rule::SpaceRun, extra_ - 1, extra_, afterExtra_};
        return Look::Cut;
    }

private:
    static constexpr size_t kMost = 63;
    static constexpr size_t kBlock = 16;

    // One bit for each blank, the lowest for the first byte. All bits are set if there is a control
    // character.
    uint64_t blanksOf(size_t size) const {
        uint64_t blanks = 0;
        uint64_t below = 0; // the same for control characters
#ifdef __SSE2__
        const __m128i blank = _mm_set1_epi8(' ');
        const __m128i control = _mm_set1_epi8(' ' - 1);
        for (size_t at = 0; at < size; at += kBlock) {
            __m128i part;
            std::memcpy(&part, begin_ + at, sizeof part);
            blanks |= maskOf(_mm_cmpeq_epi8(part, blank)) << at;
            below |= maskOf(_mm_cmpeq_epi8(_mm_min_epu8(part, control), part)) << at;
        }
        const uint64_t valid = (uint64_t{1} << size) - 1;
        blanks &= valid;
        below &= valid;
#else
        for (size_t at = 0; at < size; ++at) {
            blanks |= uint64_t{begin_[at] == ' '} << at;
            below |= uint64_t{static_cast<uint8_t>(begin_[at]) < ' '} << at;
        }
#endif
        return below == 0 ? blanks : ~uint64_t{0};
    }

#ifdef __SSE2__
    static uint64_t maskOf(__m128i bytes) {
        return static_cast<uint32_t>(_mm_movemask_epi8(bytes));
    }
#endif

    const char *begin_ = nullptr;
    const char *next_ = nullptr;       // the first byte of the next word
    uint64_t wordEnds_ = 0;            // one bit for the byte after each word that is left
    const char *extra_ = nullptr;      // the second blank where there are more than one
    const char *afterExtra_ = nullptr; // the word after it
};

} // namespace sdpline::tidy
