// Finds addresses, host names, URIs, keys and other values that identify people and machines in a
// word, by their form alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

inline constexpr size_t kNone = std::string_view::npos; // not found

std::optional<std::array<uint8_t, 4>> ipv4Of(std::string_view text);
std::optional<std::array<uint8_t, 16>> ipv6Of(std::string_view text);

enum class Shape {
    Ipv4,
    Ipv6,
    Host,   // a dotted name, or what follows "sip:"
    Phone,  // "+1-617-555-6011", or what follows "tel:"
    Email,  // whatever has an "@"
    Uri,    // whatever has "://"
    Secret, // fingerprints, keys, long words of mixed letters and digits
    Uuid
};

struct Finding {
    Shape shape;
    size_t begin;
    size_t end;
    size_t prefix; // the begin of "sip:" or "inline:" before it; without one, the same as `begin`
};

// The values in a word without blanks, in order, in time linear in its length. A port or a prefix
// length after an address is not part of the finding.
std::vector<Finding> findingsOf(std::string_view word);

// The text with "x" in place of each letter and digit.
std::string outlineOf(std::string_view text);

// Letters, digits and bytes of other alphabets.
bool isWordByte(char byte);

size_t digitsOf(std::string_view text);

inline constexpr size_t kPortDigits = 5;

// Whether the text consists of at most that many digits.
bool isNumber(std::string_view text, size_t mostDigits);

// Whether the word has no letters and few digits: "0-", "*", "10". Longer numbers may be
// extensions.
bool isShortNumber(std::string_view word);

// "IN", "IP4", "IP6"
bool isNetworkWord(std::string_view word);

// Compares letters in any case.
bool isOneOf(std::string_view word, std::span<const std::string_view> list);

} // namespace cli
