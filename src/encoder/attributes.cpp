// How a= lines are written.
//
// An attribute that cannot be written never stops a body: its line ends early, the log says why.
#include "encoder/encoder.hpp"

namespace sdpline {

// T.38 flags of 0 have no line in the styles that write a flag as its bare name.
static bool isLeftOut(const SDPAttr &attr, Shape shape) {
    return shape == Shape::Switch && g_gstSdpT38OptCfg < SDP_T38_STYLE_VALUE &&
           attr.unAttrValue.ulValue == 0;
}

// Whether the name comes from the table, and the value follows it.
static constexpr bool isNamedByTable(Shape shape) {
    static_assert(Shape::Precondition < Shape::NamedText && Shape::NamedText < Shape::NameOnly);
    return shape > Shape::None && shape < Shape::Precondition;
}

static SDPResult writeTableName(Output &out, const SDPAttr &attr) {
    return out.text(&sstrSdpAttrNames[attr.ulAttrType - 1]);
}

// name ":" value, where refused appends are no failure
static SDPResult writeNamedText(Output &out, const SDPAttr &attr) {
    out.text(attr.pstAttrName);
    out.character(':');
    out.text(&attr.unAttrValue.strValue);
    return 0;
}

// An attribute that is kept by name, or a precondition: they are written whole.
static SDPResult writeWhole(Output &out, const SDPAttr &attr, Shape shape) {
    switch (shape) {
    case Shape::NamedText: return writeNamedText(out, attr);
    case Shape::NameOnly: out.text(attr.pstAttrName); return 0;
    case Shape::Precondition:
        return outOfLine<writeStatus>(out, &attr.unAttrValue.stRsrcMgmtStatus,
                                      uint32_t{attr.ulAttrType});
    default: return fail(out, Check::AttrTypeValue);
    }
}

// One of the row's words.
SDPResult writeKeyword(Output &out, const AttributeRow &row, const SDPAttr &attr) {
    const uint32_t code = attr.unAttrValue.ulValue;
    if (const KeywordRow *const word = findByCode(row.words, code)) {
        return out.word(word->text);
    }
    return row.has(kUnknownRefused) ? fail(out, Check::SetupValue, code) : 0;
}

static SDPResult writeKeywordValue(Output &out, const SDPAttr &attr) {
    const AttributeRow &row = attributeRow(attr.ulAttrType);
    const SDPResult result = writeKeyword(out, row, attr);
    return row.has(kResultDropped) ? 0 : result;
}

static SDPResult writeValue(Output &out, SDPAttr &attr, Shape shape) {
    switch (shape) {
    case Shape::Number:
    case Shape::Decimal: return out.number(attr.unAttrValue.ulValue);
    case Shape::Switch: return outOfLine<writeSwitch>(out, attr);
    case Shape::Keyword: return writeKeywordValue(out, attr);
    case Shape::Text: return out.text(&attr.unAttrValue.strValue);
    case Shape::RtpMap: writeRtpMap(out, attr); return 0;
    case Shape::SilenceSupp: outOfLine<writeSilenceSupp>(out, attr); return 0;
    case Shape::Ecan: outOfLine<writeEcan>(out, attr); return 0;
    case Shape::IpBcp: return outOfLine<writeIpBcp>(out, attr);
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
static SDPResult writeNameAndValue(Output &out, SDPAttr &attr, Shape shape) {
    if (!isNamedByTable(shape)) {
        return writeWhole(out, attr, shape);
    }
    if (const SDPResult result = writeTableName(out, attr)) {
        return logAndForward(out, Check::AttrNameAppend, result);
    }
    return writeValue(out, attr, shape);
}

SDPResult writeAttributeName(Output &out, const SDPAttr &attr, uint32_t &nameWritten) {
    const Shape shape = shapeOf(attr.ulAttrType);
    if (shape != Shape::Precondition) {
        nameWritten = 1;
    }
    return isNamedByTable(shape) ? writeTableName(out, attr) : writeWhole(out, attr, shape);
}

SDPResult writeAttributeValue(Output &out, SDPAttr &attr) {
    return writeValue(out, attr, shapeOf(attr.ulAttrType));
}

SDPResult writeAttribute(Output &out, SDPAttr &attr) {
    return writeNameAndValue(out, attr, shapeOf(attr.ulAttrType));
}

// *( a= attribute CRLF )
SDPResult writeAttributes(Output &out, const uint32_t *flag, const SDPAttrList *list) {
    for (uint32_t i = 0; i < list->ulNoOfAttrs; ++i) {
        SDPAttr &attr = *list->ppstAttrs[i];
        const Shape shape = shapeOf(attr.ulAttrType);
        if (isLeftOut(attr, shape)) {
            continue;
        }
        appendPrefix(out, flag, 'a');
        writeNameAndValue(out, attr, shape);
        out.lineEnd();
    }
    return 0;
}

} // namespace sdpline
