/*
 * copier.hpp: the memory block of a body, and deep copies of records into it.
 *
 * Part of sdpline.hpp; nothing here is for users.
 */
#ifndef SDPLINE_CPP_DETAIL_COPIER_HPP
#define SDPLINE_CPP_DETAIL_COPIER_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "sdpline/cpp/detail/attributes.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/result.hpp"
#include "sdpline/sdpcopy.h"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* A SipString for C operations and copies that only read it. */
inline SipString lent(std::string_view text) {
    return {static_cast<std::uint32_t>(text.size()), const_cast<char *>(text.data())};
}

/* Most texts are one word: it is copied without a call, in two parts that may overlap. */
inline void copyBytes(char *to, const char *from, std::size_t size) {
    if (size >= 8 && size <= 16) {
        std::memcpy(to, from, 8);
        std::memcpy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4 && size < 8) {
        std::memcpy(to, from, 4);
        std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
        std::memcpy(to, from, size);
    }
}

/* ---- The block of a body --------------------------------------------------------------------- */

/* The kind of line by which SdpFreeLine frees a record; all lines of one text are freed alike. */
template <class Record>
inline constexpr std::uint32_t kLineOf = SDP_LINE_COUNT;
template <>
inline constexpr std::uint32_t kLineOf<SipString> = SDP_LINE_INFO;
template <>
inline constexpr std::uint32_t kLineOf<SDPKey> = SDP_LINE_KEY;
template <>
inline constexpr std::uint32_t kLineOf<SDPOrigin> = SDP_LINE_ORIGIN;
template <>
inline constexpr std::uint32_t kLineOf<SDPConnection> = SDP_LINE_CONNECTION;
template <>
inline constexpr std::uint32_t kLineOf<SDPTimeField> = SDP_LINE_TIME;
template <>
inline constexpr std::uint32_t kLineOf<SDPRepeatField> = SDP_LINE_REPEAT;
template <>
inline constexpr std::uint32_t kLineOf<SDPAttr> = SDP_LINE_ATTRIBUTE;
template <>
inline constexpr std::uint32_t kLineOf<SDPMediaField> = SDP_LINE_MEDIA;

class Memory {
public:
    Memory() = default;
    explicit Memory(SDPMemCp *control) : control_(control) {}

    SDPMemCp *control() const { return control_; }

    /* Null when the block is exhausted. */
    void *take(std::size_t size) const {
        return size <= std::numeric_limits<std::uint32_t>::max()
                   ? control_->pfnAlloc(control_, static_cast<std::uint32_t>(size))
                   : nullptr;
    }

    /* A record that is all zero, even if the memory service does not zero its memory. */
    template <class Record>
    Record *allocate() const {
        void *const memory = take(sizeof(Record));
        return memory != nullptr ? static_cast<Record *>(std::memset(memory, 0, sizeof(Record)))
                                 : nullptr;
    }

    void release(void *memory) const {
        if (memory != nullptr) {
            control_->pfnFree(memory);
        }
    }

    /* Frees a record with all that it refers to. Null is accepted. */
    template <class Record>
    void free(Record *record) const {
        static_assert(kLineOf<Record> != SDP_LINE_COUNT);
        void *line = record;
        if (line != nullptr) {
            SdpFreeLine(control_, kLineOf<Record>, &line);
        }
    }
    inline void free(SDPMediaDesc *media) const;

    template <class List>
    void freeList(List *list) const {
        if (list != nullptr) {
            auto *const items = ListOf<List>::items(*list);
            for (std::uint32_t i = 0; items != nullptr && i < ListOf<List>::count(*list); ++i) {
                free(items[i]);
            }
            release(items);
            release(list);
        }
    }

private:
    SDPMemCp *control_ = nullptr;
};

inline void Memory::free(SDPMediaDesc *media) const {
    if (media != nullptr) {
        free(media->pstrMediaInfo);
        free(media->pstConnection);
        freeList(media->pstBandwidthList);
        free(media->pstKey);
        freeList(media->pstAttrList);
        SdpClearLine(control_, SDP_LINE_MEDIA, &media->stMediaField);
        release(media);
    }
}

