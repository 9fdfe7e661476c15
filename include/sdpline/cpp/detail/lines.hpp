/*
 * lines.hpp: single lines that are made of values and copied into a body.
 *
 * Part of sdpline.hpp; nothing here is for users. Only values that a decoder of this library reads
 * back as the same value are accepted, except for the payload numbers of unknown protocols.
 */
#ifndef SDPLINE_CPP_DETAIL_LINES_HPP
#define SDPLINE_CPP_DETAIL_LINES_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

#include "sdpline/cpp/detail/decode.hpp"
#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/media.hpp"
#include "sdpline/cpp/values.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

/* ---- Texts and keys -------------------------------------------------------------------------- */

inline Status setText(Memory memory, Slot<SipString> slot, std::string_view text) {
    if (const auto error = refusedText(text)) {
        return *error;
    }
    return setLine(memory, slot, lent(text));
}

inline Status setKey(Memory memory, Slot<SDPKey> slot, std::string_view text) {
    if (const auto error = refusedText(text)) {
        return *error;
    }
    return setLine(memory, slot, SDPKey{lent(text)});
}

/* ---- o= -------------------------------------------------------------------------------------- */

inline std::optional<Error> refusedOrigin(const Origin &origin) {
    if (origin.netType != NetType::In ||
        (origin.addressType != AddressType::Ip4 && origin.addressType != AddressType::Ip6)) {
        return refusedArgument("an origin is IN and IP4 or IP6");
    }
    if (isWord(origin.userName) && isNumber(origin.sessionId) && isNumber(origin.sessionVersion) &&
        isWord(origin.address)) [[likely]] {
        return std::nullopt;
    }
    const auto name = refusedWord(origin.userName);
    const auto id = refusedDigits(origin.sessionId);
    const auto version = refusedDigits(origin.sessionVersion);
    return name ? name : id ? id : version ? version : refusedWord(origin.address);
}

/* The record refers to the texts of the value. */
inline SDPOrigin recordOf(const Origin &origin) {
    return {lent(origin.userName),
            lent(origin.sessionId),
            lent(origin.sessionVersion),
            {SDP_NETTYPE_IN, nullptr},
            {static_cast<std::uint32_t>(origin.addressType.code()), nullptr},
            lent(origin.address)};
}

/* ---- c= -------------------------------------------------------------------------------------- */

inline std::optional<Error> refusedConnection(const Connection &connection) {
    const AddressType type = connection.address.isV4() ? AddressType::Ip4 : AddressType::Ip6;
    if (connection.address.empty()) {
        return refusedArgument("a connection has no address");
    }
    if (connection.netType != NetType::In ||
        (connection.addressType != type && !connection.addressType.text().empty())) {
        return refusedArgument("a connection is IN and of its address's type");
    }
    if (connection.addressCount && !connection.ttl) {
        return refusedArgument("a number of addresses needs a TTL before it");
    }
    if (connection.ttl == SDP_NOT_GIVEN || connection.addressCount == SDP_NOT_GIVEN) {
        return refusedArgument("a TTL or a number of addresses is that of none");
    }
    return std::nullopt;
}

inline SDPConnection recordOf(const Address &address) {
    const bool v4 = address.isV4();
    SDPConnection record = {{SDP_NETTYPE_IN, nullptr},
                            {v4 ? SDP_ADDRTYPE_IP4 : SDP_ADDRTYPE_IP6, nullptr},
                            {v4 ? SDP_TPTADDR_IPV4 : SDP_TPTADDR_IPV6, {}},
                            SDP_NOT_GIVEN,
                            SDP_NOT_GIVEN};
    const auto octets = address.octets();
    std::memcpy(record.stTptAddr.unTptAddr.aucIpv6, octets.data(), octets.size());
    return record;
}

inline SDPConnection recordOf(const Connection &connection) {
    SDPConnection record = recordOf(connection.address);
    record.ulTtl = connection.ttl.value_or(SDP_NOT_GIVEN);
    record.ulNoOfAddrs = connection.addressCount.value_or(SDP_NOT_GIVEN);
    return record;
}

inline Status setConnection(Memory memory, Slot<SDPConnection> slot, const Connection &connection) {
    if (const auto error = refusedConnection(connection)) {
        return *error;
    }
    return setLine(memory, slot, recordOf(connection));
}

/* An address alone. */
inline Status setConnection(Memory memory, Slot<SDPConnection> slot, const Address &address) {
    if (address.empty()) {
        return refusedArgument("a connection has no address");
    }
    return setLine(memory, slot, recordOf(address));
}

inline Status setConnection(Memory memory, Slot<SDPConnection> slot, std::string_view text) {
    auto decoded = decodeLine("v=0\no=- 0 0 IN IP4 0\ns=-\nc=", text);
    if (!decoded) {
        return decoded.error();
    }
    return setLine(memory, slot, *(*decoded)->pstConnection);
}

/* ---- r= -------------------------------------------------------------------------------------- */

