#include "tidy/fields.hpp"

namespace sdpline::tidy {

Fields::Fields(std::string_view value) {
    const char *at = value.data();
    const char *const end = at + value.size();
    while (at != end) {
        const char *const space = at;
        while (at != end && isBlank(*at)) {
            ++at;
        }
        if (at == end) {
            trailing_ = space;
            return;
        }
        if (at != space && count_ == 0) {
            leading_ = space;
        } else if (run_ == nullptr && (at - space > 1 || *space == '\t')) {
            run_ = at != space ? space : nullptr;
        }
        const char *const field = at;
        while (at != end && !isBlank(*at)) {
            ++at;
        }
        if (count_ == kMost) {
            fits_ = false;
            return;
        }
        items_[count_] = {field, static_cast<size_t>(at - field)};
        places_[count_++] = field;
    }
}

void Fields::insert(uint32_t index, std::string_view text) {
    if (count_ == kMost) {
        return;
    }
    for (uint32_t i = count_++; i > index; --i) {
        items_[i] = items_[i - 1];
        places_[i] = places_[i - 1];
    }
    items_[index] = text;
    if (index + 1 == count_) {
        places_[index] = index == 0 ? nullptr : places_[index - 1] + items_[index - 1].size();
    }
    changed_ = true;
}

void Fields::drop(uint32_t howMany) {
    count_ -= howMany;
    for (uint32_t i = 0; i < count_; ++i) {
        items_[i] = items_[i + howMany];
        places_[i] = places_[i + howMany];
    }
    changed_ = true;
}

void Fields::write(Workspace &work, Line &line, std::string_view key, std::string_view after) {
    if (run_ != nullptr) {
        work.report(Rule::SpaceRun, line, run_);
    }
    if (trailing_ != nullptr) {
        work.report(Rule::TrailingSpace, line, trailing_);
    }
    size_t size = key.size() + after.size();
    for (uint32_t i = 0; i < count_; ++i) {
        size += items_[i].size() + 1;
    }
    Draft draft(work.memory, size);
    draft << key;
    for (uint32_t i = 0; i < count_; ++i) {
        draft << (i == 0 ? "" : " ") << items_[i];
    }
    line.text = (draft << after).text();
}

} // namespace sdpline::tidy
