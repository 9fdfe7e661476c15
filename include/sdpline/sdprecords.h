/*
 * sdprecords.h: the tree of records of one SDP body, and the codes of their fields.
 *
 * Conventions
 *  1. All records are packed to 4 bytes: a pointer after a 4-byte field is not padded. The size
 *     and the offset of every field are part of the binary interface and checked at compile time.
 *  2. A field named str... holds a SipString; pstr... points to one, null meaning absent.
 *  3. A list is a count and an array of exactly that many pointers; count 0 has a null array.
 *  4. A code with an "other" value is followed by a pointer to the text as it was written, used
 *     for that value only and null otherwise.
 *  5. Everything that a decoded body points to is in one memory block, and is released with it.
 *  6. Numbers are decimal values of the text; those without a stated bound wrap modulo 2^32.
 *
 * Line references are to RFC 4566 section 5 unless another RFC is named.
 */
#ifndef SDPLINE_SDPRECORDS_H
#define SDPLINE_SDPRECORDS_H

#include <stdint.h>

#include "sdpline/sipcore.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Value codes ---------------------------------------------------------------------------- */

/* SDPNetType.enNetType */
enum { SDP_NETTYPE_IN = 1, SDP_NETTYPE_OTHER = 2 };

/* SDPAddrType.enAddrType */
enum { SDP_ADDRTYPE_IP4 = 1, SDP_ADDRTYPE_IP6 = 2, SDP_ADDRTYPE_OTHER = 3 };

/* SDPTptAddr.enTptAddrType */
enum { SDP_TPTADDR_NONE = 0, SDP_TPTADDR_IPV4 = 1, SDP_TPTADDR_IPV6 = 2 };

/* SDPConnection.ulTtl and ulNoOfAddrs when the text gives none. */
#define SDP_NOT_GIVEN 0xFFFFFFFFu

/* SDPTimeUnit.enTimeType. A number without a unit letter is seconds. */
enum { SDP_TIME_DAYS = 1, SDP_TIME_HOURS = 2, SDP_TIME_MINUTES = 3, SDP_TIME_SECONDS = 4 };

/* SDPMedia.enMediaType */
enum {
    SDP_MEDIA_AUDIO = 1,
    SDP_MEDIA_VIDEO = 2,
    SDP_MEDIA_APPLICATION = 3,
    SDP_MEDIA_DATA = 4,
    SDP_MEDIA_CONTROL = 5,
    SDP_MEDIA_IMAGE = 6,
    SDP_MEDIA_OTHER = 7
};

/* SDPMediaProto.enProto */
enum {
    SDP_PROTO_RTP_AVP = 1,
    SDP_PROTO_UDP = 2,
    SDP_PROTO_TCP = 3,
    SDP_PROTO_UDPTL = 4,
    SDP_PROTO_RTP_SAVP = 5,
    SDP_PROTO_RTP_AVPF = 6,
    SDP_PROTO_OTHER = 7
};

/* SDPMediaFmt.enFmtType. Codes 2 and 3 have no payload numbers. */
enum { SDP_FMT_RTP_PAYLOADS = 1, SDP_FMT_T38 = 2, SDP_FMT_T120 = 3, SDP_FMT_OTHER = 4 };

/* The most payload numbers of one m= line. */
#define SDP_MAX_PAYLOADS 100u

