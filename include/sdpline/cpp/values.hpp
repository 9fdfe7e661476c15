/*
 * values.hpp: what the lines of a body say, as plain values to read and to write.
 *
 * Part of sdpline.hpp, whose conventions hold here. Texts are only referred to: in a value that a
 * body gave, they lie in the body; in a value that you fill, they must live until the call that
 * takes it returns. Every member has a default, so that you name those that matter:
 *
 *     const sdpline::Status added = media.attributes().add(
 *         sdpline::RtpMap{.payload = 96, .name = "AMR-WB", .clockRate = 16000});
 */
#ifndef SDPLINE_CPP_VALUES_HPP
#define SDPLINE_CPP_VALUES_HPP

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/result.hpp"
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
};

/* A binary address in network order, or none. */
class Address {
public:
    Address() = default;

    static Address v4(const std::array<std::uint8_t, 4> &octets) { return Address(octets); }
    static Address v6(const std::array<std::uint8_t, 16> &octets) { return Address(octets); }

    bool isV4() const { return size_ == 4; }
    bool isV6() const { return size_ == 16; }
    bool empty() const { return size_ == 0; }

    /* 4, 16 or no octets, inside this value. */
    std::span<const std::uint8_t> octets() const { return {octets_.data(), size_}; }

    /* As the encoder writes it: "192.0.2.1", or eight groups of four upper-case digits. */
    std::string text() const {
        std::string text;
        for (std::size_t i = 0; i < size_; ++i) {
            if (i != 0 && (size_ == 4 || i % 2 == 0)) {
                text += size_ == 4 ? '.' : ':';
            }
            if (size_ == 4) {
                internal::appendNumber(text, octets_[i]);
            } else {
                text += "0123456789ABCDEF"[octets_[i] >> 4];
                text += "0123456789ABCDEF"[octets_[i] & 15];
            }
        }
        return text;
    }

    friend bool operator==(const Address &, const Address &) = default;

private:
    template <std::size_t Size>
    explicit Address(const std::array<std::uint8_t, Size> &octets) : size_(Size) {
        std::copy(octets.begin(), octets.end(), octets_.begin());
    }

    std::array<std::uint8_t, 16> octets_{};
    std::size_t size_ = 0;
};

/* c= . An address type left empty is the address's own. A number of addresses needs a TTL before
 * it, and neither may be SDP_NOT_GIVEN. */
struct Connection {
    Keyword<NetType> netType = NetType::In;
    Keyword<AddressType> addressType{};
    Address address{};
    std::optional<std::uint32_t> ttl{};
    std::optional<std::uint32_t> addressCount{};
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
};

/* a=fmtp, taken apart at its first blank. */
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
};

/* a=silenceSupp. The parameters stand without the blank before them and must not be empty. */
struct SilenceSupp {
    bool on = false;
    std::string_view parameters = "- - - -";
};

/* a=ecan, with parameters as above. */
struct Ecan {
    EcanDirection direction = EcanDirection::Both;
    bool on = false;
    std::string_view parameters = "-";
};

/* a=ipbcp. */
struct IpBcp {
    std::uint8_t version = 1;
    IpBcpType type = IpBcpType::Request;
};

/* a=curr, a=des and a=conf. The strength is that of a=des, and Mandatory elsewhere. */
struct Precondition {
    StatusLine line = StatusLine::Current;
    Keyword<PreconditionType> type = PreconditionType::Qos;
    StatusType status = StatusType::EndToEnd;
    Flow flow = Flow::None;
    Strength strength = Strength::Mandatory;
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

/* ---- m= -------------------------------------------------------------------------------------- */

/*
 * One m= line. RTP protocols go with the format Payloads and 1 to 100 payload numbers, none being
 * allowed for port 0; the others with one format word, "t120" over TCP only. A protocol that the
 * library does not know may have payload numbers too, of which it reads back only one; the same
 * holds for "RTP/AVPF" while SdpSetSupMedProtoRtpAvpf is off. With DecodeOptions::rtpFamily all
 * payload numbers of words such as "UDP/TLS/RTP/SAVPF" are read back.
 */
struct MediaLine {
    Keyword<MediaType> type = MediaType::Audio;
    std::uint32_t port = 0;      /* at most 65535 when written */
    std::uint32_t portCount = 1; /* 0 counts as 1 */
    Keyword<Protocol> protocol = Protocol::RtpAvp;
    Keyword<Format> format = Format::Payloads;
    std::span<const std::uint32_t> payloads{}; /* for the format Payloads */
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
