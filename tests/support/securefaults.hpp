// Makes the bounds-checked memory functions fail, and records what the library reports about it.
//
// A program that links securefaults.cpp replaces memcpy_s, memset_s, SIPAbnormalSecureFunc and
// SIPAbnormalSecureFuncEx of libsipcore: every call is counted or recorded, and then passed to the
// real service unless it has to fail. All state is per thread.
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
    // Sets the count to 0 and forgets the reports; nothing fails.
    static void reset();
    // Fails the n-th call of memcpy_s or memset_s since the reset, and none after it; it changes no
    // bytes.
    static void failAt(uint32_t n);
    // The number of calls of the two since the reset, including the failed one.
    static uint32_t count();
    // The reports since the reset, in order.
    static const std::vector<SecureReport> &reports();
};

} // namespace support
