// The table of the failing checks, and the functions that report them.
#include "checks/checks.hpp"

#include "checks/rowwords.hpp"
#include "services/log.hpp"

namespace sdpline {

using namespace rowwords;

constexpr CheckRow kChecks[kCheckCount] = {
#define CHECK(source, name, function, outcome, logged, sentence)                                   \
    {Source::source, #name, #function, outcome, logged, sentence},
#include "checks/all.def"
#undef CHECK
};

namespace {

constexpr bool sameCode(const CheckRow &a, const CheckRow &b) {
    return a.outcome.kind == ResultKind::Composed && b.outcome.kind == ResultKind::Composed &&
           a.source == b.source && a.outcome.location == b.outcome.location &&
           a.outcome.errorClass == b.outcome.errorClass;
}

// Whether the result of a failing check is not 0.
constexpr bool isFailure(const Outcome &outcome) {
    return outcome.kind == ResultKind::Forwarded ||
           (outcome.kind == ResultKind::Composed ? outcome.errorClass : outcome.location) != 0;
}

// Whether no two rows have the same code, and every code fits its fields.
constexpr bool codesAreSound() {
    for (size_t i = 0; i < kCheckCount; ++i) {
        if (!isFailure(kChecks[i].outcome)) {
            return false;
        }
        if (kChecks[i].outcome.location >= 1u << 14 || kChecks[i].outcome.errorClass >= 1u << 10) {
            return false;
        }
        for (size_t j = i + 1; j < kCheckCount; ++j) {
            if (sameCode(kChecks[i], kChecks[j])) {
                return false;
            }
        }
    }
    return true;
}
static_assert(codesAreSound());

} // namespace

const char *sourceName(Source source) {
    switch (source) {
    case Source::Dsm: return "sdpdsm";
    case Source::Encode: return "sdpencode";
    case Source::Intf: return "sdpintf";
    case Source::Parser: return "sdpparser";
    case Source::Utils: return "sdputils";
    case Source::Lexer: return "sdplexer";
    case Source::EncodeAttribute: return "sdpencodeattribute";
    case Source::EncodeConnection: return "sdpencodeconnection";
    case Source::EncodeMedia: return "sdpencodemedia";
    case Source::EncodeOrigin: return "sdpencodeorigin";
    case Source::EncodeTime: return "sdpencodetime";
    }
    return "";
}

const char *className(uint16_t errorClass) {
    switch (errorClass) {
    case RESOURCE: return "RESOURCE";
    case NOT_SDP: return "NOT_SDP";
    case FIELD_SYNTAX: return "FIELD_SYNTAX";
    case UNEXPECTED_LINE: return "UNEXPECTED_LINE";
    case BAD_ADDRESS: return "BAD_ADDRESS";
    default: return "";
    }
}

SDPLINE_PER_THREAD LastFailure lastFailure = {Check::Count, nullptr, {}};

namespace {

// The checks that set lastFailed. Those of encoders do not: encoders may run on several threads at
// once.
bool isOfParsing(Source source) {
    return source == Source::Parser || source == Source::Lexer || source == Source::Utils;
}

uint32_t fileNumber(Source source) {
    return g_gSipStackFileId + static_cast<uint32_t>(source);
}

// Whether the check refuses a decode. A log hook may decode another body, but that decode ends
// before this one does: this one is then the last that failed.
bool isOfDecode(Check check) {
    return isOfParsing(row(check).source) || check == Check::DecodeRefused ||
           check == Check::DeSerializeRefused;
}

// The hook may decode a body and fail checks: the last failure of this decode is restored after it.
[[gnu::noinline]] void callLogHook(SipLmLogHndlr hook, Check check, uint32_t value, uint32_t line) {
    const CheckRow &failed = row(check);
    const Logged &logged = failed.logged;
    const LastFailure before = lastFailure;
    log(hook, {logged.level, sourceName(failed.source), failed.function, line, logged.category,
               logged.format, value});
    if (isOfDecode(check)) {
        lastFailure = before;
    }
}

void report(Check check, uint32_t value, uint32_t siteLine) {
    const CheckRow &failed = row(check);
#ifdef SDPLINE_COUNT_CHECKS
    ++checkHits[static_cast<size_t>(check)];
#endif
    const Logged &logged = failed.logged;
    if (logged.level == 0) {
        return;
    }
    const uint32_t line = logged.line != 0 ? logged.line : siteLine;
    setCodePoint(fileNumber(failed.source), line);
    if (const SipLmLogHndlr hook = g_gpfnSipLmLogHndlr) {
        callLogHook(hook, check, value, line);
    }
}

} // namespace

#ifdef SDPLINE_COUNT_CHECKS
uint32_t checkHits[kCheckCount];
#endif

SDPResult codeOf(Check check) {
    const CheckRow &failed = row(check);
    const Outcome &outcome = failed.outcome;
    switch (outcome.kind) {
    case ResultKind::Bare: return outcome.location;
    case ResultKind::Forwarded: return 0;
    case ResultKind::Composed: break;
    }
    return fileNumber(failed.source) << 24 | static_cast<uint32_t>(outcome.location) << 10 |
           outcome.errorClass;
}

SDPResult reportFailed(Check check, uint32_t value, uint32_t line, const char *word) {
    if (isOfParsing(row(check).source)) {
        lastFailure.check = check;
        lastFailure.word = word;
    }
    report(check, value, line);
    return codeOf(check);
}

SDPResult logAndForward(Check check, SDPResult result, uint32_t line) {
    report(check, result, line);
    return result;
}

} // namespace sdpline
