/*
 * attributes.hpp: reading a= lines.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_ATTRIBUTES_HPP
#define SDPLINE_CPP_ATTRIBUTES_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "sdpline/cpp/detail/attributes.hpp"
#include "sdpline/cpp/list.hpp"
#include "sdpline/cpp/values.hpp"
#include "sdpline/cpp/words.hpp"

namespace sdpline {
inline namespace v1 {

namespace internal {

/* One line as the encoder writes it, without the letter, "=" and line end. */
inline Result<std::string> lineText(std::uint32_t lineType, void *record) {
    std::uint32_t prefix = 0;
    SipRefString *line = nullptr;
    if (const SDPResult code = SdpLibEncodeSdpLine(&prefix, lineType, record, &line)) {
        return libraryError(code);
    }
    std::string_view written(SipSmGetDataFromRefString(line), SipSmGetLenFromRefString(line));
    const std::string_view lineEnd = viewOf(SdpGetCrlfString(0));
    if (written.ends_with(lineEnd)) {
        written.remove_suffix(lineEnd.size());
    }
    std::string text(written);
    SipSmReleaseRefString(line);
    return text;
}

/* The text without one blank at its start. */
inline std::string_view withoutBlank(std::string_view text) {
    return text.starts_with(' ') ? text.substr(1) : text;
}

inline tables::Shape shapeOf(const SDPAttr &attribute) {
    return tables::shapeOf(attribute.ulAttrType);
}

/* Reads a value of type T from an attribute: holds() returns whether it has one. */
template <class T>
struct ValueIn;

template <tables::Shape shape>
struct ValueOfShape {
    static bool holds(const SDPAttr &attribute) {
        return tables::isOf<shape>(attribute.ulAttrType);
    }
};

template <AttributeType type>
struct ValueOfType {
    static bool holds(const SDPAttr &attribute) {
        return attribute.ulAttrType == static_cast<std::uint32_t>(type);
    }
};

template <>
struct ValueIn<std::monostate> {
    static bool holds(const SDPAttr &attribute) {
        const tables::Shape shape = shapeOf(attribute);
        return shape == tables::Shape::None || shape == tables::Shape::Flag ||
               shape == tables::Shape::NameOnly;
    }
    static std::monostate read(const SDPAttr &) { return {}; }
};

template <>
struct ValueIn<Direction> : ValueOfShape<tables::Shape::Direction> {
    static Direction read(const SDPAttr &attribute) { return Direction{attribute.ulAttrType}; }
};

template <>
struct ValueIn<std::uint32_t> {
    static bool holds(const SDPAttr &attribute) {
        const tables::Shape shape = shapeOf(attribute);
        return shape == tables::Shape::Number || shape == tables::Shape::Decimal ||
               shape == tables::Shape::Switch;
    }
    static std::uint32_t read(const SDPAttr &attribute) { return attribute.unAttrValue.ulValue; }
};

template <>
struct ValueIn<Fmtp> : ValueOfType<AttributeType::Fmtp> {
    static Fmtp read(const SDPAttr &attribute) {
        const std::string_view text = viewOf(attribute.unAttrValue.strValue);
        std::size_t end = 0;
        while (end < text.size() && text[end] != ' ') {
            ++end;
        }
        return {text.substr(0, end), text.substr(end < text.size() ? end + 1 : end)};
    }
};

template <>
struct ValueIn<std::string_view> {
    static bool holds(const SDPAttr &attribute) {
        const tables::Shape shape = shapeOf(attribute);
        return shape == tables::Shape::NamedText ||
               (shape == tables::Shape::Text && !ValueIn<Fmtp>::holds(attribute));
    }
    static std::string_view read(const SDPAttr &attribute) {
        return viewOf(attribute.unAttrValue.strValue);
    }
};

template <>
struct ValueIn<RtpMap> : ValueOfShape<tables::Shape::RtpMap> {
    static RtpMap read(const SDPAttr &attribute) {
        const SDPRtpMapAttr &map = attribute.unAttrValue.stRtpMap;
        return {map.ulPayloadType, viewOf(map.strEncodingName), map.ulClockRate,
                map.ulEncodingParams, map.ulEncodingId};
    }
};

template <>
struct ValueIn<T38RateManagement> : ValueOfType<AttributeType::T38RateManagement> {
    static T38RateManagement read(const SDPAttr &attribute) {
        return T38RateManagement{attribute.unAttrValue.ulValue};
    }
};

template <>
struct ValueIn<T38ErrorCorrection> : ValueOfType<AttributeType::T38UdpEc> {
    static T38ErrorCorrection read(const SDPAttr &attribute) {
        return T38ErrorCorrection{attribute.unAttrValue.ulValue};
    }
};

template <>
struct ValueIn<SilenceSupp> : ValueOfShape<tables::Shape::SilenceSupp> {
    static SilenceSupp read(const SDPAttr &attribute) {
        const SDPSilenceSuppression &silence = attribute.unAttrValue.stSilenceSupp;
        return {silence.bOn != 0, withoutBlank(viewOf(silence.strParams))};
    }
};

template <>
struct ValueIn<Ecan> : ValueOfShape<tables::Shape::Ecan> {
    static Ecan read(const SDPAttr &attribute) {
        const SDPEcan &ecan = attribute.unAttrValue.stEcan;
        return {EcanDirection{ecan.enEcanDir}, ecan.bOn != 0, withoutBlank(viewOf(ecan.strParams))};
    }
};

