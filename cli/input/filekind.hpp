// Recognises inputs that are not texts of SDP or SIP by their first bytes.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// Says what the input is, and what to do about it; empty for an input that may be read.
std::string foreignKind(std::string_view text);

} // namespace cli
