// Masks for what identifies people and machines, so that output can be shown to others.
//
// What is masked is decided by the place in a line and by the shape of a word; see linemasks.cpp
// for the rules of each line and attribute. A value that no rule knows to be harmless is masked.
// Payloads, codecs and their parameters, ports, bandwidths, times and directions stay.
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
    // Gives the values of a body their masks, so that these do not depend on what is shown.
    void learn(std::string_view body);

    // What is to mask in one line of a body, given without its line end, in time linear in its
    // length. A line that is none of SDP loses all its letters and digits.
    std::vector<Edit> editsOf(std::string_view line);

    std::string redacted(std::string_view line) { return applied(line, editsOf(line)); }

    // The end of a line, with masks: "10.1.2.3" of "c=IN IP4 10.1.2.3" with the text before it.
    std::string redactedAfter(std::string_view before, std::string_view text);

    // Every line of a body masked; line ends stay as they are.
    std::string redactedBody(std::string_view body);

    Masks &masks() { return masks_; }

private:
    Masks masks_;
};

// Masks a decoded body in place; new text comes from the block that holds the body.
void redactRecords(SdpLine &line, Redactor &redactor);

} // namespace cli
