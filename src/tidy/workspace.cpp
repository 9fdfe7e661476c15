#include "tidy/workspace.hpp"

namespace sdpline::tidy {

namespace {

constexpr uint32_t kFirstRows = 16;

} // namespace

void Workspace::report(Rule rule, const Line &line, const char *at) {
    if (foundCount_ == foundRoom_) {
        const uint32_t room = foundRoom_ == 0 ? kFirstRows : 2 * foundRoom_;
        auto *const more = memory.array<Found>(room);
        if (more == nullptr) {
            return;
        }
        if (found_ != nullptr) {
            std::memcpy(static_cast<void *>(more), found_, foundCount_ * sizeof(Found));
            memory.give(found_);
        }
        found_ = more;
        foundRoom_ = room;
    }
    const auto offset = static_cast<uint32_t>(at - line.original.data());
    found_[foundCount_++] = {rule, &line, line.original.empty() ? 0 : offset};
}

Line *Workspace::newLine(std::string_view content, const Line &before) {
    auto *const line = memory.array<Line>(1);
    if (line != nullptr) {
        *line = {content,       {}, lineEnd,         nullptr, nullptr,
                 before.number, 0,  content.front(), 0,       true};
    }
    return line;
}

} // namespace sdpline::tidy
