#include "tidy/decode.hpp"

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

// Member by member, because GCC clears the whole record with a string instruction, which takes
// longer: a report is cleared for every text, repaired or not.
void clear(SDPTidyReport &report) {
    report.enOutcome = 0;
    report.strText = {};
    report.ulNoOfRows = 0;
    report.pstRows = nullptr;
    report.stFailure = {};
    report.stRemaining = {};
    report.pstLine = nullptr;
    report.pstMemCp = nullptr;
}

bool begin(const SipString *text, const SDPTidyOptions *options, SDPTidyReport *report,
           Request &request) {
    if (report == nullptr) {
        return false;
    }
    clear(*report);
    report->enOutcome = SDP_TIDY_REFUSED;
    if (text == nullptr || text->pcData == nullptr || text->ulLen == 0 ||
        text->ulLen > SDP_MAX_LONG_BODY) {
        return false;
    }
    report->strText = *text;
    request.text = *text;
    request.rules = options != nullptr ? options->ullRules : rulesOf(SDP_TIDY_DEFAULT);
    request.decode = options != nullptr && options->pstDecode != nullptr
                         ? *options->pstDecode
                         : SDPDecodeOptions{SdpGetSupMedProtoRtpFamily(), SdpGetMaxBodySize()};
    return true;
}

SDPResult decode(const SipString &text, const SDPDecodeOptions &options, SDPTidyReport &report) {
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdpWithOptions(&text, &options, &line);
    report.pstLine = line;
    return result;
}

SDPFailure failureOf(SDPResult result) {
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    if (failure.ulResult != result) { // refused before the parser saw the text
        SDPResultText words = {};
        SdpLibDescribeResult(result, &words);
        failure = {result, 0, 0, 0, 0, words.pcCheck}; // "" for a service's own code
    }
    return failure;
}

SDPResult decodeGiven(const Request &request, SDPTidyReport &report) {
    const SDPResult result = decode(request.text, request.decode, report);
    if (result == 0) {
        report.enOutcome = SDP_TIDY_UNCHANGED;
    } else {
        report.stFailure = failureOf(result);
        report.stRemaining = report.stFailure;
    }
    return result;
}

namespace {

constexpr uint32_t kClassMask = (1u << 10) - 1;

// The decoder's checks of memory have these names, and no others do.
bool isNameOfMemory(std::string_view check) {
    switch (check.empty() ? '\0' : check.back()) {
    case 'c': return endsWith(check, "Alloc");
    case 'w': return endsWith(check, "Grow");
    case 'e': return endsWith(check, "Store");
    case 'k': return endsWith(check, "Block");
    case 'g': return equals(check, "SetString");
    default: return false;
    }
}

} // namespace

// Most failures are of another class.
bool isOfMemory(const SDPFailure &failure) {
    switch (failure.ulResult & kClassMask) {
    case SDP_ERRCLASS_RESOURCE: return isNameOfMemory(failure.pcCheck);
    case SDP_ERRCLASS_UNEXPECTED_LINE: return equals(failure.pcCheck, "MediaConnectionAlloc");
    default: return false;
    }
}

} // namespace sdpline::tidy
