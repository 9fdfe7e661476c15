// The t= lines, each with the r= lines below it.
#include "parser/parser.hpp"

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
SDPLINE_INLINE SDPResult takeTime(Lexer &lexer, uint32_t &value, TimeChecks checks) {
    if (!lexer.is(SDP_TOK_DIGIT)) {
        return fail(checks.digits);
    }
    const std::string_view digits = lexer.text();
    if (digits.data() == nullptr || !timeFits(digits)) {
        return fail(checks.range);
    }
    value = scanNumber(digits);
    lexer.take(SDP_TOK_DIGIT, SDP_LEXCTX_ALNUM);
    return 0;
}

// t= start SP stop LF
SDPLINE_INLINE SDPResult timeField(Lexer &lexer, SDPTimeField &field) {
    if (!lexer.take(SDP_TOK_TIME, SDP_LEXCTX_ALNUM)) {
        return fail(Check::TimeLine);
    }
    if (const SDPResult result =
            takeTime(lexer, field.ulStartTime, {Check::TimeStart, Check::TimeStartRange})) {
        return result;
    }
    if (!lexer.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM)) {
        return fail(Check::TimeStartBlank);
    }
    if (const SDPResult result =
            takeTime(lexer, field.ulStopTime, {Check::TimeStop, Check::TimeStopRange})) {
        return result;
    }
    return takeLineEnd(lexer, Check::TimeEnd);
}

// 1*DIGIT [ "d" / "h" / "m" / "s" ], where the unit is the first letter of a run of letters
SDPLINE_INLINE SDPResult typedTime(Lexer &lexer, SDPTimeUnit &unit) {
    lexer.context = SDP_LEXCTX_ALNUM;
    if (const SDPResult result = takeNumber(lexer, unit.ulTimeValue, SDP_LEXCTX_ALNUM,
                                            {Check::TypedTime, Check::TypedTimeText})) {
        return result;
    }
    unit.enTimeType = SDP_TIME_SECONDS;
    const std::string_view text = lexer.text();
    if (text.data() == nullptr) {
        return fail(Check::TypedTimeUnitText);
    }
    const char letter = text.front();
    if (letter == '\n' || letter == ' ') {
        return 0;
    }
    const Word *const word = findByText(kTimeUnitWords, {&letter, 1});
    if (word == nullptr) {
        return fail(Check::TypedTimeUnit, static_cast<uint8_t>(letter));
    }
    unit.enTimeType = word->code;
    lexer.take(lexer.kind, SDP_LEXCTX_ALNUM);
    return 0;
}

SDPResult parseTime(Lexer &lexer, SDPTimeField &field) {
    return inRegisters<timeField>(lexer, field);
}

SDPResult parseTypedTime(Lexer &lexer, SDPTimeUnit &unit) {
    return inRegisters<typedTime>(lexer, unit);
}

// r= typed-time *( SP typed-time ) LF
SDPResult parseRepeat(Lexer &lexer, SDPRepeatField &field) {
    constexpr ListChecks checks = {Check::RepeatArrayAlloc, Check::RepeatUnitAlloc,
                                   Check::RepeatGrow};
    if (!lexer.take(SDP_TOK_REPEAT, SDP_LEXCTX_ALNUM)) {
        return fail(Check::RepeatLine);
    }
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPTimeUnit>(
            lexer, count, checks, [&](SDPTimeUnit **units) { field.ppstTimeUnits = units; },
            parseTypedTime, [](Lexer &at) { return at.take(SDP_TOK_SPACE, SDP_LEXCTX_ALNUM); })) {
        return result;
    }
    field.ulNoOfTimeUnits = count;
    return takeLineEnd(lexer, Check::RepeatEnd);
}

// 1*repeat-field
SDPResult parseRepeats(Lexer &lexer, SDPRepeatFieldSet &set) {
    constexpr ListChecks checks = {Check::RepeatsArrayAlloc, Check::RepeatsAlloc,
                                   Check::RepeatsGrow};
    uint32_t count = 0;
    if (const SDPResult result = parseList<SDPRepeatField>(
            lexer, count, checks, [&](SDPRepeatField **fields) { set.ppstRepeatFields = fields; },
            parseRepeat, [](const Lexer &at) { return at.is(SDP_TOK_REPEAT); })) {
        return result;
    }
    set.ulNoOfRepeatFields = count;
    return 0;
}

// time-field *repeat-field
SDPResult parseTimeAndRepeats(Lexer &lexer, SDPTimeField &field) {
    if (const SDPResult result = parseTime(lexer, field)) {
        return result;
    }
    if (!lexer.is(SDP_TOK_REPEAT)) {
        return 0;
    }
    // Used as it comes: the array is set at once, the count when the list ends.
    auto *const set = static_cast<SDPRepeatFieldSet *>(allocateBytes(sizeof(SDPRepeatFieldSet)));
    field.pstRepeatFieldSet = set;
    return set != nullptr ? parseRepeats(lexer, *set) : fail(Check::RepeatSetAlloc);
}

} // namespace

// 1*( time-field *repeat-field ). The count is one of 8 bits.
SDPResult parseTimes(Lexer &lexer, SDPTimeSet &set) {
    constexpr ListChecks checks = {Check::TimesArrayAlloc, Check::TimesAlloc, Check::TimesGrow};
    uint8_t count = 0;
    if (const SDPResult result = parseList<SDPTimeField>(
            lexer, count, checks, [&](SDPTimeField **fields) { set.ppstTimeFields = fields; },
            parseTimeAndRepeats, [](const Lexer &at) { return at.is(SDP_TOK_TIME); })) {
        return result;
    }
    set.ulNoOfTimeFields = count;
    return 0;
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpTimeFieldsSet(SDPTimeSet *pstSet) {
    return onState([=](Lexer &lexer) { return parseTimes(lexer, *pstSet); });
}

SDPResult sdpTimeFields(SDPTimeField *pstField) {
    return onState([=](Lexer &lexer) { return parseTimeAndRepeats(lexer, *pstField); });
}

SDPResult sdpTimeField(SDPTimeField *pstField) {
    return onState([=](Lexer &lexer) { return parseTime(lexer, *pstField); });
}

SDPResult sdpRepeatFields(SDPRepeatFieldSet *pstSet) {
    return onState([=](Lexer &lexer) { return parseRepeats(lexer, *pstSet); });
}

SDPResult sdpRepeatField(SDPRepeatField *pstField) {
    return onState([=](Lexer &lexer) { return parseRepeat(lexer, *pstField); });
}

SDPResult sdpTypedTime(SDPTimeUnit *pstUnit) {
    return onState([=](Lexer &lexer) { return parseTypedTime(lexer, *pstUnit); });
}

} // extern "C"
