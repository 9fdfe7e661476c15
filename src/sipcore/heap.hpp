// The one door to the process heap: everything sipcore allocates is counted here.
#ifndef SIPCORE_HEAP_HPP
#define SIPCORE_HEAP_HPP

#include <cstddef>
#include <cstdint>

namespace sipcore {

// No single request, and no chunk, is larger. Sums of a request and the few bytes of bookkeeping
// around it therefore never leave 32 bits.
inline constexpr uint32_t kLargestRequest = uint32_t{1} << 30;

// Zeroed memory, or null.
void *heapTake(std::size_t bytes);

// Gives one piece back without counting; heapCountGiven tells the statistics of any number of
// such pieces at once, which is what makes releasing a block of many chunks cheap.
void heapGive(void *memory);
void heapCountGiven(uint64_t pieces, uint64_t bytes);

void countBlockCreated();
void countBlockReleased();
void countAbnormalReport();

} // namespace sipcore

#endif
