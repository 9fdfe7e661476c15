/*
 * sdpnegotiate.h: offer and answer (RFC 3264) over decoded bodies, with a reason for every
 * decision. libsdpline_negotiate; C11 and C++20. sdpline/negotiate.hpp is its C++ API.
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
 *     for which there is no output; then nothing was changed, and every output is null.
 *  2. The local body describes what this side can do. Its o= and c= lines are those of this side.
 *     Each of its m= lines with a port other than 0 is a stream that can be accepted once, with its
 *     codecs, a=fmtp, b=, direction and other attributes. Lines of the offer are not copied into an
 *     answer, except where an RFC requires it.
 *  3. Reasons are numbered, and a number is never used again for another reason.
 *  4. Ownership. A returned body is released with SdpLibReleaseSdp, a report with
 *     SdpNegotiateReleaseReport. Each has its own memory block and refers to no other body.
 *  5. Input bodies are only read. A report pointer may be null if no report is wanted.
 *  6. Memory comes from the core services. There is no lock, no process-wide state and no
 *     exception: threads may make calls at the same time on different bodies.
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

/* One decision. */
typedef struct SdpNegotiateDecision {
    uint32_t ulReason;     /* number of the reason */
    uint32_t ulStream;     /* m= line, from 0; SDP_NEGOTIATE_NONE for the session */
    uint32_t ulPayload;    /* payload number, or SDP_NEGOTIATE_NONE */
    SipString strSentence; /* the whole sentence, for people */
} SdpNegotiateDecision;

/* One format that both sides can use. Each side sends with the number that the other one listed. */
typedef struct SdpNegotiateFormat {
    uint32_t ulSend; /* payload number to send with; SDP_NEGOTIATE_NONE if there are no numbers */
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
    uint32_t bConfirm; /* the peer asks for a confirmation when preconditions are met (a=conf) */
    /* In the order of the answer. The offerer sends the first of them; the answerer sends the one
     * that is first in the offer (RFC 3264 sections 7 and 6.1). */
    uint32_t ulNoOfFormats;
    SdpNegotiateFormat **ppstFormats;
} SdpNegotiateStream;

/* The decisions of a call. Streams are in the order of the m= lines. */
typedef struct SdpNegotiateReport {
    uint32_t ulNoOfDecisions;
    SdpNegotiateDecision **ppstDecisions;
    uint32_t ulNoOfStreams;
    SdpNegotiateStream **ppstStreams;
    /* 1 if a stream is accepted, or none was offered with a port; for a check, if there is no
     * fault. */
    uint32_t bAccepted;
    SDPMemCp *pstMemCp;
} SdpNegotiateReport;

/* A codec, for the comparison of two. */
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
    uint32_t bFirstOnly;  /* one codec only, with the telephone events of its clock rate */
    uint32_t bAvpForAvpf; /* a stream over AVPF may be answered by a local one over AVP */
    /* SdpNegotiateMakeAnswer: if every stream is rejected, the offer stays open, so that it can be
     * refused. */
    uint32_t bOpenIfRejected;
    /* Ports for streams that use a local m= line a second time, in the order of their use. */
    uint32_t ulNoOfPorts;
    const uint32_t *pulPorts;
    /* Called for each stream that is accepted. ulOwnPort is the port of the local m= line, 0 if it
     * is already in use. Returns the port of the stream, 0 for none. */
    uint32_t (*pfnPort)(void *pContext, uint32_t ulStream, uint32_t ulLocal, uint32_t ulOwnPort);
    /* Called if name, clock rate and channels of two codecs are equal. bSame is 1 if their
     * parameters are compatible by the built-in rules. Returns 1 if both are the same codec. */
    uint32_t (*pfnSame)(void *pContext, const SdpNegotiateCodec *pstOffered,
                        const SdpNegotiateCodec *pstLocal, uint32_t bSame);
    void *pContext;
} SdpNegotiateOptions;

#pragma pack(pop)

/* Returns the reason of a number; null for none. The numbers are below SDP_NEGOTIATE_REASONS and
 * have gaps. */
#define SDP_NEGOTIATE_REASONS 256u
SDPLINE_API const SdpNegotiateReason *SdpNegotiateGetReason(uint32_t ulNumber);

/* ---- Offer and answer ------------------------------------------------------------------------ */

/*
 * Makes the answer to an offer. pstPrevious is the last description that this side sent in an offer
 * or an answer of the session, or null: the answer has its o= line, with a version that is one
 * higher if the description changed. bAccepted 0 in the report means that every offered stream was
 * rejected: the answer may be sent, or the offer refused.
 */
SDPLINE_API SDPResult SdpNegotiateAnswer(const SdpLine *pstOffer, const SdpLine *pstLocal,
                                         const SdpLine *pstPrevious,
                                         const SdpNegotiateOptions *pstOptions,
                                         SdpLine **ppstAnswer, SdpNegotiateReport **ppstReport);

/* SdpNegotiateAgree: the side for which the streams are described. */
enum { SDP_NEGOTIATE_OFFERER = 1, SDP_NEGOTIATE_ANSWERER = 2 };

