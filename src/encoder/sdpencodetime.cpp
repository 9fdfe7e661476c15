// The t= line and its r= lines.
#include "encoder/sdpencode.hpp"

using namespace sdpline;

extern "C" {

// t= start-time SP stop-time CRLF, with its r= lines: the first field that can be written. What
// was written of the fields before it stays.
SDPResult sdpLibEncodeTimeSet(uint32_t *pulFlag, SDPTimeSet *pstSet, SipStringBuffer *pstBuf) {
    if (pstSet->ulNoOfTimeFields == 0) {
        return append(pstBuf, "t=0 0\r\n");
    }
    SDPResult result = 0;
    for (uint32_t i = 0; i < pstSet->ulNoOfTimeFields; ++i) {
        const SDPTimeField &field = *pstSet->ppstTimeFields[i];
        // Without a prefix a second try could not be told from the rest of the first.
        if (*pulFlag != 1 && result != 0) {
            break;
        }
        result = Appender(pstBuf)
                     .prefix(pulFlag, 't')
                     .number(field.ulStartTime)
                     .character(' ')
                     .number(field.ulStopTime)
                     .lineEnd()
                     .result();
        if (result == 0 && field.pstRepeatFieldSet != nullptr) {
            result = sdpLibEncodeRepeatFields(pulFlag, field.pstRepeatFieldSet, pstBuf);
        }
        if (result == 0) {
            return 0;
        }
    }
    return result;
}

// r= repeat-interval SP typed-time 1*( SP typed-time ) CRLF
SDPResult sdpLibEncodeRepeatFields(uint32_t *pulFlag, SDPRepeatFieldSet *pstSet,
                                   SipStringBuffer *pstBuf) {
    for (uint32_t i = 0; i < pstSet->ulNoOfRepeatFields; ++i) {
        const SDPRepeatField &field = *pstSet->ppstRepeatFields[i];
        SDPTimeUnit *const *const units = field.ppstTimeUnits;
        if (*pulFlag == 1) {
            SipSbCopyChar(pstBuf, 'r');
            SipSbCopyChar(pstBuf, '=');
        }
        Appender line(pstBuf);
        // The first slot belongs to every field, whatever its count says.
        if (units != nullptr) {
            line.then([=] { return sdpLibEncodeTimeUnit(units[0], pstBuf); });
        }
        for (uint32_t k = 1; units != nullptr && k < field.ulNoOfTimeUnits; ++k) {
            line.character(' ').then([=] { return sdpLibEncodeTimeUnit(units[k], pstBuf); });
        }
        if (const SDPResult result = line.lineEnd().result()) {
            return result;
        }
    }
    return 0;
}

// typed-time = 1*DIGIT fixed-len-time-unit: the unit is always written, seconds too
SDPResult sdpLibEncodeTimeUnit(SDPTimeUnit *pstUnit, SipStringBuffer *pstBuf) {
    SipSbCopyLong(pstBuf, pstUnit->ulTimeValue);
    const Word *const unit = findByCode(kTimeUnitWords, pstUnit->enTimeType);
    if (unit == nullptr) {
        return fail(Check::TimeTypeValue, pstUnit->enTimeType);
    }
    SipSbCopyChar(pstBuf, unit->text.front());
    return 0;
}

} // extern "C"
