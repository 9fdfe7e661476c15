/* Every public C header in a C11 program, and a body decoded and written back. */
#include <sdpline/sdpinternals.h>
#include <sdpline/sdpline.h>
#include <sdpline/sdprecords.h>
#include <sdpline/sipcore.h>

#include <stdio.h>
#include <string.h>

_Static_assert(sizeof(SdpLine) == 192, "the body record");
_Static_assert(sizeof(SDPAttr) == 40, "the attribute record");
_Static_assert(offsetof(SdpLine, stMediaSet) == 172, "the media descriptions");
_Static_assert(offsetof(SDPMediaField, stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads) == 40,
               "the payload numbers");

int main(void) {
    static const char body[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n"
                               "m=audio 49170 RTP/AVP 0 8\r\na=sendrecv\r\n";
    static const char edited[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n"
                                 "m=audio 49172 RTP/AVP 0 8\r\na=sendonly\r\n";
    SipString text = {sizeof body - 1, (char *)body};
    SdpLine *line = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0) {
        return 1;
    }
    SDPMediaDesc *media = line->stMediaSet.ppstMediaDescs[0];
    media->stMediaField.ulPort = 49172;
    media->pstAttrList->ppstAttrs[0]->ulAttrType = SDP_ATTR_SENDONLY;

    SipStringBuffer *buffer = NULL;
    SipRefString *written = NULL;
    if (SdpLibEncodeSdp(line, &buffer) != 0 || SipSbConvertToRefString(buffer, &written) != 0) {
        return 1;
    }
    const int same = SipSmGetLenFromRefString(written) == sizeof edited - 1 &&
                     memcmp(SipSmGetDataFromRefString(written), edited, sizeof edited - 1) == 0;
    SipSmReleaseRefString(written);
    SipSbReleaseStringBuffer(buffer);
    SdpLibReleaseSdp(&line);
    puts(same ? "c11: decoded, edited and written back" : "c11: other text");
    return same ? 0 : 1;
}
