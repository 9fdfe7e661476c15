// The t= lines, each with the r= lines that follow it.
#include "parser/time.hpp"

namespace sdpline {

namespace {

struct TimeChecks {
    Check digits;
    Check range;
};

// Whether a number has at most ten digits, leading zeros counted, and fits into 32 bits.
bool timeFits(std::string_view digits) {
    constexpr std::string_view largest = "4294967295";
    return digits.size() < largest.size() || (digits.size() == largest.size() && digits <= largest);
}

// 1*10DIGIT
SDPLINE_INLINE bool ntpTime(Parser auto &p, uint32_t &value, TimeChecks checks,
                            uint32_t line = __builtin_LINE()) {
    if (!p.see(SDP_TOK_DIGIT, checks.digits, line)) {
        return false;
    }
    const std::string_view digits = p.text();
    if (digits.data() == nullptr || !timeFits(digits)) {
        return p.refuse(checks.range, 0, line);
    }
    value = p.valueOf(digits);
    return p.nextAfterRun(Context::Alnum);
}

} // namespace

// t= start SP stop LF
bool parseTime(Parser auto &parser, SDPTimeField &time) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        return p.expect(SDP_TOK_TIME, Context::Alnum, Check::TimeLine) &&
               ntpTime(p, time.ulStartTime, {Check::TimeStart, Check::TimeStartRange}) &&
               p.expect(SDP_TOK_SPACE, Context::Alnum, Check::TimeStartSpace) &&
               ntpTime(p, time.ulStopTime, {Check::TimeStop, Check::TimeStopRange}) &&
               p.endLine(Check::TimeEnd);
    });
}

// 1*DIGIT [ "d" / "h" / "m" / "s" ]. Of a run of letters the first one is the unit.
bool parseTypedTime(Parser auto &p, SDPTimeUnit &unit) {
    p.under(Context::Alnum);
    if (!p.number(unit.ulTimeValue, {Check::TypedTime, Check::TypedTimeText})) {
        return false;
    }
    unit.enTimeType = SDP_TIME_SECONDS;
    const std::string_view text = p.text();
    if (text.data() == nullptr) {
        return p.refuse(Check::TypedTimeUnitText);
    }
    const char letter = text.front();
    if (letter == '\n' || letter == ' ') {
        return true;
    }
    const KeywordRow *const word = findWord<kTimeUnitWords>({&letter, 1});
    if (word == nullptr) {
        return p.refuse(Check::TypedTimeUnit, static_cast<uint8_t>(letter));
    }
    unit.enTimeType = word->code;
    return p.next(Context::Alnum);
}

// r= typed-time *( SP typed-time ) LF
bool parseRepeat(Parser auto &parser, SDPRepeatField &field) {
    return parser.expect(SDP_TOK_REPEAT, Context::Alnum, Check::RepeatLine) &&
           parseList<SDPTimeUnit, uint32_t>(
               parser, {Check::RepeatArrayAlloc, Check::RepeatUnitAlloc, Check::RepeatGrow},
               [&](SDPTimeUnit **units) { field.ppstTimeUnits = units; },
               [](Parser auto &p, SDPTimeUnit &unit) { return parseTypedTime(p, unit); },
               [](Parser auto &p) { return p.take(SDP_TOK_SPACE, Context::Alnum); },
               [&](uint32_t count) { field.ulNoOfTimeUnits = count; }) &&
           parser.endLine(Check::RepeatEnd);
}

// 1*repeat-field. Out of line, since few bodies have r= lines.
[[gnu::noinline]] bool parseRepeats(Parser auto &parser, SDPRepeatFieldSet &set) {
    return parseList<SDPRepeatField, uint32_t>(
        parser, {Check::RepeatsArrayAlloc, Check::RepeatsAlloc, Check::RepeatsGrow},
        [&](SDPRepeatField **fields) { set.ppstRepeatFields = fields; },
        [](Parser auto &p, SDPRepeatField &field) { return parseRepeat(p, field); },
        [](const Parser auto &p) { return p.is(SDP_TOK_REPEAT); },
        [&](uint32_t count) { set.ulNoOfRepeatFields = count; });
}

// time-field *repeat-field
bool parseTimeAndRepeats(Parser auto &parser, SDPTimeField &field) {
    if (!parseTime(parser, field)) {
        return false;
    }
    if (!parser.is(SDP_TOK_REPEAT)) {
        return true;
    }
    // Not zeroed: parseRepeats() sets the array first and the count at the end of the list.
    auto *const set = static_cast<SDPRepeatFieldSet *>(allocateBytes(sizeof(SDPRepeatFieldSet)));
    field.pstRepeatFieldSet = set;
    if (set == nullptr) {
        return parser.refuse(Check::RepeatSetAlloc);
    }
    return outOfLine(parser, [&](StateParser &p) { return parseRepeats(p, *set); });
}

// 1*( time-field *repeat-field ). The count has 8 bits and wraps.
bool parseTimes(Parser auto &parser, SDPTimeSet &set) {
    return parseList<SDPTimeField, uint8_t>(
        parser, {Check::TimesArrayAlloc, Check::TimesAlloc, Check::TimesGrow},
        [&](SDPTimeField **fields) { set.ppstTimeFields = fields; },
        [](Parser auto &p, SDPTimeField &field) { return parseTimeAndRepeats(p, field); },
        [](const Parser auto &p) { return p.is(SDP_TOK_TIME); },
        [&](uint32_t count) { set.ulNoOfTimeFields = count; });
}

template bool parseTimes(BodyParser &, SDPTimeSet &);
template bool parseTimes(StateParser &, SDPTimeSet &);
template bool parseTimeAndRepeats(StateParser &, SDPTimeField &);
template bool parseTime(StateParser &, SDPTimeField &);
template bool parseRepeats(StateParser &, SDPRepeatFieldSet &);
template bool parseRepeat(StateParser &, SDPRepeatField &);
template bool parseTypedTime(StateParser &, SDPTimeUnit &);

} // namespace sdpline
