// The lines of free text: s= i= u= k= z=, and the repeatable e= p= b=.
#include "parser/parser.hpp"

namespace sdpline {

// <key>= 1*1023<any byte but LF> LF
bool parseText(Parser &parser, uint32_t kind, SipString &text) {
    return onLine(parser, [&](Parser &p) SDPLINE_INLINE_LAMBDA {
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
bool parseTextList(Parser &parser, uint32_t kind, SDPStringList &list) {
    return parseList<SipString, uint32_t>(
        parser, {Check::TextListAlloc, Check::TextListItemAlloc, Check::TextListGrow},
        [&](SipString **strings) { list.ppstStrings = strings; },
        [=](Parser &p, SipString &text) { return parseText(p, kind, text); },
        [=](const Parser &p) { return p.is(kind); },
        [&](uint32_t count) { list.ulNoOfStrings = count; });
}

} // namespace sdpline
