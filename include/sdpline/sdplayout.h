/*
 * sdplayout.h: the sizes of the records and the offsets of their fields, checked by every compiler
 * that reads sdpline.h. With pointers of 8 bytes they are part of the binary interface; with
 * pointers of 4 bytes the records are smaller, and the interface is that of the build.
 */
#ifndef SDPLINE_SDPLAYOUT_H
#define SDPLINE_SDPLAYOUT_H

#include <stddef.h>

#include "sdpline/sdprecords.h"

#if UINTPTR_MAX == 0xFFFFFFFFFFFFFFFFu

#ifdef __cplusplus
#define SDPLINE_CHECK(condition) static_assert(condition, #condition)
#else
#define SDPLINE_CHECK(condition) _Static_assert(condition, #condition)
#endif
#define SDPLINE_AT(type, field, offset) SDPLINE_CHECK(offsetof(type, field) == (offset))
#define SDPLINE_SIZE(type, size)        SDPLINE_CHECK(sizeof(type) == (size))

SDPLINE_SIZE(SipString, 12);
SDPLINE_AT(SipString, ulLen, 0);
SDPLINE_AT(SipString, pcData, 4);

SDPLINE_SIZE(SDPMemCp, 24);
SDPLINE_AT(SDPMemCp, pService, 0);
SDPLINE_AT(SDPMemCp, pfnAlloc, 8);
SDPLINE_AT(SDPMemCp, pfnFree, 16);

SDPLINE_SIZE(SDPStringList, 12);
SDPLINE_AT(SDPStringList, ulNoOfStrings, 0);
SDPLINE_AT(SDPStringList, ppstStrings, 4);

SDPLINE_SIZE(SDPNetType, 12);
SDPLINE_AT(SDPNetType, enNetType, 0);
SDPLINE_AT(SDPNetType, pstrOtherNetType, 4);

SDPLINE_SIZE(SDPAddrType, 12);
SDPLINE_AT(SDPAddrType, enAddrType, 0);
SDPLINE_AT(SDPAddrType, pstrOtherAddrType, 4);

SDPLINE_SIZE(SDPOrigin, 72);
SDPLINE_AT(SDPOrigin, strUserName, 0);
SDPLINE_AT(SDPOrigin, strSessionId, 12);
SDPLINE_AT(SDPOrigin, strSessionVersion, 24);
SDPLINE_AT(SDPOrigin, stNetType, 36);
SDPLINE_AT(SDPOrigin, stAddrType, 48);
SDPLINE_AT(SDPOrigin, strAddress, 60);

SDPLINE_SIZE(SDPTptAddr, 20);
SDPLINE_AT(SDPTptAddr, enTptAddrType, 0);
SDPLINE_AT(SDPTptAddr, unTptAddr.aucIpv4, 4);
SDPLINE_AT(SDPTptAddr, unTptAddr.aucIpv6, 4);

SDPLINE_SIZE(SDPConnection, 52);
SDPLINE_AT(SDPConnection, stNetType, 0);
SDPLINE_AT(SDPConnection, stAddrType, 12);
SDPLINE_AT(SDPConnection, stTptAddr, 24);
SDPLINE_AT(SDPConnection, ulTtl, 44);
SDPLINE_AT(SDPConnection, ulNoOfAddrs, 48);

SDPLINE_SIZE(SDPKey, 12);
SDPLINE_AT(SDPKey, strKey, 0);

SDPLINE_SIZE(SDPTimeUnit, 8);
SDPLINE_AT(SDPTimeUnit, enTimeType, 0);
SDPLINE_AT(SDPTimeUnit, ulTimeValue, 4);

SDPLINE_SIZE(SDPRepeatField, 12);
SDPLINE_AT(SDPRepeatField, ulNoOfTimeUnits, 0);
SDPLINE_AT(SDPRepeatField, ppstTimeUnits, 4);

SDPLINE_SIZE(SDPRepeatFieldSet, 12);
SDPLINE_AT(SDPRepeatFieldSet, ulNoOfRepeatFields, 0);
SDPLINE_AT(SDPRepeatFieldSet, ppstRepeatFields, 4);

SDPLINE_SIZE(SDPTimeField, 16);
SDPLINE_AT(SDPTimeField, ulStartTime, 0);
SDPLINE_AT(SDPTimeField, ulStopTime, 4);
SDPLINE_AT(SDPTimeField, pstRepeatFieldSet, 8);

SDPLINE_SIZE(SDPTimeSet, 12);
SDPLINE_AT(SDPTimeSet, ulNoOfTimeFields, 0);
SDPLINE_AT(SDPTimeSet, ppstTimeFields, 4);

SDPLINE_SIZE(SDPRtpMapAttr, 28);
SDPLINE_AT(SDPRtpMapAttr, ulPayloadType, 0);
SDPLINE_AT(SDPRtpMapAttr, ulEncodingId, 4);
SDPLINE_AT(SDPRtpMapAttr, strEncodingName, 8);
SDPLINE_AT(SDPRtpMapAttr, ulClockRate, 20);
SDPLINE_AT(SDPRtpMapAttr, ulEncodingParams, 24);

SDPLINE_SIZE(SDPSilenceSuppression, 16);
SDPLINE_AT(SDPSilenceSuppression, bOn, 0);
SDPLINE_AT(SDPSilenceSuppression, strParams, 4);

SDPLINE_SIZE(SDPEcan, 20);
SDPLINE_AT(SDPEcan, bOn, 0);
SDPLINE_AT(SDPEcan, enEcanDir, 4);
SDPLINE_AT(SDPEcan, strParams, 8);

