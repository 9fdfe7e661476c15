// The order of lines (RFC 4566 section 5), and the check that the lines of a text are in it.
#pragma once

#include <array>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

inline constexpr uint8_t kRanks = 14; // the rank of a line that does not belong where it is

// The order of lines, and the rank of each letter.
struct Order {
    explicit constexpr Order(std::string_view letters) : keys(letters) {
        for (uint8_t &rank : ranks) {
            rank = kRanks;
        }
        for (size_t rank = 0; rank < keys.size(); ++rank) {
            ranks[keys[rank] - 'a'] = static_cast<uint8_t>(rank);
        }
    }

    constexpr uint8_t rankOf(char key) const {
        return key >= 'a' && key <= 'z' ? ranks[key - 'a'] : kRanks;
    }

    constexpr uint8_t last() const { return static_cast<uint8_t>(keys.size() - 1); }

    std::string_view keys;
    uint8_t ranks[26] = {};
};

// An r= line after a t= line gets the rank of t=, so that it stays with it.
inline constexpr Order kSessionOrder("vosiuepcbtrzka");
inline constexpr Order kMediaOrder("micbka");
static_assert(kSessionOrder.keys.back() == 'a' && kMediaOrder.keys.back() == 'a');
static_assert(kSessionOrder.keys.size() == kRanks && kMediaOrder.keys.size() <= kRanks);

// Lines that may occur once. The first of a kind is kept, but the last of c= lines.
inline constexpr uint32_t kSingle = lettersOf("osiuczk");

// For each type of line a set of the types that must not precede it: those that follow it in the
// order, and its own if it may occur once. For a line of an unknown type these are all types.
class Followers {
public:
    explicit constexpr Followers(const Order &order) {
        letters_.fill(~0u);
        for (size_t rank = 0; rank < order.keys.size(); ++rank) {
            const char key = order.keys[rank];
            const std::string_view after = order.keys.substr(rank + 1);
            letters_[static_cast<size_t>(key)] =
                lettersOf(after) | (lettersOf(order.keys.substr(rank, 1)) & kSingle);
        }
    }
    constexpr uint32_t of(char key) const { return letters_[static_cast<uint8_t>(key) & 0x7F]; }

private:
    std::array<uint32_t, 128> letters_;
};

inline constexpr Followers kAfterInSession(kSessionOrder);
inline constexpr Followers kAfterInMedia(kMediaOrder);

// Checks that the lines of a section, the session or a media description, are in their order and
// that none is missing.
class Sequence {
public:
    // Called for each line of the section as it will be written; of a media description for those
    // after the m= line. `key` is 0 for a line without.
    void add(char key) {
        tooLate_ |= followers_->of(key) & seen_;
        seen_ |= 1u << ((key - 'a') & 0x1F);
    }

    // Ends the section; a media description is next. Returns true if the lines certainly need no
    // arranging.
    bool end() {
        const bool isComplete =
            followers_ == &kAfterInMedia || has(lettersOf("vost")) || has(lettersOf("vosr"));
        const bool holds = isComplete && tooLate_ == 0;
        beginMedia();
        return holds;
    }

    void beginMedia() {
        followers_ = &kAfterInMedia;
        seen_ = kStart;
        tooLate_ = 0;
    }

private:
    static constexpr uint32_t kStart = 1u << 31; // always in seen_; the bit of a line without a key

    bool has(uint32_t letters) const { return (seen_ & letters) == letters; }

    const Followers *followers_ = &kAfterInSession;
    uint32_t seen_ = kStart; // letters
    uint32_t tooLate_ = 0;   // letters seen before others that precede them in the order
};

} // namespace sdpline::tidy
