// The productions of the media descriptions and their m= lines that also have exported names.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

bool parseMediaDescription(Parser auto &parser, SDPMediaDesc &desc);

SDPResult classifyMedia(SDPMediaField &field, std::string_view word);
bool parseFormats(Parser auto &p, SDPMediaField &field, std::string_view proto);
bool parsePayloads(Parser auto &p, SDPMediaField &field, uint32_t proto);
bool parsePayloadNumbers(Parser auto &p, uint32_t &count, uint32_t *numbers, uint32_t limit);
bool parseOtherFormat(Parser auto &p, SDPMediaField &field, uint32_t proto);

} // namespace sdpline
