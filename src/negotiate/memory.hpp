// The memory of one call: a block of the core services for the work of the call and its report.
//
// After a failed allocation the call goes on until its end, where failed() makes it return
// Reason::NoMemory. Until then every user of memory tests for null before it writes.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "negotiate/records.hpp"

namespace sdpline::negotiate {

class Arena {
public:
    Arena() { SipMmCreateBufMem(kAllocation, kAllocation, &block_); }
    ~Arena() { SipMmReleaseBufMem(&block_); }
    Arena(const Arena &) = delete;
    Arena &operator=(const Arena &) = delete;

    // Returns memory that is not cleared; null when memory is exhausted. Small requests are cut
    // from a larger allocation. Nothing is freed before the block.
    void *take(size_t size) {
        const size_t rounded = roundUp(size);
        if (rounded > left_ && !refill(rounded)) {
            return nullptr;
        }
        char *const memory = next_;
        next_ += rounded;
        left_ -= rounded;
        return memory;
    }
    // Memory for at most `size` bytes, null when it is exhausted; keep() allocates what was used.
    char *reserve(size_t size) { return size <= left_ || refill(roundUp(size)) ? next_ : nullptr; }
    void keep(size_t size) {
        next_ += roundUp(size);
        left_ -= roundUp(size);
    }

    template <class T>
    T *make(size_t count = 1) {
        static_assert(std::is_trivially_copyable_v<T>);
        void *const memory = take(count * sizeof(T));
        return memory != nullptr ? static_cast<T *>(std::memset(memory, 0, count * sizeof(T)))
                                 : nullptr;
    }
    std::string_view copy(std::string_view text) {
        void *const memory = text.empty() ? nullptr : take(text.size());
        if (memory == nullptr) {
            return {};
        }
        std::memcpy(memory, text.data(), text.size());
        return {static_cast<const char *>(memory), text.size()};
    }

    bool failed() const { return failed_ || block_ == nullptr; }

    // Set when a text of the body is longer than a decoder reads.
    bool tooLong = false;

    // Returns the block, which then belongs to the caller.
    SDPMemCp *release() {
        SDPMemCp *const block = block_;
        block_ = nullptr;
        return block;
    }

private:
    static constexpr size_t kAlignment = 8;
    static constexpr size_t roundUp(size_t size) {
        return (size + kAlignment - 1) & ~(kAlignment - 1);
    }
    static constexpr uint32_t kAllocation = 2048;

    bool refill(size_t size);

    SDPMemCp *block_ = nullptr;
    char *next_ = nullptr;
    size_t left_ = 0;
    bool failed_ = false;
};

// A list that grows in an arena. When memory is exhausted, nothing more is added.
template <class T>
class Growing {
public:
    explicit Growing(Arena &arena) : arena_(&arena) {}

    void add(const T &item) {
        if (count_ == capacity_ && !grow()) {
            return;
        }
        items_[count_++] = item;
    }

    uint32_t size() const { return count_; }
    T &operator[](size_t index) { return items_[index]; }
    const T &operator[](size_t index) const { return items_[index]; }
    T *begin() { return items_; }
    T *end() { return items_ + count_; }
    const T *begin() const { return items_; }
    const T *end() const { return items_ + count_; }
    void cut(uint32_t count) { count_ = count; } // keeps the first ones

private:
    // Not inlined, so that add() saves no registers.
    [[gnu::noinline]] bool grow() {
        const uint32_t capacity = capacity_ != 0 ? capacity_ * 2 : 8;
        auto *const items = static_cast<T *>(arena_->take(capacity * sizeof(T)));
        if (items == nullptr) {
            return false;
        }
        if (count_ != 0) {
            std::memcpy(static_cast<void *>(items), items_, count_ * sizeof(T));
        }
        items_ = items;
        capacity_ = capacity;
        return true;
    }

    Arena *arena_;
    T *items_ = nullptr;
    uint32_t count_ = 0;
    uint32_t capacity_ = 0;
};

// A text under construction, of at most SDP_MAX_VALUE bytes. Longer text is cut, and cut() is true.
class Text {
public:
    Text &operator<<(std::string_view text) {
        const size_t fits =
            text.size() < sizeof bytes_ - size_ ? text.size() : sizeof bytes_ - size_;
        cut_ = cut_ || fits < text.size();
        std::char_traits<char>::copy(bytes_ + size_, text.data(), fits);
        size_ += fits;
        return *this;
    }
    // Always inlined: the length of a literal is then known, and copying it takes a few moves.
    [[gnu::always_inline]] Text &operator<<(const char *text) {
        const size_t size = __builtin_strlen(text);
        if (!__builtin_constant_p(size) || size > sizeof bytes_ - size_) {
            return *this << std::string_view(text, size);
        }
        std::char_traits<char>::copy(bytes_ + size_, text, size);
        size_ += size;
        return *this;
    }
    Text &operator<<(uint32_t number);

    std::string_view view() const { return {bytes_, size_}; }
    bool cut() const { return cut_; }
    bool empty() const { return size_ == 0; }

private:
    [[gnu::noinline]] Text &addLong(uint32_t number); // not inlined: short ones save no registers

    char bytes_[SDP_MAX_VALUE];
    size_t size_ = 0;
    bool cut_ = false;
};

} // namespace sdpline::negotiate
