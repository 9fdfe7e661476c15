// Memory for copies of records: from any memory control, or from the unused rest of a block.
#pragma once

#include <cstdint>

#include "services/allocation.hpp"
#include "services/builtin.hpp"
#include "sipcore/block.hpp"

namespace sdpline {

// Memory of a control: cut from the block in place if the control is one of libsipcore's blocks,
// else allocated by the control's functions. After the first failure every request fails. The class
// is two pointers, which stay in registers.
class CopyMemory {
public:
    explicit CopyMemory(SDPMemCp &control)
        : control_(&control),
          block_(builtin.ownsBlock(control) ? static_cast<sipcore::Block *>(control.pService)
                                            : nullptr) {}

    bool failed() const { return control_ == nullptr; }
    void fail() { *this = CopyMemory(); }

    // Memory with undefined content; null after a failure.
    SDPLINE_INLINE void *take(uint32_t size) {
        void *const memory = block_ != nullptr ? sipcore::cutSmall(*block_, size) : nullptr;
        return memory != nullptr ? memory : unlessFailed(takeByCall(*this, size));
    }

    // A copy of `size` bytes, at least one.
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

// Memory from the unused rest of a block's current span only: no new chunk, and no freed allocation
// is used. The block is changed by keep() alone: a copy that fails half way leaves it as it was.
class CutMemory {
public:
    explicit CutMemory(SDPMemCp &control)
        : block_(static_cast<sipcore::Block *>(control.pService)), at_(block_->span.at) {}

    SDPMemCp *control() const { return &block_->control; }
    bool failed() const { return at_ > block_->span.end; }
    void fail() { at_ = block_->span.end + 1; }

    // Makes the allocations part of the block, or gives them up.
    void keep() const { block_->span.at = at_; }
    void drop() const { sipcore::forbid(block_->span.at, block_->span.size()); }

    SDPLINE_INLINE void *take(uint32_t size) {
        void *const memory = sipcore::cutSmall(*block_, at_, size);
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
    std::byte *at_; // where the next allocation is cut; after the end of the span once one failed
};

} // namespace sdpline
