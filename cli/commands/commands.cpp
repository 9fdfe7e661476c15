// What several subcommands share.
#include "commands/commands.hpp"

#include <iostream>

#include "input/input.hpp"
#include "output/diagnostic.hpp"

namespace cli {

void addPaths(CLI::App &command, DecodeOptions &options, const std::string &what) {
    command.add_option("FILE", options.paths, what + "; - is standard input")->type_name("");
}

void addAvpf(CLI::App &command, bool &avpf) {
    command.add_flag("--avpf", avpf, "Take RTP/AVPF for a protocol of its own");
}

void addRedact(CLI::App &command, bool &redact) {
    command.add_flag("--redact", redact,
                     "Mask addresses, names, keys and credentials, equal ones equally");
}

void addWriteOptions(CLI::App &command, WriteOptions &options) {
    command.add_option("--line-end", options.lineEnd, "Line end: crlf (the default), lf or cr")
        ->check(CLI::IsMember({"crlf", "lf", "cr"}).description(""))
        ->type_name("END");
    command
        .add_option("--t38", options.t38Style,
                    "T.38 flags: 0 and 1 write the names of those set, 2 writes name:value")
        ->check(CLI::Range(SDP_T38_STYLE_FLAG, SDP_T38_STYLE_VALUE).description(""))
        ->type_name("STYLE");
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
