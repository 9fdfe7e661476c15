// Drafts of bodies, and finishing them.
#include "negotiate/draft.hpp"

#include "negotiate/origin.hpp"

namespace sdpline::negotiate {

SDPAttr numberLine(uint32_t type, uint32_t value) {
    SDPAttr attribute = {};
    attribute.ulAttrType = type;
    attribute.unAttrValue.ulValue = value;
    return attribute;
}

SDPAttr flagLine(uint32_t type) {
    SDPAttr attribute = {};
    attribute.ulAttrType = type;
    return attribute;
}

SDPAttr textLine(Arena &arena, uint32_t type, const Text &value) {
    SDPAttr attribute = {};
    attribute.ulAttrType = type;
    attribute.unAttrValue.strValue = lent(arena.copy(value.view()));
    arena.tooLong = arena.tooLong || value.cut();
    return attribute;
}

namespace {

SipString *nameOf(Arena &arena, std::string_view name) {
    auto *const text = arena.make<SipString>();
    if (text != nullptr) {
        *text = lent(name);
    }
    return text;
}

} // namespace

SDPAttr otherLine(Arena &arena, std::string_view name, const Text &value) {
    SDPAttr attribute = textLine(arena, SDP_ATTR_UNREC_VALUE, value);
    attribute.pstAttrName = nameOf(arena, name);
    return attribute;
}

SDPAttr otherFlag(Arena &arena, std::string_view name) {
    SDPAttr attribute = flagLine(SDP_ATTR_UNREC_NOVALUE);
    attribute.pstAttrName = nameOf(arena, name);
    return attribute;
}

void draftSession(const SdpLine &body, BodyDraft &draft) {
    draft.origin = body.stOrigin;
    draft.name = body.strSessionName;
    draft.info = body.pstrSessionInfo;
    draft.uri = body.pstrUri;
    draft.emails = body.pstEmailList;
    draft.phones = body.pstPhoneList;
    draft.connection = body.pstConnection;
    draft.bandwidths = body.pstBandwidthList;
    draft.times = &body.stTimeSet;
    draft.zone = body.pstrTimeZone;
    draft.key = body.pstKey;
    for (const SDPAttr *const attribute : attributesOf(body.pstAttrList)) {
        draft.attributes.add(*attribute);
    }
}

MediaDraft draftOf(const SDPMediaDesc &media, Arena &arena) {
    MediaDraft draft(arena);
    draft.line = media.stMediaField;
    draft.info = media.pstrMediaInfo;
    draft.connection = media.pstConnection;
    draft.bandwidths = media.pstBandwidthList;
    draft.key = media.pstKey;
    for (const SDPAttr *const attribute : attributesOf(media.pstAttrList)) {
        draft.attributes.add(*attribute);
    }
    return draft;
}

Reason copyBody(const SdpLine &body, SdpLine **copy) {
    Arena arena;
    BodyDraft draft(arena);
    draftSession(body, draft);
    for (const SDPMediaDesc *const media : mediaOf(body)) {
        draft.media.add(draftOf(*media, arena));
    }
    return arena.failed() ? Reason::NoMemory : build(draft, copy);
}

// Encoding does not change a record, except an rtpmap record without a name, which no decode makes.
std::string_view textOf(const SdpLine &body, Arena &arena) {
    const uint32_t limit = SdpGetMaxBodySize();
    auto *const buffer = static_cast<uint8_t *>(arena.take(limit));
    uint32_t size = 0;
    if (buffer == nullptr ||
        SdpLibSerializeSdp(const_cast<SdpLine *>(&body), buffer, limit, &size) != 0) {
        return {};
    }
    return {reinterpret_cast<const char *>(buffer), size};
}

namespace {

// Upper bounds of the bytes that a line has without its texts: for any line, and for a line that
// has only a name and a text ("a=charset:").
constexpr size_t kLine = 72;
constexpr size_t kTextLine = 16;

size_t sizeOf(const SipString *text) {
    return text != nullptr ? kLine + text->ulLen : 0;
}

size_t sizeOf(const SDPStringList *list) {
    size_t size = 0;
    const uint32_t count =
        list != nullptr && list->ppstStrings != nullptr ? list->ulNoOfStrings : 0;
    for (uint32_t i = 0; i < count; ++i) {
        size += sizeOf(list->ppstStrings[i]);
    }
    return size;
}

size_t sizeOf(const SDPAttr &attribute) {
    const SipString *const text = textIn(attribute);
    const size_t size = text != nullptr ? text->ulLen : 0;
    if (attribute.ulAttrType >= SDP_ATTR_FMTP && attribute.ulAttrType <= SDP_ATTR_LANG) {
        return kTextLine + size;
    }
    const SipString *const name = attribute.pstAttrName;
    return name != nullptr ? kTextLine + size + name->ulLen : kLine + size;
}

size_t sizeOf(const Growing<SDPAttr> &attributes) {
    size_t size = 0;
    for (const SDPAttr &one : attributes) {
        size += sizeOf(one);
    }
    return size;
}

size_t sizeOf(const MediaDraft &media) {
    const SDPMediaField &line = media.line;
    const SDPMediaFmt &format = line.stMediaFmt;
    const size_t formats = format.enFmtType == SDP_FMT_OTHER
                               ? format.unMediaFmt.strOtherFmts.ulLen
                               : size_t{11} * format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads;
    return 2 * kLine + viewOf(line.stMedia.pstrOtherMedia).size() +
           viewOf(line.stProto.pstrOtherProto).size() + formats + sizeOf(media.info) +
           sizeOf(media.bandwidths) + (media.key != nullptr ? sizeOf(&media.key->strKey) : 0) +
           sizeOf(media.attributes);
}

// An upper bound of the size of the draft's text. Lines that only an offer has, and r= lines, are
// not measured: with them the result is above every limit.
size_t sizeOf(const BodyDraft &draft) {
    const SDPOrigin &origin = draft.origin;
    const bool plain = draft.uri == nullptr && draft.emails == nullptr && draft.phones == nullptr &&
                       draft.key == nullptr && draft.zone == nullptr;
    size_t size = plain ? 4 * kLine + origin.strUserName.ulLen + origin.strSessionId.ulLen +
                              origin.strSessionVersion.ulLen + origin.strAddress.ulLen +
                              draft.name.ulLen
                        : size_t{SDP_MAX_LONG_BODY} + 1;
    const SDPTimeSet *const times = draft.times;
    for (uint32_t i = 0; times != nullptr && i < times->ulNoOfTimeFields; ++i) {
        size += times->ppstTimeFields[i]->pstRepeatFieldSet != nullptr ? SDP_MAX_LONG_BODY : kLine;
    }
    for (const MediaDraft &media : draft.media) {
        size += sizeOf(media);
    }
    return size + sizeOf(draft.info) + sizeOf(draft.bandwidths) + sizeOf(draft.attributes);
}

} // namespace

std::string_view afterOrigin(std::string_view text) {
    const std::string_view lineEnd = viewOf(SdpGetCrlfString(0));
    const size_t line = std::min(text.find("o="), text.size());
    const size_t end = std::min(text.find(lineEnd, line), text.size());
    return after(text, end);
}

Reason finish(const BodyDraft &draft, const SdpLine *previous, Report &report, SdpLine **body) {
    if (report.arena.failed() || report.arena.tooLong) {
        return report.arena.failed() ? Reason::NoMemory : Reason::TooLong;
    }
    SdpLine *made = nullptr;
    Reason reason = build(draft, &made);
    if (reason == Reason::None && previous != nullptr) {
        reason = continueOrigin(*previous, *made, report);
    }
    // Only a body that may be too long is written in order to measure it.
    if (reason == Reason::None && sizeOf(draft) > SdpGetMaxBodySize() &&
        textOf(*made, report.arena).empty()) {
        reason = Reason::TooLong;
    }
    if (report.arena.failed()) {
        reason = Reason::NoMemory;
    }
    if (reason != Reason::None) {
        SdpLibReleaseSdp(&made);
        return reason;
    }
    *body = made;
    return Reason::None;
}

} // namespace sdpline::negotiate
