// a=curr, a=des and a=conf (RFC 3312 section 4): words of the token context with one space between
// each two.
#include "parser/attributes.hpp"

namespace sdpline {

// "qos", or any other word, which is stored as text
SDPResult classifyPrecondition(SDPRsrcMgmtStatus &status, std::string_view word) {
    SDPPreconditionS &precondition = status.stPrecondition;
    if (const KeywordRow *const known = findWord<kPreconditionWords>(word)) {
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
    return classify<kStrengthWords>(status.enStrengthTag, word, Check::StrengthWord);
}

SDPResult classifyStatus(SDPRsrcMgmtStatus &status, std::string_view word) {
    return classify<kStatusWords>(status.enStatusType, word, Check::StatusWord);
}

SDPResult classifyDirection(SDPRsrcMgmtStatus &status, std::string_view word) {
    return classify<kDirWords>(status.enDirTag, word, Check::DirectionWord);
}

namespace {

struct StepChecks {
    Check blank;
    WordChecks word;
};

// SP token
SDPLINE_INLINE bool step(Parser auto &p, std::string_view &word, StepChecks checks,
                         uint32_t line = __builtin_LINE()) {
    return p.expect(SDP_TOK_SPACE, Context::Token, checks.blank, line) &&
           p.read(word, SDP_TOK_TOKEN, checks.word, line) && p.nextAfterRun(Context::Token);
}

// [ SP strength-tag ], which only a=des has
SDPLINE_INLINE bool strength(Parser auto &p, SDPRsrcMgmtStatus &status, uint32_t type) {
    std::string_view word;
    return !attributeRow(type).has(kStrengthTag) ||
           (step(p, word, {Check::StrengthSpace, {Check::StrengthToken, Check::StrengthText}}) &&
            p.accept(classifyStrength(status, word)));
}

} // namespace

// ":" precondition-type [ SP strength-tag ] SP status-type SP direction-tag LF
bool parsePrecondition(Parser auto &p, SDPAttr &attr, uint32_t type) {
    SDPRsrcMgmtStatus &status = attr.unAttrValue.stRsrcMgmtStatus;
    std::string_view word;
    if (!p.expect(SDP_TOK_COLON, Context::Token, Check::StatusColon) ||
        !p.read(word, SDP_TOK_TOKEN, {Check::StatusPrecondition, Check::StatusPreconditionText})) {
        return false;
    }
    p.nextAfterRun(Context::Token);
    attr.ulAttrType = type;
    return p.accept(classifyPrecondition(status, word)) && strength(p, status, type) &&
           step(p, word, {Check::StatusSpace, {Check::StatusToken, Check::StatusText}}) &&
           p.accept(classifyStatus(status, word)) &&
           step(p, word, {Check::DirectionSpace, {Check::DirectionToken, Check::DirectionText}}) &&
           p.accept(classifyDirection(status, word)) && p.endLine(Check::StatusEnd);
}

template bool parsePrecondition(BodyParser &, SDPAttr &, uint32_t);
template bool parsePrecondition(StateParser &, SDPAttr &, uint32_t);

} // namespace sdpline
