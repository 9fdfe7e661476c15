// The table of reasons.
#include "negotiate/reasons.hpp"

#include <cstddef>
#include <iterator>

namespace sdpline::negotiate {

namespace {

constexpr SdpNegotiateReason kReasons[] = {
#define REASON(number, name, kind, rfc, section, sentence)                                         \
    {number, SDP_NEGOTIATE_##kind, #name, rfc, section, sentence},
#include "negotiate/reasons.def"
#undef REASON
};

// The row of each number; 255 for none.
struct Index {
    uint8_t row[SDP_NEGOTIATE_REASONS];
};

constexpr Index indexed() {
    Index index{};
    for (uint8_t &row : index.row) {
        row = 255;
    }
    for (size_t i = 0; i < std::size(kReasons); ++i) {
        index.row[kReasons[i].ulNumber] = static_cast<uint8_t>(i);
    }
    return index;
}

constexpr std::string_view kSentences[] = {
#define REASON(number, name, kind, rfc, section, sentence) sentence,
#include "negotiate/reasons.def"
#undef REASON
};

constexpr bool numbersRise() {
    for (size_t i = 1; i < std::size(kReasons); ++i) {
        if (kReasons[i].ulNumber <= kReasons[i - 1].ulNumber) {
            return false;
        }
    }
    return std::size(kReasons) < 255 &&
           kReasons[std::size(kReasons) - 1].ulNumber < SDP_NEGOTIATE_REASONS;
}
static_assert(numbersRise());

constexpr Index kIndex = indexed();

} // namespace

std::string_view sentenceOf(Reason reason) {
    return kSentences[kIndex.row[resultOf(reason)]];
}

} // namespace sdpline::negotiate

extern "C" const SdpNegotiateReason *SdpNegotiateGetReason(uint32_t ulNumber) {
    using namespace sdpline::negotiate;
    if (ulNumber >= SDP_NEGOTIATE_REASONS || kIndex.row[ulNumber] == 255) {
        return nullptr;
    }
    return &kReasons[kIndex.row[ulNumber]];
}
