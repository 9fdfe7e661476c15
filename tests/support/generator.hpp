// Bodies made by chance, every one of which the library accepts.
#pragma once

#include <random>
#include <string>

namespace support {

// A body of at most SDP_MAX_BODY bytes: lines of every kind, attributes of every type, addresses
// of both families, several media, words and bytes that no program writes; neat ones, and ones with
// mixed line ends, blanks before lines, NULs, a last line that nothing ends, and rubbish after
// the description. Accepted under every configuration.
//
// Every value of it survives being written (under SDP_T38_STYLE_VALUE) and read again, but for the
// second and later t= lines: no "/0" ports or channels, no port without payload numbers but 0, no
// TTL of SDP_NOT_GIVEN before a number of addresses, no CR at the end of a line.
std::string generateBody(std::mt19937 &engine);

} // namespace support
