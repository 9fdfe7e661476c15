/*
 * A program that replaces one service, REPLACE_..., and leaves the others to libsipcore: every call
 * of that one is the program's.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include <sdpline/sdpline.h>

static unsigned calls;

/* The definition counts and calls the service that it hides. */
#define REPLACE(result, service, parameters, arguments)                                            \
    result service parameters {                                                                    \
        result(*real) parameters;                                                                  \
        *(void **)&real = dlsym(RTLD_NEXT, #service);                                              \
        ++calls;                                                                                   \
        return real arguments;                                                                     \
    }

#if defined(REPLACE_SipSbCopyChar)
#define EXPECTED 35 /* 18 of prefixes, 14 spaces, slashes and colons, 3 dots */
REPLACE(uint32_t, SipSbCopyChar, (SipStringBuffer * buffer, char byte), (buffer, byte))
#elif defined(REPLACE_SipSbCopyConstString)
#define EXPECTED 16 /* 9 line ends, 6 words, and the empty one that serialising ends with */
REPLACE(uint32_t, SipSbCopyConstString,
        (SipStringBuffer * buffer, const char *text, uint32_t length), (buffer, text, length))
#elif defined(REPLACE_SipSbCopyString)
#define EXPECTED 10 /* 4 of o=, 1 of s=, 5 of a= */
REPLACE(uint32_t, SipSbCopyString, (SipStringBuffer * buffer, const SipString *text),
        (buffer, text))
#elif defined(REPLACE_SipSbCopyLong)
#define EXPECTED 12 /* 1 of v=, 4 of c=, 2 of t=, 3 of m=, 2 of a= */
REPLACE(uint32_t, SipSbCopyLong, (SipStringBuffer * buffer, uint32_t value), (buffer, value))
#elif defined(REPLACE_memcpy_s)
#define EXPECTED 2 /* the name that a profile is looked up for, the payload numbers copied */
REPLACE(int, memcpy_s, (void *to, size_t limit, const void *from, size_t size),
        (to, limit, from, size))
#elif defined(REPLACE_memset_s)
#define EXPECTED 40 /* the normal form, 9 records, 3 arrays, 27 texts of tokens */
REPLACE(int, memset_s, (void *to, size_t limit, int value, size_t size), (to, limit, value, size))
#elif defined(REPLACE_SipDsmCopyGeneralField)
#define EXPECTED 3 /* o=, the type and the protocol of m= */
REPLACE(uint32_t, SipDsmCopyGeneralField,
        (SDPMemCp * memCp, const void *from, void *to, const SipDsmTypeDef *type),
        (memCp, from, to, type))
#elif defined(REPLACE_SipSmCopyString)
#define EXPECTED 7 /* 4 of o=, 1 of rtpmap, name and value of X-a */
REPLACE(uint32_t, SipSmCopyString, (SDPMemCp * memCp, const SipString *from, SipString *to),
        (memCp, from, to))
#elif defined(REPLACE_SipSmCloneString)
#define EXPECTED 1 /* the name of X-a */
REPLACE(uint32_t, SipSmCloneString, (SDPMemCp * memCp, const SipString *from, SipString **to),
        (memCp, from, to))
#endif

static const char body[] = "v=0\r\n"
                           "o=alice 1 2 IN IP4 192.0.2.1\r\n"
                           "s=-\r\n"
                           "c=IN IP4 192.0.2.1\r\n"
                           "t=0 0\r\n"
                           "m=audio 49170 RTP/AVP 0 8\r\n"
                           "a=rtpmap:8 PCMA/8000\r\n"
                           "a=sendrecv\r\n"
                           "a=X-a:b\r\n";

/* Copies of lines into the body's own block. */
static int copies(SdpLine *line) {
    SDPMediaDesc *media = line->stMediaSet.ppstMediaDescs[0];
    SDPOrigin origin;
    SDPMediaField field;
    void *attribute = NULL;
    int done = SdpCopyLine(line->pstMemCp, SDP_LINE_ORIGIN, &line->stOrigin, &origin) == 0 &&
               SdpCopyLine(line->pstMemCp, SDP_LINE_MEDIA, &media->stMediaField, &field) == 0;
    for (uint32_t i = 0; done && i < media->pstAttrList->ulNoOfAttrs; ++i) {
        done = SdpCloneLine(line->pstMemCp, SDP_LINE_ATTRIBUTE, media->pstAttrList->ppstAttrs[i],
                            &attribute) == 0;
    }
    return done;
}

int main(void) {
    const SipString text = {sizeof body - 1, (char *)body};
    uint8_t written[sizeof body];
    uint32_t length = 0;
    SdpLine *line = NULL;
    if (SdpLibDecodeSdp(&text, &line) != 0 ||
        SdpLibSerializeSdp(line, written, sizeof written, &length) != 0 || !copies(line)) {
        fprintf(stderr, "replaced_one: the body is refused\n");
        return 1;
    }
    SdpLibReleaseSdp(&line);
    if (length != text.ulLen || memcmp(written, body, length) != 0) {
        fprintf(stderr, "replaced_one: another body was written\n");
        return 1;
    }
    if (calls != EXPECTED) {
        fprintf(stderr, "replaced_one: called %u times, not %u\n", calls, EXPECTED);
        return 1;
    }
    return 0;
}
