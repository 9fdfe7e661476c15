#include "bodies.hpp"

#include <initializer_list>
#include <string_view>
#include <utility>

#include "sdpline/sdpline.h"
#include "support/cases.hpp"

namespace bench {

namespace {

std::string joined(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const std::string_view line : lines) {
        text += line;
        text += "\r\n";
    }
    return text;
}

std::string audioOffer() {
    return joined(
        {"v=0", "o=alice 2890844526 2890844526 IN IP4 192.0.2.101", "s=-", "c=IN IP4 192.0.2.101",
         "t=0 0", "m=audio 49172 RTP/AVP 0 8 101", "a=rtpmap:0 PCMU/8000", "a=rtpmap:8 PCMA/8000",
         "a=rtpmap:101 telephone-event/8000", "a=fmtp:101 0-15", "a=ptime:20", "a=sendrecv"});
}

std::string audioMedia() {
    return joined({"m=audio 49170 RTP/AVP 0 8 18 96 97 101",
                   "c=IN IP4 192.0.2.101",
                   "b=AS:80",
                   "a=rtpmap:0 PCMU/8000",
                   "a=rtpmap:8 PCMA/8000",
                   "a=rtpmap:18 G729/8000",
                   "a=fmtp:18 annexb=no",
                   "a=rtpmap:96 AMR-WB/16000",
                   "a=fmtp:96 mode-set=0,1,2; mode-change-period=2; octet-align=1",
                   "a=rtpmap:97 AMR/8000",
                   "a=fmtp:97 mode-set=7; octet-align=1",
                   "a=rtpmap:101 telephone-event/8000",
                   "a=fmtp:101 0-15",
                   "a=ptime:20",
                   "a=maxptime:240",
                   "a=curr:qos local none",
                   "a=curr:qos remote none",
                   "a=des:qos mandatory local sendrecv",
                   "a=des:qos optional remote sendrecv",
                   "a=sendrecv"});
}

std::string videoMedia() {
    return joined({"m=video 51372 RTP/AVP 31 99", "b=AS:384", "a=rtpmap:31 H261/90000",
                   "a=rtpmap:99 H264/90000",
                   "a=fmtp:99 profile-level-id=42e01f; packetization-mode=1", "a=framerate:30",
                   "a=sendrecv"});
}

std::string faxMedia() {
    return joined({"m=image 49180 udptl t38", "a=T38FaxVersion:0", "a=T38MaxBitRate:14400",
                   "a=T38FaxRateManagement:transferredTCF", "a=T38FaxMaxBuffer:72",
                   "a=T38FaxMaxDatagram:316", "a=T38FaxUdpEC:t38UDPRedundancy"});
}

std::string session() {
    return joined({"v=0", "o=gateway 2890844526 2890842807 IN IP4 192.0.2.101", "s=call",
                   "c=IN IP4 192.0.2.101", "t=0 0"});
}

// Attributes as browsers and gateways send them, up to `size` bytes of text.
std::string heavyMedia(size_t size) {
    std::string text = joined({"m=audio 9 RTP/AVP 111 103 104 9 0 8 106 105 13 110 112 113 126"});
    for (int i = 1; text.size() < size; ++i) {
        const std::string number = std::to_string(i);
        text += "a=candidate:" + number + " 1 udp 2122260223 192.0.2." + number +
                " 54400 typ host generation 0\r\n";
        text += "a=rtpmap:" + std::to_string(95 + i) + " opus/48000/2\r\n";
        text += "a=rtcp-fb:" + std::to_string(95 + i) + " transport-cc\r\n";
        text += "a=extmap:" + number + " urn:ietf:params:rtp-hdrext:ssrc-audio-level\r\n";
    }
    return text;
}

// Cases with a setting would be refused, or written differently, without it.
Body mixture() {
    Body body = {"mixture", {}};
    for (const support::Case &current : support::readCases(SDPLINE_CASES)) {
        if (!current.refused && !current.avpf && !current.family &&
            current.maxBody == SDP_MAX_BODY && current.t38Style == 0 &&
            current.lineEnd == SDP_LINE_END_CRLF) {
            body.texts.push_back(current.body);
        }
    }
    return body;
}

constexpr std::string_view kAttributes[] = {
    "rtpmap:0 A/1",
    "rtpmap:96 opus/48000/2",
    "sendrecv",
    "sendonly",
    "recvonly",
    "inactive",
    "ptime:1",
    "maxptime:1",
    "framerate:1",
    "fmtp:0 1",
    "cat:1",
    "keywds:1",
    "tool:1",
    "orient:seascape",
    "type:test",
    "charset:1",
    "sdplang:1",
    "lang:1",
    "quality:1",
    "T38FaxVersion:0",
    "T38MaxBitRate:0",
    "T38FaxFillBitRemoval",
    "T38FaxTranscodingMMR",
    "T38FaxTranscodingJBIG",
    "T38FaxRateManagement:localTCF",
    "T38FaxMaxBuffer:0",
    "T38FaxMaxDatagram:0",
    "T38FaxUdpEC:t38UDPFEC",
    "silenceSupp:on - - - -",
    "ecan:b on -",
    "fax",
    "modem",
    "X-fax",
    "X-modem",
    "des:qos none e2e none",
    "curr:qos e2e none",
    "conf:qos e2e none",
    "ipbcp:1 Accepted",
    "setup:active",
    "x",
    "x:1",
};

constexpr size_t kLongest = SDP_MAX_BODY;

} // namespace

