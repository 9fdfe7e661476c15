/* Offer and answer from C11: the header compiles, the records are packed, and everything is given
 * back. */
#include <sdpline/sdpnegotiate.h>

#include <stdio.h>
#include <string.h>

_Static_assert(sizeof(SdpNegotiateReason) == 8 + 4 * sizeof(char *), "packed");
_Static_assert(sizeof(SdpNegotiateDecision) == 12 + sizeof(SipString), "packed");
_Static_assert(sizeof(SdpNegotiateFormat) == 16 + 3 * sizeof(SipString), "packed");
_Static_assert(sizeof(SdpNegotiateStream) == 52 + sizeof(void *), "packed");
_Static_assert(sizeof(SdpNegotiateReport) == 12 + 3 * sizeof(void *), "packed");
_Static_assert(sizeof(SdpNegotiateCodec) == 12 + 2 * sizeof(SipString), "packed");
_Static_assert(sizeof(SdpNegotiateOptions) == 20 + 4 * sizeof(void *), "packed");

#define HEAD "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nc=IN IP4 192.0.2.1\r\nt=0 0\r\n"

static SdpLine *decoded(const char *text) {
    const SipString string = {(uint32_t)strlen(text), (char *)text};
    SdpLine *body = NULL;
    return SdpLibDecodeSdp(&string, &body) == 0 ? body : NULL;
}

static int failures = 0;

static void expect(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "not so: %s\n", what);
        ++failures;
    }
}

static void expectReport(const SdpNegotiateReport *report) {
    const SdpNegotiateStream *stream = report->ppstStreams[0];
    const SdpNegotiateDecision *last = report->ppstDecisions[report->ulNoOfDecisions - 1];
    const SdpNegotiateReason *reason = SdpNegotiateGetReason(last->ulReason);
    expect(report->ulNoOfStreams == 2, "two streams");
    expect(report->bAccepted == 1, "one is accepted");
    expect(stream->bAccepted == 1 && stream->enDirection == SDP_ATTR_RECVONLY, "to be received");
    expect(stream->ulNoOfFormats == 1 && stream->ppstFormats[0]->ulSend == 8, "PCMA");
    expect(report->ppstStreams[1]->ulReason == last->ulReason, "a reason for the other one");
    expect(strcmp(reason->pcName, "NoMediaType") == 0, "its name");
    expect(last->ulStream == 1 && last->ulPayload == SDP_NEGOTIATE_NONE, "its stream");
    expect(last->strSentence.ulLen > 18 &&
               memcmp(last->strSentence.pcData, "stream 2 rejected:", 18) == 0,
           "its sentence");
}

static void answerOne(const SdpLine *offer, const SdpLine *local) {
    SdpLine *answer = NULL;
    SdpLine *next = NULL;
    SdpLine *capabilities = NULL;
    SdpNegotiateReport *report = NULL;
    expect(SdpNegotiateAnswer(offer, local, NULL, NULL, &answer, &report) == 0, "an answer");
    expectReport(report);
    SdpNegotiateReleaseReport(&report);
    expect(report == NULL, "the report is gone");
    expect(SdpNegotiateCheck(offer, answer, &report) == 0, "a check");
    expect(report->ulNoOfDecisions == 0, "a good answer");
    SdpNegotiateReleaseReport(&report);
    expect(SdpNegotiateAgree(offer, answer, SDP_NEGOTIATE_OFFERER, &report) == 0, "an agreement");
    expect(report->ppstStreams[0]->enDirection == SDP_ATTR_SENDONLY, "as the offerer sees it");
    SdpNegotiateReleaseReport(&report);
    expect(SdpNegotiateNextOffer(answer, local, &next) == 0, "a next offer");
    expect(SdpNegotiateCheckNext(answer, next, &report) == 0, "its check");
    expect(report->ulNoOfDecisions == 0, "a good one");
    SdpNegotiateReleaseReport(&report);
    expect(SdpNegotiateCapabilities(local, &capabilities) == 0, "capabilities");
    SdpLibReleaseSdp(&capabilities);
    SdpLibReleaseSdp(&next);
    SdpLibReleaseSdp(&answer);
}

static void session(const SdpLine *offer, const SdpLine *local) {
    SdpNegotiator *negotiator = NULL;
    SdpLine *answer = NULL;
    expect(SdpNegotiateCreate(&negotiator) == 0, "a session");
    expect(SdpNegotiateReceiveOffer(negotiator, offer) == 0, "an offer");
    expect(SdpNegotiateGetState(negotiator) == SDP_NEGOTIATE_HAVE_REMOTE_OFFER, "its state");
    expect(SdpNegotiateMakeAnswer(negotiator, local, NULL, 0, &answer, NULL) == 0, "an answer");
    expect(SdpNegotiateGetState(negotiator) == SDP_NEGOTIATE_STABLE, "stable again");
    expect(SdpNegotiateGetLocal(negotiator) != NULL, "our description");
    SdpLibReleaseSdp(&answer);
    SdpNegotiateRelease(&negotiator);
    expect(negotiator == NULL, "the session is gone");
}

int main(void) {
    SdpLine *offer = decoded(HEAD "m=audio 49170 RTP/AVP 0 8\r\na=sendonly\r\n"
                                  "m=video 51372 RTP/AVP 31\r\n");
    SdpLine *local = decoded(HEAD "m=audio 40000 RTP/AVP 8\r\n");
    SipMmStatistics before;
    SipMmStatistics after;
    SipMmGetStatistics(&before);
    answerOne(offer, local);
    session(offer, local);
    SipMmGetStatistics(&after);
    expect(before.ulBlocks == after.ulBlocks, "every block is given back");
    SdpLibReleaseSdp(&offer);
    SdpLibReleaseSdp(&local);
    return failures == 0 ? 0 : 1;
}
