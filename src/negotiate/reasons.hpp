// The reasons of decisions, by name.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/sdpnegotiate.h"

namespace sdpline::negotiate {

enum class Reason : uint32_t {
    None = 0,
#define REASON(number, name, kind, rfc, section, sentence) name = number,
#include "negotiate/reasons.def"
#undef REASON
};

constexpr SDPResult resultOf(Reason reason) {
    return static_cast<SDPResult>(reason);
}

// The sentence of a reason. Reason::None has none.
std::string_view sentenceOf(Reason reason);

} // namespace sdpline::negotiate