/* ---- Deep copies ----------------------------------------------------------------------------- */

/*
 * Copies records into a block. As in a decode, each record and text is one allocation. After the
 * first failure ok() is false, nothing more is allocated, and all further pointers are null. An
 * incomplete copy has no pointer into the source, and can be freed.
 *
 * fill(from, to) overwrites the whole record `to`.
 */
class Copier {
public:
    explicit Copier(Memory memory) : memory_(memory) {}

    bool ok() const { return failure_ == nullptr; }
    Error error() const { return failure_(); }

    /* A new record, which `write` must write completely; null after a failure. */
    template <class Record, class Write>
    Record *make(Write write) {
        Record *const made = ok() ? static_cast<Record *>(memory_.take(sizeof(Record))) : nullptr;
        if (made != nullptr) {
            write(*made);
        } else {
            fail(noMemory);
        }
        return made;
    }

    template <class Record>
    Record *clone(const Record &from) {
        return make<Record>([&](Record &to) { fill(from, to); });
    }

    /* An attribute is cloned by the C operation, completely or not at all. */
    SDPAttr *clone(const SDPAttr &from) {
        void *made = nullptr;
        if (ok() && SdpCloneLine(memory_.control(), SDP_LINE_ATTRIBUTE, &from, &made) != 0)
            [[unlikely]] {
            fail(noMemory);
        }
        return static_cast<SDPAttr *>(made);
    }

    template <class Record>
    Record *cloneGiven(const Record *from) {
        return from != nullptr ? clone(*from) : nullptr;
    }

    /* A complete clone, or null: an incomplete one is freed. */
    template <class Record>
    Record *cloneWhole(const Record &from) {
        Record *const made = clone(from);
        if (ok()) [[likely]] {
            return made;
        }
        memory_.free(made);
        return nullptr;
    }

    void fill(const SipString &from, SipString &to) { to = text(from); }
    void fill(const SDPKey &from, SDPKey &to) { to.strKey = text(from.strKey); }

    void fill(const SDPOrigin &from, SDPOrigin &to) {
        to = {text(from.strUserName),  text(from.strSessionId),      text(from.strSessionVersion),
              netType(from.stNetType), addressType(from.stAddrType), text(from.strAddress)};
    }

    void fill(const SDPConnection &from, SDPConnection &to) {
        to = {netType(from.stNetType), addressType(from.stAddrType), from.stTptAddr, from.ulTtl,
              from.ulNoOfAddrs};
    }

    void fill(const SDPTimeUnit &from, SDPTimeUnit &to) { to = from; }
    void fill(const SDPTimeField &from, SDPTimeField &to) {
        to = {from.ulStartTime, from.ulStopTime, cloneGiven(from.pstRepeatFieldSet)};
    }

    void fill(const SDPMediaField &from, SDPMediaField &to) {
        const bool otherType = from.stMedia.enMediaType == SDP_MEDIA_OTHER;
        const bool otherProtocol = from.stProto.enProto == SDP_PROTO_OTHER;
        to = {{from.stMedia.enMediaType, otherText(otherType, from.stMedia.pstrOtherMedia)},
              from.ulPort,
              from.ulNoOfPorts,
              {from.stProto.enProto, otherText(otherProtocol, from.stProto.pstrOtherProto)},
              {from.stMediaFmt.enFmtType, {}}};
        if (from.stMediaFmt.enFmtType == SDP_FMT_OTHER) {
            to.stMediaFmt.unMediaFmt.strOtherFmts = text(from.stMediaFmt.unMediaFmt.strOtherFmts);
        } else {
            to.stMediaFmt.unMediaFmt.stRtpPayLoads =
                payloads(from.stMediaFmt.unMediaFmt.stRtpPayLoads);
        }
    }

    void fill(const SDPMediaDesc &from, SDPMediaDesc &to) {
        fillAroundAttributes(from, to);
        to.pstAttrList = cloneGiven(from.pstAttrList);
    }

