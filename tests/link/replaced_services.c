/*
 * A stack that supplies the core services: every symbol of sipcore.h is defined here. The library
 * must call these, also when it is linked against libsipcore, which defines them too.
 */
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <sdpline/sdpline.h>

static unsigned calls; /* of the service that is being looked at; see each test */
static unsigned blocks, allocations, releases, appends, fills, logs, buffers;

static void require(int condition, const char *what) {
    if (!condition) {
        fprintf(stderr, "replaced_services: %s\n", what);
        exit(1);
    }
}

/* ---- Memory: a block is a list of allocations, each from malloc */

typedef struct Allocation {
    struct Allocation *next;
    uint64_t aligned;
} Allocation;

typedef struct Block {
    SDPMemCp control;
    Allocation *allocations;
} Block;

static void *blockAlloc(SDPMemCp *memCp, uint32_t size) {
    Block *block = memCp->pService;
    Allocation *allocation = calloc(1, sizeof(Allocation) + size + 1);
    require(allocation != NULL, "no memory");
    allocation->next = block->allocations;
    block->allocations = allocation;
    ++allocations;
    return allocation + 1;
}

static uint32_t blockFree(void *memory) {
    (void)memory; /* goes with the block */
    return 0;
}

uint32_t SipMmCreateBufMem(uint32_t first, uint32_t next, SDPMemCp **memCp) {
    Block *block = calloc(1, sizeof(Block));
    (void)first;
    (void)next;
    require(block != NULL, "no memory");
    block->control.pService = block;
    block->control.pfnAlloc = blockAlloc;
    block->control.pfnFree = blockFree;
    *memCp = &block->control;
    ++blocks;
    return 0;
}

uint32_t SipMmReleaseBufMem(SDPMemCp **memCp) {
    Block *block = (*memCp)->pService;
    while (block->allocations != NULL) {
        Allocation *allocation = block->allocations;
        block->allocations = allocation->next;
        free(allocation);
    }
    free(block);
    *memCp = NULL;
    ++releases;
    return 0;
}

static void *heapAlloc(SDPMemCp *memCp, uint32_t size) {
    (void)memCp;
    return calloc(1, (size_t)size + 1);
}

static uint32_t heapFree(void *memory) {
    free(memory);
    return 0;
}

static SDPMemCp heapControl = {NULL, heapAlloc, heapFree};
SDPMemCp *gSipSystemMemCp = &heapControl;

/* ---- String buffers: a fixed capacity is enough here */

enum { CAPACITY = 8192 };

struct SipStringBuffer {
    uint32_t length;
    char text[CAPACITY];
};

struct SipRefString {
    uint32_t length;
    char text[CAPACITY];
};

uint32_t SipSbCreateStringBufferNew(SDPMemCp *memCp, uint32_t first, uint32_t grow,
                                    SipStringBuffer **buffer) {
    (void)first;
    (void)grow;
    require(memCp == &heapControl, "the string buffer is not on the stack's system memory");
    *buffer = calloc(1, sizeof **buffer);
    ++buffers;
    return *buffer == NULL;
}

uint32_t SipSbCreateFixedStringBuffer(SDPMemCp *memCp, uint8_t *bytes, uint32_t size,
                                      SipStringBuffer **buffer) {
    (void)bytes;
    (void)size;
    return SipSbCreateStringBufferNew(memCp, 0, 0, buffer);
}

void SipSbReleaseStringBuffer(SipStringBuffer *buffer) {
    free(buffer);
}

void SipSbReleaseFixedStringBuffer(SipStringBuffer *buffer, uint8_t **data, uint32_t *length) {
    (void)data;
    *length = buffer->length;
    free(buffer);
}

uint32_t SipSbConvertToRefString(SipStringBuffer *buffer, SipRefString **reference) {
    *reference = calloc(1, sizeof **reference);
    require(*reference != NULL, "no memory");
    (*reference)->length = buffer->length;
    memcpy((*reference)->text, buffer->text, buffer->length);
    return 0;
}

uint32_t SipSbCopyConstString(SipStringBuffer *buffer, const char *text, uint32_t length) {
    ++appends;
    if (length > CAPACITY - buffer->length) {
        return 1;
    }
    if (length != 0) {
        memcpy(buffer->text + buffer->length, text, length);
    }
    buffer->length += length;
    return 0;
}

uint32_t SipSbCopyChar(SipStringBuffer *buffer, char byte) {
    return SipSbCopyConstString(buffer, &byte, 1);
}

uint32_t SipSbCopyString(SipStringBuffer *buffer, const SipString *text) {
    return text == NULL ? 0 : SipSbCopyConstString(buffer, text->pcData, text->ulLen);
}

uint32_t SipSbCopyLong(SipStringBuffer *buffer, uint32_t value) {
    char text[16];
    const int length = snprintf(text, sizeof text, "%u", value);
    return SipSbCopyConstString(buffer, text, (uint32_t)length);
}

/* ---- Strings */

uint32_t SipSmCopyString(SDPMemCp *memCp, const SipString *from, SipString *to) {
    to->ulLen = from->ulLen;
    to->pcData = memCp->pfnAlloc(memCp, from->ulLen);
    memcpy(to->pcData, from->pcData, from->ulLen);
    return 0;
}

