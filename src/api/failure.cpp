// Why a body was refused: the last failure, and any result code in words.
#include "checks/checks.hpp"

namespace sdpline {

namespace {

constexpr SDPResult kSharedBareResult = 1; // returned by several checks

SDPResultText textOf(const CheckRow &failed) {
    return {sourceName(failed.source), failed.function, className(failed.outcome.errorClass),
            failed.name, failed.sentence};
}

// Describes a result; returns false for a number that no check returns.
bool describe(SDPResult result, SDPResultText &text) {
    if (result == kSharedBareResult) {
        text.pcSentence = "a check without a result code failed; its log entry shows which one";
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

void SdpLibGetLastFailure(SDPFailure *failure) {
    if (failure != nullptr) {
        *failure = lastFailure.refusal;
    }
}

SDPResult SdpLibDescribeResult(uint32_t result, SDPResultText *words) {
    SDPResultText text = {"", "", "", "", ""};
    const bool known = describe(result, text);
    if (words != nullptr) {
        *words = text;
    }
    return known ? 0 : 1;
}

} // extern "C"
