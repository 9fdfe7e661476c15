#include "report/entry.hpp"

#include <algorithm>

#include "output/checktable.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

void setPlace(ReportEntry &entry, const Found &body, size_t offset, Redactor *redactor) {
    LinePart part = linePartAt(body, offset, redactor);
    entry.line = part.number;
    entry.column = part.column;
    entry.character = charactersOf(body.text.substr(offset + 1 - part.column, part.column - 1)) + 1;
    entry.offset = body.offset + offset;
    entry.text = std::move(part.text);
}

} // namespace

const char *wordOf(Severity severity) {
    return severity == Severity::Error ? "error" : "warning";
}

size_t charactersOf(std::string_view text) {
    size_t count = 0;
    for (; !text.empty(); ++count) {
        text.remove_prefix(std::max<size_t>(utf8Length(text), 1));
    }
    return count;
}

ReportEntry entryOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    ReportEntry entry = {};
    entry.severity = Severity::Error;
    entry.name = nameOf(diagnostic);
    entry.line = body.line;
    entry.offset = body.offset;
    if (diagnostic.offset) {
        setPlace(entry, body, *diagnostic.offset, redactor);
    }
    const Advice advice = adviceOf(body, diagnostic, redactor);
    entry.message = advice.message + (diagnostic.alone ? " (line checked by itself)" : "");
    entry.hint = advice.hint;
    return entry;
}

ReportEntry entryOf(const Found &body, const sdpline::Repair &doubt, Redactor *redactor) {
    ReportEntry entry = {};
    entry.severity = Severity::Warning;
    entry.name = doubt.name();
    entry.message = std::string(doubt.rule->pcWrong) + ": " + doubt.rule->pcDone;
    entry.hint = std::string("see ") + doubt.rule->pcReference;
    setPlace(entry, body, doubt.offset, redactor);
    return entry;
}

std::string_view nameKnown(std::string_view name) {
    if (equalsIgnoringCase(name, kLineKind)) {
        return kLineKind;
    }
    for (const CheckInfo &check : allChecks()) {
        if (equalsIgnoringCase(name, check.name)) {
            return check.name;
        }
    }
    const auto number = sdpline::TidyRules::numberOf(name);
    const SDPTidyRule *const rule = number ? SdpTidyRuleAt(*number) : nullptr;
    return rule != nullptr && rule->enSet == SDP_TIDY_DOUBT ? rule->pcName : std::string_view();
}

std::string sentenceFor(std::string_view name) {
    if (name == kLineKind) {
        return std::string(kLineKindSentence);
    }
    for (const CheckInfo &check : allChecks()) {
        if (name == check.name) {
            return check.sentence;
        }
    }
    const auto number = sdpline::TidyRules::numberOf(name);
    return number ? std::string(SdpTidyRuleAt(*number)->pcWrong) + ": " +
                        SdpTidyRuleAt(*number)->pcDone
                  : "";
}

} // namespace cli
