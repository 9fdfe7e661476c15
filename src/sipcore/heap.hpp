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

bool isSystem(const SDPMemCp *memCp);

// What the system's control may be asked for without taking more from the heap than for `size`; and
// the most that a request may be for the heap to keep its memory for the next one.
uint32_t wholeSystemSize(uint32_t size);
extern const uint32_t kLargestKept;

// pfnAlloc and pfnFree of the system's memory control.
void *systemAlloc(SDPMemCp *memCp, uint32_t size);
uint32_t systemFree(void *memory);

void countAbnormalReport();

} // namespace sipcore
