/*
 * sdpinternals.h: the operations of lexer, parser and encoder that sdpline.h is made of.
 *
 * They are exported for stacks and tools that parse or write one field at a time. Many names are
 * short and common (mark, consume, LA): include this header only where you need it. Calls inside
 * the library do not go through these dynamic symbols, so a program may define functions of the
 * same names.
 *
 * Records, flags and buffers must not be null unless a comment says otherwise. Words are
 * NUL-terminated texts.
 */
#ifndef SDPLINE_SDPINTERNALS_H
#define SDPLINE_SDPINTERNALS_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Lexer: token kinds ---------------------------------------------------------------------- */

enum {
    SDP_TOK_ALPHA = 2, /* a letter, or in the alphanumeric context a run of letters */
    SDP_TOK_DIGIT = 3, /* a digit, or a run of digits */
    SDP_TOK_UNDERSCORE = 4,
    SDP_TOK_PLUS = 5,
    SDP_TOK_MINUS = 6,
    SDP_TOK_APOSTROPHE = 7,
    SDP_TOK_EXCLAMATION = 8,
    SDP_TOK_PERCENT = 9,
    SDP_TOK_TILDE = 10,
    SDP_TOK_BACKQUOTE = 11,
    SDP_TOK_ASTERISK = 12,
    SDP_TOK_DOT = 13,
    SDP_TOK_EQUAL = 14,
    SDP_TOK_LF = 15,
    SDP_TOK_DQUOTE = 16,
    SDP_TOK_SEMICOLON = 17,
    SDP_TOK_SLASH = 18,
    SDP_TOK_QUESTION = 19,
    SDP_TOK_COLON = 20,
    SDP_TOK_AT = 21,
    SDP_TOK_AMPERSAND = 22,
    SDP_TOK_DOLLAR = 23,
    SDP_TOK_COMMA = 24,
    SDP_TOK_LPAREN = 25,
    SDP_TOK_RPAREN = 26,
    SDP_TOK_HASH = 27,
    SDP_TOK_OTHER = 28, /* control bytes, CR among them, 127 and all bytes above */
    SDP_TOK_EOF = 30,   /* the NUL that ends the input */
    SDP_TOK_SPACE = 31,
    SDP_TOK_TAB = 32,
    SDP_TOK_LESS = 33,
    SDP_TOK_GREATER = 34,
    SDP_TOK_ORIGIN = 35,       /* "o=" */
    SDP_TOK_SESSION_NAME = 36, /* "s=" */
    SDP_TOK_VERSION = 37,      /* "v=" */
    SDP_TOK_URI = 38,          /* "u=" */
    SDP_TOK_INFO = 39,         /* "i=" */
    SDP_TOK_EMAIL = 40,        /* "e=" */
    SDP_TOK_PHONE = 41,        /* "p=" */
    SDP_TOK_CONNECTION = 42,   /* "c=" */
    SDP_TOK_BANDWIDTH = 43,    /* "b=" */
    SDP_TOK_TIME = 44,         /* "t=" */
    SDP_TOK_KEY = 45,          /* "k=" */
    SDP_TOK_ATTRIBUTE = 46,    /* "a=" */
    SDP_TOK_MEDIA = 47,        /* "m=" */
    SDP_TOK_REPEAT = 48,       /* "r=" */
    SDP_TOK_ZONE = 49,         /* "z=" */
    SDP_TOK_LBRACKET = 51,
    SDP_TOK_RBRACKET = 52,
    SDP_TOK_CARET = 53,
    SDP_TOK_LBRACE = 54,
    SDP_TOK_BAR = 55,
    SDP_TOK_RBRACE = 56,
    SDP_TOK_IN = 57,  /* "IN" */
    SDP_TOK_IP4 = 58, /* "IP4" */
    SDP_TOK_IP6 = 59, /* "IP6" */
    SDP_TOK_BACKSLASH = 60,
    SDP_TOK_STRING = 61, /* a run of the string context */
    SDP_TOK_X_DASH = 62, /* "X-" */
    SDP_TOK_TOKEN = 64   /* a run of the token context */
};

/* Contexts: how consume() cuts the next token. */
enum {
    SDP_LEXCTX_NONE = 0,
    SDP_LEXCTX_SDP = 1,    /* line types, "IN", "IP4", "IP6", "X-", else one byte */
    SDP_LEXCTX_CHAR = 2,   /* one byte */
    SDP_LEXCTX_STRING = 3, /* up to a blank, tab, line end or the end of the input */
    SDP_LEXCTX_ALNUM = 4,  /* a run of letters, of digits or of "-" */
    SDP_LEXCTX_TOKEN = 5,  /* up to one of blank tab < > ( ) ; : @ , or a line end or the end */
    SDP_LEXCTX_IPV6 = 6    /* letters, digits, ":" and "."; the kind is that of the last byte */
};

