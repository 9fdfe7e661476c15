// Diagnostics, which say what is wrong with a body, as text and as JSON.
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
    std::optional<sdpline::Error> error; // none: it is not a check of the library
    std::string sentence;
    uint32_t token;               // SDP_TOK_... at which the parser failed
    std::optional<size_t> offset; // in the body; none where no place is at fault
    bool alone;                   // the line was checked by itself, after the refused one
};

// The token of the last decode, which must have failed with this error.
uint32_t tokenOf(const sdpline::Error &error);

inline constexpr std::string_view kLineKind = "LineKind";
inline constexpr std::string_view kLineKindSentence = "no line of SDP begins like this";

// The diagnostic of a refused body.
Diagnostic diagnosticOf(const sdpline::Error &error, const Found &body);

// A place in a body: its line without the line end, masked by the redactor, and the position in it.
struct LinePart {
    std::string text;
    size_t offset; // in the text
    size_t number; // of the line in the input, from 1
    size_t column; // in the input, from 1
};
LinePart linePartAt(const Found &body, size_t offset, Redactor *redactor);

// "expected a number; found "x"", and a hint, which may be empty.
struct Advice {
    std::string message;
    std::string_view hint;
};
Advice adviceOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// The name of the check; "LineKind" for a line of no kind, which is no check of the library.
std::string_view nameOf(const Diagnostic &diagnostic);

// "offer.sdp:4:16: expected an octet of at most 255; found "256" (sdpparser
// sdpConnectionFieldAddrIpv4, 0x05035065)", with a hint on a second line. A redactor masks what is
// quoted; null shows it without masks.
std::string shortText(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// "offer.sdp:4:16: error: expected an octet of at most 255; found "256" [ConnLastOctetRange]", with
// the line, a mark below it, and a hint.
void print(std::ostream &out, const Found &body, const Diagnostic &diagnostic, Redactor *redactor,
           const Style &style);

nlohmann::ordered_json jsonOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);

// The text of a JSON document with its line end. Bytes that are not UTF-8 (names of files) are
// replaced, and control characters that a terminal would obey are escaped.
std::string dumped(const nlohmann::ordered_json &document);

// The same in one line.
std::string dumpedLine(const nlohmann::ordered_json &document);

} // namespace cli
