// Memory for copies: of any control, or cut from what a block of libsipcore's has left.
#pragma once

#include <cstdint>

#include "services/allocation.hpp"
#include "services/builtin.hpp"
#include "sipcore/block.hpp"

namespace sdpline {

// Cut from a block of libsipcore's as its calls would, or taken by the calls of any other control.
// Two pointers, which stay in registers; after the first failure it gives nothing more.
class CopyMemory {
public:
    explicit CopyMemory(SDPMemCp &control)
        : control_(&control),
          block_(builtin.ownsBlock(control) ? static_cast<sipcore::Block *>(control.pService)
                                            : nullptr) {}

    bool failed() const { return control_ == nullptr; }
    void fail() { *this = CopyMemory(); }

    // Holds anything; null after a failure.
    SDPLINE_INLINE void *take(uint32_t size) {
        void *const memory = block_ != nullptr ? sipcore::cutSmall(*block_, size) : nullptr;
        return memory != nullptr ? memory : unlessFailed(takeByCall(*this, size));
    }

    // Of at least one byte.
    void *copied(const void *from, uint32_t size) {
        return unlessFailed(copyOutOfLine(*this, from, size));
    }

private:
    CopyMemory() = default;

    void *unlessFailed(void *memory) {
        if (memory == nullptr) [[unlikely]] {
            fail();
        }
        return memory;
    }

    [[gnu::noinline]] static void *takeByCall(CopyMemory memory, uint32_t size) {
        if (memory.block_ != nullptr) {
            return builtin.blockTake(memory.control_, size);
        }
        return memory.control_ != nullptr ? memory.control_->pfnAlloc(memory.control_, size)
                                          : nullptr;
    }

    [[gnu::noinline]] static void *copyOutOfLine(CopyMemory memory, const void *from,
                                                 uint32_t size) {
        void *const bytes = memory.take(size);
        if (bytes != nullptr) {
            copyBytes(bytes, from, size);
        }
        return bytes;
    }

    SDPMemCp *control_ = nullptr;
    sipcore::Block *block_ = nullptr; // null where every request is a call
};

// What a block has left in its span, and nothing else: no request to the heap, and none that a
// freed allocation would serve. A copy that fails half way is dropped, and leaves no trace.
class CutMemory {
public:
    explicit CutMemory(SDPMemCp &control)
        : block_(static_cast<sipcore::Block *>(control.pService)), before_(block_->span.at) {}

    bool failed() const { return failed_; }
    void fail() { failed_ = true; }
    void drop() const {
        sipcore::forbid(before_, static_cast<size_t>(block_->span.at - before_));
        block_->span.at = before_;
    }

    SDPMemCp *control() const { return &block_->control; }
    // The same as drop(), by the first allocation that was made.
    void dropFrom(void *first) const {
        std::byte *const before = static_cast<std::byte *>(first) - sipcore::kHeaderSize;
        sipcore::forbid(before, static_cast<size_t>(block_->span.at - before));
        block_->span.at = before;
    }

    SDPLINE_INLINE void *take(uint32_t size) {
        void *const memory = sipcore::cutSmall(*block_, size);
        if (memory == nullptr) [[unlikely]] {
            fail();
        }
        return memory;
    }

    SDPLINE_INLINE void *copied(const void *from, uint32_t size) {
        void *const bytes = take(size);
        if (bytes != nullptr) [[likely]] {
            copyBytes(bytes, from, size);
        }
        return bytes;
    }

private:
    sipcore::Block *block_;
    std::byte *before_;
    bool failed_ = false;
};

} // namespace sdpline
