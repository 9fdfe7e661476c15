// IPv6 address text (RFC 4291 section 2.2) to bytes. Neither function logs: the parser's checks are
// in parser/ipv6.cpp.
#pragma once

#include <cstdint>

namespace sdpline {

// Why a text is no address.
enum class Ipv6Fault : uint8_t {
    None,
    Colons,    // more than eight
    HeadOctet, // an octet above 255 in a dotted part before any "::"
    TailOctet, // the same after "::"
};

// Cuts a text, which ends at its length or at a NUL, into a pattern of T (group), H (colon) and D
// (dot), and the texts of the groups in 40 slots. `capacity` is that of the pattern, with its NUL;
// `count` is set to its length. Returns false, and writes nothing, at a ninth colon.
bool cutIpv6(const char *text, uint32_t length, char (*tokens)[4], char *pattern, uint32_t capacity,
             uint32_t &count);

// Writes the sixteen bytes of an address, in network order, on success only.
Ipv6Fault loadIpv6(const char *text, uint32_t length, uint8_t *address);

} // namespace sdpline
