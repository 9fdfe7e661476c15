/*
 * sdpnegotiate.h: offer and answer (RFC 3264) over decoded bodies, with the reason of every
 * decision. libsdpline_negotiate; C11 and C++20. sdpline/negotiate.hpp is the same in C++.
 *
 *     SdpLine *pstAnswer = NULL;
 *     SdpNegotiateReport *pstReport = NULL;
 *     if (SdpNegotiateAnswer(pstOffer, pstLocal, NULL, NULL, &pstAnswer, &pstReport) == 0) {
 *         ... send pstAnswer, open the streams that pstReport lists, log its decisions ...
 *         SdpNegotiateReleaseReport(&pstReport);
 *         SdpLibReleaseSdp(&pstAnswer);
 *     }
 *
 * Conventions
 *  1. Results. 0 is success. Any other result is the number of the reason (SdpNegotiateGetReason)
 *     why there is no output; nothing was changed then, and every output is null.
 *  2. The local body describes what this side can do. Its o= and c= lines are this side's. Each of
 *     its m= lines with a port that is not 0 is one stream that can be taken, once, with its
 *     codecs, a=fmtp, b=, direction and other attributes. Lines of the offer are never copied into
 *     an answer, except where an RFC says so.
 *  3. Reasons are numbered, and a number is never used again for another one.
 *  4. Ownership. A body that is returned is released with SdpLibReleaseSdp, a report with
 *     SdpNegotiateReleaseReport. Both have a memory block and refer to no other body.
 *  5. Input bodies are only read. A report pointer may be null where no report is wanted.
 *  6. Memory comes from the core services. No lock, no process-wide state, no exception: calls on
 *     different bodies may run beside each other.
 *  7. Streams are counted from 0 in records and from 1 in sentences.
 */
#ifndef SDPLINE_SDPNEGOTIATE_H
#define SDPLINE_SDPNEGOTIATE_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

#define SDP_NEGOTIATE_NONE 0xFFFFFFFFu /* no stream, no payload number, no time */

/* ---- Reasons --------------------------------------------------------------------------------- */

/* SdpNegotiateReason.enKind */
enum {
    SDP_NEGOTIATE_REFUSAL = 1,   /* a call has no output */
    SDP_NEGOTIATE_REJECTION = 2, /* a stream gets port 0 in the answer */
    SDP_NEGOTIATE_NOTE = 3,      /* what was decided about a stream, a format or a line */
    SDP_NEGOTIATE_FAULT = 4      /* what is wrong with an answer or with a next offer */
};

#pragma pack(push, 4)

/* One row of the table of reasons. All text is static. */
typedef struct SdpNegotiateReason {
    uint32_t ulNumber;
    uint32_t enKind;
    const char *pcName;     /* "NoCommonFormat" */
    const char *pcRfc;      /* "RFC 3264" */
    const char *pcSection;  /* "6" */
    const char *pcSentence; /* "no common format" */
} SdpNegotiateReason;

/* One decision, as it was made. */
typedef struct SdpNegotiateDecision {
    uint32_t ulReason;     /* number of the reason */
    uint32_t ulStream;     /* m= line, from 0; SDP_NEGOTIATE_NONE for the session */
    uint32_t ulPayload;    /* payload number, or SDP_NEGOTIATE_NONE */
    SipString strSentence; /* the whole sentence, for people */
} SdpNegotiateDecision;

/* One format that both sides can use. Each side sends under the number that the other one listed.
 */
typedef struct SdpNegotiateFormat {
    uint32_t ulSend;    /* payload number to send under; SDP_NEGOTIATE_NONE without numbers */
    uint32_t ulReceive; /* payload number to expect */
    SipString strName;  /* encoding name, or the word of the m= line: "t38" */
    uint32_t ulClockRate;
    uint32_t ulChannels;
    SipString strSendParameters;    /* a=fmtp of the peer: what it wants to receive */
    SipString strReceiveParameters; /* a=fmtp of this side */
} SdpNegotiateFormat;

/* SdpNegotiateStream.enPreconditions (RFC 3312) */
enum {
    SDP_NEGOTIATE_PRECONDITIONS_ABSENT = 0,
    SDP_NEGOTIATE_PRECONDITIONS_MET = 1,
    SDP_NEGOTIATE_PRECONDITIONS_UNMET = 2
};

