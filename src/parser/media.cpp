// The media descriptions: the lines that may follow an m= line, and their order. The m= line itself
// is parsed in mediafield.cpp.
#include "parser/media.hpp"

namespace sdpline {

namespace {

// The lines of a description in their order. Each may be followed by any of those below it in the
// table, by attributes, by the next description or by the end.
struct MediaStep {
    uint32_t kind;
    Production<SDPMediaDesc> parse;
    Check unexpected;
};

constexpr MediaStep kMediaSteps[] = {
    {SDP_TOK_MEDIA,
     [](Parser auto &p, SDPMediaDesc &desc) { return parseMediaField(p, desc.stMediaField); },
     Check::AfterMediaLine},
    {SDP_TOK_INFO,
     [](Parser auto &p, SDPMediaDesc &desc) {
         return textInto<&SDPMediaDesc::pstrMediaInfo>(p, desc, SDP_TOK_INFO,
                                                       Check::MediaInfoAlloc);
     },
     Check::AfterMediaInfo},
    {SDP_TOK_CONNECTION,
     [](Parser auto &p, SDPMediaDesc &desc) {
         return connectionInto<&SDPMediaDesc::pstConnection>(p, desc, Check::MediaConnectionAlloc);
     },
     Check::AfterMediaConnection},
    {SDP_TOK_BANDWIDTH,
     [](Parser auto &p, SDPMediaDesc &desc) {
         return listInto<&SDPMediaDesc::pstBandwidthList>(p, desc, SDP_TOK_BANDWIDTH,
                                                          Check::MediaBandwidthAlloc);
     },
     Check::AfterMediaBandwidth},
    {SDP_TOK_KEY,
     [](Parser auto &p, SDPMediaDesc &desc) {
         return keyInto<&SDPMediaDesc::pstKey>(p, desc, Check::MediaKeyAlloc);
     },
     Check::AfterMediaKey},
};

// Returns the step of a line kind among `step` and those after it, or null.
const MediaStep *stepOf(uint32_t kind, const MediaStep *step) {
    for (; step != std::end(kMediaSteps); ++step) {
        if (step->kind == kind) {
            return step;
        }
    }
    return nullptr;
}

} // namespace

// media-field [ information ] [ connection ] *bandwidth [ key ] *attribute
bool parseMediaDescription(Parser auto &parser, SDPMediaDesc &desc) {
    const MediaStep *step = kMediaSteps;
    for (;;) {
        if (!step->parse(parser, desc)) {
            return false;
        }
        const uint32_t next = parser.kind;
        if (next == SDP_TOK_MEDIA || next == SDP_TOK_LF) {
            return true;
        }
        if (next == SDP_TOK_ATTRIBUTE) { // what may follow attributes is checked by the caller
            return attributesInto<&SDPMediaDesc::pstAttrList>(parser, desc,
                                                              Check::MediaAttributesAlloc);
        }
        const MediaStep *const following = stepOf(next, step + 1);
        if (following == nullptr) {
            return parser.refuse(step->unexpected, next);
        }
        step = following;
    }
}

// 1*media-description. The count has 8 bits and wraps.
bool parseMediaDescriptions(Parser auto &parser, SDPMediaSet &set) {
    return parseList<SDPMediaDesc, uint8_t>(
        parser, {Check::MediaArrayAlloc, Check::MediaAlloc, Check::MediaGrow},
        [&](SDPMediaDesc **descs) { set.ppstMediaDescs = descs; },
        [](Parser auto &p, SDPMediaDesc &desc) { return parseMediaDescription(p, desc); },
        [](const Parser auto &p) { return p.is(SDP_TOK_MEDIA); },
        [&](uint32_t count) { set.ulNoOfMediaDescs = count; });
}

template bool parseMediaDescription(StateParser &, SDPMediaDesc &);
template bool parseMediaDescriptions(BodyParser &, SDPMediaSet &);
template bool parseMediaDescriptions(StateParser &, SDPMediaSet &);

} // namespace sdpline
