// The bodies that are measured: real-looking offers, by their sizes.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Body {
    std::string name;
    std::string text;
};

// An audio offer (240 bytes), audio with video and T.38 (1 KB), two of those and more (2 KB), and
// one heavy with attributes (4 KB).
const std::vector<Body> &bodies();

} // namespace bench
