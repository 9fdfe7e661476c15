// The bounds-checked memory functions, made to fail, and what the library reports about it.
//
// A program that links securefaults.cpp takes memcpy_s, memset_s, SIPAbnormalSecureFunc and
// SIPAbnormalSecureFuncEx over from libsipcore: every call is counted or noted, and then made by
// the real service, unless it was told to fail. Everything is per thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct SecureReport {
    bool ex; // by SIPAbnormalSecureFuncEx
    std::string name;
    uint32_t number;
};

struct SecureFaults {
    // Starts anew: nothing counted, nothing reported, nothing to fail.
    static void reset();
    // Fails the n-th call of memcpy_s or memset_s since the reset, and none after it: its bytes
    // stay as they are.
    static void failAt(uint32_t n);
    // How many calls of the two were made since the reset, the failed one included.
    static uint32_t count();
    // What was reported since the reset, in order.
    static const std::vector<SecureReport> &reports();
};

} // namespace support
