// sdpline decode: prints bodies as trees, or as JSON.
#include "commands/commands.hpp"

#include <iostream>

#include "output/diagnostic.hpp"
#include "output/tree.hpp"
#include "json/json.hpp"

namespace cli {

namespace {

int runDecode(const DecodeOptions &options) {
    bool first = true;
    return forEachBody(options, [&](const std::string &title, sdpline::Body &body) {
        if (options.json) {
            std::cout << dumped(jsonOf(*body.record()));
            return true;
        }
        if (!title.empty()) {
            std::cout << (first ? "" : "\n") << title << '\n';
        }
        std::cout << describeTree(*body.record(), TreeStyle::Explained);
        first = false;
        return true;
    });
}

constexpr CommandText kDecodeText = {"decode", "Print decoded bodies as trees.", R"(Examples:
  sdpline decode offer.sip
  sdpline decode --json offer.sdp | jq '.media[].port'
  sdpline decode --redact trace.txt

Exit status: 0 when every body is accepted, 1 when one is refused, 2 when something
cannot be read.)"};

} // namespace

void addDecode(CLI::App &app, int &status) {
    const auto options = std::make_shared<DecodeOptions>();
    CLI::App &command =
        addCommand(app, kDecodeText, [options, &status] { status = runDecode(*options); });
    addPaths(command, *options);
    addFlag(command, "--json", options->json,
            "Print JSON with every field, one document for each body");
    addDecoderOptions(command, *options);
    addTidyFlag(command, *options);
    addRedact(command, *options);
}

} // namespace cli
