// Lookup in a fixed table of names: a hash of the first and the last bytes of a text selects the
// only name that it can be, and one comparison decides.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/bytes.hpp"
#include "text/inline.hpp"

namespace sdpline {

// Four bytes as a number: the same number at compile time and at run time.
SDPLINE_INLINE constexpr uint32_t fourBytes(const char *bytes) {
    if (!std::is_constant_evaluated()) {
        uint32_t value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
    uint32_t value = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t shift = std::endian::native == std::endian::little ? 8 * i : 24 - 8 * i;
        value |= uint32_t{static_cast<uint8_t>(bytes[i])} << shift;
    }
    return value;
}

// A table of N names. Of equal names the last row is found.
template <size_t N>
class PerfectHash {
    static_assert(N < 255, "rows are kept in bytes");

public:
    constexpr explicit PerfectHash(const std::array<std::string_view, N> &names) {
        for (size_t row = 0; row < N; ++row) {
            names_[row] = names[row];
        }
        while (!fill()) {
            factor_ += 2;
        }
    }

    // Returns the last row of that name, compared with case; N for none.
    SDPLINE_INLINE size_t lastRow(std::string_view name) const {
        if (name.empty()) {
            return N;
        }
        const size_t row = slots_[slotOf(name)];
        if (names_[row].size() != name.size()) {
            return N;
        }
        return equalBytes(names_[row].data(), name.data(), name.size()) ? row : N;
    }

private:
    static constexpr size_t kSlots = 256;

    SDPLINE_INLINE constexpr size_t slotOf(std::string_view name) const {
        const char *const bytes = name.data();
        const size_t size = name.size();
        uint32_t key;
        if (size >= 4) [[likely]] {
            key = fourBytes(bytes) + 5 * fourBytes(bytes + size - 4);
        } else {
            key = uint32_t{static_cast<uint8_t>(bytes[0])} |
                  uint32_t{static_cast<uint8_t>(bytes[size / 2])} << 8 |
                  uint32_t{static_cast<uint8_t>(bytes[size - 1])} << 16;
        }
        return key * factor_ >> 24;
    }

    // Whether, with this factor, no two names share a slot.
    constexpr bool fill() {
        slots_.fill(static_cast<uint8_t>(N));
        for (size_t row = 0; row < N; ++row) {
            if (names_[row].empty()) {
                continue;
            }
            uint8_t &slot = slots_[slotOf(names_[row])];
            if (slot != N && names_[slot] != names_[row]) {
                return false;
            }
            slot = static_cast<uint8_t>(row);
        }
        return true;
    }

    std::array<std::string_view, N + 1> names_{}; // the last one is empty, for unused slots
    std::array<uint8_t, kSlots> slots_{};
    uint32_t factor_ = 0x9E3779B1; // an odd number with mixed bits
};

} // namespace sdpline
