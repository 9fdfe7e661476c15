// The state of one session.
//
//              offer                          receiveOffer
//     Stable ---------> HaveLocalOffer     Stable ---------> HaveRemoteOffer
//        ^                    |               ^                     |
//        +--------------------+               +---------------------+
//          final answer, refused                final answer, refuse
#include "negotiate/draft.hpp"
#include "negotiate/nextoffer.hpp"
#include "negotiate/origin.hpp"

struct SdpNegotiator {
    SDPMemCp *block; // the negotiator lies in it
    uint32_t state;
    SdpLine *sent;   // our last description, in force or not
    SdpLine *offer;  // the one that waits for an answer
    SdpLine *local;  // in force
    SdpLine *remote; // in force
};

namespace sdpline::negotiate {

namespace {

void replace(SdpLine *&held, SdpLine *fresh) {
    SdpLibReleaseSdp(&held);
    held = fresh;
}

// Makes two copies of a body, or none.
Reason copyTwice(const SdpLine &body, SdpLine *&one, SdpLine *&two) {
    Reason reason = copyBody(body, &one);
    if (reason == Reason::None) {
        reason = copyBody(body, &two);
        if (reason != Reason::None) {
            SdpLibReleaseSdp(&one);
        }
    }
    return reason;
}

// The reason to refuse a call, which needs a session in a given state and a body.
Reason refusal(const SdpNegotiator *negotiator, uint32_t state, const SdpLine *body) {
    if (negotiator == nullptr) {
        return Reason::NoBody;
    }
    if (negotiator->state != state) {
        return Reason::WrongState;
    }
    return usable(body);
}

void settle(SdpNegotiator &session, SdpLine *local, SdpLine *remote) {
    replace(session.local, local);
    replace(session.remote, remote);
    replace(session.offer, nullptr);
    session.state = SDP_NEGOTIATE_STABLE;
}

void rollBack(SdpNegotiator &session) {
    replace(session.offer, nullptr);
    session.state = SDP_NEGOTIATE_STABLE;
}

Reason offer(SdpNegotiator &session, const SdpLine &wanted, SdpLine **result) {
    SdpLine *made = nullptr;
    SdpLine *sent = nullptr;
    SdpLine *waiting = nullptr;
    Reason reason = session.sent != nullptr
                        ? makeNextOffer(session.local, *session.sent, wanted, &made)
                        : copyBody(wanted, &made);
    if (reason == Reason::None) {
        reason = copyTwice(*made, sent, waiting);
    }
    if (reason != Reason::None) {
        SdpLibReleaseSdp(&made);
        return reason;
    }
    replace(session.sent, sent);
    replace(session.offer, waiting);
    session.state = SDP_NEGOTIATE_HAVE_LOCAL_OFFER;
    *result = made;
    return Reason::None;
}

// Makes the agreement as the offerer sees it, with the faults of the answer as its decisions.
Reason judge(const SdpLine &offer, const SdpLine &answer, SdpNegotiateReport **result) {
    SdpNegotiateReport *agreement = nullptr;
    SDPResult code = SdpNegotiateAgree(&offer, &answer, SDP_NEGOTIATE_OFFERER, &agreement);
    SdpNegotiateReport *faults = nullptr;
    if (code == 0) {
        code = SdpNegotiateCheck(&offer, &answer, &faults);
    }
    if (code == 0 && faults->ulNoOfDecisions != 0) {
        code = resultOf(Reason::NoMemory);
        SDPMemCp *const block = agreement->pstMemCp;
        const uint32_t count = faults->ulNoOfDecisions;
        auto **const list = static_cast<SdpNegotiateDecision **>(
            block->pfnAlloc(block, static_cast<uint32_t>(count * sizeof(SdpNegotiateDecision *))));
        bool all = list != nullptr;
        for (uint32_t i = 0; all && i < count; ++i) {
            const SdpNegotiateDecision &from = *faults->ppstDecisions[i];
            auto *const to = static_cast<SdpNegotiateDecision *>(
                block->pfnAlloc(block, sizeof(SdpNegotiateDecision)));
            all = to != nullptr;
            if (all) {
                *to = from;
                all = SipSmCopyString(block, &from.strSentence, &to->strSentence) == 0;
                list[i] = to;
            }
        }
        if (all) {
            code = 0;
            agreement->ulNoOfDecisions = count;
            agreement->ppstDecisions = list;
        }
    }
    SdpNegotiateReleaseReport(&faults);
    if (code != 0) {
        SdpNegotiateReleaseReport(&agreement);
    }
    *result = agreement;
    return static_cast<Reason>(code);
}

Reason receiveAnswer(SdpNegotiator &session, const SdpLine &answer, bool provisional,
                     SdpNegotiateReport **result) {
    SdpNegotiateReport *report = nullptr;
    if (const Reason reason = judge(*session.offer, answer, &report); reason != Reason::None) {
        return reason;
    }
    SdpLine *local = nullptr;
    SdpLine *remote = nullptr;
    if (!provisional) {
        Reason reason = copyBody(*session.offer, &local);
        if (reason == Reason::None) {
            reason = copyBody(answer, &remote);
        }
        if (reason != Reason::None) {
            SdpLibReleaseSdp(&local);
            SdpNegotiateReleaseReport(&report);
            return reason;
        }
        settle(session, local, remote);
    }
    *result = report;
    return Reason::None;
}

// Stores the answer as the last description that was sent and, when it is final, as the one in
// force.
Reason keepAnswer(SdpNegotiator &session, const SdpLine &answer, bool provisional) {
    SdpLine *sent = nullptr;
    SdpLine *inForce = nullptr;
    SdpLine *remote = nullptr;
    Reason reason = copyTwice(answer, sent, inForce);
    if (reason == Reason::None && !provisional) {
        reason = copyBody(*session.offer, &remote);
    }
    if (reason != Reason::None || provisional) {
        SdpLibReleaseSdp(&inForce);
    }
    if (reason != Reason::None) {
        SdpLibReleaseSdp(&sent);
        return reason;
    }
    replace(session.sent, sent);
    if (!provisional) {
        settle(session, inForce, remote);
    }
    return Reason::None;
}

Reason makeAnswer(SdpNegotiator &session, const SdpLine &local, const SdpNegotiateOptions *options,
                  bool provisional, SdpLine **result, SdpNegotiateReport **report) {
    SdpLine *answer = nullptr;
    Reason reason = static_cast<Reason>(
        SdpNegotiateAnswer(session.offer, &local, session.sent, options, &answer, report));
    if (reason != Reason::None) {
        return reason;
    }
    const bool open =
        options != nullptr && options->bOpenIfRejected != 0 && (*report)->bAccepted == 0;
    reason = open ? Reason::None : keepAnswer(session, *answer, provisional);
    if (reason != Reason::None) {
        SdpLibReleaseSdp(&answer);
        SdpNegotiateReleaseReport(report);
    }
    *result = answer;
    return reason;
}

} // namespace

} // namespace sdpline::negotiate

