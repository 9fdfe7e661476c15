// The productions of the c= line that also have exported names.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

SDPResult addressType(SDPConnection &connection, uint32_t kind);
bool parseIpv4(Parser auto &p, SDPConnection &connection);
bool parseIpv6(Parser auto &p, SDPConnection &connection);
bool parseTtlAndCount(Parser auto &p, SDPConnection &connection);

} // namespace sdpline
