/*
 * result.hpp: errors, and results that are either a value or an error.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_RESULT_HPP
#define SDPLINE_CPP_RESULT_HPP

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "sdpline/sdpline.h"

namespace sdpline {
inline namespace v1 {

/* The origin of an error. */
enum class Fault : std::uint8_t {
    Library,  /* the C library, or a service that it calls: Error::code is its result */
    Argument, /* this API refused an argument: a value that no SDP text can represent */
    Memory,   /* the body's memory block is exhausted */
    Busy      /* the calling thread is already decoding: it started a decode in a log hook, or while
                 it held decodeMutex() */
};

/*
 * Why an operation failed. All text is static: an Error refers to no body.
 *
 * Lines and columns count from 1, offsets from 0, in bytes of the given text: the body for
 * Body::decode, the text of the line for operations that take a line. Line 0 means that the error
 * has no place in a text.
 */
struct Error {
    Fault fault = Fault::Library;
    std::uint32_t code = 0; /* the SDPResult for Fault::Library, else 0 */
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t offset = 0;
    std::string_view sentence; /* the description of the error; never empty */
    std::string_view check;    /* name of the library's check that failed, or empty */
    std::string_view function; /* the operation that made the check, or empty */
    std::string_view source;   /* its source file, as log entries name it, or empty */

    /* "4:16", or an empty text without a place. */
    std::string place() const;

    /* "4:16: expected an octet of at most 255": place and sentence, without details of the library.
     * For the sender of the text. */
    std::string reason() const;

    /* "4:16: expected an octet of at most 255 (sdpparser sdpConnectionFieldAddrIpv4, 0x05035065)":
     * the reason, and the check of the library that failed. For logs. */
    std::string message() const;

    /* The reason as a quoted string, for the text of a SIP Warning header field (RFC 3261 section
     * 20.43): "Warning: 399 gw.example.com " + error.warningText(). */
    std::string warningText() const;
};

/* A text as a quoted-string (RFC 3261 section 25.1), with its quotes. Quotes and backslashes are
 * escaped; line ends and other control characters become blanks, and bytes above 127 become
 * question marks. */
inline std::string quotedString(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += byte >= 0x7F ? (byte == 0x7F ? ' ' : '?') : byte < ' ' ? ' ' : c;
    }
    return quoted += '"';
}

namespace internal {

/* Ends the program if a precondition is violated, since going on would read invalid memory. */
inline void insist(bool holds) {
    if (!holds) [[unlikely]] {
        std::abort();
    }
}

inline void appendNumber(std::string &text, std::uint32_t value, int base = 10) {
    char digits[10];
    char *const end = std::to_chars(digits, digits + sizeof digits, value, base).ptr;
    const auto size = static_cast<std::size_t>(end - digits);
    if (base == 16) {
        text.append(8 - size, '0');
    }
    text.append(digits, size);
}

/* The functions that make errors are cold: they are rarely called. */
[[gnu::cold]] inline Error errorOf(Fault fault, std::string_view sentence) {
    Error error;
    error.fault = fault;
    error.sentence = sentence;
    return error;
}

[[gnu::cold]] inline Error refusedArgument(std::string_view sentence) {
    return errorOf(Fault::Argument, sentence);
}

[[gnu::cold]] inline Error noMemory() {
    return errorOf(Fault::Memory, "the body's memory block is exhausted");
}

[[gnu::cold]] inline Error busy() {
    return errorOf(Fault::Busy, "this thread is decoding already: a log hook must not decode");
}

/* The error of a result code. A stack's service may return codes that the library does not know:
 * they are kept in Error::code. */
[[gnu::cold]] inline Error libraryError(SDPResult code) {
    SDPResultText text = {};
    const bool known = SdpLibDescribeResult(code, &text) == 0;
    Error error;
    error.code = code;
    error.sentence = known ? text.pcSentence : "a service that the library calls failed";
    error.check = known ? text.pcCheck : "";
    error.function = known ? text.pcFunction : "";
    error.source = known ? text.pcSource : "";
    return error;
}

} // namespace internal

inline std::string Error::place() const {
    std::string text;
    if (line != 0) {
        internal::appendNumber(text, line);
        text += ':';
        internal::appendNumber(text, column);
    }
    return text;
}

inline std::string Error::reason() const {
    std::string text = place();
    text += text.empty() ? "" : ": ";
    return text += sentence;
}

inline std::string Error::message() const {
    std::string text = reason();
    if (code != 0) {
        text += " (";
        if (!source.empty()) {
            text.append(source).append(" ").append(function).append(", ");
        }
        text += "0x";
        internal::appendNumber(text, code, 16);
        text += ')';
    }
    return text;
}

inline std::string Error::warningText() const {
    return quotedString(reason());
}