/* SDPAttr.ulAttrType, with the union member that goes with it. */
enum {
    SDP_ATTR_NONE = 0,
    SDP_ATTR_RTPMAP = 1,    /* stRtpMap */
    SDP_ATTR_SENDRECV = 2,  /* nothing */
    SDP_ATTR_SENDONLY = 3,  /* nothing */
    SDP_ATTR_RECVONLY = 4,  /* nothing */
    SDP_ATTR_INACTIVE = 5,  /* nothing */
    SDP_ATTR_PTIME = 6,     /* ulValue, milliseconds */
    SDP_ATTR_MAXPTIME = 7,  /* ulValue, milliseconds */
    SDP_ATTR_FRAMERATE = 8, /* ulValue, frames per second, fraction dropped */
    SDP_ATTR_FMTP = 9,      /* strValue, as are all up to 17 */
    SDP_ATTR_CAT = 10,
    SDP_ATTR_KEYWDS = 11,
    SDP_ATTR_TOOL = 12,
    SDP_ATTR_ORIENT = 13,
    SDP_ATTR_TYPE = 14,
    SDP_ATTR_CHARSET = 15,
    SDP_ATTR_SDPLANG = 16,
    SDP_ATTR_LANG = 17,
    SDP_ATTR_QUALITY = 18,              /* ulValue */
    SDP_ATTR_T38_FAX_VERSION = 19,      /* ulValue; T.38 Annex D, as are all up to 27 */
    SDP_ATTR_T38_MAX_BIT_RATE = 20,     /* ulValue, bits per second */
    SDP_ATTR_T38_FILL_BIT_REMOVAL = 21, /* ulValue, a flag */
    SDP_ATTR_T38_TRANSCODING_MMR = 22,  /* ulValue, a flag */
    SDP_ATTR_T38_TRANSCODING_JBIG = 23, /* ulValue, a flag */
    SDP_ATTR_T38_RATE_MANAGEMENT = 24,  /* ulValue, SDP_T38_RATE_... */
    SDP_ATTR_T38_MAX_BUFFER = 25,       /* ulValue, bytes */
    SDP_ATTR_T38_MAX_DATAGRAM = 26,     /* ulValue, bytes */
    SDP_ATTR_T38_UDP_EC = 27,           /* ulValue, SDP_T38_EC_... */
    SDP_ATTR_SILENCE_SUPP = 28,         /* stSilenceSupp; RFC 3108 section 5.6 */
    SDP_ATTR_ECAN = 29,                 /* stEcan; RFC 3108 section 5.6 */
    SDP_ATTR_FAX = 30,                  /* nothing */
    SDP_ATTR_MODEM = 31,                /* nothing */
    SDP_ATTR_X_FAX = 32,                /* nothing */
    SDP_ATTR_X_MODEM = 33,              /* nothing */
    SDP_ATTR_UNREC_VALUE = 34,          /* strValue; the name is in pstAttrName */
    SDP_ATTR_UNREC_NOVALUE = 35,        /* nothing; the name is in pstAttrName */
    SDP_ATTR_DES = 36,                  /* stRsrcMgmtStatus; RFC 3312 section 4 */
    SDP_ATTR_CURR = 37,                 /* stRsrcMgmtStatus */
    SDP_ATTR_CONF = 38,                 /* stRsrcMgmtStatus */
    SDP_ATTR_IPBCP = 39,                /* stIpBcp; ITU-T Q.1970 */
    SDP_ATTR_SETUP = 40,                /* enT120Mode; RFC 4145 section 4 */
    SDP_ATTR_UNKNOWN = 41               /* the result of a lookup; never in a record */
};

/* SDP_ATTR_T38_RATE_MANAGEMENT and SDP_ATTR_T38_UDP_EC */
enum { SDP_T38_RATE_LOCAL_TCF = 1, SDP_T38_RATE_TRANSFERRED_TCF = 2 };
enum { SDP_T38_EC_FEC = 1, SDP_T38_EC_REDUNDANCY = 2 };

/* SDPEcan.enEcanDir; for 0 the encoder writes no direction */
enum { SDP_ECAN_FB = 1, SDP_ECAN_F = 2, SDP_ECAN_B = 3 };

/* SDPIpBcp.ucType */
enum {
    SDP_IPBCP_REQUEST = 1,
    SDP_IPBCP_ACCEPTED = 2,
    SDP_IPBCP_CONFUSED = 3,
    SDP_IPBCP_REJECTED = 4
};

/* SDPAttr.unAttrValue.enT120Mode */
enum { SDP_T120_PASSIVE = 1, SDP_T120_ACTIVE = 2, SDP_T120_ACTPASS = 3 };

/* SDPRsrcMgmtStatus */
enum { SDP_PRECONDITION_QOS = 0, SDP_PRECONDITION_OTHER = 1 };
enum { SDP_STATUS_E2E = 0, SDP_STATUS_LOCAL = 1, SDP_STATUS_REMOTE = 2 };
enum {
    SDP_STRENGTH_MANDATORY = 0,
    SDP_STRENGTH_OPTIONAL = 1,
    SDP_STRENGTH_NONE = 2,
    SDP_STRENGTH_FAILURE = 3,
    SDP_STRENGTH_UNKNOWN = 4
};
enum { SDP_DIR_NONE = 0, SDP_DIR_SEND = 1, SDP_DIR_RECV = 2, SDP_DIR_SENDRECV = 3 };

