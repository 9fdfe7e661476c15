// Pairing the offered formats with ours, and selecting those of the answer.
#include "negotiate/pairing.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace sdpline::negotiate {

namespace {

bool isAssociated(const Format &format) {
    return format.role == Role::Red || format.role == Role::Rtx;
}

SdpNegotiateCodec codecOf(const Format &format) {
    return {format.number, lent(format.name), format.clock, format.channels,
            lent(format.parameters)};
}

bool same(const Format &offered, const Format &ours, const SdpNegotiateOptions &options) {
    if (!sameCodec(offered, ours)) {
        return false;
    }
    const bool equal = sameParameters(offered, ours);
    if (options.pfnSame == nullptr || offered.number == SDP_NEGOTIATE_NONE) {
        return equal;
    }
    const SdpNegotiateCodec one = codecOf(offered);
    const SdpNegotiateCodec two = codecOf(ours);
    return options.pfnSame(options.pContext, &one, &two, equal ? 1 : 0) != 0;
}

// Whether every format that the offered one refers to has a partner.
bool refersToPaired(const Pairing &pairing, const Format &offered) {
    bool all = true;
    eachReference(offered, [&](uint32_t number) {
        const auto place = pairing.offered.indexOf(number);
        all = all && place && pairing.partner[*place] != kNoPartner;
    });
    return all;
}

// Whether two formats refer to the same formats. RTX refers to one: both must refer to partners, or
// both to a format of another stream (RFC 4588 section 8.3). RED may refer to none.
bool sameReferences(const Pairing &pairing, const Format &offered, const Format &ours) {
    bool all = true;
    if (offered.role == Role::Rtx) {
        uint32_t ourTarget = SDP_NEGOTIATE_NONE;
        const bool some = eachReference(ours, [&](uint32_t number) { ourTarget = number; }) &&
                          eachReference(offered, [&](uint32_t number) {
                              const auto place = pairing.offered.indexOf(number);
                              all = place ? pairing.partner[*place] != kNoPartner &&
                                                pairing.ourOf(*place).number == ourTarget
                                          : !pairing.ours.indexOf(ourTarget);
                          });
        return some && all;
    }
    eachReference(ours, [&](uint32_t number) {
        const auto place = pairing.ours.indexOf(number);
        all = all && place &&
              std::find(pairing.partner, pairing.partner + pairing.offered.count, *place) !=
                  pairing.partner + pairing.offered.count;
    });
    return all && refersToPaired(pairing, offered);
}

// The index of our format that fits. One with the same number is preferred, so that two formats
// that differ only in declarative parameters keep their numbers.
template <class Fits>
uint8_t partnerOf(const Pairing &pairing, const Format &offered, Fits fits) {
    const auto sameNumber = pairing.ours.indexOf(offered.number);
    if (sameNumber && fits(pairing.ours.items[*sameNumber])) {
        return static_cast<uint8_t>(*sameNumber);
    }
    for (uint32_t i = 0; i < pairing.ours.count; ++i) {
        if (sameNumber != i && fits(pairing.ours.items[i])) {
            return static_cast<uint8_t>(i);
        }
    }
    return kNoPartner;
}

void pairAssociated(Pairing &pairing, Role role, const SdpNegotiateOptions &options) {
    for (uint32_t i = 0; i < pairing.offered.count; ++i) {
        const Format &offered = pairing.offered.items[i];
        if (offered.role == role) {
            pairing.partner[i] = partnerOf(pairing, offered, [&](const Format &ours) {
                return same(offered, ours, options) && sameReferences(pairing, offered, ours);
            });
        }
    }
}

} // namespace

void pair(Pairing &pairing, const SdpNegotiateOptions &options) {
    const uint32_t count = pairing.offered.count;
    bool associated = false;
    std::memset(pairing.partner, kNoPartner, sizeof pairing.partner);
    for (uint32_t i = 0; i < count; ++i) {
        const Format &offered = pairing.offered.items[i];
        associated = associated || isAssociated(offered);
        if (offered.defined && !isAssociated(offered)) {
            pairing.partner[i] = partnerOf(
                pairing, offered, [&](const Format &ours) { return same(offered, ours, options); });
        }
    }
    if (associated) {
        // RED first, since RTX may refer to it.
        pairAssociated(pairing, Role::Red, options);
        pairAssociated(pairing, Role::Rtx, options);
    }
}

