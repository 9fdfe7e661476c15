// Repairs and doubts as text and as JSON, and rules by their names.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "input/input.hpp"
#include "redact/redact.hpp"
#include "sdpline/tidy.hpp"

namespace cli {

// "call.sip:9:3: repaired: s= is empty: wrote s=- [NameEmpty, RFC 4566 5.3]", where the word is
// "repaired", "tried" or "warning". A redactor masks the place.
std::string repairText(const Found &body, const sdpline::Repair &repair, const char *word,
                       Redactor *redactor);

nlohmann::ordered_json jsonOf(const Found &body, const sdpline::Repair &repair);

// The repairs with these names, which are separated by commas. Nothing, with the name in `unknown`,
// where a name is not that of a repair.
std::optional<std::vector<uint32_t>> rulesNamed(const std::vector<std::string> &lists,
                                                std::string &unknown);

// The rules that make a refused text acceptable, from the smallest set that does: "NameEmpty,
// SpaceRun".
std::string rulesThatHelp(std::string_view text);

} // namespace cli
