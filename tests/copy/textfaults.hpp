// Failures of the copies of counted strings.
//
// A program that links textfaults.cpp replaces SipSmCopyString and SipSmCloneString of libsipcore.
// They call the real services, but while a NoTexts exists they fail without changing their targets,
// as the services of a stack can.
#pragma once

#include <cstdint>

namespace dsmtest {

class NoTexts {
public:
    // The result of each of the two; 0 makes the real call.
    NoTexts(uint32_t copyResult, uint32_t cloneResult);
    ~NoTexts();
    NoTexts(const NoTexts &) = delete;
    NoTexts &operator=(const NoTexts &) = delete;
};

} // namespace dsmtest
