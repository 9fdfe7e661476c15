// The text cut into lines: what comes before v=, how lines end, where the description ends.
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// What the decoder leaves out at the start of a line.
constexpr bool isLeftOut(char byte) {
    return byte == ' ' || byte == '\0';
}

constexpr bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

// The letter before "=", 0 where there is none.
char keyOf(std::string_view line) {
    if (line.size() > 1 && line[1] == '=' && isLetter(line[0])) {
        return line[0]; // as nearly all lines begin
    }
    size_t at = 0;
    while (at < line.size() && isLeftOut(line[at])) {
        ++at;
    }
    return at + 1 < line.size() && line[at + 1] == '=' && isLetter(line[at]) ? line[at] : '\0';
}

// The same where white space around the "=" is repaired.
char looseKeyOf(std::string_view line) {
    line = withoutBlanksBefore(line);
    if (line.empty() || !isLetter(line.front())) {
        return '\0';
    }
    return withoutBlanksBefore(line.substr(1)).starts_with('=') ? line.front() : '\0';
}

bool endsDescription(std::string_view line) {
    for (const char byte : line) {
        if (!isLeftOut(byte)) {
            return false;
        }
    }
    return true;
}

// One line after the other, with its end.
class Cutter {
public:
    // `breaks` is the byte that ends a line: LF, or CR in a text without LF.
    Cutter(std::string_view text, char breaks) : rest_(text), breaks_(breaks) {}

    bool done() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }

    std::string_view next(std::string_view &end) {
        const void *const found = std::memchr(rest_.data(), breaks_, rest_.size());
        size_t size = rest_.size();
        size_t whole = size;
        if (found != nullptr) {
            size = static_cast<size_t>(static_cast<const char *>(found) - rest_.data());
            whole = size + 1;
            size -= breaks_ == '\n' && size != 0 && rest_[size - 1] == '\r' ? 1 : 0;
        }
        const std::string_view line = rest_.substr(0, size);
        end = rest_.substr(size, whole - size);
        rest_.remove_prefix(whole);
        return line;
    }

private:
    std::string_view rest_;
    char breaks_;
};

uint32_t countLines(std::string_view text, char breaks) {
    uint32_t count = 1;
    for (const char *at = text.data(), *const end = at + text.size();;) {
        at = static_cast<const char *>(std::memchr(at, breaks, static_cast<size_t>(end - at)));
        if (at == nullptr) {
            return count;
        }
        ++at;
        ++count;
    }
}

class Reader {
public:
    Reader(Workspace &work, char breaks)
        : work_(work), cutter_(work.text, breaks), breaks_(breaks) {}

    void read() {
        bool begun = false;
        while (!cutter_.done()) {
            const std::string_view before = cutter_.rest();
            Line &line = next();
            if (!begun) {
                begun = begin(line);
                continue;
            }
            work_.hasSecondVersion = work_.hasSecondVersion || line.key == 'v';
            if (line.key == '\0' && endsDescription(line.original) && !leavesOut(line)) {
                --work_.lineCount;
                work_.tail = before;
                work_.goesOn = nextKey() != '\0';
                return;
            }
        }
    }

private:
    Line &next() {
        Line &line = work_.lines[work_.lineCount++];
        line.original = cutter_.next(line.end);
        line.text = line.original;
        line.number = work_.lineCount;
        line.key = keyOf(line.original);
        if (breaks_ == '\r' && !line.end.empty()) {
            if (work_.lineCount == 1) {
                work_.report(Rule::LineEndCr, line, line.end.data());
            }
            line.end = "\r\n";
        }
        if (work_.lineCount == 1 && !line.end.empty()) {
            work_.lineEnd = line.end;
        }
        return line;
    }

    // Takes away what comes before v=. False for a line that is all of that.
    bool begin(Line &line) {
        std::string_view &text = line.text;
        if (line.number == 1 && text.starts_with(kByteOrderMark) &&
            work_.wants(Rule::ByteOrderMark)) {
            work_.report(Rule::ByteOrderMark, line);
            text.remove_prefix(kByteOrderMark.size());
        }
        const std::string_view bare = withoutBlanksBefore(text);
        if (!work_.wants(Rule::LeadingBlank) || (bare.size() == text.size() && !bare.empty())) {
            line.key = keyOf(text);
            return true;
        }
        work_.report(Rule::LeadingBlank, line, text.data());
        text = bare;
        line.key = keyOf(text);
        if (text.empty()) {
            leaveOut(line);
        }
        return !text.empty();
    }

    // The letter of the line after this and other empty ones, 0 where it is none of SDP. `begin` is
    // where it begins.
    char nextKey(const char **begin = nullptr) const {
        Cutter ahead = cutter_;
        std::string_view end;
        while (!ahead.done()) {
            const char *const at = ahead.rest().data();
            const std::string_view line = ahead.next(end);
            if (!withoutBlanksBefore(line).empty()) {
                if (begin != nullptr) {
                    *begin = at;
                }
                return work_.wants(Rule::KeySpace) ? looseKeyOf(line) : keyOf(line);
            }
        }
        return '\0';
    }

    // Whether lines of SDP follow the empty one, which is left out then.
    bool leavesOut(Line &line) {
        const char *begin = nullptr;
        const char key = work_.wants(Rule::EmptyLines) ? nextKey(&begin) : '\0';
        if (key == '\0' || key == 'v') {
            return false;
        }
        work_.report(Rule::EmptyLines, line);
        leaveOut(line);
        skipTo(begin);
        return true;
    }

    // The empty lines up to there are left out too.
    void skipTo(const char *begin) {
        while (cutter_.rest().data() < begin) {
            Line &line = next();
            work_.report(Rule::EmptyLines, line);
            leaveOut(line);
        }
    }

    Workspace &work_;
    Cutter cutter_;
    char breaks_;
};

} // namespace

bool cutLines(Workspace &work) {
    const std::string_view text = work.text;
    const bool hasLf = std::memchr(text.data(), '\n', text.size()) != nullptr;
    work.endsInCr = !hasLf && work.wants(Rule::LineEndCr) &&
                    std::memchr(text.data(), '\r', text.size()) != nullptr;
    const char breaks = work.endsInCr ? '\r' : '\n';
    // The decoder has counted those that it took.
    const uint32_t taken = work.takenLines();
    const uint32_t count = taken + countLines(text.substr(taken == 0 ? 0 : work.takenSize), breaks);
    work.lines = work.memory.array<Line>(count);
    if (work.lines != nullptr) {
        Reader(work, breaks).read();
    }
    return work.lines != nullptr;
}

} // namespace sdpline::tidy
