// Clock rates that payload formats are registered with.
#pragma once

#include <string_view>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

// As a=rtpmap has it, with the channels where there must be some; empty for a name that is not
// registered, or not with one rate alone. Case does not matter.
std::string_view registeredRate(Memory &memory, std::string_view name, std::string_view payload);

} // namespace sdpline::tidy
