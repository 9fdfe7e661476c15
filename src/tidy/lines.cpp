// Cutting the text into lines: what precedes v=, the line ends, and the end of the description.
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Whether the decoder drops the byte at the start of a line.
constexpr bool isLeftOut(char byte) {
    return byte == ' ' || byte == '\0';
}

constexpr bool isLetter(char byte) {
    return static_cast<uint8_t>((byte | 0x20) - 'a') < 26;
}

[[gnu::noinline]] char keyAfterLeftOut(std::string_view line) {
    size_t at = 0;
    while (at < line.size() && isLeftOut(line[at])) {
        ++at;
    }
    return at + 1 < line.size() && line[at + 1] == '=' && isLetter(line[at]) ? line[at] : '\0';
}

// The letter before "="; 0 for none. Nearly all lines begin with it.
inline char keyOf(std::string_view line) {
    const bool isFirst = line.size() > 1 && line[1] == '=' && isLetter(line[0]);
    return isFirst ? line[0] : keyAfterLeftOut(line);
}

// The same, with white space allowed around the letter and the "=".
char looseKeyOf(std::string_view line) {
    line = withoutBlanksBefore(line);
    if (line.empty() || !isLetter(line.front())) {
        return '\0';
    }
    return withoutBlanksBefore(withoutFirst(line, 1)).starts_with('=') ? line.front() : '\0';
}

bool endsDescription(std::string_view line) {
    for (const char byte : line) {
        if (!isLeftOut(byte)) {
            return false;
        }
    }
    return true;
}

