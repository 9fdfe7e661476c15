// A call as it was seen: its SIP messages in order, and what is wrong with its offers and answers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sip/head.hpp"
#include "sip/origin.hpp"

namespace cli {

struct CallMessage {
    SipHead head;
    Packet packet;      // as it may be shown; in a text without addresses
    size_t line = 1;    // that the message begins in, in a text
    std::string sender; // as it may be shown
    std::string receiver;
    std::string body;      // of type application/sdp; the first one of several
    bool repeated = false; // seen before: sent again, or on another hop
    std::string role;      // "offer 1", "answer 1"; empty where it is neither
};

// Something that keeps a call from what it was made for.
struct CallFinding {
    size_t message; // that it was seen at
    std::string sentence;
    std::string name;      // of the check or the reason
    std::string reference; // "RFC 3264 6"; empty for a check of the decoder
};

struct Call {
    std::string path;   // of the input that it begins in
    std::string callId; // as it may be shown, here and below
    std::string from;
    std::string to;
    std::vector<CallMessage> messages;
    std::vector<CallFinding> findings;
    size_t offers = 0;
    size_t answers = 0;
};

} // namespace cli
