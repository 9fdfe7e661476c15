// A diagnostic of check in the form that the reports for machines need.
#pragma once

#include <string>
#include <string_view>

#include "input/input.hpp"
#include "output/diagnostic.hpp"
#include "redact/redact.hpp"
#include "sdpline/tidy.hpp"

namespace cli {

enum class Severity { Error, Warning };

// "error", "warning"
const char *wordOf(Severity severity);

struct ReportEntry {
    Severity severity;
    std::string_view name; // of the check, or of the doubt
    std::string message;
    std::string hint; // may be empty
    size_t line;      // in the input, from 1
    size_t column;    // in bytes, from 1; 0: no place in the body is at fault
    size_t character; // the column in characters; bytes that are not UTF-8 count as one each
    size_t offset;    // in the input, in bytes
    std::string text; // the line, masked; empty where there is no column
};

// A redactor masks what is quoted from the body; null shows it without masks.
ReportEntry entryOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);
ReportEntry entryOf(const Found &body, const sdpline::Repair &doubt, Redactor *redactor);

// The name of a check or doubt in its usual spelling, for a name in any case; empty for an unknown
// name.
std::string_view nameKnown(std::string_view name);

// The sentence of the check or doubt with this name.
std::string sentenceFor(std::string_view name);

// The number of characters of a text; bytes that are not UTF-8 count as one each.
size_t charactersOf(std::string_view text);

} // namespace cli
