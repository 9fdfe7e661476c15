// The memory of blocks, watched and made to fail.
//
// A program that links allocations.cpp takes SipMmCreateBufMem over from libsipcore: blocks are
// still the real ones, but every block made and every allocation in one is counted, and the n-th
// of them can be made to fail.
#pragma once

#include <cstdint>

namespace support {

struct Allocations {
    // Starts counting anew; nothing fails.
    static void reset();
    // Fails the n-th allocation since the reset, and none after it.
    static void failAt(uint32_t n);
    // How many were tried since the reset, the failed one included.
    static uint32_t count();
    // Whether the one to fail has come.
    static bool failed();
};

// What libsipcore holds now, to be compared with what it held before.
struct Held {
    uint64_t blocks;
    uint64_t heapBlocks;
    uint64_t heapBytes;

    static Held now();
    bool operator==(const Held &) const = default;
};

} // namespace support
