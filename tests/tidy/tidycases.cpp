#include "tidy/tidycases.hpp"

#include <cstdio>

namespace tidytest {

namespace {

using support::refuse;
using support::Section;

TidyCase caseOf(const Section &section) {
    TidyCase current;
    current.file = section.file;
    current.at = section.at;
    current.title = section.title;
    current.report = section.find("report");
    current.text = section.find("text");
    current.refused = section.find("refused");
    current.doubts = section.find("doubts");
    const bool repaired = current.report && current.text.has_value() != current.refused.has_value();
    const bool doubted = current.doubts && !current.text && !current.refused;
    if (!section.has("sdp") || section.block("sdp").lines.empty() || repaired == doubted) {
        refuse(section.file, section.at,
               "a case needs a body, and a report with its end, or doubts");
    }
    current.bodyBlock = section.block("sdp");
    return current;
}

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
    std::vector<TidyCase> cases;
    for (const Section &section : support::readSections(
             SDPLINE_CASES "/tidy", {"sdp", "report", "text", "refused", "doubts"})) {
        cases.push_back(caseOf(section));
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
