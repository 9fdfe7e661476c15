/*
 * sdpcopy.h: one line of a body copied, cloned, cleared and freed.
 *
 * Conventions
 *  1. A line is named by its kind, SDP_LINE_..., and is the record that goes with it: see the enum
 *     in sdprecords.h. SDP_LINE_MEDIA is the m= line alone, without the lines below it.
 *  2. All memory comes from and goes back to the memory control that is passed, which need not be
 *     that of the body the line comes from. It is the target's: copy a line into a body with that
 *     body's pstMemCp.
 *  3. A target is overwritten and not cleared: what it owned before is lost. It may hold anything.
 *  4. After a failed copy the target may hold a part of it, and never a pointer into the source:
 *     SdpClearLine may be called on it. Nothing of a failed clone is left.
 *  5. Source and target are two records. A source is only read.
 */
#ifndef SDPLINE_SDPCOPY_H
#define SDPLINE_SDPCOPY_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Any line -------------------------------------------------------------------------------- */

/* Deep copy of *pSrc into *pDst. Returns a bare 1 when the stack's generic service fails, which
 * copies every kind but SDP_LINE_MEDIA and SDP_LINE_ATTRIBUTE. */
SDPLINE_API SDPResult SdpCopyLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                  void *pDst);

/* Deep copy of *pSrc into a new record, to be given back with SdpFreeLine. *ppDst is written on
 * success only. */
SDPLINE_API SDPResult SdpCloneLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                   void **ppDst);

/* Gives back everything that *pValue owns. An m= line and an attribute become all zero; of the
 * others pointers and counts do, and plain numbers stay. */
SDPLINE_API SDPResult SdpClearLine(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue);

/* Clears **ppValue, gives the record itself back and nulls *ppValue. Returns what pfnFree returns,
 * and 0 for a null *ppValue. */
SDPLINE_API SDPResult SdpFreeLine(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue);

/* The checks of the four: all pointers given, and a line type below SDP_LINE_COUNT. Those of copy
 * and clone log a failure, those of clear and free do not. */
SDPLINE_API SDPResult SdpCopyLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                          void *pDst);
SDPLINE_API SDPResult SdpCloneLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType,
                                           const void *pSrc, void **ppDst);
SDPLINE_API SDPResult SdpClearLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue);
SDPLINE_API SDPResult SdpFreeLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue);

/* ---- The two that are done by hand ----------------------------------------------------------- */

/* Null arguments are outside the contract of everything below. */

/* A failing string service's own code is the result. Types 0 and above 40 have no value: the type
 * is copied and the name nulled; the value of the target stays as it was, as it does for every
 * type without one. */
SDPLINE_API SDPResult SdpCopyAttribute(SDPMemCp *pstMemCp, const SDPAttr *pstSrc, SDPAttr *pstDst);
/* Leaves the record all zero; always 0. */
SDPLINE_API SDPResult SdpClearAttribute(SDPMemCp *pstMemCp, SDPAttr *pstAttr);

SDPLINE_API SDPResult SdpCopyMediaField(SDPMemCp *pstMemCp, const SDPMediaField *pstSrc,
                                        SDPMediaField *pstDst);
SDPLINE_API SDPResult SdpCopyMediaFormat(SDPMemCp *pstMemCp, const SDPMediaFmt *pstSrc,
                                         SDPMediaFmt *pstDst);
/* More than SDP_MAX_PAYLOADS numbers are refused, the target untouched. A count without an array
 * is copied as it is. */
SDPLINE_API SDPResult SdpCopyNonOthersMediaFormat(SDPMemCp *pstMemCp, const SDPRtpPayLoads *pstSrc,
                                                  SDPRtpPayLoads *pstDst);
/* Leaves the record all zero; always 0. */
SDPLINE_API SDPResult SdpClearMediaField(SDPMemCp *pstMemCp, SDPMediaField *pstField);

#ifdef __cplusplus
}
#endif

#endif
