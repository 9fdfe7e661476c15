// The parameters of a=fmtp that make formats incompatible, codec by codec.
#include <cstdint>

#include "negotiate/formats.hpp"

namespace sdpline::negotiate {

namespace {

constexpr bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

std::string_view trimmed(const char *begin, const char *end) {
    while (begin != end && isBlank(*begin)) {
        ++begin;
    }
    while (begin != end && isBlank(end[-1])) {
        --end;
    }
    return {begin, static_cast<size_t>(end - begin)};
}

// Calls use(name, value) for each of "name=value;name=value" until it returns true.
template <class Use>
void eachParameter(std::string_view parameters, Use use) {
    const char *const last = parameters.data() + parameters.size();
    for (const char *begin = parameters.data(); begin < last;) {
        const char *equals = nullptr;
        const char *end = begin;
        for (; end != last && *end != ';'; ++end) {
            if (*end == '=' && equals == nullptr) {
                equals = end;
            }
        }
        const std::string_view name = trimmed(begin, equals != nullptr ? equals : end);
        if (use(name, equals != nullptr ? trimmed(equals + 1, end) : std::string_view())) {
            return;
        }
        begin = end + 1;
    }
}

// ---- H264 (RFC 6184)

// The combinations of profile_idc and profile-iop in a profile-level-id that denote the same
// profile (section 8.1, table 5).
struct Profile {
    uint8_t idc;
    uint8_t mask; // of the bits of profile-iop that matter ...
    uint8_t iop;  // ... and their value
    uint16_t name;
};
constexpr uint16_t kConstrainedBaseline = 1, kBaseline = 2, kMain = 3, kExtended = 4;
constexpr Profile kProfiles[] = {
    {0x42, 0x4F, 0x40, kConstrainedBaseline},
    {0x4D, 0x8F, 0x80, kConstrainedBaseline},
    {0x58, 0xCF, 0xC0, kConstrainedBaseline},
    {0x42, 0x4F, 0x00, kBaseline},
    {0x58, 0xCF, 0x80, kBaseline},
    {0x4D, 0xAF, 0x00, kMain},
    {0x58, 0xCF, 0x00, kExtended},
};

std::optional<uint32_t> hexadecimal(std::string_view text) {
    uint32_t value = 0;
    for (const char byte : text) {
        const char low = lower(byte);
        const bool digit = byte >= '0' && byte <= '9';
        if (!digit && (low < 'a' || low > 'f')) {
            return std::nullopt;
        }
        value = value * 16 + static_cast<uint32_t>(digit ? byte - '0' : low - 'a' + 10);
    }
    return text.size() == 6 ? std::optional(value) : std::nullopt;
}

// The profile of parameters; without a profile-level-id, Baseline at level 1 (section 8.1). Nullopt
// for an invalid one.
std::optional<uint32_t> profileOf(std::string_view parameters) {
    const auto id = hexadecimal(parameter(parameters, "profile-level-id").value_or("42000A"));
    if (!id) {
        return std::nullopt;
    }
    const uint32_t idc = *id >> 16;
    const uint32_t iop = *id >> 8 & 0xFF;
    for (const Profile &profile : kProfiles) {
        if (profile.idc == idc && (iop & profile.mask) == profile.iop) {
            return profile.name;
        }
    }
    return *id >> 8 << 8; // a profile that only one pair names
}

bool sameH264(std::string_view one, std::string_view two) {
    const auto profile = profileOf(one);
    return profile && profile == profileOf(two) &&
           parameter(one, "packetization-mode").value_or("0") ==
               parameter(two, "packetization-mode").value_or("0");
}

// ---- AMR and AMR-WB (RFC 4867 sections 8.1 and 8.3.1)

struct AmrLayout {
    bool aligned = false;
    bool crc = false;
    bool sorted = false;
    bool interleaved = false;
    std::optional<std::string_view> modes;

