// a=rtcp-fb, format by format (RFC 4585 section 4.2).
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/pairing.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// What both sides have, for the chosen formats, under the offer's numbers.
void answerFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &ours, const Pairing &pairing,
                    uint32_t stream, Report &report, Growing<SDPAttr> &lines);

// Each line of an answer must have been offered for its format, or for all.
void checkFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &answered,
                   const Pairing &pairing, uint32_t stream, Report &report);

} // namespace sdpline::negotiate
