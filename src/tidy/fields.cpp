#include "tidy/fields.hpp"

#include "tidy/values.hpp"

namespace sdpline::tidy {

Fields::Fields(std::string_view value) : begin_(value.data()) {
    const char *at = value.data();
    const char *const end = at + value.size();
    while (at != end) {
        const char *const space = at;
        at = afterBlanks(at, end);
        if (at == end) {
            trailing_ = space;
            return;
        }
        if (count_ == 0) {
            leading_ = at != space ? space : nullptr;
        } else if (at - space > 1 || *space == '\t') {
            isOneCut_ = isOneCut_ && run_ == nullptr && leading_ == nullptr && *space == ' ';
            run_ = run_ == nullptr ? space : run_;
        }
        const char *const field = at;
        at = findBlank(at, end);
        if (count_ == kMost) {
            fits_ = false;
            return;
        }
        items_[count_++] = {field, static_cast<size_t>(at - field), field};
    }
}

void Fields::insert(uint32_t index, std::string_view text) {
    if (count_ == kMost) {
        return;
    }
    for (uint32_t i = count_++; i > index; --i) {
        items_[i] = items_[i - 1];
    }
    Item &item = items_[index];
    const bool isLast = index + 1 == count_;
    const char *const place = !isLast      ? item.place
                              : index == 0 ? nullptr
                                           : items_[index - 1].place + items_[index - 1].size;
    item = {text.data(), text.size(), place};
    changed_ = true;
}

void Fields::drop(uint32_t howMany) {
    count_ -= howMany;
    for (uint32_t i = 0; i < count_; ++i) {
        items_[i] = items_[i + howMany];
    }
    changed_ = true;
}

void Fields::write(Workspace &work, Line &line, std::string_view key) {
    if (run_ != nullptr) {
        work.report(Rule::SpaceRun, line, run_);
    }
    if (trailing_ != nullptr) {
        work.report(Rule::TrailingSpace, line, trailing_);
    }
    if (!changed_ && isOneCut_ && begin_ == line.text.data() + key.size()) {
        return cut(line);
    }
    size_t size = key.size();
    for (uint32_t i = 0; i < count_; ++i) {
        size += items_[i].size + 1;
    }
    Draft draft(work.memory, size);
    draft << key;
    for (uint32_t i = 0; i < count_; ++i) {
        draft << (i == 0 ? std::string_view() : blankAfter(i - 1)) << textOf(items_[i]);
    }
    line.text = draft.text();
}

// Repairs a line that is still the given one: shortens it, or removes white space at one place.
void Fields::cut(Line &line) const {
    if (trailing_ != nullptr) {
        line.text = line.text.substr(0, static_cast<size_t>(trailing_ - line.text.data()));
    }
    if (const char *const from = leading_ != nullptr ? leading_ : run_; from != nullptr) {
        const char *const to = afterBlanks(from, line.text.data() + line.text.size());
        cutOut(line, leading_ != nullptr ? from : from + 1, to);
    }
}

// The blank in the given text if there is exactly one, so that adjacent parts are copied together.
std::string_view Fields::blankAfter(uint32_t index) const {
    const char *const end = items_[index].begin + items_[index].size;
    const bool isThere = end + 1 == items_[index + 1].begin && *end == ' ';
    return isThere ? std::string_view(end, 1) : " ";
}

} // namespace sdpline::tidy
