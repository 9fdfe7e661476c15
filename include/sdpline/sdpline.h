/*
 * sdpline.h: SDP bodies to records and back. This is the whole C interface; C11 and C++20.
 *
 *     SipString stText = {ulLength, pcBytes};
 *     SdpLine *pstLine = NULL;
 *     if (SdpLibDecodeSdp(&stText, &pstLine) == 0) {
 *         ... read pstLine->stMediaSet ...
 *         SdpLibReleaseSdp(&pstLine);
 *     }
 *
 * Conventions
 *  1. Results. Every operation returns an SDPResult, 0 for success. A failure is composed of
 *
 *         31      24 23            10 9        0
 *        +----------+----------------+----------+
 *        |   file   |    location    |  class   |
 *        +----------+----------------+----------+
 *
 *     file: the stack's base g_gSipStackFileId plus the number of the source file that failed
 *     (low 8 bits of the sum); location: the check that failed, never reused; class: one of
 *     SDP_ERRCLASS_... A few operations return a bare 1 or 8; their comments say so. Compare
 *     with 0 only, log the rest.
 *  2. Logging. A failure that is logged sets g_gSipCodePoint to file number << 16 | line and
 *     calls g_gpfnSipLmLogHndlr, when set, with module 17.
 *  3. Ownership. A decoded or created body is in one memory block, which SdpLibReleaseSdp releases
 *     as a whole. Encoded text belongs to the string buffer, which the caller releases.
 *  4. Text is counted (SipString), not terminated. A body is at most SDP_MAX_BODY bytes long, one
 *     value of a text line at most SDP_MAX_VALUE.
 *  5. Threads. Decoding uses process-wide state (lexer, hooks, decode block, last failure): one
 *     decode at a time. A library built with SDPLINE_THREAD_LOCAL has that state once for each
 *     thread, so that threads may decode at the same time; programs that use it are compiled with
 *     SDPLINE_THREAD_LOCAL too (the CMake package and pkg-config do this). In both builds,
 *     encoding, creating, copying and releasing only read the configuration, and threads may do
 *     them at the same time on different bodies. Set the configuration and the variables of the
 *     log before the first decode or encode. g_gSipCodePoint is one for the process: the last
 *     writer wins.
 *  6. Memory comes from the core services of sipcore.h and nowhere else; nothing is written to
 *     files or terminals, no exception leaves the library.
 */
#ifndef SDPLINE_SDPLINE_H
#define SDPLINE_SDPLINE_H

#include <stdint.h>

#include "sdpline/sdplayout.h"
#include "sdpline/sdprecords.h"
#include "sdpline/sipcore.h"

#if defined(__GNUC__)
#define SDPLINE_API __attribute__((visibility("default")))
#else
#define SDPLINE_API
#endif

/* Marks state that is per thread with SDPLINE_THREAD_LOCAL. Not thread_local: in C++ each access
 * from another library would then be a function call. */
#ifdef SDPLINE_THREAD_LOCAL
#define SDPLINE_PER_THREAD __thread
#else
#define SDPLINE_PER_THREAD
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t SDPResult;

/* Class of a failure, the low 10 bits of a result. */
enum {
    SDP_ERRCLASS_RESOURCE = 1,          /* argument, memory, token too long, input ended */
    SDP_ERRCLASS_NOT_SDP = 100,         /* no input, or it does not start with "v=" */
    SDP_ERRCLASS_FIELD_SYNTAX = 101,    /* a token that the field's grammar does not admit */
    SDP_ERRCLASS_UNEXPECTED_LINE = 102, /* a line kind that may not follow here */
    SDP_ERRCLASS_BAD_ADDRESS = 104      /* an IPv6 address; in the encoder: a field encoder */
};

#define SDP_MAX_BODY      4093u  /* bytes of a body that is decoded, see SdpSetMaxBodySize */
#define SDP_MAX_LONG_BODY 65535u /* the most that SdpSetMaxBodySize admits */
#define SDP_MAX_VALUE     1023u  /* bytes of one text value or token */

/* ---- Whole bodies ---------------------------------------------------------------------------- */

/*
 * Decodes pstSdpText into a new body, which the caller releases with SdpLibReleaseSdp. The text is
 * neither changed nor referred to afterwards. Lines end in CR LF or LF; text after the first empty
 * line is not read. For a refused text the result is the code of the check that failed,
 * *ppstSdpLine is null and nothing stays allocated.
 */
