// Whether a text is that of an IPv6 address (RFC 4291 section 2.2).
#pragma once

#include <string_view>

namespace sdpline::tidy {

bool isIp6Text(std::string_view text);

} // namespace sdpline::tidy
