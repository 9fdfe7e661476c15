// What is wrong with a body, and how it is shown.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "input/input.hpp"
#include "output/terminal.hpp"
#include "redact/redact.hpp"
#include "sdpline/sdpline.hpp"

namespace cli {

struct Diagnostic {
    std::optional<sdpline::Error> error; // none: no check of the library is to name
    std::string sentence;
    uint32_t token;               // SDP_TOK_... that the parser had reached
    std::optional<size_t> offset; // in the body; none when no place is to blame
    bool alone;                   // the line was judged on its own, after the refused one
};

// The token of the decode that was just refused for that reason.
uint32_t tokenOf(const sdpline::Error &error);

inline constexpr std::string_view kLineKind = "LineKind";
inline constexpr std::string_view kLineKindSentence = "no line of SDP begins like this";

// Of a body that was refused.
Diagnostic diagnosticOf(const sdpline::Error &error, const Found &body);

// A place of a body: its line without the line end, masked by the redactor, and where in it.
struct LinePart {
    std::string text;
    size_t offset; // in the text
    size_t number; // of the line in the input, from 1
    size_t column; // in the input, from 1
};
LinePart linePartAt(const Found &body, size_t offset, Redactor *redactor);

// "expected a number; found "x"", and what to do about it: empty where there is nothing.
struct Advice {
    std::string message;
    std::string_view hint;
};
Advice adviceOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// The name of the check; "LineKind" for a line of no kind, which is no check of the library.
std::string_view nameOf(const Diagnostic &diagnostic);

// "offer.sdp:4:16: expected an octet of at most 255; found "256" (sdpparser
// sdpConnectionFieldAddrIpv4, 0x05035065)", and what to do about it on a line of its own. A
// redactor masks what is quoted; null shows it as it is.
std::string shortText(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// "offer.sdp:4:16: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]", the
// line and a mark, and what to do about it.
void print(std::ostream &out, const Found &body, const Diagnostic &diagnostic, Redactor *redactor,
           const Style &style);

nlohmann::ordered_json jsonOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// The text of a JSON document with its line end. Bytes that are not UTF-8 (names of files) are
// replaced, and control characters that a terminal would obey are escaped.
std::string dumped(const nlohmann::ordered_json &document);

// The same in one line.
std::string dumpedLine(const nlohmann::ordered_json &document);

} // namespace cli
