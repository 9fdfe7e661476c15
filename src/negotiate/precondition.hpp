// Preconditions (RFC 3312, RFC 4032): the status tables of a stream.
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// The result of answering them: why the stream is rejected, or the state of the preconditions.
struct PreconditionAnswer {
    Reason rejected = Reason::None;
    std::string_view type; // the precondition type for which it is rejected
    uint32_t state = SDP_NEGOTIATE_PRECONDITIONS_ABSENT;
    bool confirm = false; // the offer asks for a confirmation by a=conf
};

// Adds the a=curr, a=des and a=conf lines of the answer. With null `lines` only tests whether the
// stream is rejected.
PreconditionAnswer answerPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &ours,
                                       uint32_t stream, Report &report, Growing<SDPAttr> *lines);

// The state that the lines of both sides agree on, as the side of `ours` sees it.
PreconditionAnswer agreePreconditions(const SDPMediaDesc &peer, const SDPMediaDesc &ours);

void checkPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &answered, uint32_t stream,
                        Report &report);

// Adds the a=curr lines of the previous description for which the wanted one has none.
void carryCurrent(const SDPMediaDesc &previous, const SDPMediaDesc &wanted,
                  Growing<SDPAttr> &lines);

} // namespace sdpline::negotiate
