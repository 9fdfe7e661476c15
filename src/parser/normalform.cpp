// Writing the normal form of a text, and finding the byte of the text that a byte of it comes from.
#include "parser/normalform.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "lexer/scan.hpp"
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

// ---- Copying a text without changes

#ifdef __SSE2__

// Sixteen bytes of a text, or a mask for each of them.
struct Lanes {
    static constexpr uint32_t kSize = 16;
    __m128i all;

    static Lanes load(const uint8_t *from) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(from))};
    }
    void store(uint8_t *to) const { _mm_storeu_si128(reinterpret_cast<__m128i *>(to), all); }
    // Ones where a byte is this one.
    Lanes equal(char byte) const { return {_mm_cmpeq_epi8(all, _mm_set1_epi8(byte))}; }
    Lanes without(Lanes other) const { return {_mm_andnot_si128(other.all, all)}; }
    Lanes with(Lanes other) const { return {_mm_or_si128(other.all, all)}; }
    bool any() const { return _mm_movemask_epi8(all) != 0; }
};

#else

// Eight bytes of a text, or a mask for each of them.
struct Lanes {
    static constexpr uint32_t kSize = 8;
    uint64_t all;

    static constexpr uint64_t kOnes = 0x0101010101010101;
    static constexpr uint64_t kLow = 0x7F * kOnes;

    static Lanes load(const uint8_t *from) {
        Lanes bytes;
        std::memcpy(&bytes.all, from, kSize);
        return bytes;
    }
    void store(uint8_t *to) const { std::memcpy(to, &all, kSize); }
    // The top bit where a byte is this one.
    Lanes equal(char byte) const {
        const uint64_t differ = all ^ (static_cast<uint8_t>(byte) * kOnes);
        return {~(((differ & kLow) + kLow) | differ | kLow)};
    }
    Lanes without(Lanes other) const { return {all & ~other.all}; }
    Lanes with(Lanes other) const { return {all | other.all}; }
    bool any() const { return all != 0; }
};

#endif

// Copies Lanes::kSize bytes of a text, which one more byte follows. Returns a mask of the bytes
// that are not allowed in a body: a NUL, and a CR that no LF follows.
inline Lanes copySome(const uint8_t *text, uint8_t *out) {
    const Lanes bytes = Lanes::load(text);
    bytes.store(out);
    const Lanes next = Lanes::load(text + 1);
    return bytes.equal('\r').without(next.equal('\n')).with(bytes.equal('\0'));
}

// What follows a body: the end of the normal form, and the lexer's padding.
constexpr uint8_t kAfterBody[3 + lexer::kPadding] = {'\n', '\n', '\0'};

constexpr bool mayEndBody(uint8_t byte) {
    return byte != '\r' && byte != '\0';
}

} // namespace

bool copyBody(const uint8_t *text, uint32_t length, uint8_t *out) {
    if (length <= Lanes::kSize || text[0] != 'v' || text[1] != '=' ||
        !mayEndBody(text[length - 1])) {
        return false;
    }
    // The last step ends one byte before the text does, and may overlap the one before it.
    const uint32_t last = length - 1 - Lanes::kSize;
    Lanes found = copySome(text + last, out + last);
    for (uint32_t at = 0; at < last; at += Lanes::kSize) {
        found = found.with(copySome(text + at, out + at));
    }
    out[length - 1] = text[length - 1];
    std::memcpy(out + length, kAfterBody, sizeof kAfterBody);
    return !found.any();
}

namespace {

// The number of line feeds. Bytes of a mask count them for sixteen bytes at once.
uint32_t countLines(const uint8_t *byte, const uint8_t *end) {
    uint32_t count = 0;
#ifdef __SSE2__
    constexpr ptrdiff_t kMost = 255 * 16; // a byte of the sums counts up to 255
    const __m128i lf = _mm_set1_epi8('\n');
    for (const uint8_t *const last = end - (end - byte) % 16; byte != last;) {
        const uint8_t *const stop = byte + std::min(last - byte, kMost);
        __m128i sums = _mm_setzero_si128();
        for (; byte != stop; byte += 16) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(byte));
            sums = _mm_sub_epi8(sums, _mm_cmpeq_epi8(bytes, lf));
        }
        sums = _mm_sad_epu8(sums, _mm_setzero_si128());
        count += static_cast<uint32_t>(_mm_cvtsi128_si32(sums) +
                                       _mm_cvtsi128_si32(_mm_srli_si128(sums, 8)));
    }
#endif
    for (; byte != end; ++byte) {
        count += *byte == '\n' ? 1 : 0;
    }
    return count;
}

// The offset of the line that has a byte there.
uint32_t lineStartOf(const uint8_t *text, uint32_t place) {
#ifdef __SSE2__
    const __m128i lf = _mm_set1_epi8('\n');
    for (; place >= 16; place -= 16) {
        __m128i part;
        std::memcpy(&part, text + place - 16, sizeof part);
        const auto marks = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(part, lf)));
        if (marks != 0) {
            return place - 16 + static_cast<uint32_t>(std::bit_width(marks));
        }
    }
#endif
    while (place != 0 && text[place - 1] != '\n') {
        --place;
    }
    return place;
}

} // namespace

OriginalPlace bodyPlace(const uint8_t *text, uint32_t length, uint32_t offset) {
    const uint32_t place = std::min(offset, length);
    const uint32_t lineStart = lineStartOf(text, place);
    return {place, 1 + countLines(text, text + lineStart), lineStart};
}

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
