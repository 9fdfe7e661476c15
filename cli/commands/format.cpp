// sdpline format: bodies written back as the library writes them.
#include "commands/commands.hpp"

#include <iostream>

#include "input/body.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

struct Options {
    DecodeOptions decode;
    WriteOptions write;
};

int run(const Options &options) {
    configure(options.write);
    bool first = true;
    return forEachBody(options.decode, [&](const std::string & /*title*/, SdpLine &line) {
        std::string error;
        const std::optional<std::string> text = encodeBody(line, error);
        if (!text) {
            std::cerr << "sdpline: " << error << '\n';
            return false;
        }
        // An empty line ends a body, so it may stand between two.
        std::cout << (first ? "" : view(SdpGetCrlfString(0))) << *text;
        first = false;
        return true;
    });
}

} // namespace

void addFormat(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"format", "Decode bodies and write them back.",
                    "Several bodies are written with an empty line between them.\n\n"
                    "Examples:\n"
                    "  sdpline format offer.sip > offer.sdp\n"
                    "  sdpline format --line-end lf --t38 2 fax.sdp\n"
                    "  sdpline format --redact offer.sip\n\n"
                    "Exit status: 0, or 1 when a body was refused or could not be read."},
                   [options, &outcome] { outcome.status = run(*options); });
    addPaths(command, options->decode, "SDP, or SIP messages that carry it");
    addWriteOptions(command, options->write);
    addAvpf(command, options->decode.avpf);
    addRedact(command, options->decode.redact);
}

} // namespace cli
