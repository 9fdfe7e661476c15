/*
 * draft.hpp: attributes on the stack, made of values, for the C operations to clone.
 *
 * Part of sdpline.hpp; nothing here is for users. What is let through is what a decoder of this
 * library reads back as the same value.
 */
#ifndef SDPLINE_CPP_DETAIL_DRAFT_HPP
#define SDPLINE_CPP_DETAIL_DRAFT_HPP

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/values.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

inline constexpr std::size_t kLongestRtpMapName = 255;
inline constexpr std::string_view kRtpMapNameEnds("\r\n\0/", 4);

template <class Code>
std::optional<Error> refusedCode(Code code) {
    return wordOf(code).empty() ? std::optional(refusedArgument("a code has no word"))
                                : std::nullopt;
}

/* The number of the static profile of that name, 0 for none: the last row that bears it counts, as
 * in the decoder. */
inline std::uint32_t profileOf(std::string_view name) {
    std::uint32_t profile = 0;
    for (std::uint32_t row = 0; row < std::size(g_aStrRtpmapProfiles); ++row) {
        if (viewOf(g_aStrRtpmapProfiles[row]) == name) {
            profile = row + 1;
        }
    }
    return profile;
}

/* One attribute over texts of the caller and its own. Each fill() answers why it will not do. */
class Draft {
public:
    Draft() = default;
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    SDPAttr record = {};

    std::optional<Error> fill(Direction direction) {
        record.ulAttrType = static_cast<std::uint32_t>(direction);
        return refusedCode(direction);
    }
    std::optional<Error> fill(SetupRole setup) { return fillCode(AttributeType::Setup, setup); }
    std::optional<Error> fill(T38RateManagement management) {
        return fillCode(AttributeType::T38RateManagement, management);
    }
    std::optional<Error> fill(T38ErrorCorrection correction) {
        return fillCode(AttributeType::T38UdpEc, correction);
    }

    std::optional<Error> fill(AttributeType type) {
        switch (type) {
        case AttributeType::SendRecv:
        case AttributeType::SendOnly:
        case AttributeType::RecvOnly:
        case AttributeType::Inactive:
        case AttributeType::Fax:
        case AttributeType::Modem:
        case AttributeType::XFax:
        case AttributeType::XModem: setType(type); return std::nullopt;
        case AttributeType::T38FillBitRemoval:
        case AttributeType::T38TranscodingMmr:
        case AttributeType::T38TranscodingJbig: return fill(type, 1);
        default: return refusedArgument("the attribute needs a value");
        }
    }

    std::optional<Error> fill(AttributeType type, std::uint32_t number) {
        switch (type) {
        case AttributeType::PTime:
        case AttributeType::MaxPTime:
        case AttributeType::FrameRate:
        case AttributeType::Quality:
        case AttributeType::T38FaxVersion:
        case AttributeType::T38MaxBitRate:
        case AttributeType::T38FillBitRemoval:
        case AttributeType::T38TranscodingMmr:
        case AttributeType::T38TranscodingJbig:
        case AttributeType::T38MaxBuffer:
        case AttributeType::T38MaxDatagram: break;
        default: return refusedArgument("the attribute's value is no number");
        }
        setType(type);
        record.unAttrValue.ulValue = number;
        return std::nullopt;
    }

    std::optional<Error> fill(AttributeType type, std::string_view text) {
        if (type < AttributeType::Fmtp || type > AttributeType::Lang) {
            return refusedArgument("the attribute's value is no text");
        }
        setType(type);
        record.unAttrValue.strValue = lent(text);
        return refusedText(text);
    }

    std::optional<Error> fill(const RtpMap &map) {
        setType(AttributeType::RtpMap);
        record.unAttrValue.stRtpMap = {map.payload, profileOf(map.name), lent(map.name),
                                       map.clockRate, std::max(map.channels, std::uint32_t{1})};
        return refusal(map.name, kRtpMapNameEnds,
                       "an encoding name holds a \"/\", a line end or a NUL", kLongestRtpMapName);
    }

    std::optional<Error> fill(const Fmtp &fmtp) {
        if (const auto error = refusedWord(fmtp.format)) {
            return error;
        }
        if (fmtp.parameters.empty()) {
            return fill(AttributeType::Fmtp, fmtp.format);
        }
        const auto [error, text] = join(fmtp.format, fmtp.parameters);
        return error ? error : fill(AttributeType::Fmtp, text);
    }

    std::optional<Error> fill(const SilenceSupp &silence) {
        setType(AttributeType::SilenceSupp);
        const auto [error, text] = join({}, silence.parameters);
        record.unAttrValue.stSilenceSupp = {silence.on ? 1u : 0u, lent(text)};
        return error;
    }

    std::optional<Error> fill(const Ecan &ecan) {
        setType(AttributeType::Ecan);
        const auto [error, text] = join({}, ecan.parameters);
        record.unAttrValue.stEcan = {ecan.on ? 1u : 0u, static_cast<std::uint32_t>(ecan.direction),
                                     lent(text)};
        return error ? error : refusedCode(ecan.direction);
    }

    std::optional<Error> fill(const Precondition &precondition) {
        record.ulAttrType = static_cast<std::uint32_t>(precondition.line);
        other_ = lent(precondition.type.text());
        const bool other = precondition.type == PreconditionType::Other;
        const bool desired = precondition.line == StatusLine::Desired;
        const Strength strength = desired ? precondition.strength : Strength::Mandatory;
        record.unAttrValue.stRsrcMgmtStatus = {
            {static_cast<std::uint32_t>(precondition.type.code()), other ? &other_ : nullptr},
            static_cast<std::uint32_t>(precondition.status),
            static_cast<std::uint32_t>(strength),
            static_cast<std::uint32_t>(precondition.flow)};
        for (const auto &error : {refusedToken(precondition.type.text()),
                                  refusedCode(precondition.line), refusedCode(precondition.status),
                                  refusedCode(precondition.flow), refusedCode(strength)}) {
            if (error) {
                return error;
            }
        }
        return std::nullopt;
    }

    std::optional<Error> fill(const IpBcp &ipBcp) {
        setType(AttributeType::IpBcp);
        record.unAttrValue.stIpBcp = {ipBcp.version, 0, 0, static_cast<std::uint32_t>(ipBcp.type)};
        return refusedCode(ipBcp.type);
    }

private:
    struct Joined {
        std::optional<Error> error{};
        std::string_view text{};
    };

    void setType(AttributeType type) { record.ulAttrType = static_cast<std::uint32_t>(type); }

    template <class Code>
    std::optional<Error> fillCode(AttributeType type, Code code) {
        setType(type);
        record.unAttrValue.ulValue = static_cast<std::uint32_t>(code);
        return refusedCode(code);
    }

    /* The word, which may be empty, one blank and the parameters, in the draft's own memory. */
    Joined join(std::string_view word, std::string_view parameters) {
        const std::size_t room = text_.size() - std::min(text_.size(), word.size() + 1);
        if (const auto error = refusedText(parameters, room)) {
            return {error, {}};
        }
        auto end = std::copy(word.begin(), word.end(), text_.begin());
        *end++ = ' ';
        end = std::copy(parameters.begin(), parameters.end(), end);
        return {{}, {text_.data(), static_cast<std::size_t>(end - text_.begin())}};
    }

    std::array<char, SDP_MAX_VALUE> text_{};
    SipString other_ = {};
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
