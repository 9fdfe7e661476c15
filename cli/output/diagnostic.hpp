// What is wrong with a body, and how it is shown.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "input/body.hpp"
#include "input/input.hpp"
#include "output/terminal.hpp"
#include "redact/redact.hpp"

namespace cli {

struct Diagnostic {
    SDPResult result; // 0 when no check of the library is to name
    std::string check;
    std::string sentence;
    SDPResultText words; // of the result
    uint32_t token;
    std::optional<size_t> offset; // in the input; none when no place is to blame
    bool alone;                   // the line was judged on its own, behind the refusal
};

// Of a body that was refused.
Diagnostic diagnosticOf(const Decoded &refused, const BodyPlace &place);

// Of one line that its own parser refused.
Diagnostic diagnosticOfLine(SDPResult result, uint32_t token, size_t offset);

// "offer.sdp:4:16: the fourth octet is above 255 (sdpparser sdpConnectionFieldAddrIpv4,
// 0x05035065)"
std::string shortText(const Found &body, const Diagnostic &diagnostic);

// "offer.sdp:4:16: error: the fourth octet is above 255 [ConnLastOctetRange]", the line and a mark.
// A redactor masks the line; null shows it as it is.
void print(std::ostream &out, const Found &body, const Diagnostic &diagnostic, Redactor *redactor,
           const Style &style);

nlohmann::ordered_json jsonOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// The text of a JSON document with its line end; bytes that are not UTF-8 (names of files) are
// replaced.
std::string dumped(const nlohmann::ordered_json &document);

} // namespace cli
