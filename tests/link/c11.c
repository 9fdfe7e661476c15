/* Every public C header in a C11 program; a body decoded, edited with copied lines and written. */
#include <sdpline/sdpcopy.h>
#include <sdpline/sdpdescriptors.h>
#include <sdpline/sdpinternals.h>
#include <sdpline/sdpline.h>
#include <sdpline/sdprecords.h>
#include <sdpline/sipcore.h>

#include <stdio.h>
#include <string.h>

/* So many bytes of numbers, and so many pointers. */
#define BYTES(numbers, pointers) ((numbers) + (pointers) * sizeof(char *))

_Static_assert(sizeof(SipString) == BYTES(4, 1), "counted text");
_Static_assert(sizeof(SDPMemCp) == BYTES(0, 3), "the memory control");
_Static_assert(sizeof(SdpLine) == BYTES(40, 19), "the body record");
_Static_assert(sizeof(SDPOrigin) == BYTES(24, 6), "the o= record");
_Static_assert(sizeof(SDPConnection) == BYTES(36, 2), "the c= record");
_Static_assert(sizeof(SDPMediaField) == BYTES(24, 3), "the m= record");
_Static_assert(sizeof(SDPAttr) == BYTES(24, 2), "the a= record");
_Static_assert(sizeof(SDPTimeField) == BYTES(8, 1), "the t= record");
_Static_assert(sizeof(SDPRepeatField) == BYTES(4, 1), "the r= record");
_Static_assert(sizeof(SDPKey) == BYTES(4, 1), "the k= record");
_Static_assert(sizeof(SDPMediaDesc) == BYTES(24, 8), "one media description");
_Static_assert(sizeof(SipDsmTypeDef) == BYTES(8, 1), "a descriptor");
_Static_assert(sizeof(SipDsmChoiceDef) == BYTES(8, 1), "a choice");
_Static_assert(sizeof(SipDsmSequenceDef) == BYTES(4, 1), "a sequence");
_Static_assert(sizeof(SipDsmCPointerDef) == BYTES(12, 1), "a coded text");
_Static_assert(offsetof(SipString, pcData) == 4, "packed to 4 bytes");
_Static_assert(offsetof(SipDsmTypeDef, pDetail) == 8, "packed to 4 bytes");
_Static_assert(offsetof(SdpLine, pstConnection) == BYTES(32, 11), "the session's c= line");
_Static_assert(offsetof(SdpLine, stMediaSet) == BYTES(36, 17), "the media descriptions");
_Static_assert(offsetof(SDPAttr, pstAttrName) == BYTES(24, 1), "the name of an attribute");
_Static_assert(offsetof(SDPConnection, ulTtl) == BYTES(28, 2), "the TTL");
_Static_assert(offsetof(SDPMediaField, stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads) ==
                   BYTES(24, 2),
               "the payload numbers");

/* clang-format off */
static const char body[] =
    "v=0\r\n"
    "o=- 1 1 IN IP4 192.0.2.1\r\n"
    "s=-\r\n"
    "t=0 0\r\n"
    "m=audio 49170 RTP/AVP 0 101\r\n"
    "c=IN IP4 192.0.2.1\r\n"
    "a=rtpmap:101 telephone-event/8000\r\n"
    "a=sendrecv\r\n";

static const char edited[] =
    "v=0\r\n"
    "o=- 1 1 IN IP4 192.0.2.1\r\n"
    "s=-\r\n"
    "c=IN IP4 192.0.2.1\r\n"
    "t=0 0\r\n"
    "a=rtpmap:101 telephone-event/8000\r\n"
    "m=audio 49172 RTP/AVP 0 101\r\n"
    "c=IN IP4 192.0.2.1\r\n"
    "a=rtpmap:101 telephone-event/8000\r\n"
    "a=sendonly\r\n";
/* clang-format on */

static int failed(const char *what) {
    printf("c11: %s\n", what);
    return 1;
}

/* A new record in the body's own block, all zero as its memory is. */
static void *newRecord(SdpLine *line, size_t size) {
    return line->pstMemCp->pfnAlloc(line->pstMemCp, (uint32_t)size);
}