SDPLINE_SIZE(SDPIpBcp, 8);
SDPLINE_AT(SDPIpBcp, ucVersion, 0);
SDPLINE_AT(SDPIpBcp, ucReserved, 1);
SDPLINE_AT(SDPIpBcp, usReserved, 2);
SDPLINE_AT(SDPIpBcp, ucType, 4);

SDPLINE_SIZE(SDPPreconditionS, 12);
SDPLINE_AT(SDPPreconditionS, enPreconditionType, 0);
SDPLINE_AT(SDPPreconditionS, pstrOtherPrecondition, 4);

SDPLINE_SIZE(SDPRsrcMgmtStatus, 24);
SDPLINE_AT(SDPRsrcMgmtStatus, stPrecondition, 0);
SDPLINE_AT(SDPRsrcMgmtStatus, enStatusType, 12);
SDPLINE_AT(SDPRsrcMgmtStatus, enStrengthTag, 16);
SDPLINE_AT(SDPRsrcMgmtStatus, enDirTag, 20);

SDPLINE_SIZE(SDPAttr, 40);
SDPLINE_AT(SDPAttr, ulAttrType, 0);
SDPLINE_AT(SDPAttr, unAttrValue.stRtpMap, 4);
SDPLINE_AT(SDPAttr, unAttrValue.ulValue, 4);
SDPLINE_AT(SDPAttr, unAttrValue.strValue, 4);
SDPLINE_AT(SDPAttr, unAttrValue.stSilenceSupp, 4);
SDPLINE_AT(SDPAttr, unAttrValue.stEcan, 4);
SDPLINE_AT(SDPAttr, unAttrValue.stRsrcMgmtStatus, 4);
SDPLINE_AT(SDPAttr, unAttrValue.stIpBcp, 4);
SDPLINE_AT(SDPAttr, unAttrValue.enT120Mode, 4);
SDPLINE_AT(SDPAttr, pstAttrName, 32);

SDPLINE_SIZE(SDPAttrList, 12);
SDPLINE_AT(SDPAttrList, ulNoOfAttrs, 0);
SDPLINE_AT(SDPAttrList, ppstAttrs, 4);

SDPLINE_SIZE(SDPMedia, 12);
SDPLINE_AT(SDPMedia, enMediaType, 0);
SDPLINE_AT(SDPMedia, pstrOtherMedia, 4);

SDPLINE_SIZE(SDPMediaProto, 12);
SDPLINE_AT(SDPMediaProto, enProto, 0);
SDPLINE_AT(SDPMediaProto, pstrOtherProto, 4);

SDPLINE_SIZE(SDPRtpPayLoads, 12);
SDPLINE_AT(SDPRtpPayLoads, ulNoOfPayLoads, 0);
SDPLINE_AT(SDPRtpPayLoads, pulPayLoads, 4);

SDPLINE_SIZE(SDPMediaFmt, 16);
SDPLINE_AT(SDPMediaFmt, enFmtType, 0);
SDPLINE_AT(SDPMediaFmt, unMediaFmt.stRtpPayLoads, 4);
SDPLINE_AT(SDPMediaFmt, unMediaFmt.strOtherFmts, 4);

SDPLINE_SIZE(SDPMediaField, 48);
SDPLINE_AT(SDPMediaField, stMedia, 0);
SDPLINE_AT(SDPMediaField, ulPort, 12);
SDPLINE_AT(SDPMediaField, ulNoOfPorts, 16);
SDPLINE_AT(SDPMediaField, stProto, 20);
SDPLINE_AT(SDPMediaField, stMediaFmt, 32);

SDPLINE_SIZE(SDPMediaDesc, 88);
SDPLINE_AT(SDPMediaDesc, stMediaField, 0);
SDPLINE_AT(SDPMediaDesc, pstrMediaInfo, 48);
SDPLINE_AT(SDPMediaDesc, pstConnection, 56);
SDPLINE_AT(SDPMediaDesc, pstBandwidthList, 64);
SDPLINE_AT(SDPMediaDesc, pstKey, 72);
SDPLINE_AT(SDPMediaDesc, pstAttrList, 80);

SDPLINE_SIZE(SDPMediaSet, 12);
SDPLINE_AT(SDPMediaSet, ulNoOfMediaDescs, 0);
SDPLINE_AT(SDPMediaSet, ppstMediaDescs, 4);

SDPLINE_SIZE(SdpLine, 192);
SDPLINE_AT(SdpLine, ulProtoVersion, 0);
SDPLINE_AT(SdpLine, stOrigin, 4);
SDPLINE_AT(SdpLine, strSessionName, 76);
SDPLINE_AT(SdpLine, pstrSessionInfo, 88);
SDPLINE_AT(SdpLine, pstrUri, 96);
SDPLINE_AT(SdpLine, pstEmailList, 104);
SDPLINE_AT(SdpLine, pstPhoneList, 112);
SDPLINE_AT(SdpLine, pstConnection, 120);
SDPLINE_AT(SdpLine, pstBandwidthList, 128);
SDPLINE_AT(SdpLine, stTimeSet, 136);
SDPLINE_AT(SdpLine, pstrTimeZone, 148);
SDPLINE_AT(SdpLine, pstKey, 156);
SDPLINE_AT(SdpLine, pstAttrList, 164);
SDPLINE_AT(SdpLine, stMediaSet, 172);
SDPLINE_AT(SdpLine, pstMemCp, 184);

#undef SDPLINE_AT
#undef SDPLINE_SIZE
#undef SDPLINE_CHECK

#endif

#endif
