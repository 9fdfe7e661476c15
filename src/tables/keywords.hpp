// The keyword tables, which the C++ API shares, and their inlined lookup.
#pragma once

#include <cstring>
#include <utility>

#include "sdpline/cpp/detail/keywords.hpp"
#include "text/inline.hpp"

namespace sdpline {

using namespace tables;

// findByText() for parsers: the comparison with each row's text, whose size is a constant, is
// inlined.
template <const auto &Table>
SDPLINE_INLINE const KeywordRow *findWord(std::string_view word) {
    const KeywordRow *found = nullptr;
    const auto is = [&]<size_t Row>(std::integral_constant<size_t, Row>) SDPLINE_INLINE_LAMBDA {
        constexpr std::string_view text = Table[Row].text;
        if (word.size() != text.size() || std::memcmp(word.data(), text.data(), text.size()) != 0) {
            return false;
        }
        found = &Table[Row];
        return true;
    };
    [&]<size_t... Row>(std::index_sequence<Row...>) SDPLINE_INLINE_LAMBDA {
        static_cast<void>((is(std::integral_constant<size_t, Row>()) || ...));
    }
    (std::make_index_sequence<Table.size()>());
    return found;
}

// findByCode() for encoders: calls `use` with the row's text, which is a constant there. Returns
// false for a code that is not in the table.
template <const auto &Table, class Use>
SDPLINE_INLINE bool withWord(uint32_t code, Use use) {
    const auto is = [&]<size_t Row>(std::integral_constant<size_t, Row>) SDPLINE_INLINE_LAMBDA {
        if (code != Table[Row].code) {
            return false;
        }
        use(Table[Row].text);
        return true;
    };
    return [&]<size_t... Row>(std::index_sequence<Row...>) SDPLINE_INLINE_LAMBDA {
        return (is(std::integral_constant<size_t, Row>()) || ...);
    }
    (std::make_index_sequence<Table.size()>());
}

} // namespace sdpline
