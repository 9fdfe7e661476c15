#include "tidy/workspace.hpp"

#include <algorithm>

namespace sdpline::tidy {

namespace {

constexpr uint32_t kNextAllocation = 4096;

} // namespace

void Memory::grow(size_t size) {
    const auto request = static_cast<uint32_t>(std::max(size, size_t{next_}));
    if (memCp_ == nullptr && !failed_) {
        failed_ = SipMmCreateBufMem(std::max(request, first_), kNextAllocation, &memCp_) != 0;
    }
    next_ = next_ != 0 ? kNextAllocation : 0;
    free_ = failed_ ? nullptr : static_cast<char *>(memCp_->pfnAlloc(memCp_, request));
    failed_ = free_ == nullptr;
    left_ = failed_ ? 0 : request;
}

std::string_view decimal(Memory &memory, uint32_t number) {
    char digits[10];
    uint32_t at = sizeof digits;
    do {
        digits[--at] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    return (Draft(memory, sizeof digits) << std::string_view(digits + at, sizeof digits - at))
        .text();
}

// False without memory.
bool Workspace::growFound() {
    const uint32_t capacity = 2 * foundCapacity_;
    auto *const more = memory.array<Found>(capacity);
    if (more == nullptr) {
        return false;
    }
    std::memcpy(static_cast<void *>(more), found_, foundCount_ * sizeof(Found));
    found_ = more;
    foundCapacity_ = capacity;
    return true;
}

bool Workspace::growLines(uint32_t used, uint32_t count) {
    auto *const more = memory.array<Line>(count);
    if (more == nullptr) {
        return false;
    }
    std::memcpy(static_cast<void *>(more), lines, used * sizeof(Line));
    for (Found *found = found_; found != found_ + foundCount_; ++found) {
        found->line = more + (found->line - lines);
    }
    lines = more;
    return true;
}

Line *Workspace::newLine(std::string_view content, const Line &before) {
    auto *const line = memory.array<Line>(1);
    if (line != nullptr) {
        *line =
            lineOf(content, {before.original.data(), 0}, lineEnd, before.number, content.front());
        line->aside = true;
    }
    return line;
}

} // namespace sdpline::tidy
