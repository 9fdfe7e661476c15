/*
 * sdptidy.h: repairs of bodies that the decoder refuses, with a report of every repair.
 *
 *     SDPTidyReport stReport;
 *     if (SdpTidyText(&stText, NULL, &stReport) == 0) {
 *         ... read stReport.pstLine, or send stReport.strText on ...
 *     }
 *     ... log stReport.pstRows ...
 *     SdpTidyRelease(&stReport);
 *
 * The decoder of sdpline.h stays as strict as it is. This library, libsdpline_tidy, calls it;
 * nothing in libsdpline knows this library.
 *
 * Conventions
 *  1. The decoder comes first. A text that it accepts is returned unchanged, byte for byte, and no
 *     rule is applied. Otherwise the wanted rules repair the text, all in one pass, and the
 *     repaired text is returned only if the decoder accepts it. A text that it still refuses is
 *     returned unchanged, and the report lists what was tried. So the result of tidying a tidied
 *     text is the same text.
 *  2. A rule repairs only what the decoder refuses: a blank at the end of an a=sendrecv line is
 *     removed; one at the end of an s= line is part of its text and stays. Lines that need no
 *     repair keep their bytes.
 *  3. Every repair is a row of the report: the rule, and the place in the given text. A line that
 *     was removed has a row too.
 *  4. Sets of rules: those of SDP_TIDY_DEFAULT lose nothing and do not change the meaning of the
 *     session; those of SDP_TIDY_OPTIONAL guess the meaning; those of SDP_TIDY_BY_NAME replace
 *     something that readers disagree about. See SdpTidyRuleAt.
 *  5. Never repaired: text before v= other than blanks, a second v=, and a line with a CR or a NUL
 *     inside.
 *  6. The time is linear in the size of the text, which is at most SDP_MAX_LONG_BODY bytes. Memory
 *     comes from the services of sipcore.h: a text that the decoder accepts needs only that of the
 *     body. A repair uses about 9 KB of stack.
 *  7. Threads, the ownership of a body and the log are as in sdpline.h: SdpTidyText and
 *     SdpTidyFindDoubts are decodes, and a failure is logged even if it is then repaired.
 */
#ifndef SDPLINE_SDPTIDY_H
#define SDPLINE_SDPTIDY_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Rules ----------------------------------------------------------------------------------- */

/* Which set a rule belongs to. */
enum {
    SDP_TIDY_DEFAULT = 1,  /* nothing is lost, and the session stays the same */
    SDP_TIDY_OPTIONAL = 2, /* the repair is a guess of what was meant */
    SDP_TIDY_BY_NAME = 3,  /* readers disagree about what was meant */
    SDP_TIDY_DOUBT = 4     /* not a repair: found by SdpTidyFindDoubts */
};

/* The rules. A number is never used again. */
enum {
    SDP_TIDY_BYTE_ORDER_MARK = 0,
    SDP_TIDY_LEADING_BLANK = 1,
    SDP_TIDY_LINE_END_SIZE = 2,
    SDP_TIDY_TRAILING_SPACE = 3,
    SDP_TIDY_SPACE_RUN = 4,
    SDP_TIDY_LINE_EMPTY = 5,
    SDP_TIDY_LINE_ORDER = 6,
    SDP_TIDY_LINE_TWICE = 7,
    SDP_TIDY_ORIGIN_MISSING = 8,
    SDP_TIDY_ORIGIN_ADDRESS = 9,
    SDP_TIDY_NAME_MISSING = 10,
    SDP_TIDY_NAME_EMPTY = 11,
    SDP_TIDY_TIME_MISSING = 12,
    SDP_TIDY_NET_CASE = 13,
    SDP_TIDY_ADDR_FAMILY = 14,
    SDP_TIDY_VALUE_MISSING = 15,
    SDP_TIDY_RTPMAP_SPACE = 16,
    SDP_TIDY_SILENCE_PARAMS = 17,
    SDP_TIDY_LINE_END_CR = 18,
    SDP_TIDY_EMPTY_LINES = 19,
    SDP_TIDY_LINE_LEVEL = 20,
    SDP_TIDY_LINE_UNKNOWN = 21,
    SDP_TIDY_ORIGIN_USER = 22,
    SDP_TIDY_ORIGIN_SPACES = 23,
    SDP_TIDY_ORIGIN_ID = 24,
    SDP_TIDY_ADDR_TYPE_WORD = 25,
    SDP_TIDY_FORMAT_MISSING = 26,
    SDP_TIDY_ATTR_COLON = 27,
    SDP_TIDY_RTPMAP_CLOCK = 28,
    SDP_TIDY_RTPMAP_NO_CLOCK = 29,
    SDP_TIDY_CONN_HOST = 30,
    SDP_TIDY_CONN_AGAIN = 31,
    SDP_TIDY_LINE_AGAIN = 32,
    SDP_TIDY_VERSION_MISSING = 33,
    SDP_TIDY_KEY_SPACE = 34,
    SDP_TIDY_ADDR_TYPE_MISSING = 35,
    SDP_TIDY_CR_INSIDE = 36, /* this and the following ones are doubts */
    SDP_TIDY_NUL_INSIDE = 37,
    SDP_TIDY_LINES_AFTER_END = 38,
    SDP_TIDY_LINE_INDENT = 39,
    SDP_TIDY_PORT_RANGE = 40,
    SDP_TIDY_PAYLOAD_RANGE = 41,
    SDP_TIDY_OCTET_RANGE = 42,
    SDP_TIDY_NUMBER_WRAPS = 43,
    SDP_TIDY_ADDRESS_TEXT = 44,
    SDP_TIDY_DIRECTION_TWICE = 45,
    SDP_TIDY_TIME_AGAIN = 46,
    SDP_TIDY_REPEAT_UNIT = 47,
    SDP_TIDY_FRAMERATE_ROUNDED = 48,
    SDP_TIDY_ATTRIBUTE_LOST = 49,
    SDP_TIDY_MEDIA_COUNT = 50,
    SDP_TIDY_RULE_COUNT = 51
};

