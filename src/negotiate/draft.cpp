// Bodies made of drafts, line by line, by the operations of the library.
#include "negotiate/draft.hpp"

#include <cstring>

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

namespace {

// Pointers inside packed records are written by value: a clone is returned, and a failure kept.
class Builder {
public:
    explicit Builder(SdpLine &body) : body_(body), block_(body.pstMemCp) {}

    bool run(const BodyDraft &draft) {
        copy(SDP_LINE_ORIGIN, draft.origin, body_.stOrigin);
        copy(SDP_LINE_NAME, draft.name, body_.strSessionName);
        body_.pstrSessionInfo = clone(SDP_LINE_INFO, draft.info);
        body_.pstrUri = clone(SDP_LINE_URI, draft.uri);
        body_.pstEmailList = texts(draft.emails);
        body_.pstPhoneList = texts(draft.phones);
        body_.pstConnection = clone(SDP_LINE_CONNECTION, draft.connection);
        body_.pstBandwidthList = texts(draft.bandwidths);
        times(draft.times);
        body_.pstrTimeZone = clone(SDP_LINE_ZONE, draft.zone);
        body_.pstKey = clone(SDP_LINE_KEY, draft.key);
        body_.pstAttrList = attributes(draft.attributes);
        media(draft.media);
        return good_;
    }

private:
    template <class Record>
    void copy(uint32_t line, const Record &source, Record &target) {
        good_ = good_ && SdpCopyLine(block_, line, &source, &target) == 0;
    }

    template <class Record>
    Record *clone(uint32_t line, const Record *source) {
        void *made = nullptr;
        if (source != nullptr && good_) {
            good_ = SdpCloneLine(block_, line, source, &made) == 0;
        }
        return static_cast<Record *>(made);
    }

    template <class Record>
    Record *allocate(size_t count = 1) {
        const size_t size = count * sizeof(Record);
        void *const memory =
            good_ ? block_->pfnAlloc(block_, static_cast<uint32_t>(size)) : nullptr;
        good_ = memory != nullptr;
        return good_ ? static_cast<Record *>(std::memset(memory, 0, size)) : nullptr;
    }

    SDPStringList *texts(const SDPStringList *source) {
        const uint32_t count =
            source != nullptr && source->ppstStrings != nullptr ? source->ulNoOfStrings : 0;
        if (count == 0) {
            return nullptr;
        }
        auto *const list = allocate<SDPStringList>();
        SipString **const items = allocate<SipString *>(count);
        for (uint32_t i = 0; good_ && i < count; ++i) {
            items[i] = clone(SDP_LINE_BANDWIDTH, source->ppstStrings[i]);
        }
        if (good_) {
            *list = {count, items};
        }
        return list;
    }

    void times(const SDPTimeSet *source) {
        const uint32_t count =
            source != nullptr && source->ppstTimeFields != nullptr ? source->ulNoOfTimeFields : 0;
        if (count == 0) {
            return;
        }
        SDPTimeField **const items = allocate<SDPTimeField *>(count);
        for (uint32_t i = 0; good_ && i < count; ++i) {
            items[i] = clone(SDP_LINE_TIME, source->ppstTimeFields[i]);
        }
        body_.stTimeSet = {good_ ? count : 0, items};
    }

    SDPAttrList *attributes(const Growing<SDPAttr> &source) {
        if (source.size() == 0) {
            return nullptr;
        }
        auto *const list = allocate<SDPAttrList>();
        SDPAttr **const items = allocate<SDPAttr *>(source.size());
        for (uint32_t i = 0; good_ && i < source.size(); ++i) {
            items[i] = clone(SDP_LINE_ATTRIBUTE, &source[i]);
        }
        if (good_) {
            *list = {source.size(), items};
        }
        return list;
    }

    void media(const Growing<MediaDraft> &source) {
        if (source.size() == 0) {
            return;
        }
        SDPMediaDesc **const items = allocate<SDPMediaDesc *>(source.size());
        for (uint32_t i = 0; good_ && i < source.size(); ++i) {
            items[i] = oneMedia(source[i]);
        }
        body_.stMediaSet = {good_ ? source.size() : 0, items};
    }

    SDPMediaDesc *oneMedia(const MediaDraft &source) {
        auto *const target = allocate<SDPMediaDesc>();
        if (target != nullptr) {
            copy(SDP_LINE_MEDIA, source.line, target->stMediaField);
            target->pstrMediaInfo = clone(SDP_LINE_INFO, source.info);
            target->pstConnection = clone(SDP_LINE_CONNECTION, source.connection);
            target->pstBandwidthList = texts(source.bandwidths);
            target->pstKey = clone(SDP_LINE_KEY, source.key);
            target->pstAttrList = attributes(source.attributes);
        }
        return target;
    }

    SdpLine &body_;
    SDPMemCp *block_;
    bool good_ = true;
};

} // namespace

Reason build(const BodyDraft &draft, SdpLine **body) {
    SdpLine *made = nullptr;
    if (SdpLibCreateSdp(&made) != 0) {
        return Reason::NoMemory;
    }
    SDPMemCp *const block = made->pstMemCp;
    std::memset(static_cast<void *>(made), 0, sizeof *made); // a memory service need not clear it
    made->pstMemCp = block;
    if (!Builder(*made).run(draft)) {
        SdpLibReleaseSdp(&made);
        return Reason::NoMemory;
    }
    *body = made;
    return Reason::None;
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

// Encoding only reads, but for an rtpmap record without a name that a program made itself.
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

// More bytes than a line has without its texts: names, words, numbers, line end.
constexpr size_t kLine = 96;

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
    const auto &value = attribute.unAttrValue;
    const size_t size = kLine + viewOf(attribute.pstAttrName).size();
    switch (attribute.ulAttrType) {
    case SDP_ATTR_RTPMAP: return size + value.stRtpMap.strEncodingName.ulLen;
    case SDP_ATTR_SILENCE_SUPP: return size + value.stSilenceSupp.strParams.ulLen;
    case SDP_ATTR_ECAN: return size + value.stEcan.strParams.ulLen;
    case SDP_ATTR_DES:
    case SDP_ATTR_CURR:
    case SDP_ATTR_CONF:
        return size + viewOf(value.stRsrcMgmtStatus.stPrecondition.pstrOtherPrecondition).size();
    case SDP_ATTR_FMTP:
    case SDP_ATTR_CAT:
    case SDP_ATTR_KEYWDS:
    case SDP_ATTR_TOOL:
    case SDP_ATTR_ORIENT:
    case SDP_ATTR_TYPE:
    case SDP_ATTR_CHARSET:
    case SDP_ATTR_SDPLANG:
    case SDP_ATTR_LANG:
    case SDP_ATTR_UNREC_VALUE: return size + value.strValue.ulLen;
    default: return size;
    }
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

// No less than the text of the draft has, but for the times and what only an offer has: those are
// counted as too much.
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
    // Only a body that may be too long is written to see whether it is.
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
