// What the decoder asks of an attribute's value.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline::tidy {

// What follows an attribute's name.
enum class Shape : uint8_t {
    Flag,       // nothing
    Words,      // ":" and words with one blank between them
    MaybeWords, // the same, or nothing
    Text,       // ":" and any text
    Rtpmap,
    Silence,
    Any, // [ ":" any text ], under a name that the decoder does not know
};

// By the attribute's name, case and all.
Shape shapeOf(std::string_view name);

} // namespace sdpline::tidy
