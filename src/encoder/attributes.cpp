// Writing a= lines.
//
// An attribute that cannot be written does not stop the body: its line ends early, and a log entry
// says why.
#include "encoder/writers.hpp"

namespace sdpline {

// In the styles that write a T.38 flag as its bare name, a flag of 0 has no line.
static bool isLeftOut(const SDPAttr &attr, Shape shape) {
    return shape == Shape::Switch && g_gstSdpT38OptCfg < SDP_T38_STYLE_VALUE &&
           attr.unAttrValue.ulValue == 0;
}

// Whether the name is in the table, and the value is written after it.
static constexpr bool isNamedByTable(Shape shape) {
    static_assert(Shape::Precondition < Shape::NamedText && Shape::NamedText < Shape::NameOnly);
    return shape > Shape::None && shape < Shape::Precondition;
}

static SDPResult writeTableName(auto &out, const SDPAttr &attr) {
    return appendName(out, attr.ulAttrType);
}

// name ":" value. Refused appends are ignored.
static SDPResult writeNamedText(auto &out, const SDPAttr &attr) {
    out.text(attr.pstAttrName);
    out.character(':');
    out.text(&attr.unAttrValue.strValue);
    return 0;
}

// An attribute that is kept by name, or a precondition: one function writes name and value.
static SDPResult writeWhole(auto &out, const SDPAttr &attr, Shape shape) {
    switch (shape) {
    case Shape::NamedText: return writeNamedText(out, attr);
    case Shape::NameOnly: out.text(attr.pstAttrName); return 0;
    case Shape::Precondition:
        return writeStatus(out, &attr.unAttrValue.stRsrcMgmtStatus, uint32_t{attr.ulAttrType});
    default: return fail(out, Check::AttrTypeValue);
    }
}

// One of the row's words.
SDPResult writeKeyword(auto &out, const AttributeRow &row, const SDPAttr &attr) {
    const uint32_t code = attr.unAttrValue.ulValue;
    if (const KeywordRow *const word = findByCode(row.words, code)) {
        return out.word(word->text);
    }
    return row.has(kUnknownRefused) ? fail(out, Check::SetupValue, code) : 0;
}

static SDPResult writeKeywordValue(auto &out, const SDPAttr &attr) {
    const AttributeRow &row = attributeRow(attr.ulAttrType);
    const SDPResult result = writeKeyword(out, row, attr);
    return row.has(kResultDropped) ? 0 : result;
}

static SDPResult writeValue(auto &out, SDPAttr &attr, Shape shape) {
    switch (shape) {
    case Shape::Number:
    case Shape::Decimal: return out.number(attr.unAttrValue.ulValue);
    case Shape::Switch: return writeSwitch(out, attr);
    case Shape::Keyword: return writeKeywordValue(out, attr);
    case Shape::Text: return out.text(&attr.unAttrValue.strValue);
    case Shape::RtpMap: writeRtpMap(out, attr); return 0;
    case Shape::SilenceSupp: writeSilenceSupp(out, attr); return 0;
    case Shape::Ecan: writeEcan(out, attr); return 0;
    case Shape::IpBcp: return writeIpBcp(out, attr);
    case Shape::None:
    case Shape::Flag:
    case Shape::Direction:
    case Shape::Precondition:
    case Shape::NamedText:
    case Shape::NameOnly: break;
    }
    return 0;
}

// attribute = name [ ":" value ]
static SDPResult writeNameAndValue(auto &out, SDPAttr &attr, Shape shape) {
    if (!isNamedByTable(shape)) {
        return writeWhole(out, attr, shape);
    }
    if (const SDPResult result = writeTableName(out, attr)) {
        return logAndForward(out, Check::AttrNameAppend, result);
    }
    return writeValue(out, attr, shape);
}

SDPResult writeAttributeName(auto &out, const SDPAttr &attr, uint32_t &nameWritten) {
    const Shape shape = shapeOf(attr.ulAttrType);
    if (shape != Shape::Precondition) {
        nameWritten = 1;
    }
    return isNamedByTable(shape) ? writeTableName(out, attr) : writeWhole(out, attr, shape);
}

SDPResult writeAttributeValue(auto &out, SDPAttr &attr) {
    return writeValue(out, attr, shapeOf(attr.ulAttrType));
}

SDPResult writeAttribute(auto &out, SDPAttr &attr) {
    return writeNameAndValue(out, attr, shapeOf(attr.ulAttrType));
}

// *( a= attribute CRLF )
//
// Works on a local copy of the output: no other code has its address, so the compiler keeps it in
// registers from line to line.
[[gnu::noinline, gnu::flatten]] SDPResult writeAttributes(auto &out, const uint32_t *flag,
                                                          const SDPAttrList *list) {
    auto lines = out;
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        SDPAttr &attr = *list->ppstAttrs[i];
        const Shape shape = shapeOf(attr.ulAttrType);
        if (isLeftOut(attr, shape)) {
            continue;
        }
        lines.line([=, &attr](auto &line) {
            appendPrefix(line, flag, 'a');
            writeNameAndValue(line, attr, shape);
            return line.lineEnd();
        });
    }
    out = lines;
    return 0;
}

SDPLINE_LINE_WRITER(writeAttribute, SDPAttr &);
SDPLINE_LINE_WRITER(writeAttributeName, const SDPAttr &, uint32_t &);
SDPLINE_LINE_WRITER(writeAttributeValue, SDPAttr &);
SDPLINE_LINE_WRITER(writeKeyword, const AttributeRow &, const SDPAttr &);
SDPLINE_LINES_WRITER(writeAttributes, const uint32_t *, const SDPAttrList *);

} // namespace sdpline
