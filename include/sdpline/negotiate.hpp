/*
 * negotiate.hpp: offer and answer (RFC 3264) over bodies, with a reason for every decision.
 * Header-only over libsdpline_negotiate. The conventions of sdpline.hpp and of sdpnegotiate.h
 * apply; the latter describes each operation in more detail.
 *
 *     const auto answer = sdpline::answer(offer, local);
 *     if (!answer) {
 *         return answer.error().message();
 *     }
 *     for (const sdpline::Decision &decision : answer->decisions) {
 *         log(decision.sentence); // stream 2 rejected: no common format (...)
 *     }
 *     send(answer->body.encode());
 */
#ifndef SDPLINE_NEGOTIATE_HPP
#define SDPLINE_NEGOTIATE_HPP

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.hpp"
#include "sdpline/sdpnegotiate.h"

namespace sdpline {
inline namespace v1 {

/* ---- Decisions ------------------------------------------------------------------------------- */

enum class DecisionKind : std::uint32_t {
    Refusal = SDP_NEGOTIATE_REFUSAL,
    Rejection = SDP_NEGOTIATE_REJECTION,
    Note = SDP_NEGOTIATE_NOTE,
    Fault = SDP_NEGOTIATE_FAULT
};

/* One decision. The texts of the reason are static. */
struct Decision {
    std::uint32_t reason = 0; /* number of the reason, never used again for another one */
    DecisionKind kind = DecisionKind::Note;
    std::string_view name;                /* "NoCommonFormat" */
    std::string_view rfc;                 /* "RFC 3264" */
    std::string_view section;             /* "6" */
    std::optional<std::uint32_t> stream;  /* m= line, from 0; nothing for the session */
    std::optional<std::uint32_t> payload; /* payload number */
    std::string sentence;
};

/* ---- Streams --------------------------------------------------------------------------------- */

/* A format that both sides can use. */
struct NegotiatedFormat {
    std::optional<std::uint32_t> send;    /* the number that the peer listed */
    std::optional<std::uint32_t> receive; /* the number that we listed */
    std::string name;                     /* encoding name, or the word of the m= line */
    std::uint32_t clockRate = 0;
    std::uint32_t channels = 0;
    std::string sendParameters;    /* a=fmtp of the peer */
    std::string receiveParameters; /* our a=fmtp */
};

enum class Preconditions : std::uint32_t {
    Absent = SDP_NEGOTIATE_PRECONDITIONS_ABSENT,
    Met = SDP_NEGOTIATE_PRECONDITIONS_MET,
    Unmet = SDP_NEGOTIATE_PRECONDITIONS_UNMET
};

/* One m= line, as one side sees it. */
struct NegotiatedStream {
    bool accepted = false;
    std::uint32_t reason = 0;           /* of a rejected stream */
    std::optional<std::uint32_t> local; /* m= line of the local body */
    Direction direction = Direction::Inactive;
    bool peerHeld = false; /* the peer's address is 0.0.0.0 or "::" */
    bool held = false;     /* our address is 0.0.0.0 or "::" */
    /* In the order of the answer. The offerer sends the first one; the answerer sends the one that
     * is first in the offer. */
    std::vector<NegotiatedFormat> formats;
    std::optional<std::uint32_t> sendPTime;
    std::optional<std::uint32_t> receivePTime;
    std::optional<std::uint32_t> sendMaxPTime;
    std::optional<std::uint32_t> receiveMaxPTime;
    Preconditions preconditions = Preconditions::Absent;
    bool confirm = false; /* the peer asks for a confirmation when preconditions are met */

    /* Whether media may be sent; whether media must be expected. */
    bool sends() const {
        return !peerHeld && (direction == Direction::SendRecv || direction == Direction::SendOnly);
    }
    bool receives() const {
        return !held && (direction == Direction::SendRecv || direction == Direction::RecvOnly);
    }
};

/* What both sides may now send and receive. */
struct Agreement {
    std::vector<NegotiatedStream> streams;
    std::vector<Decision> decisions;
    bool accepted = true; /* a stream is accepted, or none was offered with a port */
};

/* An answer, the streams as its sender sees them, and the decisions. If `accepted` is false, all
 * offered streams are rejected. */
struct Answer {
    Body body;
    std::vector<NegotiatedStream> streams;
    std::vector<Decision> decisions;
    bool accepted = true;
};

enum class Side : std::uint32_t {
    Offerer = SDP_NEGOTIATE_OFFERER,
    Answerer = SDP_NEGOTIATE_ANSWERER
};

/* A codec, for AnswerOptions::same. */
struct Codec {
    std::uint32_t payload;
    std::string_view name;
    std::uint32_t clockRate;
    std::uint32_t channels;
    std::string_view parameters;
};

/* Choices of the answerer. */
struct AnswerOptions {
    bool ourOrder = false;   /* formats in our order, not in the offer's */
    bool firstOnly = false;  /* one codec only, with the telephone events of its clock rate */
    bool avpForAvpf = false; /* RTP/AVPF may be answered by RTP/AVP */
    /* Negotiator::answer: if every stream is rejected, the offer stays open, so that it can be
     * refused. */
    bool openIfRejected = false;
    /* Ports for streams that use a local m= line a second time. */
    std::vector<std::uint32_t> ports = {};
    /* Called instead, for each accepted stream, with the index of the stream, the index of the
     * local m= line, and its port, 0 if that is in use. Returns the port, 0 for none. */
    std::function<std::uint32_t(std::uint32_t, std::uint32_t, std::uint32_t)> port = nullptr;
    /* Whether two codecs with equal name, clock rate and channels are the same; the last argument
     * is the result of the built-in rules. */
    std::function<bool(const Codec &, const Codec &, bool)> same = nullptr;
};

namespace negotiate_detail {

struct ReleaseReport {
    void operator()(SdpNegotiateReport *report) const { SdpNegotiateReleaseReport(&report); }
};
using Report = std::unique_ptr<SdpNegotiateReport, ReleaseReport>;

inline std::string_view viewOf(const SipString &text) {
    return text.pcData != nullptr ? std::string_view(text.pcData, text.ulLen) : std::string_view();
}

inline std::optional<std::uint32_t> given(std::uint32_t number) {
    return number != SDP_NEGOTIATE_NONE ? std::optional(number) : std::nullopt;
}

inline Error errorOf(SDPResult result) {
    const SdpNegotiateReason *const reason = SdpNegotiateGetReason(result);
    Error error;
    const bool memory = reason != nullptr && std::string_view(reason->pcName) == "NoMemory";
    error.fault = memory ? Fault::Memory : Fault::Argument;
    error.sentence = reason != nullptr ? reason->pcSentence : "the negotiation failed";
    error.check = reason != nullptr ? reason->pcName : "";
    return error;
}

/* Sets a target that is empty. Most parameters are empty too, and then nothing is called. */
inline void setText(std::string &target, const SipString &text) {
    if (text.pcData != nullptr && text.ulLen != 0) {
        target = std::string(text.pcData, text.ulLen);
    }
}

/* Decisions with the same reason often follow each other: the sizes of its texts are then reused.
 */
inline std::vector<Decision> decisionsOf(const SdpNegotiateReport &report) {
    std::vector<Decision> decisions;
    decisions.reserve(report.ulNoOfDecisions);
    for (std::uint32_t i = 0; i < report.ulNoOfDecisions; ++i) {
        const SdpNegotiateDecision &one = *report.ppstDecisions[i];
        Decision &decision = decisions.emplace_back();
        decision.reason = one.ulReason;
        if (i != 0 && decisions[i - 1].reason == one.ulReason) {
            const Decision &before = decisions[i - 1];
            decision.kind = before.kind;
            decision.name = before.name;
            decision.rfc = before.rfc;
            decision.section = before.section;
        } else {
            const SdpNegotiateReason &reason = *SdpNegotiateGetReason(one.ulReason);
            decision.kind = DecisionKind{reason.enKind};
            decision.name = reason.pcName;
            decision.rfc = reason.pcRfc;
            decision.section = reason.pcSection;
        }
        decision.stream = given(one.ulStream);
        decision.payload = given(one.ulPayload);
        setText(decision.sentence, one.strSentence);
    }
    return decisions;
}

inline void setStream(const SdpNegotiateStream &record, NegotiatedStream &stream) {
    stream.accepted = record.bAccepted != 0;
    stream.reason = record.ulReason;
    stream.local = given(record.ulLocal);
    stream.direction = Direction{record.enDirection};
    stream.peerHeld = record.bPeerHeld != 0;
    stream.held = record.bHeld != 0;
    stream.sendPTime = given(record.ulSendPTime);
    stream.receivePTime = given(record.ulReceivePTime);
    stream.sendMaxPTime = given(record.ulSendMaxPTime);
    stream.receiveMaxPTime = given(record.ulReceiveMaxPTime);
    stream.preconditions = Preconditions{record.enPreconditions};
    stream.confirm = record.bConfirm != 0;
    stream.formats.reserve(record.ulNoOfFormats);
    for (std::uint32_t i = 0; i < record.ulNoOfFormats; ++i) {
        const SdpNegotiateFormat &one = *record.ppstFormats[i];
        NegotiatedFormat &format = stream.formats.emplace_back();
        format.send = given(one.ulSend);
        format.receive = given(one.ulReceive);
        setText(format.name, one.strName);
        format.clockRate = one.ulClockRate;
        format.channels = one.ulChannels;
        setText(format.sendParameters, one.strSendParameters);
        setText(format.receiveParameters, one.strReceiveParameters);
    }
}

inline std::vector<NegotiatedStream> streamsOf(const SdpNegotiateReport &report) {
    std::vector<NegotiatedStream> streams;
    streams.reserve(report.ulNoOfStreams);
    for (std::uint32_t i = 0; i < report.ulNoOfStreams; ++i) {
        setStream(*report.ppstStreams[i], streams.emplace_back());
    }
    return streams;
}

inline Agreement agreementOf(const SdpNegotiateReport &report) {
    return {streamsOf(report), decisionsOf(report), report.bAccepted != 0};
}

inline Answer answerOf(SdpLine *body, const SdpNegotiateReport &report) {
    return {Body::adopt(body), streamsOf(report), decisionsOf(report), report.bAccepted != 0};
}

inline Codec codecOf(const SdpNegotiateCodec &codec) {
    return {codec.ulPayload, viewOf(codec.strName), codec.ulClockRate, codec.ulChannels,
            viewOf(codec.strParameters)};
}

inline std::uint32_t callPort(void *context, std::uint32_t stream, std::uint32_t local,
                              std::uint32_t own) {
    return static_cast<const AnswerOptions *>(context)->port(stream, local, own);
}

inline std::uint32_t callSame(void *context, const SdpNegotiateCodec *offered,
                              const SdpNegotiateCodec *ours, std::uint32_t same) {
    const auto &rule = static_cast<const AnswerOptions *>(context)->same;
    return rule(codecOf(*offered), codecOf(*ours), same != 0) ? 1 : 0;
}

inline SdpNegotiateOptions optionsOf(const AnswerOptions &options) {
    SdpNegotiateOptions record = {};
    record.bOurOrder = options.ourOrder ? 1 : 0;
    record.bFirstOnly = options.firstOnly ? 1 : 0;
    record.bAvpForAvpf = options.avpForAvpf ? 1 : 0;
    record.bOpenIfRejected = options.openIfRejected ? 1 : 0;
    record.ulNoOfPorts = static_cast<std::uint32_t>(options.ports.size());
    record.pulPorts = options.ports.data();
    record.pfnPort = options.port ? callPort : nullptr;
    record.pfnSame = options.same ? callSame : nullptr;
    record.pContext = const_cast<AnswerOptions *>(&options);
    return record;
}

} // namespace negotiate_detail

/* ---- Operations ------------------------------------------------------------------------------ */

/* Makes the answer to an offer. `previous` is the last description that we sent in the session, in
 * an offer or an answer. */
inline Result<Answer> answer(const Body &offer, const Body &local, const Body *previous = nullptr,
                             const AnswerOptions &options = {}) {
    SdpLine *body = nullptr;
    SdpNegotiateReport *made = nullptr;
    const SdpNegotiateOptions record = negotiate_detail::optionsOf(options);
    if (const SDPResult result = SdpNegotiateAnswer(
            offer.record(), local.record(), previous != nullptr ? previous->record() : nullptr,
            &record, &body, &made)) {
        return negotiate_detail::errorOf(result);
    }
    const negotiate_detail::Report report(made);
    return negotiate_detail::answerOf(body, *report);
}

/* What both sides may now send and receive, as one side sees it. */
inline Result<Agreement> agree(const Body &offer, const Body &answer, Side side = Side::Answerer) {
    SdpNegotiateReport *made = nullptr;
    if (const SDPResult result = SdpNegotiateAgree(offer.record(), answer.record(),
                                                   static_cast<std::uint32_t>(side), &made)) {
        return negotiate_detail::errorOf(result);
    }
    const negotiate_detail::Report report(made);
    return negotiate_detail::agreementOf(*report);
}

/* Makes the next offer of a side whose last description is `previous`, with the streams of
 * `wanted`. */
inline Result<Body> nextOffer(const Body &previous, const Body &wanted) {
    SdpLine *body = nullptr;
    if (const SDPResult result = SdpNegotiateNextOffer(previous.record(), wanted.record(), &body)) {
        return negotiate_detail::errorOf(result);
    }
    return Body::adopt(body);
}

/* Makes a description of our capabilities, for the answer to an OPTIONS (RFC 3264 section 9). */
inline Result<Body> capabilities(const Body &local) {
    SdpLine *body = nullptr;
    if (const SDPResult result = SdpNegotiateCapabilities(local.record(), &body)) {
        return negotiate_detail::errorOf(result);
    }
    return Body::adopt(body);
}

namespace negotiate_detail {

/* If a check cannot be made, the reason is its only decision. */
inline std::vector<Decision> checked(SDPResult result, SdpNegotiateReport *made) {
    const Report report(made);
    if (result == 0) {
        return decisionsOf(*report);
    }
    const SdpNegotiateReason &reason = *SdpNegotiateGetReason(result);
    return {{result, DecisionKind{reason.enKind}, reason.pcName, reason.pcRfc, reason.pcSection,
             std::nullopt, std::nullopt, reason.pcSentence}};
}

} // namespace negotiate_detail

/* The faults of an answer; none for a correct one. */
inline std::vector<Decision> check(const Body &offer, const Body &answer) {
    SdpNegotiateReport *report = nullptr;
    const SDPResult result = SdpNegotiateCheck(offer.record(), answer.record(), &report);
    return negotiate_detail::checked(result, report);
}

/* The faults of a description that follows another one of the same side. */
inline std::vector<Decision> checkNext(const Body &previous, const Body &next) {
    SdpNegotiateReport *report = nullptr;
    const SDPResult result = SdpNegotiateCheckNext(previous.record(), next.record(), &report);
    return negotiate_detail::checked(result, report);
}

/*
 * The state of one session. A call in the wrong state returns an error and changes nothing.
 *
 *     sdpline::Negotiator session;
 *     session.receiveOffer(offer);              // of the INVITE
 *     auto answer = session.answer(local);      // of the 200
 *     ...
 *     auto hold = session.offer(onHold);        // of our re-INVITE
 *     session.receiveAnswer(theirs);            // or session.refused()
 */
class Negotiator {
public:
    enum class State : std::uint32_t {
        Stable = SDP_NEGOTIATE_STABLE,
        HaveLocalOffer = SDP_NEGOTIATE_HAVE_LOCAL_OFFER,
        HaveRemoteOffer = SDP_NEGOTIATE_HAVE_REMOTE_OFFER
    };

    /* If memory is exhausted here, every later call returns an error. */
    Negotiator() {
        SdpNegotiator *made = nullptr;
        SdpNegotiateCreate(&made);
        session_.reset(made);
    }

    State state() const {
        return session_ ? State{SdpNegotiateGetState(session_.get())} : State::Stable;
    }

    /* Makes our offer. */
    Result<Body> offer(const Body &wanted) {
        SdpLine *body = nullptr;
        if (const SDPResult result = SdpNegotiateOffer(session_.get(), wanted.record(), &body)) {
            return negotiate_detail::errorOf(result);
        }
        return Body::adopt(body);
    }

    /* Takes the peer's answer, provisional or final; the decisions are its faults. */
    Result<Agreement> receiveAnswer(const Body &answer, bool provisional = false) {
        SdpNegotiateReport *made = nullptr;
        if (const SDPResult result = SdpNegotiateReceiveAnswer(session_.get(), answer.record(),
                                                               provisional ? 1 : 0, &made)) {
            return negotiate_detail::errorOf(result);
        }
        const negotiate_detail::Report report(made);
        return negotiate_detail::agreementOf(*report);
    }

    /* The peer refused our offer. */
    Status refused() { return statusOf(SdpNegotiateRefused(session_.get())); }

    /* Takes the peer's offer. While our offer waits for its answer, returns an error with the check
     * "Glare". */
    Status receiveOffer(const Body &offer) {
        return statusOf(SdpNegotiateReceiveOffer(session_.get(), offer.record()));
    }

    /* Makes our answer, provisional or final. */
    Result<Answer> answer(const Body &local, const AnswerOptions &options = {},
                          bool provisional = false) {
        SdpLine *body = nullptr;
        SdpNegotiateReport *made = nullptr;
        const SdpNegotiateOptions record = negotiate_detail::optionsOf(options);
        if (const SDPResult result = SdpNegotiateMakeAnswer(session_.get(), local.record(), &record,
                                                            provisional ? 1 : 0, &body, &made)) {
            return negotiate_detail::errorOf(result);
        }
        const negotiate_detail::Report report(made);
        return negotiate_detail::answerOf(body, *report);
    }

    /* We refuse the peer's offer. */
    Status refuse() { return statusOf(SdpNegotiateRefuse(session_.get())); }

    /* The descriptions in force, null before the first final answer. They are valid until the next
     * call that changes the session. */
    const SdpLine *local() const { return SdpNegotiateGetLocal(session_.get()); }
    const SdpLine *remote() const { return SdpNegotiateGetRemote(session_.get()); }

private:
    struct Release {
        void operator()(SdpNegotiator *session) const { SdpNegotiateRelease(&session); }
    };

    static Status statusOf(SDPResult result) {
        return result == 0 ? Status() : Status(negotiate_detail::errorOf(result));
    }

    std::unique_ptr<SdpNegotiator, Release> session_;
};

} // namespace v1
} // namespace sdpline

#endif
