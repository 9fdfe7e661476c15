// The answer to an offer (RFC 3264 section 6).
#include "negotiate/answer.hpp"

#include "negotiate/attributes.hpp"
#include "negotiate/direction.hpp"
#include "negotiate/grouping.hpp"
#include "negotiate/origin.hpp"
#include "negotiate/precondition.hpp"
#include "negotiate/t38.hpp"

namespace sdpline::negotiate {

namespace {

// How many tests a local stream passed before it was refused: if no local stream fits, the reason
// of the one that passed most tests is reported.
uint32_t distanceOf(Reason reason) {
    switch (reason) {
    case Reason::None: return 0;
    case Reason::NoMediaType: return 1;
    case Reason::StreamsUsedUp: return 2;
    case Reason::NoProtocol: return 3;
    case Reason::NoLocalConnection: return 4;
    case Reason::NoCommonFormat: return 5;
    case Reason::OnlyAuxiliary: return 6;
    default: return 7;
    }
}

class Answerer {
public:
    Answerer(const AnswerInput &input, Report &report, BodyDraft &draft)
        : input_(input), options_(input.options), report_(report), draft_(draft),
          offered_(mediaOf(input.offer)), local_(mediaOf(input.local)) {}

    void run() {
        used_ = report_.arena.make<uint8_t>(local_.size());
        session();
        for (uint32_t i = 0; i < offered_.size(); ++i) {
            stream(i);
        }
        if (report_.arena.failed()) {
            return;
        }
        Grouping(input_.offer, input_.local, draft_, report_).run([this](uint32_t stream) {
            reject(stream, Reason::BundleRejected, {});
        });
    }

    // Returns whether a stream is accepted, or none was offered with a port.
    bool accepted() {
        bool any = false;
        for (const SDPMediaDesc *const one : offered_) {
            any = any || one->stMediaField.ulPort != 0;
        }
        for (const MediaDraft &one : draft_.media) {
            any = any && one.line.ulPort == 0;
        }
        if (any) {
            report_.add(Reason::AllRejected, kSession);
        }
        return !any;
    }

private:
    void session() {
        const SdpLine &local = input_.local;
        draft_.origin = input_.previous != nullptr ? input_.previous->stOrigin : local.stOrigin;
        draft_.name = local.strSessionName;
        draft_.connection = local.pstConnection;
        draft_.bandwidths = local.pstBandwidthList;
        draft_.times = &input_.offer.stTimeSet;
        draft_.zone = input_.offer.pstrTimeZone;
        for (const SDPAttr *const attribute : attributesOf(local.pstAttrList)) {
            sessionKinds_ |= kindOf(*attribute);
            if (passesThrough(*attribute, [this](auto name) { return offers(name); })) {
                draft_.attributes.add(*attribute);
            }
        }
        for (const SDPAttr *const attribute : attributesOf(input_.offer.pstAttrList)) {
            sessionKinds_ |= kindOf(*attribute);
            const Handling handling = handlingOf(*attribute);
            if (handling == Handling::Unknown || handling == Handling::Offered) {
                report_.add(Reason::AttributeDropped, kSession, otherName(*attribute));
            }
        }
    }

    // Whether the offer has the attribute, in the session or in a stream.
    bool offers(std::string_view name) const {
        bool found = find(attributesOf(input_.offer.pstAttrList), name) != nullptr;
        for (const SDPMediaDesc *const one : offered_) {
            found = found || find(attributesOf(one->pstAttrList), name) != nullptr;
        }
        return found;
    }

