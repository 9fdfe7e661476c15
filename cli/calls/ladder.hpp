// Prints a call as text: as one line, or as a ladder of all messages.
#pragma once

#include <string>
#include <vector>

#include "calls/call.hpp"

namespace cli {

// "Call-ID 3c26@host (sip:a@x > sip:b@y, 7 messages): 1 offer, 1 answer: nothing wrong"
std::string callLine(const Call &call);

// Senders and receivers, in the order of their first message.
std::vector<std::string> sidesOf(const Call &call);

// "1.250": seconds since the first message of the call; empty for messages from a text.
std::string timeOf(const Call &call, const CallMessage &message);

// "frame 12", or "line 80" for a message from a text.
std::string placeOf(const CallMessage &message);

// "200 OK (answer 1)"
std::string labelOf(const CallMessage &message);

// "the answer has ... [StreamMissing, RFC 3264 6]"
std::string findingText(const CallFinding &finding);

// The sides as columns and the messages as arrows between them, each with its faults below.
std::string ladderOf(const Call &call);

} // namespace cli
