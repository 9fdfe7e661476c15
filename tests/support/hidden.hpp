// For programs that replace services of libsipcore: the replaced service.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace support {

template <class Function>
Function *hidden(const char *name) {
    void *const found = dlsym(RTLD_NEXT, name);
    if (found == nullptr) {
        std::fprintf(stderr, "this program hides no %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function *>(found);
}

} // namespace support
