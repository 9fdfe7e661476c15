// Gathering the formats of one m= line.
//
// The a= lines are walked once. A table from payload numbers to places in the list finds the format
// of each a=rtpmap and a=fmtp line.
#include "negotiate/formats.hpp"

#include <cstring>

namespace sdpline::negotiate {

namespace {

constexpr uint8_t kNoPlace = 255;

Role roleOf(std::string_view name) {
    struct NamedRole {
        std::string_view name;
        Role role;
    };
    static constexpr NamedRole kRoles[] = {
        {"telephone-event", Role::Event},
        {"red", Role::Red},
        {"rtx", Role::Rtx},
        {"CN", Role::Auxiliary},
        {"ulpfec", Role::Auxiliary},
        {"flexfec", Role::Auxiliary},
        {"flexfec-03", Role::Auxiliary},
        {"parityfec", Role::Auxiliary},
    };
    // The names of most codecs have another length than all of these.
    static constexpr uint32_t kLengths = [] {
        uint32_t lengths = 0;
        for (const NamedRole &row : kRoles) {
            lengths |= 1u << row.name.size();
        }
        return lengths;
    }();
    if (name.size() >= 32 || (kLengths >> name.size() & 1) == 0) {
        return Role::Codec;
    }
    for (const NamedRole &row : kRoles) {
        if (sameWord(row.name, name)) {
            return row.role;
        }
    }
    return Role::Codec;
}

class Gatherer {
public:
    Gatherer(const SDPMediaDesc &media, FormatList &list) : media_(media), list_(list) {
        std::memset(places_, kNoPlace, sizeof places_);
    }

    void run() {
        list_.count = 0;
        list_.kinds = 0;
        eachNumber(media_, [this](uint32_t number) { addNumber(number); });
        for (const SDPAttr *const attribute : attributesOf(media_.pstAttrList)) {
            list_.kinds |= kindOf(*attribute);
            if (attribute->ulAttrType == SDP_ATTR_RTPMAP) {
                define(*attribute);
            } else if (attribute->ulAttrType == SDP_ATTR_FMTP) {
                parametrise(*attribute);
            }
        }
        for (uint32_t i = 0; i < list_.count; ++i) {
            defineStatic(list_.items[i]);
        }
        if (list_.count == 0) {
            addWord();
        }
    }

private:
    Format &append() {
        Format &format = list_.items[list_.count++];
        format = {};
        format.number = SDP_NEGOTIATE_NONE;
        return format;
    }

    void addNumber(uint32_t number) {
        if (number > kHighestPayload || places_[number] != kNoPlace ||
            list_.count == SDP_MAX_PAYLOADS) {
            return;
        }
        places_[number] = static_cast<uint8_t>(list_.count);
        append().number = number;
    }

    void addWord() {
        const Keyword<sdpline::Format> word = Media(&media_).format();
        if (word == sdpline::Format::Payloads || word.text().empty() || isRtp(media_)) {
            return;
        }
        Format &format = append();
        format.name = word.text();
        format.defined = true;
    }

    Format *formatOf(uint32_t number) {
        const bool listed = number <= kHighestPayload && places_[number] != kNoPlace;
        return listed ? &list_.items[places_[number]] : nullptr;
    }

    // Of several a=rtpmap lines for a number the first one is used.
    void define(const SDPAttr &attribute) {
        const SDPRtpMapAttr &map = attribute.unAttrValue.stRtpMap;
        Format *const format = formatOf(map.ulPayloadType);
        if (format == nullptr || format->map != nullptr) {
            return;
        }
        format->map = &attribute;
        format->name = viewOf(map.strEncodingName);
        format->clock = map.ulClockRate;
        format->channels = map.ulEncodingParams != 0 ? map.ulEncodingParams : 1;
        format->role = roleOf(format->name);
        format->defined = true;
    }

    void parametrise(const SDPAttr &attribute) {
        std::string_view text = viewOf(attribute.unAttrValue.strValue);
        uint32_t number = 0;
        if (!takeNumber(text, number) || (!text.empty() && text[0] != ' ')) {
            return;
        }
        Format *const format = formatOf(number);
        if (format != nullptr && format->fmtp == nullptr) {
            const size_t begin = text.find_first_not_of(' ');
            format->fmtp = &attribute;
            format->parameters = after(text, begin);
        }
    }

    static void defineStatic(Format &format) {
        if (format.map != nullptr) {
            return;
        }
        if (const auto codec = staticEncoding(format.number)) {
            format.name = codec->name;
            format.clock = codec->clockRate;
            format.channels = codec->channels;
            format.role = roleOf(codec->name);
            format.defined = true;
        }
    }

    const SDPMediaDesc &media_;
    FormatList &list_;
    uint8_t places_[kHighestPayload + 1];
};

} // namespace

std::optional<uint32_t> FormatList::indexOf(uint32_t number) const {
    for (uint32_t i = 0; i < count; ++i) {
        if (items[i].number == number) {
            return i;
        }
    }
    return std::nullopt;
}

void gather(const SDPMediaDesc &media, FormatList &list) {
    Gatherer(media, list).run();
}

} // namespace sdpline::negotiate
