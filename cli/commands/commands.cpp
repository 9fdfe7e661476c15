// What several commands share.
#include "commands/commands.hpp"

#include <algorithm>
#include <iostream>
#include <thread>

#include "output/diagnostic.hpp"
#include "output/maskedorigin.hpp"
#include "output/repairs.hpp"
#include "output/terminal.hpp"

namespace cli {

void addPaths(CLI::App &command, DecodeOptions &options) {
    addWords(command, "FILE", options.paths,
             "SDP, SIP messages that carry it, packet captures, or folders; - is standard input");
    addNumber(command, "-j,--jobs", options.jobs, "NUMBER", 1, 256,
              "Read this many inputs at once (by default as many as there are cores)");
    addSelection(command, options);
}

void addSelection(CLI::App &command, DecodeOptions &options) {
    Selection &selection = options.selection;
    addWord(command, "--call-id", selection.callId, "ID", "Take only the messages of this call");
    addWord(command, "--from", selection.from, "TEXT",
            "Take messages with this text in the URI of their From header");
    addWord(command, "--method", selection.method, "METHOD",
            "Take requests of this method and their responses, or responses of a status: 200");
    addNumber(command, "--frame", selection.frame, "NUMBER", 1, UINT32_MAX,
              "Take the message that ends in this packet of a capture");
    addWord(command, "--extract", selection.extract, "FOLDER",
            "Write each body to a file in this folder");
}

void addDecoderOptions(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--avpf", options.avpf, "Read the formats of RTP/AVPF as payload numbers");
    addFlag(command, "--rtp-family", options.rtpFamily,
            "Read the formats of every RTP protocol as payload numbers: UDP/TLS/RTP/SAVPF");
    addMaxBody(command, options.maxBody);
}

void addTidyFlag(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--tidy", options.tidy, "Repair bodies before they are decoded, as tidy does");
}

void addMaxBody(CLI::App &command, uint32_t &maxBody) {
    addNumber(command, "--max-body", maxBody, "BYTES", 1, SDP_MAX_LONG_BODY,
              "The longest body that is decoded (4093 by default, at most 65535)");
}

void addRedact(CLI::App &command, DecodeOptions &options) {
    addFlag(command, "--redact", options.redact,
            "Mask addresses, names, keys and credentials; equal values get equal masks");
}

void addColor(CLI::App &command, std::string &color) {
    addChoice(command, "--color", color, "WHEN", kColorChoices,
              "Colour: auto (the default, on terminals only), always or never");
}

void addWriteOptions(CLI::App &command, WriteOptions &options) {
    addChoice(command, "--line-end", options.lineEnd, "END", {"crlf", "lf", "cr"},
              "Line end: crlf (the default), lf or cr");
    addNumber(command, "--t38", options.t38Style, "STYLE", SDP_T38_STYLE_FLAG, SDP_T38_STYLE_VALUE,
              "T.38 flags: 0 and 1 write the names of the flags that are set, 2 writes name:value");
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
    : tidy_(options.tidy), redact_(options.redact), selection_(options.selection),
      jobs_(options.jobs != 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency())),
      shared_(shared) {
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

std::string BodyUser::packetOf(const Found &found) {
    return packetName(found, redactorFor(found));
}

std::string BodyUser::textOf(const Found &found) {
    Redactor *const redactor = redactorFor(found);
    return redactor != nullptr ? redactor->redactedBody(found.text) : std::string(found.text);
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

namespace {

// A decoded body, or the diagnostic, which only the thread that decoded it can make.
struct DecodedAhead : Prepared {
    explicit DecodedAhead(const Found &found)
        : body(sdpline::Body::decode(found.text)), textSize(found.text.size()) {
        if (!body) {
            diagnostic = diagnosticOf(body.error(), found);
        }
    }
    size_t size() const override { return 16 * textSize; } // records and their block

    mutable sdpline::Result<sdpline::Body> body; // decoded() moves it out
    Diagnostic diagnostic = {};
    size_t textSize;
};

} // namespace

std::shared_ptr<const Prepared> BodyUser::decodedAhead(const Found &found) const {
    return tidy_ ? nullptr : std::make_shared<DecodedAhead>(found);
}

std::optional<sdpline::Body> BodyUser::decoded(const Found &found) {
    Redactor *const redactor = redactorFor(found);
    const auto *const ahead = static_cast<const DecodedAhead *>(found.prepared.get());
    sdpline::Result<sdpline::Body> body =
        ahead != nullptr ? std::move(ahead->body) : decode(found, redactor);
    if (!body) {
        const Diagnostic diagnostic =
            ahead != nullptr ? ahead->diagnostic : diagnosticOf(body.error(), found);
        std::cerr << shortText(found, diagnostic, redactor) << '\n';
        atLeast(kRefused);
        return std::nullopt;
    }
    if (redactor != nullptr && shared_ == nullptr) {
        redactRecords(*body->record(), *redactor);
    }
    return std::move(*body);
}

namespace {

// The first body waits until it is known whether there is a second one, since several have titles.
class EachBody : public BodyUser {
public:
    using Use = std::function<bool(const std::string &title, sdpline::Body &body)>;

    EachBody(const DecodeOptions &options, const Use &use) : BodyUser(options), use_(use) {}

    void files(size_t count, uint64_t /*bytes*/) override { several_ = count > 1; }

    std::shared_ptr<const Prepared> prepare(const Found &found) const override {
        return decodedAhead(found);
    }

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
