// sdpline check: what is wrong with the bodies of many files.
#include "commands/commands.hpp"

#include <iostream>

#include "input/input.hpp"
#include "output/diagnostic.hpp"
#include "output/everyline.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kRefused = 1;
constexpr int kUnreadable = 2;

struct Options {
    DecodeOptions decode;
    bool everyLine = false;
};

class Checker {
public:
    Checker(const Options &options, size_t files)
        : options_(options), progress_(files), style_(styleFor(stdout)),
          redactor_(options.decode.redact ? std::make_optional<Redactor>() : std::nullopt) {}

    void file(const std::string &path) {
        std::string error;
        const std::optional<Source> source = readSource(path, error);
        if (source) {
            ++files_;
            bodiesOf(*source);
        } else {
            unreadable((path == "-" ? "standard input" : path) + ": " + error);
        }
        progress_.advance();
    }

    void unreadable(const std::string &message) {
        ++problems_;
        progress_.hide();
        std::cerr << "sdpline: " << message << '\n';
        problemList_.push_back(message);
    }

    // Writes the summary, or all of the JSON, and answers the exit status.
    int finish() {
        progress_.hide();
        if (options_.decode.json) {
            std::cout << dumped({{"bodies", bodyList_},
                                 {"problems", problemList_},
                                 {"summary",
                                  {{"files", files_},
                                   {"bodies", bodies_},
                                   {"refused", refused_},
                                   {"problems", problems_}}}});
        } else {
            std::cout << "checked " << counted(bodies_, "body", "bodies") << " in "
                      << counted(files_, "file", "files") << ": "
                      << (refused_ == 0 ? "none" : std::to_string(refused_)) << " refused"
                      << (problems_ == 0 ? "" : ", " + counted(problems_, "problem", "problems"))
                      << '\n';
        }
        return problems_ != 0 ? kUnreadable : refused_ != 0 ? kRefused : 0;
    }

private:
    void bodiesOf(const Source &source) {
        const Bodies found = findBodies(source.text());
        for (const Problem &problem : found.problems) {
            unreadable(problemText(source, problem));
        }
        for (const BodyPlace &place : found.bodies) {
            body({&source, place});
        }
    }

    void body(const Found &found) {
        ++bodies_;
        Redactor *const redactor = redactor_ ? &*redactor_ : nullptr;
        if (redactor != nullptr) {
            redactor->learn(found.text());
        }
        const std::vector<Diagnostic> diagnostics = judge(found);
        refused_ += diagnostics.empty() ? 0 : 1;
        if (options_.decode.json) {
            Json list = Json::array();
            for (const Diagnostic &diagnostic : diagnostics) {
                list.push_back(jsonOf(found, diagnostic, redactor));
            }
            bodyList_.push_back({{"file", found.source->name()},
                                 {"line", found.source->placeOf(found.place.offset).line},
                                 {"offset", found.place.offset},
                                 {"size", found.place.size},
                                 {"accepted", diagnostics.empty()},
                                 {"diagnostics", std::move(list)}});
            return;
        }
        for (const Diagnostic &diagnostic : diagnostics) {
            progress_.hide();
            print(std::cout, found, diagnostic, redactor, style_);
        }
    }

    std::vector<Diagnostic> judge(const Found &found) const {
        const Decoded decoded = decodeBody(found.text());
        if (decoded.body) {
            return {};
        }
        std::vector<Diagnostic> diagnostics = {diagnosticOf(decoded, found.place)};
        if (options_.everyLine && diagnostics.front().offset) {
            for (const LineFault &fault : judgeLines(found.text(), decoded.failure.ulOffset)) {
                diagnostics.push_back(
                    diagnosticOfLine(fault.result, fault.token, found.place.offset + fault.offset));
            }
        }
        return diagnostics;
    }

    const Options &options_;
    Progress progress_;
    const Style &style_;
    std::optional<Redactor> redactor_;
    size_t files_ = 0;
    size_t bodies_ = 0;
    size_t refused_ = 0;
    size_t problems_ = 0;
    Json bodyList_ = Json::array();
    Json problemList_ = Json::array();
};

int run(const Options &options) {
    SdpSetSupMedProtoRtpAvpf(options.decode.avpf ? 1 : 0);
    std::vector<std::string> errors;
    const std::vector<std::string> files = expandFolders(options.decode.paths, errors);
    Checker checker(options, files.size());
    for (const std::string &error : errors) {
        checker.unreadable(error);
    }
    for (const std::string &file : files) {
        checker.file(file);
    }
    return checker.finish();
}

} // namespace

void addCheck(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"check", "Say which bodies are refused, where and why.",
                    "Examples:\n"
                    "  sdpline check offer.sip\n"
                    "  sdpline check --every-line --redact trace.txt\n"
                    "  sdpline check captures/ --json\n\n"
                    "Exit status: 0 when every body is accepted, 1 when one is refused, 2 when\n"
                    "something could not be read."},
                   [options, &outcome] {
                       outcome.trouble = kUnreadable;
                       outcome.status = run(*options);
                   });
    addPaths(command, options->decode, "SDP, SIP messages that carry it, or folders of both");
    addFlag(command, "--every-line", options->everyLine,
            "Judge the lines behind the refused one, each on its own");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addAvpf(command, options->decode.avpf);
    addRedact(command, options->decode.redact);
}

} // namespace cli
