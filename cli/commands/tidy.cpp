// sdpline tidy: repairs bodies that the decoder refuses, and reports every repair.
#include "commands/commands.hpp"
#include "commands/tidysummary.hpp"

#include <cstdio>
#include <iostream>
#include <limits>

#include "capture/container.hpp"
#include "input/captureinput.hpp"
#include "input/paths.hpp"
#include "input/window.hpp"
#include "output/diagnostic.hpp"
#include "output/maskedorigin.hpp"
#include "output/repairs.hpp"
#include "sip/lengths.hpp"
#include "text/escape.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kRepaired = 1;
constexpr int kStillRefused = 2;

struct TidyOptions {
    DecodeOptions decode;
    std::vector<std::string> rules;
    std::vector<std::string> without;
    bool optional = false;
    bool dryRun = false;
    bool inPlace = false;
    bool summary = false;

    // Whether bodies, and what was repaired of them, go to standard output.
    bool writesBodies() const { return !dryRun && !decode.json && !summary; }
};

// The size of a text, where a Content-Length counts each LF as CR LF if the line ends were
// converted after the message was sent.
size_t counted(std::string_view text, bool feedsAsPairs) {
    size_t count = text.size();
    for (size_t at = 0; feedsAsPairs && at < text.size(); ++at) {
        count += text[at] == '\n' && (at == 0 || text[at - 1] != '\r') ? 1 : 0;
    }
    return count;
}

// Replaces bodies in a text, and corrects the Content-Length headers that count them.
class Rewriter {
public:
    explicit Rewriter(std::string_view text) : text_(text) {}

    void replace(const BodyPlace &place, std::string_view body) {
        changes_.push_back({place.offset, place.size, std::string(body)});
    }

    std::string run() {
        for (const LengthPlace &length : lengthsOf(text_)) {
            correct(length);
        }
        std::ranges::sort(changes_, {}, &Change::offset);
        std::string result;
        size_t at = 0;
        for (const Change &change : changes_) {
            result.append(text_.substr(at, change.offset - at)).append(change.with);
            at = change.offset + change.size;
        }
        return result.append(text_.substr(at));
    }

private:
    struct Change {
        size_t offset;
        size_t size;
        std::string with;
    };

    void correct(const LengthPlace &length) {
        const size_t said = std::stoul(std::string(text_.substr(length.offset, length.size)));
        const bool pairs = said != length.end - length.begin;
        size_t now = said;
        for (const Change &change : changes_) {
            if (change.offset >= length.begin && change.offset + change.size <= length.end) {
                now += counted(change.with, pairs);
                now -= std::min(now, counted(text_.substr(change.offset, change.size), pairs));
            }
        }
        if (now != said) {
            changes_.push_back({length.offset, length.size, std::to_string(now)});
        }
    }

    std::string_view text_;
    std::vector<Change> changes_;
};

class Tidier {
public:
    Tidier(const TidyOptions &options, const sdpline::TidyRules &rules)
        : options_(options), rules_(rules) {}

    void files(const std::vector<std::string> &paths) {
        std::vector<PathError> errors;
        const std::vector<std::string> files = expandFolders(paths, errors);
        for (const PathError &error : errors) {
            trouble(inputName(error.path) + ": " + error.reason);
        }
        for (const std::string &path : files) {
            file(path);
        }
    }

    void file(const std::string &path) {
        const std::string name = inputName(path);
        Window input(path);
        if (input.fill(kMagic) && Container::begins(input.text())) {
            return capture(input, path, name);
        }
        if (!input.fill(std::numeric_limits<size_t>::max())) {
            return trouble(name + ": " + input.error());
        }
        summary_.file();
        const Bodies found = findBodies(input.text());
        tellProblems(name, found);
        Rewriter rewriter(input.text());
        std::string masked;
        for (const BodyPlace &place : found.bodies) {
            const Found body = {name, path, input.text().substr(place.offset, place.size),
                                place.offset, place.line};
            const auto tidied = tidyBody(body);
            if (!tidied) {
                continue;
            }
            noteUnread(body, *tidied, found);
            if (options_.decode.redact) {
                masked += redactor_.redactedBody(tidied->text());
            } else if (tidied->isRepaired()) {
                rewriter.replace(place, tidied->text());
            }
        }
        write(path, input.text(), options_.decode.redact ? masked : rewriter.run());
    }

