/*
 * words.hpp: the value codes of the records as enumerations, and their words.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_WORDS_HPP
#define SDPLINE_CPP_WORDS_HPP

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "sdpline/cpp/detail/attributes.hpp"
#include "sdpline/cpp/detail/keywords.hpp"
#include "sdpline/sdprecords.h"

namespace sdpline {
inline namespace v1 {

/* Every enumerator has the number of its code in sdprecords.h. A record that a program made may
 * have other numbers: they are converted unchanged, and have no word. */

/* ---- Enumerations with an "other" code: see Keyword ---- */

/* The network type. */
enum class NetType : std::uint32_t { In = SDP_NETTYPE_IN, Other = SDP_NETTYPE_OTHER };

enum class AddressType : std::uint32_t {
    Ip4 = SDP_ADDRTYPE_IP4,
    Ip6 = SDP_ADDRTYPE_IP6,
    Other = SDP_ADDRTYPE_OTHER
};

enum class MediaType : std::uint32_t {
    Audio = SDP_MEDIA_AUDIO,
    Video = SDP_MEDIA_VIDEO,
    Application = SDP_MEDIA_APPLICATION,
    Data = SDP_MEDIA_DATA,
    Control = SDP_MEDIA_CONTROL,
    Image = SDP_MEDIA_IMAGE,
    Other = SDP_MEDIA_OTHER
};

enum class Protocol : std::uint32_t {
    RtpAvp = SDP_PROTO_RTP_AVP,
    Udp = SDP_PROTO_UDP,
    Tcp = SDP_PROTO_TCP,
    Udptl = SDP_PROTO_UDPTL,
    RtpSavp = SDP_PROTO_RTP_SAVP,
    RtpAvpf = SDP_PROTO_RTP_AVPF, /* read as Other while SdpSetSupMedProtoRtpAvpf is off,
                                     unless DecodeOptions::rtpFamily is set */
    Other = SDP_PROTO_OTHER
};

enum class Format : std::uint32_t {
    Payloads = SDP_FMT_RTP_PAYLOADS, /* no word: the payload numbers */
    T38 = SDP_FMT_T38,
    T120 = SDP_FMT_T120,
    Other = SDP_FMT_OTHER
};

enum class PreconditionType : std::uint32_t {
    Qos = SDP_PRECONDITION_QOS,
    Other = SDP_PRECONDITION_OTHER
};

/* ---- Enumerations without one ---- */

enum class TimeUnit : std::uint32_t {
    Days = SDP_TIME_DAYS,
    Hours = SDP_TIME_HOURS,
    Minutes = SDP_TIME_MINUTES,
    Seconds = SDP_TIME_SECONDS
};

/* RtpMap = SDP_ATTR_RTPMAP and so on: one enumerator for each row of detail/attributes.def. */
enum class AttributeType : std::uint32_t {
#define ATTRIBUTE(type, enumerator, name, shape, words, deviations) enumerator = (type),
#include "sdpline/cpp/detail/attributes.def"
#undef ATTRIBUTE
};

enum class Direction : std::uint32_t {
    SendRecv = SDP_ATTR_SENDRECV,
    SendOnly = SDP_ATTR_SENDONLY,
    RecvOnly = SDP_ATTR_RECVONLY,
    Inactive = SDP_ATTR_INACTIVE
};

enum class SetupRole : std::uint32_t {
    Passive = SDP_T120_PASSIVE,
    Active = SDP_T120_ACTIVE,
    ActPass = SDP_T120_ACTPASS
};

enum class T38RateManagement : std::uint32_t {
    LocalTcf = SDP_T38_RATE_LOCAL_TCF,
    TransferredTcf = SDP_T38_RATE_TRANSFERRED_TCF
};

enum class T38ErrorCorrection : std::uint32_t {
    Fec = SDP_T38_EC_FEC,
    Redundancy = SDP_T38_EC_REDUNDANCY
};

enum class EcanDirection : std::uint32_t {
    Both = SDP_ECAN_FB,
    Forward = SDP_ECAN_F,
    Backward = SDP_ECAN_B
};

enum class IpBcpType : std::uint32_t {
    Request = SDP_IPBCP_REQUEST,
    Accepted = SDP_IPBCP_ACCEPTED,
    Confused = SDP_IPBCP_CONFUSED,
    Rejected = SDP_IPBCP_REJECTED
};

enum class StatusType : std::uint32_t {
    EndToEnd = SDP_STATUS_E2E,
    Local = SDP_STATUS_LOCAL,
    Remote = SDP_STATUS_REMOTE
};

enum class Strength : std::uint32_t {
    Mandatory = SDP_STRENGTH_MANDATORY,
    Optional = SDP_STRENGTH_OPTIONAL,
    None = SDP_STRENGTH_NONE,
    Failure = SDP_STRENGTH_FAILURE,
    Unknown = SDP_STRENGTH_UNKNOWN
};

enum class Flow : std::uint32_t {
    None = SDP_DIR_NONE,
    Send = SDP_DIR_SEND,
    Recv = SDP_DIR_RECV,
    SendRecv = SDP_DIR_SENDRECV
};

/* The three lines of preconditions (RFC 3312). */
enum class StatusLine : std::uint32_t {
    Desired = SDP_ATTR_DES,
    Current = SDP_ATTR_CURR,
    Confirmed = SDP_ATTR_CONF
};

