/*
 * words.hpp: the value codes of the records as enumerations, and the words they stand for.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_WORDS_HPP
#define SDPLINE_CPP_WORDS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sdpline/sdprecords.h"

namespace sdpline {
inline namespace v1 {

/* Every enumerator has the number of its code in sdprecords.h. A record that a program filled may
 * hold other numbers: they come through as they are, and have no word. */

/* With an "other" enumerator: see Keyword. */
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
    RtpAvpf = SDP_PROTO_RTP_AVPF, /* read as Other while SdpSetSupMedProtoRtpAvpf is off */
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

/* Without. */
enum class TimeUnit : std::uint32_t {
    Days = SDP_TIME_DAYS,
    Hours = SDP_TIME_HOURS,
    Minutes = SDP_TIME_MINUTES,
    Seconds = SDP_TIME_SECONDS
};

enum class AttributeType : std::uint32_t {
    RtpMap = SDP_ATTR_RTPMAP,
    SendRecv = SDP_ATTR_SENDRECV,
    SendOnly = SDP_ATTR_SENDONLY,
    RecvOnly = SDP_ATTR_RECVONLY,
    Inactive = SDP_ATTR_INACTIVE,
    PTime = SDP_ATTR_PTIME,
    MaxPTime = SDP_ATTR_MAXPTIME,
    FrameRate = SDP_ATTR_FRAMERATE,
    Fmtp = SDP_ATTR_FMTP,
    Cat = SDP_ATTR_CAT,
    Keywds = SDP_ATTR_KEYWDS,
    Tool = SDP_ATTR_TOOL,
    Orient = SDP_ATTR_ORIENT,
    Type = SDP_ATTR_TYPE,
    Charset = SDP_ATTR_CHARSET,
    SdpLang = SDP_ATTR_SDPLANG,
    Lang = SDP_ATTR_LANG,
    Quality = SDP_ATTR_QUALITY,
    T38FaxVersion = SDP_ATTR_T38_FAX_VERSION,
    T38MaxBitRate = SDP_ATTR_T38_MAX_BIT_RATE,
    T38FillBitRemoval = SDP_ATTR_T38_FILL_BIT_REMOVAL,
    T38TranscodingMmr = SDP_ATTR_T38_TRANSCODING_MMR,
    T38TranscodingJbig = SDP_ATTR_T38_TRANSCODING_JBIG,
    T38RateManagement = SDP_ATTR_T38_RATE_MANAGEMENT,
    T38MaxBuffer = SDP_ATTR_T38_MAX_BUFFER,
    T38MaxDatagram = SDP_ATTR_T38_MAX_DATAGRAM,
    T38UdpEc = SDP_ATTR_T38_UDP_EC,
    SilenceSupp = SDP_ATTR_SILENCE_SUPP,
    Ecan = SDP_ATTR_ECAN,
    Fax = SDP_ATTR_FAX,
    Modem = SDP_ATTR_MODEM,
    XFax = SDP_ATTR_X_FAX,
    XModem = SDP_ATTR_X_MODEM,
    OtherValue = SDP_ATTR_UNREC_VALUE,  /* any other name, with a value */
    OtherFlag = SDP_ATTR_UNREC_NOVALUE, /* any other name, without one */
    Des = SDP_ATTR_DES,
    Curr = SDP_ATTR_CURR,
    Conf = SDP_ATTR_CONF,
    IpBcp = SDP_ATTR_IPBCP,
    Setup = SDP_ATTR_SETUP
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

/* Which of the three lines of RFC 3312 a precondition is. */
enum class StatusLine : std::uint32_t {
    Desired = SDP_ATTR_DES,
    Current = SDP_ATTR_CURR,
    Confirmed = SDP_ATTR_CONF
};

namespace internal {

template <class Code>
struct Row {
    Code code;
    std::string_view word;
};

/* The words of one enumeration. Of several words for one code the first is the one that is
 * written. */
template <class Code>
inline constexpr int kRows = 0;

template <>
inline constexpr auto kRows<NetType> = std::to_array<Row<NetType>>({{NetType::In, "IN"}});
template <>
inline constexpr auto kRows<AddressType> =
    std::to_array<Row<AddressType>>({{AddressType::Ip4, "IP4"}, {AddressType::Ip6, "IP6"}});
template <>
inline constexpr auto
    kRows<MediaType> = std::to_array<Row<MediaType>>({{MediaType::Audio, "audio"},
                                                      {MediaType::Video, "video"},
                                                      {MediaType::Application, "application"},
                                                      {MediaType::Data, "data"},
                                                      {MediaType::Control, "control"},
                                                      {MediaType::Image, "image"}});
template <>
inline constexpr auto
    kRows<Protocol> = std::to_array<Row<Protocol>>({{Protocol::RtpAvp, "RTP/AVP"},
                                                    {Protocol::Udp, "udp"},
                                                    {Protocol::Udp, "UDP"},
                                                    {Protocol::Tcp, "TCP"},
                                                    {Protocol::Tcp, "tcp"},
                                                    {Protocol::Udptl, "udptl"},
                                                    {Protocol::RtpSavp, "RTP/SAVP"},
                                                    {Protocol::RtpAvpf, "RTP/AVPF"}});
template <>
inline constexpr auto kRows<Format> = std::to_array<Row<Format>>({{Format::T38, "t38"},
                                                                  {Format::T120, "t120"}});
template <>
inline constexpr auto kRows<PreconditionType> =
    std::to_array<Row<PreconditionType>>({{PreconditionType::Qos, "qos"}});
template <>
inline constexpr auto kRows<TimeUnit> = std::to_array<Row<TimeUnit>>({{TimeUnit::Days, "d"},
                                                                      {TimeUnit::Hours, "h"},
                                                                      {TimeUnit::Minutes, "m"},
                                                                      {TimeUnit::Seconds, "s"}});
template <>
inline constexpr auto
    kRows<Direction> = std::to_array<Row<Direction>>({{Direction::SendRecv, "sendrecv"},
                                                      {Direction::SendOnly, "sendonly"},
                                                      {Direction::RecvOnly, "recvonly"},
                                                      {Direction::Inactive, "inactive"}});
template <>
inline constexpr auto
    kRows<SetupRole> = std::to_array<Row<SetupRole>>({{SetupRole::Passive, "passive"},
                                                      {SetupRole::Active, "active"},
                                                      {SetupRole::ActPass, "actpass"}});
template <>
inline constexpr auto kRows<T38RateManagement> =
    std::to_array<Row<T38RateManagement>>({{T38RateManagement::LocalTcf, "localTCF"},
                                           {T38RateManagement::TransferredTcf, "transferredTCF"}});
template <>
inline constexpr auto kRows<T38ErrorCorrection> = std::to_array<Row<T38ErrorCorrection>>(
    {{T38ErrorCorrection::Fec, "t38UDPFEC"}, {T38ErrorCorrection::Redundancy, "t38UDPRedundancy"}});
template <>
inline constexpr auto kRows<EcanDirection> = std::to_array<Row<EcanDirection>>(
    {{EcanDirection::Both, "fb"}, {EcanDirection::Forward, "f"}, {EcanDirection::Backward, "b"}});
template <>
inline constexpr auto
    kRows<IpBcpType> = std::to_array<Row<IpBcpType>>({{IpBcpType::Request, "Request"},
                                                      {IpBcpType::Accepted, "Accepted"},
                                                      {IpBcpType::Confused, "Confused"},
                                                      {IpBcpType::Rejected, "Rejected"}});
template <>
inline constexpr auto kRows<StatusType> = std::to_array<Row<StatusType>>(
    {{StatusType::EndToEnd, "e2e"}, {StatusType::Local, "local"}, {StatusType::Remote, "remote"}});
template <>
inline constexpr auto
    kRows<Strength> = std::to_array<Row<Strength>>({{Strength::Mandatory, "mandatory"},
                                                    {Strength::Optional, "optional"},
                                                    {Strength::None, "none"},
                                                    {Strength::Failure, "failure"},
                                                    {Strength::Unknown, "unknown"}});
template <>
inline constexpr auto kRows<Flow> = std::to_array<Row<Flow>>({{Flow::None, "none"},
                                                              {Flow::Send, "send"},
                                                              {Flow::Recv, "recv"},
                                                              {Flow::SendRecv, "sendrecv"}});
template <>
inline constexpr auto kRows<StatusLine> = std::to_array<Row<StatusLine>>(
    {{StatusLine::Desired, "des"}, {StatusLine::Current, "curr"}, {StatusLine::Confirmed, "conf"}});

} // namespace internal

/* The word that the encoder writes for a code; empty for "other" codes and unknown numbers. */
template <class Code>
constexpr std::string_view wordOf(Code code) {
    for (const auto &row : internal::kRows<Code>) {
        if (row.code == code) {
            return row.word;
        }
    }
    return {};
}

/*
 * One of a set of words, or any other one: a code, and the text that goes with it. Made from
 * either: Keyword<MediaType>(MediaType::Audio) and Keyword<MediaType>("audio") are the same, and
 * "message" gives the code Other and keeps the text, which is only referred to.
 *
 * Keywords are compared by their text, a keyword and a code by the code.
 */
template <class Code>
class Keyword {
public:
    constexpr Keyword() = default;
    constexpr Keyword(Code code) : code_(code), text_(wordOf(code)) {}
    constexpr Keyword(std::string_view text) : code_(Code::Other), text_(text) {
        for (const auto &row : internal::kRows<Code>) {
            if (row.word == text) {
                *this = Keyword(row.code);
                return;
            }
        }
    }
    constexpr Keyword(const char *text) : Keyword(std::string_view(text)) {}

    /* As a record holds it: the code whatever the text says. */
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
