/*
 * memory.hpp: how editors write into a body: lines cloned by the C operations, lists that hold
 * exactly as many slots as items, pointers inside packed records.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_MEMORY_HPP
#define SDPLINE_CPP_DETAIL_MEMORY_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/result.hpp"
#include "sdpline/sdpcopy.h"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* A text for the C operations, which only read it. */
inline SipString lent(std::string_view text) {
    return {static_cast<std::uint32_t>(text.size()), const_cast<char *>(text.data())};
}

/* The block of a body. */
class Memory {
public:
    Memory() = default;
    explicit Memory(SDPMemCp *control) : control_(control) {}

    SDPMemCp *control() const { return control_; }

    /* All zero, also from a memory service that does not clear what it gives; null when the block
     * is exhausted. */
    template <class Record>
    Record *allocate(std::size_t count = 1) const {
        if (count > std::numeric_limits<std::uint32_t>::max() / sizeof(Record)) {
            return nullptr;
        }
        const std::size_t size = count * sizeof(Record);
        void *const memory = control_->pfnAlloc(control_, static_cast<std::uint32_t>(size));
        return memory != nullptr ? static_cast<Record *>(std::memset(memory, 0, size)) : nullptr;
    }

    void release(void *memory) const { control_->pfnFree(memory); }

    template <class Record>
    Result<Record *> clone(std::uint32_t lineType, const Record &source) const {
        void *made = nullptr;
        if (const SDPResult code = SdpCloneLine(control_, lineType, &source, &made)) {
            return libraryError(code);
        }
        return static_cast<Record *>(made);
    }

    /* Puts a deep copy in place of what the target holds, which may be what the source refers to.
     */
    template <class Record>
    Status replace(std::uint32_t lineType, const Record &source, Record &target) const {
        Record fresh = {};
        if (const SDPResult code = SdpCopyLine(control_, lineType, &source, &fresh)) {
            SdpClearLine(control_, lineType, &fresh);
            return libraryError(code);
        }
        SdpClearLine(control_, lineType, &target);
        target = fresh;
        return {};
    }

    void free(std::uint32_t lineType, void *record) const {
        SdpFreeLine(control_, lineType, &record);
    }

private:
    SDPMemCp *control_ = nullptr;
};

/* Takes items of a list back. */
struct FreeLine {
    Memory memory;
    std::uint32_t lineType;
    void operator()(void *record) const { memory.free(lineType, record); }
};

/* A pointer inside a packed record. It lies at a multiple of 4, so it is copied in and out. */
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

/* ---- Optional lines: a pointer that is null when there is no such line ----------------------- */

template <class Record>
Status setLine(Memory memory, Slot<Record> slot, std::uint32_t lineType, const Record &source) {
    auto made = memory.clone(lineType, source);
    if (!made) {
        return made.error();
    }
    memory.free(lineType, slot.get());
    slot.set(*made);
    return {};
}

template <class Record>
void removeLine(Memory memory, Slot<Record> slot, std::uint32_t lineType) {
    memory.free(lineType, slot.get());
    slot.set(nullptr);
}

/* ---- Lists ----------------------------------------------------------------------------------- */

/*
 * Adds `added` items at the end, all of them or none. Arrays have exactly one slot for each item,
 * so that a new one is filled before the old one goes. make(n) makes the n-th item,
 * discard(item) takes one back.
 */
template <class List, class MakeItem, class Discard>
Status append(Memory memory, List &list, std::size_t added, MakeItem make, Discard discard) {
    using Fields = ListOf<List>;
    using Item = typename Fields::Item;
    Item **const old = Fields::items(list);
    const std::size_t count = old != nullptr ? Fields::count(list) : 0;
    Item **const longer = count + added <= std::numeric_limits<std::uint32_t>::max()
                              ? memory.allocate<Item *>(count + added)
                              : nullptr;
    if (longer == nullptr) {
        return noMemory();
    }
    for (std::size_t n = 0; n < added; ++n) {
        Result<Item *> made = make(n);
        if (!made) {
            while (n-- > 0) {
                discard(longer[count + n]);
            }
            memory.release(longer);
            return made.error();
        }
        longer[count + n] = *made;
    }
    std::copy_n(old, count, longer);
    memory.release(old);
    Fields::set(list, longer, static_cast<std::uint32_t>(count + added));
    return {};
}