/* One m= line, as one side sees it. */
typedef struct SdpNegotiateStream {
    uint32_t bAccepted;
    uint32_t ulReason;       /* why it was rejected; 0 for an accepted stream */
    uint32_t ulLocal;        /* m= line of the local body, or SDP_NEGOTIATE_NONE */
    uint32_t enDirection;    /* SDP_ATTR_SENDRECV ... SDP_ATTR_INACTIVE */
    uint32_t bPeerHeld;      /* the peer's address is 0.0.0.0 or "::": nothing is sent to it */
    uint32_t bHeld;          /* this side's address is 0.0.0.0 or "::" */
    uint32_t ulSendPTime;    /* a=ptime of the peer in ms, or SDP_NEGOTIATE_NONE */
    uint32_t ulReceivePTime; /* a=ptime of this side */
    uint32_t ulSendMaxPTime; /* a=maxptime of the peer, or SDP_NEGOTIATE_NONE */
    uint32_t ulReceiveMaxPTime;
    uint32_t enPreconditions;
    uint32_t bConfirm; /* the peer asks to be told when preconditions are met (a=conf) */
    /* In the order of the answer. The offerer sends the first of them; the answerer the one that
     * comes first in the offer (RFC 3264 sections 7 and 6.1). */
    uint32_t ulNoOfFormats;
    SdpNegotiateFormat **ppstFormats;
} SdpNegotiateStream;

/* What a call decided. Lists are in the order of the m= lines, and of the decisions. */
typedef struct SdpNegotiateReport {
    uint32_t ulNoOfDecisions;
    SdpNegotiateDecision **ppstDecisions;
    uint32_t ulNoOfStreams;
    SdpNegotiateStream **ppstStreams;
    /* A stream is accepted, or none was offered with a port; of a check: there is no fault. */
    uint32_t bAccepted;
    SDPMemCp *pstMemCp;
} SdpNegotiateReport;

/* A codec as the rule that compares two of them sees it. */
typedef struct SdpNegotiateCodec {
    uint32_t ulPayload;
    SipString strName;
    uint32_t ulClockRate;
    uint32_t ulChannels;
    SipString strParameters; /* a=fmtp without the number; empty when there is none */
} SdpNegotiateCodec;

/* Choices of the answerer. All zero, or a null pointer, are the defaults. */
typedef struct SdpNegotiateOptions {
    uint32_t bOurOrder;   /* formats in the order of the local body, not of the offer */
    uint32_t bFirstOnly;  /* one codec, with the telephone events that go with it */
    uint32_t bAvpForAvpf; /* a stream over AVPF may be answered by a local one over AVP */
    /* SdpNegotiateMakeAnswer: with every stream rejected the offer stays open, to be refused. */
    uint32_t bOpenIfRejected;
    /* Ports for streams that take a local description a second time, used in their order. */
    uint32_t ulNoOfPorts;
    const uint32_t *pulPorts;
    /* Called for each stream that is accepted: ulOwnPort is the port of the local description, 0
     * when it is in use already. Returns the port of the stream, 0 for none. */
    uint32_t (*pfnPort)(void *pContext, uint32_t ulStream, uint32_t ulLocal, uint32_t ulOwnPort);
    /* Called where name, clock rate and channels of two codecs are equal; bSame is what the
     * built-in rules say of their parameters. Returns whether both are one. */
    uint32_t (*pfnSame)(void *pContext, const SdpNegotiateCodec *pstOffered,
                        const SdpNegotiateCodec *pstLocal, uint32_t bSame);
    void *pContext;
} SdpNegotiateOptions;

#pragma pack(pop)

/* Null for a number without a row. Rows are numbered with gaps, below SDP_NEGOTIATE_REASONS. */
#define SDP_NEGOTIATE_REASONS 256u
SDPLINE_API const SdpNegotiateReason *SdpNegotiateGetReason(uint32_t ulNumber);

/* ---- Offer and answer ------------------------------------------------------------------------ */

/*
 * The answer to an offer. pstPrevious is this side's last description of the session, sent in an
 * offer or in an answer, or null: the o= line continues it, and its version rises by one when the
 * description changes. A report with bAccepted 0 says that every offered stream was rejected: the
 * answer may be sent, or the offer refused.
 */
SDPLINE_API SDPResult SdpNegotiateAnswer(const SdpLine *pstOffer, const SdpLine *pstLocal,
                                         const SdpLine *pstPrevious,
                                         const SdpNegotiateOptions *pstOptions,
                                         SdpLine **ppstAnswer, SdpNegotiateReport **ppstReport);

/* SdpNegotiateAgree: whose view the streams are. */
enum { SDP_NEGOTIATE_OFFERER = 1, SDP_NEGOTIATE_ANSWERER = 2 };

/* What both may now send and receive, per stream, as one of them sees it. An answer with less
 * streams than its offer rejects the rest. */
SDPLINE_API SDPResult SdpNegotiateAgree(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                        uint32_t enSide, SdpNegotiateReport **ppstReport);

