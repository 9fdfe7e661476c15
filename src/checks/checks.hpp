// The failing checks of the library: each way in which an operation can fail is one row of a table.
//
// The rows are in src/checks/*.def. A check fails by `return fail(Check::ConnOctetRange)`: this
// logs the row, if it is one that is logged, and returns its result code.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sdpline/sdpline.h"
#include "text/inline.hpp"

namespace sdpline {

// The source names of checks, and their numbers in result codes and code points.
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
    Bare,      // the row's location itself
    Forwarded, // the result of a called operation: the row is only logged
};

constexpr uint32_t kNoCategory = 0xFFFFFFFF;

// How a failing check is logged. A line of 0 means the source line that calls fail().
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
    const char *function; // the operation that makes the check
    Outcome outcome;
    Logged logged;
    const char *sentence; // what was expected or what failed, for people
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

// The result code of the row, composed with the present g_gSipStackFileId.
SDPResult codeOf(Check check);

// Logs the failing check as its row says and returns its result code: the one place to set a
// breakpoint. `word` is the word that the check judged, if it is no longer the current token, else
// null.
[[gnu::cold, gnu::noinline]] SDPResult reportFailed(Check check, uint32_t value, uint32_t line,
                                                    const char *word);

// Fails the check. `value` is the argument of the row's format; rows without a format ignore it. No
// result is 0, and the compiler is told so: it generates no code for that case.
SDPLINE_INLINE SDPResult fail(Check check, uint32_t value = 0, uint32_t line = __builtin_LINE()) {
    const SDPResult result = reportFailed(check, value, line, nullptr);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

// The same for a check of a word that is no longer the current token.
SDPLINE_INLINE SDPResult failWord(Check check, const char *word, uint32_t line = __builtin_LINE()) {
    const SDPResult result = reportFailed(check, 0, line, word);
    if (result == 0) {
        __builtin_unreachable();
    }
    return result;
}

// Logs a row of the kind Forwarded and returns `result` unchanged; `result` is also the argument of
// the row's format.
[[gnu::cold, gnu::noinline]] SDPResult logAndForward(Check check, SDPResult result,
                                                     uint32_t line = __builtin_LINE());

// The name of a source in log entries; the name of an error class.
const char *sourceName(Source source);
const char *className(uint16_t errorClass);

struct LastFailure {
    Check check;        // the check of lexer, parser and utilities that failed last,
    const char *word;   // and its word (see reportFailed)
    SDPFailure refusal; // of the text that SdpLibParseSdp refused last
};
extern SDPLINE_PER_THREAD LastFailure lastFailure;

#ifdef SDPLINE_COUNT_CHECKS
// How often each check failed since the start of the program; in test builds only.
extern uint32_t checkHits[kCheckCount];
#endif

} // namespace sdpline
