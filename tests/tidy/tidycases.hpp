// Case documents of repairs and doubts: Markdown files in tests/cases/tidy, one case below each
// "##" heading.
//
//     ## An empty session name
//     Why it is so.
//     ```sdp lf optional +ConnHost      the text as it comes
//     v=0
//     ...
//     ```report                         what was repaired: place, rule, the line's new number
//     3:3 NameEmpty -> 3
//     ```text                           the text that decodes
//     ```refused                        or why it is still refused, with the place
//     AfterMedia at 9:1
//     ```doubts                         or what there is to doubt in a text that is taken as it is
//     5:9 PortRange
//
// Words after "sdp" are those of the other cases (support/cases.hpp), the sets of rules beside the
// default one (optional, by-name), and single rules to add (+Name) or to take away (-Name). A case
// has a report, or doubts. Bytes of the text block that do not print are escaped as in bodies; its
// lines end as those of the body.
#pragma once

#include <string>
#include <vector>

#include "sdpline/sdptidy.h"
#include "support/cases.hpp"

namespace tidytest {

struct TidyCase {
    std::string file;
    int at = 0;
    std::string title;
    support::Block bodyBlock;
    std::optional<support::Block> report;
    std::optional<support::Block> text;
    std::optional<support::Block> refused;
    std::optional<support::Block> doubts;

    std::string body() const { return support::bodyOf(bodyBlock); }
    uint64_t rules() const;
    SDPDecodeOptions options() const;
};

std::vector<TidyCase> readTidyCases();

// The text with CR LF as LF, and other bytes that do not print as escapes.
std::string visible(const std::string &text);

} // namespace tidytest
