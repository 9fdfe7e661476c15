// Writes SARIF 2.1.0 (OASIS), which code scanning services read: one run, a result for each
// diagnostic. Problems of inputs are notifications of the run.
#include "report/report.hpp"

#include <algorithm>
#include <map>
#include <ostream>

#include "output/maskedorigin.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char *kSchema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";
constexpr size_t kMostNotifications = 1000; // since an input may have any number of them

bool staysInUri(char byte) {
    return isAlnum(byte) || std::string_view("-._~/").find(byte) != std::string_view::npos;
}

// A URI reference (RFC 3986) for a path: relative paths stay relative.
std::string uriOf(const std::string &path) {
    if (path == "-") {
        return "stdin";
    }
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char &byte : path) {
        std::string code = hexOf({&byte, 1});
        std::ranges::transform(code, code.begin(), [](char digit) {
            return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
        });
        uri += staysInUri(byte) ? std::string(1, byte) : '%' + code;
    }
    return uri;
}

Json locationOf(const std::string &path, size_t line) {
    Json place = {{"artifactLocation", {{"uri", uriOf(path)}}}};
    if (line != 0) {
        place["region"] = {{"startLine", line}};
    }
    return {{"physicalLocation", std::move(place)}};
}

// Lines in a packet are not lines of the capture file: the packet is the location.
Json locationOf(const ReportEntry &entry, const Found &found, Redactor *redactor) {
    if (found.packet.frame != 0) {
        Json location = locationOf(found.path, 0);
        location["logicalLocations"] =
            Json::array({{{"name", "frame " + std::to_string(found.packet.frame)},
                          {"fullyQualifiedName", contextText(found, redactor)}}});
        return location;
    }
    Json location = locationOf(found.path, entry.line);
    if (entry.column != 0) {
        Json &place = location["physicalLocation"];
        place["region"]["startColumn"] = entry.character;
        place["contextRegion"] = {{"startLine", entry.line}, {"snippet", {{"text", entry.text}}}};
    }
    return location;
}

class SarifReport : public Report {
public:
    explicit SarifReport(std::ostream &out) : out_(out) {
        out_ << "{\"$schema\": \"" << kSchema << "\",\n \"version\": \"2.1.0\",\n \"runs\": ["
             << "{\n  \"results\": [";
    }

    void body(const Judged &judged) override {
        for (const ReportEntry &entry : judged.entries()) {
            out_ << (first_ ? "\n" : ",\n") << lineOf(resultOf(entry, judged));
            first_ = false;
        }
    }

    void problem(const InputProblem &problem) override {
        if (notifications_.size() == kMostNotifications) {
            ++unsaid_;
            return;
        }
        notifications_.push_back(
            {{"level", problem.kind == Problem::Note ? "note" : "error"},
             {"message", {{"text", problem.text}}},
             {"locations", Json::array({locationOf(problem.path, problem.line)})}});
    }

    void finish(const Totals &totals) override {
        if (unsaid_ != 0) {
            say(counted(unsaid_, "more notification is", "more notifications are") + " left out");
        }
        if (totals.omitted != 0) {
            say(omittedText(totals.omitted));
        }
        const Json invocations = Json::array({{{"executionSuccessful", totals.status < 2},
                                               {"exitCode", totals.status},
                                               {"toolExecutionNotifications", notifications_}}});
        const Json driver = {
            {"name", "sdpline"}, {"semanticVersion", SDPLINE_VERSION}, {"rules", rules_}};
        out_ << (first_ ? "" : "\n") << "],\n  \"tool\": " << lineOf({{"driver", driver}})
             << ",\n  \"invocations\": " << lineOf(invocations)
             << ",\n  \"columnKind\": \"unicodeCodePoints\"\n }]\n}\n";
    }

private:
    static std::string lineOf(const Json &document) {
        std::string line = dumpedLine(document);
        line.pop_back();
        return line;
    }

    // " (frame 8, ..., line 4, column 17)": most readers show only the message and the file.
    static std::string placeInPacket(const ReportEntry &entry, const Judged &judged) {
        if (judged.found.packet.frame == 0) {
            return "";
        }
        return " (" + contextText(judged.found, judged.redactor) + ", line " +
               std::to_string(entry.line) +
               (entry.column == 0 ? "" : ", column " + std::to_string(entry.column)) + ')';
    }

    Json resultOf(const ReportEntry &entry, const Judged &judged) {
        const std::string hint = entry.hint.empty() ? "" : "\nhint: " + entry.hint;
        Json result = {
            {"ruleId", entry.name},
            {"ruleIndex", indexOf(entry)},
            {"level", wordOf(entry.severity)},
            {"message", {{"text", entry.message + placeInPacket(entry, judged) + hint}}},
            {"locations", Json::array({locationOf(entry, judged.found, judged.redactor)})}};
        Json properties = Json::object();
        if (const Origin origin = originOf(judged.found, judged.redactor); origin.isKnown()) {
            properties = cli::jsonOf(origin);
        }
        if (entry.column != 0) {
            properties["line"] = entry.line;
            properties["byteColumn"] = entry.column;
            properties["byteOffset"] = entry.offset;
        }
        if (!judged.helpful.empty()) {
            properties["tidy"] = judged.helpful;
        }
        if (!properties.empty()) {
            result["properties"] = std::move(properties);
        }
        return result;
    }

    // The index of the rule, which is added when it is used first.
    size_t indexOf(const ReportEntry &entry) {
        const auto [index, isNew] = indices_.try_emplace(std::string(entry.name), rules_.size());
        if (isNew) {
            const std::string sentence = sentenceFor(entry.name);
            rules_.push_back({{"id", entry.name},
                              {"shortDescription", {{"text", sentence}}},
                              {"defaultConfiguration", {{"level", wordOf(entry.severity)}}}});
        }
        return index->second;
    }

    void say(const std::string &text) {
        notifications_.push_back({{"level", "note"}, {"message", {{"text", text}}}});
    }

    std::ostream &out_;
    bool first_ = true;
    std::map<std::string, size_t> indices_;
    Json rules_ = Json::array();
    Json notifications_ = Json::array();
    size_t unsaid_ = 0;
};

} // namespace

std::unique_ptr<Report> sarifReport(std::ostream &out) {
    return std::make_unique<SarifReport>(out);
}

} // namespace cli
