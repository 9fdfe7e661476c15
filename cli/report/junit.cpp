// Writes JUnit XML, which build servers read: a suite for each file, a test case for each body.
#include "report/report.hpp"

#include <cstdio>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "output/repairs.hpp"
#include "report/xml.hpp"

namespace cli {

namespace {

// Keeps text that is written later, after counts that depend on it: in memory up to a limit, and
// beyond that in a temporary file.
class Spool {
public:
    Spool() = default;
    Spool(const Spool &) = delete;
    Spool &operator=(const Spool &) = delete;
    ~Spool() { clear(); }

    void add(const std::string &text) {
        text_ += text;
        if (text_.size() > kKept) {
            toFile();
        }
    }

    bool empty() const { return file_ == nullptr && text_.empty(); }

    void moveTo(std::ostream &out) {
        if (file_ != nullptr) {
            toFile();
            std::rewind(file_);
            char buffer[1 << 14];
            while (const size_t size = std::fread(buffer, 1, sizeof buffer, file_)) {
                out.write(buffer, static_cast<std::streamsize>(size));
            }
        }
        out << text_;
        clear();
    }

private:
    static constexpr size_t kKept = 1u << 20;

    void toFile() {
        file_ = file_ != nullptr ? file_ : std::tmpfile();
        if (file_ == nullptr || std::fwrite(text_.data(), 1, text_.size(), file_) != text_.size() ||
            std::fflush(file_) != 0) {
            throw std::runtime_error("cannot write a temporary file");
        }
        text_.clear();
    }

    void clear() {
        if (file_ != nullptr) {
            std::fclose(file_);
        }
        file_ = nullptr;
        text_.clear();
    }

    std::string text_;
    std::FILE *file_ = nullptr;
};

std::string attribute(const char *name, std::string_view value) {
    return ' ' + std::string(name) + "=\"" + xmlText(value) + '"';
}

std::string attribute(const char *name, size_t value) {
    return attribute(name, std::to_string(value));
}

class JUnitReport : public Report {
public:
    explicit JUnitReport(std::ostream &out) : out_(out) {
        out_ << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"sdpline check\">\n";
    }

    void body(const Judged &judged) override {
        enter(judged.found.path);
        ++tests_;
        const std::string context = contextText(judged.found, judged.redactor);
        const bool inPacket = judged.found.packet.frame != 0; // then there is no line of the file
        const std::string place = "body at line " + std::to_string(judged.found.line);
        const std::string name =
            inPacket ? context : place + (context.empty() ? "" : " (" + context + ')');
        std::string text = "    <testcase" + attribute("name", name) +
                           attribute("classname", inputName(judged.found.path)) +
                           attribute("file", inputName(judged.found.path)) +
                           (inPacket ? "" : attribute("line", judged.found.line));
        const std::string inside = outcomeOf(judged);
        cases_.add(text + (inside.empty() ? "/>\n" : ">\n" + inside + "    </testcase>\n"));
    }

    void problem(const InputProblem &problem) override {
        enter(problem.path);
        if (problem.kind == Problem::Note) {
            notes_.add(xmlText(problem.message()) + '\n');
            return;
        }
        ++tests_;
        const bool wrong = problem.kind == Problem::Wrong;
        ++(wrong ? failures_ : errors_);
        const char *const element = wrong ? "failure" : "error";
        const std::string place =
            problem.line == 0 ? "" : " at line " + std::to_string(problem.line);
        cases_.add("    <testcase" + attribute("name", (wrong ? "message" : "input") + place) +
                   attribute("classname", inputName(problem.path)) +
                   attribute("file", inputName(problem.path)) +
                   (problem.line == 0 ? "" : attribute("line", problem.line)) + ">\n      <" +
                   element + attribute("message", problem.text) +
                   attribute("type", wrong ? "Message" : "Unusable") + '>' +
                   xmlText(problem.message()) + "</" + element + ">\n    </testcase>\n");
    }

    void finish(const Totals &totals) override {
        leave();
        if (totals.omitted != 0) {
            out_ << "  <!-- " << omittedText(totals.omitted) << " -->\n";
        }
        out_ << "</testsuites>\n";
    }

private:
    // The content of the test case: a failure, or what was ignored, and warnings.
    std::string outcomeOf(const Judged &judged) {
        std::ostringstream text;
        for (const Diagnostic &diagnostic : judged.diagnostics) {
            print(text, judged.found, diagnostic, judged.redactor, kPlain);
        }
        for (const sdpline::Repair &doubt : judged.doubts) {
            text << repairText(judged.found, doubt, "warning", judged.redactor) << '\n';
        }
        if (!judged.helpful.empty()) {
            text << "tidy makes it acceptable: " << judged.helpful << '\n';
        }
        if (judged.failed) {
            ++failures_;
            return failureOf(judged, text.str());
        }
        std::string inside;
        if (!judged.accepted) {
            ++skipped_;
            std::string names;
            for (const std::string_view name : judged.ignored) {
                names += (names.empty() ? "" : ", ") + std::string(name);
            }
            inside += "      <skipped" + attribute("message", "ignored: " + names) + "/>\n";
        }
        return text.str().empty()
                   ? inside
                   : inside + "      <system-out>" + xmlText(text.str()) + "</system-out>\n";
    }

    static std::string failureOf(const Judged &judged, const std::string &text) {
        const std::vector<ReportEntry> entries = judged.entries();
        const std::string message =
            entries.empty() ? "left out by --max-diagnostics" : entries.front().message;
        const std::string_view type = entries.empty() ? "Omitted" : entries.front().name;
        return "      <failure" + attribute("message", message) + attribute("type", type) + '>' +
               xmlText(text) + "</failure>\n";
    }

    void enter(const std::string &path) {
        if (!inSuite_ || path != path_) {
            leave();
            path_ = path;
            inSuite_ = true;
        }
    }

    void leave() {
        if (!inSuite_) {
            return;
        }
        out_ << "  <testsuite" << attribute("name", inputName(path_)) << attribute("tests", tests_)
             << attribute("failures", failures_) << attribute("errors", errors_)
             << attribute("skipped", skipped_) << ">\n";
        cases_.moveTo(out_);
        if (!notes_.empty()) {
            out_ << "    <system-out>";
            notes_.moveTo(out_);
            out_ << "</system-out>\n";
        }
        out_ << "  </testsuite>\n";
        tests_ = failures_ = errors_ = skipped_ = 0;
        inSuite_ = false;
    }

    static constexpr Style kPlain = {};

    std::ostream &out_;
    std::string path_;
    bool inSuite_ = false;
    size_t tests_ = 0;
    size_t failures_ = 0;
    size_t errors_ = 0;
    size_t skipped_ = 0;
    Spool cases_;
    Spool notes_;
};

} // namespace

std::unique_ptr<Report> junitReport(std::ostream &out) {
    return std::make_unique<JUnitReport>(out);
}

} // namespace cli
