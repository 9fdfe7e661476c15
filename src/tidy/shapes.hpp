// The form of an attribute's value that the decoder accepts.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline::tidy {

// What follows the name of an attribute.
enum class Shape : uint8_t {
    Flag,       // nothing
    Words,      // ":" and words with one blank between them
    MaybeWords, // the same, or nothing
    Text,       // ":" and any text
    Rtpmap,
    Silence,
    Any, // [ ":" any text ], after a name that the decoder does not know
};

// The shape of an attribute by its name, which is compared with case.
Shape shapeOf(std::string_view name);

} // namespace sdpline::tidy
