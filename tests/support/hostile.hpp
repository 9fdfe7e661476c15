// Bodies of (nearly) the greatest length that make a decode work hardest for their bytes: the
// shortest lines of each kind, which give the most records, and the longest words.
#pragma once

#include <string>
#include <vector>

namespace support {

struct HostileBody {
    std::string name;
    std::string text;
};

// One kind of line or word, as often as there is room for it.
std::vector<HostileBody> hostileBodies();

// Every two kinds of lines, and all of them, sharing the bytes.
std::vector<HostileBody> hostileMixtures();

// An offer of the greatest length as telephones make them: what the others are measured by.
std::string typicalOffer();

} // namespace support