#pragma pack(push, 4)

/* One rule. All text is static. */
typedef struct SDPTidyRule {
    uint32_t enRule;         /* its number */
    uint32_t enSet;          /* SDP_TIDY_DEFAULT ... SDP_TIDY_DOUBT */
    const char *pcName;      /* "NameEmpty" */
    const char *pcWrong;     /* what was wrong: "s= is empty" */
    const char *pcDone;      /* what was done: "wrote s=-"; for a doubt, how the decoder reads it */
    const char *pcReference; /* where the field is defined: "RFC 4566 5.3" */
    uint32_t bLoses;   /* 1: the records of the repaired text lack something of the given one */
    uint32_t bChanges; /* 1: readers of the repaired text may see another session */
} SDPTidyRule;

#pragma pack(pop)

/* Returns the rule of that number; null for none. */
SDPLINE_API const SDPTidyRule *SdpTidyRuleAt(uint32_t enRule);

/* Returns the rule of that name, compared without case; null for none. */
SDPLINE_API const SDPTidyRule *SdpTidyRuleByName(const char *pcName, uint32_t ulLen);

/* Returns the rules of one set, one bit for each: SDP_TIDY_BIT of their numbers. */
SDPLINE_API uint64_t SdpTidyRulesOf(uint32_t enSet);

#define SDP_TIDY_BIT(rule) ((uint64_t)1 << (rule))

/* ---- Repairs --------------------------------------------------------------------------------- */

/* Results of the operations below that are not the decoder's. */
enum {
    SDP_TIDY_ARGUMENT = 1, /* a null pointer, or a text longer than SDP_MAX_LONG_BODY */
    SDP_TIDY_NO_MEMORY = 2 /* no memory for the report or the repaired text */
};

/* SDPTidyReport.enOutcome */
enum {
    SDP_TIDY_UNCHANGED = 0, /* the decoder accepts the given text */
    SDP_TIDY_REPAIRED = 1,  /* it accepts the repaired text */
    SDP_TIDY_REFUSED = 2    /* it accepts neither */
};

#pragma pack(push, 4)

typedef struct SDPTidyOptions {
    uint64_t ullRules;                 /* the rules that may repair, one bit for each */
    const SDPDecodeOptions *pstDecode; /* for the decodes; null: the settings of the process */
} SDPTidyOptions;

/* One repair, or one doubt. Lines and columns count from 1, offsets from 0, all in bytes of the
 * given text. The place of a missing line is where it should have been. */
typedef struct SDPTidyRow {
    uint32_t enRule;
    uint32_t ulLine;
    uint32_t ulColumn;
    uint32_t ulOffset;
    uint32_t ulNewLine; /* the line's number in the repaired text; 0: it was removed */
} SDPTidyRow;

#pragma pack(pop)

typedef struct SDPTidyReport {
    uint32_t enOutcome;
    SipString strText;    /* the repaired text, or else the caller's bytes */
    uint32_t ulNoOfRows;  /* the repairs that were made or tried, in the order of the text */
    SDPTidyRow *pstRows;  /* an array; null when there are none */
    SDPFailure stFailure; /* why the given text was refused; ulResult 0: it was accepted */
    SDPFailure
        stRemaining;    /* why the repaired text was refused, with the place in the given text */
    SdpLine *pstLine;   /* the body, null when refused. To keep it, set this to null */
    SDPMemCp *pstMemCp; /* the block of rows and repaired text, null when there is neither */
} SDPTidyReport;

/*
 * Decodes the text, after repairs where they are necessary and allowed. Null options mean the
 * default rules and the settings of the process. Returns 0 with a body, or the decoder's result for
 * the repaired text if that is refused, or SDP_TIDY_ARGUMENT or SDP_TIDY_NO_MEMORY. The report is
 * always written unless it is null, and must be released by SdpTidyRelease.
 */
SDPLINE_API SDPResult SdpTidyText(const SipString *pstText, const SDPTidyOptions *pstOptions,
                                  SDPTidyReport *pstReport);

/*
 * Decodes the text without repairs, and finds what the decoder accepts but other readers read
 * differently. The rows of the report are these doubts. The rules of the options are not used. A
 * refused text has no doubts.
 */
SDPLINE_API SDPResult SdpTidyFindDoubts(const SipString *pstText, const SDPTidyOptions *pstOptions,
                                        SDPTidyReport *pstReport);

/* Releases the memory of the report and its body, and clears it. A null or cleared report is
 * accepted. */
SDPLINE_API void SdpTidyRelease(SDPTidyReport *pstReport);

#ifdef __cplusplus
}
#endif

#endif
