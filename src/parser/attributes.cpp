// The a= lines: the list, the name, the choice of the value's production by its shape, text values,
// and attributes that are not in the table.
#include "parser/attributes.hpp"

#include <algorithm>
#include <array>

#include "tables/usualnames.hpp"

namespace sdpline {

namespace {

// The names that are recognised in any letter case.
constexpr auto anyCase = [](const AttributeRow &row) { return row.has(kAnyCase); };
constexpr auto kAnyCaseNames = [] {
    std::array<KeywordRow, std::ranges::count_if(kAttributes, anyCase)> names{};
    size_t next = 0;
    for (const AttributeRow &row : kAttributes) {
        if (anyCase(row)) {
            names[next++] = {row.bareName(), row.type};
        }
    }
    return names;
}();

// Their sizes, one bit each. Most other names have none of these sizes and need no comparison.
constexpr uint32_t kAnyCaseSizes = [] {
    uint32_t sizes = 0;
    for (const KeywordRow &name : kAnyCaseNames) {
        sizes |= uint32_t{1} << name.text.size();
    }
    return sizes;
}();

constexpr bool mayBeAnyCase(std::string_view name) {
    return name.size() < 32 && (kAnyCaseSizes >> name.size() & 1) != 0;
}

struct NameChecks {
    Check alloc;
    Check store;
};

bool storeName(Parser auto &p, SDPAttr &attr, std::string_view name, NameChecks checks,
               uint32_t line = __builtin_LINE()) {
    auto *const text = allocate<SipString>(row(checks.alloc).function);
    attr.pstAttrName = text;
    return text != nullptr ? store(p, *text, name, checks.store, line)
                           : p.refuse(checks.alloc, 0, line);
}

} // namespace

bool keepName(Parser auto &p, SDPAttr &attr, std::string_view name) {
    attr.ulAttrType = SDP_ATTR_UNREC_NOVALUE;
    return storeName(p, attr, name, {Check::UnrecFlagNameAlloc, Check::UnrecFlagNameStore});
}

// ":" value, with the colon as the current token; the value has at most `limit` bytes
bool keepNamedText(Parser auto &p, SDPAttr &attr, std::string_view name, uint32_t limit,
                   std::string_view &value) {
    p.takeToText(SDP_TOK_COLON);
    if (p.is(SDP_TOK_LF)) {
        return p.refuse(Check::UnrecEmpty);
    }
    if (!storeName(p, attr, name, {Check::UnrecNameAlloc, Check::UnrecNameStore})) {
        p.finishText();
        return false;
    }
    if (p.inputEnds()) {
        return p.refuse(Check::UnrecEnded);
    }
    if (!p.takeRestOfLine(value, limit)) {
        return p.refuse(Check::UnrecTooLong);
    }
    return store(p, attr.unAttrValue.strValue, value, Check::UnrecStore);
}

// [ ":" value ] LF
bool keepUnrecognised(Parser auto &p, SDPAttr &attr, std::string_view name) {
    attr.ulAttrType = SDP_ATTR_UNREC_VALUE;
    p.under(Context::String);
    std::string_view value;
    return (p.is(SDP_TOK_COLON) ? keepNamedText(p, attr, name, SDP_MAX_VALUE, value)
                                : keepName(p, attr, name)) &&
           p.endLine(Check::UnrecEnd);
}

// A name that is not in the table as it is written: it may be one that is recognised in any letter
// case, else it is kept by name.
bool parseOther(Parser auto &p, SDPAttr &attr, std::string_view name) {
    if (mayBeAnyCase(name)) {
        for (const KeywordRow &known : kAnyCaseNames) {
            if (equalIgnoringCase(known.text, name)) {
                return parseFlag(p, attr, known.code);
            }
        }
    }
    return keepUnrecognised(p, attr, name);
}

// ":" 1*1023<any byte but LF> LF
bool parseTextValue(Parser auto &p, SDPAttr &attr, uint32_t type) {
    attr.ulAttrType = type;
    if (!p.takeToText(SDP_TOK_COLON)) {
        return p.refuse(Check::ValueColon);
    }
    if (p.is(SDP_TOK_LF)) {
        return p.refuse(Check::ValueEmpty);
    }
    if (p.inputEnds()) {
        return p.refuse(Check::ValueEnded);
    }
    std::string_view value;
    if (!p.takeRestOfLine(value, SDP_MAX_VALUE)) {
        return p.refuse(Check::ValueTooLong);
    }
    return store(p, attr.unAttrValue.strValue, value, Check::ValueStore) &&
           p.endLine(Check::ValueEnd);
}

namespace {

// The production that reads a value: it follows from the row's shape and deviations.
enum class Reader : uint8_t {
    Other,
    Flag,
    PacketNumber,
    Quality,
    FaxNumber,
    Switch,
    FaxRate,
    FaxErrorCorrection,
    Keyword,
    Setup,
    Text,
    RtpMap,
    SilenceSupp,
    Ecan,
    IpBcp,
    Precondition
};

constexpr Reader numberReader(const AttributeRow &row) {
    if (row.has(kPacketChecks)) {
        return Reader::PacketNumber;
    }
    return row.has(kQualityChecks) ? Reader::Quality : Reader::FaxNumber;
}

constexpr Reader keywordReader(const AttributeRow &row) {
    if (row.has(kRestOfLine)) {
        return Reader::Setup;
    }
    switch (row.type) {
    case SDP_ATTR_T38_RATE_MANAGEMENT: return Reader::FaxRate;
    case SDP_ATTR_T38_UDP_EC: return Reader::FaxErrorCorrection;
    default: return Reader::Keyword;
    }
}

constexpr Reader readerOf(const AttributeRow &row) {
    switch (row.shape) {
    case Shape::Flag:
    case Shape::Direction: return Reader::Flag;
    case Shape::Number:
    case Shape::Decimal: return numberReader(row);
    case Shape::Switch: return Reader::Switch;
    case Shape::Keyword: return keywordReader(row);
    case Shape::Text: return Reader::Text;
    case Shape::RtpMap: return Reader::RtpMap;
    case Shape::SilenceSupp: return Reader::SilenceSupp;
    case Shape::Ecan: return Reader::Ecan;
    case Shape::IpBcp: return Reader::IpBcp;
    case Shape::Precondition: return Reader::Precondition;
    case Shape::None:
    case Shape::NamedText:
    case Shape::NameOnly: break;
    }
    return Reader::Other;
}

constexpr auto kReaders = [] {
    std::array<Reader, kAttributes.size()> readers{};
    std::ranges::transform(kAttributes, readers.begin(), readerOf);
    return readers;
}();

} // namespace

namespace {

// The values that few bodies have are parsed out of line.
[[gnu::noinline]] bool rareValue(StateParser &p, SDPAttr &attr, uint32_t type) {
    switch (kReaders[type]) {
    case Reader::Quality: return parseQuality(p, attr, type);
    case Reader::Switch: return parseSwitch(p, attr, type);
    case Reader::Keyword: return parseKeyword(p, attr, type);
    case Reader::SilenceSupp: return parseSilenceSupp(p, attr, type);
    case Reader::Ecan: return parseEcan(p, attr, type);
    default: return parseIpBcp(p, attr);
    }
}

bool rareValue(BodyParser &parser, SDPAttr &attr, uint32_t type) {
    return outOfLine(parser, [&](StateParser &p) { return rareValue(p, attr, type); });
}

} // namespace

// [ ":" value ] LF
bool parseValue(Parser auto &p, SDPAttr &attr, std::string_view name, uint32_t type) {
    switch (type <= kLastAttribute ? kReaders[type] : Reader::Other) {
    case Reader::Flag: return parseFlag(p, attr, type);
    case Reader::PacketNumber: return parsePacketNumber(p, attr, type);
    case Reader::FaxNumber: return parseFaxNumber(p, attr, type);
    case Reader::FaxRate: return parseFaxRate(p, attr, type);
    case Reader::FaxErrorCorrection: return parseFaxErrorCorrection(p, attr, type);
    case Reader::Setup: return parseSetup(p, attr, type);
    case Reader::Text: return parseTextValue(p, attr, type);
    case Reader::RtpMap: return parseRtpmap(p, attr, type);
    case Reader::Precondition: return parsePrecondition(p, attr, type);
    case Reader::Other: return parseOther(p, attr, name);
    default: return rareValue(p, attr, type);
    }
}

namespace {

// Takes a usual name after "a=", so that the ":" or line end after it is current, and returns its
// type; returns 0 and takes nothing for any other name.
SDPLINE_INLINE uint32_t usualName(Parser auto &p, std::string_view &name) {
    if (p.special != 0 || !p.is(SDP_TOK_ATTRIBUTE)) {
        return 0;
    }
    const UsualName *const usual = kUsualNames.find(p.end);
    return usual != nullptr && p.jumpName(usual->size, name) ? usual->type : 0;
}

// a= name [ ":" value ] LF
SDPLINE_INLINE bool attribute(Parser auto &p, SDPAttr &attr) {
    std::string_view name;
    if (const uint32_t type = usualName(p, name)) {
        return parseValue(p, attr, name, type);
    }
    return p.expect(SDP_TOK_ATTRIBUTE, Context::Token, Check::AttrLine) &&
           p.read(name, SDP_TOK_TOKEN, {Check::AttrName, Check::AttrNameText}) &&
           p.next(Context::Token) && parseValue(p, attr, name, attributeType(name));
}

// 1*attribute
SDPLINE_INLINE bool attributes(Parser auto &parser, SDPAttrList &list) {
    return parseList<SDPAttr, uint32_t, 8>(
        parser, {Check::AttrArrayAlloc, Check::AttrAlloc, Check::AttrGrow},
        [&](SDPAttr **attrs) { list.ppstAttrs = attrs; },
        [](Parser auto &p, SDPAttr &attr) SDPLINE_INLINE_LAMBDA { return attribute(p, attr); },
        [](const Parser auto &p) { return p.is(SDP_TOK_ATTRIBUTE); },
        [&](uint32_t count) { list.ulNoOfAttrs = count; });
}

} // namespace

bool parseAttribute(Parser auto &parser, SDPAttr &attr) {
    return attribute(parser, attr);
}

// Most of a body is attributes. The loop over them and the parsers of usual values are one
// function, with the parser in registers.
bool parseAttributes(Parser auto &parser, SDPAttrList &list) {
    return onLine(parser,
                  [&](Parser auto &p) SDPLINE_INLINE_LAMBDA { return attributes(p, list); });
}

template bool parseAttributes(BodyParser &, SDPAttrList &);
template bool parseAttributes(StateParser &, SDPAttrList &);
template bool parseAttribute(StateParser &, SDPAttr &);
template bool parseValue(StateParser &, SDPAttr &, std::string_view, uint32_t);
template bool parseOther(StateParser &, SDPAttr &, std::string_view);
template bool parseTextValue(StateParser &, SDPAttr &, uint32_t);
template bool keepUnrecognised(StateParser &, SDPAttr &, std::string_view);
template bool keepNamedText(StateParser &, SDPAttr &, std::string_view, uint32_t,
                            std::string_view &);
template bool keepName(StateParser &, SDPAttr &, std::string_view);

} // namespace sdpline
