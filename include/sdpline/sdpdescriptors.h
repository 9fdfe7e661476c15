/*
 * sdpdescriptors.h: descriptors of the records of sdprecords.h for the stack's generic services.
 *
 * SipDsmCopyGeneralField and SipDsmClearGeneralField of sipcore.h walk a value by a descriptor;
 * programs may pass these to them. The comment after each descriptor is its size in bytes.
 *
 *     g_gstSDPOriginDef { 72, SIP_DSM_SEQUENCE, . }
 *                                               |
 *             g_gstSDPOriginSeqDef { 6, . } <---+
 *                                       |
 *        g_gpstSDPOriginSeqElmntDef <---+   { &g_gstSdpStringDef, ..., &g_gstSDPNetTypeDef, ... }
 *
 * Not covered by the descriptors
 *  1. Attributes. g_gpstSDPAttrUnionDef has ten alternatives for forty types,
 *     g_gstSDPSilenceSuppressionDef leaves out the text, and g_gstSDPRsrcMgmtStatusDef describes
 *     the precondition as one byte.
 *  2. Payload lists. g_gstSDPRtpPayLoadsDef describes one number, whatever the count is.
 *  Never pass an SDPAttr, its value, an SDPMediaFmt or an SDPMediaField to the generic services:
 *  SdpCopyLine and SdpClearLine handle those without their descriptors.
 */
#ifndef SDPLINE_SDPDESCRIPTORS_H
#define SDPLINE_SDPDESCRIPTORS_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- The table of lines ---------------------------------------------------------------------- */

/* The descriptor of each kind of line, by SDP_LINE_...; SdpCloneLine allocates its ulSize. */
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSdpLineDef[SDP_LINE_COUNT];

/* ---- Numbers and strings --------------------------------------------------------------------- */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPProtoVersionDef;              /* 4 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpUnConstrainedUInt8Def;        /* 1 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpUnConstrainedUInt16Def;       /* 2 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpUnConstrainedUInt32Def;       /* 4 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpStringDef;                    /* 12 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpPortiPortDef;                 /* 4 */
SDPLINE_API extern const SipDsmRangeDef g_gstSdpPortConstrainedInt16Def;     /* 0 to 65535 */
SDPLINE_API extern const SipDsmTypeDef g_gstSdpUInt8Def;                     /* 1 */
SDPLINE_API extern const SipDsmRangeDef g_gstSdpIPFieldConstrainedInt8Def;   /* 0 to 255 */
SDPLINE_API extern const SipDsmTypeDef g_gstdpUnConstrainedUInt32PointerDef; /* 8 */

/* ---- o= and c= ------------------------------------------------------------------------------- */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPOriginDef; /* 72 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPOriginSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPOriginSeqElmntDef[6];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPNetTypeDef; /* 12 */
SDPLINE_API extern const SipDsmCPointerDef g_gstSDPNetTypeCPointerDef;
SDPLINE_API extern const SipDsmTypeDef g_gstSDPAddrTypeDef; /* 12 */
SDPLINE_API extern const SipDsmCPointerDef g_gstSDPAddrTypeCPointerDef;

SDPLINE_API extern const SipDsmTypeDef g_gstSDPConnectionDef; /* 52 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPConnectionSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPConnectionSeqElmntDef[5];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPTptAddrDef; /* 20 */
SDPLINE_API extern const SipDsmChoiceDef g_gstSDPTptAddrChoiceDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPTptAddrUnionDef[2];
SDPLINE_API extern const SipDsmTypeDef g_gstSDPTptAddrIPV4Def; /* 4 */
SDPLINE_API extern const SipDsmSetDef g_gstSdpIPV4SetDef;
SDPLINE_API extern const SipDsmTypeDef g_gstSDPTptAddrIPV6Def; /* 16 */
SDPLINE_API extern const SipDsmSetDef g_gstSdpIPV6SetDef;

/* ---- k=, t= and r= --------------------------------------------------------------------------- */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPKeyDef; /* 12 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPKeySeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPKeySeqElmntDef[1];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPTimeFieldDef; /* 16 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPTimeFieldSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPTimeFieldSeqElmntDef[3];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPRepeatFieldSetPointerDef; /* 8 */
SDPLINE_API extern const SipDsmTypeDef g_gstSDPRepeatFieldSetDef;        /* 12 */
SDPLINE_API extern const SipDsmTypeDef g_gstSDPRepeatFieldDef;           /* 12 */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPTimeUnitDef; /* 8 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPTimeUnitSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPTimeUnitSeqElmntDef[2];

/* ---- m= -------------------------------------------------------------------------------------- */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPMediaFieldDef; /* 48 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPMediaFieldSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPMediaFieldSeqElmntDef[5];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPMediaDef; /* 12 */
SDPLINE_API extern const SipDsmCPointerDef g_gstSDPMediaCPointerDef;
SDPLINE_API extern const SipDsmTypeDef g_gstSDPMediaProtoDef; /* 12 */
SDPLINE_API extern const SipDsmCPointerDef g_gstSDPMediaProtoCPointerDef;

SDPLINE_API extern const SipDsmTypeDef g_gstSDPMediaFmtDef;      /* 16 */
SDPLINE_API extern const SipDsmChoiceDef g_gstSDPMediaChoiceDef; /* of the format */
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPMediaUnionDef[4];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPRtpPayLoadsDef; /* 12 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPRtpPayLoadsSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPRtpPayLoadsSeqElmntDef[2];

/* ---- a= -------------------------------------------------------------------------------------- */

SDPLINE_API extern const SipDsmTypeDef g_gstSDPAttrDef; /* 40 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPAttrSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPAttrSeqElmntDef[2];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPAttrTypeDef; /* 32: the type and its value */
SDPLINE_API extern const SipDsmChoiceDef g_gstSDPAttrUnionChoiceDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPAttrUnionDef[10];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPRtpMapAttrDef; /* 28 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPRtpMapAttrSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPRtpMapAttrSeqElmntDef[5];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPSilenceSuppressionDef; /* 16 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPSilenceSuppressionSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPSilenceSuppressionSeqElmntDef[1];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPIpBcpDef; /* 8 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPIpBcpSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPIpBcpSeqElmntDef[4];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPRsrcMgmtStatusDef; /* 24 */
SDPLINE_API extern const SipDsmSequenceDef g_gstSDPRsrcMgmtStatusSeqDef;
SDPLINE_API extern const SipDsmTypeDef *const g_gpstSDPRsrcMgmtStatusSeqElmntDef[4];

SDPLINE_API extern const SipDsmTypeDef g_gstSDPPreconditionSDef; /* 12 */
SDPLINE_API extern const SipDsmCPointerDef g_gstSDPPreconditionCPointerDef;

#ifdef __cplusplus
}
#endif

#endif
