#include "input/body.hpp"

#include <algorithm>
#include <limits>

#include "output/text.hpp"

namespace cli {

namespace {

struct ReleaseBuffer {
    void operator()(SipStringBuffer *buffer) const { SipSbReleaseStringBuffer(buffer); }
};

struct ReleaseRef {
    void operator()(SipRefString *text) const { SipSmReleaseRefString(text); }
};
using RefText = std::unique_ptr<SipRefString, ReleaseRef>;

std::string textOf(const SipRefString *text) {
    return {SipSmGetDataFromRefString(text), SipSmGetLenFromRefString(text)};
}

} // namespace

Decoded decodeBody(std::string_view text) {
    // A length that does not fit is too long anyway.
    const auto size =
        static_cast<uint32_t>(std::min<size_t>(text.size(), std::numeric_limits<uint32_t>::max()));
    const SipString input = {size, const_cast<char *>(text.data())};
    SdpLine *line = nullptr;
    const SDPResult result = SdpLibDecodeSdp(&input, &line);
    Decoded decoded = {result, {}, Body(line)};
    if (result != 0) {
        SdpLibGetLastFailure(&decoded.failure);
    }
    if (decoded.failure.ulResult != result) {
        decoded.failure = {result, 0, 0, 0, 0, ""}; // refused before the parser saw it
    }
    return decoded;
}

std::optional<std::string> encodeBody(SdpLine &line, std::string &error) {
    SipStringBuffer *buffer = nullptr;
    SipRefString *reference = nullptr;
    const SDPResult result = SdpLibEncodeSdp(&line, &buffer);
    const std::unique_ptr<SipStringBuffer, ReleaseBuffer> written(buffer);
    if (result != 0 || SipSbConvertToRefString(buffer, &reference) != 0) {
        SDPResultText text = {};
        SdpLibDescribeResult(result, &text);
        error = "the body cannot be written";
        if (result != 0) {
            error += ": " + std::string(text.pcSentence) + " (" + codeText(result) + ')';
        }
        return std::nullopt;
    }
    return textOf(RefText(reference).get());
}

} // namespace cli