inline std::optional<Error> refusedRepeat(std::span<const TypedTime> times) {
    if (times.size() < 3) {
        return refusedArgument("an r= line has an interval, a duration and at least one offset");
    }
    for (const TypedTime &time : times) {
        if (const auto error = refusedCode(time.unit)) {
            return error;
        }
    }
    return std::nullopt;
}

/* Adds an r= line after those of a t= line. */
inline Status addRepeat(Memory memory, SDPTimeField &time, std::span<const TypedTime> times) {
    if (const auto error = refusedRepeat(times)) {
        return *error;
    }
    const auto make = [times](Copier &copier, SDPRepeatField **slots) {
        slots[0] = copier.make<SDPRepeatField>([](SDPRepeatField &none) { none = {}; });
        auto **const units = copier.array<SDPTimeUnit *>(times.size());
        if (units != nullptr) {
            std::memset(units, 0, times.size() * sizeof *units);
            *slots[0] = {static_cast<std::uint32_t>(times.size()), units};
        }
        for (std::size_t i = 0; units != nullptr && i < times.size(); ++i) {
            const auto unit = static_cast<std::uint32_t>(times[i].unit);
            units[i] = copier.clone(SDPTimeUnit{unit, times[i].value});
        }
        return std::size_t{1};
    };
    const Slot<SDPRepeatFieldSet> slot(&time, offsetof(SDPTimeField, pstRepeatFieldSet));
    return ListHome<SDPRepeatFieldSet>(memory, slot)
        .insertItems(Repeats(slot.get()).size(), 1, make);
}

/* ---- m= -------------------------------------------------------------------------------------- */

/* The formats that a protocol takes. */
enum class FormatRule { Payloads, OneWord, Either };

inline FormatRule formatRuleOf(Protocol protocol) {
    switch (protocol) {
    case Protocol::RtpAvp:
    case Protocol::RtpSavp:
    case Protocol::RtpAvpf: return FormatRule::Payloads;
    case Protocol::Udp:
    case Protocol::Tcp:
    case Protocol::Udptl: return FormatRule::OneWord;
    case Protocol::Other: break;
    }
    return FormatRule::Either;
}

inline std::optional<Error> refusedFormat(const MediaLine &line) {
    const FormatRule rule = formatRuleOf(line.protocol.code());
    if (line.format == Format::Payloads) {
        if (rule == FormatRule::OneWord) {
            return refusedArgument("the protocol takes a format word, no payload numbers");
        }
        if (line.payloads.size() > SDP_MAX_PAYLOADS) {
            return Copier::tooManyPayloads();
        }
        if (line.payloads.empty() && (line.port != 0 || rule == FormatRule::Either)) {
            return refusedArgument("there are no payload numbers");
        }
        return std::nullopt;
    }
    if (rule == FormatRule::Payloads) {
        return refusedArgument("the protocol takes payload numbers, no format word");
    }
    if (line.format == Format::T120 && line.protocol != Protocol::Tcp) {
        return refusedArgument("the format t120 goes over TCP only");
    }
    return refusedToken(line.format);
}

inline std::optional<Error> refusedLine(const MediaLine &line) {
    if (const auto error = refusedToken(line.type)) {
        return error;
    }
    if (const auto error = refusedToken(line.protocol)) {
        return error;
    }
    if (line.port > 65535) {
        return refusedArgument("a port is above 65535");
    }
    return refusedFormat(line);
}

inline SDPRtpPayLoads recordOf(std::span<const std::uint32_t> payloads) {
    return {static_cast<std::uint32_t>(payloads.size()),
            const_cast<std::uint32_t *>(payloads.data())};
}

/* An m= line on the stack. It cannot be copied, because its record refers to its members. */
class MediaDraft {
public:
    MediaDraft() = default;
    MediaDraft(const MediaDraft &) = delete;
    MediaDraft &operator=(const MediaDraft &) = delete;

    SDPMediaField record = {};

    std::optional<Error> fill(const MediaLine &line) {
        if (const auto error = refusedLine(line)) {
            return error;
        }
        type_ = lent(line.type.text());
        protocol_ = lent(line.protocol.text());
        const bool otherType = line.type == MediaType::Other;
        const bool otherProtocol = line.protocol == Protocol::Other;
        record = {{static_cast<std::uint32_t>(line.type.code()), otherType ? &type_ : nullptr},
                  line.port,
                  line.portCount > 1 ? line.portCount : 1,
                  {static_cast<std::uint32_t>(line.protocol.code()),
                   otherProtocol ? &protocol_ : nullptr},
                  {static_cast<std::uint32_t>(line.format.code()), {}}};
        auto &format = record.stMediaFmt.unMediaFmt;
        if (line.format == Format::Payloads) {
            format.stRtpPayLoads = recordOf(line.payloads);
        } else if (line.format == Format::Other) {
            format.strOtherFmts = lent(line.format.text());
        }
        return std::nullopt;
    }

private:
    SipString type_ = {};
    SipString protocol_ = {};
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