uint32_t SipSmCloneString(SDPMemCp *memCp, const SipString *from, SipString **to) {
    *to = from == NULL ? NULL : memCp->pfnAlloc(memCp, sizeof **to);
    return from == NULL ? 0 : SipSmCopyString(memCp, from, *to);
}

void SipSmClearString(SDPMemCp *memCp, SipString *text) {
    memCp->pfnFree(text->pcData);
    memset(text, 0, sizeof *text);
}

void SipSmFreeString(SDPMemCp *memCp, SipString **text) {
    memCp->pfnFree(*text);
    *text = NULL;
}

uint32_t SipSmStringNCmp(const SipString *first, const SipString *second, uint32_t count) {
    ++calls;
    return first->ulLen >= count && second->ulLen >= count &&
           memcmp(first->pcData, second->pcData, count) == 0;
}

uint32_t SipSmGetLenFromRefString(const SipRefString *reference) {
    return reference->length;
}

const char *SipSmGetDataFromRefString(const SipRefString *reference) {
    return reference->text;
}

void SipSmReleaseRefString(SipRefString *reference) {
    free(reference);
}

/* ---- Structures: this stack copies plain records only */

uint32_t SipDsmCopyGeneralField(SDPMemCp *memCp, const void *from, void *to,
                                const SipDsmTypeDef *def) {
    (void)memCp;
    memcpy(to, from, def->ulSize);
    return 0;
}

uint32_t SipDsmClearGeneralField(SDPMemCp *memCp, void *value, const SipDsmTypeDef *def) {
    (void)memCp;
    memset(value, 0, def->ulSize);
    return 0;
}

const SipDsmTypeDef g_gstStringDef = {sizeof(SipString), SIP_DSM_STRING, NULL};
const SipDsmTypeDef g_gstStringPointerDef = {sizeof(SipString *), SIP_DSM_POINTER, &g_gstStringDef};
const SipDsmTypeDef g_gstHostIPV4Def = {4, SIP_DSM_UNSIGNED, NULL};
const SipDsmTypeDef g_gstHostIPV6Def = {16, SIP_DSM_UNSIGNED, NULL};

/* ---- Logging */

static void logged(uint32_t module, uint32_t instance, uint32_t level, const char *file,
                   const char *function, uint32_t line, uint32_t category, const char *format,
                   ...) {
    (void)instance;
    (void)level;
    (void)function;
    (void)line;
    (void)category;
    (void)format;
    require(module == 17 && file != NULL, "a log entry of another module");
    ++logs;
}

SipLmLogHndlr g_gpfnSipLmLogHndlr = logged;
uint32_t g_gSipCodePoint;
uint32_t g_gSipStackFileId = 0x20; /* must show in the codes */

/* ---- Bounds-checked memory */

int memcpy_s(void *to, size_t limit, const void *from, size_t count) {
    if (count > limit) {
        return 1;
    }
    memcpy(to, from, count);
    return 0;
}

int memset_s(void *to, size_t limit, int value, size_t count) {
    ++fills;
    if (count > limit) {
        return 1;
    }
    memset(to, value, count);
    return 0;
}

int SS_MemCmp(const void *first, const void *second, uint32_t length) {
    ++calls;
    return memcmp(first, second, length);
}

void SIPAbnormalSecureFunc(const char *name, uint32_t number) {
    (void)number;
    require(0, name);
}

void SIPAbnormalSecureFuncEx(const char *name, uint32_t number) {
    SIPAbnormalSecureFunc(name, number);
}

/* ---- The program */

static const char kBody[] = "v=0\r\n"
                            "o=- 1 2 IN IP4 192.0.2.1\r\n"
                            "s=stack services\r\n"
                            "c=IN IP6 0001:0002:0003:0004:0005:0006:0007:0008\r\n"
                            "t=0 0\r\n"
                            "m=audio 49170 RTP/AVP 0\r\n"
                            "a=rtpmap:0 PCMU/8000\r\n";

static SdpLine *decode(void) {
    SipString text = {sizeof kBody - 1, (char *)kBody};
    SdpLine *line = NULL;
    require(SdpLibDecodeSdp(&text, &line) == 0, "the body is refused");
    return line;
}

int main(void) {
    SdpLine *line = decode();
    require(blocks == 1 && allocations > 10, "the body is not in a block of this program");
    require(fills > 5, "memset_s of this program was not called");
    require(calls > 5, "the comparisons of this program were not called");

    SipStringBuffer *written = NULL;
    require(SdpLibEncodeSdp(line, &written) == 0, "the body cannot be written");
    require(buffers == 1 && appends > 40, "the appends of this program were not called");
    require(written->length == sizeof kBody - 1 &&
                memcmp(written->text, kBody, written->length) == 0,
            "what is written differs from what was read");
    SipSbReleaseStringBuffer(written);

    SdpLibReleaseSdp(&line);
    require(releases == 1 && line == NULL, "the block of this program was not released");

    SipString refused = {3, "v=x"};
    const SDPResult result = SdpLibDecodeSdp(&refused, &line);
    require(result >> 24 == 0x25, "the file base of this program is not in the result");
    require(logs == 2, "the log hook of this program was not called");
    require(g_gSipCodePoint == (0x24u << 16 | 173), "the code point of this program was not set");
    require(releases == 2, "a refused body did not release its block");
    puts("replaced_services: every service called was the program's");
    return 0;
}