std::optional<uint32_t> Pairing::offeredNumber(uint32_t ourNumber) const {
    for (uint32_t i = 0; i < chosenCount; ++i) {
        if (ourOf(chosen[i]).number == ourNumber) {
            return offered.items[chosen[i]].number;
        }
    }
    return std::nullopt;
}

namespace {

class Selection {
public:
    Selection(Pairing &pairing, const SdpNegotiateOptions &options)
        : pairing_(pairing), options_(options), count_(pairing.offered.count) {}

    Reason run() {
        keepCommon();
        const bool codecOffered = any([](const Format &) { return true; }, Role::Codec);
        if (options_.bOurOrder != 0) {
            sortByOurs();
        }
        if (pairing_.chosenCount == 0) {
            return Reason::NoCommonFormat;
        }
        const bool codecKept = hasChosen(Role::Codec);
        if (codecOffered && !codecKept) {
            return Reason::OnlyAuxiliary;
        }
        if (options_.bFirstOnly != 0) {
            keepFirst(codecKept);
        }
        if (codecKept) {
            keepEventsOfClocks();
        }
        keepReferences();
        return pairing_.chosenCount != 0 ? Reason::None : Reason::NoCommonFormat;
    }

private:
    void keepCommon() {
        pairing_.chosenCount = 0;
        for (uint32_t i = 0; i < count_; ++i) {
            const Format &format = pairing_.offered.items[i];
            const bool common = pairing_.partner[i] != kNoPartner;
            pairing_.leftOut[i] = common ? Reason::None : missing(format);
            if (common) {
                pairing_.chosen[pairing_.chosenCount++] = static_cast<uint8_t>(i);
            }
        }
    }

    // The reason why a format has no partner. RED and RTX that we have too lack the formats that
    // they refer to.
    Reason missing(const Format &format) const {
        if (!format.defined) {
            return Reason::FormatUndefined;
        }
        const bool lacks = isAssociated(format) && !refersToPaired(pairing_, format) &&
                           std::any_of(pairing_.ours.begin(), pairing_.ours.end(),
                                       [&](const Format &ours) { return sameCodec(format, ours); });
        return !lacks                     ? Reason::FormatNotOurs
               : format.role == Role::Red ? Reason::RedundancyDropped
                                          : Reason::FormatAssociated;
    }

    // Insertion sort: the lists are short and mostly in order.
    void sortByOurs() {
        uint8_t *const chosen = pairing_.chosen;
        for (uint32_t i = 1; i < pairing_.chosenCount; ++i) {
            for (uint32_t j = i;
                 j > 0 && pairing_.partner[chosen[j]] < pairing_.partner[chosen[j - 1]]; --j) {
                std::swap(chosen[j], chosen[j - 1]);
            }
        }
    }

    template <class Wanted>
    bool any(Wanted wanted, Role role) const {
        return std::any_of(pairing_.offered.begin(), pairing_.offered.end(),
                           [&](const Format &one) { return one.role == role && wanted(one); });
    }

    bool hasChosen(Role role) const {
        return std::any_of(
            pairing_.chosen, pairing_.chosen + pairing_.chosenCount,
            [&](uint8_t place) { return pairing_.offered.items[place].role == role; });
    }

    template <class Unwanted>
    void drop(Reason reason, Unwanted unwanted) {
        uint32_t kept = 0;
        for (uint32_t i = 0; i < pairing_.chosenCount; ++i) {
            const uint8_t place = pairing_.chosen[i];
            if (unwanted(pairing_.offered.items[place])) {
                pairing_.leftOut[place] = reason;
            } else {
                pairing_.chosen[kept++] = place;
            }
        }
        pairing_.chosenCount = kept;
    }

