// The records of a body one by one, as the operations on single lines take them.
#pragma once

#include <cstdint>
#include <vector>

#include "sdpline/sdpline.h"

namespace support {

// One record of a body, of the kind that goes with the line type.
struct BodyLine {
    uint32_t lineType;
    const void *record;
};

// Every record of a body that a line type names: r= lines beside the t= lines that hold them, too.
std::vector<BodyLine> linesOf(const SdpLine &line);

} // namespace support
