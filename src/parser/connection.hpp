// The productions of the c= line that also have exported names.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

SDPResult addressType(SDPConnection &connection, uint32_t kind);
bool parseIpv4(Parser auto &p, SDPConnection &connection);
bool parseIpv6(Parser auto &p, SDPConnection &connection);
bool parseTtlAndCount(Parser auto &p, SDPConnection &connection);

// SdpTokanizeIPv6Str and SdpLoadIpV6StringToArray (sdpinternals.h).
SDPResult cutIpv6Text(const char *text, uint32_t length, char (*tokens)[4], char *pattern,
                      uint32_t capacity, uint32_t *count);
SDPResult loadIpv6Text(const char *text, uint32_t length, uint8_t *address);

} // namespace sdpline