// Cuts line after line, each with its line end. `kBreak` is the byte that ends a line: LF, or CR in
// a text without LF.
template <char kBreak>
class Cutter {
public:
    explicit Cutter(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

    bool done() const { return at_ == end_; }
    const char *at() const { return at_; }
    std::string_view rest() const { return {at_, static_cast<size_t>(end_ - at_)}; }

    std::string_view next(std::string_view &end) {
        const char *const begin = at_;
        const void *const found = std::memchr(begin, kBreak, static_cast<size_t>(end_ - begin));
        const char *last = end_;
        at_ = end_;
        if (found != nullptr) {
            last = static_cast<const char *>(found);
            at_ = last + 1;
            last -= kBreak == '\n' && last != begin && last[-1] == '\r' ? 1 : 0;
        }
        end = {last, static_cast<size_t>(at_ - last)};
        return {begin, static_cast<size_t>(last - begin)};
    }

private:
    const char *at_;
    const char *end_;
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

template <char kBreak>
class Reader {
public:
    // `capacity` is the number of lines for which there is memory.
    Reader(Workspace &work, uint32_t capacity)
        : work_(work), cutter_(work.text), next_(work.lines), capacity_(capacity) {}

    // Returns false if the text has more lines.
    bool read() {
        while (canRead() && !begin(next())) {
        }
        do {
            readUsual();
        } while (canRead() && readLine());
        work_.lineCount = count_;
        return cutter_.done() || !work_.tail.empty();
    }

private:
    bool canRead() const { return !cutter_.done() && count_ != capacity_; }

    // Reads lines up to one without a key, or v=: nearly all lines. The local variables are kept in
    // registers.
    void readUsual() {
        Cutter<kBreak> cutter = cutter_;
        Line *line = next_;
        const Line *const end = work_.lines + (kBreak == '\n' ? capacity_ : 0);
        for (uint32_t number = count_ + 1; line < end && !cutter.done(); ++number, ++line) {
            Cutter<kBreak> ahead = cutter;
            std::string_view lineEnd;
            const std::string_view text = ahead.next(lineEnd);
            const char key = keyOf(text);
            if (key == '\0' || key == 'v') {
                break;
            }
            cutter = ahead;
            line->text = line->original = text;
            line->end = lineEnd;
            line->number = number;
            line->key = key;
            clearRest(*line);
        }
        count_ += static_cast<uint32_t>(line - next_);
        cutter_ = cutter;
        next_ = line;
    }

    // Clears the fields that other passes set, one by one: copying a line that was just built would
    // wait for its stores.
    static void clearRest(Line &line) {
        line.next = nullptr;
        line.extra = nullptr;
        line.newNumber = 0;
        line.rank = 0;
        line.aside = false;
        line.deferred = false;
    }

    // Returns false for the line that ends the description.
    bool readLine() {
        const std::string_view before = cutter_.rest();
        Line &line = next();
        if (line.key == '\0') [[unlikely]] {
            if (isEmpty(line) && !leavesOut(line)) {
                --count_;
                work_.tail = before;
                work_.goesOn = nextKey() != '\0';
                return false;
            }
        } else if (line.key == 'v') {
            work_.hasSecondVersion = true;
        }
        return true;
    }

    Line &next() {
        Line &line = *next_++;
        line.text = line.original = cutter_.next(line.end);
        clearRest(line);
        line.number = ++count_;
        line.key = keyOf(line.original);
        if (kBreak == '\r' && !line.end.empty()) {
            if (line.number == 1) {
                work_.report(Rule::LineEndCr, line, line.end.data());
            }
            line.end = "\r\n";
        }
        return line;
    }

    // Removes what precedes v=. Returns false if nothing of the line is left.
    bool begin(Line &line) {
        std::string_view &text = line.text;
        if (line.number == 1 && !line.end.empty()) {
            work_.lineEnd = line.end;
        }
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

    // The letter of the next line that is not empty; 0 if that is not a line of SDP. `begin` is set
    // to the start of that line.
    char nextKey(const char **begin = nullptr) const {
        Cutter<kBreak> ahead = cutter_;
        std::string_view end;
        while (!ahead.done()) {
            const char *const at = ahead.at();
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

    bool isEmpty(const Line &line) const {
        return line.original.data() < goesOnAt_ || endsDescription(line.original);
    }

    // Removes the empty line if lines of SDP follow it. All empty lines before those are removed.
    bool leavesOut(Line &line) {
        if (line.original.data() >= goesOnAt_) {
            const char *begin = nullptr;
            const char key = work_.wants(Rule::EmptyLines) ? nextKey(&begin) : '\0';
            if (key == '\0' || key == 'v') {
                return false;
            }
            goesOnAt_ = begin;
        }
        work_.report(Rule::EmptyLines, line);
        leaveOut(line);
        return true;
    }

    Workspace &work_;
    Cutter<kBreak> cutter_;
    const char *goesOnAt_ = nullptr; // after empty lines
    Line *next_;
    uint32_t count_ = 0;
    uint32_t capacity_;
};

// Most texts have at most one line for each kUsualLine bytes, and kFewLines more.
constexpr uint32_t kUsualLine = 20;
constexpr uint32_t kFewLines = 8;

template <char kBreak>
bool cut(Workspace &work) {
    // The decoder has counted the lines that it accepted.
    const uint32_t taken = work.takenLines();
    const std::string_view rest = withoutFirst(work.text, taken == 0 ? 0 : work.takenSize);
    const auto capacity = taken + static_cast<uint32_t>(rest.size()) / kUsualLine + kFewLines;
    work.lines = work.memory.array<Line>(capacity);
    if (work.lines != nullptr && !Reader<kBreak>(work, capacity).read()) {
        const uint32_t count = taken + countLines(rest, kBreak);
        work.forgetLines();
        work.lines = work.memory.array<Line>(count);
        if (work.lines != nullptr) {
            Reader<kBreak>(work, count).read();
        }
    }
    return work.lines != nullptr;
}

} // namespace

bool cutLines(Workspace &work) {
    const std::string_view text = work.text;
    work.hasNul = std::memchr(text.data(), '\0', text.size()) != nullptr;
    const bool hasLf = std::memchr(text.data(), '\n', text.size()) != nullptr;
    work.endsInCr = !hasLf && work.wants(Rule::LineEndCr) &&
                    std::memchr(text.data(), '\r', text.size()) != nullptr;
    return work.endsInCr ? cut<'\r'>(work) : cut<'\n'>(work);
}

} // namespace sdpline::tidy
