// What several subcommands share.
#include "commands/commands.hpp"

#include <iostream>

#include "input/input.hpp"
#include "output/diagnostic.hpp"

namespace cli {

void addPaths(CLI::App &command, DecodeOptions &options, const std::string &what) {
    addWords(command, "FILE", options.paths, what + "; - is standard input");
}

void addAvpf(CLI::App &command, bool &avpf) {
    addFlag(command, "--avpf", avpf, "Take RTP/AVPF for a protocol of its own");
}

void addRedact(CLI::App &command, bool &redact) {
    addFlag(command, "--redact", redact,
            "Mask addresses, names, keys and credentials, equal ones equally");
}

void addWriteOptions(CLI::App &command, WriteOptions &options) {
    addChoice(command, "--line-end", options.lineEnd, "END", {"crlf", "lf", "cr"},
              "Line end: crlf (the default), lf or cr");
    addNumber(command, "--t38", options.t38Style, "STYLE", SDP_T38_STYLE_FLAG, SDP_T38_STYLE_VALUE,
              "T.38 flags: 0 and 1 write the names of those set, 2 writes name:value");
}

void configure(const WriteOptions &options) {
    uint32_t lineEnd = options.lineEnd == "lf"   ? SDP_LINE_END_LF
                       : options.lineEnd == "cr" ? SDP_LINE_END_CR
                                                 : SDP_LINE_END_CRLF;
    SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd);
    SdpSetT38OptCfg(options.t38Style);
}

int forEachBody(const DecodeOptions &options,
                const std::function<bool(const std::string &title, SdpLine &line)> &use) {
    SdpSetSupMedProtoRtpAvpf(options.avpf ? 1 : 0);
    Redactor redactor;
    const Inputs inputs = readInputs(options.paths);
    bool good = inputs.complete;
    const bool titled = inputs.bodies.size() > 1 || options.paths.size() > 1;
    for (const Found &body : inputs.bodies) {
        const Decoded decoded = decodeBody(body.text());
        if (options.redact) {
            redactor.learn(body.text());
        }
        if (!decoded.body) {
            std::cerr << shortText(body, diagnosticOf(decoded, body.place)) << '\n';
            good = false;
            continue;
        }
        if (options.redact) {
            redactRecords(*decoded.body, redactor);
        }
        const size_t line = body.source->placeOf(body.place.offset).line;
        const std::string title =
            titled ? "# " + body.source->name() + ':' + std::to_string(line) : "";
        good = use(title, *decoded.body) && good;
    }
    return good ? 0 : 1;
}

} // namespace cli
