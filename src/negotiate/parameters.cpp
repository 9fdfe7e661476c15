// What a=fmtp makes incompatible, codec by codec.
#include <cstdint>

#include "negotiate/formats.hpp"

namespace sdpline::negotiate {

namespace {

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    return after(text.substr(0, text.find_last_not_of(" \t") + 1), begin);
}

bool isOne(std::string_view parameters, std::string_view name) {
    return parameter(parameters, name) == "1";
}

// ---- H264 (RFC 6184)

// profile_idc and profile-iop of a profile-level-id, made one where section 8.1, table 5, says that
// they are the same profile.
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

// Baseline at level 1 where no profile is named (section 8.1); nothing for what is none.
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

bool sameAmr(std::string_view one, std::string_view two) {
    const auto layout = [](std::string_view parameters) {
        const bool crc = isOne(parameters, "crc");
        const bool sorted = isOne(parameters, "robust-sorting");
        const bool interleaved = parameter(parameters, "interleaving").has_value();
        const bool aligned = isOne(parameters, "octet-align") || crc || sorted || interleaved;
        return (crc ? 1 : 0) | (sorted ? 2 : 0) | (interleaved ? 4 : 0) | (aligned ? 8 : 0);
    };
    const auto modes = modeSetOf(one);
    const auto otherModes = modeSetOf(two);
    return layout(one) == layout(two) && (!modes || !otherModes || *modes == *otherModes);
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

// "0-15,66,70"; without a list 0 to 15.
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
    const Events second = eventsOf(two);
    for (size_t i = 0; i < 4; ++i) {
        if ((first.bits[i] & second.bits[i]) != 0) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<std::string_view> parameter(std::string_view parameters, std::string_view name) {
    while (!parameters.empty()) {
        const size_t end = std::min(parameters.find(';'), parameters.size());
        const std::string_view one = parameters.substr(0, end);
        parameters.remove_prefix(std::min(end + 1, parameters.size()));
        const size_t equals = std::min(one.find('='), one.size());
        if (sameWord(trimmed(one.substr(0, equals)), name)) {
            return trimmed(after(one, equals + 1));
        }
    }
    return std::nullopt;
}

std::optional<uint32_t> modeSetOf(std::string_view parameters) {
    auto list = parameter(parameters, "mode-set");
    if (!list) {
        return std::nullopt;
    }
    uint32_t modes = 0;
    while (!list->empty()) {
        uint32_t mode = 0;
        if (!takeNumber(*list, mode)) {
            list->remove_prefix(1);
        } else if (mode < 32) {
            modes |= 1u << mode;
        }
    }
    return modes;
}

bool isAmr(const Format &format) {
    return sameWord(format.name, "AMR") || sameWord(format.name, "AMR-WB");
}

bool sameCodec(const Format &one, const Format &two) {
    return one.defined && two.defined && one.clock == two.clock && one.channels == two.channels &&
           sameWord(one.name, two.name);
}

bool sameParameters(const Format &one, const Format &two) {
    if (one.role == Role::Event) {
        return commonEvents(one.parameters, two.parameters);
    }
    if (sameWord(one.name, "H264")) {
        return sameH264(one.parameters, two.parameters);
    }
    if (isAmr(one)) {
        return sameAmr(one.parameters, two.parameters);
    }
    if (sameWord(one.name, "G729")) {
        return sameWord(parameter(one.parameters, "annexb").value_or("yes"),
                        parameter(two.parameters, "annexb").value_or("yes"));
    }
    return true;
}

} // namespace sdpline::negotiate
