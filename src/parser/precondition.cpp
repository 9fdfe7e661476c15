// a=curr, a=des and a=conf (RFC 3312 section 4): words of the token context, one blank between.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

// "qos", or any other word, which is kept
SDPResult classifyPrecondition(SDPRsrcMgmtStatus &status, std::string_view word) {
    SDPPreconditionS &precondition = status.stPrecondition;
    if (const Word *const known = findByText(kPreconditionWords, word)) {
        precondition.enPreconditionType = known->code;
        precondition.pstrOtherPrecondition = nullptr;
        return 0;
    }
    precondition.enPreconditionType = SDP_PRECONDITION_OTHER;
    auto *const text = allocate<SipString>("sdpResourceStatusExtractPrecondition");
    precondition.pstrOtherPrecondition = text;
    if (text == nullptr) {
        return fail(Check::StatusPreconditionAlloc);
    }
    return storeText(*text, word) == 0 ? 0 : fail(Check::StatusPreconditionStore);
}

SDPResult classifyStrength(SDPRsrcMgmtStatus &status, std::string_view word) {
    return classify(status.enStrengthTag, kStrengthWords, word, Check::StrengthWord);
}

SDPResult classifyStatus(SDPRsrcMgmtStatus &status, std::string_view word) {
    return classify(status.enStatusType, kStatusWords, word, Check::StatusWord);
}

SDPResult classifyDirection(SDPRsrcMgmtStatus &status, std::string_view word) {
    return classify(status.enDirTag, kDirWords, word, Check::DirectionWord);
}

struct StepChecks {
    Check blank;
    WordChecks word;
};

// SP token, handed to `classifyWord`
template <class Classify>
SDPLINE_INLINE SDPResult takeStep(Lexer &lexer, SDPRsrcMgmtStatus &status, StepChecks checks,
                                  Classify classifyWord) {
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_TOKEN)) {
        return fail(checks.blank);
    }
    std::string_view word;
    if (const SDPResult result =
            takeWord(lexer, word, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN, checks.word)) {
        return result;
    }
    return classifyWord(status, word);
}

// ":" precondition-type [ SP strength-tag ] SP status-type SP direction-tag LF, the strength tag in
// a=des and nowhere else
SDPLINE_INLINE SDPResult resourceStatus(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    SDPRsrcMgmtStatus &status = attr.unAttrValue.stRsrcMgmtStatus;
    if (!lexer.take(SDP_TOK_COLON, SDP_LEXCTX_TOKEN)) {
        return fail(Check::StatusColon);
    }
    std::string_view word;
    if (const SDPResult result =
            takeWord(lexer, word, SDP_TOK_TOKEN, SDP_LEXCTX_TOKEN,
                     {Check::StatusPrecondition, Check::StatusPreconditionText})) {
        return result;
    }
    attr.ulAttrType = type;
    if (const SDPResult result = classifyPrecondition(status, word)) {
        return result;
    }
    if (type == SDP_ATTR_DES) {
        if (const SDPResult result = takeStep(
                lexer, status, {Check::StrengthBlank, {Check::StrengthToken, Check::StrengthText}},
                classifyStrength)) {
            return result;
        }
    }
    if (const SDPResult result =
            takeStep(lexer, status, {Check::StatusBlank, {Check::StatusToken, Check::StatusText}},
                     classifyStatus)) {
        return result;
    }
    if (const SDPResult result = takeStep(
            lexer, status, {Check::DirectionBlank, {Check::DirectionToken, Check::DirectionText}},
            classifyDirection)) {
        return result;
    }
    return takeLineEnd(lexer, Check::StatusEnd);
}

} // namespace

SDPResult parseResourceStatus(Lexer &lexer, SDPAttr &attr, uint32_t type) {
    return inRegisters<resourceStatus>(lexer, attr, type);
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpResourceStatus(SDPAttr *pstAttr, uint32_t enType) {
    return onState([=](Lexer &lexer) { return parseResourceStatus(lexer, *pstAttr, enType); });
}

SDPResult sdpResourceStatusExtractPrecondition(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyPrecondition(*pstStatus, pcWord);
}

SDPResult sdpResourceStatusExtractStrengthTag(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyStrength(*pstStatus, pcWord);
}

SDPResult sdpResourceExtractStatusType(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyStatus(*pstStatus, pcWord);
}

SDPResult sdpResourceStatusExtractDirTag(SDPRsrcMgmtStatus *pstStatus, const char *pcWord) {
    return classifyDirection(*pstStatus, pcWord);
}

} // extern "C"
