// Makes random bodies, all of which the library accepts.
#pragma once

#include <random>
#include <string>

namespace support {

// A body of at most SDP_MAX_BODY bytes: lines of every kind, attributes of every type, addresses
// of both families, several media, words and bytes that no program writes; with and without mixed
// line ends, blanks before lines, NULs, a last line without a line end, and other text after the
// description. Accepted with every configuration.
//
// When the body is written (with SDP_T38_STYLE_VALUE) and decoded again, every value but the second
// and later t= lines is the same. So it has no "/0" ports or channels, no port but 0 without
// payload numbers, no TTL of SDP_NOT_GIVEN before a number of addresses, no CR at the end of a
// line.
std::string generateBody(std::mt19937 &engine);

} // namespace support
