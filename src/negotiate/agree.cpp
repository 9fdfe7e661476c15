// The agreement: what both sides may send and receive after an answer (RFC 3264 section 7).
#include "negotiate/agree.hpp"

#include <cstring>

#include "negotiate/describe.hpp"
#include "negotiate/direction.hpp"
#include "negotiate/grouping.hpp"
#include "negotiate/origin.hpp"
#include "negotiate/precondition.hpp"

namespace sdpline::negotiate {

namespace {

constexpr SdpNegotiateOptions kDefaults = {};

void inheritDefinitions(Pairing &pairing) {
    for (uint32_t i = 0; i < pairing.ours.count; ++i) {
        Format &answered = pairing.ours.items[i];
        const auto place = pairing.offered.indexOf(answered.number);
        if (!answered.defined && place && pairing.offered.items[*place].defined) {
            const Format &offered = pairing.offered.items[*place];
            answered.name = offered.name;
            answered.clock = offered.clock;
            answered.channels = offered.channels;
            answered.role = offered.role;
            answered.defined = true;
        }
    }
}

// If several offered formats have the same partner, chooses the one with the partner's number, else
// the first one.
void choose(Pairing &pairing) {
    pairing.chosenCount = 0;
    std::memset(pairing.leftOut, 0, sizeof pairing.leftOut);
    for (uint32_t j = 0; j < pairing.ours.count; ++j) {
        uint8_t found = kNoPartner;
        for (uint32_t i = 0; i < pairing.offered.count; ++i) {
            const bool same = pairing.offered.items[i].number == pairing.ours.items[j].number;
            if (pairing.partner[i] == j && (found == kNoPartner || same)) {
                found = static_cast<uint8_t>(i);
            }
        }
        if (found != kNoPartner) {
            pairing.chosen[pairing.chosenCount++] = found;
        }
    }
}

class Agreement {
public:
    Agreement(const SdpLine &offer, const SdpLine &answer, bool offerer, Report &report)
        : offer_(offer), answer_(answer), offerer_(offerer), report_(report) {}

    // Returns whether a stream is accepted, or none was offered with a port.
    bool run() {
        const MediaSpan offered = mediaOf(offer_);
        const MediaSpan answered = mediaOf(answer_);
        bool any = false;
        bool wanted = false;
        for (uint32_t i = 0; i < offered.size(); ++i) {
            SdpNegotiateStream *const stream = report_.addStream();
            if (stream == nullptr) {
                return false;
            }
            const Reason reason = i < answered.size() ? agree(*offered[i], *answered[i], *stream)
                                                      : Reason::PeerRejected;
            stream->ulReason = resultOf(reason);
            stream->bAccepted = reason == Reason::None ? 1 : 0;
            any = any || reason == Reason::None;
            wanted = wanted || offered[i]->stMediaField.ulPort != 0;
        }
        return any || !wanted;
    }

private:
    Reason agree(const SDPMediaDesc &offered, const SDPMediaDesc &answered,
                 SdpNegotiateStream &stream) {
        const uint32_t port = answered.stMediaField.ulPort;
        if ((port == 0 && !isBundleOnly(answer_, answered, offer_)) || port > kHighestPort) {
            return offered.stMediaField.ulPort == 0 ? Reason::PortZero : Reason::PeerRejected;
        }
        pairAnswer(offered, answered, pairing_);
        if (pairing_.chosenCount == 0) {
            return Reason::NoCommonFormat;
        }
        const View theirs = {offer_, offered, pairing_.offered.kinds};
        const View ours = {answer_, answered, pairing_.ours.kinds};
        describeSides(offerer_ ? ours : theirs, offerer_ ? theirs : ours, stream);
        const PreconditionAnswer state = offerer_ ? agreePreconditions(answered, offered)
                                                  : agreePreconditions(offered, answered);
        stream.enPreconditions = state.state;
        stream.bConfirm = state.confirm ? 1 : 0;
        stream.enDirection = directionOf(flows(offered, answered));
        formats(stream);
        return Reason::None;
    }

    // The flows as the answerer sees them, or exchanged for the offerer. Both sides of a multicast
    // stream have the same view.
    uint32_t flows(const SDPMediaDesc &offered, const SDPMediaDesc &answered) const {
        const uint32_t theirs = flowsOf(offer_, offered);
        const uint32_t ours = flowsOf(answer_, answered);
        if (isMulticast(connectionOf(offer_, offered))) {
            return theirs & ours;
        }
        const uint32_t common = turned(theirs) & ours;
        return offerer_ ? turned(common) : common;
    }

    void formats(SdpNegotiateStream &stream) {
        SdpNegotiateFormat **const all = makeFormats(report_.arena, pairing_.chosenCount);
        if (all == nullptr) {
            return;
        }
        for (uint32_t i = 0; i < pairing_.chosenCount; ++i) {
            const Format &offered = pairing_.offered.items[pairing_.chosen[i]];
            const Format &answered = pairing_.ourOf(pairing_.chosen[i]);
            const Format &peer = offerer_ ? answered : offered;
            const Format &own = offerer_ ? offered : answered;
            describeFormat(report_.arena, offered, *all[i]);
            all[i]->ulSend = peer.number;
            all[i]->ulReceive = own.number;
            all[i]->strSendParameters = lent(report_.arena.copy(peer.parameters));
            all[i]->strReceiveParameters = lent(report_.arena.copy(own.parameters));
        }
        stream.ulNoOfFormats = pairing_.chosenCount;
        stream.ppstFormats = all;
    }

    const SdpLine &offer_;
    const SdpLine &answer_;
    bool offerer_;
    Report &report_;
    Pairing pairing_;
};

} // namespace

void pairAnswer(const SDPMediaDesc &offered, const SDPMediaDesc &answered, Pairing &pairing) {
    gather(offered, pairing.offered);
    gather(answered, pairing.ours);
    inheritDefinitions(pairing);
    pair(pairing, kDefaults);
    choose(pairing);
}

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateAgree(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                       uint32_t enSide, SdpNegotiateReport **ppstReport) {
    using namespace sdpline::negotiate;
    if (ppstReport == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstReport = nullptr;
    for (const Reason reason :
         {usable(pstOffer), usable(pstAnswer),
          enSide == SDP_NEGOTIATE_OFFERER || enSide == SDP_NEGOTIATE_ANSWERER ? Reason::None
                                                                              : Reason::NoSide}) {
        if (reason != Reason::None) {
            return resultOf(reason);
        }
    }
    Report report(true);
    const bool accepted =
        Agreement(*pstOffer, *pstAnswer, enSide == SDP_NEGOTIATE_OFFERER, report).run();
    return report.finish(accepted, ppstReport) ? 0 : resultOf(Reason::NoMemory);
}
