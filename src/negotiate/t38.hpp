// T.38 streams (RFC 3362, T.38 Annex D).
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// Reason::None if the offered rate management is one of ours, else RateManagement, with the detail
// in `why`.
Reason fitFax(const SDPMediaDesc &offered, const SDPMediaDesc &ours, Text &why);

// Adds the a=T38... lines of the answer.
void answerFax(const SDPMediaDesc &offered, const SDPMediaDesc &ours, uint32_t stream,
               Report &report, Growing<SDPAttr> &lines);

// Reports the faults in the a=T38... lines of an answer.
void checkFax(const SDPMediaDesc &offered, const SDPMediaDesc &answered, uint32_t stream,
              Report &report);

} // namespace sdpline::negotiate
