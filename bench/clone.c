/* A copy of a body by the C interface, line by line, as SdpLibCloneSdp makes one. */
#include "clone.h"

#include <string.h>

#include "sdpline/sdpline.h"

static int good; /* so far */

static void *take(SDPMemCp *block, size_t size) {
    void *memory = good ? block->pfnAlloc(block, (uint32_t)size) : NULL;
    good = memory != NULL;
    return memory;
}

static void copyLine(SDPMemCp *block, uint32_t type, const void *from, void *to) {
    good = good && SdpCopyLine(block, type, from, to) == 0;
}

static void *clone(SDPMemCp *block, uint32_t type, const void *from) {
    void *made = NULL;
    if (from != NULL) {
        good = good && SdpCloneLine(block, type, from, &made) == 0;
    }
    return made;
}

/* A list of lines of one type: a count and an array of pointers. */
typedef struct Lines {
    uint32_t count;
    void **items;
} Lines;

static Lines cloneLines(SDPMemCp *block, uint32_t type, uint32_t count, void *from) {
    void *const *sources = from;
    Lines lines = {count, NULL};
    if (sources == NULL) {
        return lines;
    }
    lines.items = take(block, count * sizeof *lines.items);
    for (uint32_t i = 0; good && i < count; ++i) {
        lines.items[i] = clone(block, type, sources[i]);
    }
    return lines;
}

static SDPStringList *cloneTexts(SDPMemCp *block, uint32_t type, const SDPStringList *from) {
    SDPStringList *to = from != NULL ? take(block, sizeof *to) : NULL;
    if (to != NULL) {
        const Lines lines = cloneLines(block, type, from->ulNoOfStrings, from->ppstStrings);
        to->ulNoOfStrings = lines.count;
        to->ppstStrings = (SipString **)lines.items;
    }
    return to;
}

static SDPAttrList *cloneAttributes(SDPMemCp *block, const SDPAttrList *from) {
    SDPAttrList *to = from != NULL ? take(block, sizeof *to) : NULL;
    if (to != NULL) {
        const Lines lines =
            cloneLines(block, SDP_LINE_ATTRIBUTE, from->ulNoOfAttrs, from->ppstAttrs);
        to->ulNoOfAttrs = lines.count;
        to->ppstAttrs = (SDPAttr **)lines.items;
    }
    return to;
}

static SDPMediaDesc *cloneMedia(SDPMemCp *block, const SDPMediaDesc *from) {
    SDPMediaDesc *to = take(block, sizeof *to);
    if (to != NULL) {
        copyLine(block, SDP_LINE_MEDIA, &from->stMediaField, &to->stMediaField);
        to->pstrMediaInfo = clone(block, SDP_LINE_INFO, from->pstrMediaInfo);
        to->pstConnection = clone(block, SDP_LINE_CONNECTION, from->pstConnection);
        to->pstBandwidthList = cloneTexts(block, SDP_LINE_BANDWIDTH, from->pstBandwidthList);
        to->pstKey = clone(block, SDP_LINE_KEY, from->pstKey);
        to->pstAttrList = cloneAttributes(block, from->pstAttrList);
    }
    return to;
}

static void cloneLists(const SdpLine *from, SdpLine *to) {
    SDPMemCp *block = to->pstMemCp;
    const SDPTimeSet *times = &from->stTimeSet;
    const SDPMediaSet *media = &from->stMediaSet;
    const Lines timeLines =
        cloneLines(block, SDP_LINE_TIME, times->ulNoOfTimeFields, times->ppstTimeFields);
    to->stTimeSet.ulNoOfTimeFields = timeLines.count;
    to->stTimeSet.ppstTimeFields = (SDPTimeField **)timeLines.items;
    to->pstAttrList = cloneAttributes(block, from->pstAttrList);
    to->stMediaSet.ulNoOfMediaDescs = media->ulNoOfMediaDescs;
    SDPMediaDesc **items =
        media->ppstMediaDescs != NULL ? take(block, media->ulNoOfMediaDescs * sizeof *items) : NULL;
    to->stMediaSet.ppstMediaDescs = items;
    for (uint32_t i = 0; good && items != NULL && i < media->ulNoOfMediaDescs; ++i) {
        items[i] = cloneMedia(block, media->ppstMediaDescs[i]);
    }
}

int cloneByC(const SdpLine *from) {
    SdpLine *to = NULL;
    good = SdpLibCreateSdp(&to) == 0;
    if (!good) {
        return 0;
    }
    SDPMemCp *block = to->pstMemCp;
    memset(to, 0, sizeof *to); /* a memory service need not clear what it gives */
    to->pstMemCp = block;
    to->ulProtoVersion = from->ulProtoVersion;
    copyLine(block, SDP_LINE_ORIGIN, &from->stOrigin, &to->stOrigin);
    copyLine(block, SDP_LINE_NAME, &from->strSessionName, &to->strSessionName);
    to->pstrSessionInfo = clone(block, SDP_LINE_INFO, from->pstrSessionInfo);
    to->pstrUri = clone(block, SDP_LINE_URI, from->pstrUri);
    to->pstEmailList = cloneTexts(block, SDP_LINE_EMAIL, from->pstEmailList);
    to->pstPhoneList = cloneTexts(block, SDP_LINE_PHONE, from->pstPhoneList);
    to->pstConnection = clone(block, SDP_LINE_CONNECTION, from->pstConnection);
    to->pstBandwidthList = cloneTexts(block, SDP_LINE_BANDWIDTH, from->pstBandwidthList);
    to->pstrTimeZone = clone(block, SDP_LINE_ZONE, from->pstrTimeZone);
    to->pstKey = clone(block, SDP_LINE_KEY, from->pstKey);
    cloneLists(from, to);
    SdpLibReleaseSdp(&to);
    return good;
}
