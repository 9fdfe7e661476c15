// Writes one JSON document, or one JSON object on each line.
#include "report/report.hpp"

#include <optional>
#include <ostream>

#include "output/jsonlist.hpp"
#include "output/maskedorigin.hpp"
#include "output/repairs.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const Judged &judged) {
    const Found &found = judged.found;
    Json diagnostics = Json::array();
    for (const Diagnostic &diagnostic : judged.diagnostics) {
        diagnostics.push_back(cli::jsonOf(found, diagnostic, judged.redactor));
        diagnostics.back()["severity"] = wordOf(Severity::Error);
    }
    Json warnings = Json::array();
    for (const sdpline::Repair &doubt : judged.doubts) {
        warnings.push_back(cli::jsonOf(found, doubt));
        warnings.back()["severity"] = wordOf(Severity::Warning);
    }
    Json entry = {{"file", found.path},
                  {"line", found.line},
                  {"offset", found.offset},
                  {"size", found.text.size()},
                  {"accepted", judged.accepted},
                  {"diagnostics", std::move(diagnostics)},
                  {"warnings", std::move(warnings)},
                  {"tidy", judged.helpful.empty() ? Json() : Json(judged.helpful)}};
    if (!judged.ignored.empty()) {
        entry["ignored"] = judged.ignored;
    }
    if (judged.omitted != 0) {
        entry["omitted"] = judged.omitted;
    }
    if (const Origin origin = originOf(found, judged.redactor); origin.isKnown()) {
        entry["origin"] = cli::jsonOf(origin);
    }
    return entry;
}

Json summaryOf(const Totals &totals) {
    return {{"files", totals.files},       {"bodies", totals.bodies},
            {"refused", totals.refused},   {"warnings", totals.warnings},
            {"problems", totals.problems}, {"ignored", totals.ignored},
            {"omitted", totals.omitted}};
}

Json jsonOf(const CheckCount &check) {
    return {{"name", check.name},
            {"severity", wordOf(check.severity)},
            {"count", check.count},
            {"sentence", check.sentence},
            {"first", check.first}};
}

// {"bodies": [...], "problems": [...], "summary": {...}}, or "checks" in place of "bodies".
class JsonDocument : public Report {
public:
    JsonDocument(std::ostream &out, bool summary)
        : list_(out, summary ? "checks" : "bodies"), summary_(summary) {}

    void body(const Judged &judged) override {
        if (!summary_) {
            list_.add(jsonOf(judged));
        }
    }

    void problem(const InputProblem &problem) override {
        if (problem.kind != Problem::Note) {
            problems_.push_back(problem.message());
        }
    }

    void finish(const Totals &totals) override {
        for (size_t i = 0; summary_ && i < totals.checks.size(); ++i) {
            list_.add(jsonOf(totals.checks[i]));
        }
        list_.finish({{"problems", problems_}, {"summary", summaryOf(totals)}});
    }

private:
    JsonList list_;
    const bool summary_;
    Json problems_ = Json::array();
};

// The same objects, each on a line with its "type".
class JsonLines : public Report {
public:
    JsonLines(std::ostream &out, bool summary) : out_(out), summary_(summary) {}

    void body(const Judged &judged) override {
        if (!summary_) {
            write("body", jsonOf(judged));
        }
    }

    void problem(const InputProblem &problem) override {
        write("problem", {{"file", problem.path},
                          {"line", problem.line == 0 ? Json() : Json(problem.line)},
                          {"severity", problem.kind == Problem::Note ? "note" : "error"},
                          {"sentence", problem.text}});
    }

    void finish(const Totals &totals) override {
        for (size_t i = 0; summary_ && i < totals.checks.size(); ++i) {
            write("check", jsonOf(totals.checks[i]));
        }
        write("summary", summaryOf(totals));
    }

private:
    void write(const char *type, const Json &members) {
        Json line = {{"type", type}};
        line.update(members);
        out_ << dumpedLine(line);
    }

    std::ostream &out_;
    const bool summary_;
};

} // namespace

std::unique_ptr<Report> jsonReport(std::ostream &out, const ReportOptions &options) {
    if (options.format == "jsonl") {
        return std::make_unique<JsonLines>(out, options.summary);
    }
    return std::make_unique<JsonDocument>(out, options.summary);
}

} // namespace cli
