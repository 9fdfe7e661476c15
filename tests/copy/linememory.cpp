#include "copy/linememory.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace dsmtest {

std::map<const void *, LineMemory *> LineMemory::owners_;
uint32_t LineMemory::freeAnswer_ = 0;

LineMemory::LineMemory() : control_{this, alloc, free} {}

LineMemory::~LineMemory() {
    EXPECT_EQ(allocations_.size(), 0u) << "allocations were not given back";
    for (const auto &[allocation, size] : allocations_) {
        owners_.erase(allocation);
        std::free(const_cast<void *>(allocation));
    }
}

size_t LineMemory::sizeAt(const void *allocation) const {
    const auto found = allocations_.find(allocation);
    return found == allocations_.end() ? 0 : found->second;
}

void *LineMemory::alloc(SDPMemCp *control, uint32_t size) {
    auto &self = *static_cast<LineMemory *>(control->pService);
    if (++self.requests_ == self.refused_) {
        return nullptr;
    }
    void *allocation = std::malloc(size == 0 ? 1 : size);
    std::memset(allocation, kRubbish, size == 0 ? 1 : size);
    self.allocations_[allocation] = size;
    owners_[allocation] = &self;
    return allocation;
}

uint32_t LineMemory::free(void *allocation) {
    const auto owner = owners_.find(allocation);
    if (owner == owners_.end()) {
        ADD_FAILURE() << "released, but not allocated";
        return freeAnswer_;
    }
    owner->second->allocations_.erase(allocation);
    owners_.erase(owner);
    std::free(allocation);
    return freeAnswer_;
}

} // namespace dsmtest
