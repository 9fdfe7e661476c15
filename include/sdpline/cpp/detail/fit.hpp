/*
 * fit.hpp: tests whether a decoder would read texts and codes back as the same values.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_FIT_HPP
#define SDPLINE_CPP_DETAIL_FIT_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "sdpline/cpp/result.hpp"
#include "sdpline/cpp/words.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* ---- Texts ----------------------------------------------------------------------------------- */

/* The bytes that a value must not have, because they would end the line or be dropped by a decode.
 */
inline constexpr std::string_view kLineBreaks("\r\n\0", 3);
inline constexpr std::string_view kWordEnds("\r\n\0 \t", 5);
inline constexpr std::string_view kTokenEnds("\r\n\0 \t:;@,()<>", 13);

/* Whether one of the eight bytes of a word is below `limit`, which is at most 128. */
constexpr bool hasByteBelow(std::uint64_t word, std::uint64_t limit) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    return ((word - kOnes * limit) & ~word & (kOnes << 7)) != 0;
}

/* Whether a text has one of a set of bytes. These bytes are low, and most bytes of texts are not:
 * eight bytes are tested together, and then one by one if one of the eight is low. */
template <const std::string_view &Unfit>
bool holdsOneOf(std::string_view text) {
    static constexpr auto kUnfit = [] {
        std::array<bool, 256> table{};
        for (const char c : Unfit) {
            table[static_cast<unsigned char>(c)] = true;
        }
        return table;
    }();
    static constexpr unsigned kLimit = [] {
        unsigned limit = 0;
        for (const char c : Unfit) {
            const auto byte = static_cast<unsigned char>(c);
            limit = byte >= limit ? byte + 1u : limit;
        }
        return limit;
    }();
    static_assert(kLimit <= 128);
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    const auto isHigh = [text](std::size_t from) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + from, kWord);
        return !hasByteBelow(word, kLimit);
    };
    std::size_t at = 0;
    while (at + kWord < text.size() && isHigh(at)) {
        at += kWord;
    }
    // The last eight bytes, which may overlap the bytes that were tested before.
    if (text.size() >= kWord && at + kWord >= text.size() && isHigh(text.size() - kWord)) {
        return false;
    }
    for (; at < text.size(); ++at) {
        if (kUnfit[static_cast<unsigned char>(text[at])]) {
            return true;
        }
    }
    return false;
}

template <const std::string_view &Unfit>
bool fits(std::string_view text, std::size_t longest = SDP_MAX_VALUE) {
    return text.size() - 1 < longest && !holdsOneOf<Unfit>(text);
}

/* Of a text that does not fit. */
[[gnu::cold]] inline Error misfit(std::string_view text, std::string_view sentence,
                                  std::size_t longest) {
    return refusedArgument(text.empty() ? "a text is empty"
                           : text.size() > longest
                               ? "a text is longer than a decoder of this library reads"
                               : sentence);
}

template <const std::string_view &Unfit>
std::optional<Error> refusal(std::string_view text, std::string_view sentence,
                             std::size_t longest = SDP_MAX_VALUE) {
    return fits<Unfit>(text, longest) ? std::nullopt
                                      : std::optional(misfit(text, sentence, longest));
}

/* A value that takes the rest of its line. */
inline std::optional<Error> refusedText(std::string_view text,
                                        std::size_t longest = SDP_MAX_VALUE) {
    return refusal<kLineBreaks>(text, "a text holds a line end or a NUL", longest);
}

/* A value between two blanks. */
inline bool isWord(std::string_view text) {
    return fits<kWordEnds>(text);
}
inline std::optional<Error> refusedWord(std::string_view text) {
    return refusal<kWordEnds>(text, "a word holds a blank, a line end or a NUL");
}

/* A keyword or a name. */
inline std::optional<Error> refusedToken(std::string_view text) {
    return refusal<kTokenEnds>(text, "a word holds a blank or one of :;@,()<>");
}

/* A word of the library's tables is always valid. */
template <class Code>
std::optional<Error> refusedToken(const Keyword<Code> &word) {
    return wordOf(word.code()).empty() ? refusedToken(word.text()) : std::nullopt;
}

/* Whether all bytes are digits. Eight are tested together: bytes from "0" to "?" that are still in
 * this range when 6 is added are "0" to "9". The last eight may overlap those before. */
inline bool areDigits(std::string_view text) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    const auto areEight = [text](std::size_t from) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + from, kWord);
        return (word & (kOnes * 0xF0)) == kOnes * 0x30 &&
               ((word + kOnes * 6) & (kOnes * 0xF0)) == kOnes * 0x30;
    };
    if (text.size() < kWord) {
        for (const char c : text) {
            if (c < '0' || c > '9') {
                return false;
            }
        }
        return true;
    }
    for (std::size_t at = 0; at + kWord < text.size(); at += kWord) {
        if (!areEight(at)) {
            return false;
        }
    }
    return areEight(text.size() - kWord);
}

inline bool isNumber(std::string_view text) {
    return text.size() - 1 < SDP_MAX_VALUE && areDigits(text);
}

inline std::optional<Error> refusedDigits(std::string_view text) {
    if (isNumber(text)) [[likely]] {
        return std::nullopt;
    }
    const auto error = refusedWord(text);
    return error ? error : refusedArgument("a number holds something else than digits");
}

/* A code of an enumeration. */
template <class Code>
std::optional<Error> refusedCode(Code code) {
    return wordOf(code).empty() ? std::optional(refusedArgument("a code has no word"))
                                : std::nullopt;
}

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
