/*
 * Reads an offer from standard input and writes an answer to it (RFC 3264): the first audio stream
 * that offers PCMU or PCMA is accepted with them and telephone events, everything else is rejected.
 *
 *     cc -std=c11 answer.c $(pkg-config --cflags --libs sdpline) -o answer_c
 *     ./answer_c < offer.sdp
 *
 * Every record of the answer comes from the answer's own block. A failure gives up at once: the
 * block goes as a whole, whatever it holds. Records are packed to 4 bytes: their pointers are
 * copied in and out, never pointed to.
 */
#include <sdpline/sdpline.h>

#include <stdio.h>
#include <string.h>

static const char kAddress[] = "198.51.100.2";

static int refuse(SDPResult result) {
    SDPResultText why;
    SDPFailure place;
    SdpLibDescribeResult(result, &why);
    SdpLibGetLastFailure(&place);
    fputs("answer: ", stderr);
    if (place.ulResult == result && place.ulLine != 0) {
        fprintf(stderr, "%u:%u: ", place.ulLine, place.ulColumn);
    }
    fprintf(stderr, "%s\n", why.pcSentence);
    return 1;
}

static void *allocate(SDPMemCp *block, size_t count, size_t size) {
    void *memory = block->pfnAlloc(block, (uint32_t)(count * size));
    if (memory != NULL) {
        memset(memory, 0, count * size);
    }
    return memory;
}

static SipString lent(const char *text) {
    SipString string = {(uint32_t)strlen(text), (char *)text}; /* copied from, not kept */
    return string;
}

/* ---- What is accepted ------------------------------------------------------------------------ */

static int isSpeech(uint32_t payload) {
    return payload == 0 || payload == 8; /* PCMU, PCMA */
}

static int isTelephoneEvent(const SDPMediaDesc *offered, uint32_t payload) {
    static const char name[] = "telephone-event";
    for (uint32_t i = 0; offered->pstAttrList != NULL && i < offered->pstAttrList->ulNoOfAttrs;
         ++i) {
        const SDPAttr *attr = offered->pstAttrList->ppstAttrs[i];
        const SDPRtpMapAttr *map = &attr->unAttrValue.stRtpMap;
        if (attr->ulAttrType == SDP_ATTR_RTPMAP && map->ulPayloadType == payload &&
            map->strEncodingName.ulLen == sizeof name - 1 &&
            memcmp(map->strEncodingName.pcData, name, sizeof name - 1) == 0) {
            return 1;
        }
    }
    return 0;
}

/* The payload numbers of an offered stream that we speak, and how many; none without speech. */
static uint32_t choosePayloads(const SDPMediaDesc *offered, uint32_t chosen[SDP_MAX_PAYLOADS]) {
    const SDPMediaField *field = &offered->stMediaField;
    const SDPRtpPayLoads *payloads = &field->stMediaFmt.unMediaFmt.stRtpPayLoads;
    uint32_t count = 0;
    int speech = 0;
    if (field->stMedia.enMediaType != SDP_MEDIA_AUDIO || field->ulPort == 0 ||
        field->stProto.enProto != SDP_PROTO_RTP_AVP) {
        return 0;
    }
    for (uint32_t i = 0; i < payloads->ulNoOfPayLoads; ++i) {
        const uint32_t payload = payloads->pulPayLoads[i];
        speech |= isSpeech(payload);
        if (isSpeech(payload) || isTelephoneEvent(offered, payload)) {
            chosen[count++] = payload;
        }
    }
    return speech ? count : 0;
}

static int isDirection(const SDPAttr *attr) {
    return attr->ulAttrType >= SDP_ATTR_SENDRECV && attr->ulAttrType <= SDP_ATTR_INACTIVE;
}

