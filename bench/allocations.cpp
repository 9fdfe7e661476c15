// Replaces the heap functions of glibc by functions that count and forward, which costs one
// addition for each call, the same for every library that is measured.
#include "allocations.hpp"

#include <cerrno>
#include <cstddef>

extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *memory, size_t size);
void *__libc_memalign(size_t alignment, size_t size);

} // extern "C"

namespace {

thread_local uint64_t calls = 0;

} // namespace

namespace bench {

uint64_t allocations() {
    return calls;
}

} // namespace bench

extern "C" {

[[gnu::visibility("default")]] void *malloc(size_t size) {
    ++calls;
    return __libc_malloc(size);
}

[[gnu::visibility("default")]] void *calloc(size_t count, size_t size) {
    ++calls;
    return __libc_calloc(count, size);
}

[[gnu::visibility("default")]] void *realloc(void *memory, size_t size) {
    ++calls;
    return __libc_realloc(memory, size);
}

[[gnu::visibility("default")]] void *aligned_alloc(size_t alignment, size_t size) {
    ++calls;
    return __libc_memalign(alignment, size);
}

[[gnu::visibility("default")]] int posix_memalign(void **memory, size_t alignment, size_t size) {
    ++calls;
    void *const made = __libc_memalign(alignment, size);
    if (made == nullptr) {
        return ENOMEM;
    }
    *memory = made;
    return 0;
}

} // extern "C"
