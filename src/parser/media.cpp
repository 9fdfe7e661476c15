// The media descriptions: which lines stand below an m= line, and in which order. The m= line
// itself is in mediafield.cpp.
#include "parser/parser.hpp"

namespace sdpline {

namespace {

SDPResult mediaLine(Lexer &lexer, SDPMediaDesc &desc) {
    return parseMediaField(lexer, desc.stMediaField);
}

SDPResult infoLine(Lexer &lexer, SDPMediaDesc &desc) {
    desc.pstrMediaInfo = allocateFor<SipString>(Check::MediaInfoAlloc);
    return parseInto(desc.pstrMediaInfo, Check::MediaInfoAlloc,
                     [&](SipString &text) { return parseText(lexer, SDP_TOK_INFO, text); });
}

SDPResult connectionLine(Lexer &lexer, SDPMediaDesc &desc) {
    desc.pstConnection = allocateFor<SDPConnection>(Check::MediaConnectionAlloc);
    return parseInto(desc.pstConnection, Check::MediaConnectionAlloc,
                     [&](SDPConnection &connection) { return parseConnection(lexer, connection); });
}

SDPResult bandwidthLines(Lexer &lexer, SDPMediaDesc &desc) {
    desc.pstBandwidthList = allocateFor<SDPStringList>(Check::MediaBandwidthAlloc);
    return parseInto(desc.pstBandwidthList, Check::MediaBandwidthAlloc, [&](SDPStringList &list) {
        return parseTextList(lexer, SDP_TOK_BANDWIDTH, list);
    });
}

SDPResult keyLine(Lexer &lexer, SDPMediaDesc &desc) {
    desc.pstKey = allocateFor<SDPKey>(Check::MediaKeyAlloc);
    return parseInto(desc.pstKey, Check::MediaKeyAlloc,
                     [&](SDPKey &key) { return parseText(lexer, SDP_TOK_KEY, key.strKey); });
}

SDPResult attributeLines(Lexer &lexer, SDPMediaDesc &desc) {
    desc.pstAttrList = allocateFor<SDPAttrList>(Check::MediaAttributesAlloc);
    return parseInto(desc.pstAttrList, Check::MediaAttributesAlloc,
                     [&](SDPAttrList &list) { return parseAttributes(lexer, list); });
}

// The lines of a description in their order: each may be followed by those further down, by the
// next description or by the end.
struct Step {
    uint32_t kind;
    SDPResult (*parse)(Lexer &lexer, SDPMediaDesc &desc);
    Check unexpected;
};

constexpr Step kSteps[] = {
    {SDP_TOK_MEDIA, mediaLine, Check::AfterMediaLine},
    {SDP_TOK_INFO, infoLine, Check::AfterMediaInfo},
    {SDP_TOK_CONNECTION, connectionLine, Check::AfterMediaConnection},
    {SDP_TOK_BANDWIDTH, bandwidthLines, Check::AfterMediaBandwidth},
    {SDP_TOK_KEY, keyLine, Check::AfterMediaKey},
};

// The step of a line kind, from `step` on; null when it is none of them.
const Step *stepOf(uint32_t kind, const Step *step) {
    for (; step != std::end(kSteps); ++step) {
        if (step->kind == kind) {
            return step;
        }
    }
    return nullptr;
}

// media-field [ information ] [ connection ] *bandwidth [ key ] *attribute
SDPResult parseMediaDescription(Lexer &lexer, SDPMediaDesc &desc) {
    const Step *step = kSteps;
    for (;;) {
        if (const SDPResult result = step->parse(lexer, desc)) {
            return result;
        }
        const uint32_t next = lexer.kind;
        if (next == SDP_TOK_MEDIA || next == SDP_TOK_LF) {
            return 0;
        }
        if (next == SDP_TOK_ATTRIBUTE) {
            return attributeLines(lexer, desc); // any line may follow: the caller decides
        }
        const Step *const following = stepOf(next, step + 1);
        if (following == nullptr) {
            return fail(step->unexpected, next);
        }
        step = following;
    }
}

} // namespace

// 1*media-description. The count is one of 8 bits.
SDPResult parseMediaDescriptions(Lexer &lexer, SDPMediaSet &set) {
    constexpr ListChecks checks = {Check::MediaArrayAlloc, Check::MediaAlloc, Check::MediaGrow};
    uint8_t count = 0;
    if (const SDPResult result = parseList<SDPMediaDesc>(
            lexer, count, checks, [&](SDPMediaDesc **descs) { set.ppstMediaDescs = descs; },
            parseMediaDescription, [](const Lexer &at) { return at.is(SDP_TOK_MEDIA); })) {
        return result;
    }
    set.ulNoOfMediaDescs = count;
    return 0;
}

} // namespace sdpline

using namespace sdpline;

extern "C" {

SDPResult sdpMediaDescriptions(SDPMediaSet *pstSet) {
    return onState([=](Lexer &lexer) { return parseMediaDescriptions(lexer, *pstSet); });
}

SDPResult sdpMediaDescription(SDPMediaDesc *pstDesc) {
    return onState([=](Lexer &lexer) { return parseMediaDescription(lexer, *pstDesc); });
}

} // extern "C"
