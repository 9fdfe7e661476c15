// What a word looks like: addresses, host names, URIs, keys and other values that identify people
// and machines, found by their shape alone.
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

inline constexpr size_t kNone = std::string_view::npos; // what was looked for is not there

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
    size_t prefix; // where "sip:" or "inline:" before it begins; without one, `begin`
};

// In order, in time linear in the length of the word, which has no blanks. A port or a prefix
// length after an address is not part of the finding.
std::vector<Finding> findingsOf(std::string_view word);

// Letters and digits become "x": what is left of a text that is not understood.
std::string outlineOf(std::string_view text);

// Letters, digits and bytes of other alphabets.
bool isWordByte(char byte);

size_t digitsOf(std::string_view text);

inline constexpr size_t kPortDigits = 5;

// Digits, of which there are not too many.
bool isNumber(std::string_view text, size_t mostDigits);

// No letters and few digits: "0-", "*", "10". Longer numbers may be extensions.
bool isShortNumber(std::string_view word);

// "IN", "IP4", "IP6"
bool isNetworkWord(std::string_view word);

// Letters in either case.
bool isOneOf(std::string_view word, std::span<const std::string_view> list);

} // namespace cli
