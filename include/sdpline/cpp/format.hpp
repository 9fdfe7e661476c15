/*
 * format.hpp: errors and values in std::format, if the standard library has it.
 *
 *     std::format("refused: {}", body.error())
 *     std::format("{:>40}", media)
 *
 * The format specifications are those of a string. sdpline.hpp does not include this header,
 * because the standard header takes long to compile.
 */
#ifndef SDPLINE_CPP_FORMAT_HPP
#define SDPLINE_CPP_FORMAT_HPP

#include <version>

#include "sdpline/sdpline.hpp"

#ifdef __cpp_lib_format

#include <format>
#include <string_view>

/* Ranges are formatted by the standard library (C++23); toText() makes a string of a Repeat. */
template <sdpline::internal::HasText Value>
requires(!sdpline::internal::OwnsNothing<Value>) struct std::formatter<Value, char>
    : std::formatter<std::string_view, char> {
    template <class Context>
    auto format(const Value &value, Context &context) const {
        return std::formatter<std::string_view, char>::format(sdpline::toText(value), context);
    }
};

#endif

#endif
