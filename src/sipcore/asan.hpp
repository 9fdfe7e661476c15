// Tells AddressSanitizer which memory of a block is in use. In other builds this does nothing.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define SIPCORE_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SIPCORE_ASAN 1
#endif
#endif

#if defined(SIPCORE_ASAN)
#include <sanitizer/asan_interface.h>
// For functions that read and write allocation headers, which are poisoned for all other code.
#define SIPCORE_UNCHECKED __attribute__((no_sanitize_address))
#else
#define SIPCORE_UNCHECKED
#endif

namespace sipcore {

inline void forbid([[maybe_unused]] const void *memory, [[maybe_unused]] std::size_t bytes) {
#if defined(SIPCORE_ASAN)
    ASAN_POISON_MEMORY_REGION(memory, bytes);
#endif
}

inline void permit([[maybe_unused]] const void *memory, [[maybe_unused]] std::size_t bytes) {
#if defined(SIPCORE_ASAN)
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
#endif
}

} // namespace sipcore
