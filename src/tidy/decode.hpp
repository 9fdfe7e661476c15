// The decoder as the entry points call it, and what they have in common.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/sdptidy.h"

namespace sdpline::tidy {

struct Request {
    SipString text;
    uint64_t rules;
    SDPDecodeOptions decode;
};

inline std::string_view viewOf(const SipString &text) {
    return {text.pcData, text.ulLen};
}

// Clears the report and fills the request. False for an argument that is refused.
bool begin(const SipString *text, const SDPTidyOptions *options, SDPTidyReport *report,
           Request &request);

// One decode; the report's body is null after a refusal.
SDPResult decode(const SipString &text, const SDPDecodeOptions &options, SDPTidyReport &report);

// The decode of the text as it was given, told in the report.
SDPResult decodeGiven(const Request &request, SDPTidyReport &report);

// Why the decode that just returned this failed.
SDPFailure failureOf(SDPResult result);

// Whether that check fails where memory ran out: no text is to blame then.
bool isOfMemory(std::string_view check);

} // namespace sdpline::tidy
