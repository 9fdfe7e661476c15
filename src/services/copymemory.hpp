// Memory for a copy: cut from a block of libsipcore's as its calls would, or taken by the calls of
// any other control.
#pragma once

#include <cstdint>

#include "services/builtin.hpp"
#include "sipcore/block.hpp"

namespace sdpline {

// Two pointers, to be passed by value: they stay in registers.
class CopyMemory {
public:
    explicit CopyMemory(SDPMemCp &control)
        : control_(&control),
          block_(builtin.ownsBlock(control) ? static_cast<sipcore::Block *>(control.pService)
                                            : nullptr) {}
    static CopyMemory exhausted() { return CopyMemory(); }

    SDPMemCp &control() const { return *control_; }
    bool isExhausted() const { return control_ == nullptr; }
    bool isInPlace() const { return block_ != nullptr; }

    // Holds anything; null without memory.
    void *take(uint32_t size) const {
        void *const memory = block_ != nullptr ? sipcore::cutSmall(*block_, size) : nullptr;
        return memory != nullptr ? memory : takeByCall(*this, size);
    }

private:
    CopyMemory() = default;

    [[gnu::noinline]] static void *takeByCall(CopyMemory memory, uint32_t size) {
        if (memory.block_ != nullptr) {
            return builtin.blockTake(memory.control_, size);
        }
        return memory.control_ != nullptr ? memory.control_->pfnAlloc(memory.control_, size)
                                          : nullptr;
    }

    SDPMemCp *control_ = nullptr;
    sipcore::Block *block_ = nullptr; // null where every request is a call
};

} // namespace sdpline
