// Calls of the process heap, counted for each thread: malloc, calloc, realloc and aligned_alloc of
// the whole program and of the shared libraries that it is linked with.
#pragma once

#include <cstdint>

namespace bench {

uint64_t allocations();

} // namespace bench
