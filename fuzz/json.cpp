// JSON is refused with a reason, or gives a body that can be encoded, printed, and written as JSON
// with the same meaning. A text written from JSON decodes to that JSON, and every decoded body
// equals the body read from its JSON.
#include <algorithm>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "fuzz.hpp"
#include "output/tree.hpp"
#include "json/json.hpp"
#include "json/readback.hpp"

namespace {

using fuzz::require;
using nlohmann::json;

// The decoder does not end a line at a CR alone.
std::string withLineFeeds(std::string text) {
    const SipString lineEnd = SdpGetCrlfString(0);
    if (std::string_view(lineEnd.pcData, lineEnd.ulLen) == "\r") {
        std::replace(text.begin(), text.end(), '\r', '\n');
    }
    return text;
}

fuzz::Body fromJson(const json &document, std::string &error) {
    std::optional<sdpline::Body> body = cli::bodyOf(document, error);
    return fuzz::Body(body ? std::move(*body).release() : nullptr);
}

void requireSameFromJson(SdpLine &line) {
    const std::string tree = cli::describeTree(line);
    const std::string document = cli::jsonOf(line).dump();
    std::string error;
    const fuzz::Body again = fromJson(json::parse(document), error);
    require(again != nullptr, "a body is read from its JSON", error);
    require(cli::describeTree(*again) == tree, "it is the same body", document);
    require(cli::jsonOf(*again).dump() == document, "it has the same JSON", document);
}

// It decodes with some setting of the decoder.
void requireReadBack(const json &document, const std::string &wanted) {
    std::string error;
    const std::optional<std::string> text = cli::textOfJson(document, error);
    require(text.has_value() == error.empty(), "a text, or none for a reason");
    bool same = !text;
    for (const uint32_t settings : {0u, 1u, 2u, 3u}) {
        SdpSetSupMedProtoRtpAvpf(settings & 1);
        SdpSetSupMedProtoRtpFamily(settings >> 1);
        const fuzz::Body body = text && !same ? fuzz::decode(withLineFeeds(*text)) : nullptr;
        same = same || (body && cli::jsonOf(*body).dump() == wanted);
    }
    require(same, "what is written decodes to the same JSON", text ? *text : "");
}

void readJson(std::string_view text) {
    const json document = json::parse(text, nullptr, false);
    if (document.is_discarded()) {
        return;
    }
    std::string error;
    const fuzz::Body body = fromJson(document, error);
    require((body == nullptr) == !error.empty(), "a document is a body, or none for a reason");
    if (body == nullptr) {
        return;
    }
    requireSameFromJson(*body);
    const std::string wanted = cli::jsonOf(*body).dump();
    require(fuzz::encode(*body).has_value(), "what is read can be written");
    requireReadBack(document, wanted);
    requireSameFromJson(*body);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    fuzz::Configuration::of(input.byte()).apply();
    const fuzz::NothingLeaks nothingLeaks;
    if (input.rest().starts_with('{')) {
        readJson(input.rest());
    } else if (const fuzz::Body body = fuzz::decode(input.rest())) {
        requireSameFromJson(*body);
    }
    return 0;
}
