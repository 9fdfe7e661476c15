// sdpline format: writes bodies as the library writes them.
#include "commands/commands.hpp"

#include <iostream>

#include "text/strings.hpp"

namespace cli {

namespace {

struct FormatOptions {
    DecodeOptions decode;
    WriteOptions write;
};

int runFormat(const FormatOptions &options) {
    configure(options.write);
    bool first = true;
    return forEachBody(options.decode, [&](const std::string & /*title*/, sdpline::Body &body) {
        const sdpline::Result<std::string> text = body.encode();
        if (!text) {
            std::cerr << "sdpline: the body cannot be written: " << text.error().message() << '\n';
            return false;
        }
        // An empty line ends a body, so it can separate two bodies.
        std::cout << (first ? "" : view(SdpGetCrlfString(0))) << *text;
        first = false;
        return true;
    });
}

constexpr CommandText kFormatText = {
    "format", "Decode bodies and write them back.",
    R"(Several bodies are written with an empty line between them. For a body without a
t= line "t=0 0" is written.

Examples:
  sdpline format offer.sip > offer.sdp
  sdpline format --line-end lf --t38 2 fax.sdp
  sdpline format --redact offer.sip

Exit status: 0 when every body is accepted, 1 when one is refused, 2 when something
cannot be read.)"};

} // namespace

void addFormat(CLI::App &app, int &status) {
    const auto options = std::make_shared<FormatOptions>();
    CLI::App &command =
        addCommand(app, kFormatText, [options, &status] { status = runFormat(*options); });
    addPaths(command, options->decode);
    addWriteOptions(command, options->write);
    addDecoderOptions(command, options->decode);
    addTidyFlag(command, options->decode);
    addRedact(command, options->decode);
}

} // namespace cli
