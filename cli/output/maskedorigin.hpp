// The origin of a body, with masks if wanted.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "input/input.hpp"
#include "redact/redact.hpp"

namespace cli {

// The packet and the message of a body. A redactor masks addresses, users and the Call-ID like
// those in bodies; null shows them without masks.
Origin originOf(const Found &body, Redactor *redactor);

// "offer.sip", or for a body of a capture
// "calls.pcap:frame 1041 (10.0.0.1 > 10.0.0.2, INVITE, Call-ID 3c26@host)"
std::string placeName(const Found &body, Redactor *redactor);

// "frame 1041 (10.0.0.1 > 10.0.0.2, INVITE, Call-ID 3c26@host)"; empty without a packet.
std::string packetName(const Found &body, Redactor *redactor);

// The members "frame", "time", "source" and so on that are known. For an origin that isKnown().
nlohmann::ordered_json jsonOf(const Origin &origin);

} // namespace cli
