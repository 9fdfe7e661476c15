#include "calls/page.hpp"

#include <algorithm>
#include <set>

#include "calls/ladder.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --wrong: #b00020; --mark: #ffe08a; --line: #8886; }
@media (prefers-color-scheme: dark) { :root { --wrong: #ff8a80; --mark: #6b5200; } }
body { font: 16px/1.45 system-ui, sans-serif; margin: 0 auto; max-width: 60rem; padding: 1rem;
  overflow-wrap: anywhere; }
h1 { font-size: 1.3rem; } h2 { font-size: 1.05rem; margin: .3rem 0; } section p { margin: .2rem 0; }
section { border-top: 1px solid var(--line); padding: .5rem 0 1rem; }
ul { margin: .4rem 0; padding-left: 1.2rem; } .wrong { color: var(--wrong); }
summary { cursor: pointer; padding: .4rem 0; }
.row { display: grid; grid-template-columns: 3.2rem 1fr 5.2rem; gap: .5rem; font-size: .9rem; }
.time { text-align: right; align-self: end; } .place { align-self: end; }
.sides span { display: flex; justify-content: space-between; gap: 1rem; }
.lanes { display: grid; grid-template-columns: repeat(var(--lanes), 1fr);
  background: linear-gradient(to right, var(--line) 1px, transparent 1px);
  background-size: calc(100% / var(--lanes)) 100%; border-right: 1px solid var(--line); }
.arrow { position: relative; border-bottom: 2px solid; margin: 0 1px .3rem; padding: .2rem .7rem 0;
  text-align: center; min-width: 0; }
.right::after, .left::after { content: ""; position: absolute; bottom: -6px;
  border: 5px solid transparent; }
.right::after { right: 0; border-right: 0; border-left: 9px solid; }
.left::after { left: 0; border-left: 0; border-right: 9px solid; }
.self { border-bottom-style: dashed; }
.fault { margin: 0 0 .2rem 3.7rem !important; font-size: .9rem; }
.pair { display: grid; gap: 1rem; grid-template-columns: 1fr 1fr; } .pair div { min-width: 0; }
pre { font: 13px/1.4 ui-monospace, monospace; margin: 0; white-space: pre-wrap; }
mark { background: var(--mark); color: inherit; }
@media (max-width: 40rem) { .pair { grid-template-columns: 1fr; } body { padding: .5rem; }
  .row { grid-template-columns: 2.6rem 1fr 4.2rem; gap: .3rem; font-size: .8rem; }
  .fault { margin-left: 2.9rem !important; font-size: .8rem; } }
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

// A body in which the lines are marked that the other body does not have.
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

// The message with the answer to an offer; null where there is none.
const CallMessage *answerTo(const Call &call, const CallMessage &offer) {
    const std::string role = "answer " + offer.role.substr(offer.role.find(' ') + 1);
    const auto found = std::ranges::find(call.messages, role, &CallMessage::role);
    return found != call.messages.end() ? &*found : nullptr;
}

void writePair(std::ostream &out, const Call &call, const CallMessage &offer,
               const ShowBody &shown) {
    const CallMessage *const answer = answerTo(call, offer);
    const bool wrong = !call.findings.empty();
    out << "<details" << (wrong ? " open" : "") << "><summary>" << offer.role
        << (answer != nullptr ? " and its answer" : ", without an answer") << "</summary>\n";
    const std::vector<std::string> left = linesOf(shown(offer.body));
    const std::vector<std::string> right =
        answer != nullptr ? linesOf(shown(answer->body)) : std::vector<std::string>();
    out << "<div class=\"pair\">"
        << columnOf(offer, bodyOf(left, answer != nullptr ? right : left));
    if (answer != nullptr) {
        out << columnOf(*answer, bodyOf(right, left));
    }
    out << "</div></details>\n";
}

// An arrow between the vertical lines of the sides, which are numbered from 1.
std::string arrowOf(const std::vector<std::string> &sides, const CallMessage &message) {
    const auto lineOf = [&sides](const std::string &side) {
        return std::ranges::find(sides, side) - sides.begin() + 1;
    };
    const auto from = lineOf(message.sender);
    const auto to = lineOf(message.receiver);
    const auto last = static_cast<ptrdiff_t>(std::max<size_t>(sides.size(), 2));
    const auto begin = std::min({from, to, last - 1});
    const auto end = std::max({from, to, begin + 1});
    return std::string("<span class=\"arrow ") +
           (from == to  ? "self"
            : from < to ? "right"
                        : "left") +
           "\" style=\"grid-column:" + std::to_string(begin) + '/' + std::to_string(end) + "\">" +
           html(escaped(labelOf(message))) + "</span>";
}

void writeLadder(std::ostream &out, const Call &call) {
    const std::vector<std::string> sides = sidesOf(call);
    out << "<div class=\"ladder\" style=\"--lanes:" << std::max<size_t>(sides.size(), 2) - 1
        << "\">\n<div class=\"row sides\"><i></i><span>";
    for (const std::string &side : sides) {
        out << "<strong>" << html(escaped(side)) << "</strong>";
    }
    out << "</span></div>\n";
    for (size_t i = 0; i < call.messages.size(); ++i) {
        const CallMessage &message = call.messages[i];
        out << "<div class=\"row\"><span class=\"time\">" << timeOf(call, message)
            << "</span><span class=\"lanes\">" << arrowOf(sides, message)
            << "</span><span class=\"place\">" << placeOf(message) << "</span></div>\n";
        for (const CallFinding &finding : call.findings) {
            if (finding.message == i) {
                out << "<p class=\"fault wrong\">" << html(findingText(finding)) << "</p>\n";
            }
        }
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
    out << "<details" << (wrong ? " open" : "") << "><summary>"
        << counted(call.messages.size(), "message", "messages") << "</summary>\n";
    writeLadder(out, call);
    out << "</details>\n";
    for (const CallMessage &message : call.messages) {
        if (message.role.starts_with("offer")) {
            writePair(out, call, message, shown);
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