    void stream(uint32_t index) {
        draft_.media.add(MediaDraft(report_.arena));
        SdpNegotiateStream *const stream = report_.addStream();
        if (report_.arena.failed()) {
            return;
        }
        Match match;
        match.offered = offered_[index];
        match.stream = index;
        Text detail;
        Reason reason = offeredFault(*match.offered);
        if (reason == Reason::None) {
            reason = chooseLocal(match, detail);
        }
        if (reason == Reason::None) {
            reason = takePort(match);
        }
        if (reason != Reason::None) {
            reject(index, reason, detail.view());
            return;
        }
        stream->bAccepted = 1;
        stream->ulLocal = match.local;
        StreamWriter(input_, match, pairing_, report_, draft_.media[index], *stream).run();
    }

    // The reason for which no local body can accept an offered stream.
    Reason offeredFault(const SDPMediaDesc &offered) const {
        const uint32_t port = offered.stMediaField.ulPort;
        if (port == 0 && !isBundleOnly(input_.offer, offered, input_.local)) {
            return Reason::PortZero;
        }
        if (port > kHighestPort) {
            return Reason::PortTooHigh;
        }
        return connectionOf(input_.offer, offered) == nullptr ? Reason::NoConnection : Reason::None;
    }

    // Chooses the first local stream that fits.
    Reason chooseLocal(Match &match, Text &detail) {
        Reason best = Reason::NoMediaType;
        gather(*match.offered, pairing_.offered);
        match.multicast = isMulticast(connectionOf(input_.offer, *match.offered));
        for (uint32_t i = 0; i < local_.size(); ++i) {
            match.local = i;
            match.ours = local_[i];
            Text why;
            const Reason reason = fit(match, why);
            if (reason == Reason::None) {
                return reason;
            }
            if (distanceOf(reason) > distanceOf(best)) {
                best = reason;
                detail = why;
            }
        }
        if (best == Reason::NoMediaType) {
            detail << mediaWord(*match.offered);
        }
        return best;
    }

    Reason fit(Match &match, Text &why) {
        const SDPMediaDesc &offered = *match.offered;
        const SDPMediaDesc &ours = *match.ours;
        const uint32_t port = ours.stMediaField.ulPort;
        if (port == 0 || port > kHighestPort || !sameMedia(offered, ours)) {
            return Reason::NoMediaType;
        }
        if (used_[match.local] != 0 && options_.pfnPort == nullptr &&
            (options_.pulPorts == nullptr || nextPort_ >= options_.ulNoOfPorts)) {
            return Reason::StreamsUsedUp;
        }
        if (!fitsProtocol(offered, ours, options_.bAvpForAvpf != 0)) {
            why << "offered " << protocolWord(offered) << ", ours " << protocolWord(ours);
            return Reason::NoProtocol;
        }
        if (connectionOf(input_.local, ours) == nullptr) {
            return Reason::NoLocalConnection;
        }
        gather(ours, pairing_.ours);
        pair(pairing_, options_);
        const Reason common = select(pairing_, options_);
        if (common != Reason::None) {
            writeMismatch(pairing_.offered, pairing_.ours, "ours", why);
            return common;
        }
        return fitRest(match, why);
    }

    Reason fitRest(Match &match, Text &why) {
        const Sides sides = {input_.offer, *match.offered, input_.local, *match.ours};
        const Kinds kinds = pairing_.offered.kinds | pairing_.ours.kinds;
        match.crypto = chooseCrypto(sides);
        if (match.crypto.rejected != Reason::None) {
            writeSuites(sides, why);
            return match.crypto.rejected;
        }
        if (((kinds | sessionKinds_) & kSetupKinds) != 0) {
            match.setup = chooseSetup(sides);
        }
        if (match.setup.rejected != Reason::None) {
            writeSetups(sides, why);
            return match.setup.rejected;
        }
        if ((kinds & kFaxKinds) != 0) {
            const Reason fax = fitFax(*match.offered, *match.ours, why);
            if (fax != Reason::None) {
                return fax;
            }
        }
        if ((kinds & kPreconditionKinds) == 0) {
            return Reason::None;
        }
        const PreconditionAnswer preconditions =
            answerPreconditions(*match.offered, *match.ours, match.stream, report_, nullptr);
        why << preconditions.type;
        return preconditions.rejected;
    }

