// Counts the allocations of blocks, and makes one of them fail.
//
// A program that links allocations.cpp replaces SipMmCreateBufMem of libsipcore: the blocks are
// real, but every new block and every allocation in one is counted, and the n-th of them can fail.
#pragma once

#include <cstdint>

namespace support {

struct Allocations {
    // Sets the count to 0; nothing fails.
    static void reset();
    // Fails the n-th allocation since the reset, and none after it.
    static void failAt(uint32_t n);
    // The number of attempts since the reset, including the failed one.
    static uint32_t count();
    // Whether the one that fails was reached.
    static bool failed();
};

// The memory that libsipcore holds now, for comparison with what it held before.
struct Held {
    uint64_t blocks;
    uint64_t heapBlocks;
    uint64_t heapBytes;

    static Held now();
    bool operator==(const Held &) const = default;
};

} // namespace support