namespace internal {

using Rows = std::span<const tables::KeywordRow>;

/* The words of an enumeration, from the tables of parser and encoder; none for enumerations whose
 * words are names of attributes. */
template <class Code>
inline constexpr Rows kRows{};

template <>
inline constexpr Rows kRows<NetType> = tables::kNetTypeWords;
template <>
inline constexpr Rows kRows<AddressType> = tables::kAddrTypeWords;
template <>
inline constexpr Rows kRows<MediaType> = tables::kMediaWords;
template <>
inline constexpr Rows kRows<Protocol> = tables::kProtoWords;
template <>
inline constexpr Rows kRows<Format> = tables::kFmtWords;
template <>
inline constexpr Rows kRows<PreconditionType> = tables::kPreconditionWords;
template <>
inline constexpr Rows kRows<TimeUnit> = tables::kTimeUnitWords;
template <>
inline constexpr Rows kRows<SetupRole> = tables::kSetupWords;
template <>
inline constexpr Rows kRows<T38RateManagement> = tables::kT38RateWords;
template <>
inline constexpr Rows kRows<T38ErrorCorrection> = tables::kT38UdpEcWords;
template <>
inline constexpr Rows kRows<EcanDirection> = tables::kEcanDirWords;
template <>
inline constexpr Rows kRows<IpBcpType> = tables::kIpBcpWords;
template <>
inline constexpr Rows kRows<StatusType> = tables::kStatusWords;
template <>
inline constexpr Rows kRows<Strength> = tables::kStrengthWords;
template <>
inline constexpr Rows kRows<Flow> = tables::kDirWords;

} // namespace internal

/* The word that the encoder writes for a code; empty for "other" codes and unknown numbers. (It
 * does not compare a pointer to a row with null: for gcc with -fsanitize=undefined that is not a
 * constant expression.) */
template <class Code>
requires(!internal::kRows<Code>.empty()) constexpr std::string_view wordOf(Code code) {
    for (const tables::KeywordRow &row : internal::kRows<Code>) {
        if (row.code == static_cast<std::uint32_t>(code)) {
            return row.text;
        }
    }
    return {};
}

/* The name of an attribute without a colon; empty for the types of unknown names, and for numbers
 * that are not types. */
constexpr std::string_view wordOf(AttributeType type) {
    const bool other = type == AttributeType::OtherValue || type == AttributeType::OtherFlag;
    return other ? std::string_view()
                 : tables::attributeRow(static_cast<std::uint32_t>(type)).bareName();
}

/* The words of directions and of precondition lines are attribute names. */
constexpr std::string_view wordOf(Direction direction) {
    const auto type = static_cast<std::uint32_t>(direction);
    return tables::shapeOf(type) == tables::Shape::Direction ? wordOf(AttributeType{type})
                                                             : std::string_view();
}

constexpr std::string_view wordOf(StatusLine line) {
    const auto type = static_cast<std::uint32_t>(line);
    return tables::shapeOf(type) == tables::Shape::Precondition ? wordOf(AttributeType{type})
                                                                : std::string_view();
}

/* Whether two names are equal but for the case of ASCII letters, as names of encodings (RFC 4855
 * section 3) and of hosts are compared. */
constexpr bool equalIgnoringCase(std::string_view one, std::string_view two) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 32) : c; };
    if (one.size() != two.size() || one.empty()) {
        return one.size() == two.size();
    }
    // Names of the same size that differ, such as PCMA and PCMU, mostly differ in their last
    // letter.
    if (one.back() != two.back() && lower(one.back()) != lower(two.back())) {
        return false;
    }
    if (one == two) {
        return true;
    }
    for (std::size_t i = 0; i < one.size(); ++i) {
        if (lower(one[i]) != lower(two[i])) {
            return false;
        }
    }
    return true;
}

/*
 * One of a set of words, or any other word: a code and its text. It can be made from either:
 * Keyword<MediaType>(MediaType::Audio) and Keyword<MediaType>("audio") are equal, and "message" has
 * the code Other. A keyword refers to its text.
 *
 * Two keywords are compared by their texts, a keyword and a code by the code.
 */
template <class Code>
class Keyword {
public:
    constexpr Keyword() = default;
    constexpr Keyword(Code code) : code_(code), text_(wordOf(code)) {}
    constexpr Keyword(std::string_view text) : code_(Code::Other), text_(text) {
        for (const tables::KeywordRow &row : internal::kRows<Code>) {
            if (row.text == text) {
                *this = Keyword(Code{row.code});
                return;
            }
        }
    }
    constexpr Keyword(const char *text) : Keyword(std::string_view(text)) {}

    /* From a record: the code is not changed by the text, which is used for the code Other only. */
    static constexpr Keyword of(Code code, std::string_view otherText) {
        Keyword keyword(code);
        if (code == Code::Other) {
            keyword.text_ = otherText;
        }
        return keyword;
    }

    constexpr Code code() const { return code_; }
    constexpr std::string_view text() const { return text_; }

    friend constexpr bool operator==(const Keyword &one, const Keyword &two) {
        return one.text_ == two.text_;
    }
    friend constexpr bool operator==(const Keyword &one, Code code) { return one.code_ == code; }

private:
    Code code_ = Code::Other;
    std::string_view text_;
};

/* The direction as the other side sees it. */
constexpr Direction reversed(Direction direction) {
    switch (direction) {
    case Direction::SendOnly: return Direction::RecvOnly;
    case Direction::RecvOnly: return Direction::SendOnly;
    case Direction::SendRecv:
    case Direction::Inactive: break;
    }
    return direction;
}

} // namespace v1
} // namespace sdpline

#endif