/* ---- Lexer: operations ----------------------------------------------------------------------- */

/* One lexer for the process: one NUL-terminated input, one current token, one text buffer. */

SDPLINE_API void setInput(const SipString *pstText);  /* the length is not used */
SDPLINE_API void setLexerContext(uint32_t enContext); /* in force from the next consume() on */
SDPLINE_API uint32_t sdpGetLexerContext(void);

/* Returns the kind of the byte at the token's start plus the index. No position changes. */
SDPLINE_API uint32_t nextToken(void);
/* Ends the token under construction, or starts the next one after the current one. A token that
 * ended at offset 0 counts as none: the next one starts at 0 again. */
SDPLINE_API void mark(void);
/* Advances to the next token; does nothing after the end token was reached. */
SDPLINE_API void consume(void);
/* Advances to the first token and returns its kind; without an input returns a failure code. */
SDPLINE_API uint32_t startTracking(void);
/* Advances and returns 1 if the current token's kind is enKind, else returns 0. */
SDPLINE_API uint32_t sdp_match(uint32_t enKind);
/* Kind of the current token. */
SDPLINE_API uint32_t LA(void);
/* Its text, NUL-terminated, valid until the next LT(); null if it has more than 1023 bytes. */
SDPLINE_API const char *LT(void);
/* Resets the positions and the end flag; input, context and kind stay. Returns 1. */
SDPLINE_API uint32_t clearSdpLexer(void);

SDPLINE_API uint32_t sdpGetEnd(void); /* 1 after the end token was reached */
SDPLINE_API void sdpSetEnd(uint32_t bEnd);
SDPLINE_API uint32_t sdpGetEndToken(void); /* offset of the token's last byte */
SDPLINE_API void sdpSetEndToken(uint32_t ulOffset);
SDPLINE_API uint32_t sdpGetIndex(void); /* bytes of the token under construction */
SDPLINE_API void sdpSetIndex(uint32_t ulIndex);
SDPLINE_API const uint8_t *sdpGetInput(void);
SDPLINE_API uint8_t sdpGetLastChar(void); /* the byte that was classified last */
SDPLINE_API void sdpSetLastChar(uint8_t ucChar);
SDPLINE_API uint32_t sdpGetStartToken(void); /* offset of the token's first byte */
SDPLINE_API void sdpSetStartToken(uint32_t ulOffset);
SDPLINE_API uint32_t sdpGetTToken(void); /* kind of the current token */
SDPLINE_API void sdpSetTToken(uint32_t enKind);
SDPLINE_API char *sdpGetThrowAwayBuffer(void); /* the 1024 bytes that LT() fills */
/* Copies into the start of that buffer, at most its 1024 bytes; a count below 1 copies nothing. */
SDPLINE_API void sdpSetThrowAwayBuffer(const uint8_t *pucBytes, int32_t iCount);
SDPLINE_API char *sdpGetRtpmapVar(void); /* the writable text "rtpmap" */

/* Stores a copy of a text, allocated by the hook, without a terminator. Without memory the length
 * is stored and the pointer is null. */
SDPLINE_API SDPResult sdpSetString(SipString *pstValue, const char *pcText);

/* ---- Parser ---------------------------------------------------------------------------------- */

/* Parses a text of 1 to SdpGetMaxBodySize() bytes into a new body, allocated by the hook. *ppstLine
 * is null after a failure. */
SDPLINE_API SDPResult SdpLibParseSdp(const SipString *pstText, SdpLine **ppstLine);
/* Parses from the lexer's input into a zeroed body. */
SDPLINE_API SDPResult startSdpParsing(SdpLine *pstLine);
/* Writes the text with LF for CR LF, without blanks at line starts and NUL bytes, and with LF LF
 * NUL after it: at most ulLen + 3 bytes, for which the caller's buffer must have room. */
SDPLINE_API void convertCRLFToCR(const uint8_t *pucText, uint32_t ulLen, uint8_t *pucOut,
                                 uint32_t ulOutSize);
/* Returns a new array of ulNewCount slots with the first ulCount pointers of the old one, the rest
 * null, and frees the old array. Returns null without memory; the old array then stays. Without an
 * old array, or with a count of 0, the slots are not cleared and nothing is freed. */
SDPLINE_API void **SdpLibUtilExtendDP(void **ppArray, uint32_t ulCount, uint32_t ulNewCount);

