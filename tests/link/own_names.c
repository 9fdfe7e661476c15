/*
 * A program whose own functions bear names that the library exports too. Neither may call the
 * other's.
 */
#include <stdio.h>
#include <string.h>

#include <sdpline/sdpline.h>

static int called;

#define OWN(name)                                                                                  \
    int name(void);                                                                                \
    int name(void) {                                                                               \
        return ++called;                                                                           \
    }

OWN(mark)
OWN(consume)
OWN(nextToken)
OWN(startTracking)
OWN(sdp_match)
OWN(LA)
OWN(LT)
OWN(setInput)
OWN(setLexerContext)
OWN(clearSdpLexer)
OWN(sdpOriginField)
OWN(sdpStringField)
OWN(sdpMediaField)
OWN(sdpAttributeField)
OWN(SdpLibUtilExtendDP)
OWN(SdpLibScanDigits)
OWN(SdpLibEncodeSdpInt)
OWN(sdpLibEncodeMediaSet)

int main(void) {
    static const char body[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n"
                               "m=audio 49170 RTP/AVP 0\r\na=sendrecv\r\na=ptime:20\r\n";
    SipString text = {sizeof body - 1, (char *)body};
    SdpLine *line = NULL;
    SipStringBuffer *buffer = NULL;
    SipRefString *written = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0 || SdpLibEncodeSdp(line, &buffer) != 0 ||
        SipSbConvertToRefString(buffer, &written) != 0) {
        fputs("own_names: the body does not decode and encode\n", stderr);
        return 1;
    }
    const int same = SipSmGetLenFromRefString(written) == text.ulLen &&
                     memcmp(SipSmGetDataFromRefString(written), body, text.ulLen) == 0;
    SipSmReleaseRefString(written);
    SipSbReleaseStringBuffer(buffer);
    SdpLibReleaseSdp(&line);
    if (!same || called != 0) {
        fprintf(stderr, "own_names: %s, %d of the program's own functions called\n",
                same ? "same text" : "other text", called);
        return 1;
    }
    if (mark() != 1) {
        fputs("own_names: the library's mark was called\n", stderr);
        return 1;
    }
    puts("own_names: neither called the other's functions");
    return 0;
}