    explicit AmrLayout(std::string_view parameters) {
        eachParameter(parameters, [this](std::string_view name, std::string_view value) {
            if (sameWord(name, "octet-align")) {
                aligned = value == "1";
            } else if (sameWord(name, "crc")) {
                crc = value == "1";
            } else if (sameWord(name, "robust-sorting")) {
                sorted = value == "1";
            } else if (sameWord(name, "interleaving")) {
                interleaved = true;
            } else if (sameWord(name, "mode-set") && !modes) {
                modes = value;
            }
            return false;
        });
        aligned = aligned || crc || sorted || interleaved;
    }
};

uint32_t modesOf(std::string_view list) {
    uint32_t modes = 0;
    while (!list.empty()) {
        uint32_t mode = 0;
        if (!takeNumber(list, mode)) {
            list.remove_prefix(1);
        } else if (mode < 32) {
            modes |= 1u << mode;
        }
    }
    return modes;
}

bool sameAmr(std::string_view one, std::string_view two) {
    const AmrLayout first(one);
    const AmrLayout second(two);
    return first.aligned == second.aligned && first.crc == second.crc &&
           first.sorted == second.sorted && first.interleaved == second.interleaved &&
           (!first.modes || !second.modes || modesOf(*first.modes) == modesOf(*second.modes));
}

// ---- telephone-event (RFC 4733 section 2.4.1)

struct Events {
    uint64_t bits[4] = {};

    void add(uint32_t first, uint32_t last) {
        for (uint32_t event = first; event <= last && event < 256; ++event) {
            bits[event / 64] |= uint64_t{1} << event % 64;
        }
    }
};

// The events of a list such as "0-15,66,70"; without a list 0 to 15.
Events eventsOf(std::string_view list) {
    Events events;
    bool any = false;
    while (!list.empty()) {
        uint32_t first = 0;
        if (!takeNumber(list, first)) {
            list.remove_prefix(1);
            continue;
        }
        uint32_t last = first;
        if (!list.empty() && list[0] == '-') {
            list.remove_prefix(1);
            takeNumber(list, last);
        }
        events.add(first, last);
        any = true;
    }
    if (!any) {
        events.add(0, 15);
    }
    return events;
}

bool commonEvents(std::string_view one, std::string_view two) {
    const Events first = eventsOf(one);
    const Events second = one == two ? first : eventsOf(two);
    for (size_t i = 0; i < 4; ++i) {
        if ((first.bits[i] & second.bits[i]) != 0) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<std::string_view> parameter(std::string_view parameters, std::string_view name) {
    std::optional<std::string_view> found;
    eachParameter(parameters, [&](std::string_view one, std::string_view value) {
        if (sameWord(one, name)) {
            found = value;
        }
        return found.has_value();
    });
    return found;
}

std::optional<uint32_t> modeSetOf(std::string_view parameters) {
    const auto list = parameter(parameters, "mode-set");
    return list ? std::optional(modesOf(*list)) : std::nullopt;
}

bool isAmr(const Format &format) {
    return sameWord(format.name, "AMR") || sameWord(format.name, "AMR-WB");
}

bool sameCodec(const Format &one, const Format &two) {
    return one.defined && two.defined && one.clock == two.clock && one.channels == two.channels &&
           sameWord(one.name, two.name);
}

bool sameParameters(const Format &one, const Format &two) {
    const bool equal = one.parameters == two.parameters;
    if (one.role == Role::Event) {
        return commonEvents(one.parameters, two.parameters);
    }
    if (sameWord(one.name, "H264")) {
        return equal ? profileOf(one.parameters).has_value()
                     : sameH264(one.parameters, two.parameters);
    }
    if (isAmr(one)) {
        return equal || sameAmr(one.parameters, two.parameters);
    }
    if (sameWord(one.name, "G729")) {
        return equal || sameWord(parameter(one.parameters, "annexb").value_or("yes"),
                                 parameter(two.parameters, "annexb").value_or("yes"));
    }
    return true;
}

} // namespace sdpline::negotiate
