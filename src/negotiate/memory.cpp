// The allocation of memory, and numbers in texts.
#include "negotiate/memory.hpp"

namespace sdpline::negotiate {

// The rest of the last allocation is not used any more.
bool Arena::refill(size_t size) {
    constexpr size_t kNext = kAllocation - 64; // as much as fits into what the block takes at once
    const size_t wanted = size > kNext ? size : kNext;
    void *const memory =
        block_ != nullptr ? block_->pfnAlloc(block_, static_cast<uint32_t>(wanted)) : nullptr;
    failed_ = failed_ || memory == nullptr;
    next_ = static_cast<char *>(memory);
    left_ = memory != nullptr ? wanted : 0;
    return memory != nullptr;
}

Text &Text::operator<<(uint32_t number) {
    if (number >= 1000 || size_ + 3 > sizeof bytes_) {
        return addLong(number);
    }
    if (number >= 100) { // most are payload numbers and streams
        bytes_[size_++] = static_cast<char>('0' + number / 100);
    }
    if (number >= 10) {
        bytes_[size_++] = static_cast<char>('0' + number / 10 % 10);
    }
    bytes_[size_++] = static_cast<char>('0' + number % 10);
    return *this;
}

Text &Text::addLong(uint32_t number) {
    char digits[10];
    char *const end = digits + sizeof digits;
    char *begin = end;
    do {
        *--begin = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    return *this << std::string_view(begin, static_cast<size_t>(end - begin));
}

} // namespace sdpline::negotiate
