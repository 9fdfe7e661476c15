// Pairing the offered formats with ours, and selecting those that the answer has.
#pragma once

#include <cstdint>

#include "negotiate/formats.hpp"
#include "negotiate/reasons.hpp"

namespace sdpline::negotiate {

constexpr uint8_t kNoPartner = 255;

// The formats of an offered and of a local m= line, and for each offered one the index of its
// partner in `ours`. The payload numbers of partners may differ.
struct Pairing {
    FormatList offered;
    FormatList ours;
    uint8_t partner[SDP_MAX_PAYLOADS];

    // ---- Set by select(): indexes into `offered`, in the order of the answer, and why the other
    // formats are left out.
    uint8_t chosen[SDP_MAX_PAYLOADS];
    uint32_t chosenCount = 0;
    Reason leftOut[SDP_MAX_PAYLOADS]; // of each offered format; None for a chosen one

    bool isChosen(uint32_t place) const { return leftOut[place] == Reason::None; }
    const Format &ourOf(uint32_t place) const { return ours.items[partner[place]]; }

    // The offered number of the format with our number; nullopt when it is not chosen.
    std::optional<uint32_t> offeredNumber(uint32_t ourNumber) const;
};

// Sets `partner` from the two lists.
void pair(Pairing &pairing, const SdpNegotiateOptions &options);

// Sets the rest. Returns Reason::None if at least one format is chosen.
Reason select(Pairing &pairing, const SdpNegotiateOptions &options);

// Writes our a=fmtp parameters of a chosen format as the answer has them: the payload numbers in
// them are the offer's, and an offered mode-set of AMR is added.
void writeParameters(const Pairing &pairing, uint32_t place, Text &text);

// Calls use(number) for each format that the parameters of RED ("98/99") or RTX ("apt=98") refer
// to. Returns false if they refer to none.
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
