#include "support/hostile.hpp"

#include <bit>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "sdpline/sdpline.h"

namespace support {

namespace {

constexpr std::string_view kStart = "v=0\no=- 1 1 IN IP4 x\ns=-\n";
constexpr std::string_view kTimes = "t=0 0\n";
constexpr std::string_view kMedia = "m=x 1 x x\n";

// A head after kStart, then one unit as often as the body has room for it.
struct Hostile {
    const char *name;
    std::string head;
    std::string unit;
};

std::string times(std::string_view text, size_t count) {
    std::string result;
    while (count-- > 0) {
        result += text;
    }
    return result;
}

// The maximum number of payload numbers of one line.
std::string allPayloads() {
    return "m=x 1 RTP/AVP" + times(" 0", SDP_MAX_PAYLOADS) + "\n";
}

const std::string kTimesHead(kTimes);
const std::string kMediaHead(kMedia);

const Hostile kHostile[] = {
    {"attributes without value", kTimesHead, "a=x\n"},
    {"attributes with value", kTimesHead, "a=x:y\n"},
    {"media attributes", kMediaHead, "a=x\n"},
    {"mode attributes", kTimesHead, "a=fax\n"},
    {"text attributes", kTimesHead, "a=cat:x\n"},
    {"rtpmaps", kTimesHead, "a=rtpmap:0 /0\n"},
    {"preconditions", kTimesHead, "a=curr:x e2e none\n"},
    {"e= lines", "", "e=x\n"},
    {"p= lines", "", "p=x\n"},
    {"b= lines", "", "b=x\n"},
    {"media b= lines", kMediaHead, "b=x\n"},
    {"t= lines", "", "t=0 0\n"},
    {"t= lines with an r= line", "", "t=0 0\nr=0\n"},
    {"r= lines", kTimesHead, "r=0\n"},
    {"typed times", kTimesHead + "r=0", " 0"},
    {"typed times with unit", kTimesHead + "r=0", " 0d"},
    {"r= lines of two", kTimesHead, "r=0 0\n"},
    {"m= lines", "", "m=x 1 x x\n"},
    {"m= lines without formats", "", "m=x 0 RTP/AVP\n"},
    {"m= lines with a payload", "", "m=x 1 RTP/AVP 0\n"},
    {"m= lines with all payloads", "", allPayloads()},
    {"m= lines with an attribute", "", "m=x 1 x x\na=x\n"},
    {"m= lines with b= and a=", "", "m=x 1 x x\nb=x\na=x\n"},
    {"m= lines with every line", "", "m=x 1 x x\ni=x\nc=IN IP4 0.0.0.0\nb=x\nk=x\na=x\n"},
    {"IPv6 addresses", "", "m=x 1 x x\nc=IN IP6 1:2:3:4:5:6:7.7.7.7\n"},
    {"short IPv6 addresses", "", "m=x 1 x x\nc=IN IP6 ::\n"},
    {"texts of single letters", "", "e=" + times(" x", 511) + "\n"},
    {"values of single letters", kTimesHead, "a=cat:" + times("x ", 511) + "\n"},
    {"rtpmaps with the longest names", kTimesHead, "a=rtpmap:0 " + times("x", 255) + "/0\n"},
    {"the longest attribute names", kTimesHead, "a=" + times("x", 1023) + "\n"},
    {"the longest numbers", kTimesHead, "a=ptime:" + times("7", 1023) + "\n"},
};

// A run of one unit within a mixed body, in the order that bodies have.
struct Section {
    std::string_view head;
    std::string_view unit;
    std::string_view tail;
};

constexpr Section kSections[] = {
    {"", "e=x\n", ""},   {"", "p=x\n", ""}, {"", "b=x\n", ""},       {kTimes, "", ""},
    {"r=0", " 0", "\n"}, {"", "a=x\n", ""}, {"", "m=x 1 x x\n", ""}, {"", "a=x\n", ""},
};
constexpr uint32_t kTimesSection = 3;

void fillUp(std::string &body, std::string_view unit, size_t length) {
    while (!unit.empty() && body.size() + unit.size() <= length) {
        body += unit;
    }
}

std::string hostileBody(const Hostile &kind) {
    std::string body = std::string(kStart) + kind.head;
    fillUp(body, kind.unit, SDP_MAX_BODY);
    return body;
}

// The sections of the set, the t= line always among them, share the body's bytes.
std::string mixedBody(uint32_t set) {
    set |= 1u << kTimesSection;
    auto left = static_cast<size_t>(std::popcount(set)) - 1;
    std::string body(kStart);
    for (uint32_t i = 0; i < std::size(kSections); ++i) {
        if ((set >> i & 1) == 0) {
            continue;
        }
        const Section &section = kSections[i];
        body += section.head;
        if (!section.unit.empty()) {
            const size_t share = (SDP_MAX_BODY - kTimes.size() - body.size()) / left--;
            fillUp(body, section.unit, body.size() + share);
        }
        body += section.tail;
    }
    return body;
}

constexpr std::string_view kOfferStart = "v=0\r\n"
                                         "o=alice 2890844526 2890844526 IN IP4 192.0.2.10\r\n"
                                         "s=-\r\n"
                                         "c=IN IP4 192.0.2.10\r\n"
                                         "b=AS:1024\r\n"
                                         "t=0 0\r\n";

constexpr std::string_view kOfferMedia =
    "m=audio 49170 RTP/AVP 0 8 18 96 97 101\r\n"
    "a=rtpmap:0 PCMU/8000\r\n"
    "a=rtpmap:8 PCMA/8000\r\n"
    "a=rtpmap:18 G729/8000\r\n"
    "a=fmtp:18 annexb=no\r\n"
    "a=rtpmap:96 AMR-WB/16000/1\r\n"
    "a=fmtp:96 mode-change-capability=2;max-red=0\r\n"
    "a=rtpmap:97 opus/48000/2\r\n"
    "a=fmtp:97 maxplaybackrate=16000; stereo=0; useinbandfec=1\r\n"
    "a=rtpmap:101 telephone-event/8000\r\n"
    "a=fmtp:101 0-16\r\n"
    "a=curr:qos local none\r\n"
    "a=des:qos mandatory local sendrecv\r\n"
    "a=ptime:20\r\n"
    "a=maxptime:240\r\n"
    "a=rtcp:49171 IN IP4 192.0.2.10\r\n"
    "a=sendrecv\r\n";

} // namespace

std::vector<HostileBody> hostileBodies() {
    std::vector<HostileBody> bodies;
    for (const Hostile &kind : kHostile) {
        bodies.push_back({kind.name, hostileBody(kind)});
    }
    return bodies;
}

std::vector<HostileBody> hostileMixtures() {
    constexpr uint32_t all = (1u << std::size(kSections)) - 1;
    std::vector<HostileBody> bodies;
    for (uint32_t set = 1; set <= all; ++set) {
        const bool two = std::popcount(set & ~(1u << kTimesSection)) == 2;
        if ((two && (set >> kTimesSection & 1) == 0) || set == all) {
            bodies.push_back({"mixture " + std::to_string(set), mixedBody(set)});
        }
    }
    return bodies;
}

// Attributes of the last media description fill the rest, which is too small for another
// description.
std::string typicalOffer() {
    std::string body(kOfferStart);
    fillUp(body, kOfferMedia, SDP_MAX_BODY);
    constexpr std::string_view last = "a=x-note:";
    constexpr std::string_view lineEnd = "\r\n";
    fillUp(body, "a=fmtp:101 0-16\r\n", SDP_MAX_BODY - last.size() - lineEnd.size() - 1);
    const size_t left = SDP_MAX_BODY - body.size() - last.size() - lineEnd.size();
    return body.append(last).append(left, 'x').append(lineEnd);
}

} // namespace support
