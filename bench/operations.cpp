#include "operations.hpp"

#include <utility>

#include "answer.h"
#include "clone.h"
#include "sdpline/negotiate.hpp"
#include "sdpline/sdptidy.h"

namespace bench {

namespace {

SdpLine *decode(const std::string &text) {
    const SipString given = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
    SdpLine *line = nullptr;
    SdpLibDecodeSdp(&given, &line);
    return line;
}

} // namespace

bool decodeAndRelease(const std::string &text) {
    SdpLine *line = decode(text);
    const bool done = line != nullptr;
    SdpLibReleaseSdp(&line);
    return done;
}

bool decodeEncodeAndRelease(const std::string &text) {
    SdpLine *line = decode(text);
    const bool done = line != nullptr && encodeAndRelease(line);
    SdpLibReleaseSdp(&line);
    return done;
}

bool encodeAndRelease(SdpLine *line) {
    SipStringBuffer *text = nullptr;
    const bool done = SdpLibEncodeSdp(line, &text) == 0;
    SipSbReleaseStringBuffer(text);
    return done;
}

bool clone(const sdpline::Body &body) {
    return static_cast<bool>(body.clone());
}

bool cloneByC(const sdpline::Body &body) {
    return ::cloneByC(body.record()) != 0;
}

bool serialise(SdpLine *line, std::vector<uint8_t> &buffer) {
    uint32_t written = 0;
    return SdpLibSerializeSdp(line, buffer.data(), static_cast<uint32_t>(buffer.size()),
                              &written) == 0;
}

bool tidyAndRelease(const std::string &text) {
    const SipString given = {static_cast<uint32_t>(text.size()), const_cast<char *>(text.data())};
    SDPTidyReport report;
    const bool done = SdpTidyText(&given, nullptr, &report) == 0;
    SdpTidyRelease(&report);
    return done;
}

bool answerByC(const std::string &text) {
    return ::answerByC(text.data(), static_cast<uint32_t>(text.size())) != 0;
}

bool negotiate(const sdpline::Body &offer, const sdpline::Body &local) {
    return sdpline::answer(offer, local).ok();
}

bool negotiateByC(const sdpline::Body &offer, const sdpline::Body &local) {
    SdpLine *answer = nullptr;
    SdpNegotiateReport *report = nullptr;
    const bool done =
        SdpNegotiateAnswer(offer.record(), local.record(), nullptr, nullptr, &answer, &report) == 0;
    SdpNegotiateReleaseReport(&report);
    SdpLibReleaseSdp(&answer);
    return done;
}

std::vector<sdpline::Body> decoded(const Body &body) {
    std::vector<sdpline::Body> result;
    for (const std::string &text : body.texts) {
        SdpLine *const line = decode(text);
        if (line == nullptr) {
            return {};
        }
        result.push_back(sdpline::Body::adopt(line));
    }
    return result;
}

// A written text may be longer than the text that was read, but by much less than its size.
std::vector<uint8_t> roomForText() {
    return std::vector<uint8_t>(size_t{2} * SDP_MAX_BODY);
}

} // namespace bench
