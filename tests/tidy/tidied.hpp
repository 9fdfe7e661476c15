// One text tidied or doubted, and what must hold of any.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdptidy.h"

namespace tidytest {

// What a report said; it has been released.
struct Tidied {
    SDPResult result = 0;
    uint32_t outcome = 0;
    std::string text;
    std::vector<SDPTidyRow> rows;
    SDPFailure failure = {};
    SDPFailure remaining = {};
    bool hasBody = false;

    // "3:3 NameEmpty -> 3", a line each; of a line that is gone "-> gone".
    std::string report() const;
    // "5:9 PortRange", a line each
    std::string doubts() const;
};

// Every rule that repairs.
inline constexpr uint64_t kAll = SDP_TIDY_BIT(SDP_TIDY_CR_INSIDE) - 1;
inline constexpr SDPDecodeOptions kStrict = {0, SDP_MAX_BODY};

Tidied tidied(std::string_view text, uint64_t rules, const SDPDecodeOptions &options = kStrict);
Tidied doubted(std::string_view text, const SDPDecodeOptions &options = kStrict);

bool decodes(std::string_view text, const SDPDecodeOptions &options = kStrict);

// What must hold of any text; each failure is a failure of the test.
void expectProperties(const std::string &text, const Tidied &tidied, uint64_t rules,
                      const SDPDecodeOptions &options);

} // namespace tidytest