template <>
struct ValueIn<Precondition> : ValueOfShape<tables::Shape::Precondition> {
    static Precondition read(const SDPAttr &attribute) {
        const SDPRsrcMgmtStatus &status = attribute.unAttrValue.stRsrcMgmtStatus;
        const SDPPreconditionS &type = status.stPrecondition;
        return {StatusLine{attribute.ulAttrType},
                Keyword<PreconditionType>::of(PreconditionType{type.enPreconditionType},
                                              viewOf(type.pstrOtherPrecondition)),
                StatusType{status.enStatusType}, Flow{status.enDirTag},
                Strength{status.enStrengthTag}};
    }
};

template <>
struct ValueIn<IpBcp> : ValueOfShape<tables::Shape::IpBcp> {
    static IpBcp read(const SDPAttr &attribute) {
        const SDPIpBcp &ipBcp = attribute.unAttrValue.stIpBcp;
        return {ipBcp.ucVersion, IpBcpType{ipBcp.ucType}};
    }
};

template <>
struct ValueIn<SetupRole> : ValueOfType<AttributeType::Setup> {
    static SetupRole read(const SDPAttr &attribute) {
        return SetupRole{attribute.unAttrValue.enT120Mode};
    }
};

/* Tries the alternatives of AttributeValue; an attribute has at most one of them. */
template <class... Values>
struct ValuesOfAttribute {
    static AttributeValue read(const SDPAttr &attribute) {
        AttributeValue value;
        static_cast<void>(((ValueIn<Values>::holds(attribute) &&
                            (value.emplace<Values>(ValueIn<Values>::read(attribute)), true)) ||
                           ...));
        return value;
    }

    static bool same(const SDPAttr &one, const SDPAttr &two) {
        return ((ValueIn<Values>::holds(one) && ValueIn<Values>::holds(two) &&
                 ValueIn<Values>::read(one) == ValueIn<Values>::read(two)) ||
                ...);
    }

    explicit ValuesOfAttribute(std::variant<Values...> *) {}
};

using AnyValue = decltype(ValuesOfAttribute(static_cast<AttributeValue *>(nullptr)));

} // namespace internal

/* One a= line. */
class Attribute {
public:
    explicit Attribute(const SDPAttr *record) : record_(record) {}

    AttributeType type() const { return AttributeType{record_->ulAttrType}; }

    /* The name without a colon. */
    std::string_view name() const {
        const bool other =
            type() == AttributeType::OtherValue || type() == AttributeType::OtherFlag;
        return other ? internal::viewOf(record_->pstAttrName) : wordOf(type());
    }

    AttributeValue value() const { return internal::AnyValue::read(*record_); }

    /* The value if it is a T, which must be one of the alternatives of AttributeValue. */
    template <class T>
    std::optional<T> as() const {
        using Value = internal::ValueIn<T>;
        return Value::holds(*record_) ? std::optional<T>(Value::read(*record_)) : std::nullopt;
    }

    /* The text after "a=", as the encoder writes it: "ptime:20". */
    Result<std::string> text() const {
        return internal::lineText(SDP_LINE_ATTRIBUTE, const_cast<SDPAttr *>(record_));
    }

    const SDPAttr *record() const { return record_; }

    /* Whether both refer to the same line. */
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
class ValuesOf : public internal::RangeOfBody {
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
        /* Advances to the first line with such a value, from this one on. */
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
 * with operations that return the value of the first matching line.
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

    /* By the name without a colon, compared with case. */
    std::optional<Attribute> find(std::string_view name) const {
        return findIf([name](const Attribute &one) { return one.name() == name; });
    }

    /* The first value of type T, and all of them. */
    template <class T>
    std::optional<T> first() const {
        for (const Attribute one : *this) {
            if (internal::ValueIn<T>::holds(*one.record())) {
                return internal::ValueIn<T>::read(*one.record());
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
    /* The text of an attribute whose name the library does not know, or of a text attribute. */
    std::optional<std::string_view> text(std::string_view name) const {
        return valueOf<std::string_view>(find(name));
    }

    std::optional<Direction> direction() const { return first<Direction>(); }
    std::optional<SetupRole> setup() const { return first<SetupRole>(); }

    std::optional<RtpMap> rtpMap(std::uint32_t payload) const {
        for (const Attribute one : *this) {
            if (const auto map = one.as<RtpMap>(); map && map->payload == payload) {
                return map;
            }
        }
        return std::nullopt;
    }

    std::optional<Fmtp> fmtp(std::uint32_t payload) const {
        for (const Attribute one : *this) {
            if (const auto fmtp = one.as<Fmtp>(); fmtp && fmtp->payload() == payload) {
                return fmtp;
            }
        }
        return std::nullopt;
    }

    /* The encoding of a payload number: by its a=rtpmap line, else by RFC 3551. */
    std::optional<RtpMap> encoding(std::uint32_t payload) const {
        const auto map = rtpMap(payload);
        return map ? map : staticEncoding(payload);
    }

    ValuesOf<Precondition> preconditions() const { return each<Precondition>(); }

    /* All T.38 attributes; nullopt if there is none. */
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

#endif
