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

bool endsTwice(const Workspace &work, std::string_view line) {
    return work.hasInnerEnd &&
           (line.find('\r') != std::string_view::npos || line.find('\0') != std::string_view::npos);
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
    case 'a': return repairAttribute(work, line, value);
    default: return;
    }
}

// Repairs a line that may have any fault.
[[gnu::noinline]] void repairFaulty(Workspace &work, Line &line) {
    if (endsTwice(work, line.text)) {
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

// Nearly all values are "0 0", and the most frequent fault is white space after it.
Look lookAtTime(const Workspace &work, std::string_view value, Cut &cut) {
    constexpr char usual[] = "0 0";
    if (!beginsWith(value, usual)) {
        return Look::Other;
    }
    const std::string_view rest = withoutFirst(value, sizeof usual - 1);
    if (rest.empty()) {
        return Look::Plain;
    }
    if (!withoutBlanksBefore(rest).empty()) {
        return Look::Other;
    }
    cut = {Rule::TrailingSpace, rest.data(), rest.data(), rest.data() + rest.size()};
    return work.wants(cut.rule) ? Look::Cut : Look::Plain;
}

} // namespace

Look lookAtLine(const Workspace &work, char key, std::string_view text, Refused refused, Cut &cut) {
    if (text.size() <= 2 || text[1] != '=') {
        return Look::Other;
    }
    const std::string_view value = withoutFirst(text, 2);
    switch (key) {
    case 'a': return isBlank(value[0]) ? Look::Other : lookAtAttribute(work, value, cut);
    case 'o': return lookAtOrigin(work, value, cut);
    case 't': return lookAtTime(work, value, cut);
    case 'm': return lookAtMedia(work, value, cut);
    default: break;
    }
    return refused == Refused::No && isPlain(key, value) ? Look::Plain : Look::Other;
}

void repairLine(Workspace &work, Line &line, Look look, const Cut &cut) {
    if (look == Look::Cut) {
        work.report(cut.rule, line, cut.place);
        cutOut(line, cut.from, cut.to);
    } else if (look == Look::Other) {
        repairFaulty(work, line);
    }
}

} // namespace sdpline::tidy
