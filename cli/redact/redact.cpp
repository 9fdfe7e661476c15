#include "redact/redact.hpp"

#include <algorithm>

#include "redact/linemasks.hpp"

namespace cli {

void Redactor::learn(std::string_view body) {
    while (!body.empty()) {
        const size_t end = std::min(body.find('\n'), body.size());
        std::string_view line = body.substr(0, end);
        body.remove_prefix(std::min(end + 1, body.size()));
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        if (!line.empty()) {
            editsOf(line);
        }
    }
}

std::vector<Edit> Redactor::editsOf(std::string_view line) {
    return LineMasks(line, masks_).run();
}

std::string Redactor::redactedBody(std::string_view body) {
    std::string result;
    while (!body.empty()) {
        const size_t size = std::min(body.find('\n'), body.size());
        std::string_view line = body.substr(0, size);
        const bool pair = line.ends_with('\r');
        line.remove_suffix(pair ? 1 : 0);
        result += line.empty() ? "" : redacted(line);
        result += pair ? "\r" : "";
        result += size < body.size() ? "\n" : "";
        body.remove_prefix(std::min(size + 1, body.size()));
    }
    return result;
}

std::string Redactor::redactedAfter(std::string_view before, std::string_view text) {
    std::vector<Edit> edits = editsOf(std::string(before) + std::string(text));
    std::erase_if(edits, [&](const Edit &edit) { return edit.begin < before.size(); });
    for (Edit &edit : edits) {
        edit.begin -= before.size();
        edit.end -= before.size();
    }
    return applied(text, edits);
}

} // namespace cli
