// The attribute name that a line most likely begins with, guessed from its first bytes, before it
// is known where the name ends.
//
// Names of four to eight bytes, the colon of a value counted where it makes the fourth. The first
// four bytes pick the only name that may be there; one comparison of eight bytes decides. Of names
// that begin alike the first is guessed, and so are none of the longer ones: attributeType() knows
// them all.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "tables/attributes.hpp"
#include "text/perfecthash.hpp"

namespace sdpline {

struct UsualName {
    uint64_t bytes; // of the name, as they lie in memory, and zeroes
    uint64_t mask;  // of those bytes
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

    // The name at the start of a text of at least eight bytes, null where it is no usual one. What
    // follows the name is for the caller to look at.
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

    // Whether no two of the names that begin otherwise share a slot under the factor.
    constexpr bool fill() {
        // Of a slot without a name: no text has its bytes.
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
    uint32_t factor_ = 0x9E3779B1; // odd, of mixed bits
};

inline constexpr UsualNames kUsualNames;

} // namespace sdpline
