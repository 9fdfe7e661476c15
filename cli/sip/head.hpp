// The headers of a SIP message that say which call and which transaction it belongs to.
#pragma once

#include <string>
#include <string_view>

namespace cli {

struct SipHead {
    std::string method; // of the request, or of the request that a response responds to
    std::string status; // "200 OK"; empty for a request
    std::string callId;
    std::string cseq; // "1 INVITE"
    std::string from; // URIs: "sip:alice@example.com"
    std::string to;
    std::string fromTag;
    std::string toTag;

    bool isRequest() const { return status.empty(); }
    unsigned code() const; // 0 for a request
    // The tag of the side that sent the message.
    const std::string &senderTag() const { return isRequest() ? fromTag : toTag; }
};

// Of a message from its first line on, with its headers at least; all empty without a message.
SipHead sipHeadOf(std::string_view message);

} // namespace cli
