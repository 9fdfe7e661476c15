// Cuts the text into lines: what precedes v=, the line ends, and the end of the description. Lines
// that the decoder accepted are not read again where none of them can change.
#include <algorithm>
#include <utility>

#include "tidy/cutter.hpp"
#include "tidy/lastmedia.hpp"
#include "tidy/sequence.hpp"
#include "tidy/values.hpp"

namespace sdpline::tidy {

namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// The letter before "=", with white space allowed around it and the "="; 0 for none.
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

// When the first entries are used up, one is allocated for each kUsualLine bytes of text.
constexpr uint32_t kUsualLine = 20;

class Reader {
public:
    explicit Reader(Workspace &work)
        : work_(work), cutter_(work.text, work.endsInCr ? '\r' : '\n', work.hasInnerEnd),
          taken_(work.takenLines()), next_(work.lines), end_(next_ + Workspace::kFewLines) {}

    void read() {
        if (!work_.endsInCr && beginsWith(work_.text, "v=")) [[likely]] {
            setLineEnd(cutter_.end());
        } else {
            beginOtherwise();
        }
        if (count_ < taken_) {
            keepTaken();
        }
        do {
            if (!work_.endsInCr) {
                readUsual();
            }
        } while (!cutter_.done() && readLine());
        closeRun();
        endSection();
        work_.entryCount = static_cast<uint32_t>(next_ - work_.lines);
        work_.lineCount = count_;
    }

private:
    // ---- Entries

    // Adds a line as it was given. The fields that other passes set are cleared one by one: copying
    // a line that was just built would wait for its stores.
    SDPLINE_INLINE Line &put(std::string_view text, std::string_view end, char key) {
        closeRun();
        Line &line = newEntry(text.data());
        line.text = text;
        line.original = text; // a copy of line.text would wait for its store
        line.more = {};
        line.end = end;
        line.extra = nullptr;
        line.number = ++count_;
        line.count = 1;
        line.key = key;
        line.rank = 0;
        line.aside = false;
        line.deferred = false;
        line.isInOrder = false;
        return line;
    }

    // `at` is the line that was reached.
    Line &newEntry(const char *at) {
        if (next_ == end_) [[unlikely]] {
            grow(at);
        }
        return *next_++;
    }

    // An entry that may be used when lines are arranged.
    Line &newSpare(const char *at) {
        Line &line = newEntry(at);
        line.count = 1;
        line.key = '\0';
        line.rank = kNotWritten;
        line.deferred = false;
        line.isInOrder = false;
        return line;
    }

    // Allocates more entries. Without memory every line is written to spare_, and none is used.
    [[gnu::noinline]] void grow(const char *at) {
        if (work_.memory.hasFailed() || !growLines(at)) {
            next_ = section_ = &spare_;
            end_ = next_ + 1;
        }
    }

    bool growLines(const char *at) {
        const Line *const old = work_.lines;
        const auto used = static_cast<uint32_t>(end_ - old);
        const auto left = static_cast<uint32_t>(work_.text.data() + work_.text.size() - at);
        const uint32_t count = 2 * used + left / kUsualLine;
        if (!work_.growLines(used, count)) {
            return false;
        }
        section_ = section_ != nullptr ? work_.lines + (section_ - old) : nullptr;
        next_ = work_.lines + used;
        end_ = work_.lines + count;
        return true;
    }

    void setRunEnd(std::string_view end) {
        runEnd_ = end.data();
        runEndSize_ = end.size();
    }

    void closeRun() {
        if (run_ != nullptr) {
            const char *const begin = run_->text.data();
            run_->text = {begin, static_cast<size_t>(runEnd_ - begin)};
            run_->end = {runEnd_, runEndSize_};
            run_->count = count_ + 1 - run_->number;
            run_ = nullptr;
        }
    }

    // Repairs a line that was added, if the decoder did not accept it.
    [[gnu::noinline]] void settle(Line &line) {
        if (line.number > taken_) {
            Cut cut;
            const Look look = lookAtLine(work_, line.key, line.text, refusedAt(line.number), cut);
            repairLine(work_, line, look, cut);
        }
        addToSequence(line);
    }

    Refused refusedAt(uint32_t number) const {
        return number == taken_ + 1 ? Refused::Yes : Refused::No;
    }

    void addToSequence(Line &line) {
        if (line.key == 'm') {
            endSection();
            section_ = &line;
        } else if (line.rank != kNotWritten) {
            sequence_.add(line.key);
        }
    }

    // Ends the session, or a media description.
    void endSection() {
        const bool moves = std::exchange(work_.movesLines, false);
        const bool isInOrder = sequence_.end() && !moves;
        if (section_ != nullptr) {
            section_->isInOrder = isInOrder;
        }
        work_.inOrder = work_.inOrder && isInOrder;
    }

    // ---- Usual lines

    // Reads lines up to one without a key, or v=: nearly all lines.
    void readUsual() {
        for (; !cutter_.done(); cutter_.advance()) {
            const std::string_view text = cutter_.line();
            const char key = keyOf(text);
            if (key == '\0' || (key == 'v' && count_ != 0)) {
                break;
            }
            readNew(text, cutter_.end(), key);
        }
    }

    // Reads a line that the decoder did not accept, or did not reach. Consecutive lines that do not
    // change become a run, which begins anew at an m= line.
    void readNew(std::string_view text, std::string_view end, char key) {
        Cut cut;
        const Look look = lookAtLine(work_, key, text, refusedAt(count_ + 1), cut);
        if (look == Look::Plain && run_ != nullptr && key != 'm') {
            ++count_;
            setRunEnd(end);
            return sequence_.add(key);
        }
        Line &line = put(text, end, key);
        if (look == Look::Plain) {
            run_ = &line;
            setRunEnd(end);
        } else {
            repairLine(work_, line, look, cut);
        }
        addToSequence(line);
    }

