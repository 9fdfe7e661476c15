/*
 * memory.hpp: how editors change a body: replacing records, pointers inside packed records, lists
 * of pointers.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_MEMORY_HPP
#define SDPLINE_CPP_DETAIL_MEMORY_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "sdpline/cpp/detail/copier.hpp"
#include "sdpline/cpp/detail/fit.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/result.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* ---- Replacing records ----------------------------------------------------------------------- */

/* Replaces the target by a deep copy of the source, which may refer to the target. */
template <class Record>
Status replace(Memory memory, const Record &source, Record &target) {
    Record fresh;
    const bool copied = memory.copy(source, fresh);
    SdpClearLine(memory.control(), kLineOf<Record>, copied ? &target : &fresh);
    if (!copied) {
        return noMemory();
    }
    target = fresh;
    return {};
}

/* ---- Pointers inside packed records ---------------------------------------------------------- */

/* A pointer that may be unaligned, and so is read and written with memcpy. */
template <class Record>
class Slot {
public:
    Slot() = default;
    template <class Owner>
    Slot(Owner *owner, std::size_t offset) : at_(reinterpret_cast<std::byte *>(owner) + offset) {}

    Record *get() const {
        Record *record = nullptr;
        std::memcpy(&record, at_, sizeof record);
        return record;
    }

    void set(Record *record) const { std::memcpy(at_, &record, sizeof record); }

private:
    std::byte *at_ = nullptr;
};

/* ---- Optional lines: a pointer that is null if there is no such line ------------------------- */

template <class Record>
Status setLine(Memory memory, Slot<Record> slot, const Record &source) {
    Record *const made = memory.clone(source);
    if (made == nullptr) {
        return noMemory();
    }
    memory.free(slot.get());
    slot.set(made);
    return {};
}

template <class Record>
void removeLine(Memory memory, Slot<Record> slot) {
    memory.free(slot.get());
    slot.set(nullptr);
}

/* ---- Lists ----------------------------------------------------------------------------------- */

/*
 * Inserts new items before the item `at`, all of them or none. make(copier, slots) writes at most
 * `most` of them and returns their number; after a failure of the copier they are freed.
 *
 * An array has exactly one slot for each item: a new array is filled, and then the old one is
 * freed.
 */
template <class List, class Make>
Status insertItems(Memory memory, List &list, std::size_t at, std::size_t most, Make make) {
    using Fields = ListOf<List>;
    using Item = typename Fields::Item;
    Item **const old = Fields::items(list);
    const std::size_t count = old != nullptr ? Fields::count(list) : 0;
    Copier copier(memory);
    Item **const longer = copier.array<Item *>(count + most);
    if (longer == nullptr) {
        return copier.error();
    }
    const std::size_t made = make(copier, longer + at);
    if (!copier.ok()) {
        for (std::size_t i = 0; i < made; ++i) {
            memory.free(longer[at + i]);
        }
        memory.release(longer);
        return copier.error();
    }
    if (count + made == 0) {
        memory.release(longer);
        return {};
    }
    for (std::size_t i = 0; i < at; ++i) {
        longer[i] = old[i];
    }
    for (std::size_t i = at; i < count; ++i) {
        longer[i + made] = old[i];
    }
    memory.release(old);
    Fields::set(list, longer, static_cast<std::uint32_t>(count + made));
    return {};
}

/* Makes one item, a copy of the source. */
template <class Item>
class CloneOf {
public:
    explicit CloneOf(const Item &source) : source_(source) {}
    std::size_t operator()(Copier &copier, Item **slots) const {
        slots[0] = copier.clone(source_);
        return 1;
    }

private:
    const Item &source_;
};

/* Removes the items for which `unwanted` is true; returns their number. It is called for all items
 * before the first one is freed, since it may refer to one of them. Never fails. */
template <class List, class Unwanted>
std::size_t eraseIf(Memory memory, List &list, Unwanted unwanted) {
    using Fields = ListOf<List>;
    auto **const items = Fields::items(list);
    const std::size_t count = items != nullptr ? Fields::count(list) : 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!unwanted(items[i])) {
            std::swap(items[kept++], items[i]);
        }
    }
    for (std::size_t i = kept; i < count; ++i) {
        memory.free(items[i]);
    }
    if (kept == 0) {
        memory.release(items);
    }
    Fields::set(list, kept != 0 ? items : nullptr, static_cast<std::uint32_t>(kept));
    return count - kept;
}

/* The list record of a slot, which is made when the first item is inserted. It is never freed
 * again, even if the list becomes empty, because ranges refer to it. */
template <class List>
class ListHome {
public:
    ListHome() = default;
    ListHome(Memory memory, Slot<List> slot) : memory_(memory), slot_(slot) {}

    Memory memory() const { return memory_; }
    List *get() const { return slot_.get(); }

    template <class Make>
    Status insertItems(std::size_t at, std::size_t most, Make make) const {
        List *const present = slot_.get();
        List *const list = present != nullptr ? present : memory_.allocate<List>();
        if (list == nullptr) {
            return noMemory();
        }
        Status status = internal::insertItems(memory_, *list, at, most, make);
        if (status) {
            slot_.set(list);
        } else if (present == nullptr) {
            memory_.release(list);
        }
        return status;
    }

    template <class Unwanted>
    std::size_t eraseIf(Unwanted unwanted) const {
        List *const list = slot_.get();
        return list != nullptr ? internal::eraseIf(memory_, *list, unwanted) : 0;
    }

private:
    Memory memory_;
    Slot<List> slot_;
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
