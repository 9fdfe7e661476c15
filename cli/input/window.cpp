#include "input/window.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace cli {

namespace {

constexpr size_t kFirstCapacity = 256u << 10;
constexpr size_t kLeastRead = 64u << 10;

} // namespace

Window::Window(const std::string &path) : source_(openSource(path)), error_(source_->error()) {}

bool Window::fill(size_t size) {
    while (error_.empty() && !ended_ && end_ - begin_ < size) {
        if (capacity_ - end_ < kLeastRead) {
            makeSpace(size);
        }
        read();
    }
    return error_.empty();
}

// Moves the text to the start of the buffer once at least as many bytes were dropped as are kept.
// Otherwise the buffer doubles.
void Window::makeSpace(size_t size) {
    const size_t kept = end_ - begin_;
    if (begin_ >= kept && begin_ >= kLeastRead && capacity_ - kept >= kLeastRead) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, kept);
    } else {
        const size_t wanted =
            std::min(std::max(size, kept), std::numeric_limits<size_t>::max() / 4);
        const size_t most = wanted + kept + 2 * kLeastRead;
        const size_t capacity = std::max(kFirstCapacity, std::min(2 * capacity_, most));
        std::unique_ptr<char[]> buffer(new char[std::max(capacity, kept + kLeastRead)]);
        std::memcpy(buffer.get(), buffer_.get() + begin_, kept);
        capacity_ = std::max(capacity, kept + kLeastRead);
        buffer_ = std::move(buffer);
    }
    begin_ = 0;
    end_ = kept;
}

uint64_t Window::newlyTaken() {
    return source_->taken() - std::exchange(told_, source_->taken());
}

void Window::read() {
    const size_t got = source_->read(buffer_.get() + end_, capacity_ - end_);
    end_ += got;
    if (got == 0) {
        error_ = source_->error();
        ended_ = true;
    }
}

} // namespace cli
