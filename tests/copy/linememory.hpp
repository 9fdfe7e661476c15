// A memory control that watches everything that is taken from it and given back, and can refuse
// one request.
//
// Memory comes out filled with rubbish: nothing may count on zeroes. Given back, it is gone, so a
// sanitizer sees every later use. Memory of somebody else, or given back twice, fails the test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "sdpline/sipcore.h"

namespace dsmtest {

inline constexpr int kRubbish = 0xA5;

class LineMemory {
public:
    LineMemory();
    ~LineMemory(); // fails the test when something was not given back

    LineMemory(const LineMemory &) = delete;
    LineMemory &operator=(const LineMemory &) = delete;

    SDPMemCp *control() { return &control_; }

    // The request that many requests ahead (1 = the next one) returns null; 0: none.
    void refuse(size_t ahead) { refused_ = ahead == 0 ? 0 : requests_ + ahead; }

    size_t requests() const { return requests_; }
    size_t live() const { return allocations_.size(); }
    // Size of a live allocation that begins there; 0 when there is none.
    size_t sizeAt(const void *allocation) const;

    // What pfnFree returns, for all memories.
    static void answerFree(uint32_t result) { freeAnswer_ = result; }

private:
    static void *alloc(SDPMemCp *control, uint32_t size);
    static uint32_t free(void *allocation);

    SDPMemCp control_;
    std::map<const void *, size_t> allocations_;
    size_t requests_ = 0;
    size_t refused_ = 0;

    static std::map<const void *, LineMemory *> owners_;
    static uint32_t freeAnswer_;
};

// Memory that replaces the process heap while it lives.
class SystemMemory {
public:
    SystemMemory() : before_(gSipSystemMemCp) { gSipSystemMemCp = memory.control(); }
    ~SystemMemory() { gSipSystemMemCp = before_; }
    SystemMemory(const SystemMemory &) = delete;
    SystemMemory &operator=(const SystemMemory &) = delete;

    LineMemory memory;

private:
    SDPMemCp *before_;
};

} // namespace dsmtest
