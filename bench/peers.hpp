// Other libraries that parse SDP, each in a source of its own and only where it is installed. Each
// is used as its documentation has it: one parse and free for each text, and one print and free.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

// A text that a library has parsed.
class Parsed {
public:
    virtual ~Parsed() = default;
    virtual bool print() = 0; // and gives the text back
    virtual std::string printed() = 0;
};

struct Peer {
    const char *name;
    bool (*parse)(const std::string &text);                   // and gives everything back
    std::unique_ptr<Parsed> (*keep)(const std::string &text); // null when the text is refused
};

// Those that the program was built with, by name. A source adds its own before main().
std::vector<Peer> peers();
bool addPeer(const Peer &peer);

// How many lines of the text, of how many, are not in what the peer prints after it parsed it.
struct Lost {
    size_t lines;
    size_t of;
};
Lost lostLines(const std::string &text, const std::string &printed);

} // namespace bench
