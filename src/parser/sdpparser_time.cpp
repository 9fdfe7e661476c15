// The t= lines, each with the r= lines below it.
#include "parser/sdpparser.hpp"

namespace sdpline {

namespace {

struct TimeChecks {
    Check digits;
    Check range;
};

// At most ten digits, leading zeros counted, and not above the largest number of 32 bits.
bool timeFits(std::string_view digits) {
    constexpr std::string_view largest = "4294967295";
    return digits.size() < largest.size() || (digits.size() == largest.size() && digits <= largest);
}

// 1*10DIGIT
SDPResult takeTime(uint32_t &value, TimeChecks checks) {
    if (!lexer::at(SDP_TOK_DIGIT)) {
        return fail(checks.digits);
    }
    const std::string_view digits = lexer::text();
    if (digits.data() == nullptr || !timeFits(digits)) {
        return fail(checks.range);
    }
    value = scanNumber(digits);
    lexer::take(SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM);
    return 0;
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// 1*( time-field *repeat-field ). The count is one of 8 bits.
SDPResult sdpTimeFieldsSet(SDPTimeSet *pstSet) {
    constexpr ListChecks checks = {Check::TimesArrayAlloc, Check::TimesAlloc, Check::TimesGrow};
    uint8_t count = 0;
    if (const SDPResult result = parseList<SDPTimeField>(
            count, checks, [&](SDPTimeField **fields) { pstSet->ppstTimeFields = fields; },
            sdpTimeFields, [] { return lexer::at(SDP_TOK_TIME); })) {
        return result;
    }
    pstSet->ulNoOfTimeFields = count;
    return 0;
}

// time-field *repeat-field
SDPResult sdpTimeFields(SDPTimeField *pstField) {
    if (const SDPResult result = sdpTimeField(pstField)) {
        return result;
    }
    if (!lexer::at(SDP_TOK_REPEAT)) {
        return 0;
    }
    // Used as it comes: the array is set at once, the count when the list ends.
    auto *const set = static_cast<SDPRepeatFieldSet *>(allocateBytes(sizeof(SDPRepeatFieldSet)));
    pstField->pstRepeatFieldSet = set;
    return set != nullptr ? sdpRepeatFields(set) : fail(Check::RepeatSetAlloc);
}

// t= start SP stop LF
SDPResult sdpTimeField(SDPTimeField *pstField) {
    if (!lexer::take(SDP_TOK_TIME, SDP_LEXCTX_ALNUM)) {
        return fail(Check::TimeLine);
    }
    if (const SDPResult result =
            takeTime(pstField->ulStartTime, {Check::TimeStart, Check::TimeStartRange})) {
        return result;
    }
    if (!lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::TimeStartBlank);
    }
    if (const SDPResult result =
            takeTime(pstField->ulStopTime, {Check::TimeStop, Check::TimeStopRange})) {
        return result;
    }
    return takeLineEnd(Check::TimeEnd);
}

// 1*repeat-field
SDPResult sdpRepeatFields(SDPRepeatFieldSet *pstSet) {
    constexpr ListChecks checks = {Check::RepeatsArrayAlloc, Check::RepeatsAlloc,
                                   Check::RepeatsGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPRepeatField>(
            count, checks, [&](SDPRepeatField **fields) { pstSet->ppstRepeatFields = fields; },
            sdpRepeatField, [] { return lexer::at(SDP_TOK_REPEAT); })) {
        return result;
    }
    pstSet->ulNoOfRepeatFields = count;
    return 0;
}

// r= typed-time *( SP typed-time ) LF
SDPResult sdpRepeatField(SDPRepeatField *pstField) {
    constexpr ListChecks checks = {Check::RepeatArrayAlloc, Check::RepeatUnitAlloc,
                                   Check::RepeatGrow};
    if (!lexer::take(SDP_TOK_REPEAT, SDP_LEXCTX_ALNUM)) {
        return fail(Check::RepeatLine);
    }
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPTimeUnit>(
            count, checks, [&](SDPTimeUnit **units) { pstField->ppstTimeUnits = units; },
            sdpTypedTime, [] { return lexer::take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM); })) {
        return result;
    }
    pstField->ulNoOfTimeUnits = count;
    return takeLineEnd(Check::RepeatEnd);
}

// 1*DIGIT [ "d" / "h" / "m" / "s" ], where the unit is the first letter of a run of letters
SDPResult sdpTypedTime(SDPTimeUnit *pstUnit) {
    lexer::switchTo(SDP_LEXCTX_ALNUM);
    if (const SDPResult result = takeNumber(pstUnit->ulTimeValue, SDP_LEXCTX_ALNUM,
                                            {Check::TypedTime, Check::TypedTimeText})) {
        return result;
    }
    pstUnit->enTimeType = SDP_TIME_SECONDS;
    const std::string_view text = lexer::text();
    if (text.data() == nullptr) {
        return fail(Check::TypedTimeUnitText);
    }
    const char unit = text.front();
    if (unit == '\n' || unit == ' ') {
        return 0;
    }
    const Word *const word = findByText(kTimeUnitWords, {&unit, 1});
    if (word == nullptr) {
        return fail(Check::TypedTimeUnit, static_cast<uint8_t>(unit));
    }
    pstUnit->enTimeType = word->code;
    lexer::take(lexer::kind(), SDP_LEXCTX_ALNUM);
    return 0;
}

} // extern "C"
