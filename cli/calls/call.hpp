// A call: its SIP messages in the order of the input, and the faults of its offers and answers.
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
    Packet packet;      // with masks, if wanted; without addresses where the input is a text
    size_t line = 1;    // where the message begins in a text
    std::string sender; // with masks, if wanted
    std::string receiver;
    std::string body;      // of type application/sdp; the first one of several
    bool repeated = false; // a retransmission, or the same message on another hop
    std::string role;      // "offer 1", "answer 1"; empty for other messages
};

// A fault in the offers and answers of a call.
struct CallFinding {
    size_t message; // index of the message with the fault
    std::string sentence;
    std::string name;      // of the check or the reason
    std::string reference; // "RFC 3264 6"; empty for a check of the decoder
};

struct Call {
    std::string path;   // of the input with the first message
    std::string callId; // with masks, if wanted; the same for `from` and `to`
    std::string from;
    std::string to;
    std::vector<CallMessage> messages;
    std::vector<CallFinding> findings;
    size_t offers = 0;
    size_t answers = 0;
};

} // namespace cli
