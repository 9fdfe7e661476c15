#include "input/unpack.hpp"

#include <vector>

#ifdef SDPLINE_ZLIB
#include <zlib.h>
#endif
#ifdef SDPLINE_ZSTD
#include <zstd.h>
#endif

namespace cli {

namespace {

[[maybe_unused]] constexpr size_t kUnpackedChunk = 128u << 10;

// Reads the packed source in parts.
class [[maybe_unused]] Chunks {
public:
    explicit Chunks(std::unique_ptr<Source> source)
        : source_(std::move(source)), bytes_(kUnpackedChunk) {}

    // The next part; 0 at the end.
    size_t fill() { return source_->read(bytes_.data(), bytes_.size()); }
    char *data() { return bytes_.data(); }
    uint64_t taken() const { return source_->taken(); }
    std::string error() const { return source_->error(); }

private:
    std::unique_ptr<Source> source_;
    std::vector<char> bytes_;
};

#ifdef SDPLINE_ZLIB
// RFC 1952: a sequence of members.
class Gzip : public Source {
public:
    explicit Gzip(std::unique_ptr<Source> source) : chunks_(std::move(source)) {
        if (inflateInit2(&state_, kGzipOnly) != Z_OK) {
            error_ = "not enough memory to unpack it";
        }
    }
    ~Gzip() override { inflateEnd(&state_); }
    Gzip(const Gzip &) = delete;
    Gzip &operator=(const Gzip &) = delete;

    size_t read(char *bytes, size_t size) override {
        state_.next_out = reinterpret_cast<Bytef *>(bytes);
        state_.avail_out = static_cast<uInt>(size);
        while (error_.empty() && state_.avail_out == size && more()) {
            const int result = inflate(&state_, Z_NO_FLUSH);
            inMember_ = result != Z_STREAM_END;
            if (result == Z_STREAM_END) {
                inflateReset(&state_);
            } else if (result != Z_OK && result != Z_BUF_ERROR) {
                error_ = "its gzip data is damaged";
            }
        }
        return size - state_.avail_out;
    }
    uint64_t taken() const override { return chunks_.taken(); }
    std::string error() const override { return error_.empty() ? chunks_.error() : error_; }

private:
    static constexpr int kGzipOnly = 15 + 16;

    bool more() {
        if (state_.avail_in == 0) {
            state_.avail_in = static_cast<uInt>(chunks_.fill());
            state_.next_in = reinterpret_cast<Bytef *>(chunks_.data());
            if (state_.avail_in == 0 && inMember_ && chunks_.error().empty()) {
                error_ = "its gzip data ends too early";
            }
        }
        return state_.avail_in != 0;
    }

    Chunks chunks_;
    z_stream state_ = {};
    bool inMember_ = true;
    std::string error_;
};
#endif

#ifdef SDPLINE_ZSTD
// RFC 8878: a sequence of frames.
class Zstd : public Source {
public:
    explicit Zstd(std::unique_ptr<Source> source)
        : chunks_(std::move(source)), state_(ZSTD_createDStream()) {
        if (state_ == nullptr) {
            error_ = "not enough memory to unpack it";
        }
    }
    ~Zstd() override { ZSTD_freeDStream(state_); }
    Zstd(const Zstd &) = delete;
    Zstd &operator=(const Zstd &) = delete;

    size_t read(char *bytes, size_t size) override {
        ZSTD_outBuffer out = {bytes, size, 0};
        while (error_.empty() && out.pos == 0 && more()) {
            const size_t result = ZSTD_decompressStream(state_, &out, &in_);
            if (ZSTD_isError(result) != 0) {
                error_ = std::string("its zstd data is damaged: ") + ZSTD_getErrorName(result);
            }
            // If the output is full, the decompressor may hold more bytes for the next call.
            inFrame_ = result != 0;
            pending_ = out.pos == out.size && result != 0;
        }
        return out.pos;
    }
    uint64_t taken() const override { return chunks_.taken(); }
    std::string error() const override { return error_.empty() ? chunks_.error() : error_; }

private:
    bool more() {
        if (in_.pos == in_.size && !pending_) {
            in_ = {chunks_.data(), chunks_.fill(), 0};
            if (in_.size == 0 && inFrame_ && chunks_.error().empty()) {
                error_ = "its zstd data ends too early";
            }
            return in_.size != 0;
        }
        pending_ = false;
        return true;
    }

    Chunks chunks_;
    ZSTD_DStream *state_;
    ZSTD_inBuffer in_ = {};
    bool inFrame_ = true;
    bool pending_ = false;
    std::string error_;
};
#endif

} // namespace

std::unique_ptr<Source> unpackerFor([[maybe_unused]] std::string_view begin,
                                    [[maybe_unused]] std::unique_ptr<Source> &packed) {
#ifdef SDPLINE_ZLIB
    if (begin.starts_with("\x1f\x8b")) {
        return std::make_unique<Gzip>(std::move(packed));
    }
#endif
#ifdef SDPLINE_ZSTD
    if (begin.starts_with("\x28\xb5\x2f\xfd")) {
        return std::make_unique<Zstd>(std::move(packed));
    }
#endif
    return nullptr;
}

std::string unpackable() {
    std::string names;
#ifdef SDPLINE_ZLIB
    names += "gzip";
#endif
#ifdef SDPLINE_ZSTD
    names += names.empty() ? "zstd" : ", zstd";
#endif
    return names;
}

} // namespace cli