    // A body from a capture is written without its message.
    void body(const Found &found) {
        const auto tidied = tidyBody(found);
        if (tidied && options_.writesBodies()) {
            std::cout << (captured_++ == 0 ? "" : "\r\n")
                      << (options_.decode.redact ? redactor_.redactedBody(tidied->text())
                                                 : std::string(tidied->text()));
        }
    }

    int finish() {
        if (options_.decode.json) {
            std::cout << dumped(options_.summary ? summary_.json() : Json{{"bodies", bodies_}});
        } else if (options_.summary) {
            summary_.print(std::cout);
        }
        return status_;
    }

private:
    static constexpr size_t kMagic = 4; // the size of the magic number of a capture

    class CapturedBodies : public BodyUser {
    public:
        CapturedBodies(const TidyOptions &options, Tidier &tidier)
            : BodyUser(options.decode, &tidier.redactor_), tidier_(tidier) {}
        void body(const Found &found) override { tidier_.body(found); }

    private:
        Tidier &tidier_;
    };

    void capture(Window &input, const std::string &path, const std::string &name) {
        if (options_.inPlace) {
            return trouble(name + ": a capture cannot be written back");
        }
        summary_.file();
        CapturedBodies bodies(options_, *this);
        if (!readCapture(input, path, name, bodies) || bodies.status() != kFine) {
            status_ = kStillRefused;
        }
    }

    // Reports a body that cannot be tidied, and returns nothing.
    std::optional<sdpline::Tidied> tidyBody(const Found &body) {
        auto tidied = sdpline::tidy(body.text, rules_);
        if (!tidied) {
            trouble(placeName(body, redactor()) + ": " + std::string(tidied.error().sentence));
            return std::nullopt;
        }
        learn(body.text, tidied->text());
        tell(body, *tidied);
        return std::move(*tidied);
    }

    void trouble(const std::string &message) {
        std::cerr << "sdpline: " << message << '\n';
        status_ = kStillRefused;
    }

    void tellProblems(const std::string &name, const Bodies &found) {
        for (const Problem &problem : found.problems) {
            if (problem.kind != Problem::Note) {
                trouble(name + ": " + escaped(problem.text));
            }
        }
    }

    // Reports text after a body that is not read, up to the next body. After a repair of empty
    // lines everything is read.
    static void noteUnread(const Found &body, const sdpline::Tidied &tidied, const Bodies &found) {
        for (const sdpline::Repair repair : tidied.repairs()) {
            if (repair.rule->enRule == SDP_TIDY_EMPTY_LINES && tidied.isRepaired()) {
                return;
            }
        }
        const auto next =
            std::ranges::upper_bound(found.bodies, body.offset, {}, &BodyPlace::offset);
        for (const Problem &problem : found.problems) {
            if (problem.kind == Problem::Note && problem.offset >= body.offset &&
                (next == found.bodies.end() || problem.offset < next->offset)) {
                std::cerr << "sdpline: " << body.name << ':' << problem.line << ": "
                          << escaped(problem.text) << '\n';
            }
        }
    }

    void learn(std::string_view given, std::string_view tidied) {
        if (options_.decode.redact) {
            redactor_.learn(given);
            redactor_.learn(tidied);
        }
    }

    Redactor *redactor() { return options_.decode.redact ? &redactor_ : nullptr; }

    void tell(const Found &body, const sdpline::Tidied &tidied) {
        const int status = tidied.isRefused() ? kStillRefused : tidied.isRepaired() ? kRepaired : 0;
        status_ = std::max(status_, status);
        if (options_.summary) {
            return summary_.body(body, tidied, redactor());
        }
        if (options_.decode.json) {
            return tellJson(body, tidied);
        }
        for (const sdpline::Repair repair : tidied.repairs()) {
            std::cerr << repairText(body, repair, tidied.isRefused() ? "tried" : "repaired",
                                    redactor())
                      << '\n';
        }
        if (tidied.error()) {
            std::cerr << shortText(body, diagnosticOf(*tidied.error(), body), redactor()) << '\n';
        }
    }

