// The failing checks of the library: every way an operation can refuse its work is one row.
//
// The rows are in src/checks/*.def, one file per source file that makes them. A site
// says `return fail(Check::OctetRange)`: the row is logged if it is a logged one, and its result
// code is returned.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sdpline/sdpline.h"
#include "text/inline.hpp"

namespace sdpline {

// The source files that make checks, by the number that goes into result codes and log entries.
enum class Source : uint16_t {
    Dsm = 2,
    Encode = 3,
    Intf = 4,
    Parser = 5,
    Utils = 6,
    Lexer = 179,
    EncodeAttribute = 731,
    EncodeConnection = 732,
    EncodeMedia = 733,
    EncodeOrigin = 734,
    EncodeTime = 735,
};

// What a failing check returns.
enum class ResultKind : uint8_t {
    Composed,  // the code composed of source, location and class
    Bare,      // the row's location as it is, without composition
    Forwarded, // what the callee returned: the row only logs
};

constexpr uint32_t kNoCategory = 0xFFFFFFFF;

// How a failing check is logged. A line of 0 is the line of the site.
struct Logged {
    uint8_t level; // 0: not logged at all
    uint32_t category;
    const char *format;
    uint32_t line;
};

struct Outcome {
    ResultKind kind;
    uint16_t location; // of a bare result: the result itself
    uint16_t errorClass;
};

struct CheckRow {
    Source source;
    const char *name;
    const char *function; // the one that makes the check
    Outcome outcome;
    Logged logged;
    const char *sentence; // what was wrong, for people
};

enum class Check : uint16_t {
#define CHECK(source, name, function, outcome, logged, sentence) name,
#include "checks/all.def"
#undef CHECK
    Count
};

constexpr size_t kCheckCount = static_cast<size_t>(Check::Count);

extern const CheckRow kChecks[kCheckCount];

inline const CheckRow &row(Check check) {
    return kChecks[static_cast<size_t>(check)];
}

// The code that fail() composes for the row, under the stack's file base of this moment.
SDPResult codeOf(Check check);

// Logs the failing check as its row says and returns its result: the one place to set a
// breakpoint. `word` is what the check judged, where it is no longer the current token.
[[gnu::cold, gnu::noinline]] SDPResult reportFailed(Check check, uint32_t value, uint32_t line,
                                                    const char *word);

// The same. `value` is the argument of the row's format; rows without a format ignore it. No check
// returns 0, and the compiler knows: it generates no code for that case.
SDPLINE_INLINE SDPResult fail(Check check, uint32_t value = 0, uint32_t line = __builtin_LINE()) {
    const SDPResult result = reportFailed(check, value, line, nullptr);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

SDPLINE_INLINE SDPResult failWord(Check check, const char *word, uint32_t line = __builtin_LINE()) {
    const SDPResult result = reportFailed(check, 0, line, word);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

// Logs a Pass row and returns `result` unchanged. The format's argument, where the row has a
// format, is `result` too.
[[gnu::cold, gnu::noinline]] SDPResult logAndForward(Check check, SDPResult result,
                                                     uint32_t line = __builtin_LINE());

// The name of a row's source file in log entries, and of a class.
const char *sourceName(Source source);
const char *className(uint16_t errorClass);

// The last check of lexer, parser and utilities that fail() reported, and the word that it judged
// where that is no longer the current token, else null.
struct LastFailed {
    Check check;
    const char *word;
};
extern SDPLINE_PER_THREAD LastFailed lastFailed;

// The last text that SdpLibParseSdp refused.
extern SDPLINE_PER_THREAD SDPFailure lastFailure;

#ifdef SDPLINE_COUNT_CHECKS
// How often each check failed since the start; test builds only.
extern uint32_t checkHits[kCheckCount];
#endif

} // namespace sdpline
