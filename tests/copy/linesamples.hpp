// One record of every shape that a line can have, and a deep look into a record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.h"

namespace dsmtest {

struct Sample {
    std::string name;
    uint32_t lineType;
    const void *record;
    // What SdpCopyLine returns when the first, the second, ... request for memory is refused: one
    // for each request that a copy makes. File base 0.
    std::vector<SDPResult> refusals;
};

const std::vector<Sample> &samples();
const Sample &sampleNamed(std::string_view name);

// Size of the record of that kind of line.
size_t recordSize(uint32_t lineType);

struct Look {
    std::string text;                      // the whole record and everything it points to
    std::vector<const void *> allocations; // what it points to, the texts' bytes included
};

Look lookAt(uint32_t lineType, const void *record);

SipString textOf(const char *literal);
SDPMediaFmt otherFormat(const char *literal);

} // namespace dsmtest
