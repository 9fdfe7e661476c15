/*
 * sipcore.h: the core services that libsdpline imports.
 *
 * This header is the porting guide. A SIP stack that already has memory blocks, string buffers
 * and a log defines these symbols itself and builds sdpline with SDPLINE_SIPCORE=OFF; everybody
 * else links libsipcore, which implements all of them on the standard library. A program that
 * defines one of them wins over libsipcore: sdpline calls what the dynamic symbol leads to, and
 * where that is libsipcore's own function it may do in place what the function does.
 *
 * Conventions
 *  1. Functions that return uint32_t return 0 for success, unless their comment says otherwise.
 *     libsipcore's own failure results are the SIP_... numbers below; sdpline tests against 0 only.
 *  2. Text is a counted SipString. It is never NUL-terminated and may hold any bytes.
 *  3. A request for zero bytes returns a unique pointer that is not null. libsipcore refuses single
 *     requests above 1 GiB.
 *  4. Memory of a block belongs to the block: its allocations may be given back one by one, and all
 * of it goes when the block is released.
 *  5. Nothing here is locked. Different blocks and different string buffers may be used from
 *     different threads at once; one block or one buffer belongs to one thread at a time.
 *  6. Pointers that a comment does not allow to be null must not be null, unless the service
 *     returns SIP_INVALID_ARGUMENT for them.
 */
#ifndef SDPLINE_SIPCORE_H
#define SDPLINE_SIPCORE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define SIPCORE_API __attribute__((visibility("default")))
#else
#define SIPCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Results of libsipcore ------------------------------------------------------------------ */

enum {
    SIP_OK = 0,
    SIP_INVALID_ARGUMENT = 1, /* a null pointer or an impossible number */
    SIP_NO_MEMORY = 2,        /* the memory control returned null */
    SIP_NO_SPACE = 3,         /* a fixed buffer is full, or an earlier append failed */
    SIP_OUT_OF_RANGE = 4      /* a descriptor's range does not admit the value */
};

/* ---- Shared types --------------------------------------------------------------------------- */

#pragma pack(push, 4)

/* Counted text: 12 bytes, no terminator stored or counted. Length 0 goes with any pointer. */
typedef struct SipString {
    uint32_t ulLen;
    char *pcData;
} SipString;

/* Memory control of one block. Callers use the two functions and never look at pService. */
typedef struct SDPMemCp SDPMemCp;
struct SDPMemCp {
    void *pService;                                         /* the memory service's own word */
    void *(*pfnAlloc)(SDPMemCp *pstMemCp, uint32_t ulSize); /* null when memory is exhausted */
    uint32_t (*pfnFree)(void *pMem);                        /* null is accepted, returns 0 */
};

#pragma pack(pop)

typedef struct SipStringBuffer SipStringBuffer; /* text that grows by appending */
typedef struct SipRefString SipRefString;       /* immutable counted text, released by its holder */

/* ---- Memory blocks -------------------------------------------------------------------------- */

/*
 * Makes a block whose first chunk holds at least ulFirstSize bytes and whose further chunks hold at
 * least ulNextSize bytes, or one larger request each; both are at most 1 GiB. The first chunk has
 * room for a body of one stream, and chunks below a kilobyte grow with the block. Memory comes back
 * zeroed and aligned to 8 bytes. What pfnFree gets back is handed out again by the same block, so a
 * list that grows slot by slot costs a small multiple of its size. *ppstMemCp is null after a
 * failure.
 * Debug builds abort when pfnFree gets a pointer that is not in use.
 */
SIPCORE_API uint32_t SipMmCreateBufMem(uint32_t ulFirstSize, uint32_t ulNextSize,
                                       SDPMemCp **ppstMemCp);

/* Releases the block with everything in it and nulls *ppstMemCp. A null block is accepted. */
SIPCORE_API uint32_t SipMmReleaseBufMem(SDPMemCp **ppstMemCp);

/* Memory control over the process heap; its memory is zeroed too. */
SIPCORE_API extern SDPMemCp *gSipSystemMemCp;

/* ---- String buffers ------------------------------------------------------------------------- */

