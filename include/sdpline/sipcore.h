/*
 * sipcore.h: the core services that libsdpline imports.
 *
 * This header is the porting guide. A SIP stack that already has memory blocks, string buffers
 * and a log defines these symbols itself and builds sdpline with SDPLINE_SIPCORE=OFF. All other
 * programs link libsipcore, which implements the services on the standard library. A program may
 * also replace single services by defining them: sdpline calls the function that the dynamic
 * symbol leads to. If that is libsipcore's function, sdpline may do its work without a call.
 *
 * Conventions
 *  1. Functions that return uint32_t return 0 for success, unless their comment says otherwise.
 *     The failure results of libsipcore are the SIP_... numbers below; sdpline compares with 0
 *     only.
 *  2. Text is a counted SipString. It is never NUL-terminated and may hold any bytes.
 *  3. A request for zero bytes returns a unique pointer that is not null. libsipcore refuses single
 *     requests above 1 GiB.
 *  4. Memory of a block belongs to the block: its allocations may be freed one by one, and all
 *     that is left is freed when the block is released.
 *  5. Nothing here is locked. Threads may use different blocks and different string buffers at the
 *     same time; one block or one buffer belongs to one thread at a time.
 *  6. A pointer may be null only where a comment says so; for others the service may return
 *     SIP_INVALID_ARGUMENT.
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

/* Counted text: 12 bytes. No terminator is stored or counted. With length 0 the pointer may have
 * any value. */
typedef struct SipString {
    uint32_t ulLen;
    char *pcData;
} SipString;

/* Memory control of one block. Callers use the two functions and never read pService. */
typedef struct SDPMemCp SDPMemCp;
struct SDPMemCp {
    void *pService;                                         /* for the memory service only */
    void *(*pfnAlloc)(SDPMemCp *pstMemCp, uint32_t ulSize); /* null when memory is exhausted */
    uint32_t (*pfnFree)(void *pMem);                        /* null is accepted, returns 0 */
};

#pragma pack(pop)

typedef struct SipStringBuffer SipStringBuffer; /* text that grows by appending */
typedef struct SipRefString SipRefString;       /* immutable counted text, released by its holder */

/* ---- Memory blocks -------------------------------------------------------------------------- */

/*
 * Makes a block. Its first chunk has at least ulFirstSize bytes; each further chunk has at least
 * ulNextSize bytes, or the size of a larger request. Both sizes are at most 1 GiB. The first chunk
 * is large enough for a body with one stream, and chunks below a kilobyte grow with the block.
 * Memory is zeroed and aligned to 8 bytes. Memory that is freed by pfnFree is used again by the
 * same block, so that a list which grows slot by slot needs a small multiple of its size.
 * *ppstMemCp is null after a failure. Debug builds abort when pfnFree is called with a pointer that
 * is not in use.
 */
SIPCORE_API uint32_t SipMmCreateBufMem(uint32_t ulFirstSize, uint32_t ulNextSize,
                                       SDPMemCp **ppstMemCp);

/* Releases the block with all its memory and sets *ppstMemCp to null. A null block is accepted. */
SIPCORE_API uint32_t SipMmReleaseBufMem(SDPMemCp **ppstMemCp);

/* A memory control that allocates from the process heap; its memory is zeroed too. */
SIPCORE_API extern SDPMemCp *gSipSystemMemCp;

/* ---- String buffers ------------------------------------------------------------------------- */

/*
 * Makes a buffer that grows: it has ulFirstSize bytes, and at least ulGrowSize more after each
 * growth. After one append has failed, every later one fails too, even an empty one, without
 * writing anything, and the buffer can no longer be converted to a reference string.
 */
SIPCORE_API uint32_t SipSbCreateStringBufferNew(SDPMemCp *pstMemCp, uint32_t ulFirstSize,
                                                uint32_t ulGrowSize, SipStringBuffer **ppstBuf);

/*
 * Makes a buffer over ulBufLen bytes of the caller: an append that does not fit writes nothing and
 * fails. Only the record of the buffer is allocated from pstMemCp.
 */
SIPCORE_API uint32_t SipSbCreateFixedStringBuffer(SDPMemCp *pstMemCp, uint8_t *pucBuf,
                                                  uint32_t ulBufLen, SipStringBuffer **ppstBuf);

/* Releases a growable buffer with its text. Null is accepted. */
SIPCORE_API void SipSbReleaseStringBuffer(SipStringBuffer *pstBuf);

/* Releases the record of a fixed buffer, and returns its bytes and the length that was written,
 * without that of a failed append. Null is accepted for all three. */
