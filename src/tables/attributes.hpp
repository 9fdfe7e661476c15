// The table of attributes, which the C++ API shares, and the lookup of a type by its name.
#pragma once

#include <cstdint>
#include <string_view>

#include "sdpline/cpp/detail/attributes.hpp"
#include "tables/keywords.hpp"

namespace sdpline {

// Returns the type (SDP_ATTR_...) of a name without its colon, compared with case; SDP_ATTR_UNKNOWN
// for a name that is not in the table.
uint32_t attributeType(std::string_view name);

} // namespace sdpline
