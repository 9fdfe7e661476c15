// a=rtcp-fb (RFC 4585 section 4.2).
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/pairing.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// Adds the feedback messages that both sides have for the chosen formats, with the offer's payload
// numbers.
void answerFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &ours, const Pairing &pairing,
                    uint32_t stream, Report &report, Growing<SDPAttr> &lines);

// Reports the lines of an answer that were offered neither for their format nor for all formats.
void checkFeedback(const SDPMediaDesc &offered, const SDPMediaDesc &answered,
                   const Pairing &pairing, uint32_t stream, Report &report);

} // namespace sdpline::negotiate