SIPCORE_API void SipSbReleaseFixedStringBuffer(SipStringBuffer *pstBuf, uint8_t **ppucData,
                                               uint32_t *pulLen);

/* Makes a reference string with a copy of the text; the buffer stays valid and belongs to the
 * caller. *ppstRef is null after a failure. */
SIPCORE_API uint32_t SipSbConvertToRefString(SipStringBuffer *pstBuf, SipRefString **ppstRef);

/* The appends. Each writes its whole text or nothing. */
SIPCORE_API uint32_t SipSbCopyChar(SipStringBuffer *pstBuf, char cChar);
SIPCORE_API uint32_t SipSbCopyConstString(SipStringBuffer *pstBuf, const char *pcText,
                                          uint32_t ulLen);
/* Length 0, null data or a null string write nothing and succeed. */
SIPCORE_API uint32_t SipSbCopyString(SipStringBuffer *pstBuf, const SipString *pstText);
/* The value in decimal, without leading zeros. */
SIPCORE_API uint32_t SipSbCopyLong(SipStringBuffer *pstBuf, uint32_t ulValue);

/* ---- Counted strings ------------------------------------------------------------------------ */

/* Makes a deep copy in *pstDst, which is overwritten without being freed. A source of length 0
 * needs no memory: the pointer of the copy is null. A length with a null pointer is copied as it
 * is. After a failure the target is empty: length 0, null pointer. */
SIPCORE_API uint32_t SipSmCopyString(SDPMemCp *pstMemCp, const SipString *pstSrc,
                                     SipString *pstDst);

/* Makes a deep copy in a new SipString; for a null source *ppstDst is null and the result is
 * success. *ppstDst is null after a failure, and nothing stays allocated. */
SIPCORE_API uint32_t SipSmCloneString(SDPMemCp *pstMemCp, const SipString *pstSrc,
                                      SipString **ppstDst);

/* Frees the bytes of a string and zeroes it. Null is accepted. */
SIPCORE_API void SipSmClearString(SDPMemCp *pstMemCp, SipString *pstText);

/* Frees a string and its bytes and sets the pointer to null. Null is accepted. */
SIPCORE_API void SipSmFreeString(SDPMemCp *pstMemCp, SipString **ppstText);

/* Returns 1 if both strings have at least ulCount bytes and the first ulCount bytes are equal, else
 * 0. */
SIPCORE_API uint32_t SipSmStringNCmp(const SipString *pstFirst, const SipString *pstSecond,
                                     uint32_t ulCount);

/* ---- Reference strings ---------------------------------------------------------------------- */

/* Length and bytes; 0 and null for a null string. The bytes are not NUL-terminated. */
SIPCORE_API uint32_t SipSmGetLenFromRefString(const SipRefString *pstRef);
SIPCORE_API const char *SipSmGetDataFromRefString(const SipRefString *pstRef);

/* Decrements the count of holders; the last one frees the text. Null is accepted. */
SIPCORE_API void SipSmReleaseRefString(SipRefString *pstRef);

/* ---- Structures described by data ----------------------------------------------------------- */

#pragma pack(push, 4)

/* The descriptor of one type: its size in bytes, its kind, and the detail that the kind needs. */
typedef struct SipDsmTypeDef {
    uint32_t ulSize;
    uint32_t enKind; /* SIP_DSM_... */
    const void *pDetail;
} SipDsmTypeDef;

/* SIP_DSM_CHOICE: a u32 selector, then a union. Alternative k describes selector value k + 1. */
typedef struct SipDsmChoiceDef {
    uint32_t ulReserved;
    uint32_t ulNoOfSelectors;                     /* number of selector values, 0 ("nothing") too */
    const SipDsmTypeDef *const *ppstAlternatives; /* a null entry: the value has no alternative */
} SipDsmChoiceDef;

/* SIP_DSM_SEQUENCE: members one after another, packed to 4 bytes: a member of 4 or more bytes
 * begins at a multiple of 4, a member of 2 bytes at a multiple of 2. */
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
 * Makes a deep copy of *pSrc in *pDst, which is overwritten without being cleared; bytes that
 * pstDef does not describe become zero. A failed copy frees what it allocated and zeroes the
 * target.
 *
 * SIP_OUT_OF_RANGE: an integer outside its range, or a selector without an alternative.
 * SIP_INVALID_ARGUMENT: a null argument, pSrc equal to pDst, an invalid descriptor, a member beyond
 * the size of its record, or values nested more than 32 levels deep.
 *
 * A text pointer that its code does not use becomes null. The count of a list with a null array is
 * copied as it is, and so is a null slot of an array.
 */
