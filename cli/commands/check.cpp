// sdpline check: what is wrong with the bodies of many files.
#include "commands/commands.hpp"

#include <iostream>

#include "output/diagnostic.hpp"
#include "output/everyline.hpp"
#include "output/jsonlist.hpp"
#include "output/origin.hpp"
#include "output/repairs.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

struct Options {
    DecodeOptions decode;
    bool everyLine = false;
    bool noWarnings = false;
    bool warningsAsErrors = false;
};

// What is said of one body.
struct Judgement {
    std::vector<Diagnostic> diagnostics; // none of one that is accepted
    std::vector<sdpline::Repair> doubts;
    std::string helpful; // the rules that would make a refused one acceptable
};

struct Counts {
    size_t files = 0;
    size_t bodies = 0;
    size_t refused = 0;
    size_t warnings = 0;
    size_t problems = 0; // notes are not among them
};

class Checker : public BodyUser {
public:
    explicit Checker(const Options &options)
        : BodyUser(options.decode), options_(options), style_(styleFor(stdout)) {}

    void files(size_t count) override {
        progress_.emplace(count);
        if (options_.decode.json) {
            list_.emplace(std::cout, "bodies");
        }
    }

    void fileDone(bool read) override {
        counts_.files += read ? 1 : 0;
        progress_->advance();
    }

    void problem(const InputProblem &problem) override {
        progress_->hide();
        BodyUser::problem(problem);
        if (problem.kind != Problem::Note) {
            ++counts_.problems;
            problemList_.push_back(problem.message());
        }
    }

    void body(const Found &found) override {
        ++counts_.bodies;
        Redactor *const redactor = redactorFor(found);
        const Judgement judgement = judge(found);
        counts_.warnings += judgement.doubts.size();
        if (!judgement.diagnostics.empty()) {
            ++counts_.refused;
            atLeast(kRefused);
        }
        if (options_.warningsAsErrors && !judgement.doubts.empty()) {
            atLeast(kRefused);
        }
        if (list_) {
            list_->add(jsonOf(found, judgement, redactor));
        } else {
            show(found, judgement, redactor);
        }
    }

    // Writes the summary, or the rest of the JSON, and returns the exit status.
    int finish() {
        progress_->hide();
        if (list_) {
            list_->finish({{"problems", problemList_},
                           {"summary",
                            {{"files", counts_.files},
                             {"bodies", counts_.bodies},
                             {"refused", counts_.refused},
                             {"warnings", counts_.warnings},
                             {"problems", counts_.problems}}}});
        } else {
            printSummary();
        }
        return status();
    }

private:
    void printSummary() const {
        std::cout << "checked " << counted(counts_.bodies, "body", "bodies") << " in "
                  << counted(counts_.files, "file", "files") << ": "
                  << (counts_.refused == 0 ? "none" : std::to_string(counts_.refused)) << " refused"
                  << (counts_.warnings == 0
                          ? ""
                          : ", " + counted(counts_.warnings, "warning", "warnings"))
                  << (counts_.problems == 0
                          ? ""
                          : ", " + counted(counts_.problems, "problem", "problems"))
                  << '\n';
    }

    void show(const Found &found, const Judgement &judgement, Redactor *redactor) {
        for (const Diagnostic &diagnostic : judgement.diagnostics) {
            progress_->hide();
            print(std::cout, found, diagnostic, redactor, style_);
        }
        if (!judgement.helpful.empty()) {
            std::cout << placeName(found, redactor) << ':' << found.line
                      << ": note: tidy makes it acceptable: " << judgement.helpful << '\n';
        }
        for (const sdpline::Repair &doubt : judgement.doubts) {
            progress_->hide();
            std::cout << repairText(found, doubt, "warning", redactor) << '\n';
        }
    }

    static Json jsonOf(const Found &found, const Judgement &judgement, Redactor *redactor) {
        Json list = Json::array();
        for (const Diagnostic &diagnostic : judgement.diagnostics) {
            list.push_back(cli::jsonOf(found, diagnostic, redactor));
        }
        Json doubts = Json::array();
        for (const sdpline::Repair &doubt : judgement.doubts) {
            doubts.push_back(cli::jsonOf(found, doubt));
        }
        Json entry = {{"file", found.path},
                      {"line", found.line},
                      {"offset", found.offset},
                      {"size", found.text.size()},
                      {"accepted", judgement.diagnostics.empty()},
                      {"diagnostics", std::move(list)},
                      {"warnings", std::move(doubts)},
                      {"tidy", judgement.helpful.empty() ? Json() : Json(judgement.helpful)}};
        if (const Origin origin = originOf(found, redactor); origin.isKnown()) {
            entry["origin"] = cli::jsonOf(origin);
        }
        return entry;
    }

    std::vector<sdpline::Repair> doubtsOf(const Found &found) const {
        std::vector<sdpline::Repair> doubts;
        if (const auto doubted = sdpline::findDoubts(found.text); doubted && !options_.noWarnings) {
            doubts.assign(doubted->repairs().begin(), doubted->repairs().end());
        }
        return doubts;
    }

    Judgement judge(const Found &found) const {
        const auto body = sdpline::Body::decode(found.text);
        if (body) {
            return {{}, doubtsOf(found), ""};
        }
        std::vector<Diagnostic> diagnostics = {diagnosticOf(body.error(), found)};
        if (options_.everyLine && diagnostics.front().offset) {
            std::vector<Diagnostic> others = judgeLines(found.text, body.error().offset);
            std::move(others.begin(), others.end(), std::back_inserter(diagnostics));
        }
        return {std::move(diagnostics), {}, rulesThatHelp(found.text)};
    }

    const Options &options_;
    const Style &style_;
    std::optional<Progress> progress_;
    std::optional<JsonList> list_;
    Counts counts_;
    Json problemList_ = Json::array();
};

} // namespace

void addCheck(CLI::App &app, int &status) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"check", "Say which bodies are refused, where and why.",
                    "Examples:\n"
                    "  sdpline check offer.sip\n"
                    "  sdpline check --every-line --redact trace.txt\n"
                    "  sdpline check captures/ --json\n\n"
                    "Exit status: 0 when every body is accepted, 1 when one is refused or a\n"
                    "message contradicts itself, 2 when something cannot be read."},
                   [options, &status] {
                       Checker checker(*options);
                       readInputs(options->decode.paths, checker);
                       status = checker.finish();
                   });
    addPaths(command, options->decode);
    addFlag(command, "--every-line", options->everyLine,
            "Judge the lines after the refused one, each on its own");
    addFlag(command, "--no-warnings", options->noWarnings,
            "Say nothing of what other readers read otherwise");
    addFlag(command, "--warnings-as-errors", options->warningsAsErrors,
            "Exit with 1 when there is a warning");
    addFlag(command, "--json", options->decode.json, "Print one JSON document");
    addDecoderOptions(command, options->decode);
    addRedact(command, options->decode);
}

} // namespace cli
