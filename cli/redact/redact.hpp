// Masks what identifies people and machines, so that output can be shown to others.
//
// The position in a line and the form of a word decide what is masked; see linemasks.cpp for the
// rules of each line and attribute. A value that no rule knows to be harmless is masked. Payloads,
// codecs and their parameters, ports, bandwidths, times and directions are not masked.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "redact/edits.hpp"
#include "redact/masks.hpp"
#include "sdpline/sdpline.h"

namespace cli {

class Redactor {
public:
    // Gives the values of a body their masks, so that the masks do not depend on what is shown.
    void learn(std::string_view body);

    // The edits that mask one line of a body, given without its line end, in time linear in its
    // length. In a line that is not a line of SDP all letters and digits are replaced.
    std::vector<Edit> editsOf(std::string_view line);

    std::string redacted(std::string_view line) { return applied(line, editsOf(line)); }

    // Masks a text as the end of a line: "10.1.2.3" after "c=IN IP4 ".
    std::string redactedAfter(std::string_view before, std::string_view text);

    // Masks every line of a body, and keeps its line ends.
    std::string redactedBody(std::string_view body);

    Masks &masks() { return masks_; }

private:
    Masks masks_;
};

// Masks a decoded body in place; new texts are allocated from the block of the body.
void redactRecords(SdpLine &line, Redactor &redactor);

} // namespace cli
