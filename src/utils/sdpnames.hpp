// Lookup in a fixed table of names, by length first: few names share a length, so that most
// lookups compare one or two.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace sdpline {

// The rows of a table of N names, those of one length together and in rising order.
template <size_t N>
class NamesByLength {
    static_assert(N < 256, "rows are kept in bytes");

public:
    static constexpr size_t kMaxLength = 31;

    constexpr explicit NamesByLength(const std::array<std::string_view, N> &names) : names_(names) {
        uint8_t at = 0;
        for (size_t length = 0; length <= kMaxLength; ++length) {
            first_[length] = at;
            for (size_t row = 0; row < N; ++row) {
                if (names[row].size() == length) {
                    rows_[at++] = static_cast<uint8_t>(row);
                }
            }
        }
        first_[kMaxLength + 1] = at;
    }

    // The last row of that name, case and all; N when there is none.
    size_t lastRow(std::string_view name) const {
        if (name.size() > kMaxLength || name.empty()) {
            return N;
        }
        for (size_t at = first_[name.size() + 1]; at > first_[name.size()]; --at) {
            const std::string_view candidate = names_[rows_[at - 1]];
            if (candidate.back() == name.back() && candidate.front() == name.front() &&
                std::memcmp(candidate.data(), name.data(), name.size()) == 0) {
                return rows_[at - 1];
            }
        }
        return N;
    }

    // Whether every name is short enough to be found.
    constexpr bool holdsAll() const { return first_[kMaxLength + 1] == N; }

private:
    std::array<std::string_view, N> names_;
    std::array<uint8_t, kMaxLength + 2> first_{};
    std::array<uint8_t, N> rows_{};
};

} // namespace sdpline
