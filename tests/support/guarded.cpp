#include "support/guarded.hpp"

#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace support {

Guarded::Guarded(size_t size) : size_(size) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t readable = (size + page - 1) / page * page;
    mapped_ = readable + page;
    void *const pages =
        mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        std::abort();
    }
    pages_ = static_cast<uint8_t *>(pages);
    if (mprotect(pages_ + readable, page, PROT_NONE) != 0) {
        std::abort();
    }
    data_ = pages_ + readable - size;
}

Guarded::Guarded(std::string_view bytes) : Guarded(bytes.size()) {
    if (!bytes.empty()) {
        std::memcpy(data_, bytes.data(), bytes.size());
    }
}

Guarded::~Guarded() {
    munmap(pages_, mapped_);
}

} // namespace support