/*
 * A buffer that grows: ulFirstSize bytes at first, at least ulGrowSize more at each growth.
 * Buffers are sticky: once an append has failed, every later one fails and changes nothing, an
 * empty one included, and the buffer no longer converts to a reference string.
 */
SIPCORE_API uint32_t SipSbCreateStringBufferNew(SDPMemCp *pstMemCp, uint32_t ulFirstSize,
                                                uint32_t ulGrowSize, SipStringBuffer **ppstBuf);

/*
 * A buffer over ulBufLen bytes of the caller's: an append that does not fit writes nothing and
 * fails. Only the wrapper itself comes from pstMemCp.
 */
SIPCORE_API uint32_t SipSbCreateFixedStringBuffer(SDPMemCp *pstMemCp, uint8_t *pucBuf,
                                                  uint32_t ulBufLen, SipStringBuffer **ppstBuf);

/* Releases a growable buffer with its text. Null is accepted. */
SIPCORE_API void SipSbReleaseStringBuffer(SipStringBuffer *pstBuf);

/* Releases a fixed buffer's wrapper and reports its bytes and the length written, a failed append
 * not counted; null is accepted for all three. */
SIPCORE_API void SipSbReleaseFixedStringBuffer(SipStringBuffer *pstBuf, uint8_t **ppucData,
                                               uint32_t *pulLen);

/* Makes a reference string of the text written so far; the buffer stays valid and the caller's.
 * *ppstRef is null after a failure. */
SIPCORE_API uint32_t SipSbConvertToRefString(SipStringBuffer *pstBuf, SipRefString **ppstRef);

/* The appenders. Each writes all of its text or nothing. */
SIPCORE_API uint32_t SipSbCopyChar(SipStringBuffer *pstBuf, char cChar);
SIPCORE_API uint32_t SipSbCopyConstString(SipStringBuffer *pstBuf, const char *pcText,
                                          uint32_t ulLen);
/* Length 0, null data or a null string write nothing and succeed. */
SIPCORE_API uint32_t SipSbCopyString(SipStringBuffer *pstBuf, const SipString *pstText);
/* The value in decimal, without leading zeros. */
SIPCORE_API uint32_t SipSbCopyLong(SipStringBuffer *pstBuf, uint32_t ulValue);

/* ---- Counted strings ------------------------------------------------------------------------ */

/* Deep copy into an inline string, which is overwritten without being given back. A source of
 * length 0 asks for no memory and gives a null pointer; a length over a null pointer is copied as
 * it is. After a failure the target is empty: length 0, null pointer. */
SIPCORE_API uint32_t SipSmCopyString(SDPMemCp *pstMemCp, const SipString *pstSrc,
                                     SipString *pstDst);

/* Deep copy into a new SipString; a null source gives a null string and success. *ppstDst is
 * null after a failure, and nothing stays allocated. */
SIPCORE_API uint32_t SipSmCloneString(SDPMemCp *pstMemCp, const SipString *pstSrc,
                                      SipString **ppstDst);

/* Gives the bytes of an inline string back and zeroes it. Null is accepted. */
SIPCORE_API void SipSmClearString(SDPMemCp *pstMemCp, SipString *pstText);

/* Gives a string and its bytes back and nulls the pointer. Null is accepted. */
SIPCORE_API void SipSmFreeString(SDPMemCp *pstMemCp, SipString **ppstText);

/* 1 when both strings hold at least ulCount bytes and those bytes are equal, else 0. */
SIPCORE_API uint32_t SipSmStringNCmp(const SipString *pstFirst, const SipString *pstSecond,
                                     uint32_t ulCount);

/* ---- Reference strings ---------------------------------------------------------------------- */

/* Length and bytes; 0 and null for a null string. The bytes are not NUL-terminated. */
SIPCORE_API uint32_t SipSmGetLenFromRefString(const SipRefString *pstRef);
SIPCORE_API const char *SipSmGetDataFromRefString(const SipRefString *pstRef);

/* Gives one hold back; the text goes with the last one. Null is accepted. */
SIPCORE_API void SipSmReleaseRefString(SipRefString *pstRef);

/* ---- Structures walked by description ------------------------------------------------------- */

#pragma pack(push, 4)

