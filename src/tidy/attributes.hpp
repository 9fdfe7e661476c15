// The parts of the a= line, and their repair.
#pragma once

#include "tidy/shapes.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

// An attribute's name, and the text after it. `value` is the text after "a=".
struct Attribute {
    explicit Attribute(std::string_view value);

    std::string_view name;
    std::string_view rest;
    Shape shape;
    Rtpmaps rtpmap = Rtpmaps::Other; // of that shape
};

// Whether the attribute certainly needs no repair, as most do not.
bool isPlain(const Attribute &attribute);

// Repairs an attribute that is not plain.
void repairAttribute(Workspace &work, Line &line, const Attribute &attribute);

} // namespace sdpline::tidy
