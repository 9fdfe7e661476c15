// The bodies that are measured: real-looking offers by their sizes, and others made to cost.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// One text, or several that are measured as one.
struct Body {
    std::string name;
    std::vector<std::string> texts;

    size_t size() const;
};

// An audio offer (240 bytes), audio with video and T.38 (1 KB), that with candidates (2 KB), one
// heavy with attributes (4 KB), and the mixture: every body of tests/cases that is accepted without
// a setting, each once.
const std::vector<Body> &bodies();

// The offer that costs an answer the most for each of its bytes: one stream with one codec
// ("130B").
const Body &shortestOffer();

// Bodies of 4 KB with one attribute over and over, named after it: each known kind of attribute at
// its shortest value, and unknown ones.
const std::vector<Body> &attributeBodies();

// The body with a fault that sdptidy.h repairs by default: in its second line, in its last one, or
// in each line that can have one. Without faults it has the same lines, and one more at the end.
enum class Fault { First, Last, Each };
// By the names of the operations that repair them.
inline constexpr std::pair<const char *, Fault> kFaults[] = {
    {"repair-first", Fault::First}, {"repair-last", Fault::Last}, {"repair-each", Fault::Each}};
Body untidy(const Body &body, Fault fault);
Body withoutFaults(const Body &body);

} // namespace bench