    void tellJson(const Found &body, const sdpline::Tidied &tidied) {
        Json rows = Json::array();
        for (const sdpline::Repair repair : tidied.repairs()) {
            rows.push_back(jsonOf(body, repair));
        }
        Json entry = {{"file", body.path},
                      {"line", body.line},
                      {"outcome", tidied.isRefused()    ? "refused"
                                  : tidied.isRepaired() ? "repaired"
                                                        : "unchanged"},
                      {"repairs", std::move(rows)}};
        if (tidied.error()) {
            entry["error"] = jsonOf(body, diagnosticOf(*tidied.error(), body), redactor());
        } else {
            entry["text"] = options_.decode.redact ? redactor_.redactedBody(tidied.text())
                                                   : std::string(tidied.text());
        }
        bodies_.push_back(std::move(entry));
    }

    // Writes the text to standard output, or back to its file if it changed.
    void write(const std::string &path, std::string_view given, const std::string &text) {
        if (options_.writesBodies() && !options_.inPlace) {
            std::cout << text;
        }
        if (options_.dryRun || !options_.inPlace || text == given) {
            return;
        }
        std::FILE *const file = std::fopen(path.c_str(), "wb");
        const bool written =
            file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
        if (file == nullptr || std::fclose(file) != 0 || !written) {
            trouble(inputName(path) + ": cannot be written");
        }
    }

    const TidyOptions &options_;
    sdpline::TidyRules rules_;
    Redactor redactor_;
    Json bodies_ = Json::array();
    TidySummary summary_;
    size_t captured_ = 0; // bodies of captures that were written
    int status_ = 0;
};

// Reports a name that is not that of a repair, and returns nothing.
std::optional<sdpline::TidyRules> rulesOf(const TidyOptions &options) {
    std::string unknown;
    const auto wanted = rulesNamed(options.rules, unknown);
    const auto unwanted = wanted ? rulesNamed(options.without, unknown) : std::nullopt;
    if (!unwanted) {
        std::cerr << "sdpline: no repair is named \"" << escaped(unknown)
                  << "\": see sdpline rules\n";
        return std::nullopt;
    }
    sdpline::TidyRules rules = options.optional  ? sdpline::TidyRules::withOptional()
                               : wanted->empty() ? sdpline::TidyRules()
                                                 : sdpline::TidyRules::none();
    for (const uint32_t rule : *wanted) {
        rules = rules.with(rule);
    }
    for (const uint32_t rule : *unwanted) {
        rules = rules.without(rule);
    }
    return rules;
}

int runTidy(const TidyOptions &options) {
    const std::optional<sdpline::TidyRules> rules = rulesOf(options);
    if (!rules) {
        return kUnusable;
    }
    const bool piped = std::ranges::find(options.decode.paths, "-") != options.decode.paths.end();
    if (options.inPlace && (options.decode.redact || piped)) {
        std::cerr << "sdpline: --in-place cannot be used with standard input or --redact\n";
        return kUnusable;
    }
    configure(options.decode);
    Tidier tidier(options, *rules);
    tidier.files(options.decode.paths);
    return tidier.finish();
}

constexpr CommandText kTidyText = {
    "tidy", "Repair bodies that the decoder refuses, and report every repair.",
    R"(Accepted bodies are not changed by a byte. SIP messages are written as messages, with
a corrected Content-Length. With --redact, and from captures, only the bodies are
written.

Examples:
  sdpline tidy call.sip > tidied.sip
  sdpline tidy --optional --dry-run captured.sdp
  sdpline tidy --rule NameEmpty,ConnHost -i offer.sdp
  sdpline tidy --summary captures/

Exit status: 0 when nothing was repaired, 1 when something was, 2 when a body is still
refused or something cannot be used.)"};

} // namespace

void addTidy(CLI::App &app, int &status) {
    const auto options = std::make_shared<TidyOptions>();
    CLI::App &command =
        addCommand(app, kTidyText, [options, &status] { status = runTidy(*options); });
    addWords(command, "FILE", options->decode.paths,
             "SDP, SIP messages that carry it, or packet captures; - is standard input");
    addNames(command, "--rule", options->rules, "Make only these repairs");
    addFlag(command, "--optional", options->optional,
            "Make the optional repairs as well as the default ones");
    addNames(command, "--without", options->without, "Do not make these repairs");
    addFlag(command, "--dry-run", options->dryRun, "Report the repairs, but write no text");
    addFlag(command, "--summary", options->summary,
            "Print how many bodies each rule repaired, but write no text");
    addFlag(command, "-i,--in-place", options->inPlace, "Write the text back to its file");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addDecoderOptions(command, options->decode);
    addRedact(command, options->decode);
}

} // namespace cli
