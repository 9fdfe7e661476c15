// What each shape of attribute uses of its record, so that one loop copies all shapes: a mask of
// the bytes that are copied, and the place of the text and the pointer that are copied deeply.
//
//   SDPAttr   ulAttrType | value of the shape ...            | unused  | pstAttrName
//   kept      ffffffff   | ff ... ff, a text among them      | 00 ...  | 00 ...
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "sdpline/sdprecords.h"
#include "tables/attributes.hpp"

namespace sdpline {

// A pointer that is copied deeply, in addition to a text within the value.
enum class Pointer : uint8_t { None, Name, Precondition };

struct alignas(64) AttributeLayout {
    std::array<uint8_t, sizeof(SDPAttr)> kept; // 255 for each byte that is copied
    uint8_t text;                              // offset of a SipString; 0 for none
    Pointer pointer;
    bool refersToText; // and to nothing else
};

constexpr size_t valueSize(Shape shape) {
    switch (shape) {
    case Shape::None:
    case Shape::Flag:
    case Shape::Direction:
    case Shape::NameOnly: return 0;
    case Shape::Number:
    case Shape::Decimal:
    case Shape::Switch:
    case Shape::Keyword: return sizeof(SDPAttr::unAttrValue.ulValue);
    case Shape::Text:
    case Shape::NamedText: return sizeof(SDPAttr::unAttrValue.strValue);
    case Shape::RtpMap: return sizeof(SDPAttr::unAttrValue.stRtpMap);
    case Shape::SilenceSupp: return sizeof(SDPAttr::unAttrValue.stSilenceSupp);
    case Shape::Ecan: return sizeof(SDPAttr::unAttrValue.stEcan);
    case Shape::IpBcp: return sizeof(SDPAttr::unAttrValue.stIpBcp);
    case Shape::Precondition: return sizeof(SDPAttr::unAttrValue.stRsrcMgmtStatus);
    }
    return 0;
}

constexpr size_t textWithinValue(Shape shape) {
    switch (shape) {
    case Shape::RtpMap: return offsetof(SDPRtpMapAttr, strEncodingName);
    case Shape::SilenceSupp: return offsetof(SDPSilenceSuppression, strParams);
    case Shape::Ecan: return offsetof(SDPEcan, strParams);
    default: return 0;
    }
}

constexpr bool hasText(Shape shape) {
    return shape == Shape::Text || shape == Shape::NamedText || textWithinValue(shape) != 0;
}

constexpr Pointer pointerOf(Shape shape) {
    if (shape == Shape::Precondition) {
        return Pointer::Precondition;
    }
    return shape == Shape::NamedText || shape == Shape::NameOnly ? Pointer::Name : Pointer::None;
}

// Indexed by type. The last row is used for all numbers that are not types.
inline constexpr auto kAttributeLayouts = [] {
    std::array<AttributeLayout, SDP_ATTR_UNKNOWN + 1> layouts{};
    for (uint32_t type = 0; type < layouts.size(); ++type) {
        const Shape shape = shapeOf(type);
        for (size_t at = 0; at < offsetof(SDPAttr, unAttrValue) + valueSize(shape); ++at) {
            layouts[type].kept[at] = 255;
        }
        layouts[type].text = static_cast<uint8_t>(
            hasText(shape) ? offsetof(SDPAttr, unAttrValue) + textWithinValue(shape) : 0);
        layouts[type].pointer = pointerOf(shape);
        layouts[type].refersToText = hasText(shape) && pointerOf(shape) == Pointer::None;
    }
    return layouts;
}();

inline const AttributeLayout &layoutOf(const SDPAttr &attribute) {
    return kAttributeLayouts[std::min<uint32_t>(attribute.ulAttrType, SDP_ATTR_UNKNOWN)];
}

inline const SipString &textAt(const SDPAttr &attribute, size_t offset) {
    return *reinterpret_cast<const SipString *>(reinterpret_cast<const char *>(&attribute) +
                                                offset);
}
inline SipString &textAt(SDPAttr &attribute, size_t offset) {
    return *reinterpret_cast<SipString *>(reinterpret_cast<char *>(&attribute) + offset);
}

template <class Word>
inline void copyKeptWord(const uint8_t *kept, const char *from, char *to) {
    Word mask;
    Word word;
    std::memcpy(&mask, kept, sizeof mask);
    std::memcpy(&word, from, sizeof word);
    word &= mask;
    std::memcpy(to, &word, sizeof word);
}

// Writes all bytes of the target: those that are not kept become zero.
inline void copyKept(const AttributeLayout &layout, const SDPAttr &from, SDPAttr &to) {
    using Four = uint32_t __attribute__((vector_size(16)));
    const auto *const source = reinterpret_cast<const char *>(&from);
    auto *const target = reinterpret_cast<char *>(&to);
    size_t at = 0;
    for (; at + sizeof(Four) <= sizeof(SDPAttr); at += sizeof(Four)) {
        copyKeptWord<Four>(&layout.kept[at], source + at, target + at);
    }
    for (; at < sizeof(SDPAttr); at += sizeof(uint64_t)) {
        copyKeptWord<uint64_t>(&layout.kept[at], source + at, target + at);
    }
}
static_assert(sizeof(SDPAttr) % sizeof(uint64_t) == 0);

} // namespace sdpline
