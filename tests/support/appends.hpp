// The appends of the string buffer, watched and made to fail.
//
// A program that links appends.cpp takes the four appenders over from libsipcore: each call is
// counted and noted, and then made by the real service, unless it was told to fail. Counting is
// per thread, and begins with the first reset.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct Appends {
    // What a failed append returns: no code of the library and no result of the real service.
    static constexpr uint32_t kRefused = 0x0A99E4D5;

    // Starts anew: nothing counted, nothing noted, nothing to fail.
    static void reset();
    // Lets every append through again, uncounted.
    static void off();

    // Fails the n-th append since the reset, and none after it: the real buffer does not see it.
    static void failAt(uint32_t n);
    // Fails the n-th append since the reset and all that follow, as a full buffer does.
    static void failFrom(uint32_t n);

    // How many appends were tried since the reset, failed ones included.
    static uint32_t count();
    // The text of each of them.
    static const std::vector<std::string> &texts();
    // All of them but the failed ones, joined.
    static const std::string &written();
};

} // namespace support
