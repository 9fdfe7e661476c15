// The static payload numbers (RFC 3551 section 6, tables 4 and 5).
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline::negotiate {

struct StaticCodec {
    std::string_view name; // empty: reserved or unassigned
    uint32_t clock;
    uint32_t channels;
};

// Of any number; no codec from 35 on.
const StaticCodec &staticCodec(uint32_t number);

} // namespace sdpline::negotiate
