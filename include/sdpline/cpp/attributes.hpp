/*
 * attributes.hpp: a= lines, to look at.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_ATTRIBUTES_HPP
#define SDPLINE_CPP_ATTRIBUTES_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <variant>

#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/values.hpp"
#include "sdpline/cpp/words.hpp"

namespace sdpline {
inline namespace v1 {

/* The name of an attribute without a colon; empty for the types of other names, and for numbers
 * that are no type. */
inline std::string_view wordOf(AttributeType type) {
    const auto row = static_cast<std::uint32_t>(type) - 1;
    const bool named = row < std::size(sstrSdpAttrNames) && type != AttributeType::OtherValue &&
                       type != AttributeType::OtherFlag;
    std::string_view name = named ? internal::viewOf(sstrSdpAttrNames[row]) : "";
    if (name.ends_with(':')) {
        name.remove_suffix(1);
    }
    return name;
}

namespace internal {

/* The one blank between a word and what follows it. */
inline std::string_view withoutBlank(std::string_view text) {
    return text.starts_with(' ') ? text.substr(1) : text;
}

inline Fmtp fmtpOf(std::string_view text) {
    const std::size_t end = text.find(' ');
    return end != std::string_view::npos ? Fmtp{text.substr(0, end), text.substr(end + 1)}
                                         : Fmtp{text, {}};
}

inline RtpMap rtpMapOf(const SDPRtpMapAttr &map) {
    return {map.ulPayloadType, viewOf(map.strEncodingName), map.ulClockRate, map.ulEncodingParams,
            map.ulEncodingId};
}

inline Precondition preconditionOf(std::uint32_t type, const SDPRsrcMgmtStatus &status) {
    return {
        StatusLine{type},
        Keyword<PreconditionType>::of(PreconditionType{status.stPrecondition.enPreconditionType},
                                      viewOf(status.stPrecondition.pstrOtherPrecondition)),
        StatusType{status.enStatusType}, Flow{status.enDirTag}, Strength{status.enStrengthTag}};
}

inline AttributeValue attributeValueOf(const SDPAttr &attribute) {
    const auto &value = attribute.unAttrValue;
    const std::uint32_t type = attribute.ulAttrType;
    switch (AttributeType{type}) {
    case AttributeType::RtpMap: return rtpMapOf(value.stRtpMap);
    case AttributeType::SendRecv:
    case AttributeType::SendOnly:
    case AttributeType::RecvOnly:
    case AttributeType::Inactive: return Direction{type};
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
    case AttributeType::T38MaxDatagram: return std::uint32_t{value.ulValue};
    case AttributeType::Fmtp: return fmtpOf(viewOf(value.strValue));
    case AttributeType::Cat:
    case AttributeType::Keywds:
    case AttributeType::Tool:
    case AttributeType::Orient:
    case AttributeType::Type:
    case AttributeType::Charset:
    case AttributeType::SdpLang:
    case AttributeType::Lang:
    case AttributeType::OtherValue: return viewOf(value.strValue);
    case AttributeType::T38RateManagement: return T38RateManagement{value.ulValue};
    case AttributeType::T38UdpEc: return T38ErrorCorrection{value.ulValue};
    case AttributeType::SilenceSupp:
        return SilenceSupp{value.stSilenceSupp.bOn != 0,
                           withoutBlank(viewOf(value.stSilenceSupp.strParams))};
    case AttributeType::Ecan:
        return Ecan{EcanDirection{value.stEcan.enEcanDir}, value.stEcan.bOn != 0,
                    withoutBlank(viewOf(value.stEcan.strParams))};
    case AttributeType::Des:
    case AttributeType::Curr:
    case AttributeType::Conf: return preconditionOf(type, value.stRsrcMgmtStatus);
    case AttributeType::IpBcp:
        return IpBcp{value.stIpBcp.ucVersion, IpBcpType{value.stIpBcp.ucType}};
    case AttributeType::Setup: return SetupRole{value.enT120Mode};
    case AttributeType::Fax:
    case AttributeType::Modem:
    case AttributeType::XFax:
    case AttributeType::XModem:
    case AttributeType::OtherFlag: break;
    }
    return std::monostate();
}

} // namespace internal

/* One a= line. */
class Attribute {
public:
    explicit Attribute(const SDPAttr *record) : record_(record) {}

    AttributeType type() const { return AttributeType{record_->ulAttrType}; }

    /* Without a colon. */
    std::string_view name() const {
        const bool other =
            type() == AttributeType::OtherValue || type() == AttributeType::OtherFlag;
        return other ? internal::viewOf(record_->pstAttrName) : wordOf(type());
    }

    AttributeValue value() const { return internal::attributeValueOf(*record_); }

    /* The value when it is a T, one of the alternatives of AttributeValue. */
    template <class T>
    std::optional<T> as() const {
        const AttributeValue held = value();
        const T *const found = std::get_if<T>(&held);
        return found != nullptr ? std::optional<T>(*found) : std::nullopt;
    }

    /* The line behind "a=", as the encoder writes it: "ptime:20". */
    Result<std::string> text() const {
        std::uint32_t prefix = 0;
        SipRefString *line = nullptr;
        if (const SDPResult code = SdpLibEncodeSdpLine(&prefix, SDP_LINE_ATTRIBUTE,
                                                       const_cast<SDPAttr *>(record_), &line)) {
            return internal::libraryError(code);
        }
        std::string_view written(SipSmGetDataFromRefString(line), SipSmGetLenFromRefString(line));
        const std::string_view lineEnd = internal::viewOf(SdpGetCrlfString(0));
        if (written.ends_with(lineEnd)) {
            written.remove_suffix(lineEnd.size());
        }
        std::string text(written);
        SipSmReleaseRefString(line);
        return text;
    }

