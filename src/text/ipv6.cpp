// IPv6 address text to sixteen bytes, in two steps: a pattern of token classes, then the shapes
// in it. Lenient by design: groups are not counted, and the pattern decides.
//
//   2001:db8::1        T H T H H T
//   ::ffff:192.0.2.1   H H T H T D T D T D T
#include <algorithm>
#include <cstring>

#include "checks/checks.hpp"
#include "sdpline/sdpinternals.h"
#include "text/scan.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kMaxLetters = SDP_IPV6_PATTERN - 1;
constexpr uint32_t kMaxColons = 8;
constexpr uint32_t kAddressSize = 16;
constexpr size_t kSlot = 4; // bytes of a token's text; a fifth, its NUL, is in the next slot
constexpr size_t kSlots = kSlot * SDP_IPV6_TOKENS;

// Letters and token texts as they come. One step may write a letter more than the pattern keeps.
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
    bool atGroup() const { return more() && SdpIsalnum(text[at]) == 1; }
};

// group = 1*4 alphanumeric; a fifth one is dropped, and false returned.
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

// Colons and dots become letters, other bytes nothing. False at a ninth colon.
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

// The pattern as the loader walks it.
struct Pattern {
    char slots[kSlots];
    char letters[SDP_IPV6_PATTERN];
    uint32_t count;

    bool has(uint32_t at, const char *shape, uint32_t size) const {
        return at < count && SdpStrNCmpCharPtr(letters + at, count - at, shape, size) == 1;
    }
    bool hasGroup(uint32_t at) const { return has(at, "TH", 2); }
    bool hasDotted(uint32_t at) const { return has(at, "TDTDTDT", 7); }
    bool hasFinal(uint32_t at) const { return has(at, "T", 1); }
};

// Bytes in the order they are converted; those after the sixteenth are lost.
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
    uint16_t value = 0;
    SdpConvHexStrToDec(pattern.slots + kSlot * at, &value);
    bytes.add(value >> 8);
    bytes.add(value & 0xFFu);
}

// Four octets; false when one is no number up to 255.
bool addDotted(const Pattern &pattern, uint32_t at, Bytes &bytes) {
    for (uint32_t octet = 0; octet < 4; ++octet) {
        uint16_t value = 0;
        SdpConvDecStrToDec(pattern.slots + kSlot * (at + 2 * octet), &value);
        if (value > 255) {
            return false;
        }
        bytes.add(value);
    }
    return true;
}

// What is before any "::".
SDPResult loadHead(const Pattern &pattern, Bytes &head, uint32_t &at, bool &dotted) {
    for (;;) {
        if (pattern.hasGroup(at)) {
            addGroup(pattern, at, head);
            at += 2;
        } else if (pattern.hasDotted(at)) {
            if (!addDotted(pattern, at, head)) {
                return fail(Check::Ipv6HeadOctet);
            }
            dotted = true;
            at += 7;
        } else {
            return 0;
        }
    }
}

// The tail ends at the sixteenth byte and wins where it overlaps the head.
void placeTail(const Bytes &tail, Bytes &address) {
    std::copy_n(tail.data, tail.count, address.data + (kAddressSize - tail.count));
}

// What follows "::". A tail that ends in neither a dotted part nor a final group is lost.
SDPResult loadTail(const Pattern &pattern, uint32_t at, Bytes &address) {
    Bytes tail = {};
    bool dotted = false;
    while (at + 3 <= pattern.count) {
        if (pattern.hasGroup(at)) {
            addGroup(pattern, at, tail);
            at += 2;
        } else if (pattern.hasDotted(at)) {
            if (!addDotted(pattern, at, tail)) {
                return fail(Check::Ipv6TailOctet);
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
    return 0;
}

SDPResult loadAddress(const Pattern &pattern, Bytes &address) {
    uint32_t at = 0;
    bool dotted = false;
    if (const SDPResult result = loadHead(pattern, address, at, dotted)) {
        return result;
    }
    const char *const gap = SdpSmStrstr(pattern.letters, pattern.count, "HH", 2);
    if (gap != nullptr) {
        return loadTail(pattern, static_cast<uint32_t>(gap - pattern.letters) + 2, address);
    }
    if (!dotted && pattern.hasFinal(at)) {
        addGroup(pattern, at, address);
    }
    return 0;
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult SdpTokanizeIPv6Str(const char *pcText, uint32_t ulLen, char (*pacTokens)[4],
                             char *pcPattern, uint32_t ulCapacity, uint32_t *pulPatternLen) {
    if (pcText == nullptr || ulLen == 0 || pacTokens == nullptr || pcPattern == nullptr ||
        pulPatternLen == nullptr) {
        return fail(Check::Ipv6TokensArgument, ulLen);
    }
    const uint32_t space = ulCapacity == 0 ? 0 : ulCapacity - 1;
    const uint32_t limit = std::min(space, kMaxLetters);
    Tokens tokens = {};
    Cursor cursor = {pcText, ulLen, 0};
    while (cursor.more() && tokens.count < limit) {
        if (cursor.atGroup() && !takeGroup(cursor, tokens)) {
            continue;
        }
        if (!takeMark(cursor, tokens)) {
            return fail(Check::Ipv6Colons);
        }
    }
    const uint32_t count = std::min(tokens.count, limit);
    *pulPatternLen = count;
    if (ulCapacity != 0) {
        std::memcpy(pcPattern, tokens.letters, count);
        pcPattern[count] = '\0';
    }
    if (memcpy_s(pacTokens, sizeof tokens.slots, tokens.slots, sizeof tokens.slots) != 0) {
        SIPAbnormalSecureFunc("SdpTokanizeIPv6Str", __LINE__);
    }
    return 0;
}

SDPResult SdpLoadIpV6StringToArray(const char *pcText, uint32_t ulLen, uint8_t *pucAddress) {
    if (pcText == nullptr || ulLen == 0 || pucAddress == nullptr) {
        return fail(Check::Ipv6Argument, ulLen);
    }
    Pattern pattern = {};
    if (const SDPResult result =
            SdpTokanizeIPv6Str(pcText, ulLen, reinterpret_cast<char(*)[kSlot]>(pattern.slots),
                               pattern.letters, SDP_IPV6_PATTERN, &pattern.count)) {
        return logAndForward(Check::Ipv6Tokens, result);
    }
    Bytes address = {};
    if (const SDPResult result = loadAddress(pattern, address)) {
        return result;
    }
    if (memcpy_s(pucAddress, kAddressSize, address.data, kAddressSize) != 0) {
        SIPAbnormalSecureFunc("SdpLoadIpV6StringToArray", __LINE__);
    }
    return 0;
}

} // extern "C"
