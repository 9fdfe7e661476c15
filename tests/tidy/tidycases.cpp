#include "tidy/tidycases.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace tidytest {

namespace {

using support::Block;

[[noreturn]] void refuse(const std::string &file, int line, const std::string &why) {
    std::fprintf(stderr, "%s:%d: %s\n", file.c_str(), line, why.c_str());
    std::exit(2);
}

class Reader {
public:
    explicit Reader(const std::filesystem::path &path)
        : in_(path), name_(path.filename().string()) {}

    std::vector<TidyCase> read() {
        for (std::string line; next(line);) {
            if (line.starts_with("## ")) {
                finish();
                cases_.emplace_back();
                cases_.back().file = name_;
                cases_.back().at = at_;
                cases_.back().title = line.substr(3);
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
            refuse(name_, at_, "a block before the first case");
        }
        Block block = {{}, {}, at_};
        std::istringstream words(info);
        std::string kind;
        words >> kind;
        for (std::string word; words >> word;) {
            block.words.push_back(word);
        }
        for (std::string line; line != "```";) {
            if (!next(line)) {
                refuse(name_, block.at, "a block without an end");
            }
            if (line != "```") {
                block.lines.push_back(line);
            }
        }
        store(kind, block);
    }

    void store(const std::string &kind, const Block &block) {
        TidyCase &current = cases_.back();
        if (kind == "sdp") {
            current.bodyBlock = block;
        } else if (kind == "report") {
            current.report = block;
        } else if (kind == "text") {
            current.text = block;
        } else if (kind == "refused") {
            current.refused = block;
        } else if (kind == "doubts") {
            current.doubts = block;
        } else {
            refuse(name_, block.at, "a block of the unknown kind \"" + kind + '"');
        }
    }

    void finish() {
        if (cases_.empty()) {
            return;
        }
        const TidyCase &last = cases_.back();
        const bool repaired = last.report && last.text.has_value() != last.refused.has_value();
        const bool doubted = last.doubts && !last.text && !last.refused;
        if (last.bodyBlock.lines.empty() || repaired == doubted) {
            refuse(name_, last.at, "a case needs a body, and a report with its end, or doubts");
        }
    }

    std::ifstream in_;
    std::string name_;
    int at_ = 0;
    std::vector<TidyCase> cases_;
};

} // namespace

uint64_t TidyCase::rules() const {
    uint64_t rules = SdpTidyRulesOf(SDP_TIDY_DEFAULT);
    rules |= bodyBlock.has("optional") ? SdpTidyRulesOf(SDP_TIDY_OPTIONAL) : 0;
    rules |= bodyBlock.has("by-name") ? SdpTidyRulesOf(SDP_TIDY_BY_NAME) : 0;
    for (const std::string &word : bodyBlock.words) {
        if (word.front() != '+' && word.front() != '-') {
            continue;
        }
        const auto size = static_cast<uint32_t>(word.size() - 1);
        const SDPTidyRule *const rule = SdpTidyRuleByName(word.c_str() + 1, size);
        if (rule == nullptr) {
            refuse(file, at, "there is no rule " + word.substr(1));
        }
        const uint64_t bit = SDP_TIDY_BIT(rule->enRule);
        rules = word.front() == '+' ? rules | bit : rules & ~bit;
    }
    return rules;
}

SDPDecodeOptions TidyCase::options() const {
    SDPDecodeOptions options = {bodyBlock.has("family") ? 1u : 0u, SDP_MAX_BODY};
    for (const std::string &word : bodyBlock.words) {
        if (word.starts_with("max=")) {
            options.ulMaxBodySize = static_cast<uint32_t>(std::stoul(word.substr(4)));
        }
    }
    return options;
}

std::vector<TidyCase> readTidyCases() {
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(SDPLINE_CASES "/tidy")) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::vector<TidyCase> cases;
    for (const auto &file : files) {
        const std::vector<TidyCase> more = Reader(file).read();
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}

std::string visible(const std::string &text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text.compare(at, 2, "\r\n") == 0) {
            continue;
        }
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte == '\n' || (byte >= ' ' && byte < 127)) {
            result += text[at];
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", byte);
            result += byte == '\r' ? "\\r" : byte == '\t' ? "\\t" : escape;
        }
    }
    return result;
}

} // namespace tidytest
