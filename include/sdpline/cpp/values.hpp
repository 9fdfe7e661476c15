/*
 * values.hpp: the contents of lines as plain values, to read and to write.
 *
 * Part of sdpline.hpp, whose conventions apply. Values refer to their texts: in a value that was
 * read from a body these are texts of the body; in a value that you fill they must exist until the
 * call that takes it returns. Every member has a default, so that you need only set some of them:
 *
 *     const sdpline::Status added = media.attributes().add(
 *         sdpline::RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000});
 *
 * Values are equal if their members are equal, unless a comment says otherwise. Texts are compared
 * byte by byte.
 */
#ifndef SDPLINE_CPP_VALUES_HPP
#define SDPLINE_CPP_VALUES_HPP

#include <array>
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

/* o= . Session id and version are digits, of any number. In every text that is read the network
 * type is "IN" and the address type "IP4" or "IP6"; others are not written. */
struct Origin {
    std::string_view userName = "-";
    std::string_view sessionId = "0";
    std::string_view sessionVersion = "0";
    Keyword<NetType> netType = NetType::In;
    Keyword<AddressType> addressType = AddressType::Ip4;
    std::string_view address = "0.0.0.0"; /* address or host name */

    friend bool operator==(const Origin &, const Origin &) = default;
};

/* c= . An empty address type means that of the address. A number of addresses needs a TTL. Neither
 * may be SDP_NOT_GIVEN. */
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

    /* Whether both are the same time: "1h" and "3600" are equal. */
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
    std::uint32_t profile = 0;  /* static profile number 1 to 35, 0 if the name has none; set by the
                                   library, and ignored in a value to write */

    /* Whether both are the same encoding, with any payload numbers: the names are equal without
     * case (RFC 4855 section 3), clock rate and channels are equal. */
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

/* The encoding of a static payload number without an a=rtpmap line (RFC 3551 section 6): 0 is PCMU
 * at 8000 Hz, 10 is L16 at 44100 Hz with two channels. Nullopt for numbers without a static
 * encoding. Names and clock rates are those of the library's profiles, except for 33, MP2T, whose
 * profile is named MP2. */
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
        constexpr std::uint64_t kMost = 0xFFFFFFFF;
        std::uint64_t number = 0;
        for (const char c : format) {
            const auto digit = static_cast<unsigned char>(c - '0');
            if (digit > 9 || number > kMost) {
                return std::nullopt;
            }
            number = number * 10 + digit;
        }
        return !format.empty() && number <= kMost
                   ? std::optional(static_cast<std::uint32_t>(number))
                   : std::nullopt;
    }

    friend bool operator==(const Fmtp &, const Fmtp &) = default;
};

/* a=silenceSupp. The parameters do not have the blank before them, and must not be empty. */
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

/* a=curr, a=des and a=conf. Only a=des has a strength; for the others it is Mandatory. */
struct Precondition {
    StatusLine line = StatusLine::Current;
    Keyword<PreconditionType> type = PreconditionType::Qos;
    StatusType status = StatusType::EndToEnd;
    Flow flow = Flow::None;
    Strength strength = Strength::Mandatory;

    friend bool operator==(const Precondition &, const Precondition &) = default;
};

/* All T.38 attributes of a list. */
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
 *     the other types       the attribute of that name
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
 * One m= line. RTP protocols have the format Payloads and 1 to 100 payload numbers, or none if the
 * port is 0. Other protocols have one format word; "t120" is for TCP only. A protocol that the
 * library does not know may be written with payload numbers, but a decoder reads back only one; the
 * same applies to "RTP/AVPF" while SdpSetSupMedProtoRtpAvpf is off. With DecodeOptions::rtpFamily
 * all payload numbers of words such as "UDP/TLS/RTP/SAVPF" are read back.
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

/* ---- Reading values from records ------------------------------------------------------------- */

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
