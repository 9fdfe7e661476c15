// sdpline check: reports what is wrong with the bodies of many files.
#include "commands/commands.hpp"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "output/diagnostic.hpp"
#include "output/everyline.hpp"
#include "output/maskedorigin.hpp"
#include "output/repairs.hpp"
#include "report/ignorednames.hpp"
#include "report/report.hpp"
#include "report/tally.hpp"

namespace cli {

namespace {

struct CheckOptions {
    DecodeOptions decode;
    bool everyLine = false;
    bool noWarnings = false;
    bool warningsAsErrors = false;
    ReportOptions report;
    std::string color = "auto";
    uint32_t maxDiagnostics = 0; // 0: all
    std::vector<std::string> ignored;
    std::vector<std::string> ignoreFiles;
};

// Decides for all formats of reports which diagnostics are ignored, counted and left out.
class Checker : public BodyUser {
public:
    Checker(const CheckOptions &options, IgnoredNames ignored)
        : BodyUser(options.decode), options_(options), ignored_(std::move(ignored)),
          report_(makeReport(std::cout, options.report)) {}

    void files(size_t count, uint64_t bytes) override {
        progress_.emplace(count, bytes, !options_.report.quiet);
    }

    void bytesRead(uint64_t count) override { progress_->read(count); }

    void fileDone(bool read) override {
        totals_.files += read ? 1 : 0;
        progress_->fileDone();
    }

    void problem(const InputProblem &problem) override {
        progress_->hide();
        const bool note = problem.kind == Problem::Note;
        if (report_->printsProblems() || (note && options_.report.quiet)) {
            noteProblem(problem.kind);
        } else {
            BodyUser::problem(problem);
        }
        totals_.problems += note ? 0 : 1;
        report_->problem(problem);
    }

    std::shared_ptr<const Prepared> prepare(const Found &found) const override {
        return std::make_shared<Judgement>(judge(found));
    }

    void body(const Found &found) override {
        ++totals_.bodies;
        const auto *const made = static_cast<const Judgement *>(found.prepared.get());
        Judgement judgement = made != nullptr ? *made : judge(found);
        Judged judged = {found,
                         redactorFor(found),
                         judgement.accepted,
                         false,
                         std::move(judgement.diagnostics),
                         std::move(judgement.doubts),
                         {},
                         0,
                         ""};
        leaveOutIgnored(judged);
        judged.failed =
            !judged.diagnostics.empty() || (options_.warningsAsErrors && !judged.doubts.empty());
        if (judged.failed) {
            atLeast(kRefused);
        }
        totals_.refused += judged.diagnostics.empty() ? 0 : 1;
        totals_.warnings += judged.doubts.size();
        totals_.ignored += judged.ignored.size();
        if (options_.report.summary) {
            count(judged);
        } else {
            leaveOutLast(judged);
            judged.helpful = judged.diagnostics.empty() ? "" : judgement.helpful;
        }
        if (report_->shows(judged)) {
            progress_->hide();
        }
        report_->body(judged);
    }

    // Writes the rest of the report, and returns the exit status.
    int finish() {
        progress_->hide();
        totals_.status = status();
        totals_.checks = tally_.counts();
        report_->finish(totals_);
        return status();
    }

private:
    // What is known of a body without the bodies before it.
    struct Judgement : Prepared {
        bool accepted = true;
        std::vector<Diagnostic> diagnostics;
        std::vector<sdpline::Repair> doubts;
        std::string helpful;
    };

    Judgement judge(const Found &found) const {
        Judgement judgement;
        const auto body = sdpline::Body::decode(found.text);
        judgement.accepted = static_cast<bool>(body);
        if (!body) {
            judgement.diagnostics = {diagnosticOf(body.error(), found)};
            if (options_.everyLine && judgement.diagnostics.front().offset) {
                std::vector<Diagnostic> others = judgeLines(found.text, body.error().offset);
                std::ranges::move(others, std::back_inserter(judgement.diagnostics));
            }
            judgement.helpful = options_.report.summary ? "" : rulesThatHelp(found.text);
        } else if (const auto doubted = sdpline::findDoubts(found.text);
                   doubted && !options_.noWarnings) {
            judgement.doubts.assign(doubted->repairs().begin(), doubted->repairs().end());
        }
        return judgement;
    }

