/*
 * clone.hpp: new bodies, empty ones and copies, each in a memory block of its own.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_CLONE_HPP
#define SDPLINE_CPP_DETAIL_CLONE_HPP

#include <cstddef>
#include <cstdint>

#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/memory.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* All zero but for its block, also from a memory service that does not clear what it gives. */
inline Result<BodyHandle> newBody() {
    SdpLine *line = nullptr;
    if (const SDPResult code = SdpLibCreateSdp(&line)) {
        return libraryError(code);
    }
    SDPMemCp *const block = line->pstMemCp;
    *line = {};
    line->pstMemCp = block;
    return BodyHandle(line);
}

/* Copies the parts of one body into another one's block, until the first failure. Parts that were
 * copied before it stay: they go with the block. */
class Copier {
public:
    explicit Copier(Memory memory) : memory_(memory) {}

    const Status &status() const { return status_; }

    void body(const SdpLine &from, SdpLine &to) {
        to.ulProtoVersion = from.ulProtoVersion;
        inlined(SDP_LINE_ORIGIN, from.stOrigin, to.stOrigin);
        inlined(SDP_LINE_NAME, from.strSessionName, to.strSessionName);
        to.pstrSessionInfo = line(SDP_LINE_INFO, from.pstrSessionInfo);
        to.pstrUri = line(SDP_LINE_URI, from.pstrUri);
        to.pstEmailList = list(SDP_LINE_EMAIL, from.pstEmailList);
        to.pstPhoneList = list(SDP_LINE_PHONE, from.pstPhoneList);
        to.pstConnection = line(SDP_LINE_CONNECTION, from.pstConnection);
        to.pstBandwidthList = list(SDP_LINE_BANDWIDTH, from.pstBandwidthList);
        items(from.stTimeSet, to.stTimeSet,
              [this](const SDPTimeField &time) { return memory_.clone(SDP_LINE_TIME, time); });
        to.pstrTimeZone = line(SDP_LINE_ZONE, from.pstrTimeZone);
        to.pstKey = line(SDP_LINE_KEY, from.pstKey);
        to.pstAttrList = list(SDP_LINE_ATTRIBUTE, from.pstAttrList);
        items(from.stMediaSet, to.stMediaSet,
              [this](const SDPMediaDesc &media) { return mediaDescription(media); });
    }

private:
    Result<SDPMediaDesc *> mediaDescription(const SDPMediaDesc &from) {
        auto *const to = memory_.allocate<SDPMediaDesc>();
        if (to == nullptr) {
            return noMemory();
        }
        inlined(SDP_LINE_MEDIA, from.stMediaField, to->stMediaField);
        to->pstrMediaInfo = line(SDP_LINE_INFO, from.pstrMediaInfo);
        to->pstConnection = line(SDP_LINE_CONNECTION, from.pstConnection);
        to->pstBandwidthList = list(SDP_LINE_BANDWIDTH, from.pstBandwidthList);
        to->pstKey = line(SDP_LINE_KEY, from.pstKey);
        to->pstAttrList = list(SDP_LINE_ATTRIBUTE, from.pstAttrList);
        if (!status_) {
            return status_.error();
        }
        return to;
    }

    template <class Record>
    void inlined(std::uint32_t lineType, const Record &from, Record &to) {
        if (status_) {
            status_ = memory_.replace(lineType, from, to);
        }
    }

    template <class Record>
    Record *line(std::uint32_t lineType, const Record *from) {
        if (!status_ || from == nullptr) {
            return nullptr;
        }
        Result<Record *> made = memory_.clone(lineType, *from);
        if (!made) {
            status_ = made.error();
            return nullptr;
        }
        return *made;
    }

    template <class List>
    List *list(std::uint32_t lineType, const List *from) {
        if (!status_ || from == nullptr) {
            return nullptr;
        }
        auto *const to = memory_.allocate<List>();
        if (to == nullptr) {
            status_ = noMemory();
            return nullptr;
        }
        items(*from, *to, [&](const auto &item) { return memory_.clone(lineType, item); });
        return to;
    }

    template <class List, class CloneItem>
    void items(const List &from, List &to, CloneItem cloneItem) {
        using Fields = ListOf<List>;
        using Item = typename Fields::Item;
        Item *const *const sources = Fields::items(from);
        if (status_ && sources != nullptr && Fields::count(from) != 0) {
            status_ = append(
                memory_, to, Fields::count(from),
                [&](std::size_t n) { return cloneItem(*sources[n]); }, [](Item *) {});
        }
    }

    Memory memory_;
    Status status_;
};

inline Result<BodyHandle> cloneBody(const SdpLine &from) {
    auto made = newBody();
    if (!made) {
        return made;
    }
    Copier copier(Memory((*made)->pstMemCp));
    copier.body(from, **made);
    if (!copier.status()) {
        return copier.status().error();
    }
    return made;
}

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
