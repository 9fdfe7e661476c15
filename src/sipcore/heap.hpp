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

// Null without memory. What is kept holds what it held before, unless it is asked for zeroed.
enum class Content : uint8_t { Any, Zeroed };
void *heapTake(std::size_t bytes, Use use, Content content);
void heapGive(void *memory, std::size_t bytes, Use use);

// An allocation of a memory control that the caller fills: of the system's, one that is not zeroed
// before.
void *takeUnfilled(SDPMemCp *memCp, uint32_t size);

// The size of what takeUnfilled() takes for a request: that of the heap's allocation, where it is
// larger and no function of the program's sees the request.
uint32_t wholeSize(const SDPMemCp *memCp, uint32_t size);

// pfnAlloc and pfnFree of the system's memory control.
void *systemAlloc(SDPMemCp *memCp, uint32_t size);
uint32_t systemFree(void *memory);

void countAbnormalReport();

} // namespace sipcore
