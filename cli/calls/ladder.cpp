#include "calls/ladder.hpp"

#include <algorithm>
#include <cstdio>

#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kTime = 10;  // columns before the ladder
constexpr size_t kWidth = 34; // from one side to the next

size_t columnOf(const std::vector<std::string> &sides, const std::string &side) {
    return static_cast<size_t>(std::ranges::find(sides, side) - sides.begin()) * kWidth;
}

// "|------ INVITE (offer 1) ------>|" across the vertical lines of all sides.
std::string arrow(const std::vector<std::string> &sides, const CallMessage &message) {
    std::string line((sides.size() - 1) * kWidth + 1, ' ');
    for (size_t at = 0; at < line.size(); at += kWidth) {
        line[at] = '|';
    }
    const size_t from = columnOf(sides, message.sender);
    const size_t to = columnOf(sides, message.receiver);
    const std::string label = ' ' + escaped(labelOf(message)) + ' ';
    if (from == to) { // a host that sends to itself
        return line.substr(0, from + 1) + label;
    }
    const size_t left = std::min(from, to) + 1;
    const size_t size = std::max(from, to) - left;
    line.replace(left, size, size, '-');
    (from < to ? line[left + size - 1] : line[left]) = from < to ? '>' : '<';
    const size_t shown = std::min(label.size(), size - 2);
    line.replace(left + 1 + (size - 2 - shown) / 2, shown, label, 0, shown);
    return line;
}

} // namespace

std::vector<std::string> sidesOf(const Call &call) {
    std::vector<std::string> sides;
    for (const CallMessage &message : call.messages) {
        for (const std::string &side : {message.sender, message.receiver}) {
            if (std::ranges::find(sides, side) == sides.end()) {
                sides.push_back(side);
            }
        }
    }
    return sides;
}

std::string timeOf(const Call &call, const CallMessage &message) {
    if (message.packet.frame == 0) {
        return "";
    }
    char text[32];
    const int64_t since = message.packet.time - call.messages.front().packet.time;
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(since) / 1e9);
    return text;
}

std::string placeOf(const CallMessage &message) {
    return message.packet.frame != 0 ? "frame " + std::to_string(message.packet.frame)
                                     : "line " + std::to_string(message.line);
}

std::string labelOf(const CallMessage &message) {
    const std::string what = message.head.isRequest() ? message.head.method : message.head.status;
    return what + (message.role.empty() ? "" : " (" + message.role + ')') +
           (message.repeated ? " (again)" : "");
}

std::string findingText(const CallFinding &finding) {
    return escaped(finding.sentence) + " [" + finding.name +
           (finding.reference.empty() ? "" : ", " + finding.reference) + ']';
}

std::string callLine(const Call &call) {
    std::string text = "Call-ID " + escaped(call.callId) + " (" + escaped(call.from) + " > " +
                       escaped(call.to) + ", " +
                       counted(call.messages.size(), "message", "messages") + "): ";
    if (call.findings.empty()) {
        return text + counted(call.offers, "offer", "offers") + ", " +
               counted(call.answers, "answer", "answers") + ": nothing wrong";
    }
    const CallFinding &first = call.findings.front();
    text += "error: " + placeOf(call.messages[first.message]) + ": " + findingText(first);
    const size_t more = call.findings.size() - 1;
    return more == 0 ? text : text + ", and " + std::to_string(more) + " more";
}

std::string ladderOf(const Call &call) {
    const std::vector<std::string> sides = sidesOf(call);
    std::string text = callLine(call) + '\n' + std::string(kTime, ' ');
    for (const std::string &side : sides) {
        const std::string name = escaped(side);
        text +=
            name + (&side == &sides.back()
                        ? ""
                        : ' ' + std::string(kWidth - std::min(kWidth - 1, name.size()) - 1, ' '));
    }
    text += '\n';
    for (size_t i = 0; i < call.messages.size(); ++i) {
        const CallMessage &message = call.messages[i];
        const std::string time = timeOf(call, message);
        text += std::string(kTime - 1 - std::min(kTime - 1, time.size()), ' ') + time + ' ' +
                arrow(sides, message) + "  " + placeOf(message) + '\n';
        for (const CallFinding &finding : call.findings) {
            if (finding.message == i) {
                text += std::string(kTime, ' ') + "error: " + findingText(finding) + '\n';
            }
        }
    }
    return text;
}

} // namespace cli
