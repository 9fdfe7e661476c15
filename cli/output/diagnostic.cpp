#include "output/diagnostic.hpp"

#include "output/display.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

// The library has one check for all arguments; what was wrong with the text is known here.
std::string sentenceOf(const SDPResultText &words, size_t bodySize) {
    if (bodySize == 0) {
        return "the body is empty";
    }
    if (bodySize > SDP_MAX_BODY) {
        return "the body is " + std::to_string(bodySize) + " bytes long, more than " +
               std::to_string(SDP_MAX_BODY);
    }
    return words.pcSentence;
}

// A line of the body without its line end, and where it begins in the input.
struct BodyLine {
    std::string_view text;
    size_t begin;
};

BodyLine lineOf(const Found &body, size_t offset) {
    const std::string_view text = body.text();
    const size_t inBody = offset - body.place.offset;
    const size_t before = inBody == 0 ? std::string_view::npos : text.rfind('\n', inBody - 1);
    const size_t begin = before == std::string_view::npos ? 0 : before + 1;
    std::string_view line = text.substr(begin, text.find('\n', begin) - begin);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return {line, body.place.offset + begin};
}

std::string placeText(const Found &body, const Diagnostic &diagnostic) {
    const std::string &name = body.source->name();
    if (diagnostic.offset) {
        const Place place = body.source->placeOf(*diagnostic.offset);
        return name + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
    }
    return name + ':' + std::to_string(body.source->placeOf(body.place.offset).line);
}

void printExcerpt(std::ostream &out, const Found &body, size_t offset, Redactor *redactor,
                  const Style &style) {
    const BodyLine line = lineOf(body, offset);
    std::string text(line.text);
    size_t mark = offset - line.begin;
    if (redactor != nullptr && !text.empty()) {
        const std::vector<Edit> edits = redactor->editsOf(text);
        mark = movedOffset(mark, edits);
        text = applied(text, edits);
    }
    const Excerpt excerpt = excerptOf(text, mark);
    const std::string number = std::to_string(body.source->placeOf(offset).line);
    const std::string margin(number.size() < 5 ? 5 - number.size() : 0, ' ');
    out << margin << number << " | " << excerpt.line << '\n'
        << std::string(margin.size() + number.size(), ' ') << " | "
        << std::string(excerpt.mark, ' ') << style.caret << '^' << style.reset << '\n';
}

} // namespace

Diagnostic diagnosticOf(const Decoded &refused, const BodyPlace &place) {
    const SDPFailure &failure = refused.failure;
    Diagnostic diagnostic = {refused.result, failure.pcCheck, "", {}, failure.enToken, {}, false};
    SdpLibDescribeResult(refused.result, &diagnostic.words);
    diagnostic.sentence = sentenceOf(diagnostic.words, place.size);
    if (failure.ulLine != 0) {
        diagnostic.offset = place.offset + failure.ulOffset;
    }
    return diagnostic;
}

Diagnostic diagnosticOfLine(SDPResult result, uint32_t token, size_t offset) {
    Diagnostic diagnostic = {result, "", "", {}, token, offset, true};
    if (SdpLibDescribeResult(result, &diagnostic.words) == 0) {
        diagnostic.check = diagnostic.words.pcCheck;
        diagnostic.sentence = diagnostic.words.pcSentence;
    } else {
        diagnostic.check = "LineKind";
        diagnostic.sentence = "no line of SDP begins like this";
    }
    return diagnostic;
}

std::string shortText(const Found &body, const Diagnostic &diagnostic) {
    const bool whole = !diagnostic.offset && body.place.offset == 0;
    return (whole ? body.source->name() : placeText(body, diagnostic)) + ": " +
           diagnostic.sentence + " (" + diagnostic.words.pcSource + ' ' +
           diagnostic.words.pcFunction + ", " + codeText(diagnostic.result) + ')';
}

void print(std::ostream &out, const Found &body, const Diagnostic &diagnostic, Redactor *redactor,
           const Style &style) {
    out << style.bold << placeText(body, diagnostic) << ": " << style.reset << style.error
        << "error: " << style.reset << style.bold << diagnostic.sentence << style.reset << " ["
        << diagnostic.check << ']' << (diagnostic.alone ? " (line judged on its own)" : "") << '\n';
    if (diagnostic.offset) {
        printExcerpt(out, body, *diagnostic.offset, redactor, style);
    }
}

nlohmann::ordered_json jsonOf(const Found &body, const Diagnostic &diagnostic, Redactor *redactor) {
    nlohmann::ordered_json json = {{"line", nullptr},           {"column", nullptr},
                                   {"offset", nullptr},         {"code", nullptr},
                                   {"check", diagnostic.check}, {"sentence", diagnostic.sentence}};
    if (diagnostic.result != 0) {
        json["code"] = diagnostic.result;
        json["class"] = diagnostic.words.pcClass;
        json["source"] = diagnostic.words.pcSource;
        json["function"] = diagnostic.words.pcFunction;
    }
    json["token"] = diagnostic.token;
    json["alone"] = diagnostic.alone;
    if (diagnostic.offset) {
        const Place place = body.source->placeOf(*diagnostic.offset);
        json["line"] = place.line;
        json["column"] = place.column;
        json["offset"] = *diagnostic.offset;
        const std::string_view text = lineOf(body, *diagnostic.offset).text;
        const bool masked = redactor != nullptr && !text.empty();
        json["text"] = masked ? redactor->redacted(text) : std::string(text);
    }
    return json;
}

std::string dumped(const nlohmann::ordered_json &document) {
    return document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

} // namespace cli