/* Removes the items that `unwanted` picks; answers how many. Every item is judged before the first
 * one goes: what is compared with may lie in one of them. Never fails: where there is no memory for
 * an array of the exact size, the present one stays. */
template <class List, class Unwanted, class Discard>
std::size_t eraseIf(Memory memory, List &list, Unwanted unwanted, Discard discard) {
    using Fields = ListOf<List>;
    using Item = typename Fields::Item;
    Item **const items = Fields::items(list);
    const std::size_t count = items != nullptr ? Fields::count(list) : 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!unwanted(items[i])) {
            std::swap(items[kept++], items[i]);
        }
    }
    if (kept == count) {
        return 0;
    }
    std::for_each(items + kept, items + count, discard);
    Item **const exact = kept != 0 ? memory.allocate<Item *>(kept) : nullptr;
    if (exact != nullptr) {
        std::copy_n(items, kept, exact);
    }
    const bool fits = exact != nullptr || kept == 0;
    if (fits) {
        memory.release(items);
    }
    Fields::set(list, fits ? exact : items, static_cast<std::uint32_t>(kept));
    return count - kept;
}

/* The list record behind a slot, made when there is none. It stays once it is there, empty or not:
 * ranges over the list keep looking at it. */
template <class List>
class ListHome {
public:
    ListHome() = default;
    ListHome(Memory memory, Slot<List> slot) : memory_(memory), slot_(slot) {}

    Memory memory() const { return memory_; }
    List *get() const { return slot_.get(); }

    template <class MakeItem, class Discard>
    Status append(std::size_t added, MakeItem make, Discard discard) const {
        List *const present = slot_.get();
        List *const list = present != nullptr ? present : memory_.allocate<List>();
        if (list == nullptr) {
            return noMemory();
        }
        Status status = internal::append(memory_, *list, added, make, discard);
        if (status) {
            slot_.set(list);
        } else if (present == nullptr) {
            memory_.release(list);
        }
        return status;
    }

    template <class Unwanted, class Discard>
    std::size_t eraseIf(Unwanted unwanted, Discard discard) const {
        List *const list = slot_.get();
        return list != nullptr ? internal::eraseIf(memory_, *list, unwanted, discard) : 0;
    }

private:
    Memory memory_;
    Slot<List> slot_;
};

/* ---- What a text may hold -------------------------------------------------------------------- */

/* The bytes that no value may hold: they would end the line, or be dropped on the way back. */
inline constexpr std::string_view kLineBreaks("\r\n\0", 3);
inline constexpr std::string_view kWordEnds("\r\n\0 \t", 5);
inline constexpr std::string_view kTokenEnds("\r\n\0 \t:;@,()<>", 13);

inline std::optional<Error> refusal(std::string_view text, std::string_view unfit,
                                    std::string_view sentence,
                                    std::size_t longest = SDP_MAX_VALUE) {
    if (text.empty()) {
        return refusedArgument("a text is empty");
    }
    if (text.size() > longest) {
        return refusedArgument("a text is longer than a decoder of this library reads");
    }
    if (text.find_first_of(unfit) != std::string_view::npos) {
        return refusedArgument(sentence);
    }
    return std::nullopt;
}

/* A value that takes the rest of its line. */
inline std::optional<Error> refusedText(std::string_view text,
                                        std::size_t longest = SDP_MAX_VALUE) {
    return refusal(text, kLineBreaks, "a text holds a line end or a NUL", longest);
}

/* A value between two blanks. */
inline std::optional<Error> refusedWord(std::string_view text) {
    return refusal(text, kWordEnds, "a word holds a blank, a line end or a NUL");
}

/* A keyword or a name. */
inline std::optional<Error> refusedToken(std::string_view text) {
    return refusal(text, kTokenEnds, "a word holds a blank or one of :;@,()<>");
}

inline std::optional<Error> refusedDigits(std::string_view text) {
    if (const auto error = refusedWord(text)) {
        return error;
    }
    if (text.find_first_not_of("0123456789") != std::string_view::npos) {
        return refusedArgument("a number holds something else than digits");
    }
    return std::nullopt;
}

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
