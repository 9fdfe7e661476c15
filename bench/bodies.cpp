#include "bodies.hpp"

#include <initializer_list>
#include <string_view>

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

// Attributes as browsers and gateways send them by the dozen, up to `size` bytes of text.
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

} // namespace

const std::vector<Body> &bodies() {
    static const std::vector<Body> all = {
        {"240B", audioOffer()},
        {"1KB", session() + audioMedia() + videoMedia() + faxMedia()},
        {"2KB", session() + audioMedia() + videoMedia() + faxMedia() + heavyMedia(840)},
        {"4KB", session() + audioMedia() + heavyMedia(3150)},
    };
    return all;
}

} // namespace bench
