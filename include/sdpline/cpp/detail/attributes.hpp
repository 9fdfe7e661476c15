/*
 * attributes.hpp: the table of attribute types: name, shape of the value and keywords, one row each
 * (attributes.def). Parser, encoder, copies, C++ API and program switch on the shape: a new
 * attribute of a known shape needs a row and no code.
 */
#ifndef SDPLINE_DETAIL_ATTRIBUTES_HPP
#define SDPLINE_DETAIL_ATTRIBUTES_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sdpline/cpp/detail/keywords.hpp"
#include "sdpline/sdprecords.h"

namespace sdpline::tables {

/* The shape of an attribute's value: the member of unAttrValue that holds it, and its text. */
enum class Shape : std::uint8_t {
    None,         /* no type of attribute */
    Flag,         /* no value */
    Direction,    /* no value: the name is the direction of the media */
    Number,       /* ulValue: digits */
    Decimal,      /* ulValue: digits with a fraction, which is dropped */
    Switch,       /* ulValue: ":" and digits, or nothing, which is read as 1 */
    Keyword,      /* ulValue: one of the row's words */
    Text,         /* strValue: the rest of the line */
    RtpMap,       /* stRtpMap */
    SilenceSupp,  /* stSilenceSupp */
    Ecan,         /* stEcan */
    IpBcp,        /* stIpBcp */
    Precondition, /* stRsrcMgmtStatus */
    NamedText,    /* strValue, under the name in pstAttrName */
    NameOnly      /* no value, but the name in pstAttrName */
};

/* How a row deviates from its shape: a set of these. */
enum Deviation : std::uint8_t {
    kRegular = 0,
    kAnyCase = 1 << 0,        /* the name is recognised in any case of its letters */
    kPacketChecks = 1 << 1,   /* a number with the checks of ptime */
    kQualityChecks = 1 << 2,  /* a number with the checks of quality; others have those of T.38 */
    kRestOfLine = 1 << 3,     /* the keyword is the rest of the line, not a word */
    kUnknownRefused = 1 << 4, /* a code without a word fails a check; else nothing is written */
    kResultDropped = 1 << 5,  /* a refused append of the value is ignored */
    kStrengthTag = 1 << 6     /* a precondition with a strength */
};

struct AttributeRow {
    std::uint32_t type;
    std::string_view name; /* as it is written: with its colon where a value follows */
    Shape shape;
    std::uint8_t deviations;
    std::span<const KeywordRow> words;

    constexpr bool has(Deviation deviation) const { return (deviations & deviation) != 0; }

    constexpr std::string_view bareName() const {
        return name.ends_with(':') ? name.substr(0, name.size() - 1) : name;
    }
};

inline constexpr std::span<const KeywordRow> kNoWords;

/* Indexed by type. Row 0 is for numbers that are not types. */
inline constexpr auto kAttributes = std::to_array<AttributeRow>({
    {0, {}, Shape::None, kRegular, {}},
#define ATTRIBUTE(type, enumerator, name, shape, words, deviations)                                \
    {type, name, Shape::shape, deviations, words},
#include "sdpline/cpp/detail/attributes.def"
#undef ATTRIBUTE
});

inline constexpr std::uint32_t kLastAttribute = SDP_ATTR_UNKNOWN - 1;

/* The row of a type; row 0 for numbers that are not types. */
constexpr const AttributeRow &attributeRow(std::uint32_t type) {
    return kAttributes[type <= kLastAttribute ? type : 0];
}

/* The shapes as a table of bytes: most users of the table need only these. */
inline constexpr auto kShapes = [] {
    std::array<Shape, kAttributes.size()> shapes{};
    for (std::size_t type = 0; type < shapes.size(); ++type) {
        shapes[type] = kAttributes[type].shape;
    }
    return shapes;
}();

constexpr Shape shapeOf(std::uint32_t type) {
    return type <= kLastAttribute ? kShapes[type] : Shape::None;
}

/* The range of the types of a shape; empty if other types are between them. */
struct TypeRange {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

constexpr TypeRange rangeOf(Shape shape) {
    TypeRange range;
    for (std::uint32_t type = 1; type <= kLastAttribute; ++type) {
        if (kShapes[type] != shape) {
            continue;
        }
        if (range.count != 0 && type != range.first + range.count) {
            return {};
        }
        range = {type - range.count, range.count + 1};
    }
    return range;
}

/* Whether a type has that shape. For shapes whose types are a range the table is not read. */
template <Shape shape>
constexpr bool isOf(std::uint32_t type) {
    constexpr TypeRange range = rangeOf(shape);
    return range.count != 0 ? type - range.first < range.count : shapeOf(type) == shape;
}

/* Whether a row has what its shape needs. */
constexpr bool isComplete(const AttributeRow &row, std::size_t index) {
    const bool kept = row.shape == Shape::NamedText || row.shape == Shape::NameOnly;
    return row.type == index && (row.shape == Shape::None) == (index == 0) &&
           row.words.empty() == (row.shape != Shape::Keyword) && kept == (row.name == " ");
}
static_assert([] {
    for (std::size_t index = 0; index < kAttributes.size(); ++index) {
        if (!isComplete(kAttributes[index], index)) {
            return false;
        }
    }
    return kAttributes.size() == kLastAttribute + 1;
}());
static_assert(rangeOf(Shape::Direction).first == SDP_ATTR_SENDRECV &&
              rangeOf(Shape::Direction).count == 4);
static_assert(sizeof(SDPAttr::unAttrValue.ulValue) == sizeof(std::uint32_t) &&
              sizeof(SDPAttr::unAttrValue.enT120Mode) == sizeof(std::uint32_t));

} // namespace sdpline::tables

#endif
