// Writing a t= line and its r= lines.
#include "encoder/writers.hpp"

namespace sdpline {

// typed-time = 1*DIGIT fixed-len-time-unit. The unit is always written, also "s".
SDPResult writeTimeUnit(auto &out, const SDPTimeUnit &unit) {
    out.number(unit.ulTimeValue);
    const KeywordRow *const word = findByCode(kTimeUnitWords, unit.enTimeType);
    if (word == nullptr) {
        return fail(out, Check::TimeTypeValue, unit.enTimeType);
    }
    out.character(word->text.front());
    return 0;
}

// The most bytes that an r= line takes without its prefix and line end.
static uint64_t repeatSize(const SDPRepeatField &field) {
    constexpr uint64_t kUnitSize = 1 + sipcore::kMostDigits + 1;
    return (uint64_t{field.ulNoOfTimeUnits} + 1) * kUnitSize;
}

// r= repeat-interval SP typed-time 1*( SP typed-time ) CRLF
SDPResult writeRepeats(auto &out, const uint32_t *flag, const SDPRepeatFieldSet *set) {
    for (uint32_t i = 0; i < set->ulNoOfRepeatFields; ++i) {
        const SDPRepeatField &field = *set->ppstRepeatFields[i];
        SDPTimeUnit *const *const units = field.ppstTimeUnits;
        if (*flag == 1) {
            out.character('r');
            out.character('=');
        }
        if (const SDPResult result = out.reserve(repeatSize(field))) {
            return result;
        }
        Appender line(out);
        // The first time is written even where the count is 0.
        if (units != nullptr) {
            line.then([&] { return writeTimeUnit(out, *units[0]); });
        }
        for (uint32_t k = 1; units != nullptr && k < field.ulNoOfTimeUnits; ++k) {
            line.character(' ').then([&] { return writeTimeUnit(out, *units[k]); });
        }
        if (const SDPResult result = line.lineEnd().result()) {
            return result;
        }
    }
    return 0;
}

// t= start-time SP stop-time CRLF
static SDPResult writeTime(auto &out, const uint32_t *flag, const SDPTimeField &field) {
    return Appender(out)
        .prefix(flag, 't')
        .number(field.ulStartTime)
        .character(' ')
        .number(field.ulStopTime)
        .lineEnd()
        .result();
}

// Writes the first t= line that can be written, with its r= lines. Text of the fields before it
// that could not be written completely stays in the buffer.
SDPResult writeTimes(auto &out, const uint32_t *flag, const SDPTimeSet &set) {
    if (set.ulNoOfTimeFields == 0) {
        return out.word("t=0 0\r\n");
    }
    SDPResult result = 0;
    for (uint32_t i = 0; i < set.ulNoOfTimeFields; ++i) {
        if (const SDPResult full = out.nextLine()) {
            return full;
        }
        const SDPTimeField &field = *set.ppstTimeFields[i];
        // Without a prefix, nothing would separate a second field from the rest of the first.
        if (*flag != 1 && result != 0) {
            break;
        }
        result = writeTime(out, flag, field);
        // A copy, since a reference cannot be bound to a member of a packed record.
        SDPRepeatFieldSet *const repeats = field.pstRepeatFieldSet;
        if (result == 0 && repeats != nullptr) {
            result = writeRepeats(out, flag, repeats);
        }
        if (result == 0) {
            return 0;
        }
    }
    return result;
}

SDPLINE_LINE_WRITER(writeTimes, const uint32_t *, const SDPTimeSet &);
SDPLINE_LINE_WRITER(writeRepeats, const uint32_t *, const SDPRepeatFieldSet *);
SDPLINE_LINE_WRITER(writeTimeUnit, const SDPTimeUnit &);

} // namespace sdpline
