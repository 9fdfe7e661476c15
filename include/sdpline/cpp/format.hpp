/*
 * format.hpp: errors and values for std::format, where the standard library has it; else nothing.
 *
 *     std::format("refused: {}", body.error())
 *     std::format("{:>40}", media)
 *
 * They take the format specifications of a string. To be included beside sdpline.hpp, which does
 * without the standard header for the time that it takes to compile.
 */
#ifndef SDPLINE_CPP_FORMAT_HPP
#define SDPLINE_CPP_FORMAT_HPP

#include <version>

#include "sdpline/sdpline.hpp"

#ifdef __cpp_lib_format

#include <format>
#include <string_view>

template <sdpline::internal::HasText Value>
struct std::formatter<Value, char> : std::formatter<std::string_view, char> {
    template <class Context>
    auto format(const Value &value, Context &context) const {
        return std::formatter<std::string_view, char>::format(sdpline::toText(value), context);
    }
};

#endif

#endif