    // The port of the answer: the local port for the first use of a local stream, then the ports of
    // the list; or the result of the caller's function.
    Reason takePort(Match &match) {
        const uint32_t offered = match.offered->stMediaField.ulPort;
        uint8_t &used = used_[match.local];
        uint32_t port = used == 0 ? match.ours->stMediaField.ulPort : 0;
        if (match.multicast) {
            port = offered;
        } else if (options_.pfnPort != nullptr) {
            port = options_.pfnPort(options_.pContext, match.stream, match.local, port);
        } else if (port == 0) {
            port = options_.pulPorts[nextPort_++];
        }
        used = 1;
        match.port = port;
        return port == 0 || port > kHighestPort ? Reason::NoPort : Reason::None;
    }

    // Writes the offered m= line with port 0. If the session has no c= line it has one, which every
    // description needs (RFC 4566 section 5.7).
    void reject(uint32_t index, Reason reason, std::string_view detail) {
        MediaDraft &draft = draft_.media[index];
        draft = MediaDraft(report_.arena);
        draft.line = offered_[index]->stMediaField;
        draft.line.ulPort = 0;
        draft.line.ulNoOfPorts = 1;
        for (uint32_t i = 0; input_.local.pstConnection == nullptr && i < local_.size(); ++i) {
            if (draft.connection == nullptr) {
                draft.connection = local_[i]->pstConnection;
            }
        }
        report_.forget(index);
        report_.add(reason, index, detail);
        if (SdpNegotiateStream *const stream = report_.streamAt(index)) {
            Report::clear(*stream);
            stream->ulReason = resultOf(reason);
        }
    }

    const AnswerInput &input_;
    const SdpNegotiateOptions &options_;
    Report &report_;
    BodyDraft &draft_;
    MediaSpan offered_;
    MediaSpan local_;
    Kinds sessionKinds_ = 0; // of both sides
    uint8_t *used_ = nullptr;
    uint32_t nextPort_ = 0;
    Pairing pairing_;
};

Reason makeAnswer(const AnswerInput &input, SdpLine **answer, Report &report, bool &accepted) {
    BodyDraft draft(report.arena);
    Answerer answerer(input, report, draft);
    answerer.run();
    if (report.arena.failed()) {
        return Reason::NoMemory;
    }
    accepted = answerer.accepted();
    return finish(draft, input.previous, report, answer);
}

} // namespace

} // namespace sdpline::negotiate

extern "C" SDPResult SdpNegotiateAnswer(const SdpLine *pstOffer, const SdpLine *pstLocal,
                                        const SdpLine *pstPrevious,
                                        const SdpNegotiateOptions *pstOptions, SdpLine **ppstAnswer,
                                        SdpNegotiateReport **ppstReport) {
    using namespace sdpline::negotiate;
    if (ppstReport != nullptr) {
        *ppstReport = nullptr;
    }
    if (ppstAnswer == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstAnswer = nullptr;
    for (const Reason reason : {usable(pstOffer), usable(pstLocal),
                                pstPrevious != nullptr ? usable(pstPrevious) : Reason::None}) {
        if (reason != Reason::None) {
            return resultOf(reason);
        }
    }
    static constexpr SdpNegotiateOptions kDefaults = {};
    const AnswerInput input = {*pstOffer, *pstLocal, pstPrevious,
                               pstOptions != nullptr ? *pstOptions : kDefaults};
    Report report(ppstReport != nullptr);
    bool accepted = false;
    SdpLine *answer = nullptr;
    Reason reason = makeAnswer(input, &answer, report, accepted);
    if (reason == Reason::None && !report.finish(accepted, ppstReport)) {
        reason = Reason::NoMemory;
        SdpLibReleaseSdp(&answer);
    }
    *ppstAnswer = answer;
    return resultOf(reason);
}
