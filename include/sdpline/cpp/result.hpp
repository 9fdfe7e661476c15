/*
 * result.hpp: why something failed, and results that carry either a value or that reason.
 *
 * Part of sdpline.hpp, whose conventions hold here.
 */
#ifndef SDPLINE_CPP_RESULT_HPP
#define SDPLINE_CPP_RESULT_HPP

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "sdpline/sdpline.h"

namespace sdpline {
inline namespace v1 {

/* Who refused. */
enum class Fault : std::uint8_t {
    Library,  /* the C library, or a service under it: Error::code is its answer */
    Argument, /* this API, before anything was touched: a value that no SDP text can carry */
    Memory,   /* the body's memory block is exhausted */
    Busy      /* a decode that the calling thread started inside a decode: in a log hook, or while
                 it holds decodeMutex() */
};

/*
 * A reason. All text is static: an Error outlives everything.
 *
 * Lines and columns count from 1, offsets from 0, in bytes of the text that was given: the body
 * for Body::decode, the text of the one line for operations that take a line. Line 0 means that no
 * place in a text is to blame.
 */
struct Error {
    Fault fault = Fault::Library;
    std::uint32_t code = 0; /* the SDPResult, 0 unless the fault is the library's */
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t offset = 0;
    std::string_view sentence; /* what was wrong, for people; never empty */
    std::string_view check;    /* name of the library's check that failed, or empty */
    std::string_view function; /* the operation that made the check, or empty */
    std::string_view source;   /* the source file that it stands in, as log entries say, or empty */

    /* "4:16: the fourth octet is above 255 (sdpparser sdpConnectionFieldAddrIpv4, 0x05035065)":
     * the place when there is one, the sentence, and where it comes from when the library says. */
    std::string message() const;
};

namespace internal {

/* A broken precondition ends the program: going on would read foreign memory. */
inline void insist(bool holds) {
    if (!holds) {
        std::abort();
    }
}

inline void appendNumber(std::string &text, std::uint32_t value, int base = 10) {
    std::array<char, 10> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base).ptr;
    const auto size = static_cast<std::size_t>(end - digits.data());
    if (base == 16) {
        text.append(8 - size, '0');
    }
    text.append(digits.data(), size);
}

inline Error refusedArgument(std::string_view sentence) {
    Error error;
    error.fault = Fault::Argument;
    error.sentence = sentence;
    return error;
}

inline Error noMemory() {
    Error error;
    error.fault = Fault::Memory;
    error.sentence = "the body's memory block is exhausted";
    return error;
}

inline Error busy() {
    Error error;
    error.fault = Fault::Busy;
    error.sentence = "this thread is decoding already: a log hook must not decode";
    return error;
}

/* What the library says of one of its codes. Services of a stack have codes that it does not know:
 * they are passed up as they are. */
inline Error libraryError(SDPResult code) {
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

inline std::string Error::message() const {
    std::string text;
    if (line != 0) {
        internal::appendNumber(text, line);
        text += ':';
        internal::appendNumber(text, column);
        text += ": ";
    }
    text += sentence;
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

/*
 * A value, or the reason why there is none. Ask before you take: value() and its operators on a
 * failed result, and error() on a successful one, end the program.
 *
 *     if (auto body = sdpline::Body::decode(text)) {
 *         use(*body);
 *     } else {
 *         log(body.error().message());
 *     }
 */
template <class Value>
class [[nodiscard]] Result {
public:
    using value_type = Value;

    Result(Value value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, error) {}

    bool ok() const noexcept { return state_.index() == 0; }
    explicit operator bool() const noexcept { return ok(); }

    Value &value() & { return *checked(std::get_if<0>(&state_)); }
    const Value &value() const & { return *checked(std::get_if<0>(&state_)); }
    Value &&value() && { return std::move(*checked(std::get_if<0>(&state_))); }
    const Value &&value() const && { return std::move(*checked(std::get_if<0>(&state_))); }

    Value &operator*() & { return value(); }
    const Value &operator*() const & { return value(); }
    Value &&operator*() && { return std::move(*this).value(); }
    const Value &&operator*() const && { return std::move(*this).value(); }

    /* Not of a temporary result whose value owns what its members give: a view of a body that is
     * gone at the end of the line does not compile. Values that own nothing, as editors, do. */
    Value *operator->() & { return &value(); }
    const Value *operator->() const & { return &value(); }
    const Value *operator->() const &&requires std::is_trivially_destructible_v<Value> {
        return &value();
    }
    const Value *operator->() const && = delete;

    Value valueOr(Value other) && { return ok() ? std::move(*this).value() : std::move(other); }

    const Error &error() const & { return *checked(std::get_if<1>(&state_)); }
    Error error() const && { return *checked(std::get_if<1>(&state_)); }

private:
    template <class Member>
    static Member *checked(Member *member) {
        internal::insist(member != nullptr);
        return member;
    }

    std::variant<Value, Error> state_;
};

/* Success, or the reason why not. */
template <>
class [[nodiscard]] Result<void> {
public:
    using value_type = void;

    Result() = default;
    Result(Error error) : error_(error) {}

    bool ok() const noexcept { return !error_.has_value(); }
    explicit operator bool() const noexcept { return ok(); }

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
