// Why a body was refused, for people: the last failure, and any result code in words.
#include "checks/checks.hpp"

namespace sdpline {

namespace {

constexpr uint32_t kSharedBareAnswer = 1;

SDPResultText textOf(const CheckRow &failed) {
    return {sourceName(failed.source), failed.function, className(failed.outcome.errorClass),
            failed.name, failed.sentence};
}

// Whether there is such a result.
bool describe(SDPResult result, SDPResultText &text) {
    if (result == kSharedBareAnswer) {
        text.pcSentence = "a check without a code of its own failed, the log entry tells which";
        return true;
    }
    for (size_t i = 0; i < kCheckCount && result != 0; ++i) {
        if (codeOf(static_cast<Check>(i)) == result) {
            text = textOf(kChecks[i]);
            return true;
        }
    }
    return false;
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

void SdpLibGetLastFailure(SDPFailure *pstFailure) {
    if (pstFailure != nullptr) {
        *pstFailure = lastFailure;
    }
}

SDPResult SdpLibDescribeResult(uint32_t ulResult, SDPResultText *pstText) {
    SDPResultText text = {"", "", "", "", ""};
    const bool known = describe(ulResult, text);
    if (pstText != nullptr) {
        *pstText = text;
    }
    return known ? 0 : 1;
}

} // extern "C"