SIPCORE_API uint32_t SipDsmCopyGeneralField(SDPMemCp *pstMemCp, const void *pSrc, void *pDst,
                                            const SipDsmTypeDef *pstDef);

/* Frees everything that *pValue refers to, and sets its pointers to null and its counts to zero;
 * plain integers, codes and selectors stay. Fails as copying does, except for ranges, but clears
 * all other parts first. */
SIPCORE_API uint32_t SipDsmClearGeneralField(SDPMemCp *pstMemCp, void *pValue,
                                             const SipDsmTypeDef *pstDef);

/* The descriptors of the stack: a SipString, a pointer to one, and binary host addresses of 4 and
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
 * A hook may call any operation: it may append to the buffer that is being written, set the memory
 * hooks of the decoder, and encode, copy and decode other bodies. If it decodes a body during
 * another decode, it takes over the lexer and the memory hooks of that decode, which then ends with
 * the failure that it was logging; SdpLibGetLastFailure returns that failure. A hook must not
 * release what is being decoded or written.
 */
typedef void (*SipLmLogHndlr)(uint32_t ulModule, uint32_t ulInstance, uint32_t ulLevel,
                              const char *pcFile, const char *pcFunction, uint32_t ulLine,
                              uint32_t ulCategory, const char *pcFormat, ...);
SIPCORE_API extern SipLmLogHndlr g_gpfnSipLmLogHndlr;

/* (file number << 16) | source line, of the last failure that was logged; 0 by default. */
SIPCORE_API extern uint32_t g_gSipCodePoint;

/* Base of the stack's file numbers; 0 by default. */
SIPCORE_API extern uint32_t g_gSipStackFileId;

/* ---- Bounds-checked memory ------------------------------------------------------------------ */

/* Return 0 on success. For a null pointer, or a count above the destination's size, they write
 * nothing and return another number. A count of 0 succeeds with any pointers. Source and
 * destination may overlap. */
SIPCORE_API int memcpy_s(void *pDest, size_t ulDestMax, const void *pSrc, size_t ulCount);
SIPCORE_API int memset_s(void *pDest, size_t ulDestMax, int iValue, size_t ulCount);

/* Returns 0 if the first ulLen bytes are equal. A null pointer is equal to a null pointer; with
 * length 0 any pointers are equal. */
SIPCORE_API int SS_MemCmp(const void *pFirst, const void *pSecond, uint32_t ulLen);

/* Called when memcpy_s or memset_s failed and the operation goes on. The name and the number tell
 * the place. libsipcore counts the calls (SipMmGetStatistics). */
SIPCORE_API void SIPAbnormalSecureFunc(const char *pcName, uint32_t ulNumber);
SIPCORE_API void SIPAbnormalSecureFuncEx(const char *pcName, uint32_t ulNumber);

/* ---- Additions of libsipcore: sdpline does not call these ------------------------------------ */

/* The memory that libsipcore has allocated, over all threads. A thread caches the allocations that
 * it frees if they have at most 4096 bytes, up to 64 KiB in all, and uses them again before it
 * calls the process heap. When the cache is full, others are freed for each that is added. All are
 * freed when the thread ends; if the library is unloaded before, they are lost. SipMmGetStatistics
 * and SipMmResetPeak first free the cache of the calling thread, so that only the caches of other
 * threads are counted as memory in use. Allocations that can be cached are rounded up to multiples
 * of 256 bytes. */
typedef struct SipMmStatistics {
    uint64_t ulBlocks;          /* blocks that exist */
    uint64_t ulHeapAllocations; /* allocations made from the process heap since the start */
    uint64_t ulHeapBlocks;      /* heap allocations in use: chunks, buffers, system memory */
    uint64_t ulHeapBytes;       /* their bytes */
    uint64_t ulHeapBytesPeak;   /* the largest value of ulHeapBytes since the last reset */
    uint64_t ulAbnormalReports; /* calls of the two SIPAbnormalSecureFunc functions */
} SipMmStatistics;

SIPCORE_API void SipMmGetStatistics(SipMmStatistics *pstStatistics);

/* Sets ulHeapBytesPeak to the present ulHeapBytes. */
SIPCORE_API void SipMmResetPeak(void);

/* Increments the count of holders of a reference string, which is atomic. Null is accepted. */
SIPCORE_API void SipSmHoldRefString(SipRefString *pstRef);

#ifdef __cplusplus
}
#endif

#endif
