#include "redact/masks.hpp"

#include <algorithm>

#include "sdpline/cpp/address.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// "msrp://" for "msrp://host/path". An unknown scheme may identify something: it becomes "http://".
std::string schemeOf(std::string_view uri) {
    constexpr std::string_view kSchemes[] = {"https", "rtsp", "rtsps", "msrp", "msrps", "sip",
                                             "sips",  "ws",   "wss",   "ftp",  "stun",  "turn"};
    const size_t end = std::min(uri.find("://"), uri.size());
    for (const std::string_view scheme : kSchemes) {
        if (equalsIgnoringCase(uri.substr(0, end), scheme)) {
            return std::string(scheme) + "://";
        }
    }
    return "http://";
}

// The key by which values of this kind are compared.
std::string keyOf(Mask kind, std::string_view value) {
    std::string key(value);
    if (kind == Mask::Host) {
        std::transform(key.begin(), key.end(), key.begin(),
                       [](char byte) { return isLetter(byte) ? byte | 0x20 : byte; });
    } else if (kind == Mask::Phone && std::none_of(key.begin(), key.end(), isLetter)) {
        std::erase_if(key, [](char byte) { return !isDigit(byte); });
    }
    return key;
}

} // namespace

size_t Masks::number(Table<size_t> &table, std::string_view value) {
    const auto found = table.find(value);
    return found != table.end() ? found->second
                                : table.emplace(value, table.size() + 1).first->second;
}

std::string Masks::newMask(Mask kind) {
    const std::string n = std::to_string(++counts_[static_cast<size_t>(kind)]);
    switch (kind) {
    case Mask::User: return "user" + n;
    case Mask::Host: return "host" + n + ".invalid";
    case Mask::Phone: return "phone" + n;
    case Mask::Secret: return "secret" + n;
    default: return "word" + n;
    }
}

std::string Masks::of(Mask kind, std::string_view value) {
    if (kind == Mask::Email) {
        return "email" + std::to_string(number(emails_, value)) + "@redacted.invalid";
    }
    if (kind == Mask::Uri) {
        return schemeOf(value) + "redacted.invalid/" + std::to_string(number(uris_, value));
    }
    std::string key = keyOf(kind, value);
    const auto found = words_.find(key);
    return found != words_.end() ? found->second
                                 : words_.emplace(std::move(key), newMask(kind)).first->second;
}

std::optional<std::string> Masks::known(std::string_view word) const {
    const auto found = words_.find(word);
    return found != words_.end() ? std::optional(found->second) : std::nullopt;
}

// Masks are from 198.18.0.0/15, the block for benchmarks (RFC 2544). 0.0.0.0 identifies no host.
std::string Masks::ipv4(const std::array<uint8_t, 4> &address) {
    if (address == std::array<uint8_t, 4>{}) {
        return "0.0.0.0";
    }
    const size_t n = number(ipv4_, {reinterpret_cast<const char *>(address.data()), 4});
    return "198." + std::to_string(18 + (n >> 16 & 1)) + '.' + std::to_string(n >> 8 & 255) + '.' +
           std::to_string(n & 255);
}

// Masks are from 2001:db8::/32, the prefix for documentation (RFC 3849). "::" identifies no host.
std::string Masks::ipv6(const std::array<uint8_t, 16> &address) {
    if (address == std::array<uint8_t, 16>{}) {
        return "::";
    }
    const size_t n = number(ipv6_, {reinterpret_cast<const char *>(address.data()), 16});
    std::array<uint8_t, 16> mask = {0x20, 0x01, 0x0d, 0xb8};
    for (size_t i = 0; i < 4; ++i) {
        mask[15 - i] = static_cast<uint8_t>(n >> 8 * i);
    }
    return sdpline::Address::v6(mask).shortText();
}

} // namespace cli