/* Field parsers. Each expects its line's key as the current token, consumes its line or lines with
 * the line end, and leaves the next line's key as the current token. */
SDPLINE_API SDPResult sdpProtoVersion(SdpLine *pstLine);
SDPLINE_API SDPResult sdpOriginField(SDPOrigin *pstOrigin);
SDPLINE_API SDPResult sdpStringField(uint32_t enKind, SipString *pstValue);
SDPLINE_API SDPResult sdpStringListFields(uint32_t enKind, SipString ***pppstStrings,
                                          uint32_t *pulCount);

SDPLINE_API SDPResult sdpConnectionField(SDPConnection *pstConnection);
SDPLINE_API SDPResult sdpConnectionFieldAddrType(SDPConnection *pstConnection, uint32_t enKind);
SDPLINE_API SDPResult sdpConnectionFieldAddrIpv4(SDPConnection *pstConnection);
SDPLINE_API SDPResult sdpConnectionFieldAddrIpv6(SDPConnection *pstConnection);
SDPLINE_API SDPResult sdpConnectionFieldTtl(SDPConnection *pstConnection);

SDPLINE_API SDPResult sdpTimeFieldsSet(SDPTimeSet *pstSet);
SDPLINE_API SDPResult sdpTimeFields(SDPTimeField *pstField);
SDPLINE_API SDPResult sdpTimeField(SDPTimeField *pstField);
SDPLINE_API SDPResult sdpRepeatFields(SDPRepeatFieldSet *pstSet);
SDPLINE_API SDPResult sdpRepeatField(SDPRepeatField *pstField);
SDPLINE_API SDPResult sdpTypedTime(SDPTimeUnit *pstUnit);

SDPLINE_API SDPResult sdpAttributeFields(SDPAttrList *pstList);
SDPLINE_API SDPResult sdpAttributeField(SDPAttr *pstAttr);
/* Value parsers. The current token is the one after the attribute's name. */
SDPLINE_API SDPResult sdpAttributeFieldType(SDPAttr *pstAttr, const char *pcName, uint32_t enType);
SDPLINE_API SDPResult sdpAttributeFieldDataSink(SDPAttr *pstAttr, const char *pcName);
SDPLINE_API SDPResult sdpOtherRecAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpUnRecAttr(const char *pcName, SDPAttr *pstAttr);
/* The value is also written to pcBuffer, at most ulSize - 1 bytes and a NUL. */
SDPLINE_API SDPResult sdpUnRecAttrTypeExtn(const char *pcName, SDPAttr *pstAttr, char *pcBuffer,
                                           uint32_t ulSize);
