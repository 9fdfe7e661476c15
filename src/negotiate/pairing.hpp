// Which offered format is which of ours, and which of the common ones are taken.
#pragma once

#include <cstdint>

#include "negotiate/formats.hpp"
#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

constexpr uint8_t kNoPartner = 255;

// The formats of an offered and of a local m= line, and the place in `ours` of each offered one's
// partner. Numbers of both are their own.
struct Pairing {
    FormatList offered;
    FormatList ours;
    uint8_t partner[SDP_MAX_PAYLOADS];

    // ---- What select() leaves: places in `offered`, in the order of the answer, or why none.
    uint8_t chosen[SDP_MAX_PAYLOADS];
    uint32_t chosenCount = 0;
    Reason leftOut[SDP_MAX_PAYLOADS]; // of each offered format; None for a chosen one

    bool isChosen(uint32_t place) const { return leftOut[place] == Reason::None; }
    const Format &ourOf(uint32_t place) const { return ours.items[partner[place]]; }

    // The offered number of one of our numbers, or nothing when it is not chosen.
    std::optional<uint32_t> offeredNumber(uint32_t ourNumber) const;
};

// Fills `partner` from the two lists.
void pair(Pairing &pairing, const SdpNegotiateOptions &options);

// Fills the rest. Reason::None when at least one format is chosen.
Reason select(Pairing &pairing, const SdpNegotiateOptions &options);

// Our a=fmtp parameters for a chosen format as they go into the answer: numbers inside them are the
// offer's, and the offered mode-set of AMR is returned.
void writeParameters(const Pairing &pairing, uint32_t place, Text &text);

// Calls use(number) for the formats that RED ("98/99") and RTX ("apt=98") parameters refer to.
// False when they refer to none.
template <class Use>
bool eachReference(const Format &format, Use use) {
    std::string_view list = format.parameters;
    if (format.role == Role::Rtx) {
        list = parameter(list, "apt").value_or("");
    }
    bool any = false;
    uint32_t number = 0;
    while (takeNumber(list, number)) {
        use(number);
        any = true;
        if (list.empty() || list[0] != '/') {
            break;
        }
        list.remove_prefix(1);
    }
    return any;
}

} // namespace sdpline::negotiate
