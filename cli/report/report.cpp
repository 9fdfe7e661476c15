#include "report/report.hpp"

#include "output/maskedorigin.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

std::vector<ReportEntry> Judged::entries() const {
    std::vector<ReportEntry> list;
    for (const Diagnostic &diagnostic : diagnostics) {
        list.push_back(entryOf(found, diagnostic, redactor));
    }
    for (const sdpline::Repair &doubt : doubts) {
        list.push_back(entryOf(found, doubt, redactor));
    }
    return list;
}

std::string summaryText(const Totals &totals) {
    const auto also = [](size_t count, std::string_view singular, std::string_view plural) {
        return count == 0 ? "" : ", " + counted(count, singular, plural);
    };
    return "checked " + counted(totals.bodies, "body", "bodies") + " in " +
           counted(totals.files, "file", "files") + ": " +
           (totals.refused == 0 ? "none" : std::to_string(totals.refused)) + " refused" +
           also(totals.warnings, "warning", "warnings") +
           also(totals.ignored, "ignored", "ignored") +
           also(totals.problems, "problem", "problems");
}

std::string omittedText(size_t omitted) {
    return counted(omitted, "more diagnostic is", "more diagnostics are") + " left out";
}

std::string contextText(const Found &found, Redactor *redactor) {
    const Origin origin = originOf(found, redactor);
    std::string text;
    const auto add = [&text](const std::string &part) {
        text += (text.empty() ? "" : ", ") + escaped(part);
    };
    if (const Packet &packet = origin.packet; packet.frame != 0) {
        add("frame " + std::to_string(packet.frame));
        add(timeText(packet.time));
        add(packet.source + " > " + packet.destination);
    }
    if (!origin.message.empty()) {
        add(origin.message);
    }
    if (!origin.callId.empty()) {
        add("Call-ID " + origin.callId);
    }
    if (!origin.cseq.empty()) {
        add("CSeq " + origin.cseq);
    }
    return text;
}

std::unique_ptr<Report> makeReport(std::ostream &out, const ReportOptions &options) {
    if (options.format == "json" || options.format == "jsonl") {
        return jsonReport(out, options);
    }
    if (options.format == "gcc") {
        return gccReport(out, options);
    }
    if (options.format == "junit") {
        return junitReport(out);
    }
    return options.format == "sarif" ? sarifReport(out) : textReport(out, options);
}

} // namespace cli
