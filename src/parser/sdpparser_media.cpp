// The media descriptions: which lines stand below an m= line, and in which order. The m= line
// itself is in sdpparser_mediafield.cpp.
#include "parser/sdpparser.hpp"

namespace sdpline {

namespace {

SDPResult parseMediaLine(SDPMediaDesc &desc) {
    return sdpMediaField(&desc.stMediaField);
}

SDPResult parseInfo(SDPMediaDesc &desc) {
    desc.pstrMediaInfo = allocate<SipString>();
    return parseText(SDP_TOK_INFO, desc.pstrMediaInfo, Check::MediaInfoAlloc);
}

SDPResult parseMediaConnection(SDPMediaDesc &desc) {
    desc.pstConnection = allocate<SDPConnection>();
    return parseConnection(desc.pstConnection, Check::MediaConnectionAlloc);
}

SDPResult parseBandwidths(SDPMediaDesc &desc) {
    desc.pstBandwidthList = allocate<SDPStringList>();
    return parseTextList(SDP_TOK_BANDWIDTH, desc.pstBandwidthList, Check::MediaBandwidthAlloc);
}

SDPResult parseMediaKey(SDPMediaDesc &desc) {
    desc.pstKey = allocate<SDPKey>();
    return parseKey(desc.pstKey, Check::MediaKeyAlloc);
}

SDPResult parseMediaAttributes(SDPMediaDesc &desc) {
    desc.pstAttrList = allocate<SDPAttrList>();
    return parseAttributes(desc.pstAttrList, Check::MediaAttributesAlloc);
}

// The lines of a description in their order: each may be followed by those further down, by the
// next description or by the end.
struct Step {
    uint32_t kind;
    SDPResult (*parse)(SDPMediaDesc &desc);
    Check unexpected;
};

constexpr Step kSteps[] = {
    {SDP_TOK_MEDIA, parseMediaLine, Check::AfterMediaLine},
    {SDP_TOK_INFO, parseInfo, Check::AfterMediaInfo},
    {SDP_TOK_CONNECTION, parseMediaConnection, Check::AfterMediaConnection},
    {SDP_TOK_BANDWIDTH, parseBandwidths, Check::AfterMediaBandwidth},
    {SDP_TOK_KEY, parseMediaKey, Check::AfterMediaKey},
};

// The step of the current line, from `step` on; null when it is none of them.
const Step *currentStep(const Step *step) {
    for (; step != std::end(kSteps); ++step) {
        if (lexer::at(step->kind)) {
            return step;
        }
    }
    return nullptr;
}

} // namespace

} // namespace sdpline

using namespace sdpline;

extern "C" {

// 1*media-description. The count is one of 8 bits.
SDPResult sdpMediaDescriptions(SDPMediaSet *pstSet) {
    constexpr ListChecks checks = {Check::MediaArrayAlloc, Check::MediaAlloc, Check::MediaGrow};
    uint8_t count = 0;
    if (const SDPResult result = parseList<SDPMediaDesc>(
            count, checks, [&](SDPMediaDesc **descs) { pstSet->ppstMediaDescs = descs; },
            sdpMediaDescription, [] { return lexer::at(SDP_TOK_MEDIA); })) {
        return result;
    }
    pstSet->ulNoOfMediaDescs = count;
    return 0;
}

// media-field [ information ] [ connection ] *bandwidth [ key ] *attribute
SDPResult sdpMediaDescription(SDPMediaDesc *pstDesc) {
    const Step *step = kSteps;
    for (;;) {
        if (const SDPResult result = step->parse(*pstDesc)) {
            return result;
        }
        const uint32_t next = lexer::kind();
        if (next == SDP_TOK_MEDIA || next == SDP_TOK_LF) {
            return 0;
        }
        if (next == SDP_TOK_ATTRIBUTE) {
            return parseMediaAttributes(*pstDesc); // any line may follow: the caller decides
        }
        const Step *const following = currentStep(step + 1);
        if (following == nullptr) {
            return fail(step->unexpected, next);
        }
        step = following;
    }
}

} // extern "C"
