// The reports of check: one class for each format, over the same stream of judged bodies and
// problems. A report writes while bodies are read, so that its memory does not depend on their
// number.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "input/input.hpp"
#include "output/diagnostic.hpp"
#include "output/terminal.hpp"
#include "redact/redact.hpp"
#include "report/entry.hpp"
#include "sdpline/tidy.hpp"

namespace cli {

// A body and its diagnostics, without those that --ignore and --max-diagnostics leave out.
struct Judged {
    const Found &found;
    Redactor *redactor;                    // null: nothing is masked
    bool accepted;                         // by the decoder
    bool failed;                           // whether it raises the exit status
    std::vector<Diagnostic> diagnostics;   // of a refused body
    std::vector<sdpline::Repair> doubts;   // of an accepted body
    std::vector<std::string_view> ignored; // the names of what --ignore left out
    size_t omitted;                        // how many --max-diagnostics left out
    std::string helpful;                   // the repairs that would make a refused body acceptable

    // All of them, errors first.
    std::vector<ReportEntry> entries() const;
    bool isSilent() const { return diagnostics.empty() && doubts.empty(); }
};

// How often a check failed, and where it failed first.
struct CheckCount {
    std::string name;
    Severity severity;
    std::string sentence;
    size_t count;
    std::string first; // "call.sip:4:16"
};

struct Totals {
    size_t files = 0;
    size_t bodies = 0;
    size_t refused = 0;
    size_t warnings = 0;
    size_t ignored = 0;             // diagnostics
    size_t omitted = 0;             // diagnostics
    size_t problems = 0;            // notes are not among them
    int status = 0;                 // the exit status
    std::vector<CheckCount> checks; // the most frequent first
};

// "checked 3 bodies in 2 files: 1 refused, 2 warnings"
std::string summaryText(const Totals &totals);

class Report {
public:
    virtual ~Report() = default;

    virtual void body(const Judged &judged) = 0;
    virtual void problem(const InputProblem &problem) = 0;
    virtual void finish(const Totals &totals) = 0;

    // Whether the report prints the problems of inputs, so that they need not go to standard error.
    virtual bool printsProblems() const { return false; }
    // Whether the report writes something about this body, so that the progress bar must be hidden.
    virtual bool shows(const Judged & /*judged*/) const { return true; }
};

struct ReportOptions {
    std::string format = "text"; // one of kReportFormats
    bool summary = false;        // how often each check failed, instead of each failure
    bool quiet = false;          // leave out notes and the summary
    const Style *style = nullptr;
};

inline const std::vector<std::string> kReportFormats = {"text", "json",  "jsonl",
                                                        "gcc",  "junit", "sarif"};

std::unique_ptr<Report> makeReport(std::ostream &out, const ReportOptions &options);

// One for each file of this folder.
std::unique_ptr<Report> textReport(std::ostream &out, const ReportOptions &options);
std::unique_ptr<Report> gccReport(std::ostream &out, const ReportOptions &options);
std::unique_ptr<Report> jsonReport(std::ostream &out, const ReportOptions &options);
std::unique_ptr<Report> junitReport(std::ostream &out);
std::unique_ptr<Report> sarifReport(std::ostream &out);

// ---- What several formats share

// "frame 7, 192.0.2.1 > 192.0.2.2, INVITE, Call-ID 3c26@host, CSeq 1 INVITE": what is known of the
// packet and the message, with the time of the packet; empty for a plain body.
std::string contextText(const Found &found, Redactor *redactor);

// "12 more diagnostics are left out"
std::string omittedText(size_t omitted);

} // namespace cli
