#include "output/diagnostic.hpp"

#include <algorithm>

#include "output/hints.hpp"
#include "output/maskedorigin.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

// The library has one check for all arguments; here it is known what was wrong with the text.
std::string sentenceOf(const sdpline::Error &error, size_t bodySize) {
    if (bodySize == 0) {
        return "the body is empty";
    }
    if (bodySize > SdpGetMaxBodySize()) {
        return "the body is " + std::to_string(bodySize) + " bytes long, more than " +
               std::to_string(SdpGetMaxBodySize());
    }
    return std::string(error.sentence);
}

std::string placeText(const Found &body, const std::optional<LinePart> &part, Redactor *redactor) {
    return placeName(body, redactor) + ':' + std::to_string(part ? part->number : body.line) +
           (part ? ':' + std::to_string(part->column) : "");
}

// A diagnostic with everything that is quoted from the body.
struct Shown {
    std::optional<LinePart> part;
    std::string found; // what the line has where something else was expected
    std::string_view hint;

    std::string message(std::string_view sentence) const {
        return std::string(sentence) + (found.empty() ? "" : "; found " + found);
    }
};

Shown shownOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    Shown shown = {};
    const std::string line = linePartAt(body, diagnostic.offset.value_or(0), nullptr).text;
    if (diagnostic.offset) {
        shown.part = linePartAt(body, *diagnostic.offset, redactor);
        const bool atEnd = *diagnostic.offset >= body.text.size();
        shown.found = foundAt(diagnostic.sentence, shown.part->text, shown.part->offset, atEnd);
    }
    if (diagnostic.error && !body.text.empty()) {
        shown.hint = hintFor(diagnostic.error->check, line);
    }
    return shown;
}

void printExcerpt(std::ostream &out, const LinePart &part, const Style &style) {
    const Excerpt excerpt = excerptOf(part.text, part.offset);
    const std::string number = std::to_string(part.number);
    const std::string margin(number.size() < 5 ? 5 - number.size() : 0, ' ');
    out << margin << number << " | " << excerpt.line << '\n'
        << std::string(margin.size() + number.size(), ' ') << " | "
        << std::string(excerpt.mark, ' ') << style.caret << '^' << style.reset << '\n';
}

} // namespace

LinePart linePartAt(const Found &body, size_t offset, Redactor *redactor) {
    const std::string_view before = body.text.substr(0, offset);
    const size_t begin = before.rfind('\n') + 1; // 0 where there is none
    std::string_view line = body.text.substr(begin, body.text.find('\n', begin) - begin);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    const auto feeds = std::count(before.begin(), before.end(), '\n');
    LinePart part = {std::string(line), offset - begin, body.line + static_cast<size_t>(feeds),
                     offset - begin + 1};
    if (redactor != nullptr && !line.empty()) {
        const std::vector<Edit> edits = redactor->editsOf(line);
        part.text = applied(line, edits);
        part.offset = movedOffset(part.offset, edits);
    }
    return part;
}

std::string_view nameOf(const Diagnostic &diagnostic) {
    return diagnostic.error ? diagnostic.error->check : kLineKind;
}

uint32_t tokenOf(const sdpline::Error &error) {
    SDPFailure failure = {};
    SdpLibGetLastFailure(&failure);
    return failure.ulResult == error.code ? failure.enToken : 0;
}

Diagnostic diagnosticOf(const sdpline::Error &error, const Found &body) {
    Diagnostic diagnostic = {error, sentenceOf(error, body.text.size()), tokenOf(error), {}, false};
    if (error.line != 0) {
        diagnostic.offset = error.offset;
    }
    return diagnostic;
}

Advice adviceOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    const Shown shown = shownOf(body, diagnostic, redactor);
    return {shown.message(diagnostic.sentence), shown.hint};
}

std::string shortText(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    const Shown shown = shownOf(body, diagnostic, redactor);
    const bool whole = !diagnostic.offset && body.offset == 0;
    std::string text = (whole ? placeName(body, redactor) : placeText(body, shown.part, redactor)) +
                       ": " + shown.message(diagnostic.sentence);
    if (const std::optional<sdpline::Error> &error = diagnostic.error) {
        text += " (" + std::string(error->source) + ' ' + std::string(error->function) + ", " +
                codeText(error->code) + ')';
    }
    return text + (shown.hint.empty() ? "" : "\n  hint: " + std::string(shown.hint));
}

void print(std::ostream &out, const Found &body, const Diagnostic &diagnostic, Redactor *redactor,
           const Style &style) {
    const Shown shown = shownOf(body, diagnostic, redactor);
    out << style.bold << placeText(body, shown.part, redactor) << ": " << style.reset << style.error
        << "error: " << style.reset << style.bold << shown.message(diagnostic.sentence)
        << style.reset << " [" << nameOf(diagnostic) << ']'
        << (diagnostic.alone ? " (line checked by itself)" : "") << '\n';
    if (shown.part) {
        printExcerpt(out, *shown.part, style);
    }
    if (!shown.hint.empty()) {
        out << "  hint: " << shown.hint << '\n';
    }
}

nlohmann::ordered_json jsonOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    const Shown shown = shownOf(body, diagnostic, redactor);
    nlohmann::ordered_json json = {
        {"line", nullptr}, {"column", nullptr},           {"offset", nullptr},
        {"code", nullptr}, {"check", nameOf(diagnostic)}, {"sentence", diagnostic.sentence}};
    if (const std::optional<sdpline::Error> &error = diagnostic.error) {
        SDPResultText words = {};
        SdpLibDescribeResult(error->code, &words);
        json["code"] = error->code;
        json["class"] = words.pcClass;
        json["source"] = error->source;
        json["function"] = error->function;
    }
    json["token"] = diagnostic.token;
    json["alone"] = diagnostic.alone;
    if (shown.part) {
        json["line"] = shown.part->number;
        json["column"] = shown.part->column;
        json["offset"] = body.offset + *diagnostic.offset;
        json["text"] = shown.part->text;
    }
    if (!shown.found.empty()) {
        json["found"] = shown.found;
    }
    if (!shown.hint.empty()) {
        json["hint"] = shown.hint;
    }
    return json;
}

namespace {

std::string dumpedBy(const nlohmann::ordered_json &document, int indent) {
    return escapedJson(
               document.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace)) +
           '\n';
}

} // namespace

std::string dumped(const nlohmann::ordered_json &document) {
    return dumpedBy(document, 2);
}

std::string dumpedLine(const nlohmann::ordered_json &document) {
    return dumpedBy(document, -1);
}

} // namespace cli
