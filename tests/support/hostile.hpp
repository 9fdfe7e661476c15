// Bodies of (nearly) the maximum length with the highest cost of a decode: the shortest lines of
// each kind, which give the most records, and the longest words.
#pragma once

#include <string>
#include <vector>

namespace support {

struct HostileBody {
    std::string name;
    std::string text;
};

// One kind of line or word, repeated as often as the body has room.
std::vector<HostileBody> hostileBodies();

// Every two kinds of lines, and all kinds, with equal shares of the bytes.
std::vector<HostileBody> hostileMixtures();

// An offer of the maximum length with the lines of telephones, for comparison with the others.
std::string typicalOffer();

} // namespace support
