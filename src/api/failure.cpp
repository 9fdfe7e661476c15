// Why a body was refused, for people: the last failure, and any result code in words.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kSharedBareAnswer = 1;

SDPResultText describe(const CheckRow &failed) {
    return {sourceName(failed.source), failed.function, className(failed.outcome.errorClass),
            failed.name, failed.sentence};
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

void SdpLibGetLastFailure(SDPFailure *pstFailure) {
    *pstFailure = lastFailure;
}

SDPResult SdpLibDescribeResult(uint32_t ulResult, SDPResultText *pstText) {
    *pstText = {"", "", "", "", ""};
    if (ulResult == kSharedBareAnswer) {
        pstText->pcSentence = "a check without a code of its own failed, the log entry tells which";
        return 0;
    }
    for (size_t i = 0; i < kCheckCount && ulResult != 0; ++i) {
        if (codeOf(static_cast<Check>(i)) == ulResult) {
            *pstText = describe(kChecks[i]);
            return 0;
        }
    }
    return 1;
}

} // extern "C"