/* SDPLineType: one kind of line, and the record that goes with it. */
enum {
    SDP_LINE_VERSION = 0,    /* uint32_t */
    SDP_LINE_CONNECTION = 1, /* SDPConnection */
    SDP_LINE_ORIGIN = 2,     /* SDPOrigin */
    SDP_LINE_MEDIA = 3,      /* SDPMediaField: the m= line only */
    SDP_LINE_ATTRIBUTE = 4,  /* SDPAttr */
    SDP_LINE_TIME = 5,       /* SDPTimeField */
    SDP_LINE_REPEAT = 6,     /* SDPRepeatField */
    SDP_LINE_INFO = 7,       /* SipString, as are all up to 13 */
    SDP_LINE_NAME = 8,
    SDP_LINE_URI = 9,
    SDP_LINE_EMAIL = 10,
    SDP_LINE_PHONE = 11,
    SDP_LINE_BANDWIDTH = 12,
    SDP_LINE_ZONE = 13,
    SDP_LINE_KEY = 14,  /* SDPKey */
    SDP_LINE_COUNT = 15 /* this and larger numbers are refused */
};

/* ---- Records -------------------------------------------------------------------------------- */

#pragma pack(push, 4)

typedef struct SDPStringList {
    uint32_t ulNoOfStrings;
    SipString **ppstStrings;
} SDPStringList;

typedef struct SDPNetType {
    uint32_t enNetType;
    SipString *pstrOtherNetType;
} SDPNetType;

typedef struct SDPAddrType {
    uint32_t enAddrType;
    SipString *pstrOtherAddrType;
} SDPAddrType;

/* o= (5.2). Session id and version are kept as text: their digits have no bound. */
typedef struct SDPOrigin {
    SipString strUserName;
    SipString strSessionId;
    SipString strSessionVersion;
    SDPNetType stNetType;
    SDPAddrType stAddrType;
    SipString strAddress; /* as written: a host name or an address */
} SDPOrigin;

/* A binary address in network order, first octet first. */
typedef struct SDPTptAddr {
    uint32_t enTptAddrType;
    union {
        uint8_t aucIpv4[4];
        uint8_t aucIpv6[16];
    } unTptAddr;
} SDPTptAddr;

/* c= (5.7). SDP_NOT_GIVEN where the text gives no TTL or no number of addresses. */
typedef struct SDPConnection {
    SDPNetType stNetType;
    SDPAddrType stAddrType;
    SDPTptAddr stTptAddr;
    uint32_t ulTtl;
    uint32_t ulNoOfAddrs;
} SDPConnection;

/* k= (5.12): the whole value. */
typedef struct SDPKey {
    SipString strKey;
} SDPKey;

/* One typed time of an r= line: the number as written and its unit. */
typedef struct SDPTimeUnit {
    uint32_t enTimeType;
    uint32_t ulTimeValue;
} SDPTimeUnit;

/* r= (5.10): repeat interval, active duration, then the offsets. */
typedef struct SDPRepeatField {
    uint32_t ulNoOfTimeUnits;
    SDPTimeUnit **ppstTimeUnits;
} SDPRepeatField;

typedef struct SDPRepeatFieldSet {
    uint32_t ulNoOfRepeatFields;
    SDPRepeatField **ppstRepeatFields;
} SDPRepeatFieldSet;

/* t= (5.9), in NTP seconds, with the r= lines that follow it, or null. */
typedef struct SDPTimeField {
    uint32_t ulStartTime;
    uint32_t ulStopTime;
    SDPRepeatFieldSet *pstRepeatFieldSet;
} SDPTimeField;

/* The t= lines. A decoded count is the number of lines modulo 256. */
typedef struct SDPTimeSet {
    uint32_t ulNoOfTimeFields;
    SDPTimeField **ppstTimeFields;
} SDPTimeSet;

/* a=rtpmap (6). */
typedef struct SDPRtpMapAttr {
    uint32_t ulPayloadType;
    uint32_t ulEncodingId;     /* static profile number 1 to 35; 0 if the name has none */
    SipString strEncodingName; /* as written */
    uint32_t ulClockRate;      /* Hz; 0: not given */
    uint32_t ulEncodingParams; /* channels; 1 when the text gives none */
} SDPRtpMapAttr;

/* a=silenceSupp; strParams is the text after "on" or "off", with its leading blank. */
typedef struct SDPSilenceSuppression {
    uint32_t bOn;
    SipString strParams;
} SDPSilenceSuppression;

/* a=ecan; strParams is the text after "on" or "off", with its leading blank. */
typedef struct SDPEcan {
    uint32_t bOn;
    uint32_t enEcanDir;
    SipString strParams;
} SDPEcan;

