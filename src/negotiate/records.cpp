// Reading the records of a body.
#include "negotiate/records.hpp"

#include <algorithm>
#include <cstring>

namespace sdpline::negotiate {

namespace {

// The bits in which two texts differ in their first sizeof(Word) bytes.
template <class Word>
Word differenceOf(const char *one, const char *two) {
    Word first = 0;
    Word second = 0;
    std::memcpy(&first, one, sizeof first);
    std::memcpy(&second, two, sizeof second);
    return first ^ second;
}
// The same for their first and their last bytes, which may overlap. Both texts have the same size,
// at least sizeof(Word).
template <class Word>
Word differenceAtEnds(std::string_view one, std::string_view two) {
    const size_t last = one.size() - sizeof(Word);
    return differenceOf<Word>(one.data(), two.data()) |
           differenceOf<Word>(one.data() + last, two.data() + last);
}

} // namespace

// A fast path first: most words are equal, or differ in their first or last four bytes in more than
// the bit of the case.
bool sameLetters(std::string_view one, std::string_view two) {
    const size_t size = one.size();
    if (size >= 4) {
        const uint32_t difference = differenceAtEnds<uint32_t>(one, two);
        if ((difference & ~0x20202020u) != 0 || (difference == 0 && size <= 8)) {
            return difference == 0;
        }
        if (size > 8 && size <= 16 && differenceAtEnds<uint64_t>(one, two) == 0) {
            return true;
        }
    }
    for (size_t i = 0; i < size; ++i) {
        if (one[i] != two[i] && lower(one[i]) != lower(two[i])) {
            return false;
        }
    }
    return true;
}

bool hasWord(std::string_view text, std::string_view word) {
    for (size_t at = 0; at + word.size() <= text.size(); ++at) {
        if (sameWord({text.data() + at, word.size()}, word)) {
            return true;
        }
    }
    return false;
}

bool takeNumber(std::string_view &text, uint32_t &number) {
    uint64_t value = 0;
    size_t at = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        value = value * 10 + static_cast<uint64_t>(text[at++] - '0');
        if (value > UINT32_MAX) {
            return false;
        }
    }
    number = static_cast<uint32_t>(value);
    text.remove_prefix(at);
    return at != 0;
}

std::string_view takeWord(std::string_view &text) {
    const std::string_view word = firstBytes(text, text.find(' '));
    text.remove_prefix(word.size());
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return word;
}

const SDPAttr *find(AttributeSpan attributes, uint32_t type) {
    for (const SDPAttr *const attribute : attributes) {
        if (attribute->ulAttrType == type) {
            return attribute;
        }
    }
    return nullptr;
}

const SDPAttr *find(AttributeSpan attributes, std::string_view name) {
    for (const SDPAttr *const attribute : attributes) {
        const SipString *const own = attribute->pstAttrName;
        if (own != nullptr && own->ulLen == name.size() && same(otherName(*attribute), name)) {
            return attribute;
        }
    }
    return nullptr;
}

namespace {

std::span<const uint8_t> octetsOf(const SDPConnection *connection) {
    if (connection == nullptr) {
        return {};
    }
    const SDPTptAddr &address = connection->stTptAddr;
    switch (address.enTptAddrType) {
    case SDP_TPTADDR_IPV4: return address.unTptAddr.aucIpv4;
    case SDP_TPTADDR_IPV6: return address.unTptAddr.aucIpv6;
    default: return {};
    }
}

} // namespace

bool isUnspecified(const SDPConnection *connection) {
    const auto octets = octetsOf(connection);
    return !octets.empty() &&
           std::all_of(octets.begin(), octets.end(), [](uint8_t octet) { return octet == 0; });
}

// 224.0.0.0/4 (RFC 5771) and ff00::/8 (RFC 4291 section 2.7).
bool isMulticast(const SDPConnection *connection) {
    const auto octets = octetsOf(connection);
    return (octets.size() == 4 && octets[0] >> 4 == 0xE) ||
           (octets.size() == 16 && octets[0] == 0xFF);
}

} // namespace sdpline::negotiate
