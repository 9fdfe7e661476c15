#include "support/cases.hpp"

#include "sdpline/sdpline.h"

namespace support {

namespace {

// The bytes of an escape whose backslash is at `at`, which moves past it.
char unescape(const std::string &line, size_t &at) {
    const char letter = at + 1 < line.size() ? line[at + 1] : '\\';
    at += 2;
    switch (letter) {
    case 'r': return '\r';
    case 'n': return '\n';
    case 't': return '\t';
    case '0': return '\0';
    case 's': return ' ';
    case 'x': {
        const int byte = std::stoi(line.substr(at, 2), nullptr, 16);
        at += 2;
        return static_cast<char>(byte);
    }
    default: return letter;
    }
}

std::string expand(const std::string &line) {
    std::string result;
    for (size_t at = 0; at < line.size();) {
        if (line.compare(at, 2, "{{") == 0) {
            const size_t star = line.find('*', at);
            const size_t end = line.find("}}", at);
            const std::string text = expand(line.substr(at + 2, star - at - 2));
            for (int i = std::stoi(line.substr(star + 1, end - star - 1)); i > 0; --i) {
                result += text;
            }
            at = end + 2;
        } else if (line[at] == '\\') {
            result += unescape(line, at);
        } else {
            result += line[at++];
        }
    }
    return result;
}

void configure(Case &current) {
    current.avpf = current.bodyBlock.has("avpf");
    current.family = current.bodyBlock.has("family");
    for (const std::string &word : current.bodyBlock.words) {
        if (word.starts_with("max=")) {
            current.maxBody = static_cast<uint32_t>(std::stoul(word.substr(4)));
        }
        if (word.starts_with("t38=")) {
            current.t38Style = static_cast<uint32_t>(std::stoul(word.substr(4)));
        }
    }
    current.lineEnd = current.bodyBlock.has("eol=lf")   ? SDP_LINE_END_LF
                      : current.bodyBlock.has("eol=cr") ? SDP_LINE_END_CR
                                                        : SDP_LINE_END_CRLF;
}

Case caseOf(const Section &section) {
    Case current = {section.file, section.at, section.title,    {}, {}, {}, {}, {}, false, false,
                    SDP_MAX_BODY, 0,          SDP_LINE_END_CRLF};
    current.tree = section.find("tree");
    current.text = section.find("text");
    current.refused = section.find("refused");
    const bool accepted = current.tree && current.text;
    if (!section.has("sdp") || accepted == current.refused.has_value()) {
        refuse(section.file, section.at,
               "a case needs a body, and either tree and text or a refusal");
    }
    current.bodyBlock = section.block("sdp");
    current.body = bodyOf(current.bodyBlock);
    configure(current);
    return current;
}

} // namespace

std::string bodyOf(const Block &block) {
    const std::string end = block.has("raw") ? "" : block.has("lf") ? "\n" : "\r\n";
    std::string body;
    for (size_t i = 0; i < block.lines.size(); ++i) {
        body += expand(block.lines[i]);
        if (i + 1 < block.lines.size() || !block.has("open")) {
            body += end;
        }
    }
    return body;
}

std::vector<Case> readCases(const std::string &folder) {
    std::vector<Case> cases;
    for (const Section &section : readSections(folder, {"sdp", "tree", "text", "refused"})) {
        cases.push_back(caseOf(section));
    }
    return cases;
}

} // namespace support
