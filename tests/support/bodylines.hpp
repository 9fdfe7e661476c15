// The records of a body one by one, in the form of the operations on single lines.
#pragma once

#include <cstdint>
#include <vector>

#include "sdpline/sdpline.h"

namespace support {

// One record of a body, of the kind that belongs to the line type.
struct BodyLine {
    uint32_t lineType;
    const void *record;
};

// Every record of a body that has a line type, including the r= lines within t= lines.
std::vector<BodyLine> linesOf(const SdpLine &line);

} // namespace support
