// Reads an offer from standard input and writes an answer to it (RFC 3264): the first audio stream
// that offers PCMU or PCMA is accepted with them and telephone events, everything else is rejected.
//
//     c++ -std=c++20 answer.cpp $(pkg-config --cflags --libs sdpline) -o answer_cpp
//     ./answer_cpp < offer.sdp
#include <sdpline/sdpline.hpp>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool isSpeech(std::uint32_t payload) {
    return payload == 0 || payload == 8; // PCMU and PCMA, by RFC 3551
}

// The payload numbers of an offered stream that we speak; none without speech among them.
std::vector<std::uint32_t> chosenPayloads(const sdpline::Media &offered) {
    std::vector<std::uint32_t> chosen;
    if (offered.type() != sdpline::MediaType::Audio || offered.port() == 0 ||
        offered.protocol() != sdpline::Protocol::RtpAvp ||
        std::ranges::none_of(offered.payloads(), isSpeech)) {
        return chosen;
    }
    for (const std::uint32_t payload : offered.payloads()) {
        const auto map = offered.attributes().rtpMap(payload);
        if (isSpeech(payload) || (map && map->name == "telephone-event")) {
            chosen.push_back(payload);
        }
    }
    return chosen;
}

// Takes the offered descriptions of the payload numbers over, and sets the direction.
sdpline::Status describe(const sdpline::MediaEditor &answered, const sdpline::Media &offered,
                         sdpline::Direction direction) {
    for (const sdpline::Attribute line : offered.attributes()) {
        const auto map = line.as<sdpline::RtpMap>();
        const auto fmtp = line.as<sdpline::Fmtp>();
        const auto payload = map    ? std::optional(map->payload)
                             : fmtp ? fmtp->payload()
                                    : std::nullopt;
        if (!payload || std::ranges::count(answered.payloads(), *payload) == 0) {
            continue;
        }
        if (auto added = answered.attributes().add(line); !added) {
            return added;
        }
    }
    return answered.attributes().setDirection(sdpline::reversed(direction));
}

sdpline::Result<std::string> answerTo(std::string_view text) {
    const auto offer = sdpline::Body::decode(text);
    if (!offer) {
        return offer.error();
    }
    auto answer = sdpline::Body::create({.userName = "answerer",
                                         .sessionId = "1",
                                         .sessionVersion = "1",
                                         .address = "198.51.100.2"});
    if (!answer) {
        return answer.error();
    }
    if (auto set = answer->setConnection(sdpline::Address::v4({198, 51, 100, 2})); !set) {
        return set.error();
    }
    bool accepted = false;
    for (const sdpline::Media offered : offer->media()) {
        const auto payloads = accepted ? std::vector<std::uint32_t>() : chosenPayloads(offered);
        sdpline::MediaLine line = offered.line();
        line.port = 0; // rejected
        line.portCount = 1;
        if (!payloads.empty()) {
            line.port = 40000;
            line.payloads = payloads;
        }
        const auto answered = answer->media().add(line);
        if (!answered) {
            return answered.error();
        }
        if (!payloads.empty()) {
            accepted = true;
            if (auto done = describe(*answered, offered, offer->directionOf(offered)); !done) {
                return done.error();
            }
        }
    }
    return answer->encode();
}

} // namespace

int main() {
    const std::string offer(std::istreambuf_iterator<char>(std::cin), {});
    const auto answer = answerTo(offer);
    if (!answer) {
        std::cerr << "answer: " << answer.error().message() << '\n';
        return 1;
    }
    if (!(std::cout << *answer << std::flush)) {
        std::cerr << "answer: the answer cannot be written\n";
        return 1;
    }
    return 0;
}