    void leaveOutIgnored(Judged &judged) const {
        const auto isIgnored = [&](std::string_view name) {
            if (!ignored_.contains(name)) {
                return false;
            }
            judged.ignored.push_back(name);
            return true;
        };
        std::erase_if(judged.diagnostics,
                      [&](const Diagnostic &diagnostic) { return isIgnored(nameOf(diagnostic)); });
        std::erase_if(judged.doubts,
                      [&](const sdpline::Repair &doubt) { return isIgnored(doubt.name()); });
    }

    void leaveOutLast(Judged &judged) {
        const size_t limit = options_.maxDiagnostics;
        const auto cut = [&](auto &list) {
            const size_t left = limit == 0 ? list.size() : limit - std::min(limit, shown_);
            const size_t kept = std::min(left, list.size());
            judged.omitted += list.size() - kept;
            shown_ += kept;
            list.erase(list.begin() + static_cast<std::ptrdiff_t>(kept), list.end());
        };
        cut(judged.diagnostics);
        cut(judged.doubts);
        totals_.omitted += judged.omitted;
    }

    void count(const Judged &judged) {
        if (judged.isSilent()) {
            return;
        }
        const std::string input = placeName(judged.found, judged.redactor);
        for (const ReportEntry &entry : judged.entries()) {
            tally_.add(entry, input);
        }
    }

    const CheckOptions &options_;
    const IgnoredNames ignored_;
    const std::unique_ptr<Report> report_;
    std::optional<Progress> progress_;
    Totals totals_;
    Tally tally_;
    size_t shown_ = 0;
};

// Refuses options that contradict each other, and fills in what they imply.
void settle(CheckOptions &options) {
    ReportOptions &report = options.report;
    if (options.decode.json) {
        if (report.format != "text" && report.format != "json") {
            refuseOption("--json", "means --format json, not " + report.format);
        }
        report.format = "json";
    }
    if (report.summary && report.format != "text" && !report.format.starts_with("json")) {
        refuseOption("--summary", "can be used with the formats text, json and jsonl");
    }
    report.style = &styleFor(stdout, options.color);
}

int runCheck(CheckOptions &options) {
    settle(options);
    IgnoredNames ignored;
    std::string error;
    const bool known =
        std::ranges::all_of(options.ignored,
                            [&](const auto &names) { return ignored.add(names, error); }) &&
        std::ranges::all_of(options.ignoreFiles,
                            [&](const auto &path) { return ignored.addFile(path, error); });
    if (!known) {
        std::cerr << "sdpline: " << error << '\n';
        return kUnusable;
    }
    Checker checker(options, std::move(ignored));
    readInputs(options.decode.paths, checker);
    return checker.finish();
}

void addReportOptions(CLI::App &command, CheckOptions &options) {
    addChoice(command, "--format", options.report.format, "FORMAT", kReportFormats,
              "Format of the report: text (the default), json, jsonl, gcc, junit or sarif");
    addFlag(command, "--json", options.decode.json, "Print one JSON document: --format json");
    addFlag(command, "--summary", options.report.summary,
            "Print how often each check failed, instead of each failure");
    addFlag(command, "-q,--quiet", options.report.quiet,
            "Print only diagnostics: no notes, no summary and no progress bar");
    addColor(command, options.color);
    addNumber(command, "--max-diagnostics", options.maxDiagnostics, "N", 0, UINT32_MAX,
              "Print at most N diagnostics, and how many are left out; 0 (the default) prints all");
    addNames(command, "--ignore", options.ignored,
             "Leave out the checks and doubts of these names");
    addEach(command, "--ignore-file", options.ignoreFiles, "LIST",
            "Leave out those named in a file, one on each line; # begins a comment");
}

constexpr CommandText kCheckText = {"check", "Say which bodies are refused, where and why.",
                                    R"(Examples:
  sdpline check offer.sip
  sdpline check --every-line --redact trace.txt
  sdpline check --format sarif --ignore-file known.txt bodies/ > sdp.sarif
  sdpline check --summary captures/

Exit status: 0 when every body is accepted, 1 when one is refused or a
message contradicts itself, 2 when something cannot be read.)"};

} // namespace

void addCheck(CLI::App &app, int &status) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App &command =
        addCommand(app, kCheckText, [options, &status] { status = runCheck(*options); });
    addPaths(command, options->decode);
    addFlag(command, "--every-line", options->everyLine,
            "Also check each line after the refused one by itself");
    addFlag(command, "--no-warnings", options->noWarnings,
            "Do not report what other programs read differently");
    addFlag(command, "--warnings-as-errors", options->warningsAsErrors,
            "Exit with status 1 when there is a warning");
    addReportOptions(command, *options);
    addDecoderOptions(command, options->decode);
    addRedact(command, options->decode);
}

} // namespace cli
