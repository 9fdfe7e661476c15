// What several subcommands share.
#include "commands/commands.hpp"

#include <iostream>

#include "output/diagnostic.hpp"
#include "output/origin.hpp"
#include "output/repairs.hpp"
#include "output/terminal.hpp"

namespace cli {

void addPaths(CLI::App &command, DecodeOptions &options) {
    addWords(command, "FILE", options.paths,
             "SDP, SIP messages that carry it, or folders of both; - is standard input");
}

void addDecoderOptions(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--avpf", options.avpf, "Take RTP/AVPF for a protocol with payload numbers");
    addFlag(command, "--rtp-family", options.rtpFamily,
            "Take payload numbers with every protocol of RTP, as UDP/TLS/RTP/SAVPF");
    addMaxBody(command, options.maxBody);
}

void addTidyFlag(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--tidy", options.tidy, "Repair bodies first, as tidy does");
}

void addMaxBody(CLI::App &command, uint32_t &maxBody) {
    addNumber(command, "--max-body", maxBody, "BYTES", 1, SDP_MAX_LONG_BODY,
              "The longest body that is decoded (4093 by default, at most 65535)");
}

void addRedact(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--redact", options.redact,
            "Mask addresses, names, keys and credentials, equal ones equally");
}

void addColor(CLI::App &command, std::string &color) {
    addChoice(command, "--color", color, "WHEN", kColorChoices,
              "Colour: auto (the default, on terminals only), always or never");
}

void addWriteOptions(CLI::App &command, WriteOptions &options) {
    addChoice(command, "--line-end", options.lineEnd, "END", {"crlf", "lf", "cr"},
              "Line end: crlf (the default), lf or cr");
    addNumber(command, "--t38", options.t38Style, "STYLE", SDP_T38_STYLE_FLAG, SDP_T38_STYLE_VALUE,
              "T.38 flags: 0 and 1 write the names of those set, 2 writes name:value");
}

void configure(const DecodeOptions &options) {
    SdpSetSupMedProtoRtpAvpf(options.avpf ? 1 : 0);
    SdpSetSupMedProtoRtpFamily(options.rtpFamily ? 1 : 0);
    SdpSetMaxBodySize(options.maxBody);
}

void configure(const WriteOptions &options) {
    uint32_t lineEnd = options.lineEnd == "lf"   ? SDP_LINE_END_LF
                       : options.lineEnd == "cr" ? SDP_LINE_END_CR
                                                 : SDP_LINE_END_CRLF;
    SdpLibExtConfig(SDP_CONFIG_LINE_END, &lineEnd);
    SdpSetT38OptCfg(options.t38Style);
}

BodyUser::BodyUser(const DecodeOptions &options, Redactor *shared)
    : tidy_(options.tidy), redact_(options.redact), shared_(shared) {
    configure(options);
}

void BodyUser::problem(const InputProblem &problem) {
    std::cerr << "sdpline: " << problem.message() << '\n';
    noteProblem(problem.kind);
}

void BodyUser::noteProblem(Problem::Kind kind) {
    if (kind != Problem::Note) {
        atLeast(kind == Problem::Wrong ? kRefused : kUnusable);
    }
}

Redactor *BodyUser::redactorFor(const Found &found) {
    if (!redact_) {
        return nullptr;
    }
    Redactor &redactor = shared_ != nullptr ? *shared_ : redactor_;
    redactor.learn(found.text);
    return &redactor;
}

sdpline::Result<sdpline::Body> BodyUser::decode(const Found &found, Redactor *redactor) const {
    if (!tidy_) {
        return sdpline::Body::decode(found.text);
    }
    auto tidied = sdpline::tidy(found.text);
    if (!tidied) {
        return sdpline::Body::decode(found.text); // too long for any decoder
    }
    for (const sdpline::Repair repair : tidied->repairs()) {
        std::cerr << repairText(found, repair, tidied->isRefused() ? "tried" : "repaired", redactor)
                  << '\n';
    }
    if (tidied->error()) {
        return *tidied->error();
    }
    return std::move(*tidied->body());
}

std::optional<sdpline::Body> BodyUser::decoded(const Found &found) {
    Redactor *const redactor = redactorFor(found);
    sdpline::Result<sdpline::Body> body = decode(found, redactor);
    if (!body) {
        std::cerr << shortText(found, diagnosticOf(body.error(), found), redactor) << '\n';
        atLeast(kRefused);
        return std::nullopt;
    }
    if (redactor != nullptr && shared_ == nullptr) {
        redactRecords(*body->record(), *redactor);
    }
    return std::move(*body);
}

namespace {

// Whether there are several bodies is known at the second: the first one waits for it.
class EachBody : public BodyUser {
public:
    using Use = std::function<bool(const std::string &title, sdpline::Body &body)>;

    EachBody(const DecodeOptions &options, const Use &use) : BodyUser(options), use_(use) {}

    void files(size_t count) override { several_ = count > 1; }

    void body(const Found &found) override {
        std::optional<sdpline::Body> body = decoded(found);
        const std::string title =
            "# " + placeName(found, redactorFor(found)) + ':' + std::to_string(found.line);
        if (several_ || seen_++ > 0) {
            several_ = true;
            useWaiting();
            useBody(title, body);
        } else {
            waitingTitle_ = title;
            waiting_ = std::move(body);
        }
    }

    int finish() {
        useWaiting();
        return status();
    }

private:
    void useWaiting() {
        useBody(several_ ? waitingTitle_ : "", waiting_);
        waiting_.reset();
    }

    void useBody(const std::string &title, std::optional<sdpline::Body> &body) {
        if (body && !use_(title, *body)) {
            atLeast(kRefused);
        }
    }

    const Use &use_;
    bool several_ = false;
    size_t seen_ = 0;
    std::optional<sdpline::Body> waiting_;
    std::string waitingTitle_;
};

} // namespace

int forEachBody(const DecodeOptions &options, const EachBody::Use &use) {
    EachBody each(options, use);
    readInputs(options.paths, each);
    return each.finish();
}

} // namespace cli
