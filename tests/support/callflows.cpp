#include "support/callflows.hpp"

namespace support {

namespace {

constexpr std::string_view kCaller = "10.0.0.1";
constexpr std::string_view kCalled = "10.0.0.2";

const std::string kPcmu = "audio 49170 RTP/AVP 0 101\r\na=rtpmap:101 telephone-event/8000\r\n";

std::string caller(unsigned version, const std::vector<std::string> &media) {
    return callBody(kCaller, version, media);
}

std::string called(unsigned version, const std::vector<std::string> &media) {
    return callBody(kCalled, version, media);
}

} // namespace

std::string callBody(std::string_view address, unsigned version,
                     const std::vector<std::string> &media) {
    const std::string where(address);
    std::string body = "v=0\r\no=- 1 " + std::to_string(version) + " IN IP4 " + where +
                       "\r\ns=-\r\nc=IN IP4 " + where + "\r\nt=0 0\r\n";
    for (const std::string &one : media) {
        body += "m=" + one;
    }
    return body;
}

std::string CallFlow::head(const std::string &first, bool requestOfCaller,
                           const std::string &method) {
    const std::string alice = "\"Alice\" <sip:alice@10.0.0.1>;tag=a";
    const std::string bob = "<sip:bob@10.0.0.2>";
    const bool tagged = sequence_ > 1 || !first.ends_with("SIP/2.0");
    return first + "\r\nVia: SIP/2.0/UDP " + std::string(requestOfCaller ? kCaller : kCalled) +
           ":5060;branch=z9hG4bK" + std::to_string(sequence_) + method +
           "\r\nFrom: " + (requestOfCaller ? alice : bob + ";tag=b") +
           "\r\nTo: " + (requestOfCaller ? bob + (tagged ? ";tag=b" : "") : alice) +
           "\r\nCall-ID: " + callId_ + "\r\nCSeq: " + std::to_string(sequence_) + ' ' + method +
           "\r\n";
}

void CallFlow::add(bool fromCaller, std::string head, const std::string &body) {
    if (!body.empty()) {
        head += "Content-Type: application/sdp\r\n";
    }
    head += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    messages_.push_back({fromCaller, head + body});
}

CallFlow &CallFlow::request(bool fromCaller, const std::string &method, const std::string &body) {
    sequence_ += method == "ACK" ? 0 : 1;
    requestOfCaller_ = fromCaller;
    method_ = method;
    const std::string uri = fromCaller ? "sip:bob@10.0.0.2" : "sip:alice@10.0.0.1";
    add(fromCaller, head(method + ' ' + uri + " SIP/2.0", fromCaller, method), body);
    return *this;
}

CallFlow &CallFlow::response(bool fromCaller, const std::string &status, const std::string &body) {
    add(fromCaller, head("SIP/2.0 " + status, requestOfCaller_, method_), body);
    return *this;
}

CallFlow goodCall(const std::string &callId) {
    CallFlow call(callId);
    call.request(true, "INVITE", caller(1, {kPcmu}))
        .response(false, "100 Trying")
        .response(false, "180 Ringing")
        .response(false, "200 OK", called(1, {"audio 3456 RTP/AVP 0\r\n"}))
        .request(true, "ACK")
        .request(false, "BYE")
        .response(true, "200 OK");
    return call;
}

std::vector<CallFlow> exampleCalls() {
    std::vector<CallFlow> calls = {goodCall("good@10.0.0.1")};
    std::string broken = caller(1, {kPcmu});
    broken.replace(broken.find("c=IN IP4 10.0.0.1"), 17, "c=IN IP4 10.0.0.256");
    calls.emplace_back("refused@10.0.0.1");
    calls.back()
        .request(true, "INVITE", broken)
        .response(false, "488 Not Acceptable Here")
        .request(true, "ACK");
    calls.emplace_back("lines@10.0.0.1");
    calls.back()
        .request(true, "INVITE", caller(1, {kPcmu, "video 51372 RTP/AVP 31\r\n"}))
        .response(false, "200 OK", called(1, {"audio 3456 RTP/AVP 0\r\n"}))
        .request(true, "ACK");
    calls.emplace_back("codec@10.0.0.1");
    calls.back()
        .request(true, "INVITE", caller(1, {"audio 49170 RTP/AVP 96\r\na=rtpmap:96 AMR/8000\r\n"}))
        .response(false, "200 OK", called(1, {"audio 3456 RTP/AVP 96\r\na=rtpmap:96 AMR/8000\r\n"}))
        .request(true, "ACK")
        .request(true, "INVITE", caller(1, {"audio 49170 RTP/AVP 96\r\na=rtpmap:96 iLBC/8000\r\n"}))
        .response(false, "200 OK",
                  called(2, {"audio 3456 RTP/AVP 96\r\na=rtpmap:96 iLBC/8000\r\n"}))
        .request(true, "ACK");
    calls.emplace_back("common@10.0.0.1");
    calls.back()
        .request(true, "INVITE", caller(1, {"audio 49170 RTP/AVP 18\r\n"}))
        .response(false, "200 OK", called(1, {"audio 3456 RTP/AVP 0 8\r\n"}))
        .request(true, "ACK");
    calls.emplace_back("hold@10.0.0.1");
    calls.back()
        .request(true, "INVITE", caller(1, {"audio 49170 RTP/AVP 0\r\na=inactive\r\n"}))
        .response(false, "200 OK", called(1, {"audio 3456 RTP/AVP 0\r\na=inactive\r\n"}))
        .request(true, "ACK");
    return calls;
}

} // namespace support