/* Reports for each stream what one side may now send and receive. An answer with fewer streams than
 * its offer rejects the others. */
SDPLINE_API SDPResult SdpNegotiateAgree(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                        uint32_t enSide, SdpNegotiateReport **ppstReport);

/*
 * Makes the next offer of a side whose last description is pstPrevious: the streams of pstWanted in
 * the m= lines that RFC 3264 section 8 assigns to them. No m= line is removed: the line of a stream
 * that is no longer wanted gets port 0, and keeps its media word, protocol and formats; a new
 * stream uses a line of port 0, or a line at the end. Streams of pstWanted with port 0 or a port
 * above 65535 are not wanted. A payload number that would change its codec is replaced in all lines
 * of its stream: by the number that the codec has in pstPrevious if no line of pstWanted has that
 * number, else by one from 96 to 127 that neither description has, or from 35 to 63 if those are
 * in use. If these are in use too, it stays.
 */
SDPLINE_API SDPResult SdpNegotiateNextOffer(const SdpLine *pstPrevious, const SdpLine *pstWanted,
                                            SdpLine **ppstOffer);

/* Makes a description of the capabilities of the local body, for the answer to an OPTIONS (RFC 3264
 * section 9): ports 0, t=0 0, formats with their attributes. The session id is that of pstLocal; it
 * must be unique. */
SDPLINE_API SDPResult SdpNegotiateCapabilities(const SdpLine *pstLocal, SdpLine **ppstBody);

/* Reports what is wrong with an answer, one decision for each fault. Additional formats in a line,
 * other payload numbers, and an m= line that is used again are legal. */
SDPLINE_API SDPResult SdpNegotiateCheck(const SdpLine *pstOffer, const SdpLine *pstAnswer,
                                        SdpNegotiateReport **ppstReport);

/* Reports what is wrong with a description that follows another one of the same side. */
SDPLINE_API SDPResult SdpNegotiateCheckNext(const SdpLine *pstPrevious, const SdpLine *pstNext,
                                            SdpNegotiateReport **ppstReport);

/* Releases a report and sets *ppstReport to null. A null argument or report is accepted. */
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
 * The state of one session: what was offered, answered and sent. A call in the wrong state returns
 * the number of its reason and changes nothing. The session keeps copies of the bodies that it is
 * given; bodies that a call returns in a pointer argument belong to the caller.
 */
SDPLINE_API SDPResult SdpNegotiateCreate(SdpNegotiator **ppstNegotiator);
SDPLINE_API void SdpNegotiateRelease(SdpNegotiator **ppstNegotiator);
SDPLINE_API uint32_t SdpNegotiateGetState(const SdpNegotiator *pstNegotiator);

/* The descriptions in force since the last final answer, null before the first one. They are valid
 * until the next call that changes the session. */
SDPLINE_API const SdpLine *SdpNegotiateGetLocal(const SdpNegotiator *pstNegotiator);
SDPLINE_API const SdpLine *SdpNegotiateGetRemote(const SdpNegotiator *pstNegotiator);

/* In state Stable: makes our offer. The first one is a copy of pstWanted; a later one is made as by
 * SdpNegotiateNextOffer from the description in force. Its version follows that of the last
 * description that was sent, even if that was refused. */
SDPLINE_API SDPResult SdpNegotiateOffer(SdpNegotiator *pstNegotiator, const SdpLine *pstWanted,
                                        SdpLine **ppstOffer);

/* In state HaveLocalOffer: takes the peer's answer. A provisional answer does not change the state,
 * and may be followed by others. The report has the streams of this side and, as decisions, the
 * faults of the answer. */
SDPLINE_API SDPResult SdpNegotiateReceiveAnswer(SdpNegotiator *pstNegotiator,
                                                const SdpLine *pstAnswer, uint32_t bProvisional,
                                                SdpNegotiateReport **ppstReport);

/* In state HaveLocalOffer: the peer refused our offer. The descriptions in force stay; the version
 * of the offer is not used again. */
SDPLINE_API SDPResult SdpNegotiateRefused(SdpNegotiator *pstNegotiator);

/* In state Stable: takes the peer's offer. In state HaveLocalOffer the result is that of glare. */
SDPLINE_API SDPResult SdpNegotiateReceiveOffer(SdpNegotiator *pstNegotiator,
                                               const SdpLine *pstOffer);

/* In state HaveRemoteOffer: makes our answer. After a provisional one the offer stays open. */
SDPLINE_API SDPResult SdpNegotiateMakeAnswer(SdpNegotiator *pstNegotiator, const SdpLine *pstLocal,
                                             const SdpNegotiateOptions *pstOptions,
                                             uint32_t bProvisional, SdpLine **ppstAnswer,
                                             SdpNegotiateReport **ppstReport);

/* In state HaveRemoteOffer: we refuse the peer's offer. The descriptions in force stay. */
SDPLINE_API SDPResult SdpNegotiateRefuse(SdpNegotiator *pstNegotiator);

#ifdef __cplusplus
}
#endif

#endif
