// A file or standard input, read in parts: what is in memory is a window that moves on.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace cli {

class Window {
public:
    // "-" is standard input. Without success the reason is in error().
    explicit Window(const std::string &path);

    // Reads until at least that many bytes are in memory, or all up to the end. Returns false where
    // reading fails.
    bool fill(size_t size);

    std::string_view text() const { return std::string_view(buffer_).substr(begin_); }
    bool last() const { return ended_; } // the text reaches the end of the input
    void drop(size_t size) { begin_ += size; }

    const std::string &error() const { return error_; }

private:
    struct Close {
        void operator()(std::FILE *file) const {
            if (file != stdin) {
                std::fclose(file);
            }
        }
    };

    bool read();

    std::unique_ptr<std::FILE, Close> file_;
    std::string buffer_;
    size_t begin_ = 0; // of the text in the buffer
    bool ended_ = false;
    std::string error_;
};

} // namespace cli