/* One type: its size in bytes, its kind, and what the kind needs to know. */
typedef struct SipDsmTypeDef {
    uint32_t ulSize;
    uint32_t enKind; /* SIP_DSM_... */
    const void *pDetail;
} SipDsmTypeDef;

/* SIP_DSM_CHOICE: a u32 selector, then a union. Alternative k describes selector value k + 1. */
typedef struct SipDsmChoiceDef {
    uint32_t ulReserved;
    uint32_t ulNoOfSelectors;                     /* selector values, 0 = "nothing" counted */
    const SipDsmTypeDef *const *ppstAlternatives; /* a null entry is a value without alternative */
} SipDsmChoiceDef;

/* SIP_DSM_SEQUENCE: members one after another, packed to 4 bytes: one of 4 bytes or more begins at
 * a multiple of 4, one of 2 bytes at a multiple of 2. */
typedef struct SipDsmSequenceDef {
    uint32_t ulNoOfMembers;
    const SipDsmTypeDef *const *ppstMembers;
} SipDsmSequenceDef;

/* SIP_DSM_SET: a fixed array. */
typedef struct SipDsmSetDef {
    uint32_t ulNoOfElements;
    const SipDsmTypeDef *pstElement;
} SipDsmSetDef;

/* SIP_DSM_CODED_TEXT: a u32 code, then a pointer that is used for codes in the stated range. */
typedef struct SipDsmCPointerDef {
    uint32_t ulFlag;
    uint32_t ulLowest;
    uint32_t ulHighest;
    const SipDsmTypeDef *pstPointee;
} SipDsmCPointerDef;

/* SIP_DSM_RANGED_U32 and SIP_DSM_RANGED_U8. */
typedef struct SipDsmRangeDef {
    uint32_t ulMinimum;
    uint32_t ulMaximum;
} SipDsmRangeDef;

#pragma pack(pop)

/* Kinds of SipDsmTypeDef, with the type of their detail. */
enum {
    SIP_DSM_CHOICE = 1,     /* SipDsmChoiceDef */
    SIP_DSM_SEQUENCE = 2,   /* SipDsmSequenceDef */
    SIP_DSM_LIST = 3,       /* SipDsmTypeDef of the element: u32 count, pointer to pointers */
    SIP_DSM_SET = 4,        /* SipDsmSetDef */
    SIP_DSM_POINTER = 5,    /* SipDsmTypeDef of the pointee; null means absent */
    SIP_DSM_CODED_TEXT = 6, /* SipDsmCPointerDef */
    SIP_DSM_RANGED_U32 = 8, /* SipDsmRangeDef */
    SIP_DSM_RANGED_U8 = 13, /* SipDsmRangeDef */
    SIP_DSM_VERSION = 19,   /* none: four bytes, copied as they are */
    SIP_DSM_UNSIGNED = 23,  /* none: an unsigned integer of the descriptor's size */
    SIP_DSM_STRING = 24     /* none: SipString */
};

/*
 * Deep copy of *pSrc into *pDst, which is overwritten without being cleared; bytes that pstDef does
 * not describe become zero. A failed copy gives back what it allocated and leaves the target zero.
 *
 * SIP_OUT_OF_RANGE: an integer outside its range, or a selector without an alternative.
 * SIP_INVALID_ARGUMENT: a null argument, pSrc equal to pDst, a description that makes no sense or
 * whose members reach beyond its size, or values nested more than 32 levels deep.
 *
 * A text pointer under a code that does not use it becomes null. A list's count over a null array
 * is copied as it is, and so is a null slot within an array.
 */
SIPCORE_API uint32_t SipDsmCopyGeneralField(SDPMemCp *pstMemCp, const void *pSrc, void *pDst,
                                            const SipDsmTypeDef *pstDef);

/* Gives back everything that *pValue owns, nulls its pointers and zeroes its counts; plain
 * integers stay, codes and selectors among them. Fails as copying does, except for ranges, but
 * first clears all that it can reach. */
SIPCORE_API uint32_t SipDsmClearGeneralField(SDPMemCp *pstMemCp, void *pValue,
                                             const SipDsmTypeDef *pstDef);

