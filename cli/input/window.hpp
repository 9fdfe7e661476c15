// Reads a file or standard input in parts: a window of the input is in memory, and moves forward.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "input/source.hpp"

namespace cli {

class Window {
public:
    // "-" is standard input; compressed input is unpacked. After a failure error() returns the
    // reason.
    explicit Window(const std::string &path);

    // Reads until the window has at least this many bytes, or reaches the end. Returns false where
    // reading fails.
    bool fill(size_t size);

    std::string_view text() const { return {buffer_.get() + begin_, end_ - begin_}; }
    bool last() const { return ended_; } // the text reaches the end of the input
    void drop(size_t size) { begin_ += size; }

    // How many bytes of the file were read since the last call of this function.
    uint64_t newlyTaken();

    const std::string &error() const { return error_; }

private:
    void makeSpace(size_t size);
    void read();

    std::unique_ptr<Source> source_;
    std::unique_ptr<char[]> buffer_;
    size_t capacity_ = 0;
    size_t begin_ = 0; // of the text in the buffer
    size_t end_ = 0;
    bool ended_ = false;
    uint64_t told_ = 0;
    std::string error_;
};

} // namespace cli