/*
 * The next offer of a side whose last description is pstPrevious: the streams of pstWanted in the
 * m= lines that RFC 3264 section 8 gives them. None vanishes: a stream that is no longer wanted has
 * port 0; a new one takes a line of port 0, or a line at the end. A stream of pstWanted with port 0
 * or one above 65535 is not wanted. Payload numbers that would change their codec are replaced, by
 * one from 96 to 127, or from 35 to 63 where those are in use. Lines that are not wanted keep their
 * media word, protocol and formats.
 */
SDPLINE_API SDPResult SdpNegotiateNextOffer(const SdpLine *pstPrevious, const SdpLine *pstWanted,
                                            SdpLine **ppstOffer);

/* A description of what the local body can do, for an OPTIONS (RFC 3264 section 9): ports 0, t=0 0,
 * formats with their attributes. The session id is that of pstLocal; it must be unique. */
SDPLINE_API SDPResult SdpNegotiateCapabilities(const SdpLine *pstLocal, SdpLine **ppstBody);

/* What is wrong with an answer: the decisions of the report, none for a good one. Extra formats in
 * a line, other payload numbers and a line that is used again are legal, and not listed. */
SDPLINE_API SDPResult SdpNegotiateCheck(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                        SdpNegotiateReport **ppstReport);

/* What is wrong with a description that follows another one of the same side. */
SDPLINE_API SDPResult SdpNegotiateCheckNext(const SdpLine *pstPrevious, const SdpLine *pstNext,
                                            SdpNegotiateReport **ppstReport);

/* Releases a report and nulls *ppstReport. A null argument or report is left alone. */
SDPLINE_API void SdpNegotiateReleaseReport(SdpNegotiateReport **ppstReport);

/* ---- The state of one session ---------------------------------------------------------------- */

/* SdpNegotiateGetState */
enum {
    SDP_NEGOTIATE_STABLE = 1,
    SDP_NEGOTIATE_HAVE_LOCAL_OFFER = 2, /* ours was sent and has no final answer */
    SDP_NEGOTIATE_HAVE_REMOTE_OFFER = 3 /* theirs was received and has no final answer */
};

typedef struct SdpNegotiator SdpNegotiator;

/*
 * One session: what was offered, answered and sent. A call in the wrong state returns the number of
 * its reason and changes nothing. Bodies that a call returns are copies and the caller's; those
 * that it takes are copied.
 */
SDPLINE_API SDPResult SdpNegotiateCreate(SdpNegotiator **ppstNegotiator);
SDPLINE_API void SdpNegotiateRelease(SdpNegotiator **ppstNegotiator);
SDPLINE_API uint32_t SdpNegotiateGetState(const SdpNegotiator *pstNegotiator);

/* The descriptions in force since the last final answer, null before it. They live until the next
 * call that changes the session. */
SDPLINE_API const SdpLine *SdpNegotiateGetLocal(const SdpNegotiator *pstNegotiator);
SDPLINE_API const SdpLine *SdpNegotiateGetRemote(const SdpNegotiator *pstNegotiator);

/* Stable: our offer, the first as it is wanted, a later one as by SdpNegotiateNextOffer over the
 * description in force. Its version follows the last one that was sent, a refused one included. */
SDPLINE_API SDPResult SdpNegotiateOffer(SdpNegotiator *pstNegotiator, const SdpLine *pstWanted,
                                        SdpLine **ppstOffer);

/* HaveLocalOffer: the peer's answer. A provisional one changes no state and may be followed by
 * others. The report has this side's streams and, as decisions, what is wrong with the answer. */
SDPLINE_API SDPResult SdpNegotiateReceiveAnswer(SdpNegotiator *pstNegotiator,
                                                const SdpLine *pstAnswer, uint32_t bProvisional,
                                                SdpNegotiateReport **ppstReport);

/* HaveLocalOffer: the peer refused our offer. What was in force stays so; the version of the offer
 * is used up. */
SDPLINE_API SDPResult SdpNegotiateRefused(SdpNegotiator *pstNegotiator);

/* Stable: the peer's offer. While ours waits for its answer, the result is that of glare. */
SDPLINE_API SDPResult SdpNegotiateReceiveOffer(SdpNegotiator *pstNegotiator,
                                               const SdpLine *pstOffer);

/* HaveRemoteOffer: our answer. A provisional one leaves the offer open. */
SDPLINE_API SDPResult SdpNegotiateMakeAnswer(SdpNegotiator *pstNegotiator, const SdpLine *pstLocal,
                                             const SdpNegotiateOptions *pstOptions,
                                             uint32_t bProvisional, SdpLine **ppstAnswer,
                                             SdpNegotiateReport **ppstReport);

/* HaveRemoteOffer: we refuse the peer's offer. What was in force stays so. */
SDPLINE_API SDPResult SdpNegotiateRefuse(SdpNegotiator *pstNegotiator);

#ifdef __cplusplus
}
#endif

#endif
