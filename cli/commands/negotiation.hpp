// What the commands that negotiate share: the options of their decoder, and how decisions are
// shown.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "commands/onebody.hpp"
#include "sdpline/negotiate.hpp"

namespace cli {

// Every RTP profile is read as a protocol with payload numbers.
DecodeOptions negotiationOptions();

// "offer.sip:9:1: note: stream 2 rejected: no common format [NoCommonFormat, RFC 3264 6]"
void print(std::ostream &out, const OneBody &body, const sdpline::Decision &decision,
           const char *severity);

nlohmann::ordered_json jsonOf(const OneBody &body, const std::vector<sdpline::Decision> &decisions);

} // namespace cli
