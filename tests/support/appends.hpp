// Counts the appends to the string buffer, and makes some of them fail.
//
// A program that links appends.cpp replaces the four append functions of libsipcore: each call is
// counted and recorded, and then passed to the real service unless it has to fail. Counting is per
// thread, and begins with the first reset.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct Appends {
    // The result of a failed append: neither the library nor the real service returns it.
    static constexpr uint32_t kRefused = 0x0A99E4D5;

    // Sets the count to 0 and forgets the recorded calls; nothing fails.
    static void reset();
    // Passes every append to the service again, without counting it.
    static void off();

    // Fails the n-th append since the reset, and none after it; it is not passed to the service.
    static void failAt(uint32_t n);
    // Fails the n-th append since the reset and all that follow, as a full buffer does.
    static void failFrom(uint32_t n);

    // The number of attempts since the reset, including failed ones.
    static uint32_t count();
    // The text of each of them.
    static const std::vector<std::string> &texts();
    // The texts of all appends but the failed ones, joined.
    static const std::string &written();
};

} // namespace support
