// Preconditions (RFC 3312, RFC 4032): the status table of a stream.
#pragma once

#include "negotiate/draft.hpp"
#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// What an answer says of them, and whether the mandatory ones are met.
struct PreconditionAnswer {
    Reason rejected = Reason::None;
    std::string_view type; // that it is rejected for
    uint32_t state = SDP_NEGOTIATE_PRECONDITIONS_ABSENT;
    bool confirm = false; // the offerer asks for a=conf
};

// Adds the a=curr, a=des and a=conf lines of the answer. With `lines` null only judges.
PreconditionAnswer answerPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &ours,
                                       uint32_t stream, Report &report, Growing<SDPAttr> *lines);

// As the lines of both sides say; `ours` is whose view it is.
PreconditionAnswer agreePreconditions(const SDPMediaDesc &peer, const SDPMediaDesc &ours);

void checkPreconditions(const SDPMediaDesc &offered, const SDPMediaDesc &answered, uint32_t stream,
                        Report &report);

// The a=curr lines of the previous description that the wanted one says nothing about.
void carryCurrent(const SDPMediaDesc &previous, const SDPMediaDesc &wanted,
                  Growing<SDPAttr> &lines);

} // namespace sdpline::negotiate
