#include "output/repairs.hpp"

#include <algorithm>

#include "output/maskedorigin.hpp"

namespace cli {

std::string repairText(const Found &body, const sdpline::Repair &repair, const char *word,
                       Redactor *redactor) {
    return placeName(body, redactor) + ':' + std::to_string(body.line + repair.line - 1) + ':' +
           std::to_string(repair.column) + ": " + word + ": " + repair.rule->pcWrong + ": " +
           repair.rule->pcDone + " [" + repair.rule->pcName + ", " + repair.rule->pcReference + ']';
}

nlohmann::ordered_json jsonOf(const Found &body, const sdpline::Repair &repair) {
    return {{"rule", repair.rule->pcName}, {"line", body.line + repair.line - 1},
            {"column", repair.column},     {"offset", body.offset + repair.offset},
            {"newLine", repair.newLine},   {"wrong", repair.rule->pcWrong},
            {"done", repair.rule->pcDone}, {"reference", repair.rule->pcReference}};
}

std::optional<std::vector<uint32_t>> rulesNamed(const std::vector<std::string> &lists,
                                                std::string &unknown) {
    std::vector<uint32_t> rules;
    for (const std::string &list : lists) {
        for (size_t at = 0; at <= list.size();) {
            const size_t end = std::min(list.find(',', at), list.size());
            unknown = list.substr(at, end - at);
            const auto rule = sdpline::TidyRules::numberOf(unknown);
            if (!rule || SdpTidyRuleAt(*rule)->enSet == SDP_TIDY_DOUBT) {
                return std::nullopt;
            }
            rules.push_back(*rule);
            at = end + 1;
        }
    }
    return rules;
}

std::string rulesThatHelp(std::string_view text) {
    sdpline::TidyRules all = sdpline::TidyRules::withOptional();
    for (uint32_t rule = 0; rule < SDP_TIDY_RULE_COUNT; ++rule) {
        all = all.with(rule);
    }
    for (const sdpline::TidyRules &rules :
         {sdpline::TidyRules(), sdpline::TidyRules::withOptional(), all}) {
        const auto tidied = sdpline::tidy(text, rules);
        if (!tidied || !tidied->isRepaired()) {
            continue;
        }
        std::string names;
        uint64_t seen = 0;
        for (const sdpline::Repair repair : tidied->repairs()) {
            const uint64_t bit = SDP_TIDY_BIT(repair.rule->enRule);
            if ((seen & bit) == 0) {
                names += (names.empty() ? "" : ", ") + std::string(repair.name());
            }
            seen |= bit;
        }
        return names;
    }
    return "";
}

} // namespace cli