    // Keeps the first codec and all formats of other roles; without a codec, the first format.
    void keepFirst(bool codecKept) {
        bool found = false;
        drop(Reason::FormatNotFirst, [&](const Format &format) {
            if (codecKept && format.role != Role::Codec) {
                return false;
            }
            const bool first = !found;
            found = true;
            return !first;
        });
    }

    void keepEventsOfClocks() {
        drop(Reason::FormatClock, [this](const Format &format) {
            return format.role == Role::Event &&
                   std::none_of(pairing_.chosen, pairing_.chosen + pairing_.chosenCount,
                                [&](uint8_t place) {
                                    const Format &codec = pairing_.offered.items[place];
                                    return codec.role == Role::Codec && codec.clock == format.clock;
                                });
        });
    }

    // The formats that RED and RTX refer to, in the offer and in our parameters, must be chosen
    // too. RED first, since RTX may refer to it.
    void keepReferences() {
        dropIncomplete(Role::Red, Reason::RedundancyDropped);
        dropIncomplete(Role::Rtx, Reason::FormatAssociated);
    }

    void dropIncomplete(Role role, Reason reason) {
        drop(reason, [this, role](const Format &format) {
            if (format.role != role) {
                return false;
            }
            const auto place = static_cast<uint32_t>(&format - pairing_.offered.items);
            bool gone = false;
            eachReference(format, [&](uint32_t number) {
                const auto target = pairing_.offered.indexOf(number);
                gone = gone || (target && !pairing_.isChosen(*target));
            });
            eachReference(pairing_.ourOf(place), [&](uint32_t number) {
                gone = gone || (pairing_.ours.indexOf(number) && !pairing_.offeredNumber(number));
            });
            return gone;
        });
    }

    Pairing &pairing_;
    const SdpNegotiateOptions &options_;
    uint32_t count_;
};

} // namespace

Reason select(Pairing &pairing, const SdpNegotiateOptions &options) {
    return Selection(pairing, options).run();
}

namespace {

// Writes a list such as "98/98/99" with each number replaced: by the offer's number at the same
// place if it is the same codec, else by the first offered number of the codec.
void writeNumbers(const Pairing &pairing, const Format &offered, const Format &ours, Text &text) {
    std::string_view rest = offered.parameters;
    bool first = true;
    eachReference(ours, [&](uint32_t ourNumber) {
        uint32_t number = 0;
        const auto place =
            takeNumber(rest, number) ? pairing.offered.indexOf(number) : std::nullopt;
        const bool same =
            place && pairing.isChosen(*place) && pairing.ourOf(*place).number == ourNumber;
        text << (first ? "" : "/")
             << (same ? number : pairing.offeredNumber(ourNumber).value_or(ourNumber));
        rest = after(rest, 1);
        first = false;
    });
}

// Writes parameters such as "apt=98;rtx-time=3000" with the offer's number after "apt=".
void writeApt(const Format &offered, const Format &ours, Text &text) {
    const std::string_view parameters = ours.parameters;
    const auto apt = parameter(parameters, "apt");
    const size_t begin = static_cast<size_t>(apt->data() - parameters.data());
    text << firstBytes(parameters, begin);
    eachReference(offered, [&](uint32_t number) { text << number; });
    text << after(parameters, begin + apt->size());
}

} // namespace

void writeParameters(const Pairing &pairing, uint32_t place, Text &text) {
    const Format &offered = pairing.offered.items[place];
    const Format &ours = pairing.ourOf(place);
    if (offered.role == Role::Red && eachReference(ours, [](uint32_t) {})) {
        writeNumbers(pairing, offered, ours, text);
        return;
    }
    if (offered.role == Role::Rtx) {
        writeApt(offered, ours, text);
        return;
    }
    text << ours.parameters;
    if (isAmr(offered) && offered.parameters != ours.parameters && modeSetOf(offered.parameters) &&
        !modeSetOf(ours.parameters)) {
        text << (text.empty() ? "" : ";")
             << "mode-set=" << *parameter(offered.parameters, "mode-set");
    }
}

} // namespace sdpline::negotiate
