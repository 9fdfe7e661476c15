// The o= line and its version (RFC 3264 sections 5 and 8).
#pragma once

#include "negotiate/report.hpp"

namespace sdpline::negotiate {

// Writes the decimal number in `version`, of any length, plus one.
void writeNext(std::string_view version, Text &text);

// Whether `version` is `previous` plus one. Leading zeros are ignored.
bool isNext(std::string_view version, std::string_view previous);

// Whether two o= lines are equal but for the version.
bool sameOrigin(const SDPOrigin &one, const SDPOrigin &two);

// Sets the version of a body whose o= line is a copy of that of `previous`: it is one higher if the
// descriptions differ. Returns Reason::None, or the reason of the failure.
Reason continueOrigin(const SdpLine &previous, SdpLine &body, Report &report);

// Reason::None for a body with an o= line, else the reason to refuse it.
inline Reason usable(const SdpLine *body) {
    return body == nullptr                                      ? Reason::NoBody
           : body->stOrigin.strSessionVersion.pcData == nullptr ? Reason::EmptyBody
                                                                : Reason::None;
}

} // namespace sdpline::negotiate