    const SDPAttr *record() const { return record_; }

    /* Whether both look at the same line. */
    friend bool operator==(const Attribute &, const Attribute &) = default;

private:
    const SDPAttr *record_;
};

namespace internal {

struct MakeAttribute {
    Attribute operator()(const SDPAttr *attribute) const { return Attribute(attribute); }
};

} // namespace internal

/* The values of type T of a list of attributes, in their order: a forward range. */
template <class T>
class ValuesOf : public std::ranges::view_base {
    using Lines = ListView<SDPAttrList, internal::MakeAttribute>;

public:
    using value_type = T;

    class iterator {
    public:
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using reference = T;
        using pointer = internal::Arrow<T>;

        iterator() = default;
        iterator(Lines::iterator at, Lines::iterator end) : at_(at), end_(end) { settle(); }

        T operator*() const { return *found_; }
        pointer operator->() const { return {*found_}; }
        iterator &operator++() {
            ++at_;
            settle();
            return *this;
        }
        iterator operator++(int) {
            iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const iterator &one, const iterator &two) {
            return one.at_ == two.at_;
        }

    private:
        /* Goes on to the next line that has such a value, this one included. */
        void settle() {
            for (found_.reset(); at_ != end_; ++at_) {
                found_ = (*at_).template as<T>();
                if (found_) {
                    return;
                }
            }
        }

        Lines::iterator at_;
        Lines::iterator end_;
        std::optional<T> found_{};
    };

    ValuesOf() = default;
    explicit ValuesOf(Lines lines) : lines_(lines) {}

    iterator begin() const { return {lines_.begin(), lines_.end()}; }
    iterator end() const { return {lines_.end(), lines_.end()}; }
    bool empty() const { return begin() == end(); }

private:
    Lines lines_;
};

/*
 * The a= lines of a session or of a media description: a range of Attribute with random access,
 * and questions about the first line that answers them.
 *
 *     for (const sdpline::RtpMap map : attributes.each<sdpline::RtpMap>()) ...
 *     const auto ptime = attributes.number(sdpline::AttributeType::PTime).value_or(20);
 */
class Attributes : public ListView<SDPAttrList, internal::MakeAttribute> {
public:
    using ListView::ListView;

    std::optional<Attribute> find(AttributeType type) const {
        return findIf([type](const Attribute &one) { return one.type() == type; });
    }

    /* By the name, exactly as it is written, without a colon. */
    std::optional<Attribute> find(std::string_view name) const {
        return findIf([name](const Attribute &one) { return one.name() == name; });
    }

    /* The first value of type T, and all of them. */
    template <class T>
    std::optional<T> first() const {
        for (const Attribute one : *this) {
            if (const std::optional<T> value = one.as<T>()) {
                return value;
            }
        }
        return std::nullopt;
    }
    template <class T>
    ValuesOf<T> each() const {
        return ValuesOf<T>(*this);
    }

    std::optional<std::uint32_t> number(AttributeType type) const {
        return valueOf<std::uint32_t>(find(type));
    }
    std::optional<std::string_view> text(AttributeType type) const {
        return valueOf<std::string_view>(find(type));
    }
    /* Of an attribute whose name the library does not know, or of a text attribute. */
    std::optional<std::string_view> text(std::string_view name) const {
        return valueOf<std::string_view>(find(name));
    }

    std::optional<Direction> direction() const { return first<Direction>(); }
    std::optional<SetupRole> setup() const { return first<SetupRole>(); }

    std::optional<RtpMap> rtpMap(std::uint32_t payload) const {
        for (const RtpMap map : each<RtpMap>()) {
            if (map.payload == payload) {
                return map;
            }
        }
        return std::nullopt;
    }

    std::optional<Fmtp> fmtp(std::uint32_t payload) const {
        for (const Fmtp fmtp : each<Fmtp>()) {
            if (fmtp.payload() == payload) {
                return fmtp;
            }
        }
        return std::nullopt;
    }

    ValuesOf<Precondition> preconditions() const { return each<Precondition>(); }

    /* All T.38 attributes; nothing when there is none. */
    std::optional<T38> t38() const;

private:
    template <class Wanted>
    std::optional<Attribute> findIf(Wanted wanted) const {
        for (const Attribute one : *this) {
            if (wanted(one)) {
                return one;
            }
        }
        return std::nullopt;
    }

    template <class T>
    static std::optional<T> valueOf(const std::optional<Attribute> &found) {
        return found ? found->as<T>() : std::nullopt;
    }
};

namespace internal {

inline bool isT38(AttributeType type) {
    return type >= AttributeType::T38FaxVersion && type <= AttributeType::T38UdpEc;
}

} // namespace internal

inline std::optional<T38> Attributes::t38() const {
    if (!findIf([](const Attribute &one) { return internal::isT38(one.type()); })) {
        return std::nullopt;
    }
    T38 all;
    all.version = number(AttributeType::T38FaxVersion);
    all.maxBitRate = number(AttributeType::T38MaxBitRate);
    all.fillBitRemoval = number(AttributeType::T38FillBitRemoval).value_or(0) != 0;
    all.transcodingMmr = number(AttributeType::T38TranscodingMmr).value_or(0) != 0;
    all.transcodingJbig = number(AttributeType::T38TranscodingJbig).value_or(0) != 0;
    all.rateManagement = first<T38RateManagement>();
    all.maxBuffer = number(AttributeType::T38MaxBuffer);
    all.maxDatagram = number(AttributeType::T38MaxDatagram);
    all.errorCorrection = first<T38ErrorCorrection>();
    return all;
}

} // namespace v1
} // namespace sdpline

template <class T>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::ValuesOf<T>> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<sdpline::Attributes> = true;

#endif
