#include "copy/linememory.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

namespace dsmtest {

std::map<const void *, LineMemory *> LineMemory::owners_;
uint32_t LineMemory::freeAnswer_ = 0;

LineMemory::LineMemory() : control_{this, alloc, free} {}

LineMemory::~LineMemory() {
    EXPECT_EQ(pieces_.size(), 0u) << "pieces were not given back";
    for (const auto &[piece, size] : pieces_) {
        owners_.erase(piece);
        std::free(const_cast<void *>(piece));
    }
}

size_t LineMemory::sizeAt(const void *piece) const {
    const auto found = pieces_.find(piece);
    return found == pieces_.end() ? 0 : found->second;
}

void *LineMemory::alloc(SDPMemCp *control, uint32_t size) {
    auto &self = *static_cast<LineMemory *>(control->pService);
    if (++self.requests_ == self.refused_) {
        return nullptr;
    }
    void *piece = std::malloc(size == 0 ? 1 : size);
    std::memset(piece, kRubbish, size == 0 ? 1 : size);
    self.pieces_[piece] = size;
    owners_[piece] = &self;
    return piece;
}

uint32_t LineMemory::free(void *piece) {
    const auto owner = owners_.find(piece);
    if (owner == owners_.end()) {
        ADD_FAILURE() << "given back what nobody holds";
        return freeAnswer_;
    }
    owner->second->pieces_.erase(piece);
    owners_.erase(owner);
    std::free(piece);
    return freeAnswer_;
}

} // namespace dsmtest