    /* All but the a= lines. */
    void fillAroundAttributes(const SDPMediaDesc &from, SDPMediaDesc &to) {
        fill(from.stMediaField, to.stMediaField);
        to.pstrMediaInfo = cloneGiven(from.pstrMediaInfo);
        to.pstConnection = cloneGiven(from.pstConnection);
        to.pstBandwidthList = cloneGiven(from.pstBandwidthList);
        to.pstKey = cloneGiven(from.pstKey);
        to.pstAttrList = nullptr;
    }

    /* Lists: the array has exactly as many slots as items; it is null for none. */
    template <class List>
    requires requires { typename ListOf<List>::Item; }
    void fill(const List &from, List &to) {
        using Fields = ListOf<List>;
        using Item = typename Fields::Item;
        Item *const *const sources = Fields::items(from);
        const std::uint32_t count = sources != nullptr ? Fields::count(from) : 0;
        Item **const items = count != 0 ? array<Item *>(count) : nullptr;
        for (std::uint32_t i = 0; items != nullptr && i < count; ++i) {
            items[i] = cloneGiven(sources[i]);
        }
        Fields::set(to, items, items != nullptr ? count : 0);
    }

    /* Clones the a= lines for which wanted(const SDPAttr &) is true; null for a null list. */
    template <class Wanted>
    SDPAttrList *cloneSome(const SDPAttrList *from, Wanted wanted) {
        if (from == nullptr) {
            return nullptr;
        }
        return make<SDPAttrList>([&](SDPAttrList &to) {
            const std::uint32_t count = from->ppstAttrs != nullptr ? from->ulNoOfAttrs : 0;
            SDPAttr **const lines = count != 0 ? array<SDPAttr *>(count) : nullptr;
            std::uint32_t kept = 0;
            for (std::uint32_t i = 0; lines != nullptr && i < count; ++i) {
                if (wanted(*from->ppstAttrs[i])) {
                    lines[kept++] = clone(*from->ppstAttrs[i]);
                }
            }
            to = {kept, lines};
        });
    }

    /* An array that is not initialised; null after a failure. */
    template <class Item>
    Item *array(std::size_t count) {
        const bool fits = count <= std::numeric_limits<std::uint32_t>::max() / sizeof(Item);
        void *const made = ok() && fits ? memory_.take(count * sizeof(Item)) : nullptr;
        if (made == nullptr) {
            fail(noMemory);
        }
        return static_cast<Item *>(made);
    }

    SipString text(const SipString &from) {
        const std::string_view view = viewOf(from);
        if (view.empty()) {
            return {0, nullptr};
        }
        char *const bytes = array<char>(view.size());
        if (bytes == nullptr) {
            return {0, nullptr};
        }
        copyBytes(bytes, view.data(), view.size());
        return {static_cast<std::uint32_t>(view.size()), bytes};
    }

    SDPRtpPayLoads payloads(const SDPRtpPayLoads &from) {
        if (from.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
            fail(tooManyPayloads);
        }
        if (from.ulNoOfPayLoads == 0 || from.pulPayLoads == nullptr) {
            return {from.ulNoOfPayLoads, nullptr};
        }
        auto *const numbers = array<std::uint32_t>(from.ulNoOfPayLoads);
        if (numbers == nullptr) {
            return {0, nullptr};
        }
        std::memcpy(numbers, from.pulPayLoads, from.ulNoOfPayLoads * sizeof *numbers);
        return {from.ulNoOfPayLoads, numbers};
    }

    static Error tooManyPayloads() {
        return refusedArgument("there are more than 100 payload numbers");
    }

private:
    void fail(Error (*failure)()) { failure_ = ok() ? failure : failure_; }

    SipString *otherText(bool other, const SipString *from) {
        return other ? cloneGiven(from) : nullptr;
    }

    SDPNetType netType(const SDPNetType &from) {
        return {from.enNetType,
                otherText(from.enNetType == SDP_NETTYPE_OTHER, from.pstrOtherNetType)};
    }

    SDPAddrType addressType(const SDPAddrType &from) {
        return {from.enAddrType,
                otherText(from.enAddrType == SDP_ADDRTYPE_OTHER, from.pstrOtherAddrType)};
    }

    Memory memory_;
    Error (*failure_)() = nullptr;
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
