#include "calls/page.hpp"

#include <algorithm>
#include <set>

#include "calls/ladder.hpp"
#include "output/escape.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --wrong: #b00020; --mark: #ffe08a; --line: #8884; }
@media (prefers-color-scheme: dark) { :root { --wrong: #ff8a80; --mark: #6b5200; } }
body { font: 16px/1.45 system-ui, sans-serif; margin: 0 auto; max-width: 75rem; padding: 1rem; }
h1 { font-size: 1.3rem; } h2 { font-size: 1.05rem; overflow-wrap: anywhere; }
pre { font: 13px/1.4 ui-monospace, monospace; margin: 0; overflow-x: auto; }
section { border-top: 1px solid var(--line); padding: .5rem 0 1rem; }
.wrong { color: var(--wrong); } .pair { display: grid; gap: 1rem; grid-template-columns: 1fr 1fr; }
.pair div { min-width: 0; } .pair pre { white-space: pre-wrap; overflow-wrap: anywhere; }
mark { background: var(--mark); color: inherit; } summary { cursor: pointer; padding: .3rem 0; }
@media (max-width: 40rem) { .pair { grid-template-columns: 1fr; } body { padding: .5rem; } }
)";

std::string html(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        switch (byte) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        default: result += byte;
        }
    }
    return result;
}

std::vector<std::string> linesOf(std::string_view body) {
    std::vector<std::string> lines;
    while (!body.empty()) {
        const size_t end = std::min(body.find('\n'), body.size());
        lines.emplace_back(trimmed(body.substr(0, end)));
        body.remove_prefix(std::min(end + 1, body.size()));
    }
    return lines;
}

// A body with the lines marked that the other one has not.
std::string bodyOf(const std::vector<std::string> &lines, const std::vector<std::string> &others) {
    const std::set<std::string> known(others.begin(), others.end());
    std::string text = "<pre>";
    for (const std::string &line : lines) {
        const std::string shown = html(escaped(line));
        text += (known.contains(line) ? shown : "<mark>" + shown + "</mark>") + '\n';
    }
    return text + "</pre>";
}

std::string columnOf(const CallMessage &message, const std::string &body) {
    return "<div><b>" + html(escaped(labelOf(message))) + "</b> " + placeOf(message) + body +
           "</div>";
}

// The message with the answer to an offer, or none.
const CallMessage *answerTo(const Call &call, const CallMessage &offer) {
    const std::string role = "answer " + offer.role.substr(offer.role.find(' ') + 1);
    const auto found = std::ranges::find(call.messages, role, &CallMessage::role);
    return found != call.messages.end() ? &*found : nullptr;
}

void writePair(std::ostream &out, const Call &call, const CallMessage &offer,
               const ShowBody &shown) {
    const CallMessage *const answer = answerTo(call, offer);
    const std::vector<std::string> left = linesOf(shown(offer.body));
    const std::vector<std::string> right =
        answer != nullptr ? linesOf(shown(answer->body)) : std::vector<std::string>();
    out << "<div class=\"pair\">"
        << columnOf(offer, bodyOf(left, answer != nullptr ? right : left));
    if (answer != nullptr) {
        out << columnOf(*answer, bodyOf(right, left));
    }
    out << "</div>\n";
}

void writeCall(std::ostream &out, const Call &call, const ShowBody &shown) {
    const bool wrong = !call.findings.empty();
    out << "<section><h2" << (wrong ? " class=\"wrong\"" : "") << ">Call-ID "
        << html(escaped(call.callId)) << "</h2>\n<p>" << html(escaped(call.from)) << " &rarr; "
        << html(escaped(call.to)) << ", " << html(escaped(call.path)) << "</p>\n";
    if (wrong) {
        out << "<ul class=\"wrong\">\n";
        for (const CallFinding &finding : call.findings) {
            out << "<li>" << placeOf(call.messages[finding.message]) << ": "
                << html(findingText(finding)) << "</li>\n";
        }
        out << "</ul>\n";
    }
    const std::string ladder = ladderOf(call);
    out << "<details" << (wrong ? " open" : "") << "><summary>"
        << counted(call.messages.size(), "message", "messages") << "</summary>\n<pre>"
        << html(ladder.substr(ladder.find('\n') + 1)) << "</pre></details>\n";
    for (const CallMessage &message : call.messages) {
        if (message.role.starts_with("offer")) {
            out << "<details" << (wrong ? " open" : "") << "><summary>" << message.role
                << " and its answer</summary>\n";
            writePair(out, call, message, shown);
            out << "</details>\n";
        }
    }
    out << "</section>\n";
}

} // namespace

void writePage(std::ostream &out, const std::vector<const Call *> &calls, const ShowBody &shown) {
    const auto wrong = static_cast<size_t>(
        std::ranges::count_if(calls, [](const Call *call) { return !call->findings.empty(); }));
    out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        << "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "style-src 'unsafe-inline'\">\n"
        << "<title>Calls</title><style>" << kStyle << "</style></head>\n<body><h1>"
        << counted(calls.size(), "call", "calls") << ", " << wrong
        << " with something wrong</h1>\n";
    for (const Call *const call : calls) {
        writeCall(out, *call, shown);
    }
    out << "</body></html>\n";
}

} // namespace cli
