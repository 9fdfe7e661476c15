#include "support/cases.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "sdpline/sdpline.h"

namespace support {

namespace {

[[noreturn]] void refuse(const std::string &file, int line, const std::string &why) {
    std::fprintf(stderr, "%s:%d: %s\n", file.c_str(), line, why.c_str());
    std::exit(2);
}

std::vector<std::string> words(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> result;
    for (std::string word; in >> word;) {
        result.push_back(word);
    }
    return result;
}

// The bytes of an escape whose backslash stands at `at`, which moves behind it.
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

class Reader {
public:
    explicit Reader(const std::filesystem::path &path)
        : in_(path), path_(path.string()), name_(path.filename().string()) {}

    std::vector<Case> read() {
        for (std::string line; next(line);) {
            if (line.starts_with("## ")) {
                finish();
                cases_.push_back({name_,
                                  at_,
                                  line.substr(3),
                                  {},
                                  {},
                                  {},
                                  {},
                                  {},
                                  false,
                                  false,
                                  SDP_MAX_BODY,
                                  0,
                                  SDP_LINE_END_CRLF});
            } else if (line.starts_with("```")) {
                take(line.substr(3));
            }
        }
        finish();
        return std::move(cases_);
    }

private:
    bool next(std::string &line) {
        ++at_;
        return static_cast<bool>(std::getline(in_, line));
    }

    void take(const std::string &info) {
        if (cases_.empty()) {
            refuse(path_, at_, "a block before the first case");
        }
        Case &current = cases_.back();
        Block block = {words(info), {}, at_};
        const std::string kind = block.words.empty() ? "" : block.words.front();
        for (std::string line; line != "```";) {
            if (!next(line)) {
                refuse(path_, block.at, "a block without an end");
            }
            if (line != "```") {
                block.lines.push_back(line);
            }
        }
        if (kind == "sdp") {
            current.bodyBlock = block;
            current.body = bodyOf(block);
            configure(current);
        } else if (kind == "tree") {
            current.tree = block;
        } else if (kind == "text") {
            current.text = block;
        } else if (kind == "refused") {
            current.refused = block;
        } else {
            refuse(path_, block.at, "a block of the unknown kind \"" + kind + '"');
        }
    }

    void finish() {
        if (cases_.empty()) {
            return;
        }
        const Case &last = cases_.back();
        const bool accepted = last.tree && last.text;
        if (last.bodyBlock.words.empty() || accepted == last.refused.has_value()) {
            refuse(path_, last.at, "a case needs a body, and either tree and text or a refusal");
        }
    }

    std::ifstream in_;
    std::string path_;
    std::string name_;
    int at_ = 0;
    std::vector<Case> cases_;
};

} // namespace

bool Block::has(const std::string &word) const {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::string Block::joined() const {
    std::string text;
    for (const std::string &line : lines) {
        text += line + '\n';
    }
    return text;
}

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
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".md") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<Case> cases;
    for (const auto &file : files) {
        std::vector<Case> more = Reader(file).read();
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}

} // namespace support