/* The stack's own descriptors: a SipString, a pointer to one, and binary host addresses of 4 and
 * 16 bytes. */
SIPCORE_API extern const SipDsmTypeDef g_gstStringDef;
SIPCORE_API extern const SipDsmTypeDef g_gstStringPointerDef;
SIPCORE_API extern const SipDsmTypeDef g_gstHostIPV4Def;
SIPCORE_API extern const SipDsmTypeDef g_gstHostIPV6Def;

/* ---- Logging -------------------------------------------------------------------------------- */

/*
 * The log hook, null by default. pcFormat is null when an entry has no message text; otherwise it
 * is a printf format for the arguments after it. ulModule is 17 for every entry of sdpline.
 *
 * A hook may call what a program may call: append to the buffer that is being written, set the
 * memory hooks of the decoder, encode, copy and decode other bodies. A decode inside the hook of
 * another one takes its lexer and its memory hooks over: the other one ends with the refusal that
 * it was logging, and SdpLibGetLastFailure tells of that. It must not release what is being
 * decoded or written.
 */
typedef void (*SipLmLogHndlr)(uint32_t ulModule, uint32_t ulInstance, uint32_t ulLevel,
                              const char *pcFile, const char *pcFunction, uint32_t ulLine,
                              uint32_t ulCategory, const char *pcFormat, ...);
SIPCORE_API extern SipLmLogHndlr g_gpfnSipLmLogHndlr;

/* (file number << 16) | source line of the last failure that was logged; 0 by default. */
SIPCORE_API extern uint32_t g_gSipCodePoint;

/* Base of the stack's file numbers; 0 by default. */
SIPCORE_API extern uint32_t g_gSipStackFileId;

/* ---- Bounds-checked memory ------------------------------------------------------------------ */

/* 0 on success. A null pointer or a count above the destination's size writes nothing and returns
 * a number that is not 0. A count of 0 succeeds whatever the pointers. Source and destination may
 * overlap. */
SIPCORE_API int memcpy_s(void *pDest, size_t ulDestMax, const void *pSrc, size_t ulCount);
SIPCORE_API int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount);

/* 0 when the first ulLen bytes are equal; a null pointer equals only null or nothing. */
SIPCORE_API int SS_MemCmp(const void *pFirst, const void *pSecond, uint32_t ulLen);

/* Called when one of the two functions above failed and the work goes on: a name and a number
 * that tell the place. libsipcore counts the calls (SipMmGetStatistics). */
SIPCORE_API void SIPAbnormalSecureFunc(const char *pcName, uint32_t ulNumber);
SIPCORE_API void SIPAbnormalSecureFuncEx(const char *pcName, uint32_t ulNumber);

/* ---- Additions of libsipcore: sdpline does not call these ------------------------------------ */

/* What libsipcore holds and has done so far, over all threads. Of what it gives back, a thread
 * keeps allocations of at most 4096 bytes, 64 KiB in all, and takes them again before it calls the
 * process heap; they go back when the thread ends, and are lost where the library is unloaded
 * before. Asking for the statistics, or resetting the peak, gives the calling thread's back first,
 * so that only what other threads keep is counted with what is in use. Allocations that may be kept
 * are rounded up to multiples of 256 bytes. */
typedef struct SipMmStatistics {
    uint64_t ulBlocks;          /* blocks alive */
    uint64_t ulHeapAllocations; /* allocations made from the process heap since the start */
    uint64_t ulHeapBlocks;      /* heap allocations alive: chunks, buffers, system memory */
    uint64_t ulHeapBytes;       /* their bytes */
    uint64_t ulHeapBytesPeak;   /* the most bytes alive at once since the last reset */
    uint64_t ulAbnormalReports; /* calls of the two SIPAbnormalSecureFunc functions */
} SipMmStatistics;

SIPCORE_API void SipMmGetStatistics(SipMmStatistics *pstStatistics);

/* Sets ulHeapBytesPeak to the bytes alive now. */
SIPCORE_API void SipMmResetPeak(void);

/* Takes one more hold on a reference string; the count is atomic. */
SIPCORE_API void SipSmHoldRefString(SipRefString *pstRef);

#ifdef __cplusplus
}
#endif

#endif
