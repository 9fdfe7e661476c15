/*
 * sdptidy.h: bodies that the decoder refuses, repaired before it, and every repair told.
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
 *  1. The decoder comes first. A text that it takes is returned as it is, byte for byte, and
 * nothing else is looked at. Otherwise the repairs of the rules that are wanted are made, all in
 * one pass, and the repaired text is returned only if the decoder takes it. A text that it refuses
 *     all the same is left alone, and the report holds what was tried. So tidying twice is tidying
 *     once.
 *  2. A rule repairs only what the decoder refuses: a blank at the end of an a=sendrecv line goes,
 *     one at the end of an s= line is text and stays. Lines that need no repair keep their bytes.
 *  3. Every repair is a row of the report: which rule, and where in the text as it was given. A
 * line that is no longer there has a row of its own.
 *  4. Which rules: those of SDP_TIDY_DEFAULT lose nothing and change nothing that the session
 * means; those of SDP_TIDY_OPTIONAL guess what was meant; those of SDP_TIDY_BY_NAME replace
 * something that readers disagree about. See SdpTidyRuleAt.
 *  5. Never repaired: text before v= other than blanks, a second v=, and a line with a CR or a NUL
 *     inside.
 *  6. Time is linear in the text, of which at most SDP_MAX_LONG_BODY bytes are looked at. Memory
 *     comes from the services of sipcore.h: a text that the decoder takes needs none but the
 *     body's. A repair takes about 9 KB of stack.
 *  7. Threads, ownership of a body, and the log are as sdpline.h says: a refusal that is repaired
 * is logged too. SdpTidyText and SdpTidyFindDoubts are decodes.
 */
#ifndef SDPLINE_SDPTIDY_H
#define SDPLINE_SDPTIDY_H

#include "sdpline/sdpline.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Rules ------------------------------------------------------------------------------------
 */

/* Which set a rule belongs to. */
enum {
    SDP_TIDY_DEFAULT = 1,  /* nothing is lost, and the session stays the same */
    SDP_TIDY_OPTIONAL = 2, /* what was meant is a guess, if a good one */
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
    SDP_TIDY_CR_INSIDE = 36, /* this and those below are doubts */
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
    uint32_t enRule;     /* its number */
    uint32_t enSet;      /* SDP_TIDY_DEFAULT ... SDP_TIDY_DOUBT */
    const char *pcName;  /* "NameEmpty" */
    const char *pcWrong; /* what was wrong: "s= is empty" */
    const char *pcDone;  /* what was done: "wrote s=-"; of a doubt, what the decoder makes of it */
    const char *pcReference; /* the rule that was broken, or of the field: "RFC 4566 5.3" */
    uint32_t bLoses;         /* 1: a record of the repaired text lacks what the given text said */
    uint32_t bChanges;       /* 1: readers of the repaired text may see another session */
} SDPTidyRule;

#pragma pack(pop)

/* The rule of that number, null for none. Rules come in the order of the enumeration. */
SDPLINE_API const SDPTidyRule *SdpTidyRuleAt(uint32_t enRule);

/* The rule of that name, in any case of letters; null for none. */
SDPLINE_API const SDPTidyRule *SdpTidyRuleByName(const char *pcName, uint32_t ulLen);

/* The rules of one set, a bit for each: SDP_TIDY_BIT of their numbers. */
SDPLINE_API uint64_t SdpTidyRulesOf(uint32_t enSet);

#define SDP_TIDY_BIT(rule) ((uint64_t)1 << (rule))

/* ---- Repairs ----------------------------------------------------------------------------------
 */

/* Results of the operations below that are not the decoder's. */
enum {
    SDP_TIDY_ARGUMENT = 1, /* a null pointer, or a text longer than SDP_MAX_LONG_BODY */
    SDP_TIDY_NO_MEMORY = 2 /* none for the report or the repaired text */
};

/* SDPTidyReport.enOutcome */
enum {
    SDP_TIDY_UNCHANGED = 0, /* the decoder takes the text as it is */
    SDP_TIDY_REPAIRED = 1,  /* it takes the repaired text */
    SDP_TIDY_REFUSED = 2    /* it takes neither */
};

#pragma pack(push, 4)

typedef struct SDPTidyOptions {
    uint64_t ullRules;                 /* the repairs that are wanted, a bit for each */
    const SDPDecodeOptions *pstDecode; /* of the decodes; null: the settings of the process */
} SDPTidyOptions;

/* One repair, or one doubt. Lines and columns count from 1, offsets from 0, all in bytes of the
 * text as it was given. A line that was missing has the place where it belongs. */
typedef struct SDPTidyRow {
    uint32_t enRule;
    uint32_t ulLine;
    uint32_t ulColumn;
    uint32_t ulOffset;
    uint32_t ulNewLine; /* the line's number in the repaired text; 0: it is no longer there */
} SDPTidyRow;

#pragma pack(pop)

typedef struct SDPTidyReport {
    uint32_t enOutcome;
    SipString strText;    /* the text that decodes: the caller's own bytes, or the repaired ones;
                           * of a refused one the caller's */
    uint32_t ulNoOfRows;  /* what was repaired, or tried, in the order of the text */
    SDPTidyRow *pstRows;  /* an array; null when there are none */
    SDPFailure stFailure; /* why the text was refused as it was given; ulResult 0: it was not */
    SDPFailure
        stRemaining;    /* of a refused one: why it still is, with its place in the given text */
    SdpLine *pstLine;   /* the body, null when refused. Whoever takes it over sets this to null */
    SDPMemCp *pstMemCp; /* the block of rows and repaired text, null when there is neither */
} SDPTidyReport;

/*
 * Decodes the text, repaired where that is necessary and allowed. Null options: the default rules
 * and the settings of the process. Returns 0 with a body; the decoder's result for what is still
 * wrong with a text that is refused; or SDP_TIDY_ARGUMENT or SDP_TIDY_NO_MEMORY. The report is
 * written in any case that has one, and released by SdpTidyRelease.
 */
SDPLINE_API SDPResult SdpTidyText(const SipString *pstText, const SDPTidyOptions *pstOptions,
                                  SDPTidyReport *pstReport);

/*
 * Decodes the text as it is and looks for what the decoder takes and other readers read otherwise.
 * The rows of the report are doubts; nothing is repaired. The rules of the options are not looked
 * at. A refused text has no doubts.
 */
SDPLINE_API SDPResult SdpTidyFindDoubts(const SipString *pstText, const SDPTidyOptions *pstOptions,
                                        SDPTidyReport *pstReport);

/* Releases what the report holds, its body too, and clears it. A null or cleared one is accepted.
 */
SDPLINE_API void SdpTidyRelease(SDPTidyReport *pstReport);

#ifdef __cplusplus
}
#endif

#endif