/* a=ipbcp. The two reserved fields are neither read nor written. */
typedef struct SDPIpBcp {
    uint8_t ucVersion;
    uint8_t ucReserved;
    uint16_t usReserved;
    uint32_t ucType;
} SDPIpBcp;

typedef struct SDPPreconditionS {
    uint32_t enPreconditionType;
    SipString *pstrOtherPrecondition;
} SDPPreconditionS;

/* a=curr, a=des, a=conf (RFC 3312). Only a=des has a strength. */
typedef struct SDPRsrcMgmtStatus {
    SDPPreconditionS stPrecondition;
    uint32_t enStatusType;
    uint32_t enStrengthTag;
    uint32_t enDirTag;
} SDPRsrcMgmtStatus;

/* One a= line (5.13). ulAttrType selects the member of the union. */
typedef struct SDPAttr {
    uint32_t ulAttrType;
    union {
        SDPRtpMapAttr stRtpMap;
        uint32_t ulValue;
        SipString strValue;
        SDPSilenceSuppression stSilenceSupp;
        SDPEcan stEcan;
        SDPRsrcMgmtStatus stRsrcMgmtStatus;
        SDPIpBcp stIpBcp;
        uint32_t enT120Mode;
    } unAttrValue;
    SipString *pstAttrName; /* types 34 and 35 only */
} SDPAttr;

typedef struct SDPAttrList {
    uint32_t ulNoOfAttrs;
    SDPAttr **ppstAttrs;
} SDPAttrList;

typedef struct SDPMedia {
    uint32_t enMediaType;
    SipString *pstrOtherMedia;
} SDPMedia;

typedef struct SDPMediaProto {
    uint32_t enProto;
    SipString *pstrOtherProto;
} SDPMediaProto;

/* At most SDP_MAX_PAYLOADS numbers, in text order. */
typedef struct SDPRtpPayLoads {
    uint32_t ulNoOfPayLoads;
    uint32_t *pulPayLoads;
} SDPRtpPayLoads;

typedef struct SDPMediaFmt {
    uint32_t enFmtType;
    union {
        SDPRtpPayLoads stRtpPayLoads; /* every code but 4 */
        SipString strOtherFmts;       /* code 4 */
    } unMediaFmt;
} SDPMediaFmt;

/* m= (5.14). */
typedef struct SDPMediaField {
    SDPMedia stMedia;
    uint32_t ulPort;
    uint32_t ulNoOfPorts; /* written only if above 1 */
    SDPMediaProto stProto;
    SDPMediaFmt stMediaFmt;
} SDPMediaField;

/* One m= line with the lines that belong to it. */
typedef struct SDPMediaDesc {
    SDPMediaField stMediaField;
    SipString *pstrMediaInfo;
    SDPConnection *pstConnection;
    SDPStringList *pstBandwidthList;
    SDPKey *pstKey;
    SDPAttrList *pstAttrList;
} SDPMediaDesc;

/* The media descriptions. A decoded count is the number of m= lines modulo 256. */
typedef struct SDPMediaSet {
    uint32_t ulNoOfMediaDescs;
    SDPMediaDesc **ppstMediaDescs;
} SDPMediaSet;

/*
 * One SDP body.
 *
 *   v=0                              ulProtoVersion
 *   o=jdoe 1 2 IN IP4 10.47.16.5     stOrigin
 *   s=Seminar                        strSessionName
 *   i= u= e= p=                      pstrSessionInfo pstrUri pstEmailList pstPhoneList
 *   c=IN IP4 224.2.17.12/127         pstConnection
 *   b=AS:128                         pstBandwidthList
 *   t=0 0                            stTimeSet (with the r= lines)
 *   z= k= a=                         pstrTimeZone pstKey pstAttrList
 *   m=audio 49170 RTP/AVP 0          stMediaSet (with the lines that follow each m=)
 */
typedef struct SdpLine {
    uint32_t ulProtoVersion;
    SDPOrigin stOrigin;
    SipString strSessionName;
    SipString *pstrSessionInfo;
    SipString *pstrUri;
    SDPStringList *pstEmailList;
    SDPStringList *pstPhoneList;
    SDPConnection *pstConnection;
    SDPStringList *pstBandwidthList;
    SDPTimeSet stTimeSet;
    SipString *pstrTimeZone;
    SDPKey *pstKey;
    SDPAttrList *pstAttrList;
    SDPMediaSet stMediaSet;
    SDPMemCp *pstMemCp; /* the memory control of the body's block; null when it has none */
} SdpLine;

#pragma pack(pop)

#ifdef __cplusplus
}
#endif

#endif
