// Calling the decoder, and the start of both entry points.
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

void clear(SDPTidyReport &report);

// Clears the report and sets the request. Returns false for a refused argument.
bool begin(const SipString *text, const SDPTidyOptions *options, SDPTidyReport *report,
           Request &request);

// Decodes a text; the report's body is null after a failure.
SDPResult decode(const SipString &text, const SDPDecodeOptions &options, SDPTidyReport &report);

// Decodes the given text, and sets the report accordingly.
SDPResult decodeGiven(const Request &request, SDPTidyReport &report);

// The failure of the decode that just returned this result.
SDPFailure failureOf(SDPResult result);

// Whether the decoder failed for lack of memory, so that the text is not the cause.
bool isOfMemory(const SDPFailure &failure);

} // namespace sdpline::tidy
