// Writes a report for people: diagnostics with the line and a mark, hints, and a summary.
#include "report/report.hpp"

#include <iomanip>
#include <ostream>

#include "output/maskedorigin.hpp"
#include "output/repairs.hpp"

namespace cli {

namespace {

class TextReport : public Report {
public:
    TextReport(std::ostream &out, const ReportOptions &options) : out_(out), options_(options) {}

    void body(const Judged &judged) override {
        for (const Diagnostic &diagnostic : judged.diagnostics) {
            print(out_, judged.found, diagnostic, judged.redactor, *options_.style);
        }
        if (!judged.helpful.empty() && !options_.quiet) {
            out_ << placeName(judged.found, judged.redactor) << ':' << judged.found.line
                 << ": note: tidy makes it acceptable: " << judged.helpful << '\n';
        }
        for (const sdpline::Repair &doubt : judged.doubts) {
            out_ << repairText(judged.found, doubt, "warning", judged.redactor) << '\n';
        }
    }

    void problem(const InputProblem & /*problem*/) override {} // on standard error

    void finish(const Totals &totals) override {
        if (totals.omitted != 0) {
            out_ << omittedText(totals.omitted) << '\n';
        }
        if (!options_.quiet) {
            out_ << summaryText(totals) << '\n';
        }
    }

    bool shows(const Judged &judged) const override { return !judged.isSilent(); }

private:
    std::ostream &out_;
    const ReportOptions options_;
};

// Writes how often each check failed.
class TextSummary : public Report {
public:
    TextSummary(std::ostream &out, const ReportOptions &options) : out_(out), options_(options) {}

    void body(const Judged & /*judged*/) override {}
    void problem(const InputProblem & /*problem*/) override {}

    void finish(const Totals &totals) override {
        const Style &style = *options_.style;
        for (const CheckCount &check : totals.checks) {
            out_ << std::setw(kCountWidth) << check.count << ' '
                 << (check.severity == Severity::Error ? style.error : style.bold)
                 << wordOf(check.severity) << ": " << style.reset << check.sentence << " ["
                 << check.name << "], first at " << check.first << '\n';
        }
        if (!options_.quiet) {
            out_ << summaryText(totals) << '\n';
        }
    }

    bool shows(const Judged & /*judged*/) const override { return false; }

private:
    static constexpr int kCountWidth = 7;

    std::ostream &out_;
    const ReportOptions options_;
};

} // namespace

std::unique_ptr<Report> textReport(std::ostream &out, const ReportOptions &options) {
    if (options.summary) {
        return std::make_unique<TextSummary>(out, options);
    }
    return std::make_unique<TextReport>(out, options);
}

} // namespace cli