/*
 * A value, or the error why there is none. Test it first: value() and the operators * and -> of a
 * failed result, and error() of a successful one, end the program.
 *
 *     if (auto body = sdpline::Body::decode(text)) {
 *         use(*body);
 *     } else {
 *         log(body.error().message());
 *     }
 *
 * Or pass the value on to the next operation; the result is that of the first failure:
 *
 *     sdpline::Result<std::string> again = sdpline::Body::decode(text).and_then(
 *         [](const sdpline::Body &body) { return body.encode(); });
 */
template <class Value>
class [[nodiscard]] Result {
    static constexpr bool kMovesQuietly = std::is_nothrow_move_constructible_v<Value>;

public:
    using value_type = Value;

    Result(Value value) noexcept(kMovesQuietly) : ok_(true), value_(std::move(value)) {}
    Result(const Error &error) noexcept : ok_(false), error_(error) {}

    Result(Result &&other) noexcept(kMovesQuietly) : ok_(other.ok_) { fill(std::move(other)); }
    Result(const Result &other) requires std::is_copy_constructible_v<Value> : ok_(other.ok_) {
        fill(other);
    }
    Result &operator=(Result other) noexcept(kMovesQuietly) {
        clear();
        ok_ = other.ok_;
        fill(std::move(other));
        return *this;
    }
    ~Result() { clear(); }

    bool ok() const noexcept { return ok_; }
    explicit operator bool() const noexcept { return ok_; }

    Value &value() & { return checked(), value_; }
    const Value &value() const & { return checked(), value_; }
    Value &&value() && { return checked(), std::move(value_); }
    const Value &&value() const && { return checked(), std::move(value_); }

    Value &operator*() & { return value(); }
    const Value &operator*() const & { return value(); }
    Value &&operator*() && { return std::move(*this).value(); }
    const Value &&operator*() const && { return std::move(*this).value(); }

    /* Not available for a temporary result whose value owns data, since a view of it would be
     * invalid at once. Values that own nothing, such as editors, are allowed. */
    Value *operator->() & { return &value(); }
    const Value *operator->() const & { return &value(); }
    const Value *operator->() const &&requires std::is_trivially_destructible_v<Value> {
        return &value();
    }
    const Value *operator->() const && = delete;

    /* The value, or `other` for a failed result. */
    Value value_or(Value other) const & { return ok_ ? value_ : std::move(other); }
    Value value_or(Value other) && { return ok_ ? std::move(value_) : std::move(other); }
    Value valueOr(Value other) && { return std::move(*this).value_or(std::move(other)); }

    /* The result of next(value), a Result or Status; or this result's error. */
    template <class Next>
    auto and_then(Next next) const & -> std::invoke_result_t<Next, const Value &> {
        if (!ok_) {
            return error_;
        }
        return next(value_);
    }
    template <class Next>
    auto and_then(Next next) && -> std::invoke_result_t<Next, Value &&> {
        if (!ok_) {
            return error_;
        }
        return next(std::move(value_));
    }

    /* A Result with the value of change(value); or this result's error. */
    template <class Change>
    auto transform(Change change) const & -> Result<std::invoke_result_t<Change, const Value &>> {
        if (!ok_) {
            return error_;
        }
        return change(value_);
    }
    template <class Change>
    auto transform(Change change) && -> Result<std::invoke_result_t<Change, Value &&>> {
        if (!ok_) {
            return error_;
        }
        return change(std::move(value_));
    }

    const Error &error() const & { return failed(), error_; }
    Error error() const && { return failed(), error_; }

private:
    void checked() const { internal::insist(ok_); }
    void failed() const { internal::insist(!ok_); }

    template <class Other>
    void fill(Other &&other) {
        if (ok_) {
            ::new (static_cast<void *>(&value_)) Value(std::forward<Other>(other).value_);
        } else {
            error_ = other.error_;
        }
    }

    void clear() {
        if (ok_) {
            value_.~Value();
        }
    }

    bool ok_;
    union {
        Value value_;
        Error error_;
    };
};

/* Success, or an error. */
template <>
class [[nodiscard]] Result<void> {
public:
    using value_type = void;

    Result() = default;
    Result(const Error &error) : error_(error) {}

    bool ok() const noexcept { return !error_.has_value(); }
    explicit operator bool() const noexcept { return ok(); }

    /* The result of next(), a Result or Status; or this result's error. */
    template <class Next>
    auto and_then(Next next) const -> std::invoke_result_t<Next> {
        if (error_) {
            return *error_;
        }
        return next();
    }

    const Error &error() const & {
        internal::insist(error_.has_value());
        return *error_;
    }
    Error error() const && { return error(); }

private:
    std::optional<Error> error_;
};

using Status = Result<void>;

} // namespace v1
} // namespace sdpline

#endif
