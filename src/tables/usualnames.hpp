// A fast path for attribute names: finds a name by the first bytes of a line, before the end of the
// name is known.
//
// The table has the names of four to eight bytes, and those of three bytes with the colon that
// follows them. The first four bytes select the only possible name, and one comparison of eight
// bytes decides. Of names with the same first four bytes only the first is in the table. All other
// names are found by attributeType().
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "tables/attributes.hpp"
#include "text/perfecthash.hpp"

namespace sdpline {

struct UsualName {
    uint64_t bytes; // the bytes of the name in memory order, then zeros
    uint64_t mask;  // all bits of those bytes
    uint32_t size;
    uint32_t type; // 0: no name
};

class UsualNames {
public:
    constexpr UsualNames() {
        while (!fill()) {
            factor_ += 2;
        }
    }

    // Returns the name that a text of at least eight bytes begins with, or null. The caller must
    // test whether the name ends there.
    SDPLINE_INLINE const UsualName *find(const uint8_t *text) const {
        const auto *const bytes = reinterpret_cast<const char *>(text);
        const UsualName &name = names_[slotOf(bytes)];
        uint64_t first;
        std::memcpy(&first, bytes, sizeof first);
        return (first & name.mask) == name.bytes ? &name : nullptr;
    }

private:
    static constexpr uint32_t kSlotBits = 7;
    static constexpr uint32_t kHead = 4;
    static constexpr uint32_t kWord = 8;

    SDPLINE_INLINE constexpr size_t slotOf(const char *bytes) const {
        return fourBytes(bytes) * factor_ >> (32 - kSlotBits);
    }

    static constexpr uint64_t eightBytes(const std::array<char, kWord> &bytes) {
        return std::bit_cast<uint64_t>(bytes);
    }

    static constexpr UsualName make(const AttributeRow &row) {
        std::array<char, kWord> bytes{};
        std::array<char, kWord> mask{};
        const std::string_view name = row.bareName();
        for (size_t i = 0; i < name.size(); ++i) {
            bytes[i] = name[i];
            mask[i] = '\xFF';
        }
        return {eightBytes(bytes), eightBytes(mask), static_cast<uint32_t>(name.size()), row.type};
    }

    // Whether, with this factor, no two names with different first four bytes share a slot.
    constexpr bool fill() {
        // A slot without a name: no text matches these bytes, since the mask is 0.
        names_.fill({1, 0, 0, 0});
        std::array<uint32_t, size_t{1} << kSlotBits> heads{};
        for (const AttributeRow &row : kAttributes) {
            if (row.name.size() < kHead || row.bareName().size() > kWord) {
                continue;
            }
            const uint32_t head = fourBytes(row.name.data());
            const size_t slot = slotOf(row.name.data());
            if (names_[slot].type == 0) {
                names_[slot] = make(row);
                heads[slot] = head;
            } else if (heads[slot] != head) {
                return false;
            }
        }
        return true;
    }

    std::array<UsualName, size_t{1} << kSlotBits> names_{};
    uint32_t factor_ = 0x9E3779B1; // an odd number with mixed bits
};

inline constexpr UsualNames kUsualNames;

} // namespace sdpline
