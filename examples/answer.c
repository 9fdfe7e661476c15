/*
 * Reads an offer from standard input and writes the answer to it (RFC 3264): PCMU, PCMA and
 * telephone events are accepted, everything else is rejected. Decisions are written to standard
 * error.
 *
 *     cc answer.c $(pkg-config --cflags --libs sdpline-negotiate) -o answer_c
 *     ./answer_c < offer.sdp
 */
#include <sdpline/sdpnegotiate.h>

#include <stdio.h>

static char local[] = "v=0\no=answerer 1 1 IN IP4 198.51.100.2\ns=-\nc=IN IP4 198.51.100.2\nt=0 0\n"
                      "m=audio 40000 RTP/AVP 0 8 101\n"
                      "a=rtpmap:101 telephone-event/8000\na=fmtp:101 0-15\n";

static int refuse(SDPResult result) {
    SDPResultText why;
    SDPFailure place;
    SdpLibDescribeResult(result, &why);
    SdpLibGetLastFailure(&place);
    return fprintf(stderr, "answer: %u:%u: %s\n", place.ulLine, place.ulColumn, why.pcSentence), 1;
}

static int write(SdpLine *answer, const SdpNegotiateReport *report) {
    static uint8_t text[SDP_MAX_BODY];
    uint32_t size = 0;
    for (uint32_t i = 0; i < report->ulNoOfDecisions; ++i) {
        const SipString *sentence = &report->ppstDecisions[i]->strSentence;
        fprintf(stderr, "%.*s\n", (int)sentence->ulLen, sentence->pcData);
    }
    return SdpLibSerializeSdp(answer, text, sizeof text, &size) != 0 ||
           fwrite(text, 1, size, stdout) != size || fflush(stdout) != 0;
}

int main(void) {
    static uint8_t text[SDP_MAX_BODY + 1];
    SdpLine *offer = NULL, *ours = NULL, *answer = NULL;
    SdpNegotiateReport *report = NULL;
    SDPResult result =
        SdpLibDeSerializeSdp(text, (uint32_t)fread(text, 1, sizeof text, stdin), &offer);
    if (result != 0) {
        return refuse(result);
    }
    SdpLibDeSerializeSdp((uint8_t *)local, sizeof local - 1, &ours);
    result = SdpNegotiateAnswer(offer, ours, NULL, NULL, &answer, &report);
    if (result != 0) { /* ours is null where it was refused */
        fprintf(stderr, "answer: %s\n", SdpNegotiateGetReason(result)->pcSentence);
    }
    int failed = result != 0 || write(answer, report);
    SdpNegotiateReleaseReport(&report);
    SdpLibReleaseSdp(&answer);
    SdpLibReleaseSdp(&ours);
    SdpLibReleaseSdp(&offer);
    return failed;
}
