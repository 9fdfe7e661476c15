// What check says of one place of a body, in the form that the reports for machines need.
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
    std::string hint; // what to do about it; empty where there is nothing
    size_t line;      // in the input, from 1
    size_t column;    // in bytes, from 1; 0: no place of the body is to blame
    size_t character; // the column in characters; bytes that are not UTF-8 count as one each
    size_t offset;    // in the input, in bytes
    std::string text; // the line, masked; empty where there is no column
};

// A redactor masks what is quoted of the body; null shows it as it is.
ReportEntry entryOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor);
ReportEntry entryOf(const Found &body, const sdpline::Repair &doubt, Redactor *redactor);

// The name of a check or of a doubt as it is written, for one in any case of letters; empty for
// none.
std::string_view nameKnown(std::string_view name);

// What a check or a doubt of that name says.
std::string sentenceFor(std::string_view name);

// Characters of a text; bytes that are not UTF-8 count as one each.
size_t charactersOf(std::string_view text);

} // namespace cli
