/*
 * compare.hpp: whether two bodies, or parts of them, have the same content.
 *
 * Part of sdpline.hpp, whose conventions apply.
 *
 * Numbers, addresses and keywords are compared by their meaning, not by their spelling: a short and
 * a full IPv6 address are equal, so are "1h" and "3600", and encoding names in any case. Other
 * texts are compared byte by byte. The a= lines of a list may be in any order, but each must occur
 * as often as in the other list. All other lines must be in the same order, and so must payload
 * numbers, whose order is a preference. An absent list is equal to an empty one.
 */
#ifndef SDPLINE_CPP_COMPARE_HPP
#define SDPLINE_CPP_COMPARE_HPP

#include <cstddef>

#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/media.hpp"

namespace sdpline {
inline namespace v1 {

inline bool sameContent(const Attribute &one, const Attribute &two) {
    return one.type() == two.type() && one.name() == two.name() &&
           internal::AnyValue::same(*one.record(), *two.record());
}

namespace internal {

inline std::size_t occurrences(const Attributes &lines, const Attribute &wanted) {
    std::size_t count = 0;
    for (const Attribute line : lines) {
        count += sameContent(line, wanted) ? 1 : 0;
    }
    return count;
}

/* Compares item by item, in order. */
template <class Range, class Same>
bool sameItems(const Range &one, const Range &two, Same same) {
    bool all = one.size() == two.size();
    for (std::size_t i = 0; all && i < one.size(); ++i) {
        all = same(one[i], two[i]);
    }
    return all;
}

} // namespace internal

inline bool sameContent(const Texts &one, const Texts &two) {
    return internal::sameItems(one, two, [](auto a, auto b) { return a == b; });
}

inline bool sameContent(const Attributes &one, const Attributes &two) {
    bool same = one.size() == two.size();
    for (std::size_t i = 0; same && i < one.size(); ++i) {
        same = sameContent(one[i], two[i]) ||
               internal::occurrences(one, one[i]) == internal::occurrences(two, one[i]);
    }
    return same;
}

inline bool sameContent(const Repeat &one, const Repeat &two) {
    return internal::sameItems(one, two, [](auto a, auto b) { return a == b; });
}

inline bool sameContent(const Time &one, const Time &two) {
    return one.start() == two.start() && one.stop() == two.stop() &&
           internal::sameItems(one.repeats(), two.repeats(),
                               [](auto a, auto b) { return sameContent(a, b); });
}

inline bool sameContent(const Media &one, const Media &two) {
    return one.line() == two.line() && one.info() == two.info() &&
           one.connection() == two.connection() &&
           sameContent(one.bandwidths(), two.bandwidths()) && one.key() == two.key() &&
           sameContent(one.attributes(), two.attributes());
}

} // namespace v1
} // namespace sdpline

#endif
