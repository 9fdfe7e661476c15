/*
 * A program with functions of names that the library exports too. Neither may call the other's.
 */
#include <stdio.h>
#include <string.h>

#include <sdpline/sdpline.h>

static int called;

#define SAME_NAME(name)                                                                            \
    int name(void);                                                                                \
    int name(void) {                                                                               \
        return ++called;                                                                           \
    }

SAME_NAME(mark)
SAME_NAME(consume)
SAME_NAME(nextToken)
SAME_NAME(startTracking)
SAME_NAME(sdp_match)
SAME_NAME(LA)
SAME_NAME(LT)
SAME_NAME(setInput)
SAME_NAME(setLexerContext)
SAME_NAME(clearSdpLexer)
SAME_NAME(sdpOriginField)
SAME_NAME(sdpStringField)
SAME_NAME(sdpMediaField)
SAME_NAME(sdpAttributeField)
SAME_NAME(SdpLibUtilExtendDP)
SAME_NAME(SdpLibScanDigits)
SAME_NAME(SdpLibEncodeSdpInt)
SAME_NAME(sdpLibEncodeMediaSet)

int main(void) {
    static const char body[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n"
                               "m=audio 49170 RTP/AVP 0\r\na=sendrecv\r\na=ptime:20\r\n";
    SipString text = {sizeof body - 1, (char *)body};
    SdpLine *line = NULL;
    SipStringBuffer *buffer = NULL;
    SipRefString *written = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0 || SdpLibEncodeSdp(line, &buffer) != 0 ||
        SipSbConvertToRefString(buffer, &written) != 0) {
        fputs("same_names: the body does not decode and encode\n", stderr);
        return 1;
    }
    const int same = SipSmGetLenFromRefString(written) == text.ulLen &&
                     memcmp(SipSmGetDataFromRefString(written), body, text.ulLen) == 0;
    SipSmReleaseRefString(written);
    SipSbReleaseStringBuffer(buffer);
    SdpLibReleaseSdp(&line);
    if (!same || called != 0) {
        fprintf(stderr, "same_names: %s, %d functions of the program called\n",
                same ? "same text" : "other text", called);
        return 1;
    }
    if (mark() != 1) {
        fputs("same_names: the library's mark was called\n", stderr);
        return 1;
    }
    puts("same_names: neither called the other's functions");
    return 0;
}
