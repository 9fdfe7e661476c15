// Attribute names to attribute types.
#pragma once

#include <cstdint>
#include <string_view>

namespace sdpline {

// SDP_ATTR_..., by a name without its colon, case and all; SDP_ATTR_UNKNOWN when it is no row of
// the table of names.
uint32_t attributeType(std::string_view name);

} // namespace sdpline
