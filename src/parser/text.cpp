// The lines of free text: s= i= u= k= z=, and e= p= b=, which may be repeated.
#include "parser/parser.hpp"

namespace sdpline {

// <key>= 1*1023<any byte but LF> LF
bool parseText(Parser auto &parser, uint32_t kind, SipString &text) {
    return onLine(parser, [&](Parser auto &p) SDPLINE_INLINE_LAMBDA {
        if (!p.takeToText(kind)) {
            return p.refuse(Check::TextLine);
        }
        if (p.is(SDP_TOK_LF)) {
            return p.refuse(Check::TextEmpty);
        }
        if (p.inputEnds()) {
            return p.refuse(Check::TextEnded);
        }
        std::string_view value;
        if (!p.takeRestOfLine(value, SDP_MAX_VALUE)) {
            return p.refuse(Check::TextTooLong);
        }
        return p.accept(storeText(text, value)) && p.endLine(Check::TextEnd);
    });
}

// 1*( <key>= value LF )
bool parseTextList(Parser auto &parser, uint32_t kind, SDPStringList &list) {
    return parseList<SipString, uint32_t>(
        parser, {Check::TextListAlloc, Check::TextListItemAlloc, Check::TextListGrow},
        [&](SipString **strings) { list.ppstStrings = strings; },
        [=](Parser auto &p, SipString &text) { return parseText(p, kind, text); },
        [=](const Parser auto &p) { return p.is(kind); },
        [&](uint32_t count) { list.ulNoOfStrings = count; });
}

template bool parseText(BodyParser &, uint32_t, SipString &);
template bool parseText(StateParser &, uint32_t, SipString &);
template bool parseTextList(BodyParser &, uint32_t, SDPStringList &);
template bool parseTextList(StateParser &, uint32_t, SDPStringList &);

} // namespace sdpline
