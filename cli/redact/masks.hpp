// Values and their masks: equal values get equal masks throughout one run.
//
// Masks are numbered in the order of the first occurrence of their values. A user, host, phone
// number, secret or word gets the same mask wherever it occurs; host names are compared without
// regard to case, phone numbers by their digits. A mask has the syntax of its value: the mask of an
// address is an address, that of a session id a number.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace cli {

enum class Mask { User, Host, Phone, Secret, Word, Email, Uri };

class Masks {
public:
    // "user1", "host1.invalid", "phone1", "secret1", "word1", "email1@redacted.invalid",
    // "http://redacted.invalid/1"
    std::string of(Mask kind, std::string_view value);

    // The mask that a word already has, for example as a user or a host.
    std::optional<std::string> known(std::string_view word) const;

    std::string ipv4(const std::array<uint8_t, 4> &address);
    std::string ipv6(const std::array<uint8_t, 16> &address);

    // The masks of an o= line are digits.
    std::string sessionId(std::string_view id) { return std::to_string(number(ids_, id)); }
    std::string sessionVersion(std::string_view version) {
        return std::to_string(number(versions_, version));
    }

private:
    template <class Value>
    using Table = std::map<std::string, Value, std::less<>>;

    static size_t number(Table<size_t> &table, std::string_view value);
    std::string newMask(Mask kind);

    Table<std::string> words_; // users, hosts, phone numbers, secrets and words
    Table<size_t> emails_;
    Table<size_t> uris_;
    Table<size_t> ipv4_;
    Table<size_t> ipv6_;
    Table<size_t> ids_;
    Table<size_t> versions_;
    std::array<size_t, 5> counts_ = {}; // of the masks in words_, by their kind
};

} // namespace cli