SDPLINE_API SDPResult SdpLibDecodeSdp(const SipString *pstSdpText, SdpLine **ppstSdpLine);

#pragma pack(push, 4)

/* The settings of one decode, in place of those of the process, which the functions named here
 * set. */
typedef struct SDPDecodeOptions {
    uint32_t bRtpFamily;    /* exactly 1: as SdpSetSupMedProtoRtpFamily(1) */
    uint32_t ulMaxBodySize; /* as SdpSetMaxBodySize: 1 to SDP_MAX_LONG_BODY */
} SDPDecodeOptions;

#pragma pack(pop)

/* The same under the given options instead of the settings of the process; with null options those
 * apply. A size out of bounds is refused, and *ppstSdpLine is then not written. */
SDPLINE_API SDPResult SdpLibDecodeSdpWithOptions(const SipString *pstSdpText,
                                                 const SDPDecodeOptions *pstOptions,
                                                 SdpLine **ppstSdpLine);

/* The same for a body held in a string buffer, which stays the caller's. */
SDPLINE_API SDPResult SdpLibDecodeSipBodyAsSdp(SipStringBuffer *pstBody, SdpLine **ppstSdpLine);

/* Makes an empty body in a new block. With a memory service that does not zero its memory
 * (libsipcore does) the caller must clear every field but pstMemCp. */
SDPLINE_API SDPResult SdpLibCreateSdp(SdpLine **ppstSdpLine);

/* Makes a copy of all records of the body, also of those that are not written, in a new block. A
 * body with more than SDP_MAX_PAYLOADS payload numbers in an m= line is refused. *ppstClone is
 * null after a failure. */
SDPLINE_API SDPResult SdpLibCloneSdp(const SdpLine *pstSdpLine, SdpLine **ppstClone);

/*
 * Writes the body into a new string buffer, to be released with SipSbReleaseStringBuffer. The
 * order of lines is v o s i u e p c b t z k a, then m i c b k a for each media description.
 * *ppstText is null after a failure. An rtpmap attribute without a name may have its clock rate
 * and channels filled in (see sdpLibEncodeAttribFieldRtpMap).
 */
SDPLINE_API SDPResult SdpLibEncodeSdp(SdpLine *pstSdpLine, SipStringBuffer **ppstText);

/* Releases the body's block and nulls *ppstSdpLine; always returns 0. A null argument, a null
 * body, or a body without a block is accepted, and nothing is done. */
SDPLINE_API SDPResult SdpLibReleaseSdp(SdpLine **ppstSdpLine);

/* ---- Single lines and caller's buffers ------------------------------------------------------ */

/*
 * Writes one line of the kind enLineType (SDP_LINE_...) from the record of that kind, with its
 * line end, into a new reference string, to be released with SipSmReleaseRefString. *pulWithPrefix
 * 1 writes the letter and "=" too, any other value the value alone. *ppstText is null after a
 * failure, and untouched when an argument is refused. A t= line comes without its r= lines; an
 * attribute that cannot be written gives a short line and success.
 */
SDPLINE_API SDPResult SdpLibEncodeSdpLine(uint32_t *pulWithPrefix, uint32_t enLineType,
                                          void *pValue, SipRefString **ppstText);

/* Writes the body's text into ulBufLen bytes at pucBuf, without a NUL. A text that does not fit is
 * a failure with *pulWrittenLen 0; the buffer then holds the part that was written. */
SDPLINE_API SDPResult SdpLibSerializeSdp(SdpLine *pstSdpLine, uint8_t *pucBuf, uint32_t ulBufLen,
                                         uint32_t *pulWrittenLen);

/* SdpLibDecodeSdp for plain bytes, which are only read. *ppstSdpLine is null after a failure, and
 * untouched when an argument is refused. */
SDPLINE_API SDPResult SdpLibDeSerializeSdp(uint8_t *pucBuf, uint32_t ulLen, SdpLine **ppstSdpLine);

/* The checks of the arguments of these three operations: no null pointer, a line type below
 * SDP_LINE_COUNT, a length that is not 0. */
