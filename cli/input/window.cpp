#include "input/window.hpp"

#include <cerrno>
#include <cstring>

namespace cli {

namespace {

constexpr size_t kFirstRead = 64u << 10;

} // namespace

Window::Window(const std::string &path)
    : file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb")) {
    if (!file_) {
        error_ = std::strerror(errno);
    }
}

bool Window::fill(size_t size) {
    while (error_.empty() && !ended_ && text().size() < size) {
        // What was dropped makes room, once it is worth the move.
        if (begin_ >= size) {
            buffer_.erase(0, begin_);
            begin_ = 0;
        }
        read();
    }
    return error_.empty();
}

// As much again as there is.
bool Window::read() {
    const size_t before = buffer_.size();
    const size_t wanted = before > kFirstRead ? before : kFirstRead;
    buffer_.resize(before + wanted);
    errno = 0;
    const size_t got = std::fread(buffer_.data() + before, 1, wanted, file_.get());
    buffer_.resize(before + got);
    if (got < wanted) {
        if (std::ferror(file_.get()) != 0) {
            error_ = std::strerror(errno);
        }
        ended_ = true;
    }
    return error_.empty();
}

} // namespace cli