size_t Body::size() const {
    size_t sum = 0;
    for (const std::string &text : texts) {
        sum += text.size();
    }
    return sum;
}

const std::vector<Body> &bodies() {
    static const std::vector<Body> all = {
        {"240B", {audioOffer()}},
        {"1KB", {session() + audioMedia() + videoMedia() + faxMedia()}},
        {"2KB", {session() + audioMedia() + videoMedia() + faxMedia() + heavyMedia(840)}},
        {"4KB", {session() + audioMedia() + heavyMedia(3150)}},
        mixture(),
    };
    return all;
}

const Body &shortestOffer() {
    static const Body body = {
        "130B",
        {joined({"v=0", "o=alice 2890844526 2890844526 IN IP4 192.0.2.101", "s=-",
                 "c=IN IP4 192.0.2.101", "t=0 0", "m=audio 49172 RTP/AVP 0", "a=sendrecv"})}};
    return body;
}

const std::vector<Body> &attributeBodies() {
    static const std::vector<Body> all = [] {
        std::vector<Body> bodies;
        for (const std::string_view attribute : kAttributes) {
            const std::string line = joined({"a=" + std::string(attribute)});
            std::string text = session() + joined({"m=audio 9 RTP/AVP 0"});
            while (text.size() + line.size() <= kLongest) {
                text += line;
            }
            bodies.push_back({std::string(attribute), {std::move(text)}});
        }
        return bodies;
    }();
    return all;
}

// ---- Bodies with faults

namespace {

// The beginning of a line that can have a fault, and the place for its additional blank.
struct Place {
    std::string_view line;
    char after; // this byte, 0: the line's last
};

constexpr Place kPlaces[] = {{"o=", ' '},       {"t=", 0},
                             {"m=", ' '},       {"a=rtpmap:", ':'},
                             {"a=ptime:", ':'}, {"a=maxptime:", ':'},
                             {"a=sendrecv", 0}, {"a=framerate:", ':'},
                             {"a=T38", ':'}};

std::string untidyLine(const std::string &line) {
    for (const Place &place : kPlaces) {
        if (line.starts_with(place.line)) {
            const size_t at = place.after == 0 ? line.size() - 1 : line.find(place.after);
            return line.substr(0, at + 1) + ' ' + line.substr(at + 1);
        }
    }
    return line;
}

std::string untidyText(const std::string &text, Fault fault) {
    std::string result;
    size_t begin = 0;
    for (size_t end; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
        const std::string line = text.substr(begin, end - begin);
        const bool faulty = fault == Fault::Each || (fault == Fault::First && line[0] == 'o');
        result += (faulty ? untidyLine(line) : line) + "\r\n";
    }
    return result + (fault == Fault::First ? "a=rtcp-mux\r\n" : "a=rtcp-mux:\r\n");
}

} // namespace

Body untidy(const Body &body, Fault fault) {
    Body result = {body.name, {}};
    for (const std::string &text : body.texts) {
        result.texts.push_back(untidyText(text, fault));
    }
    return result;
}

Body withoutFaults(const Body &body) {
    Body result = body;
    for (std::string &text : result.texts) {
        text += "a=rtcp-mux\r\n";
    }
    return result;
}

} // namespace bench