SDPLINE_API SDPResult SdpLibEncodeSdpLineValidate(uint32_t *pulWithPrefix, uint32_t enLineType,
                                                  void *pValue, SipRefString **ppstText);
SDPLINE_API SDPResult SdpLibSerializeSdpValidate(SdpLine *pstSdpLine, uint8_t *pucBuf,
                                                 uint32_t ulBufLen, uint32_t *pulWrittenLen);
SDPLINE_API SDPResult SdpLibDeSerializeSdpValidate(uint8_t *pucBuf, uint32_t ulLen,
                                                   SdpLine **ppstSdpLine);

/* ---- Why a body was refused ------------------------------------------------------------------ */

/* The last failure of the parser. Lines and columns count from 1, offsets from 0, all in bytes of
 * the caller's text. The place is that of the unexpected token, or of the word that was judged;
 * when memory was exhausted, it is the position of the parser. Line 0 means that the text was not
 * parsed: its length was wrong, or there was no memory for the body. */
typedef struct SDPFailure {
    uint32_t ulResult; /* the code that was returned; 0 when nothing was refused yet */
    uint32_t enToken;  /* SDP_TOK_... of the token the parser had reached, see sdpinternals.h */
    uint32_t ulLine;
    uint32_t ulColumn;
    uint32_t ulOffset;
    const char *pcCheck; /* name of the check that failed, null when nothing was refused yet */
} SDPFailure;

/* Copies the last failure. A parse that succeeds does not change it. */
SDPLINE_API void SdpLibGetLastFailure(SDPFailure *pstFailure);

/* A result code in words; all text is static. */
typedef struct SDPResultText {
    const char *pcSource;   /* source file, as log entries name it */
    const char *pcFunction; /* the operation that made the check */
    const char *pcClass;    /* SDP_ERRCLASS_... without the prefix, "" for a bare 1 or 8 */
    const char *pcCheck;    /* the name of the check */
    const char *pcSentence; /* what was wrong */
} SDPResultText;

/* Returns 0 for a code of this library under the present g_gSipStackFileId, else 1 and empty
 * texts. For a bare 1, which several operations return, only the sentence is set. */
SDPLINE_API SDPResult SdpLibDescribeResult(uint32_t ulResult, SDPResultText *pstText);

/* ---- Configuration --------------------------------------------------------------------------- */

/* enConfigType of SdpLibExtConfig. 2 and 3 are accepted and change nothing. */
enum {
    SDP_CONFIG_LINE_END = 1, /* SDP_LINE_END_... */
    SDP_CONFIG_RTP_AVPF = 4  /* 0 or 1 */
};
enum { SDP_LINE_END_CRLF = 1, SDP_LINE_END_LF = 2, SDP_LINE_END_CR = 3 };

/* How the encoder writes T38FaxFillBitRemoval, T38FaxTranscodingMMR and T38FaxTranscodingJBIG:
 * styles 0 and 1 write the bare name of a set flag and no line for a flag of 0, style 2 writes
 * name, ":" and value. */
enum { SDP_T38_STYLE_FLAG = 0, SDP_T38_STYLE_FLAG_TOO = 1, SDP_T38_STYLE_VALUE = 2 };

/* Sets one configuration value; a refused one leaves the setting as it was. */
SDPLINE_API SDPResult SdpLibExtConfig(uint32_t enConfigType, uint32_t *pulValue);
/* Succeeds for types 1 to 4 and a value that is not null. */
SDPLINE_API SDPResult SdpLibExtConfigValidate(uint32_t enConfigType, uint32_t *pulValue);
/* Selects the line end that the encoder writes, SDP_LINE_END_... */
SDPLINE_API SDPResult SdpLibExtConfigCrlf(uint32_t *pulValue);
/* Returns the entry ucIndex places after the selected line end; 0 is the selected one. The entry
 * must be within the table of three. */
SDPLINE_API SipString SdpGetCrlfString(uint8_t ucIndex);

/* Returns a bare 1 for a style above 2 and keeps the old one. */
SDPLINE_API SDPResult SdpSetT38OptCfg(uint32_t ulValue);
SDPLINE_API uint32_t SdpGetT380ptCfg(void);

/* Whether "RTP/AVPF" in an m= line has the protocol code SDP_PROTO_RTP_AVPF (exactly 1), or is
 * stored as the text of SDP_PROTO_OTHER. */
