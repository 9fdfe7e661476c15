/*
 * address.hpp: IPv4 and IPv6 addresses, from and to text.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_ADDRESS_HPP
#define SDPLINE_CPP_ADDRESS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "sdpline/cpp/result.hpp"

namespace sdpline {
inline namespace v1 {

/* A binary address in network order, or none. */
class Address {
public:
    constexpr Address() = default;

    static constexpr Address v4(const std::array<std::uint8_t, 4> &octets) {
        return {octets.data(), 4};
    }
    static constexpr Address v6(const std::array<std::uint8_t, 16> &octets) {
        return {octets.data(), 16};
    }

    /* "192.0.2.1", "2001:db8::1", "::ffff:192.0.2.1" (RFC 4291 section 2.2, RFC 4566 section 9:
     * octets without leading zeros). Neither brackets nor a zone. */
    static Result<Address> fromText(std::string_view text);

    constexpr bool isV4() const { return size_ == 4; }
    constexpr bool isV6() const { return size_ == 16; }
    constexpr bool empty() const { return size_ == 0; }

    /* 4, 16 or no octets. The span refers to this value. */
    constexpr std::span<const std::uint8_t> octets() const { return {octets_.data(), size_}; }

    /* As the encoder writes it: "192.0.2.1", or eight groups of four upper-case digits. */
    std::string text() const;

    /* The recommended text (RFC 5952): "192.0.2.1", "2001:db8::1", "::ffff:192.0.2.1". */
    std::string shortText() const;

    friend bool operator==(const Address &, const Address &) = default;

private:
    constexpr Address(const std::uint8_t *octets, std::size_t size) : size_(size) {
        for (std::size_t i = 0; i < size; ++i) {
            octets_[i] = octets[i];
        }
    }

    std::array<std::uint8_t, 16> octets_{};
    std::size_t size_ = 0;
};

namespace internal {

/* dec-octet "." dec-octet "." dec-octet "." dec-octet (RFC 3986 section 3.2.2) */
constexpr bool readIpv4(std::string_view text, std::uint8_t *octets) {
    for (int i = 0; i < 4; ++i) {
        unsigned value = 0;
        std::size_t digits = 0;
        for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits) {
            value = value * 10 + static_cast<unsigned>(text[digits] - '0');
            if (value > 255) {
                return false;
            }
        }
        const bool last = i == 3;
        if (digits == 0 || (digits > 1 && text[0] == '0') || last != (digits == text.size()) ||
            (!last && text[digits] != '.')) {
            return false;
        }
        octets[i] = static_cast<std::uint8_t>(value);
        text.remove_prefix(last ? digits : digits + 1);
    }
    return true;
}

constexpr int hexDigit(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

/* Reads the groups of an IPv6 address, and notes the place of the "::". */
class Ipv6Reader {
public:
    constexpr bool read(std::string_view text, std::array<std::uint8_t, 16> &octets) {
        if (text.starts_with("::")) {
            gap_ = 0;
            text.remove_prefix(2);
        }
        while (!text.empty()) {
            if (!group(text, octets) || !separator(text)) {
                return false;
            }
        }
        if (gap_ == kNoGap) {
            return size_ == octets.size();
        }
        if (size_ > octets.size() - 2) { /* "::" is at least one group of zeros */
            return false;
        }
        for (std::size_t i = 0; i < size_ - gap_; ++i) { /* groups after the "::" move to the end */
            std::swap(octets[octets.size() - 1 - i], octets[size_ - 1 - i]);
        }
        return true;
    }

private:
    static constexpr std::size_t kNoGap = 17;

    /* 1*4HEXDIG, or an IPv4 address at the end */
    constexpr bool group(std::string_view &text, std::array<std::uint8_t, 16> &octets) {
        unsigned value = 0;
        std::size_t digits = 0;
        for (; digits < text.size() && digits < 5 && hexDigit(text[digits]) >= 0; ++digits) {
            value = value * 16 + static_cast<unsigned>(hexDigit(text[digits]));
        }
        if (digits < text.size() && text[digits] == '.') {
            const bool fits = size_ <= octets.size() - 4 && readIpv4(text, octets.data() + size_);
            size_ += 4;
            text = {};
            return fits;
        }
        if (digits == 0 || digits > 4 || size_ == octets.size()) {
            return false;
        }
        octets[size_++] = static_cast<std::uint8_t>(value >> 8);
        octets[size_++] = static_cast<std::uint8_t>(value & 255);
        text.remove_prefix(digits);
        return true;
    }

    /* ":" before another group, "::" once, or nothing at the end */
    constexpr bool separator(std::string_view &text) {
        if (text.starts_with("::")) {
            const bool first = gap_ == kNoGap;
            gap_ = size_;
            text.remove_prefix(2);
            return first;
        }
        if (text.empty()) {
            return true;
        }
        const bool more = text.size() > 1 && text[0] == ':';
        text.remove_prefix(1);
        return more;
    }

    std::size_t size_ = 0;
    std::size_t gap_ = kNoGap;
};

inline void appendIpv4(std::string &text, const std::uint8_t *octets) {
    for (int i = 0; i < 4; ++i) {
        text += i != 0 ? "." : "";
        appendNumber(text, octets[i]);
    }
}

/* The longest run of two or more groups of zeros, the first of several. Its end is its start if
 * there is none. */
struct ZeroRun {
    std::size_t start = 8;
    std::size_t end = 8;
};

constexpr ZeroRun longestZeroRun(const std::array<unsigned, 8> &groups) {
    ZeroRun longest;
    for (std::size_t start = 0; start < groups.size(); ++start) {
        std::size_t end = start;
        while (end < groups.size() && groups[end] == 0) {
            ++end;
        }
        if (end - start >= 2 && end - start > longest.end - longest.start) {
            longest = {start, end};
        }
    }
    return longest;
}

} // namespace internal

inline Result<Address> Address::fromText(std::string_view text) {
    std::array<std::uint8_t, 16> octets{};
    const bool v6 = text.find(':') != std::string_view::npos;
    if (v6 ? !internal::Ipv6Reader().read(text, octets)
           : !internal::readIpv4(text, octets.data())) {
        return internal::refusedArgument("a text is neither an IPv4 nor an IPv6 address");
    }
    return Address(octets.data(), v6 ? 16 : 4);
}

inline std::string Address::text() const {
    std::string text;
    if (isV4()) {
        internal::appendIpv4(text, octets_.data());
        return text;
    }
    for (std::size_t i = 0; i < size_; ++i) {
        text += i != 0 && i % 2 == 0 ? ":" : "";
        text += "0123456789ABCDEF"[octets_[i] >> 4];
        text += "0123456789ABCDEF"[octets_[i] & 15];
    }
    return text;
}

inline std::string Address::shortText() const {
    if (!isV6()) {
        return text();
    }
    std::array<unsigned, 8> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i] = static_cast<unsigned>(octets_[2 * i]) << 8 | octets_[2 * i + 1];
    }
    const internal::ZeroRun zeros = internal::longestZeroRun(groups);
    std::string text;
    if (zeros.start == 0 && zeros.end == 5 && groups[5] == 0xFFFF) { /* IPv4-mapped */
        text = "::ffff:";
        internal::appendIpv4(text, octets_.data() + 12);
        return text;
    }
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (i == zeros.start) {
            text += "::";
            i = zeros.end - 1;
            continue;
        }
        text += i != 0 && i != zeros.end ? ":" : "";
        char digits[4];
        text.append(digits, std::to_chars(digits, digits + sizeof digits, groups[i], 16).ptr);
    }
    return text;
}

} // namespace v1
} // namespace sdpline

#endif
