/*
 * text.hpp: errors and values as text, and in streams.
 *
 * Part of sdpline.hpp, whose conventions apply. For std::format include sdpline/cpp/format.hpp.
 */
#ifndef SDPLINE_CPP_TEXT_HPP
#define SDPLINE_CPP_TEXT_HPP

#include <concepts>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "sdpline/cpp/detail/draft.hpp"
#include "sdpline/cpp/detail/lines.hpp"

namespace sdpline {
inline namespace v1 {

namespace internal {

/* The text of a line or, in brackets, the reason why it cannot be written. */
inline std::string textOr(const std::optional<Error> &refused, std::uint32_t lineType,
                          const void *record) {
    const auto text =
        refused ? Result<std::string>(*refused) : lineText(lineType, const_cast<void *>(record));
    return text ? *text : '[' + std::string(text.error().sentence) + ']';
}

} // namespace internal

/*
 * Text for logs: errors as their messages; lines and values as the encoder writes them, without the
 * letter and "="; codes as their words. For a value that cannot be written it is the reason, in
 * brackets.
 */
inline std::string toText(const Error &error) {
    return error.message();
}
inline std::string toText(const Address &address) {
    return address.text();
}

/* "IN IP4 192.0.2.1/127" */
inline std::string toText(const Connection &connection) {
    const SDPConnection record = internal::recordOf(connection);
    return internal::textOr(internal::refusedConnection(connection), SDP_LINE_CONNECTION, &record);
}

/* "- 1 1 IN IP4 192.0.2.1" */
inline std::string toText(const Origin &origin) {
    const SDPOrigin record = internal::recordOf(origin);
    return internal::textOr(internal::refusedOrigin(origin), SDP_LINE_ORIGIN, &record);
}

/* "audio 49170 RTP/AVP 0 8" */
inline std::string toText(const MediaLine &line) {
    internal::MediaDraft draft;
    const auto refused = draft.fill(line);
    return internal::textOr(refused, SDP_LINE_MEDIA, &draft.record);
}
inline std::string toText(const Media &media) {
    return internal::textOr(std::nullopt, SDP_LINE_MEDIA, &media.record()->stMediaField);
}

/* "7d" */
inline std::string toText(const TypedTime &time) {
    std::string text;
    internal::appendNumber(text, time.value);
    return time.unit == TimeUnit::Seconds ? text : text.append(wordOf(time.unit));
}

/* "0 0": the t= line without its r= lines. */
inline std::string toText(const Time &time) {
    std::string text;
    internal::appendNumber(text, time.start());
    text += ' ';
    internal::appendNumber(text, time.stop());
    return text;
}

/* "7d 1h 0 25h" */
inline std::string toText(const Repeat &repeat) {
    std::string text;
    for (const TypedTime time : repeat) {
        text.append(text.empty() ? "" : " ").append(toText(time));
    }
    return text;
}

/* "ptime:20": the text of an attribute, or of a value that AttributesEditor::add takes. */
inline std::string toText(const Attribute &attribute) {
    return internal::textOr(std::nullopt, SDP_LINE_ATTRIBUTE, attribute.record());
}
template <internal::MakesAttribute Value>
std::string toText(const Value &value) {
    internal::Draft draft;
    const auto refused = draft.fill(value);
    return internal::textOr(refused, SDP_LINE_ATTRIBUTE, &draft.record);
}

inline std::string toText(AttributeType type) {
    return std::string(wordOf(type));
}
template <class Code>
std::string toText(const Keyword<Code> &keyword) {
    return std::string(keyword.text());
}
template <class Code>
requires(!internal::kRows<Code>.empty() && !requires(internal::Draft draft, Code code) {
    draft.fill(code);
}) std::string toText(Code code) {
    return std::string(wordOf(code));
}

namespace internal {

template <class Value>
concept HasText = requires(const Value &value) {
    { toText(value) } -> std::same_as<std::string>;
};

} // namespace internal

template <class Traits, internal::HasText Value>
std::basic_ostream<char, Traits> &operator<<(std::basic_ostream<char, Traits> &out,
                                             const Value &value) {
    return out << toText(value);
}

} // namespace v1
} // namespace sdpline

#endif
