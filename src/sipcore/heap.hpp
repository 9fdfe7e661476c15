// The interface to the process heap: everything that sipcore allocates is counted here.
//
// Each thread caches the allocations that it frees, up to a limit, and reuses them: decoding and
// encoding one body after another does not call the process heap.
#pragma once

#include "sdpline/sipcore.h"

#include <cstddef>
#include <cstdint>

namespace sipcore {

// The largest request and the largest chunk. The sum of a request and its few bytes of bookkeeping
// therefore always fits into 32 bits.
inline constexpr uint32_t kLargestRequest = uint32_t{1} << 30;

// The use of an allocation: blocks are cached separately, so that their number can be counted
// where the heap is called.
enum class Use : uint8_t { Block, Other };

// The sizes that are cached: 256, 512, 768, ... 4096.
inline constexpr std::size_t kStep = 256;
inline constexpr std::size_t kLargestCached = 4096;

// The content that an allocation must have.
enum class Content : uint8_t { Any, Zeroed };
// The size that is requested from the heap: a multiple of 256 where the allocation can be cached.
// The caller may use all of it.
constexpr std::size_t heapSize(std::size_t bytes) {
    return bytes > kLargestCached ? bytes : (bytes + kStep - 1) / kStep * kStep;
}
// Returns null without memory.
void *heapTake(std::size_t bytes, Use use, Content content);
void heapGive(void *memory, std::size_t bytes, Use use);

bool isSystem(const SDPMemCp *memCp);

// The largest size that the system's control can be asked for without using more of the heap than
// for `size`; and the largest size whose memory is cached when it is freed.
uint32_t wholeSystemSize(uint32_t size);
extern const uint32_t kLargestKept;

// An allocation of the system's memory control, and its pfnAlloc and pfnFree.
void *systemTake(uint32_t size, Content content);
void *systemAlloc(SDPMemCp *memCp, uint32_t size);
uint32_t systemFree(void *memory);

void countAbnormalReport();

} // namespace sipcore
