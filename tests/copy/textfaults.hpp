// The counted strings' copies, made to fail.
//
// A program that links textfaults.cpp takes SipSmCopyString and SipSmCloneString over from
// libsipcore. They are the real ones, but while a NoTexts lives they fail without touching their
// targets, as a stack's may.
#pragma once

#include <cstdint>

namespace dsmtest {

class NoTexts {
public:
    // What each of the two returns; 0 lets the calls through.
    NoTexts(uint32_t copyResult, uint32_t cloneResult);
    ~NoTexts();
    NoTexts(const NoTexts &) = delete;
    NoTexts &operator=(const NoTexts &) = delete;
};

} // namespace dsmtest
