// Counts the calls of the process heap for each thread: malloc, calloc, realloc and aligned_alloc
// of the program and of its shared libraries.
#pragma once

#include <cstdint>

namespace bench {

uint64_t allocations();

} // namespace bench
