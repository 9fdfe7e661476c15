// JSON is refused with a reason or gives a body that can be written, shown, and turned into JSON
// that means the same; and every body that decodes comes back from its JSON as it was.
#include <nlohmann/json.hpp>

#include "fuzz.hpp"
#include "output/tree.hpp"
#include "json/json.hpp"

namespace {

using fuzz::require;
using nlohmann::json;

void requireSameFromJson(SdpLine &line) {
    const std::string tree = cli::describeTree(line);
    const std::string document = cli::jsonOf(line).dump();
    std::string error;
    const cli::Body again = cli::bodyOf(json::parse(document), error);
    require(again != nullptr, "a body is read from its JSON", error);
    require(cli::describeTree(*again) == tree, "it is the same body", document);
    require(cli::jsonOf(*again).dump() == document, "it has the same JSON", document);
}

void readJson(std::string_view text) {
    const json document = json::parse(text, nullptr, false);
    if (document.is_discarded()) {
        return;
    }
    std::string error;
    const cli::Body body = cli::bodyOf(document, error);
    require((body == nullptr) == !error.empty(), "a document is a body, or none for a reason");
    if (body == nullptr) {
        return;
    }
    requireSameFromJson(*body);
    require(fuzz::encode(*body).has_value(), "what is read can be written");
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
