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

/* ---- The block of a body --------------------------------------------------------------------- */

/* The kind of line by which the C operations copy and free a record; all lines of one text are
 * copied and freed alike. */
template <class Record>
inline constexpr std::uint32_t kLineOf = SDP_LINE_COUNT;
template <>
inline constexpr std::uint32_t kLineOf<SipString> = SDP_LINE_NAME;
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

template <class Record>
concept IsLine = kLineOf<Record>
!= SDP_LINE_COUNT;

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

    /* Overwrites the whole line. Returns false when the block is exhausted; the target may then be
     * cleared. */
    template <IsLine Line>
    bool copy(const Line &from, Line &to) const {
        return SdpCopyLine(control_, kLineOf<Line>, &from, &to) == 0;
    }

    /* A complete clone, or null when the block is exhausted. */
    template <IsLine Line>
    Line *clone(const Line &from) const {
        void *made = nullptr;
        SdpCloneLine(control_, kLineOf<Line>, &from, &made);
        return static_cast<Line *>(made);
    }

    /* Frees a line with all that it refers to. Null is accepted. */
    template <IsLine Line>
    void free(Line *line) const {
        void *record = line;
        if (record != nullptr) {
            SdpFreeLine(control_, kLineOf<Line>, &record);
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
 * Copies lines, and what consists of lines, into a block. After the first failure ok() is false,
 * nothing more is allocated, and all further pointers are null. An incomplete copy has no pointer
 * into the source, and can be freed.
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

    template <IsLine Line>
    Line *clone(const Line &from) {
        Line *const made = ok() ? memory_.clone(from) : nullptr;
        if (made == nullptr) [[unlikely]] {
            fail(noMemory);
        }
        return made;
    }

    template <class Record>
    Record *cloneGiven(const Record *from) {
        return from != nullptr ? clone(*from) : nullptr;
    }

    void fill(const SDPTimeUnit &from, SDPTimeUnit &to) { to = from; }

    void fill(const SDPMediaField &from, SDPMediaField &to) {
        const SDPMediaFmt &format = from.stMediaFmt;
        if (format.enFmtType != SDP_FMT_OTHER &&
            format.unMediaFmt.stRtpPayLoads.ulNoOfPayLoads > SDP_MAX_PAYLOADS) {
            fail(tooManyPayloads);
        }
        if (!ok()) {
            to = {};
        } else if (!memory_.copy(from, to)) {
            fail(noMemory);
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

    Memory memory_;
    Error (*failure_)() = nullptr;
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