static uint32_t directionIn(const SDPAttrList *list, uint32_t otherwise) {
    for (uint32_t i = 0; list != NULL && i < list->ulNoOfAttrs; ++i) {
        if (isDirection(list->ppstAttrs[i])) {
            return list->ppstAttrs[i]->ulAttrType;
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

/* Whether a line describes one of the payload numbers: a=rtpmap by its number, a=fmtp by its
 * text, which begins with it. */
static int describesOneOf(const SDPAttr *attr, const uint32_t *payloads, uint32_t count) {
    uint32_t payload = 0;
    if (attr->ulAttrType == SDP_ATTR_RTPMAP) {
        payload = attr->unAttrValue.stRtpMap.ulPayloadType;
    } else if (attr->ulAttrType == SDP_ATTR_FMTP) {
        const SipString *text = &attr->unAttrValue.strValue;
        uint32_t i = 0;
        for (; i < text->ulLen && text->pcData[i] >= '0' && text->pcData[i] <= '9'; ++i) {
            payload = payload * 10 + (uint32_t)(text->pcData[i] - '0');
        }
        if (i == 0 || (i < text->ulLen && text->pcData[i] != ' ')) {
            return 0;
        }
    } else {
        return 0;
    }
    for (uint32_t i = 0; i < count; ++i) {
        if (payloads[i] == payload) {
            return 1;
        }
    }
    return 0;
}

/* ---- The answer ------------------------------------------------------------------------------ */

static SDPResult addLines(SDPMemCp *block, const SDPMediaDesc *offered, uint32_t direction,
                          const uint32_t *payloads, uint32_t count, SDPMediaDesc *answered) {
    const SDPAttrList *from = offered->pstAttrList;
    const uint32_t offeredLines = from != NULL ? from->ulNoOfAttrs : 0;
    SDPAttrList *list = allocate(block, 1, sizeof *list);
    SDPAttr **lines = allocate(block, (size_t)offeredLines + 1, sizeof *lines);
    SDPAttr last = {0};
    void *clone = NULL;
    if (list == NULL || lines == NULL) {
        return SIP_NO_MEMORY;
    }
    list->ppstAttrs = lines;
    answered->pstAttrList = list;
    last.ulAttrType = direction;
    for (uint32_t i = 0; i <= offeredLines; ++i) {
        const SDPAttr *source = i < offeredLines ? from->ppstAttrs[i] : &last;
        if (source != &last && !describesOneOf(source, payloads, count)) {
            continue;
        }
        const SDPResult result = SdpCloneLine(block, SDP_LINE_ATTRIBUTE, source, &clone);
        if (result != 0) {
            return result;
        }
        lines[list->ulNoOfAttrs++] = clone;
    }
    return 0;
}

/* One m= line of the answer, with its a= lines when it is accepted. */
static SDPResult answerMedia(SDPMemCp *block, const SDPMediaDesc *offered, uint32_t direction,
                             uint32_t *payloads, uint32_t count, SDPMediaDesc *answered) {
    SDPMediaField line = offered->stMediaField; /* refers to the offer's texts until it is copied */
    line.ulPort = 0;
    line.ulNoOfPorts = 1;
    if (count != 0) {
        line.ulPort = 40000;
        line.stMediaFmt.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads = count;
        line.stMediaFmt.unMediaFmt.stRtpPayLoads.pulPayLoads = payloads;
    }
    const SDPResult result = SdpCopyLine(block, SDP_LINE_MEDIA, &line, &answered->stMediaField);
    if (result != 0 || count == 0) {
        return result;
    }
    return addLines(block, offered, direction, payloads, count, answered);
}

static SDPResult answerSession(SdpLine *answer) {
    SDPMemCp *block = answer->pstMemCp;
    const SipString name = lent("-");
    const SDPOrigin origin = {.strUserName = lent("answerer"),
                              .strSessionId = lent("1"),
                              .strSessionVersion = lent("1"),
                              .stNetType = {SDP_NETTYPE_IN, NULL},
                              .stAddrType = {SDP_ADDRTYPE_IP4, NULL},
                              .strAddress = lent(kAddress)};
    const SDPConnection connection = {.stNetType = {SDP_NETTYPE_IN, NULL},
                                      .stAddrType = {SDP_ADDRTYPE_IP4, NULL},
                                      .stTptAddr = {SDP_TPTADDR_IPV4, {{198, 51, 100, 2}}},
                                      .ulTtl = SDP_NOT_GIVEN,
                                      .ulNoOfAddrs = SDP_NOT_GIVEN};
    void *clone = NULL;
    SDPResult result = SdpCopyLine(block, SDP_LINE_ORIGIN, &origin, &answer->stOrigin);
    if (result == 0) {
        result = SdpCopyLine(block, SDP_LINE_NAME, &name, &answer->strSessionName);
    }
    if (result == 0) {
        result = SdpCloneLine(block, SDP_LINE_CONNECTION, &connection, &clone);
        answer->pstConnection = clone;
    }
    return result;
}

static SDPResult answerOffer(const SdpLine *offer, SdpLine *answer) {
    SDPMemCp *block = answer->pstMemCp;
    const uint32_t medias = offer->stMediaSet.ulNoOfMediaDescs;
    int accepted = 0;
    memset(answer, 0, sizeof *answer); /* a memory service need not clear what it gives */
    answer->pstMemCp = block;
    SDPResult result = answerSession(answer);
    if (result != 0 || medias == 0) {
        return result;
    }
    answer->stMediaSet.ppstMediaDescs = allocate(block, medias, sizeof(SDPMediaDesc *));
    if (answer->stMediaSet.ppstMediaDescs == NULL) {
        return SIP_NO_MEMORY;
    }
    for (uint32_t i = 0; i < medias; ++i) {
        const SDPMediaDesc *offered = offer->stMediaSet.ppstMediaDescs[i];
        const uint32_t session = directionIn(offer->pstAttrList, SDP_ATTR_SENDRECV);
        const uint32_t direction = reversed(directionIn(offered->pstAttrList, session));
        uint32_t payloads[SDP_MAX_PAYLOADS];
        const uint32_t count = accepted ? 0 : choosePayloads(offered, payloads);
        SDPMediaDesc *answered = allocate(block, 1, sizeof *answered);
        if (answered == NULL) {
            return SIP_NO_MEMORY;
        }
        accepted |= count != 0;
        result = answerMedia(block, offered, direction, payloads, count, answered);
        if (result != 0) {
            return result;
        }
        answer->stMediaSet.ppstMediaDescs[answer->stMediaSet.ulNoOfMediaDescs++] = answered;
    }
    return 0;
}

int main(void) {
    static uint8_t text[SDP_MAX_BODY + 1];
    static uint8_t written[2 * SDP_MAX_BODY];
    SdpLine *offer = NULL;
    SdpLine *answer = NULL;
    uint32_t length = (uint32_t)fread(text, 1, sizeof text, stdin);
    SDPResult result = SdpLibDeSerializeSdp(text, length, &offer);
    if (result == 0) {
        result = SdpLibCreateSdp(&answer);
    }
    if (result == 0) {
        result = answerOffer(offer, answer);
    }
    if (result == 0) {
        result = SdpLibSerializeSdp(answer, written, sizeof written, &length);
    }
    SdpLibReleaseSdp(&offer);
    SdpLibReleaseSdp(&answer);
    if (result != 0) {
        return refuse(result);
    }
    if (fwrite(written, 1, length, stdout) != length || fflush(stdout) != 0) {
        perror("answer");
        return 1;
    }
    return 0;
}
