/*
 * draft.hpp: attributes on the stack that are made of values and copied into a body.
 *
 * Part of sdpline.hpp; nothing here is for users. Only values that a decoder of this library reads
 * back as the same value are accepted.
 */
#ifndef SDPLINE_CPP_DETAIL_DRAFT_HPP
#define SDPLINE_CPP_DETAIL_DRAFT_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "sdpline/cpp/detail/memory.hpp"
#include "sdpline/cpp/values.hpp"

namespace sdpline {
inline namespace v1 {
namespace internal {

inline constexpr std::size_t kLongestRtpMapName = 255;
inline constexpr std::string_view kRtpMapNameEnds("\r\n\0/", 4);

/* The number of the static profile of that name, 0 for none. As in the decoder, it is the last row
 * of that name. */
inline std::uint32_t profileOf(std::string_view name) {
    std::uint32_t profile = 0;
    for (std::uint32_t row = 0; row < sizeof g_aStrRtpmapProfiles / sizeof *g_aStrRtpmapProfiles;
         ++row) {
        if (viewOf(g_aStrRtpmapProfiles[row]) == name) {
            profile = row + 1;
        }
    }
    return profile;
}

/* Whether attributes of that name have a type. */
inline bool isKnownName(std::string_view name) {
    for (const tables::AttributeRow &row : tables::kAttributes) {
        if (row.has(tables::kAnyCase) ? equalIgnoringCase(row.bareName(), name)
                                      : row.bareName() == name) {
            return !name.empty();
        }
    }
    return false;
}

/* One attribute, which refers to texts of the caller or of the draft. Each fill() returns the
 * reason if the value is refused. */
class Draft {
public:
    Draft() = default;
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    SDPAttr record = {};

    std::optional<Error> fill(Direction direction) {
        record.ulAttrType = static_cast<std::uint32_t>(direction);
        return tables::isOf<tables::Shape::Direction>(record.ulAttrType) ? std::nullopt
                                                                         : refusedCode(direction);
    }
    std::optional<Error> fill(SetupRole setup) { return fillCode(AttributeType::Setup, setup); }
    std::optional<Error> fill(T38RateManagement management) {
        return fillCode(AttributeType::T38RateManagement, management);
    }
    std::optional<Error> fill(T38ErrorCorrection correction) {
        return fillCode(AttributeType::T38UdpEc, correction);
    }

    std::optional<Error> fill(AttributeType type) {
        switch (shapeOf(type)) {
        case tables::Shape::Direction:
        case tables::Shape::Flag: setType(type); return std::nullopt;
        case tables::Shape::Switch: return fill(type, 1);
        default: return refusedArgument("the attribute needs a value");
        }
    }

    std::optional<Error> fill(AttributeType type, std::uint32_t number) {
        switch (shapeOf(type)) {
        case tables::Shape::Number:
        case tables::Shape::Decimal:
        case tables::Shape::Switch: break;
        default: return refusedArgument("the attribute's value is no number");
        }
        setType(type);
        record.unAttrValue.ulValue = number;
        return std::nullopt;
    }

    std::optional<Error> fill(AttributeType type, std::string_view text) {
        if (shapeOf(type) != tables::Shape::Text) {
            return refusedArgument("the attribute's value is no text");
        }
        setType(type);
        record.unAttrValue.strValue = lent(text);
        return refusedText(text);
    }

    /* An attribute that the library stores by its name. isKnownName(name) must be false. */
    std::optional<Error> fillNamed(std::string_view name, std::string_view value) {
        setType(AttributeType::OtherValue);
        other_ = lent(name);
        record.pstAttrName = &other_;
        record.unAttrValue.strValue = lent(value);
        const auto error = refusedToken(name);
        return error ? error : refusedText(value);
    }

    std::optional<Error> fill(const RtpMap &map) {
        setType(AttributeType::RtpMap);
        record.unAttrValue.stRtpMap = {map.payload, profileOf(map.name), lent(map.name),
                                       map.clockRate, map.channels > 1 ? map.channels : 1};
        return refusal<kRtpMapNameEnds>(
            map.name, "an encoding name holds a \"/\", a line end or a NUL", kLongestRtpMapName);
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
        for (const auto &error : {refusedToken(precondition.type), refusedCode(precondition.line),
                                  refusedCode(precondition.status), refusedCode(precondition.flow),
                                  refusedCode(strength)}) {
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

    static tables::Shape shapeOf(AttributeType type) {
        return tables::shapeOf(static_cast<std::uint32_t>(type));
    }

    void setType(AttributeType type) { record.ulAttrType = static_cast<std::uint32_t>(type); }

    template <class Code>
    std::optional<Error> fillCode(AttributeType type, Code code) {
        setType(type);
        record.unAttrValue.ulValue = static_cast<std::uint32_t>(code);
        return refusedCode(code);
    }

    /* Writes the word, which may be empty, one blank and the parameters into the draft's memory. */
    Joined join(std::string_view word, std::string_view parameters) {
        const std::size_t longest = word.size() < text_.size() ? text_.size() - word.size() - 1 : 0;
        if (const auto error = refusedText(parameters, longest)) {
            return {error, {}};
        }
        word.copy(text_.data(), word.size());
        text_[word.size()] = ' ';
        parameters.copy(text_.data() + word.size() + 1, parameters.size());
        return {{}, {text_.data(), word.size() + 1 + parameters.size()}};
    }

    std::array<char, SDP_MAX_VALUE> text_; /* written by join() only */
    SipString other_ = {};
};

/* A value from which an attribute can be made. */
template <class Value>
concept MakesAttribute = requires(Draft draft, const Value &value) {
    draft.fill(value);
};

} // namespace internal
} // namespace v1
} // namespace sdpline

#endif
