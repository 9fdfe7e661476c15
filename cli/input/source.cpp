#include "input/source.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "input/unpack.hpp"

namespace cli {

namespace {

// A file or standard input.
class File : public Source {
public:
    explicit File(const std::string &path)
        : file_(path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (file_ < 0) {
            error_ = std::strerror(errno);
        } else {
            posix_fadvise(file_, 0, 0, POSIX_FADV_SEQUENTIAL); // without effect on a pipe
        }
    }
    ~File() override {
        if (file_ > STDIN_FILENO) {
            close(file_);
        }
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    size_t read(char *bytes, size_t size) override {
        while (error_.empty()) {
            const ssize_t got = ::read(file_, bytes, size);
            if (got >= 0) {
                taken_ += static_cast<size_t>(got);
                return static_cast<size_t>(got);
            }
            if (errno != EINTR) {
                error_ = std::strerror(errno);
            }
        }
        return 0;
    }
    uint64_t taken() const override { return taken_; }
    std::string error() const override { return error_; }

private:
    int file_;
    uint64_t taken_ = 0;
    std::string error_;
};

// A source of which the first bytes have been read.
class Begun : public Source {
public:
    Begun(std::string begin, std::unique_ptr<Source> rest)
        : begin_(std::move(begin)), rest_(std::move(rest)) {}

    size_t read(char *bytes, size_t size) override {
        if (at_ == begin_.size()) {
            return rest_->read(bytes, size);
        }
        const size_t got = begin_.copy(bytes, size, at_);
        at_ += got;
        return got;
    }
    uint64_t taken() const override { return rest_->taken(); }
    std::string error() const override { return rest_->error(); }

private:
    std::string begin_;
    size_t at_ = 0;
    std::unique_ptr<Source> rest_;
};

} // namespace

std::unique_ptr<Source> openSource(const std::string &path) {
    constexpr size_t kMagic = 4;
    std::unique_ptr<Source> source = std::make_unique<File>(path);
    std::string begin(kMagic, '\0');
    size_t size = 0;
    while (size < kMagic) {
        const size_t got = source->read(begin.data() + size, kMagic - size);
        if (got == 0) {
            break;
        }
        size += got;
    }
    begin.resize(size);
    source = std::make_unique<Begun>(begin, std::move(source));
    std::unique_ptr<Source> unpacked = unpackerFor(begin, source);
    return unpacked != nullptr ? std::move(unpacked) : std::move(source);
}

} // namespace cli
