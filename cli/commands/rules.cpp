// sdpline rules: lists what tidy repairs, and the doubts that check reports.
#include "commands/commands.hpp"

#include <iostream>

#include "output/diagnostic.hpp"
#include "sdpline/sdptidy.h"

namespace cli {

namespace {

const char *setName(uint32_t set) {
    switch (set) {
    case SDP_TIDY_DEFAULT: return "default";
    case SDP_TIDY_OPTIONAL: return "optional";
    case SDP_TIDY_BY_NAME: return "by name";
    default: return "doubt";
    }
}

// The section of the documents about the rule, with an example: "repairs.md#nameempty".
std::string pageOf(const SDPTidyRule &rule) {
    std::string page = rule.enSet == SDP_TIDY_DOUBT ? "doubts.md#" : "repairs.md#";
    for (const char *letter = rule.pcName; *letter != '\0'; ++letter) {
        page +=
            *letter >= 'A' && *letter <= 'Z' ? static_cast<char>(*letter + ('a' - 'A')) : *letter;
    }
    return page;
}

void printRules() {
    uint32_t set = 0;
    for (uint32_t number = 0; const SDPTidyRule *const rule = SdpTidyRuleAt(number); ++number) {
        if (rule->enSet != set) {
            std::cout << (set == 0 ? "" : "\n") << setName(rule->enSet) << '\n';
            set = rule->enSet;
        }
        std::cout << "  " << rule->pcName << ": " << rule->pcWrong << ": " << rule->pcDone << " ["
                  << rule->pcReference << ']' << (rule->bLoses != 0 ? " (loses something)" : "")
                  << (rule->bChanges != 0 ? " (may change the session)" : "") << ", "
                  << pageOf(*rule) << '\n';
    }
}

void printRulesAsJson() {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (uint32_t number = 0; const SDPTidyRule *const rule = SdpTidyRuleAt(number); ++number) {
        list.push_back({{"name", rule->pcName},
                        {"set", setName(rule->enSet)},
                        {"wrong", rule->pcWrong},
                        {"done", rule->pcDone},
                        {"reference", rule->pcReference},
                        {"page", pageOf(*rule)},
                        {"loses", rule->bLoses != 0},
                        {"changes", rule->bChanges != 0}});
    }
    std::cout << dumped(list);
}

constexpr CommandText kRulesText = {"rules",
                                    "Print what tidy repairs, and the doubts that check reports.",
                                    R"(Examples:
  sdpline rules
  sdpline rules --json | jq -r '.[] | select(.set == "optional").name'

Each rule has a section in the documents, with an example.)"};

} // namespace

void addRules(CLI::App &app, int &status) {
    const auto json = std::make_shared<bool>(false);
    CLI::App &command = addCommand(app, kRulesText, [json, &status] {
        status = kFine;
        *json ? printRulesAsJson() : printRules();
    });
    addFlag(command, "--json", *json, "Print one JSON document");
}

} // namespace cli
