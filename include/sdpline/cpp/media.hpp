/*
 * media.hpp: reading m= and t= lines, each with the lines that follow it.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_MEDIA_HPP
#define SDPLINE_CPP_MEDIA_HPP

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "sdpline/cpp/attributes.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/values.hpp"

namespace sdpline {
inline namespace v1 {

/* ---- Media descriptions ---------------------------------------------------------------------- */

namespace internal {

inline std::span<const std::uint32_t> payloadsOf(const SDPMediaFmt &format) {
    if (format.enFmtType == SDP_FMT_OTHER) {
        return {};
    }
    const SDPRtpPayLoads &payloads = format.unMediaFmt.stRtpPayLoads;
    const bool present = payloads.pulPayLoads != nullptr;
    return {payloads.pulPayLoads, present ? payloads.ulNoOfPayLoads : 0};
}

inline Keyword<Format> formatOf(const SDPMediaFmt &format) {
    const bool other = format.enFmtType == SDP_FMT_OTHER;
    return Keyword<Format>::of(Format{format.enFmtType},
                               other ? viewOf(format.unMediaFmt.strOtherFmts) : "");
}

} // namespace internal

/* One media description. For an absent line the result is nullopt or an empty range. */
class Media {
public:
    explicit Media(const SDPMediaDesc *record) : record_(record) {}

    Keyword<MediaType> type() const {
        const SDPMedia &media = field().stMedia;
        return Keyword<MediaType>::of(MediaType{media.enMediaType},
                                      internal::viewOf(media.pstrOtherMedia));
    }
    std::uint32_t port() const { return field().ulPort; }
    std::uint32_t portCount() const { return field().ulNoOfPorts; }
    /* "RTP/AVPF" with payload numbers is Protocol::RtpAvpf, even if the decoder stored it as text.
     */
    Keyword<Protocol> protocol() const {
        const SDPMediaProto &protocol = field().stProto;
        const std::string_view other = internal::viewOf(protocol.pstrOtherProto);
        const bool listed = field().stMediaFmt.enFmtType == SDP_FMT_RTP_PAYLOADS;
        return listed && protocol.enProto == SDP_PROTO_OTHER
                   ? Keyword<Protocol>(other)
                   : Keyword<Protocol>::of(Protocol{protocol.enProto}, other);
    }
    Keyword<Format> format() const { return internal::formatOf(field().stMediaFmt); }
    /* The payload numbers; empty unless the format is Payloads. */
    std::span<const std::uint32_t> payloads() const {
        return internal::payloadsOf(field().stMediaFmt);
    }
    /* The whole m= line. */
    MediaLine line() const {
        return {type(), port(), portCount(), protocol(), format(), payloads()};
    }

    std::optional<std::string_view> info() const {
        return internal::optionalViewOf(record_->pstrMediaInfo);
    }
    /* The c= line of the media description; Body::connectionOf() uses the session's if there is
     * none. */
    std::optional<Connection> connection() const {
        return internal::connectionOf(record_->pstConnection);
    }
    Texts bandwidths() const { return Texts(record_->pstBandwidthList); }
    std::optional<std::string_view> key() const { return internal::keyOf(record_->pstKey); }
    Attributes attributes() const { return Attributes(record_->pstAttrList); }

    const SDPMediaDesc *record() const { return record_; }

    /* Whether both refer to the same media description. */
    friend bool operator==(const Media &, const Media &) = default;

private:
    const SDPMediaField &field() const { return record_->stMediaField; }

    const SDPMediaDesc *record_;
};

/* ---- Times ----------------------------------------------------------------------------------- */

namespace internal {

struct MakeMedia {
    Media operator()(const SDPMediaDesc *media) const { return Media(media); }
};

struct MakeTypedTime {
    TypedTime operator()(const SDPTimeUnit *time) const {
        return {time->ulTimeValue, TimeUnit{time->enTimeType}};
    }
};

} // namespace internal

using MediaList = ListView<SDPMediaSet, internal::MakeMedia>;

/* One r= line as a range: the repeat interval, the active duration, then the offsets. A number
 * without a unit is in seconds. */
using Repeat = ListView<SDPRepeatField, internal::MakeTypedTime>;

namespace internal {

struct MakeRepeat {
    Repeat operator()(const SDPRepeatField *repeat) const { return Repeat(repeat); }
};

} // namespace internal

using Repeats = ListView<SDPRepeatFieldSet, internal::MakeRepeat>;

/* One t= line, in NTP seconds, with the r= lines that follow it. */
class Time {
public:
    explicit Time(const SDPTimeField *record) : record_(record) {}

    std::uint32_t start() const { return record_->ulStartTime; }
    std::uint32_t stop() const { return record_->ulStopTime; }
    Repeats repeats() const { return Repeats(record_->pstRepeatFieldSet); }

    const SDPTimeField *record() const { return record_; }

private:
    const SDPTimeField *record_;
};

namespace internal {

struct MakeTime {
    Time operator()(const SDPTimeField *time) const { return Time(time); }
};

} // namespace internal

using Times = ListView<SDPTimeSet, internal::MakeTime>;

} // namespace v1
} // namespace sdpline

#endif
