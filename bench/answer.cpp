// The answer to a call by the C++ API; answer.c makes the same by the C interface.
#include <array>
#include <span>

#include "operations.hpp"

namespace bench {

namespace {

using sdpline::Attribute;
using sdpline::Media;

// The payload numbers of a stream that the answerer supports, by number and as a list.
struct Spoken {
    explicit Spoken(const Media &offered) {
        byNumber[0] = byNumber[8] = true; // PCMU and PCMA need no a=rtpmap
        for (const sdpline::RtpMap map : offered.attributes().each<sdpline::RtpMap>()) {
            if (map.payload < byNumber.size()) {
                byNumber[map.payload] = isSpoken(map.name);
            }
        }
        for (const std::uint32_t payload : offered.payloads()) {
            if (has(payload)) {
                list[count++] = payload;
            }
        }
    }

    static bool isSpoken(std::string_view name) {
        using sdpline::equalIgnoringCase;
        return equalIgnoringCase(name, "PCMU") || equalIgnoringCase(name, "PCMA") ||
               equalIgnoringCase(name, "opus") || equalIgnoringCase(name, "H264") ||
               equalIgnoringCase(name, "telephone-event");
    }

    bool has(std::uint32_t payload) const { return payload < byNumber.size() && byNumber[payload]; }

    std::array<bool, 128> byNumber{};
    std::array<std::uint32_t, SDP_MAX_PAYLOADS> list;
    std::size_t count = 0;
};

// Whether the answer repeats a line of the offer: not directions, candidates, and lines about
// unsupported payload numbers.
bool isMirrored(const Attribute &line, const Spoken &spoken) {
    if (const auto map = line.as<sdpline::RtpMap>()) {
        return spoken.has(map->payload);
    }
    if (const auto fmtp = line.as<sdpline::Fmtp>()) {
        return spoken.has(fmtp->payload().value_or(SDP_NOT_GIVEN));
    }
    return !line.as<sdpline::Direction>() && line.name() != "candidate";
}

bool answerMedia(const sdpline::Body &offer, const Media &offered, sdpline::Body &answer) {
    const Spoken spoken(offered);
    sdpline::MediaLine line = offered.line();
    line.port = 40000;
    line.portCount = 1;
    line.payloads = std::span(spoken.list).first(spoken.count);
    const auto media = answer.media().add(line);
    if (!media) {
        return false;
    }
    return media->attributes()
        .addAll(
            offered.attributes(), [&](const Attribute &one) { return isMirrored(one, spoken); },
            sdpline::reversed(offer.directionOf(offered)))
        .ok();
}

} // namespace

bool answerByCpp(const std::string &text) {
    const auto offer = sdpline::Body::decode(text);
    auto answer = sdpline::Body::create({.userName = "answerer",
                                         .sessionId = "3724394400",
                                         .sessionVersion = "3724394400",
                                         .address = "198.51.100.2"});
    if (!offer || !answer || !answer->setConnection(sdpline::Address::v4({198, 51, 100, 2}))) {
        return false;
    }
    for (const Media offered : offer->media()) {
        if (!answerMedia(*offer, offered, *answer)) {
            return false;
        }
    }
    return answer->encode().ok();
}

} // namespace bench