SDPLINE_API void SdpSetSupMedProtoRtpAvpf(uint32_t bValue);
SDPLINE_API uint32_t SdpGetSupMedProtoRtpAvpf(void);

/*
 * Whether a protocol word without a code that ends in RTP/AVP, RTP/AVPF, RTP/SAVP or RTP/SAVPF
 * takes a list of payload numbers as RTP/AVP does (exactly 1). "UDP/TLS/RTP/SAVPF", which browsers
 * offer, is one of them. The record then has the protocol code SDP_PROTO_OTHER with the word, and
 * the format code SDP_FMT_RTP_PAYLOADS. The default is 0: such a word takes one format.
 */
SDPLINE_API void SdpSetSupMedProtoRtpFamily(uint32_t bValue);
SDPLINE_API uint32_t SdpGetSupMedProtoRtpFamily(void);

/* The largest size in bytes of a body that is decoded: 1 to SDP_MAX_LONG_BODY, by default
 * SDP_MAX_BODY. For a body longer than SDP_MAX_BODY the decode allocates a copy of the text from
 * gSipSystemMemCp, and frees it before it returns. A refused size does not change the setting. */
SDPLINE_API SDPResult SdpSetMaxBodySize(uint32_t ulBytes);
SDPLINE_API uint32_t SdpGetMaxBodySize(void);

SDPLINE_API extern const SipString g_gstSdpCrlfString[3]; /* CR LF, LF, CR */
SDPLINE_API extern const SipString *g_gpstSdpCrlfCfg;     /* the selected one; default: CR LF */
SDPLINE_API extern uint32_t g_gstSdpT38OptCfg;
SDPLINE_API extern uint32_t g_bSupMedProtoRtpAvpf;

/* ---- Static RTP payload profiles (RFC 3551) -------------------------------------------------- */

/* Rows 0 to 34, and an empty one. A row is a profile number minus 1. The argument is not checked.
 */
SDPLINE_API SipString SdpGetRtpmapProfile(uint16_t usRow);
/* Appends the row's name; returns what the string buffer returns. */
SDPLINE_API uint32_t SdpCopyRtpmapProfile(SipStringBuffer *pstBuf, uint16_t usRow);
/* Clock rate in Hz; 0 for encodings without a fixed one. */
SDPLINE_API uint32_t SdpGetRtpmapClockRates(uint16_t usRow);

SDPLINE_API extern const SipString g_aStrRtpmapProfiles[36];
SDPLINE_API extern const uint32_t g_aulRtpmapClockRates[36];

/* Attribute names as they are written, with their ":". The index is an attribute type minus 1. The
 * names of types 34 and 35 are a blank: the real name is in the record. */
SDPLINE_API extern const SipString sstrSdpAttrNames[40];

/* ---- Memory hooks of the decoder ------------------------------------------------------------- */

typedef void *(*SdpFnAlloc)(uint32_t ulSize);
typedef void (*SdpFnFree)(void *pMem);

/* The parser calls these two for each allocation and release. Each decode sets them. After a decode
 * that succeeded they stay set, but have no block to allocate from until the next one. */
SDPLINE_API void SdpSetFnAlloc(SdpFnAlloc pfnAlloc);
SDPLINE_API SdpFnAlloc SdpGetFnAlloc(void);
SDPLINE_API void SdpSetFnFree(SdpFnFree pfnFree);
SDPLINE_API SdpFnFree SdpGetFnFree(void);

/* The hooks that a decode sets: they use its block. Outside a decode the first one returns null,
 * and the second one does nothing. */
SDPLINE_API void *SdpLibAllocSdpMem(uint32_t ulSize);
SDPLINE_API void SdpLibFreeSdpMem(void *pMem);

SDPLINE_API extern SDPLINE_PER_THREAD SdpFnAlloc g_gSdpFnAlloc;
SDPLINE_API extern SDPLINE_PER_THREAD SdpFnFree g_gSdpFnFree;
/* The running decode's block, else null. */
SDPLINE_API extern SDPLINE_PER_THREAD SDPMemCp *g_mSdpDecodeMemCp;

#ifdef __cplusplus
}
#endif

#include "sdpline/sdpcopy.h"
#include "sdpline/sdpdescriptors.h"

#endif
