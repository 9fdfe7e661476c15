// Inputs that are no text of SDP or SIP, recognised by how they begin.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// What the input is instead, and what to do about it; empty for one that may be read.
std::string foreignKind(std::string_view text);

} // namespace cli
