// Writes lines as compilers do, "file:line:column: error: message [Check]", for editors and for the
// problem matchers of build servers.
#include "report/report.hpp"

#include <algorithm>
#include <ostream>

namespace cli {

namespace {

// "offer.sip:4:16: error: "; an entry without a column is reported at column 1.
struct Place {
    const std::string &file;
    size_t line;
    size_t column;
    const char *severity;
};

class GccReport : public Report {
public:
    GccReport(std::ostream &out, const ReportOptions &options) : out_(out), options_(options) {}

    void body(const Judged &judged) override {
        if (judged.isSilent()) {
            return;
        }
        const Found &found = judged.found;
        const std::string file = nameOf(found.path);
        const std::string context = contextText(found, judged.redactor);
        for (const ReportEntry &entry : judged.entries()) {
            begin({file, entry.line, entry.column, wordOf(entry.severity)});
            out_ << entry.message << (context.empty() ? "" : " (" + context + ')') << " ["
                 << entry.name << "]\n";
            if (!entry.hint.empty() && !options_.quiet) {
                begin({file, entry.line, entry.column, "note"});
                out_ << entry.hint << '\n';
            }
        }
        if (!judged.helpful.empty() && !options_.quiet) {
            begin({file, found.line, 1, "note"});
            out_ << "tidy makes it acceptable: " << judged.helpful << '\n';
        }
    }

    void problem(const InputProblem &problem) override {
        const bool note = problem.kind == Problem::Note;
        if (!note || !options_.quiet) {
            begin({nameOf(problem.path), problem.line, 1, note ? "note" : "error"});
            out_ << problem.text << '\n';
        }
    }

    void finish(const Totals &totals) override {
        if (totals.omitted != 0) {
            out_ << "sdpline: note: " << omittedText(totals.omitted) << '\n';
        }
    }

    bool printsProblems() const override { return true; }
    bool shows(const Judged &judged) const override { return !judged.isSilent(); }

private:
    static std::string nameOf(const std::string &path) {
        return path == "-" ? "<stdin>" : inputName(path);
    }

    void begin(const Place &place) {
        const Style &style = *options_.style;
        const bool error = std::string_view(place.severity) == "error";
        out_ << style.bold << place.file << ':' << std::max<size_t>(place.line, 1) << ':'
             << std::max<size_t>(place.column, 1) << ": " << style.reset
             << (error ? style.error : style.bold) << place.severity << ": " << style.reset;
    }

    std::ostream &out_;
    const ReportOptions options_;
};

} // namespace

std::unique_ptr<Report> gccReport(std::ostream &out, const ReportOptions &options) {
    return std::make_unique<GccReport>(out, options);
}

} // namespace cli
