// Captured calls: SIP messages between two telephones, with media packets between them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// A SIP message of a call, and the side that sends it.
struct CallMessage {
    bool fromCaller;
    std::string text;
};

// "v=0" to "t=0 0" of a side, then the m= lines: "audio 49170 RTP/AVP 0\r\na=sendrecv\r\n".
std::string callBody(std::string_view address, unsigned version,
                     const std::vector<std::string> &media);

class CallFlow {
public:
    explicit CallFlow(std::string callId) : callId_(std::move(callId)) {}

    // A request of a side; the CSeq rises with every request but ACK.
    CallFlow &request(bool fromCaller, const std::string &method, const std::string &body = "");
    // The response to the last request of the other side: "200 OK".
    CallFlow &response(bool fromCaller, const std::string &status, const std::string &body = "");

    const std::vector<CallMessage> &messages() const { return messages_; }

private:
    std::string head(const std::string &first, bool requestOfCaller, const std::string &method);
    void add(bool fromCaller, std::string head, const std::string &body);

    std::string callId_;
    std::string method_;
    bool requestOfCaller_ = true;
    unsigned sequence_ = 0;
    std::vector<CallMessage> messages_;
};

// INVITE, 100, 180, 200, ACK, BYE, 200 without faults.
CallFlow goodCall(const std::string &callId);

// One call without faults, then one call for each fault.
std::vector<CallFlow> exampleCalls();

} // namespace support
