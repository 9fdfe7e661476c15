// The one door to the process heap: everything sipcore allocates is counted here.
//
// What a thread gives back it keeps, up to a bound, and takes again: decoding and encoding one body
// after the other leaves the process heap alone.
#pragma once

#include "sdpline/sipcore.h"

#include <cstddef>
#include <cstdint>

namespace sipcore {

// No single request, and no chunk, is larger. Sums of a request and the few bytes of bookkeeping
// around it therefore never leave 32 bits.
inline constexpr uint32_t kLargestRequest = uint32_t{1} << 30;

// Blocks are told from other allocations, so that those alive can be counted where the heap is
// called.
enum class Use : uint8_t { Block, Other };

// Sizes that are kept: 256, 512, 768, ... 4096.
inline constexpr std::size_t kStep = 256;
inline constexpr std::size_t kLargestCached = 4096;

// Null without memory. What is kept holds what it held before, unless it is asked for zeroed.
enum class Content : uint8_t { Any, Zeroed };
// What the heap is asked for: one of few sizes as long as they are kept. All of it may be used.
constexpr std::size_t heapSize(std::size_t bytes) {
    return bytes > kLargestCached ? bytes : (bytes + kStep - 1) / kStep * kStep;
}
void *heapTake(std::size_t bytes, Use use, Content content);
void heapGive(void *memory, std::size_t bytes, Use use);

bool isSystem(const SDPMemCp *memCp);

// What the system's control may be asked for without taking more from the heap than for `size`; and
// the most that a request may be for the heap to keep its memory for the next one.
uint32_t wholeSystemSize(uint32_t size);
extern const uint32_t kLargestKept;

// An allocation of the system's memory control, and its pfnAlloc and pfnFree.
void *systemTake(uint32_t size, Content content);
void *systemAlloc(SDPMemCp *memCp, uint32_t size);
uint32_t systemFree(void *memory);

void countAbnormalReport();

} // namespace sipcore
