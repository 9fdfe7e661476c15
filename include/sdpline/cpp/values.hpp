/*
 * values.hpp: what the lines of a body say, as plain values to read and to write.
 *
 * Part of sdpline.hpp, whose conventions hold here. Texts are only referred to: in a value that a
 * body gave, they lie in the body; in a value that you fill, they must live until the call that
 * takes it returns. Every member has a default, so that you name those that matter:
 *
 *     const sdpline::Status added = media.attributes().add(
 *         sdpline::RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000});
 *
 * Values are equal when their members are, texts byte by byte, but where a value says otherwise.
 */
#ifndef SDPLINE_CPP_VALUES_HPP
#define SDPLINE_CPP_VALUES_HPP

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "sdpline/cpp/address.hpp"
#include "sdpline/cpp/detail/payloads.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/words.hpp"

namespace sdpline {
inline namespace v1 {

/* o= . Session id and version are digits of any length. The network type is "IN" and the address
 * type "IP4" or "IP6" in every text that is read; no other is written. */
struct Origin {
    std::string_view userName = "-";
    std::string_view sessionId = "0";
    std::string_view sessionVersion = "0";
    Keyword<NetType> netType = NetType::In;
    Keyword<AddressType> addressType = AddressType::Ip4;
    std::string_view address = "0.0.0.0"; /* address or host name */

    friend bool operator==(const Origin &, const Origin &) = default;
};

/* c= . An address type left empty is that of the address. A number of addresses needs a TTL before
 * it, and neither may be SDP_NOT_GIVEN. */
struct Connection {
    Keyword<NetType> netType = NetType::In;
    Keyword<AddressType> addressType{};
    Address address{};
    std::optional<std::uint32_t> ttl{};
    std::optional<std::uint32_t> addressCount{};

    friend bool operator==(const Connection &, const Connection &) = default;
};

/* One number of an r= line with its unit. */
struct TypedTime {
    std::uint32_t value = 0;
    TimeUnit unit = TimeUnit::Seconds;

    std::uint64_t seconds() const {
        switch (unit) {
        case TimeUnit::Days: return std::uint64_t{86400} * value;
        case TimeUnit::Hours: return std::uint64_t{3600} * value;
        case TimeUnit::Minutes: return std::uint64_t{60} * value;
        case TimeUnit::Seconds: break;
        }
        return value;
    }

    /* Whether both last as long: "1h" and "3600". */
    friend bool operator==(const TypedTime &one, const TypedTime &two) {
        return one.seconds() == two.seconds();
    }
};

/* ---- Values of attributes -------------------------------------------------------------------- */

/* a=rtpmap. The name has at most 255 bytes and no "/". */
struct RtpMap {
    std::uint32_t payload = 0;
    std::string_view name{};
    std::uint32_t clockRate = 0;
    std::uint32_t channels = 1; /* 0 counts as 1 */
    std::uint32_t profile = 0;  /* static profile number 1 to 35, 0 when the name is none of them;
                                   found by the library, and not looked at in a value to write */

    /* Whether both are the same encoding, whatever their payload numbers: the name in any case of
     * its letters (RFC 4855 section 3), clock rate and channels. */
    bool sameEncoding(const RtpMap &other) const {
        return equalIgnoringCase(name, other.name) && clockRate == other.clockRate &&
               (channels > 1 ? channels : 1) == (other.channels > 1 ? other.channels : 1);
    }

    /* Whether both give the same payload number to the same encoding. */
    friend bool operator==(const RtpMap &one, const RtpMap &two) {
        return one.payload == two.payload && one.sameEncoding(two);
    }
};

static_assert(sizeof g_aStrRtpmapProfiles / sizeof *g_aStrRtpmapProfiles ==
              tables::kNoStaticRow + 1);

/* What a static payload number means without an a=rtpmap line (RFC 3551 section 6): 0 is PCMU at
 * 8000 Hz, 10 is L16 at 44100 Hz over two channels. Nothing for numbers without an encoding of
 * their own. Names and clock rates are those of the library's profiles, but for 33, MP2T, whose
 * profile is called MP2. */
inline std::optional<RtpMap> staticEncoding(std::uint32_t payload) {
    const auto row = static_cast<std::uint32_t>(tables::staticRow(payload));
    if (row == tables::kNoStaticRow) {
        return std::nullopt;
    }
    return RtpMap{payload, payload == 33 ? "MP2T" : internal::viewOf(g_aStrRtpmapProfiles[row]),
                  g_aulRtpmapClockRates[row], row == tables::kTwoChannelRow ? 2u : 1u, row + 1};
}

/* a=fmtp, divided at its first blank. */
struct Fmtp {
    std::string_view format{};
    std::string_view parameters{};

    /* The format as a payload number. */
    std::optional<std::uint32_t> payload() const {
        std::uint32_t number = 0;
        const char *const end = format.data() + format.size();
        const auto [at, fault] = std::from_chars(format.data(), end, number);
        return fault == std::errc() && at == end ? std::optional(number) : std::nullopt;
    }

    friend bool operator==(const Fmtp &, const Fmtp &) = default;
};

/* a=silenceSupp. The parameters are without the blank before them, and not empty. */
struct SilenceSupp {
    bool on = false;
    std::string_view parameters = "- - - -";

    friend bool operator==(const SilenceSupp &, const SilenceSupp &) = default;
};

/* a=ecan, with parameters as above. */
struct Ecan {
    EcanDirection direction = EcanDirection::Both;
    bool on = false;
    std::string_view parameters = "-";

    friend bool operator==(const Ecan &, const Ecan &) = default;
};

/* a=ipbcp. */
struct IpBcp {
    std::uint8_t version = 1;
    IpBcpType type = IpBcpType::Request;

    friend bool operator==(const IpBcp &, const IpBcp &) = default;
};

/* a=curr, a=des and a=conf. The strength is that of a=des, and Mandatory elsewhere. */
struct Precondition {
    StatusLine line = StatusLine::Current;
    Keyword<PreconditionType> type = PreconditionType::Qos;
    StatusType status = StatusType::EndToEnd;
    Flow flow = Flow::None;
    Strength strength = Strength::Mandatory;

    friend bool operator==(const Precondition &, const Precondition &) = default;
};

/* The T.38 attributes of a list together. */
struct T38 {
    std::optional<std::uint32_t> version{};
    std::optional<std::uint32_t> maxBitRate{};
    bool fillBitRemoval = false;
    bool transcodingMmr = false;
    bool transcodingJbig = false;
    std::optional<T38RateManagement> rateManagement{};
    std::optional<std::uint32_t> maxBuffer{};
    std::optional<std::uint32_t> maxDatagram{};
    std::optional<T38ErrorCorrection> errorCorrection{};

    friend bool operator==(const T38 &, const T38 &) = default;
};

/*
 * The value of any attribute:
 *
 *     std::monostate        fax, modem, X-fax, X-modem and other names without a value
 *     Direction             sendrecv, sendonly, recvonly, inactive
 *     std::uint32_t         ptime, maxptime, framerate, quality, T.38 numbers and flags
 *     std::string_view      cat, keywds, tool, orient, type, charset, sdplang, lang, other names
 *     the others            the attribute of that name
 */
using AttributeValue = std::variant<std::monostate, Direction, std::uint32_t, std::string_view,
                                    RtpMap, Fmtp, T38RateManagement, T38ErrorCorrection,
                                    SilenceSupp, Ecan, Precondition, IpBcp, SetupRole>;

namespace internal {

inline bool sameNumbers(std::span<const std::uint32_t> one, std::span<const std::uint32_t> two) {
    bool same = one.size() == two.size();
    for (std::size_t i = 0; same && i < one.size(); ++i) {
        same = one[i] == two[i];
    }
    return same;
}

} // namespace internal

/* ---- m= -------------------------------------------------------------------------------------- */

/*
 * One m= line. RTP protocols go with the format Payloads and 1 to 100 payload numbers, none being
 * allowed for port 0; the others with one format word, "t120" over TCP only. A protocol that the
 * library does not know may have payload numbers too, of which it reads back only one; the same
 * holds for "RTP/AVPF" while SdpSetSupMedProtoRtpAvpf is off, and for both unless the decode is of
 * the RTP family (see DecodeOptions). With DecodeOptions::rtpFamily all payload numbers of words
 * such as "UDP/TLS/RTP/SAVPF" are read back.
 */
struct MediaLine {
    Keyword<MediaType> type = MediaType::Audio;
    std::uint32_t port = 0;      /* at most 65535 when written */
    std::uint32_t portCount = 1; /* 0 counts as 1 */
    Keyword<Protocol> protocol = Protocol::RtpAvp;
    Keyword<Format> format = Format::Payloads;
    std::span<const std::uint32_t> payloads{}; /* for the format Payloads */

    friend bool operator==(const MediaLine &one, const MediaLine &two) {
        return one.type == two.type && one.port == two.port &&
               (one.portCount > 1 ? one.portCount : 1) == (two.portCount > 1 ? two.portCount : 1) &&
               one.protocol == two.protocol && one.format == two.format &&
               internal::sameNumbers(one.payloads, two.payloads);
    }
};

/* ---- Values of records ----------------------------------------------------------------------- */

namespace internal {

inline Keyword<NetType> netTypeOf(const SDPNetType &type) {
    return Keyword<NetType>::of(NetType{type.enNetType}, viewOf(type.pstrOtherNetType));
}

inline Keyword<AddressType> addressTypeOf(const SDPAddrType &type) {
    return Keyword<AddressType>::of(AddressType{type.enAddrType}, viewOf(type.pstrOtherAddrType));
}

inline Origin originOf(const SDPOrigin &origin) {
    return {viewOf(origin.strUserName),       viewOf(origin.strSessionId),
            viewOf(origin.strSessionVersion), netTypeOf(origin.stNetType),
            addressTypeOf(origin.stAddrType), viewOf(origin.strAddress)};
}

inline Address addressOf(const SDPTptAddr &address) {
    switch (address.enTptAddrType) {
    case SDP_TPTADDR_IPV4: return Address::v4(std::to_array(address.unTptAddr.aucIpv4));
    case SDP_TPTADDR_IPV6: return Address::v6(std::to_array(address.unTptAddr.aucIpv6));
    default: return {};
    }
}

inline std::optional<std::uint32_t> givenOf(std::uint32_t number) {
    return number != SDP_NOT_GIVEN ? std::optional(number) : std::nullopt;
}

inline std::optional<Connection> connectionOf(const SDPConnection *connection) {
    if (connection == nullptr) {
        return std::nullopt;
    }
    return Connection{netTypeOf(connection->stNetType), addressTypeOf(connection->stAddrType),
                      addressOf(connection->stTptAddr), givenOf(connection->ulTtl),
                      givenOf(connection->ulNoOfAddrs)};
}

inline std::optional<std::string_view> keyOf(const SDPKey *key) {
    return key != nullptr ? std::optional(viewOf(key->strKey)) : std::nullopt;
}

} // namespace internal

} // namespace v1
} // namespace sdpline

#endif
