/* A copy of a body by the C interface, line by line, as SdpLibCloneSdp makes one. */
#include "clone.h"

#include <string.h>

#include "sdpline/sdpline.h"

/* Each function returns 0 where memory is exhausted; the block releases what was made before. */

static void *take(SDPMemCp *block, size_t size) {
    return block->pfnAlloc(block, (uint32_t)size);
}

static int copyLine(SDPMemCp *block, uint32_t type, const void *from, void *to) {
    return SdpCopyLine(block, type, from, to) == 0;
}

/* The place of the pointer is a void *: records are packed, so that it may be unaligned. */
static int cloneLine(SDPMemCp *block, uint32_t type, const void *from, void *to) {
    void *made = NULL;
    if (from != NULL && SdpCloneLine(block, type, from, &made) != 0) {
        return 0;
    }
    memcpy(to, &made, sizeof made);
    return 1;
}

/* An array of lines of one type; a decode leaves no slot empty. */
static int cloneLines(SDPMemCp *block, uint32_t type, uint32_t count, void *from, void *to) {
    void *const *sources = from;
    void **lines = sources != NULL ? take(block, count * sizeof *lines) : NULL;
    if (sources != NULL && lines == NULL) {
        return 0;
    }
    for (uint32_t i = 0; sources != NULL && i < count; ++i) {
        if (SdpCloneLine(block, type, sources[i], &lines[i]) != 0) {
            return 0;
        }
    }
    memcpy(to, &lines, sizeof lines);
    return 1;
}

static int cloneTexts(SDPMemCp *block, uint32_t type, const SDPStringList *from, void *to) {
    SDPStringList *list = from != NULL ? take(block, sizeof *list) : NULL;
    memcpy(to, &list, sizeof list);
    if (list == NULL) {
        return from == NULL;
    }
    list->ulNoOfStrings = from->ulNoOfStrings;
    return cloneLines(block, type, from->ulNoOfStrings, from->ppstStrings, &list->ppstStrings);
}

static int cloneAttributes(SDPMemCp *block, const SDPAttrList *from, void *to) {
    SDPAttrList *list = from != NULL ? take(block, sizeof *list) : NULL;
    memcpy(to, &list, sizeof list);
    if (list == NULL) {
        return from == NULL;
    }
    list->ulNoOfAttrs = from->ulNoOfAttrs;
    return cloneLines(block, SDP_LINE_ATTRIBUTE, from->ulNoOfAttrs, from->ppstAttrs,
                      &list->ppstAttrs);
}

static int cloneMedia(SDPMemCp *block, const SDPMediaDesc *from, SDPMediaDesc *to) {
    return copyLine(block, SDP_LINE_MEDIA, &from->stMediaField, &to->stMediaField) &&
           cloneLine(block, SDP_LINE_INFO, from->pstrMediaInfo, &to->pstrMediaInfo) &&
           cloneLine(block, SDP_LINE_CONNECTION, from->pstConnection, &to->pstConnection) &&
           cloneTexts(block, SDP_LINE_BANDWIDTH, from->pstBandwidthList, &to->pstBandwidthList) &&
           cloneLine(block, SDP_LINE_KEY, from->pstKey, &to->pstKey) &&
           cloneAttributes(block, from->pstAttrList, &to->pstAttrList);
}

static int cloneMediaSet(SDPMemCp *block, const SDPMediaSet *from, SDPMediaSet *to) {
    const uint32_t count = from->ppstMediaDescs != NULL ? from->ulNoOfMediaDescs : 0;
    SDPMediaDesc **media = count != 0 ? take(block, count * sizeof *media) : NULL;
    if (count != 0 && media == NULL) {
        return 0;
    }
    for (uint32_t i = 0; i < count; ++i) {
        media[i] = take(block, sizeof *media[i]);
        if (media[i] == NULL || !cloneMedia(block, from->ppstMediaDescs[i], media[i])) {
            return 0;
        }
    }
    to->ulNoOfMediaDescs = count;
    to->ppstMediaDescs = media;
    return 1;
}

/* Writes every field but pstMemCp, so that none needs to be cleared. */
static int cloneSession(const SdpLine *from, SdpLine *to) {
    SDPMemCp *block = to->pstMemCp;
    to->ulProtoVersion = from->ulProtoVersion;
    to->stTimeSet.ulNoOfTimeFields = from->stTimeSet.ulNoOfTimeFields;
    return copyLine(block, SDP_LINE_ORIGIN, &from->stOrigin, &to->stOrigin) &&
           copyLine(block, SDP_LINE_NAME, &from->strSessionName, &to->strSessionName) &&
           cloneLine(block, SDP_LINE_INFO, from->pstrSessionInfo, &to->pstrSessionInfo) &&
           cloneLine(block, SDP_LINE_URI, from->pstrUri, &to->pstrUri) &&
           cloneTexts(block, SDP_LINE_EMAIL, from->pstEmailList, &to->pstEmailList) &&
           cloneTexts(block, SDP_LINE_PHONE, from->pstPhoneList, &to->pstPhoneList) &&
           cloneLine(block, SDP_LINE_CONNECTION, from->pstConnection, &to->pstConnection) &&
           cloneTexts(block, SDP_LINE_BANDWIDTH, from->pstBandwidthList, &to->pstBandwidthList) &&
           cloneLines(block, SDP_LINE_TIME, from->stTimeSet.ulNoOfTimeFields,
                      from->stTimeSet.ppstTimeFields, &to->stTimeSet.ppstTimeFields) &&
           cloneLine(block, SDP_LINE_ZONE, from->pstrTimeZone, &to->pstrTimeZone) &&
           cloneLine(block, SDP_LINE_KEY, from->pstKey, &to->pstKey) &&
           cloneAttributes(block, from->pstAttrList, &to->pstAttrList) &&
           cloneMediaSet(block, &from->stMediaSet, &to->stMediaSet);
}

int cloneByC(const SdpLine *from) {
    SdpLine *to = NULL;
    const int done = SdpLibCreateSdp(&to) == 0 && cloneSession(from, to);
    SdpLibReleaseSdp(&to);
    return done;
}
