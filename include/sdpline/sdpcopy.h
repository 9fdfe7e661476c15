/*
 * sdpcopy.h: copying, cloning, clearing and freeing one line of a body.
 *
 * Conventions
 *  1. A line is given by its kind, SDP_LINE_..., and its record; the enum in sdprecords.h lists
 *     both. SDP_LINE_MEDIA is the m= line only, without the lines that follow it.
 *  2. All memory is allocated from, and freed to, the memory control that is passed. It is the
 *     target's, and may differ from the source's: to copy a line into a body, pass that body's
 *     pstMemCp.
 *  3. A target is overwritten without being cleared: memory that it referred to is not freed. Its
 *     content before the copy does not matter.
 *  4. After a failed copy the target may hold a part of the source, but no pointer into it:
 *     SdpClearLine may be called on it. A failed clone leaves nothing allocated.
 *  5. Source and target must be different records. A source is only read.
 */
#ifndef SDPLINE_SDPCOPY_H
#define SDPLINE_SDPCOPY_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Any line -------------------------------------------------------------------------------- */

/* Makes a deep copy of *pSrc in *pDst. The stack's generic service copies every kind but
 * SDP_LINE_MEDIA and SDP_LINE_ATTRIBUTE; if it fails, the result is a bare 1. */
SDPLINE_API SDPResult SdpCopyLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                  void *pDst);

/* Makes a deep copy of *pSrc in a new record, to be freed with SdpFreeLine. *ppDst is written on
 * success only. */
SDPLINE_API SDPResult SdpCloneLine(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                   void **ppDst);

/* Frees everything that *pValue refers to. An m= line or an attribute becomes all zero; in other
 * records only pointers and counts become zero, and plain numbers stay. */
SDPLINE_API SDPResult SdpClearLine(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue);

/* Clears **ppValue, frees the record itself and sets *ppValue to null. Returns the result of
 * pfnFree, or 0 for a null *ppValue. */
SDPLINE_API SDPResult SdpFreeLine(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue);

/* The checks of the arguments of these four operations: no null pointer, and a line type below
 * SDP_LINE_COUNT. Those of copy and clone log a failure, those of clear and free do not. */
SDPLINE_API SDPResult SdpCopyLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, const void *pSrc,
                                          void *pDst);
SDPLINE_API SDPResult SdpCloneLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType,
                                           const void *pSrc, void **ppDst);
SDPLINE_API SDPResult SdpClearLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void *pValue);
SDPLINE_API SDPResult SdpFreeLineValidate(SDPMemCp *pstMemCp, uint32_t enLineType, void **ppValue);

/* ---- Attributes and m= lines ----------------------------------------------------------------- */

/* Null arguments are outside the contract of everything below. */

/* If a string service fails, its result is returned. For a type without a value, and for numbers
 * that are not types (0 and above 40), the type is copied, the name is set to null, and the value
 * of the target is not written. */
SDPLINE_API SDPResult SdpCopyAttribute(SDPMemCp *pstMemCp, const SDPAttr *pstSrc, SDPAttr *pstDst);
/* Frees what the record refers to and zeroes it; always returns 0. */
SDPLINE_API SDPResult SdpClearAttribute(SDPMemCp *pstMemCp, SDPAttr *pstAttr);

SDPLINE_API SDPResult SdpCopyMediaField(SDPMemCp *pstMemCp, const SDPMediaField *pstSrc,
                                        SDPMediaField *pstDst);
SDPLINE_API SDPResult SdpCopyMediaFormat(SDPMemCp *pstMemCp, const SDPMediaFmt *pstSrc,
                                         SDPMediaFmt *pstDst);
/* More than SDP_MAX_PAYLOADS numbers are refused, and the target is then not written. A count with
 * a null array is copied as it is. */
SDPLINE_API SDPResult SdpCopyNonOthersMediaFormat(SDPMemCp *pstMemCp, const SDPRtpPayLoads *pstSrc,
                                                  SDPRtpPayLoads *pstDst);
/* Frees what the record refers to and zeroes it; always returns 0. */
SDPLINE_API SDPResult SdpClearMediaField(SDPMemCp *pstMemCp, SDPMediaField *pstField);

#ifdef __cplusplus
}
#endif

#endif
