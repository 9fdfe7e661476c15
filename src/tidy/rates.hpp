// The registered clock rates of payload formats.
#pragma once

#include <string_view>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

// The clock rate as a=rtpmap has it, with the number of channels where it is required. Empty for a
// name that is not registered, or has several rates. Names are compared without case.
std::string_view registeredRate(Memory &memory, std::string_view name, std::string_view payload);

} // namespace sdpline::tidy