using namespace sdpline::negotiate;

extern "C" {

SDPResult SdpNegotiateCreate(SdpNegotiator **ppstNegotiator) {
    if (ppstNegotiator == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstNegotiator = nullptr;
    SDPMemCp *block = nullptr;
    if (SipMmCreateBufMem(sizeof(SdpNegotiator), sizeof(SdpNegotiator), &block) != 0) {
        return resultOf(Reason::NoMemory);
    }
    void *const memory = block->pfnAlloc(block, sizeof(SdpNegotiator));
    if (memory == nullptr) {
        SipMmReleaseBufMem(&block);
        return resultOf(Reason::NoMemory);
    }
    auto *const session = static_cast<SdpNegotiator *>(memory);
    *session = {block, SDP_NEGOTIATE_STABLE, nullptr, nullptr, nullptr, nullptr};
    *ppstNegotiator = session;
    return 0;
}

void SdpNegotiateRelease(SdpNegotiator **ppstNegotiator) {
    if (ppstNegotiator == nullptr || *ppstNegotiator == nullptr) {
        return;
    }
    SdpNegotiator &session = **ppstNegotiator;
    for (SdpLine **const body : {&session.sent, &session.offer, &session.local, &session.remote}) {
        SdpLibReleaseSdp(body);
    }
    SDPMemCp *block = session.block;
    *ppstNegotiator = nullptr;
    SipMmReleaseBufMem(&block);
}

uint32_t SdpNegotiateGetState(const SdpNegotiator *pstNegotiator) {
    return pstNegotiator != nullptr ? pstNegotiator->state : 0;
}

const SdpLine *SdpNegotiateGetLocal(const SdpNegotiator *pstNegotiator) {
    return pstNegotiator != nullptr ? pstNegotiator->local : nullptr;
}

const SdpLine *SdpNegotiateGetRemote(const SdpNegotiator *pstNegotiator) {
    return pstNegotiator != nullptr ? pstNegotiator->remote : nullptr;
}

SDPResult SdpNegotiateOffer(SdpNegotiator *pstNegotiator, const SdpLine *pstWanted,
                            SdpLine **ppstOffer) {
    if (ppstOffer == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstOffer = nullptr;
    const Reason reason = refusal(pstNegotiator, SDP_NEGOTIATE_STABLE, pstWanted);
    return resultOf(reason != Reason::None ? reason : offer(*pstNegotiator, *pstWanted, ppstOffer));
}

SDPResult SdpNegotiateReceiveAnswer(SdpNegotiator *pstNegotiator, const SdpLine *pstAnswer,
                                    uint32_t bProvisional, SdpNegotiateReport **ppstReport) {
    SdpNegotiateReport *report = nullptr;
    if (ppstReport != nullptr) {
        *ppstReport = nullptr;
    }
    Reason reason = refusal(pstNegotiator, SDP_NEGOTIATE_HAVE_LOCAL_OFFER, pstAnswer);
    if (reason == Reason::None) {
        reason = receiveAnswer(*pstNegotiator, *pstAnswer, bProvisional != 0, &report);
    }
    if (ppstReport != nullptr) {
        *ppstReport = report;
    } else {
        SdpNegotiateReleaseReport(&report);
    }
    return resultOf(reason);
}

SDPResult SdpNegotiateRefused(SdpNegotiator *pstNegotiator) {
    if (SdpNegotiateGetState(pstNegotiator) != SDP_NEGOTIATE_HAVE_LOCAL_OFFER) {
        return resultOf(pstNegotiator == nullptr ? Reason::NoBody : Reason::WrongState);
    }
    rollBack(*pstNegotiator);
    return 0;
}

SDPResult SdpNegotiateReceiveOffer(SdpNegotiator *pstNegotiator, const SdpLine *pstOffer) {
    Reason reason = refusal(pstNegotiator, SDP_NEGOTIATE_STABLE, pstOffer);
    if (SdpNegotiateGetState(pstNegotiator) == SDP_NEGOTIATE_HAVE_LOCAL_OFFER) {
        reason = Reason::Glare;
    }
    if (reason != Reason::None) {
        return resultOf(reason);
    }
    SdpLine *copy = nullptr;
    reason = copyBody(*pstOffer, &copy);
    if (reason == Reason::None) {
        replace(pstNegotiator->offer, copy);
        pstNegotiator->state = SDP_NEGOTIATE_HAVE_REMOTE_OFFER;
    }
    return resultOf(reason);
}

SDPResult SdpNegotiateMakeAnswer(SdpNegotiator *pstNegotiator, const SdpLine *pstLocal,
                                 const SdpNegotiateOptions *pstOptions, uint32_t bProvisional,
                                 SdpLine **ppstAnswer, SdpNegotiateReport **ppstReport) {
    SdpNegotiateReport *report = nullptr;
    if (ppstReport != nullptr) {
        *ppstReport = nullptr;
    }
    if (ppstAnswer == nullptr) {
        return resultOf(Reason::NoBody);
    }
    *ppstAnswer = nullptr;
    Reason reason = refusal(pstNegotiator, SDP_NEGOTIATE_HAVE_REMOTE_OFFER, pstLocal);
    if (reason == Reason::None) {
        reason = makeAnswer(*pstNegotiator, *pstLocal, pstOptions, bProvisional != 0, ppstAnswer,
                            &report);
    }
    if (ppstReport != nullptr) {
        *ppstReport = report;
    } else {
        SdpNegotiateReleaseReport(&report);
    }
    return resultOf(reason);
}

SDPResult SdpNegotiateRefuse(SdpNegotiator *pstNegotiator) {
    if (SdpNegotiateGetState(pstNegotiator) != SDP_NEGOTIATE_HAVE_REMOTE_OFFER) {
        return resultOf(pstNegotiator == nullptr ? Reason::NoBody : Reason::WrongState);
    }
    rollBack(*pstNegotiator);
    return 0;
}

} // extern "C"
