// The exported names of what writes t= and r= lines.
#include "encoder/time.hpp"

using namespace sdpline;

extern "C" {

SDPResult sdpLibEncodeTimeSet(uint32_t *pulFlag, SDPTimeSet *pstSet, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeTimes(out, pulFlag, *pstSet); });
}

SDPResult sdpLibEncodeRepeatFields(uint32_t *pulFlag, SDPRepeatFieldSet *pstSet,
                                   SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeRepeats(out, pulFlag, pstSet); });
}

SDPResult sdpLibEncodeTimeUnit(SDPTimeUnit *pstUnit, SipStringBuffer *pstBuf) {
    return writeTo(pstBuf, [=](Output &out) { return writeTimeUnit(out, *pstUnit); });
}

} // extern "C"