/* The media's c= line copied into a record of the session's. */
static int copyConnection(SdpLine *line) {
    SDPConnection *connection = newRecord(line, sizeof *connection);
    if (connection == NULL ||
        SdpCopyLine(line->pstMemCp, SDP_LINE_CONNECTION,
                    line->stMediaSet.ppstMediaDescs[0]->pstConnection, connection) != 0) {
        return failed("a c= line is not copied");
    }
    line->pstConnection = connection;
    return 0;
}

/* The media's first attribute cloned into a list of the session's. */
static int cloneAttribute(SdpLine *line) {
    SDPAttrList *list = newRecord(line, sizeof *list);
    SDPAttr **slots = newRecord(line, sizeof *slots);
    void *clone = NULL;
    if (list == NULL || slots == NULL ||
        SdpCloneLine(line->pstMemCp, SDP_LINE_ATTRIBUTE,
                     line->stMediaSet.ppstMediaDescs[0]->pstAttrList->ppstAttrs[0], &clone) != 0) {
        return failed("an attribute is not cloned");
    }
    slots[0] = clone;
    list->ulNoOfAttrs = 1;
    list->ppstAttrs = slots;
    line->pstAttrList = list;
    return 0;
}

/* A clone on the process heap, cleared and freed. */
static int freeClone(const SDPMediaField *field) {
    void *clone = NULL;
    if (SdpCloneLine(gSipSystemMemCp, SDP_LINE_MEDIA, field, &clone) != 0) {
        return failed("an m= line is not cloned");
    }
    const int kept = ((const SDPMediaField *)clone)->ulPort == field->ulPort;
    if (SdpFreeLine(gSipSystemMemCp, SDP_LINE_MEDIA, &clone) != 0 || clone != NULL || !kept) {
        return failed("an m= line is not freed");
    }
    return 0;
}

static int edit(SdpLine *line) {
    SDPMediaDesc *media = line->stMediaSet.ppstMediaDescs[0];
    if (copyConnection(line) != 0 || cloneAttribute(line) != 0 ||
        freeClone(&media->stMediaField) != 0) {
        return 1;
    }
    media->stMediaField.ulPort = 49172;
    media->pstAttrList->ppstAttrs[1]->ulAttrType = SDP_ATTR_SENDONLY;
    return 0;
}

static int isWrittenAs(SdpLine *line, const char *expected) {
    SipStringBuffer *buffer = NULL;
    SipRefString *written = NULL;
    if (SdpLibEncodeSdp(line, &buffer) != 0 || SipSbConvertToRefString(buffer, &written) != 0) {
        SipSbReleaseStringBuffer(buffer);
        return 0;
    }
    const size_t length = strlen(expected);
    const int same = SipSmGetLenFromRefString(written) == length &&
                     memcmp(SipSmGetDataFromRefString(written), expected, length) == 0;
    SipSmReleaseRefString(written);
    SipSbReleaseStringBuffer(buffer);
    return same;
}

/* The descriptors say what the records are. */
static int describes(void) {
    return g_gpstSdpLineDef[SDP_LINE_CONNECTION] == &g_gstSDPConnectionDef &&
           g_gstSDPConnectionDef.ulSize == sizeof(SDPConnection) &&
           g_gstSDPConnectionDef.enKind == SIP_DSM_SEQUENCE &&
           ((const SipDsmSequenceDef *)g_gstSDPConnectionDef.pDetail)->ulNoOfMembers == 5;
}

int main(void) {
    const SipString text = {sizeof body - 1, (char *)body};
    SdpLine *line = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0) {
        return failed("not decoded");
    }
    if (edit(line) != 0) {
        return 1;
    }
    const int same = isWrittenAs(line, edited);
    if (SdpLibReleaseSdp(&line) != 0 || line != NULL) {
        return failed("not released");
    }
    if (!same) {
        return failed("other text");
    }
    if (!describes()) {
        return failed("other descriptors");
    }
    puts("c11: decoded, edited with copied lines and written back");
    return 0;
}
