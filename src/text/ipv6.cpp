// IPv6 address text to sixteen bytes, in two steps: the text is cut into a pattern of token
// classes, and the shapes in the pattern are converted. Lenient by design: groups are not counted.
//
//   2001:db8::1        T H T H H T
//   ::ffff:192.0.2.1   H H T H T D T D T D T
#include "text/ipv6.hpp"

#include <algorithm>
#include <cstring>

#include "sdpline/sdpinternals.h"
#include "text/scan.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kMaxLetters = SDP_IPV6_PATTERN - 1;
constexpr uint32_t kMaxColons = 8;
constexpr uint32_t kAddressSize = 16;
constexpr size_t kSlot = 4; // bytes of a token's text; the NUL after four is in the next slot
constexpr size_t kSlots = kSlot * SDP_IPV6_TOKENS;

// Letters and token texts in text order. One step may write one letter more than a pattern keeps.
struct Tokens {
    char slots[kSlots];
    char letters[SDP_IPV6_PATTERN + 1];
    uint32_t count;
    uint32_t colons;

    void add(char letter) { letters[count++] = letter; }
};

// Text that ends at its length or at a NUL.
struct Cursor {
    const char *text;
    uint32_t length;
    uint32_t at;

    bool more() const { return at < length && text[at] != '\0'; }
    bool atGroup() const { return more() && isAlnum(text[at]); }
};

// group = 1*4 alphanumeric. A fifth one is dropped, and false is returned.
bool takeGroup(Cursor &cursor, Tokens &tokens) {
    char *const slot = tokens.slots + kSlot * tokens.count;
    uint32_t size = 0;
    while (size < kSlot && cursor.atGroup()) {
        slot[size++] = cursor.text[cursor.at++];
    }
    slot[size] = '\0';
    tokens.add('T');
    if (size == kSlot && cursor.atGroup()) {
        ++cursor.at;
        return false;
    }
    return true;
}

// A colon or a dot adds its letter; any other byte is skipped. False at a ninth colon.
bool takeMark(Cursor &cursor, Tokens &tokens) {
    if (!cursor.more()) {
        return true;
    }
    const char byte = cursor.text[cursor.at++];
    if (byte == ':') {
        tokens.add('H');
        return ++tokens.colons <= kMaxColons;
    }
    if (byte == '.') {
        tokens.add('D');
    }
    return true;
}

// The pattern of an address.
struct Pattern {
    char slots[kSlots];
    char letters[SDP_IPV6_PATTERN];
    uint32_t count;

    bool has(uint32_t at, std::string_view shape) const {
        return at < count && startsWith({letters + at, count - at}, shape);
    }
    bool hasGroup(uint32_t at) const { return has(at, "TH"); }
    bool hasDotted(uint32_t at) const { return has(at, "TDTDTDT"); }
    bool hasFinal(uint32_t at) const { return has(at, "T"); }
};

// The converted bytes in text order; those after the sixteenth are dropped.
struct Bytes {
    uint8_t data[kAddressSize];
    uint32_t count;

    void add(uint32_t byte) {
        if (count < kAddressSize) {
            data[count++] = static_cast<uint8_t>(byte);
        }
    }
};

void addGroup(const Pattern &pattern, uint32_t at, Bytes &bytes) {
    const uint32_t value = hexNumber(pattern.slots + kSlot * at);
    bytes.add(value >> 8);
    bytes.add(value & 0xFFu);
}

// Four octets. False when one is not a number up to 255.
bool addDotted(const Pattern &pattern, uint32_t at, Bytes &bytes) {
    for (uint32_t octet = 0; octet < 4; ++octet) {
        const uint32_t value = shortNumber(pattern.slots + kSlot * (at + 2 * octet));
        if (value > 255) {
            return false;
        }
        bytes.add(value);
    }
    return true;
}

