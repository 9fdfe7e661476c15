// Making bodies of drafts. Each record and each text is an allocation of its own in the body's
// block, as in a decoded body, so that the operations of the library can free any of them.
#include <cstring>

#include "negotiate/draft.hpp"

namespace sdpline::negotiate {

namespace {

// Functions return records by value, because pointers inside packed records may be unaligned; a
// failure is kept in `good_`.
class Builder {
public:
    explicit Builder(SdpLine &body) : body_(body), block_(body.pstMemCp) {}

    bool run(const BodyDraft &draft) {
        body_.stOrigin = copyOf(draft.origin);
        body_.strSessionName = copyOf(draft.name);
        body_.pstrSessionInfo = given(SDP_LINE_INFO, draft.info);
        body_.pstrUri = given(SDP_LINE_URI, draft.uri);
        body_.pstEmailList = texts(draft.emails);
        body_.pstPhoneList = texts(draft.phones);
        body_.pstConnection = clone(draft.connection);
        body_.pstBandwidthList = texts(draft.bandwidths);
        times(draft.times);
        body_.pstrTimeZone = given(SDP_LINE_ZONE, draft.zone);
        body_.pstKey = given(SDP_LINE_KEY, draft.key);
        body_.pstAttrList = attributes(draft.attributes);
        media(draft.media);
        return good_;
    }

private:
    // Not cleared: the caller writes the whole record.
    template <class Record>
    Record *allocate(size_t count = 1) {
        void *const memory =
            good_ ? block_->pfnAlloc(block_, static_cast<uint32_t>(count * sizeof(Record)))
                  : nullptr;
        good_ = memory != nullptr;
        return static_cast<Record *>(memory);
    }
    template <class Record>
    Record **allocateList(size_t count) {
        Record **const items = allocate<Record *>(count);
        if (items != nullptr) {
            std::memset(static_cast<void *>(items), 0, count * sizeof(Record *));
        }
        return items;
    }

    // A line by the library's operation, which makes it or nothing.
    template <class Record>
    Record *line(uint32_t type, const Record &source) {
        void *made = nullptr;
        good_ = good_ && SdpCloneLine(block_, type, &source, &made) == 0;
        return static_cast<Record *>(made);
    }
    template <class Record>
    Record *given(uint32_t type, const Record *source) {
        return source != nullptr ? line(type, *source) : nullptr;
    }

    SipString copyOf(const SipString &source) {
        const std::string_view text = viewOf(source);
        char *const bytes = text.empty() ? nullptr : allocate<char>(text.size());
        if (bytes == nullptr) {
            return {};
        }
        std::memcpy(bytes, text.data(), text.size());
        return {source.ulLen, bytes};
    }

    // ---- Records, with deep copies of their texts

    SDPOrigin copyOf(SDPOrigin origin) {
        for (SipString *const text : {&origin.strUserName, &origin.strSessionId,
                                      &origin.strSessionVersion, &origin.strAddress}) {
            *text = copyOf(*text);
        }
        origin.stNetType.pstrOtherNetType = clone(origin.stNetType.pstrOtherNetType);
        origin.stAddrType.pstrOtherAddrType = clone(origin.stAddrType.pstrOtherAddrType);
        return origin;
    }
    SDPConnection copyOf(SDPConnection connection) {
        SDPNetType &net = connection.stNetType;
        SDPAddrType &address = connection.stAddrType;
        net.pstrOtherNetType = clone(net.pstrOtherNetType);
        address.pstrOtherAddrType = clone(address.pstrOtherAddrType);
        return connection;
    }
    // The library would copy the pointer itself of a text that a known precondition does not use.
    SDPAttr *clone(const SDPAttr &source) {
        if (!isPrecondition(source)) {
            return line(SDP_LINE_ATTRIBUTE, source);
        }
        SDPAttr known = source;
        SDPPreconditionS &type = known.unAttrValue.stRsrcMgmtStatus.stPrecondition;
        if (type.enPreconditionType != SDP_PRECONDITION_OTHER) {
            type.pstrOtherPrecondition = nullptr;
        }
        return line(SDP_LINE_ATTRIBUTE, known);
    }
    SDPMediaField copyOf(SDPMediaField line) {
        line.stMedia.pstrOtherMedia = clone(line.stMedia.pstrOtherMedia);
        line.stProto.pstrOtherProto = clone(line.stProto.pstrOtherProto);
        if (line.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            line.stMediaFmt.unMediaFmt.strOtherFmts =
                copyOf(line.stMediaFmt.unMediaFmt.strOtherFmts);
        } else {
            line.stMediaFmt.unMediaFmt.stRtpPayLoads =
                copyOf(line.stMediaFmt.unMediaFmt.stRtpPayLoads);
        }
        return line;
    }
    SDPRtpPayLoads copyOf(SDPRtpPayLoads source) {
        const uint32_t count = source.pulPayLoads != nullptr ? source.ulNoOfPayLoads : 0;
        uint32_t *const numbers = count != 0 ? allocate<uint32_t>(count) : nullptr;
        if (numbers == nullptr) {
            return {};
        }
        std::memcpy(numbers, source.pulPayLoads, count * sizeof(uint32_t));
        return {count, numbers};
    }

    template <class Record>
    Record *clone(const Record *source) {
        Record *const target = source != nullptr ? allocate<Record>() : nullptr;
        if (target != nullptr) {
            *target = copyOf(*source);
        }
        return target;
    }

    // ---- Lists

    SDPStringList *texts(const SDPStringList *source) {
        const uint32_t count =
            source != nullptr && source->ppstStrings != nullptr ? source->ulNoOfStrings : 0;
        if (count == 0) {
            return nullptr;
        }
        auto *const list = allocate<SDPStringList>();
        SipString **const items = allocateList<SipString>(count);
        for (uint32_t i = 0; good_ && i < count; ++i) {
            items[i] = clone(static_cast<const SipString *>(source->ppstStrings[i]));
        }
        if (good_) {
            *list = {count, items};
        }
        return list;
    }

    // t= lines with their r= lines.
    void times(const SDPTimeSet *source) {
        const uint32_t count =
            source != nullptr && source->ppstTimeFields != nullptr ? source->ulNoOfTimeFields : 0;
        if (count == 0) {
            return;
        }
        SDPTimeField **const items = allocateList<SDPTimeField>(count);
        for (uint32_t i = 0; good_ && i < count; ++i) {
            items[i] = line(SDP_LINE_TIME, *source->ppstTimeFields[i]);
        }
        body_.stTimeSet = {good_ ? count : 0, items};
    }

    SDPAttrList *attributes(const Growing<SDPAttr> &source) {
        if (source.size() == 0) {
            return nullptr;
        }
        auto *const list = allocate<SDPAttrList>();
        SDPAttr **const items = allocateList<SDPAttr>(source.size());
        for (uint32_t i = 0; good_ && i < source.size(); ++i) {
            items[i] = clone(source[i]);
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
        SDPMediaDesc **const items = allocateList<SDPMediaDesc>(source.size());
        for (uint32_t i = 0; good_ && i < source.size(); ++i) {
            items[i] = oneMedia(source[i]);
        }
        body_.stMediaSet = {good_ ? source.size() : 0, items};
    }

    SDPMediaDesc *oneMedia(const MediaDraft &source) {
        auto *const target = allocate<SDPMediaDesc>();
        if (target != nullptr) {
            *target = {copyOf(source.line),
                       given(SDP_LINE_INFO, source.info),
                       clone(source.connection),
                       texts(source.bandwidths),
                       given(SDP_LINE_KEY, source.key),
                       attributes(source.attributes)};
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

} // namespace sdpline::negotiate
