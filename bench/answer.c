/* The answer to a call by the C interface; answer.cpp makes the same by the C++ API. */
#include "answer.h"

#include <string.h>
#include <strings.h>

#include "sdpline/sdpline.h"

static void *take(SDPMemCp *block, size_t size) {
    void *memory = block->pfnAlloc(block, (uint32_t)size);
    return memory != NULL ? memset(memory, 0, size) : NULL;
}

static SipString lent(const char *text) {
    SipString string = {(uint32_t)strlen(text), (char *)text}; /* copied from, not kept */
    return string;
}

/* ---- Copying ----------------------------------------------------------------------------- */

/* The payload numbers of a stream that the answerer supports, by number and as a list. */
typedef struct Spoken {
    char byNumber[128];
    uint32_t list[SDP_MAX_PAYLOADS];
    uint32_t count;
} Spoken;

static int isNamed(SipString text, const char *name) {
    return text.ulLen == strlen(name) && strncasecmp(text.pcData, name, text.ulLen) == 0;
}

static int isSpokenName(SipString name) {
    return isNamed(name, "PCMU") || isNamed(name, "PCMA") || isNamed(name, "opus") ||
           isNamed(name, "H264") || isNamed(name, "telephone-event");
}

static int has(const Spoken *spoken, uint32_t payload) {
    return payload < sizeof spoken->byNumber && spoken->byNumber[payload];
}

static void findSpoken(const SDPMediaDesc *offered, Spoken *spoken) {
    const SDPRtpPayLoads *payloads = &offered->stMediaField.stMediaFmt.unMediaFmt.stRtpPayLoads;
    const SDPAttrList *lines = offered->pstAttrList;
    memset(spoken->byNumber, 0, sizeof spoken->byNumber);
    spoken->byNumber[0] = spoken->byNumber[8] = 1; /* PCMU and PCMA need no a=rtpmap */
    spoken->count = 0;
    for (uint32_t i = 0; lines != NULL && i < lines->ulNoOfAttrs; ++i) {
        const SDPRtpMapAttr *map = &lines->ppstAttrs[i]->unAttrValue.stRtpMap;
        if (lines->ppstAttrs[i]->ulAttrType == SDP_ATTR_RTPMAP &&
            map->ulPayloadType < sizeof spoken->byNumber) {
            spoken->byNumber[map->ulPayloadType] = (char)isSpokenName(map->strEncodingName);
        }
    }
    if (offered->stMediaField.stMediaFmt.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        for (uint32_t i = 0; i < payloads->ulNoOfPayLoads; ++i) {
            if (has(spoken, payloads->pulPayLoads[i])) {
                spoken->list[spoken->count++] = payloads->pulPayLoads[i];
            }
        }
    }
}

static uint32_t payloadOfFmtp(SipString text) {
    uint32_t payload = 0;
    uint32_t i = 0;
    for (; i < text.ulLen && text.pcData[i] >= '0' && text.pcData[i] <= '9'; ++i) {
        payload = payload * 10 + (uint32_t)(text.pcData[i] - '0');
    }
    return i != 0 && (i == text.ulLen || text.pcData[i] == ' ') ? payload : SDP_NOT_GIVEN;
}

static int isDirection(const SDPAttr *line) {
    return line->ulAttrType >= SDP_ATTR_SENDRECV && line->ulAttrType <= SDP_ATTR_INACTIVE;
}

static int isMirrored(const SDPAttr *line, const Spoken *spoken) {
    switch (line->ulAttrType) {
    case SDP_ATTR_RTPMAP: return has(spoken, line->unAttrValue.stRtpMap.ulPayloadType);
    case SDP_ATTR_FMTP: return has(spoken, payloadOfFmtp(line->unAttrValue.strValue));
    case SDP_ATTR_UNREC_VALUE: return !isNamed(*line->pstAttrName, "candidate");
    default: return !isDirection(line);
    }
}

static uint32_t directionIn(const SDPAttrList *lines, uint32_t otherwise) {
    for (uint32_t i = 0; lines != NULL && i < lines->ulNoOfAttrs; ++i) {
        if (isDirection(lines->ppstAttrs[i])) {
            return lines->ppstAttrs[i]->ulAttrType;
        }
    }
    return otherwise;
}

static uint32_t reversed(uint32_t direction) {
    switch (direction) {
    case SDP_ATTR_SENDONLY: return SDP_ATTR_RECVONLY;
    case SDP_ATTR_RECVONLY: return SDP_ATTR_SENDONLY;
    default: return direction;
    }
}

/* ---- The answer ------------------------------------------------------------------------------ */

