// Memory controls and measures for tests of the core services.
#pragma once

#include "sdpline/sipcore.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SIPCORE_TESTS_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SIPCORE_TESTS_SANITIZED 1
#endif
#endif

namespace sipcoretests {

inline SipMmStatistics statistics() {
    SipMmStatistics now;
    SipMmGetStatistics(&now);
    return now;
}

// Remembers what is alive when it is made and tells whether everything since has been given back.
class LeakCheck {
public:
    LeakCheck() : before_(statistics()) {}

    bool nothingKept() const {
        const SipMmStatistics now = statistics();
        return now.ulBlocks == before_.ulBlocks && now.ulHeapBlocks == before_.ulHeapBlocks &&
               now.ulHeapBytes == before_.ulHeapBytes;
    }

private:
    SipMmStatistics before_;
};

// Memory of the system control, filled with rubbish as a service may that does not zero, whose
// request number failAt (from 1) and all later ones are refused. 0 refuses none.
class TestMemory {
public:
    explicit TestMemory(uint32_t failAt = 0) : failAt_(failAt) {
        control_.pService = this;
        control_.pfnAlloc = alloc;
        control_.pfnFree = free;
    }

    TestMemory(const TestMemory &) = delete;
    TestMemory &operator=(const TestMemory &) = delete;

    SDPMemCp *control() { return &control_; }
    uint32_t requests() const { return requests_; }
    bool refused() const { return failAt_ != 0 && requests_ >= failAt_; }

private:
    static void *alloc(SDPMemCp *control, uint32_t size) {
        auto *self = static_cast<TestMemory *>(control->pService);
        if (++self->requests_ >= self->failAt_ && self->failAt_ != 0) {
            return nullptr;
        }
        void *memory = gSipSystemMemCp->pfnAlloc(gSipSystemMemCp, size);
        if (memory != nullptr) {
            std::memset(memory, 0xAA, size);
        }
        return memory;
    }

    static uint32_t free(void *memory) { return gSipSystemMemCp->pfnFree(memory); }

    SDPMemCp control_{};
    uint32_t failAt_;
    uint32_t requests_ = 0;
};

// A memory block that releases itself.
class TestBlock {
public:
    TestBlock(uint32_t firstSize, uint32_t nextSize) {
        SipMmCreateBufMem(firstSize, nextSize, &control_);
    }
    ~TestBlock() { SipMmReleaseBufMem(&control_); }

    TestBlock(const TestBlock &) = delete;
    TestBlock &operator=(const TestBlock &) = delete;

    SDPMemCp *control() { return control_; }
    void *alloc(uint32_t size) { return control_->pfnAlloc(control_, size); }
    uint32_t free(void *memory) { return control_->pfnFree(memory); }

private:
    SDPMemCp *control_ = nullptr;
};

inline bool isZero(const void *memory, std::size_t bytes) {
    const auto *at = static_cast<const uint8_t *>(memory);
    for (std::size_t i = 0; i < bytes; ++i) {
        if (at[i] != 0) {
            return false;
        }
    }
    return true;
}

// A field's value. Pointers in packed records may be misaligned, and the test macros take
// references.
template <class T>
T held(T value) {
    return value;
}

inline SipString counted(std::string_view text) {
    return {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
}

inline std::string_view viewOf(const SipString &text) {
    return {text.pcData, text.ulLen};
}

inline std::string_view viewOf(const SipRefString *ref) {
    return {SipSmGetDataFromRefString(ref), SipSmGetLenFromRefString(ref)};
}

} // namespace sipcoretests
