// The table of attributes, which the C++ API shares, under the library's namespace; and names to
// types.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/cpp/detail/attributes.hpp"
#include "tables/keywords.hpp"

namespace sdpline {

// SDP_ATTR_..., by a name without its colon, case and all; SDP_ATTR_UNKNOWN where it is no row of
// the table.
uint32_t attributeType(std::string_view name);

} // namespace sdpline