    // ---- Lines that the decoder accepted

    // Adds them as one run. If there are media descriptions among them, two entries follow that may
    // be used when lines are arranged.
    void keepTaken() {
        const char *const begin = cutter_.line().data();
        const char *const end = work_.text.data() + work_.takenSize;
        run_ = &put(cutter_.line(), cutter_.end(), keyOf(cutter_.line()));
        work_.takenEntry = static_cast<uint32_t>(run_ - work_.lines);
        work_.takenMedia = readLetters(begin, end);
        count_ = taken_;
        setRunEnd(endBefore(work_.text.data(), end));
        if (work_.takenMedia != nullptr) {
            closeRun();
            newSpare(end);
            section_ = &newSpare(end);
        }
        cutter_.jump(end);
    }

    // Reads the letters of the last section, on which the order of the lines that follow depends.
    // Returns its m= line, null for the session.
    const char *readLetters(const char *begin, const char *end) {
        const char *media = nullptr;
        const char *const last = lastMedia(begin, end);
        if (last != nullptr && last != end) {
            cutter_.jump(last);
        }
        for (; cutter_.rest().data() < end; cutter_.advance()) {
            const char key = keyOf(cutter_.line());
            if (key == 'm') {
                sequence_.beginMedia();
                media = cutter_.line().data();
            } else {
                sequence_.add(key);
            }
            if (key == 'a' && last != nullptr) {
                break; // nothing but attributes follow
            }
        }
        return media;
    }

    // ---- All other lines

    // Returns false for the line that ends the description.
    [[gnu::noinline]] bool readLine() {
        const std::string_view before = cutter_.rest();
        Line &line = next();
        if (line.key == '\0') [[unlikely]] {
            if (isEmpty(line)) {
                if (leavesOut(line)) {
                    return true;
                }
                --next_;
                --count_;
                work_.tail = before;
                work_.goesOn = nextKey() != '\0';
                return false;
            }
        } else if (line.key == 'v') {
            work_.hasSecondVersion = true;
        }
        settle(line);
        return true;
    }

    [[gnu::noinline]] Line &next() {
        Line &line = put(cutter_.line(), cutter_.end(), keyOf(cutter_.line()));
        if (work_.endsInCr && !line.end.empty()) {
            if (line.number == 1) {
                work_.report(Rule::LineEndCr, line, line.end.data());
            }
            line.end = "\r\n";
        }
        cutter_.advance();
        return line;
    }

    void setLineEnd(std::string_view end) {
        if (!end.empty()) {
            work_.lineEnd = end;
        }
    }

    // Reads the first lines of a text that does not begin with v=.
    [[gnu::noinline]] void beginOtherwise() {
        setLineEnd(work_.endsInCr ? work_.lineEnd : cutter_.end());
        for (bool begun = false; !begun && !cutter_.done();) {
            begun = begin(next());
        }
    }

    // Removes what precedes v=. Returns false if nothing of the line is left.
    bool begin(Line &line) {
        std::string_view &text = line.text;
        if (line.number == 1 && beginsWith(text, kByteOrderMark) &&
            work_.wants(Rule::ByteOrderMark)) {
            work_.report(Rule::ByteOrderMark, line);
            text.remove_prefix(sizeof kByteOrderMark - 1);
        }
        const std::string_view bare = withoutBlanksBefore(text);
        if (work_.wants(Rule::LeadingBlank) && (bare.size() != text.size() || bare.empty())) {
            work_.report(Rule::LeadingBlank, line, text.data());
            text = bare;
        }
        line.key = keyOf(text);
        if (text.empty() && work_.wants(Rule::LeadingBlank)) {
            leaveOut(line);
            return false;
        }
        settle(line);
        return true;
    }

    // The letter of the next line that is not empty; 0 if that is not a line of SDP. `begin` is set
    // to the start of that line.
    [[gnu::noinline]] char nextKey(const char **begin = nullptr) const {
        for (Cutter ahead = cutter_; !ahead.done(); ahead.advance()) {
            const std::string_view line = ahead.line();
            if (!withoutBlanksBefore(line).empty()) {
                if (begin != nullptr) {
                    *begin = line.data();
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
    [[gnu::noinline]] bool leavesOut(Line &line) {
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
    Cutter cutter_;
    Sequence sequence_;
    const uint32_t taken_;           // lines
    const char *goesOnAt_ = nullptr; // after empty lines
    Line *next_;
    Line *end_;                    // of the memory for them
    Line *run_ = nullptr;          // the last entry, where it is a run
    const char *runEnd_ = nullptr; // the end of its last line; not a view, whose copy would wait
    size_t runEndSize_ = 0;        // for its stores
    Line *section_ = nullptr;      // the m= line of the current description
    uint32_t count_ = 0;           // of lines
    Line spare_;
};

} // namespace

void readLines(Workspace &work) {
    const std::string_view &text = work.text; // not a copy: see put()
    const bool hasLf = work.takenCount != 0 || text.find('\n') != std::string_view::npos;
    work.endsInCr =
        !hasLf && work.wants(Rule::LineEndCr) && text.find('\r') != std::string_view::npos;
    Reader(work).read();
    if (work.memory.hasFailed()) {
        return;
    }
    for (uint32_t i = 0; work.hasDeferred && i != work.entryCount; ++i) {
        if (work.lines[i].deferred) {
            addFormats(work, work.lines[i]);
        }
    }
}

} // namespace sdpline::tidy
