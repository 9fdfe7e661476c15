// sdpline decode: bodies as trees, or as JSON.
#include "commands/commands.hpp"

#include <iostream>

#include "output/diagnostic.hpp"
#include "output/tree.hpp"
#include "json/json.hpp"

namespace cli {

namespace {

int run(const DecodeOptions &options) {
    bool first = true;
    return forEachBody(options, [&](const std::string &title, SdpLine &line) {
        if (options.json) {
            std::cout << dumped(jsonOf(line));
            return true;
        }
        if (!title.empty()) {
            std::cout << (first ? "" : "\n") << title << '\n';
        }
        std::cout << describeTree(line);
        first = false;
        return true;
    });
}

} // namespace

void addDecode(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<DecodeOptions>();
    CLI::App &command =
        addCommand(app,
                   {"decode", "Print decoded bodies as trees.",
                    "Examples:\n"
                    "  sdpline decode offer.sip\n"
                    "  sdpline decode --json offer.sdp | jq '.media[].port'\n"
                    "  sdpline decode --redact trace.txt\n\n"
                    "Exit status: 0, or 1 when a body was refused or could not be read."},
                   [options, &outcome] { outcome.status = run(*options); });
    addPaths(command, *options, "SDP, or SIP messages that carry it");
    addFlag(command, "--json", options->json,
            "Print JSON that holds every field, one document for each body");
    addAvpf(command, options->avpf);
    addRedact(command, options->redact);
}

} // namespace cli
