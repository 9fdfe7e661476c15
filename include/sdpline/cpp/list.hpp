/*
 * list.hpp: the lists of the records as ranges.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_LIST_HPP
#define SDPLINE_CPP_LIST_HPP

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span> /* declares enable_view and enable_borrowed_range without the rest of <ranges> */
#include <string_view>
#include <type_traits>
#include <utility>

#include "sdpline/cpp/result.hpp"
#include "sdpline/sdprecords.h"

namespace sdpline {
inline namespace v1 {

namespace internal {

/* The base of ranges that own nothing: they are views and borrowed ranges. */
struct RangeOfBody {};

template <class Range>
concept OwnsNothing = std::is_base_of_v<RangeOfBody, Range>;

/* The text of a record; empty for a null pointer. */
inline std::string_view viewOf(const SipString &text) {
    return text.pcData != nullptr ? std::string_view(text.pcData, text.ulLen) : std::string_view();
}

inline std::string_view viewOf(const SipString *text) {
    return text != nullptr ? viewOf(*text) : std::string_view();
}

inline std::optional<std::string_view> optionalViewOf(const SipString *text) {
    return text != nullptr ? std::optional(viewOf(*text)) : std::nullopt;
}

/* The two members of each list record. They are read and written by value, since the pointer may be
 * unaligned, and a reference could not be bound to it. */
template <class List>
struct ListOf;

template <>
struct ListOf<SDPStringList> {
    using Item = SipString;
    static Item **items(const SDPStringList &list) { return list.ppstStrings; }
    static std::uint32_t count(const SDPStringList &list) { return list.ulNoOfStrings; }
    static void set(SDPStringList &list, Item **items, std::uint32_t count) {
        list.ulNoOfStrings = count;
        list.ppstStrings = items;
    }
};

template <>
struct ListOf<SDPAttrList> {
    using Item = SDPAttr;
    static Item **items(const SDPAttrList &list) { return list.ppstAttrs; }
    static std::uint32_t count(const SDPAttrList &list) { return list.ulNoOfAttrs; }
    static void set(SDPAttrList &list, Item **items, std::uint32_t count) {
        list.ulNoOfAttrs = count;
        list.ppstAttrs = items;
    }
};

template <>
struct ListOf<SDPTimeSet> {
    using Item = SDPTimeField;
    static Item **items(const SDPTimeSet &list) { return list.ppstTimeFields; }
    static std::uint32_t count(const SDPTimeSet &list) { return list.ulNoOfTimeFields; }
    static void set(SDPTimeSet &list, Item **items, std::uint32_t count) {
        list.ulNoOfTimeFields = count;
        list.ppstTimeFields = items;
    }
};

template <>
struct ListOf<SDPRepeatFieldSet> {
    using Item = SDPRepeatField;
    static Item **items(const SDPRepeatFieldSet &list) { return list.ppstRepeatFields; }
    static std::uint32_t count(const SDPRepeatFieldSet &list) { return list.ulNoOfRepeatFields; }
    static void set(SDPRepeatFieldSet &list, Item **items, std::uint32_t count) {
        list.ulNoOfRepeatFields = count;
        list.ppstRepeatFields = items;
    }
};

template <>
struct ListOf<SDPRepeatField> {
    using Item = SDPTimeUnit;
    static Item **items(const SDPRepeatField &list) { return list.ppstTimeUnits; }
    static std::uint32_t count(const SDPRepeatField &list) { return list.ulNoOfTimeUnits; }
    static void set(SDPRepeatField &list, Item **items, std::uint32_t count) {
        list.ulNoOfTimeUnits = count;
        list.ppstTimeUnits = items;
    }
};

template <>
struct ListOf<SDPMediaSet> {
    using Item = SDPMediaDesc;
    static Item **items(const SDPMediaSet &list) { return list.ppstMediaDescs; }
    static std::uint32_t count(const SDPMediaSet &list) { return list.ulNoOfMediaDescs; }
    static void set(SDPMediaSet &list, Item **items, std::uint32_t count) {
        list.ulNoOfMediaDescs = count;
        list.ppstMediaDescs = items;
    }
};

/* The result of an iterator's operator->, which holds the item. */
template <class Value>
struct Arrow {
    Value value;
    const Value *operator->() const { return &value; }
};

} // namespace internal

/*
 * A list of a body as a range with random access. Its elements are small values (a text, a few
 * pointers) that Make makes from the records.
 *
 * A range always shows the present state of the list; an absent list is empty. Iterators refer to
 * the array: as with std::vector, adding or removing an item invalidates them. They stay valid when
 * the range is destroyed.
 */
template <class List, class Make>
class ListView : public internal::RangeOfBody {
    using Fields = internal::ListOf<List>;
    using Item = typename Fields::Item;

public:
    using value_type = decltype(std::declval<const Make &>()(std::declval<Item *>()));
    using size_type = std::size_t;

    class iterator {
    public:
        using iterator_concept = std::random_access_iterator_tag;
        using iterator_category = std::input_iterator_tag; /* its reference is a value */
        using value_type = typename ListView::value_type;
        using difference_type = std::ptrdiff_t;
        using reference = value_type;
        using pointer = internal::Arrow<value_type>;

        iterator() = default;
        iterator(Item *const *at, Make make) : at_(at), make_(make) {}

        reference operator*() const { return make_(*at_); }
        pointer operator->() const { return {make_(*at_)}; }
        reference operator[](difference_type n) const { return make_(at_[n]); }

        iterator &operator++() { return *this += 1; }
        iterator &operator--() { return *this -= 1; }
        iterator operator++(int) { return iterator(at_++, make_); }
        iterator operator--(int) { return iterator(at_--, make_); }
        iterator &operator+=(difference_type n) {
            at_ += n;
            return *this;
        }
        iterator &operator-=(difference_type n) {
            at_ -= n;
            return *this;
        }

        friend iterator operator+(iterator it, difference_type n) { return it += n; }
        friend iterator operator+(difference_type n, iterator it) { return it += n; }
        friend iterator operator-(iterator it, difference_type n) { return it -= n; }
        friend difference_type operator-(const iterator &one, const iterator &two) {
            return one.at_ - two.at_;
        }
        friend bool operator==(const iterator &one, const iterator &two) {
            return one.at_ == two.at_;
        }
        friend std::strong_ordering operator<=>(const iterator &one, const iterator &two) {
            return one.at_ <=> two.at_;
        }

    private:
        Item *const *at_ = nullptr;
        Make make_{};
    };
    using const_iterator = iterator;

    ListView() = default;
    explicit ListView(const List *list, Make make = {}) : list_(list), make_(make) {}

    iterator begin() const { return iterator(items(), make_); }
    iterator end() const { return iterator(items() + size(), make_); }
    std::size_t size() const { return items() != nullptr ? Fields::count(*list_) : 0; }
    bool empty() const { return size() == 0; }

    /* An index that is not below size() ends the program. */
    value_type operator[](std::size_t index) const {
        internal::insist(index < size());
        return make_(items()[index]);
    }
    value_type front() const { return (*this)[0]; }
    value_type back() const { return (*this)[size() - 1]; }

    /* The record of the list; null if the body has none. */
    const List *record() const { return list_; }

protected:
    void lookAt(const List *list) { list_ = list; }

private:
    Item *const *items() const { return list_ != nullptr ? Fields::items(*list_) : nullptr; }

    const List *list_ = nullptr;
    Make make_{};
};

namespace internal {

struct MakeText {
    std::string_view operator()(const SipString *text) const { return viewOf(text); }
};

} // namespace internal

/* Texts: the e=, p= or b= lines. */
using Texts = ListView<SDPStringList, internal::MakeText>;

} // namespace v1
} // namespace sdpline

template <sdpline::internal::OwnsNothing Range>
inline constexpr bool std::ranges::enable_view<Range> = true;
template <sdpline::internal::OwnsNothing Range>
inline constexpr bool std::ranges::enable_borrowed_range<Range> = true;

#endif
