// Repairs within a line: white space around its "=", lines of few fields, and the dispatch by kind.
#include "tidy/values.hpp"

#include <algorithm>

#include "tidy/attributes.hpp"
#include "tidy/fields.hpp"

namespace sdpline::tidy {

namespace {

constexpr uint32_t kOptionalKeys = lettersOf("iuepcbrzka");

constexpr bool isKnown(char key) {
    return isOneOf(lettersOf("vosiuepcbtrzkam"), key);
}

// Lines whose value is any text, to which a blank at its start belongs.
constexpr bool isText(char key) {
    return isOneOf(lettersOf("siuepbkz"), key);
}

// Writes the line without white space around its "=".
void writeKey(Workspace &work, Line &line, std::string_view value) {
    const char key[] = {line.key, '='};
    line.text = (Draft(work.memory, sizeof key + value.size())
                 << std::string_view(key, sizeof key) << value)
                    .text();
}

// Removes white space before the key and around the "=", as in "v =0", and sets the line's key and
// `value`. Returns false for a line that has no key even so.
bool closeKey(Workspace &work, Line &line, std::string_view &value) {
    std::string_view rest = withoutBlanksBefore(line.text);
    if (rest.empty() || !isKnown(rest.front()) || !work.wants(Rule::KeySpace)) {
        return false;
    }
    const char key = rest.front();
    rest = withoutBlanksBefore(withoutFirst(rest, 1));
    if (!rest.starts_with('=')) {
        return false;
    }
    work.report(Rule::KeySpace, line, line.text.data());
    line.key = key;
    value = withoutBlanksBefore(withoutFirst(rest, 1));
    writeKey(work, line, value);
    return true;
}

// Removes white space after the "=" of a line of fields. An o= line with too few fields keeps it:
// its user name is missing.
void closeValue(Workspace &work, Line &line, std::string_view &value) {
    if (value.empty() || !isBlank(value.front()) || isText(line.key) ||
        !work.wants(Rule::KeySpace) || (line.key == 'o' && Fields(value).count() < 6)) {
        return;
    }
    work.report(Rule::KeySpace, line, value.data());
    value = withoutBlanksBefore(value);
    writeKey(work, line, value);
}

void repairVersion(Workspace &work, Line &line, std::string_view value) {
    Fields fields(value);
    if (fields.leading() == nullptr && fields.repairable(work) && fields.count() == 1 &&
        isNumber(fields[0]) && fields.needsWriting()) {
        fields.write(work, line, "v=");
    }
}

void repairTime(Workspace &work, Line &line, std::string_view value) {
    Fields fields(value);
    if (fields.count() == 0) {
        if (fields.fits() && work.wants(Rule::TimeMissing)) {
            work.report(Rule::TimeMissing, line);
            line.text = kTimeLine;
        }
        return;
    }
    if (fields.leading() == nullptr && fields.repairable(work) && fields.count() == 2 &&
        isNumber(fields[0]) && isNumber(fields[1]) && fields.needsWriting()) {
        fields.write(work, line, "t=");
    }
}

void repairRepeat(Workspace &work, Line &line, std::string_view value) {
    Fields fields(value);
    if (fields.leading() == nullptr && fields.repairable(work) && fields.count() != 0 &&
        fields.needsWriting()) {
        fields.write(work, line, "r=");
    }
}

void repairEmpty(Workspace &work, Line &line) {
    if (line.key == 's' && work.wants(Rule::NameEmpty)) {
        work.report(Rule::NameEmpty, line, line.original.data() + line.original.size());
        line.text = kNameLine;
    } else if (isOneOf(kOptionalKeys, line.key) && work.wants(Rule::LineEmpty)) {
        work.report(Rule::LineEmpty, line);
        leaveOut(line);
    }
}

// Whether eight bytes of a text are digits, dots and slashes.
bool areOfAddress(const char *bytes) {
    constexpr uint64_t each = 0x8080808080808080;
    return bytesBelow('.', bytes) == 0 && bytesBelow('9' + 1, bytes) == each;
}

// Whether a text has only those, as an IPv4 address.
bool isAddressPart(std::string_view text) {
    if (text.size() < 8) {
        return std::ranges::all_of(text, [](char byte) { return byte >= '.' && byte <= '9'; });
    }
    const size_t last = text.size() - 8; // the last eight may overlap those before
    for (size_t at = 0; at < last; at += 8) {
        if (!areOfAddress(text.data() + at)) {
            return false;
        }
    }
    return areOfAddress(text.data() + last);
}

// Whether a line, which is not o=, t= or m=, certainly needs no repair, as most do not.
bool isPlain(char key, std::string_view value) {
    constexpr char ip4[] = "IN IP4 ";
    switch (key) {
    case 'v': return equals(value, "0");
    case 'c':
        return value.size() >= sizeof ip4 && beginsWith(value, ip4) &&
               isAddressPart(withoutFirst(value, sizeof ip4 - 1));
    default: return isText(key);
    }
}

} // namespace

bool endsTwice(const Workspace &work, const Line &line) {
    return work.hasInnerEnd && (line.text.find('\r') != std::string_view::npos ||
                                line.text.find('\0') != std::string_view::npos);
}

void cutOut(Line &line, const char *from, const char *to) {
    const char *const begin = line.text.data();
    const char *const end = begin + line.text.size();
    line.text = {begin, static_cast<size_t>(from - begin)};
    line.more = {to, static_cast<size_t>(end - to)};
}

void join(Workspace &work, Line &line) {
    if (!line.more.empty()) {
        line.text =
            (Draft(work.memory, line.text.size() + line.more.size()) << line.text << line.more)
                .text();
        line.more = {};
    }
}

void leaveOut(Line &line) {
    line.text = {};
    line.more = {};
    line.end = {};
    line.newNumber = 0;
    line.key = '\0';
    line.rank = kNotWritten;
}

void makeAttribute(Workspace &work, Line &line) {
    line.text =
        (Draft(work.memory, kKept.size() + line.original.size()) << kKept << line.original).text();
    line.more = {};
    line.key = 'a';
    line.aside = true;
    work.movesLines = true;
}

void keepAsAttribute(Workspace &work, Line &line) {
    Draft draft(work.memory, kKept.size() + line.original.size());
    line.extra = work.newLine((draft << kKept << line.original).text(), line);
    if (line.extra != nullptr) {
        line.extra->key = 'a';
    }
    work.movesLines = true;
}

namespace {

void repairValue(Workspace &work, Line &line, std::string_view value) {
    switch (line.key) {
    case 'v': return repairVersion(work, line, value);
    case 'o': return repairOrigin(work, line, value);
    case 't': return repairTime(work, line, value);
    default: break;
    }
    if (value.empty()) {
        return repairEmpty(work, line);
    }
    switch (line.key) {
    case 'c': return repairConnection(work, line, value);
    case 'r': return repairRepeat(work, line, value);
    case 'm': return repairMedia(work, line, value);
    case 'a': return repairAttribute(work, line, Attribute(value));
    default: return;
    }
}

// Nearly all values are "0 0", and the most frequent fault is white space after it.
[[gnu::noinline]] void repairTimeLine(Workspace &work, Line &line, std::string_view value) {
    constexpr char usual[] = "0 0";
    if (equals(value, usual)) {
        return;
    }
    const bool begins = beginsWith(value, usual);
    const std::string_view rest = withoutFirst(value, begins ? sizeof usual - 1 : 0);
    if (!begins || !withoutBlanksBefore(rest).empty()) {
        return repairFaulty(work, line);
    }
    if (work.wants(Rule::TrailingSpace)) {
        work.report(Rule::TrailingSpace, line, rest.data());
        line.text = {line.text.data(), kTimeLine.size()};
    }
}

} // namespace

void repairFaulty(Workspace &work, Line &line) {
    if (endsTwice(work, line)) {
        return;
    }
    std::string_view value;
    if (line.key == '\0') {
        if (!closeKey(work, line, value)) {
            return;
        }
    } else if (!isKnown(line.key)) {
        if (work.wants(Rule::LineUnknown)) {
            work.report(Rule::LineUnknown, line);
            makeAttribute(work, line);
        }
        return;
    } else {
        value = withoutFirst(line.text, line.text[1] == '=' ? 2 : line.text.find('=') + 1);
        closeValue(work, line, value);
    }
    repairValue(work, line, value);
}

// Calls only at its ends, so that most lines save no register.
void repairLine(Workspace &work, Line &line, Refused refused) {
    if (line.text.size() > 2 && line.text[1] == '=') {
        const std::string_view value = withoutFirst(line.text, 2);
        switch (line.key) {
        case 'o': return repairOriginLine(work, line, value);
        case 't': return repairTimeLine(work, line, value);
        case 'm': return repairMediaLine(work, line, value);
        default: break;
        }
        if (refused == Refused::No && isPlain(line.key, value)) {
            return;
        }
    }
    repairFaulty(work, line);
}

} // namespace sdpline::tidy
