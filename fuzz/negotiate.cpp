// Takes two bodies as an offer and a local body: each m= line has an answer that passes the checks,
// that is the same for the same offer, and that both sides read alike. Takes them as an offer and
// its answer, and as a description and the next one. With any allocation failing nothing is leaked.
//
// The bodies are separated by a byte of 0.
#include <optional>

#include "fuzz.hpp"
#include "sdpline/negotiate.hpp"
#include "support/allocations.hpp"

namespace {

using fuzz::require;
using sdpline::Body;
using support::Allocations;

std::string textOf(const Body &body) {
    auto text = body.encode();
    require(text.ok(), "what was made can be written");
    return *text;
}

std::string listed(const std::vector<sdpline::Decision> &decisions) {
    std::string text;
    for (const auto &one : decisions) {
        text += one.sentence + '\n';
    }
    return text;
}

bool isMulticast(const Body &body, size_t stream) {
    const auto connection = body.connectionOf(body.media()[stream]);
    const auto octets = connection ? connection->address.octets() : std::span<const uint8_t>();
    return !octets.empty() && (octets.size() == 4 ? octets[0] >> 4 == 0xE : octets[0] == 0xFF);
}

void requireBothEnds(const Body &offer, const Body &answer) {
    const auto one = sdpline::agree(offer, answer, sdpline::Side::Offerer);
    const auto two = sdpline::agree(offer, answer, sdpline::Side::Answerer);
    require(one.ok() && two.ok(), "an agreement can be made");
    require(one->streams.size() == offer.media().size(), "every offered stream is in it");
    for (size_t i = 0; i < one->streams.size(); ++i) {
        const auto &ours = one->streams[i];
        const auto &theirs = two->streams[i];
        const auto turned =
            isMulticast(offer, i) ? theirs.direction : sdpline::reversed(theirs.direction);
        require(ours.accepted == theirs.accepted && ours.direction == turned &&
                    ours.held == theirs.peerHeld && ours.sendPTime == theirs.receivePTime &&
                    ours.formats.size() == theirs.formats.size(),
                "both ends see the same");
        for (size_t j = 0; j < ours.formats.size(); ++j) {
            require(ours.formats[j].send == theirs.formats[j].receive &&
                        ours.formats[j].receive == theirs.formats[j].send,
                    "what one end sends the other receives");
        }
    }
}

void requireAnswer(const Body &offer, const Body &local, const Body *previous,
                   const sdpline::AnswerOptions &options) {
    const auto answer = sdpline::answer(offer, local, previous, options);
    if (!answer) {
        require(answer.error().check == "TooLong", "an answer is made, or is too long");
        return;
    }
    const auto streams = offer.media();
    require(answer->body.media().size() == streams.size(), "every m= line has an answer");
    for (size_t i = 0; i < streams.size(); ++i) {
        const auto line = answer->body.media()[i];
        require(answer->streams[i].accepted == (line.port() != 0), "a rejected stream has port 0");
        require(line.type().text() == streams[i].type().text(), "the media word is the offer's");
    }
    const std::string text = textOf(answer->body);
    if (!options.avpForAvpf) {
        const std::string faults = listed(sdpline::check(offer, answer->body));
        require(faults.empty(), "an answer has no faults", faults + text);
    }
    requireBothEnds(offer, answer->body);
    const auto again = sdpline::answer(offer, local, &answer->body, options);
    // Whether a connection exists may follow from the first answer.
    if (textOf(offer).find("a=connection:") == std::string::npos) {
        require(again.ok() && textOf(again->body) == text, "the same offer has the same answer");
    }
}

// The codecs of the streams of a description, in their order.
std::string codecsOf(const Body &body) {
    const auto all = sdpline::agree(body, body, sdpline::Side::Offerer);
    require(all.ok(), "an agreement can be made");
    std::string codecs;
    for (const auto &stream : all->streams) {
        for (const auto &one : stream.formats) {
            codecs += one.name + '/' + std::to_string(one.clockRate) + '/' +
                      std::to_string(one.channels) + '\n';
        }
    }
    return codecs;
}

void requireNext(const Body &previous, const Body &wanted) {
    const auto next = sdpline::nextOffer(previous, wanted);
    if (!next) {
        require(next.error().check == "TooLong", "a next offer is made, or is too long");
        return;
    }
    for (const auto &fault : sdpline::checkNext(previous, *next)) {
        require(fault.name == "NextPortTooHigh", "a next offer has no faults", fault.sentence);
    }
    if (wanted.media().size() == 1 && next->media().size() == 1) {
        const std::string before = codecsOf(wanted);
        const std::string after = codecsOf(*next);
        require(after == before, "a new number has the codec of the old one", before + after);
    }
}

// The answer with the n-th allocation failing.
void answerShort(const Body &offer, const Body &local, uint32_t n) {
    const auto call = [&] {
        SdpLine *answer = nullptr;
        SdpNegotiateReport *report = nullptr;
        const SDPResult result =
            SdpNegotiateAnswer(offer.record(), local.record(), nullptr, nullptr, &answer, &report);
        require((result == 0) == (answer != nullptr && report != nullptr), "all or nothing");
        SdpLibReleaseSdp(&answer);
        SdpNegotiateReleaseReport(&report);
        return result;
    };
    Allocations::reset();
    const SDPResult whole = call();
    Allocations::failAt(1 + n % (Allocations::count() + 1));
    const SDPResult result = call();
    const bool failed = Allocations::failed();
    Allocations::reset();
    require(result == (failed ? 3u : whole), "a failed allocation is said to be one");
}

std::optional<Body> takeBody(std::string_view &text) {
    const size_t end = std::min(text.find('\0'), text.size());
    auto body = Body::decode(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return body ? std::optional(std::move(*body)) : std::nullopt;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    auto configuration = fuzz::Configuration::of(input.byte());
    configuration.t38Style = SDP_T38_STYLE_VALUE; // a flag of 0 that is not written says something
    configuration.apply();
    const uint8_t choice = input.byte();
    const uint32_t allocation = input.below(65536);
    std::string_view text = input.rest();
    Allocations::reset();
    const fuzz::NothingLeaks nothingLeaks;
    const auto offer = takeBody(text);
    const auto local = takeBody(text);
    const auto previous = takeBody(text);
    if (!offer || !local) {
        return 0;
    }
    sdpline::AnswerOptions options;
    options.ourOrder = (choice & 1) != 0;
    options.firstOnly = (choice & 2) != 0;
    options.avpForAvpf = (choice & 4) != 0;
    if ((choice & 8) != 0) {
        options.ports = {41000, 0, 70000};
    }
    requireAnswer(*offer, *local, previous ? &*previous : nullptr, options);
    requireBothEnds(*offer, *local);
    sdpline::check(*offer, *local);
    requireNext(*offer, *local);
    require(sdpline::capabilities(*local).ok(), "what we can do is said");
    answerShort(*offer, *local, allocation);
    return 0;
}