static int answerLines(SDPMemCp *block, const SDPMediaDesc *offered, const Spoken *spoken,
                       uint32_t direction, SDPMediaDesc *answered) {
    const SDPAttrList *from = offered->pstAttrList;
    const uint32_t offeredLines = from != NULL ? from->ulNoOfAttrs : 0;
    SDPAttrList *list = take(block, sizeof *list);
    SDPAttr **lines = take(block, (offeredLines + 1) * sizeof *lines);
    void *clone = NULL;
    if (list == NULL || lines == NULL) {
        return 0;
    }
    list->ppstAttrs = lines;
    answered->pstAttrList = list;
    for (uint32_t i = 0; i < offeredLines; ++i) {
        if (isMirrored(from->ppstAttrs[i], spoken)) {
            if (SdpCloneLine(block, SDP_LINE_ATTRIBUTE, from->ppstAttrs[i], &clone) != 0) {
                return 0;
            }
            lines[list->ulNoOfAttrs++] = clone;
        }
    }
    SDPAttr *last = take(block, sizeof *last);
    if (last == NULL) {
        return 0;
    }
    last->ulAttrType = direction;
    lines[list->ulNoOfAttrs++] = last;
    return 1;
}

static SDPMediaDesc *answerMedia(SDPMemCp *block, const SDPMediaDesc *offered,
                                 uint32_t sessionDirection) {
    SDPMediaDesc *answered = take(block, sizeof *answered);
    SDPMediaField line = offered->stMediaField; /* refers to the offer's texts until it is copied */
    SDPRtpPayLoads *payloads = &line.stMediaFmt.unMediaFmt.stRtpPayLoads;
    const uint32_t direction = reversed(directionIn(offered->pstAttrList, sessionDirection));
    Spoken spoken;
    findSpoken(offered, &spoken);
    line.ulPort = 40000;
    line.ulNoOfPorts = 1;
    if (line.stMediaFmt.enFmtType == SDP_FMT_RTP_PAYLOADS) {
        payloads->ulNoOfPayLoads = spoken.count;
        payloads->pulPayLoads = spoken.list;
    }
    const int done = answered != NULL &&
                     SdpCopyLine(block, SDP_LINE_MEDIA, &line, &answered->stMediaField) == 0 &&
                     answerLines(block, offered, &spoken, direction, answered);
    return done ? answered : NULL;
}

static int answerSession(SdpLine *answer) {
    SDPMemCp *block = answer->pstMemCp;
    const SipString name = lent("-");
    const SDPOrigin origin = {.strUserName = lent("answerer"),
                              .strSessionId = lent("3724394400"),
                              .strSessionVersion = lent("3724394400"),
                              .stNetType = {SDP_NETTYPE_IN, NULL},
                              .stAddrType = {SDP_ADDRTYPE_IP4, NULL},
                              .strAddress = lent("198.51.100.2")};
    SDPConnection *connection = take(block, sizeof *connection);
    if (connection == NULL ||
        SdpCopyLine(block, SDP_LINE_ORIGIN, &origin, &answer->stOrigin) != 0 ||
        SdpCopyLine(block, SDP_LINE_NAME, &name, &answer->strSessionName) != 0) {
        return 0;
    }
    *connection = (SDPConnection){.stNetType = {SDP_NETTYPE_IN, NULL},
                                  .stAddrType = {SDP_ADDRTYPE_IP4, NULL},
                                  .stTptAddr = {SDP_TPTADDR_IPV4, {{198, 51, 100, 2}}},
                                  .ulTtl = SDP_NOT_GIVEN,
                                  .ulNoOfAddrs = SDP_NOT_GIVEN};
    answer->pstConnection = connection;
    return 1;
}

static int answerOffer(const SdpLine *offer, SdpLine *answer) {
    SDPMemCp *block = answer->pstMemCp;
    const uint32_t medias = offer->stMediaSet.ulNoOfMediaDescs;
    const uint32_t direction = directionIn(offer->pstAttrList, SDP_ATTR_SENDRECV);
    memset(answer, 0, sizeof *answer); /* a memory service need not clear what it gives */
    answer->pstMemCp = block;
    SDPMediaDesc **descs = take(block, medias * sizeof *descs);
    if (!answerSession(answer) || descs == NULL) {
        return 0;
    }
    answer->stMediaSet.ppstMediaDescs = descs;
    for (uint32_t i = 0; i < medias; ++i) {
        descs[i] = answerMedia(block, offer->stMediaSet.ppstMediaDescs[i], direction);
        if (descs[i] == NULL) {
            return 0;
        }
        ++answer->stMediaSet.ulNoOfMediaDescs;
    }
    return 1;
}

int answerByC(const char *pcText, uint32_t ulLength) {
    const SipString text = {ulLength, (char *)pcText};
    SdpLine *offer = NULL;
    SdpLine *answer = NULL;
    SipStringBuffer *written = NULL;
    const int done = SdpLibDecodeSdp(&text, &offer) == 0 && SdpLibCreateSdp(&answer) == 0 &&
                     answerOffer(offer, answer) && SdpLibEncodeSdp(answer, &written) == 0;
    SipSbReleaseStringBuffer(written);
    SdpLibReleaseSdp(&answer);
    SdpLibReleaseSdp(&offer);
    return done;
}
