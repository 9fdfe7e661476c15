// The value of a line, cut at white space into fields whose texts can be replaced.
#pragma once

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

class Fields {
public:
    static constexpr uint32_t kMost = 24;

    // Lines with more fields are not repaired.
    explicit Fields(std::string_view value);

    bool fits() const { return fits_; }
    uint32_t count() const { return count_; }
    std::string_view operator[](uint32_t index) const {
        return index < count_ ? textOf(items_[index]) : std::string_view();
    }
    // The place of the field in the given line; an inserted field has the place of the next one.
    const char *place(uint32_t index) const { return items_[index].place; }

    void set(uint32_t index, std::string_view text) {
        items_[index].begin = text.data();
        items_[index].size = text.size();
        changed_ = true;
    }
    void insert(uint32_t index, std::string_view text);
    // Removes the first fields.
    void drop(uint32_t howMany);

    // White space at the start; null for none.
    const char *leading() const { return leading_; }

    // Whether the wanted rules cover all white space that must be repaired.
    bool repairable(const Workspace &work) const {
        return fits_ && (run_ == nullptr || work.wants(Rule::SpaceRun)) &&
               (trailing_ == nullptr || work.wants(Rule::TrailingSpace));
    }
    bool needsWriting() const { return changed_ || run_ != nullptr || trailing_ != nullptr; }

    // Reports the white space that is removed, and writes the line again: the key, and the fields
    // with one blank between each two.
    void write(Workspace &work, Line &line, std::string_view key);

private:
    void cut(Line &line) const;
    std::string_view blankAfter(uint32_t index) const;

    // Not initialised before it is counted.
    struct Item {
        const char *begin;
        size_t size;
        const char *place;
    };

    static std::string_view textOf(const Item &item) { return {item.begin, item.size}; }

    Item items_[kMost];
    uint32_t count_ = 0;
    bool fits_ = true;
    bool changed_ = false;
    bool isOneCut_ = true; // white space at one place at most, of which the first blank may stay
    const char *begin_;    // of the value
    const char *run_ = nullptr;
    const char *leading_ = nullptr;
    const char *trailing_ = nullptr;
};

} // namespace sdpline::tidy
