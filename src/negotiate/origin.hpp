// o= and its version (RFC 3264 sections 5 and 8).
#pragma once

#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// The decimal number of any length in `version`, and one more.
void writeNext(std::string_view version, Text &text);

// Whether `version` is `previous` plus one, leading zeros aside.
bool isNext(std::string_view version, std::string_view previous);

// Whether all of o= but the version is equal.
bool sameOrigin(const SDPOrigin &one, const SDPOrigin &two);

// Continues the o= line of `previous`, which the body has taken over: the version rises by one when
// the descriptions differ. Reason::None, or why that cannot be.
Reason continueOrigin(const SdpLine &previous, SdpLine &body, Report &report);

// A body with an o= line.
inline Reason usable(const SdpLine *body) {
    return body == nullptr                                      ? Reason::NoBody
           : body->stOrigin.strSessionVersion.pcData == nullptr ? Reason::EmptyBody
                                                                : Reason::None;
}

} // namespace sdpline::negotiate
