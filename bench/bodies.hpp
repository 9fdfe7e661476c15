// The bodies that are measured: realistic offers of several sizes, and expensive bodies.
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

// An audio offer (240 bytes), audio with video and T.38 (1 KB), the same with candidates (2 KB),
// one with many attributes (4 KB), and the mixture: every body of tests/cases that is accepted
// without a setting.
const std::vector<Body> &bodies();

// The offer whose answer costs most for each byte: one stream with one codec ("130B").
const Body &shortestOffer();

// Bodies of 4 KB that repeat one attribute, after which they are named: each known kind of
// attribute with its shortest value, and unknown attributes.
const std::vector<Body> &attributeBodies();

// The body with a fault that is repaired by default: in its second line, in its last line, or in
// each line that can have one. The body without faults has one more line at the end.
enum class Fault { First, Last, Each };
// By the names of the operations.
inline constexpr std::pair<const char *, Fault> kFaults[] = {
    {"repair-first", Fault::First}, {"repair-last", Fault::Last}, {"repair-each", Fault::Each}};
Body untidy(const Body &body, Fault fault);
Body withoutFaults(const Body &body);

} // namespace bench