SDPLINE_API SDPResult sdpUnRecAttrTypeNoVal(const char *pcName, SDPAttr *pstAttr);
SDPLINE_API SDPResult sdpRtpmapAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpRtpmapAttrLocateStdRtpProfile(SDPRtpMapAttr *pstRtpMap);
SDPLINE_API SDPResult sdpRtpmapAttrPayloadDvi4For8K(SDPRtpMapAttr *pstRtpMap);
SDPLINE_API SDPResult sdpRtpmapAttrPayloadL16For2C(SDPRtpMapAttr *pstRtpMap);
SDPLINE_API SDPResult sdpModeAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpPacketizationAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpQualityAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpFaxNumericAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpFaxRateMgmtAttr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpFaxUdpEC(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpSilenceSuppression(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpEchoCacellation(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpIpBcpAttr(SDPAttr *pstAttr);
SDPLINE_API SDPResult sdpT120Attr(SDPAttr *pstAttr, uint32_t enType);
SDPLINE_API SDPResult sdpResourceStatus(SDPAttr *pstAttr, uint32_t enType);
/* Word classifiers. */
SDPLINE_API SDPResult sdpSilenceSuppressionOn(SDPAttr *pstAttr, const char *pcWord);
SDPLINE_API SDPResult sdpEchoCacellationDirection(SDPAttr *pstAttr, const char *pcWord);
SDPLINE_API SDPResult sdpEchoCacellationOn(SDPAttr *pstAttr, const char *pcWord);
SDPLINE_API SDPResult sdpIpBcpAttrType(SDPAttr *pstAttr, const char *pcWord);
SDPLINE_API SDPResult sdpT120AttrT120Mode(SDPAttr *pstAttr, const char *pcWord);
SDPLINE_API SDPResult sdpResourceStatusExtractPrecondition(SDPRsrcMgmtStatus *pstStatus,
                                                           const char *pcWord);
SDPLINE_API SDPResult sdpResourceStatusExtractStrengthTag(SDPRsrcMgmtStatus *pstStatus,
                                                          const char *pcWord);
SDPLINE_API SDPResult sdpResourceExtractStatusType(SDPRsrcMgmtStatus *pstStatus,
                                                   const char *pcWord);
SDPLINE_API SDPResult sdpResourceStatusExtractDirTag(SDPRsrcMgmtStatus *pstStatus,
                                                     const char *pcWord);

SDPLINE_API SDPResult sdpMediaDescriptions(SDPMediaSet *pstSet);
SDPLINE_API SDPResult sdpMediaDescription(SDPMediaDesc *pstDesc);
SDPLINE_API SDPResult sdpMediaField(SDPMediaField *pstField);
SDPLINE_API SDPResult sdpMediaType(SDPMediaField *pstField, const char *pcWord);
SDPLINE_API SDPResult sdpMediaFmt(SDPMediaField *pstField, const char *pcProto);
SDPLINE_API SDPResult sdpRtpAvpMediaFmt(SDPMediaField *pstField, uint32_t enProto);
SDPLINE_API SDPResult sdpRtpAvpMediaFmtGetNoOfPayloads(uint32_t *pulCount, uint32_t *pulPayLoads,
                                                       uint32_t ulLimit);
SDPLINE_API SDPResult sdpOtherMediaFmt(SDPMediaField *pstField, uint32_t enProto);

/* ---- Encoder --------------------------------------------------------------------------------- */

/* Flags: 1 writes the line's letter and "=" before the value, any other flag only the value. Text
 * that was appended before a failure stays in the buffer. */

SDPLINE_API SDPResult SdpLibEncodeSdpInt(SdpLine *pstLine, SipStringBuffer *pstBuf);
/* Writes one line of the kind enLineType (SDP_LINE_...); returns a bare 1 for any other number. */
SDPLINE_API SDPResult SdpLibEncodeLine(int32_t enLineType, uint32_t *pulFlag, void *pField,
                                       SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeProtocolField(uint32_t *pulFlag, uint32_t *pulVersion,
                                                SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStringField(uint32_t *pulFlag, char cKey, SipString *pstValue,
                                              SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStringListField(uint32_t *pulFlag, char cKey, uint32_t ulCount,
                                                  SipString **ppstItems, SipStringBuffer *pstBuf);

SDPLINE_API SDPResult sdpLibEncodeOriginField(uint32_t *pulFlag, SDPOrigin *pstOrigin,
                                              SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeOriginFieldNetType(SipStringBuffer *pstBuf, SDPOrigin *pstOrigin);
SDPLINE_API SDPResult sdpLibEncodeOriginFieldAddrType(SipStringBuffer *pstBuf,
                                                      SDPOrigin *pstOrigin);

SDPLINE_API SDPResult sdpLibEncodeConnectionField(uint32_t *pulFlag, SDPConnection *pstConn,
                                                  SipStringBuffer *pstBuf);
/* Set *pbTypeError to 1 if the record has a code without a text. */
SDPLINE_API SDPResult sdpLibEncodeConnectionFieldNetType(SipStringBuffer *pstBuf,
                                                         SDPConnection *pstConn,
                                                         uint32_t *pbTypeError);
SDPLINE_API SDPResult sdpLibEncodeConnectionFieldAddrType(SipStringBuffer *pstBuf,
                                                          SDPConnection *pstConn,
                                                          uint32_t *pbTypeError);
SDPLINE_API SDPResult sdpLibEncodeConnectionFieldAddr(SipStringBuffer *pstBuf,
                                                      SDPConnection *pstConn,
                                                      uint32_t *pbTypeError);
SDPLINE_API void sdpLibEncodeConnectionFieldIPv6AddrFmt(SipStringBuffer *pstBuf,
                                                        SDPConnection *pstConn);
SDPLINE_API SDPResult sdpLibEncodeConnectionFieldTtl(SipStringBuffer *pstBuf,
                                                     SDPConnection *pstConn);

/* Writes the first time field that can be written completely, with its r= lines. For an empty set
 * it writes "t=0 0" CR LF, with any flag and any configured line end. */
SDPLINE_API SDPResult sdpLibEncodeTimeSet(uint32_t *pulFlag, SDPTimeSet *pstSet,
                                          SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeRepeatFields(uint32_t *pulFlag, SDPRepeatFieldSet *pstSet,
                                               SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeTimeUnit(SDPTimeUnit *pstUnit, SipStringBuffer *pstBuf);

/* Always returns 0: the line of an attribute that fails is short, and the failure is logged. */
SDPLINE_API SDPResult sdpLibEncodeAttribFields(uint32_t *pulFlag, SDPAttrList *pstList,
                                               SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAppAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf,
                                                 uint32_t *pbNameWritten);
SDPLINE_API SDPResult sdpLibEncodeDefinedAttribField(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
/* For a record without a name, the name of profiles 7 to 35 is written, and a clock rate or a
 * number of channels of 0 is set from the profile, in the record too. */
SDPLINE_API SDPResult sdpLibEncodeAttribFieldRtpMap(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribFieldT38RateMgmt(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribFieldT38UdpEc(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribFieldT38SilenceSupp(SDPAttr *pstAttr,
                                                            SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribFieldEchoCan(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribFieldIbpCp(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeAttribT120Setup(SDPAttr *pstAttr, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStatusAttribField(SDPRsrcMgmtStatus *pstStatus,
                                                    uint32_t enAttrType, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStatusAttribFieldAttrType(uint32_t enAttrType,
                                                            SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStatusType(SDPRsrcMgmtStatus *pstStatus, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStatusStrengthTag(SDPRsrcMgmtStatus *pstStatus,
                                                    SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeStatusDirTag(SDPRsrcMgmtStatus *pstStatus,
                                               SipStringBuffer *pstBuf);

SDPLINE_API SDPResult sdpLibEncodeMediaSet(uint32_t *pulFlag, SDPMediaSet *pstSet,
                                           SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeMediaField(uint32_t *pulFlag, SDPMediaField *pstField,
                                             SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeMediaType(SDPMediaField *pstField, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeMediaProtoType(SDPMediaField *pstField, SipStringBuffer *pstBuf);
SDPLINE_API SDPResult sdpLibEncodeMediaFmtType(SDPMediaField *pstField, SipStringBuffer *pstBuf);

/* ---- Text utilities -------------------------------------------------------------------------- */

/* Returns 1 if both texts are equal byte for byte, else 0. A null text is logged, and 0 returned.
 */
SDPLINE_API uint32_t SdpLibChkExactString(const char *pcFirst, const char *pcSecond);
/* Returns 1 if both texts are equal but for the case of ASCII letters, else 0. */
SDPLINE_API uint32_t SdpiCmpExactString(const char *pcFirst, const char *pcSecond);
/* Returns the number of leading decimal digits, and stores their value modulo 2^32, 0 for none. A
 * null argument is logged, and 4294967295 returned; the value is then not written. */
SDPLINE_API uint32_t SdpLibScanDigits(const char *pcData, uint32_t *pulValue);
/* Returns 1 if the first text has at least ulCount bytes and they are equal, else 0. */
SDPLINE_API uint32_t SdpStrNCmpCharPtr(const char *pcText, uint32_t ulLen, const char *pcOther,
                                       uint32_t ulCount);
SDPLINE_API uint32_t SdpIsalnum(int32_t iByte);
SDPLINE_API uint32_t SdpIsdigit(int32_t iByte);
/* The value of up to four leading hexadecimal digits, 0 for none. Text after them is not read. */
SDPLINE_API void SdpConvHexStrToDec(const char *pcText, uint16_t *pusValue);
/* The value of up to three leading digits, 0 for none; 65535 if a letter is among the first three
 * letters and digits. */
SDPLINE_API void SdpConvDecStrToDec(const char *pcText, uint16_t *pusValue);
/* Returns the first occurrence of the needle, or null. An empty needle is found at the start. */
SDPLINE_API const char *SdpSmStrstr(const char *pcHay, uint32_t ulHayLen, const char *pcNeedle,
                                    uint32_t ulNeedleLen);

/* The number of slots of a token table; the capacity of a pattern with its NUL. */
#define SDP_IPV6_TOKENS  40
#define SDP_IPV6_PATTERN 23

/* Cuts an IPv6 text into a pattern of T (group), H (colon) and D (dot), and the texts of the
 * groups. Returns a bare 8 for a null argument or an empty text. */
SDPLINE_API SDPResult SdpTokanizeIPv6Str(const char *pcText, uint32_t ulLen, char (*pacTokens)[4],
                                         char *pcPattern, uint32_t ulCapacity,
                                         uint32_t *pulPatternLen);
/* Writes the sixteen bytes of an address in network order (RFC 4291 section 2.2), on success only.
 * Lenient: the number of groups is not checked. */
SDPLINE_API SDPResult SdpLoadIpV6StringToArray(const char *pcText, uint32_t ulLen,
                                               uint8_t *pucAddress);

#ifdef __cplusplus
}
#endif

#endif