// The part before any "::", or the whole address.
Ipv6Fault loadHead(const Pattern &pattern, Bytes &head, uint32_t &at, bool &dotted) {
    for (;;) {
        if (pattern.hasGroup(at)) {
            addGroup(pattern, at, head);
            at += 2;
        } else if (pattern.hasDotted(at)) {
            if (!addDotted(pattern, at, head)) {
                return Ipv6Fault::HeadOctet;
            }
            dotted = true;
            at += 7;
        } else {
            return Ipv6Fault::None;
        }
    }
}

// The tail ends at the sixteenth byte, and overwrites the head where they overlap.
void placeTail(const Bytes &tail, Bytes &address) {
    std::copy_n(tail.data, tail.count, address.data + (kAddressSize - tail.count));
}

// The part after "::". A tail that ends in neither a dotted part nor a final group is dropped.
Ipv6Fault loadTail(const Pattern &pattern, uint32_t at, Bytes &address) {
    Bytes tail = {};
    bool dotted = false;
    while (at + 3 <= pattern.count) {
        if (pattern.hasGroup(at)) {
            addGroup(pattern, at, tail);
            at += 2;
        } else if (pattern.hasDotted(at)) {
            if (!addDotted(pattern, at, tail)) {
                return Ipv6Fault::TailOctet;
            }
            dotted = true;
            placeTail(tail, address);
            at += 7;
        } else {
            at += 2;
        }
    }
    if (!dotted && pattern.hasFinal(at)) {
        addGroup(pattern, at, tail);
        placeTail(tail, address);
    }
    return Ipv6Fault::None;
}

Ipv6Fault loadPattern(const Pattern &pattern, Bytes &address) {
    uint32_t at = 0;
    bool dotted = false;
    if (const Ipv6Fault fault = loadHead(pattern, address, at, dotted); fault != Ipv6Fault::None) {
        return fault;
    }
    const char *const gap = findText({pattern.letters, pattern.count}, "HH");
    if (gap != nullptr) {
        return loadTail(pattern, static_cast<uint32_t>(gap - pattern.letters) + 2, address);
    }
    if (!dotted && pattern.hasFinal(at)) {
        addGroup(pattern, at, address);
    }
    return Ipv6Fault::None;
}

} // namespace

bool cutIpv6(const char *text, uint32_t length, char (*tokens)[4], char *pattern, uint32_t capacity,
             uint32_t &count) {
    const uint32_t space = capacity == 0 ? 0 : capacity - 1;
    const uint32_t limit = std::min(space, kMaxLetters);
    Tokens cut = {};
    Cursor cursor = {text, length, 0};
    while (cursor.more() && cut.count < limit) {
        if (cursor.atGroup() && !takeGroup(cursor, cut)) {
            continue;
        }
        if (!takeMark(cursor, cut)) {
            return false;
        }
    }
    count = std::min(cut.count, limit);
    if (capacity != 0) {
        std::memcpy(pattern, cut.letters, count);
        pattern[count] = '\0';
    }
    if (memcpy_s(tokens, sizeof cut.slots, cut.slots, sizeof cut.slots) != 0) {
        SIPAbnormalSecureFunc("SdpTokanizeIPv6Str", __LINE__);
    }
    return true;
}

Ipv6Fault loadIpv6(const char *text, uint32_t length, uint8_t *address) {
    Pattern pattern = {};
    if (!cutIpv6(text, length, reinterpret_cast<char(*)[kSlot]>(pattern.slots), pattern.letters,
                 SDP_IPV6_PATTERN, pattern.count)) {
        return Ipv6Fault::Colons;
    }
    Bytes bytes = {};
    if (const Ipv6Fault fault = loadPattern(pattern, bytes); fault != Ipv6Fault::None) {
        return fault;
    }
    if (memcpy_s(address, kAddressSize, bytes.data, kAddressSize) != 0) {
        SIPAbnormalSecureFunc("SdpLoadIpV6StringToArray", __LINE__);
    }
    return Ipv6Fault::None;
}

} // namespace sdpline
