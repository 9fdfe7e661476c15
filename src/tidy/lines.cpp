// Cuts the text into lines: what precedes v=, the line ends, and the end of the description. Lines
// that the decoder accepted are not read again where none of them can change.
#include <algorithm>

#include "tidy/attributes.hpp"
#include "tidy/breaks.hpp"
#include "tidy/sequence.hpp"
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

// Whether a line is an attribute whose name does not begin with a blank.
inline bool isAttribute(std::string_view line) {
    return line.size() > 2 && beginsWith(line, "a=") && !isBlank(line[2]);
}

// The current line of a text, and the way to the next one. Lines end in LF, or in CR in a text
// without LF.
class Cutter {
public:
    Cutter(std::string_view text, char breakByte, bool &hasInnerEnd)
        : next_(text.data()), textEnd_(next_ + text.size()), breaks_(text, breakByte, hasInnerEnd),
          beforeBreak_(breakByte == '\n' ? '\r' : '\n') { // which a text without LF has not
        advance();
    }

    // Whether there are no more lines.
    bool done() const { return at_ == textEnd_; }
    std::string_view line() const { return {at_, static_cast<size_t>(lineEnd_ - at_)}; }
    std::string_view end() const { return {lineEnd_, static_cast<size_t>(next_ - lineEnd_)}; }
    // The text from the current line on.
    std::string_view rest() const { return {at_, static_cast<size_t>(textEnd_ - at_)}; }

    // Continues with the line that begins there.
    void jump(const char *to) {
        next_ = to;
        breaks_.jump(to);
        advance();
    }
    void advance() {
        at_ = next_;
        lineEnd_ = next_ = breaks_.next();
        if (next_ != textEnd_) [[likely]] {
            if (next_ != at_ && next_[-1] == beforeBreak_) {
                --lineEnd_;
            }
            ++next_;
        }
    }

private:
    const char *at_ = nullptr;
    const char *lineEnd_ = nullptr;
    const char *next_;
    const char *textEnd_;
    Breaks breaks_;
    char beforeBreak_; // which may end a line too
};

// The start of the last m= line among lines that the decoder accepted, or their end if there is
// none. Null if the lines have to be read one by one: a NUL, or a blank at the start of a line,
// which the decoder skips, hides the key; and without SSE2 this search would be no faster.
const char *lastMedia([[maybe_unused]] const char *at, [[maybe_unused]] const char *end) {
#ifdef __SSE2__
    if (end - at > 16) {
        const __m128i lf = _mm_set1_epi8('\n');
        const __m128i m = _mm_set1_epi8('m');
        const __m128i blank = _mm_set1_epi8(' ');
        __m128i least = lf;
        for (const char *byte = end - 17;; byte -= std::min(byte - at, ptrdiff_t{16})) {
            __m128i these;
            __m128i next;
            std::memcpy(&these, byte, sizeof these);
            std::memcpy(&next, byte + 1, sizeof next);
            least = _mm_min_epu8(least, these);
            const __m128i found =
                _mm_and_si128(_mm_cmpeq_epi8(these, lf),
                              _mm_or_si128(_mm_cmpeq_epi8(next, m), _mm_cmpeq_epi8(next, blank)));
            const auto marks = static_cast<uint32_t>(_mm_movemask_epi8(found));
            if (marks != 0 || byte == at) {
                const auto nul = _mm_cmpeq_epi8(least, _mm_setzero_si128());
                const char *const media = marks != 0 ? byte + 32 - std::countl_zero(marks) : end;
                const bool isLeftOut = _mm_movemask_epi8(nul) != 0 || (marks != 0 && *media == ' ');
                return isLeftOut ? nullptr : media;
            }
        }
    }
#endif
    return nullptr;
}

// Memory is allocated for kFewLines entries at first, then for one entry for each kUsualLine bytes.
constexpr uint32_t kUsualLine = 20;
constexpr uint32_t kFewLines = 48;

class Reader {
public:
    explicit Reader(Workspace &work)
        : work_(work), cutter_(work.text, work.endsInCr ? '\r' : '\n', work.hasInnerEnd),
          taken_(work.takenLines()) {}

    void read() {
        for (bool begun = false; !begun && !cutter_.done();) {
            begun = begin(next());
        }
        do {
            if (!work_.endsInCr) {
                readUsual();
            }
        } while (!cutter_.done() && readLine());
        work_.entryCount = static_cast<uint32_t>(next_ - work_.lines);
        work_.lineCount = count_;
        work_.inOrder = sequence_.holds() && !work_.movesLines;
    }

private:
    // Adds a line as it was given. The fields that other passes set are cleared one by one: copying
    // a line that was just built would wait for its stores.
    SDPLINE_INLINE Line &put(std::string_view text, std::string_view end, char key) {
        if (next_ == end_) [[unlikely]] {
            grow();
        }
        Line &line = *next_++;
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
        line.isWhole = false;
        plain_ = nullptr;
        return line;
    }

    // Allocates more entries. Without memory every line is written to spare_, and none is used.
    [[gnu::noinline]] void grow() {
        if (work_.memory.hasFailed() || !growLines()) {
            next_ = &spare_;
            end_ = next_ + 1;
        }
    }

    bool growLines() {
        const auto used = static_cast<uint32_t>(end_ - work_.lines);
        const auto left = static_cast<uint32_t>(cutter_.rest().size());
        const uint32_t count = used == 0 ? kFewLines : 2 * used + left / kUsualLine;
        if (!work_.growLines(used, count)) {
            return false;
        }
        media_ = media_ != nullptr ? work_.lines + (media_ - (end_ - used)) : nullptr;
        next_ = work_.lines + used;
        end_ = work_.lines + count;
        return true;
    }

    // Reads lines up to one without a key, or v=: nearly all lines.
    void readUsual() {
        Cutter &cutter = cutter_;
        while (!cutter.done()) {
            const std::string_view text = cutter.line();
            if (sequence_.isBelowMedia() && isAttribute(text)) {
                if (count_ >= taken_ || !skipTaken(cutter)) {
                    readAttribute(text, cutter.end());
                    cutter.advance();
                }
                continue;
            }
            const char key = keyOf(text);
            if (key == '\0' || key == 'v') {
                break;
            }
            if (key == 'm' && count_ < taken_) {
                closeMedia(next_[-1].end);
            }
            settle(put(text, cutter.end(), key));
            cutter.advance();
        }
    }

    // Called at the first attribute of a media description that the decoder accepted; nothing but
    // attributes can follow in it. Skips to the last description that the decoder accepted, and in
    // that to the refused line. Returns false if the lines have to be read one by one.
    bool skipTaken(Cutter &cutter) {
        const char *const begin = cutter.line().data();
        const char *const end = work_.text.data() + work_.takenSize;
        const char *const media = isInLast_ ? end : lastMedia(begin, end);
        if (media == nullptr) {
            return false;
        }
        const std::string_view lineEnd = endBefore(media);
        isInLast_ = true;
        if (media != end) {
            count_ = taken_ - countLines(media, end);
            closeMedia(lineEnd);
        } else {
            Line &line = put({begin, static_cast<size_t>(lineEnd.data() - begin)}, lineEnd, 'a');
            line.count += taken_ - count_;
            count_ = taken_;
            sequence_.addAttributes();
            plain_ = &line;
        }
        cutter.jump(media);
        return true;
    }

    // The line end that precedes that place.
    std::string_view endBefore(const char *place) const {
        const size_t size = place - work_.text.data() > 1 && place[-2] == '\r' ? 2 : 1;
        return {place - size, size};
    }

    uint32_t countLines(const char *begin, const char *end) const {
        bool hasOthers = false;
        Breaks breaks({work_.text.data(), static_cast<size_t>(end - work_.text.data())}, '\n',
                      hasOthers);
        breaks.jump(begin);
        uint32_t count = 0;
        while (breaks.next() != end) {
            ++count;
        }
        return count;
    }

    // Whether the attribute needs no repair. If it does, the line is added and repaired.
    bool isPlainAttribute(std::string_view text, std::string_view end) {
        constexpr char rtpmap[] = "a=rtpmap:"; // as most are
        if (beginsWith(text, rtpmap)) {
            const std::string_view value = withoutFirst(text, sizeof rtpmap - 1);
            const Rtpmaps what = lookAtRtpmap(value);
            if (what == Rtpmaps::Plain) {
                return true;
            }
            if (what == Rtpmaps::AfterBlanks) {
                closeRtpmap(work_, put(text, end, 'a'), value);
                sequence_.addAttributes();
                return false;
            }
        }
        const Attribute attribute(withoutFirst(text, 2));
        if (isPlain(attribute)) {
            return true;
        }
        Line &line = put(text, end, 'a');
        repairAttribute(work_, line, attribute);
        if (line.key == 'a') [[likely]] {
            sequence_.addAttributes();
        } else {
            sequence_.add(line);
        }
        return false;
    }

    // Reads an attribute below an m= line. Consecutive attributes that need no repair share an
    // entry.
    void readAttribute(std::string_view text, std::string_view end) {
        if (count_ >= taken_ && !isPlainAttribute(text, end)) {
            return;
        }
        if (plain_ == nullptr) {
            Line &line = put(text, end, 'a');
            sequence_.addAttributes();
            plain_ = &line;
            return;
        }
        const char *const begin = plain_->text.data();
        plain_->text = {begin, static_cast<size_t>(end.data() - begin)};
        plain_->end = end;
        ++plain_->count;
        ++count_;
    }

    // Called before an m= line that the decoder accepted: the descriptions before it do not change,
    // and become one entry. `end` is the line end of their last line.
    void closeMedia(std::string_view end) {
        if (work_.memory.hasFailed()) { // the lines go nowhere
            return;
        }
        if (media_ == nullptr) {
            media_ = next_;
            return;
        }
        const char *const begin = media_->text.data();
        media_->text = {begin, static_cast<size_t>(end.data() - begin)};
        media_->end = end;
        media_->count = count_ + 1 - media_->number;
        media_->isWhole = true;
        next_ = media_ + 1;
    }

    // Repairs the line if the decoder did not accept it, and checks its place in the order.
    void settle(Line &line) {
        if (line.number > taken_) {
            repair(line);
        }
        sequence_.add(line);
    }

    void repair(Line &line) {
        if (!isAttribute(line.text)) {
            return repairLine(work_, line, line.number == taken_ + 1 ? Refused::Yes : Refused::No);
        }
        const Attribute attribute(withoutFirst(line.text, 2));
        if (!isPlain(attribute)) {
            repairAttribute(work_, line, attribute);
        }
    }

    // Returns false for the line that ends the description.
    bool readLine() {
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

    Line &next() {
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
    char nextKey(const char **begin = nullptr) const {
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
    Cutter cutter_;
    Sequence sequence_;
    const uint32_t taken_;           // lines
    const char *goesOnAt_ = nullptr; // after empty lines
    Line *next_ = nullptr;
    Line *end_ = nullptr;   // of the memory for them
    Line *plain_ = nullptr; // the last entry, where it is attributes that need no repair
    Line *media_ = nullptr; // the first m= line that the decoder took
    uint32_t count_ = 0;    // of lines
    bool isInLast_ = false; // of the descriptions that the decoder took
    Line spare_;
};

} // namespace

void readLines(Workspace &work) {
    const std::string_view text = work.text;
    const bool hasLf = std::memchr(text.data(), '\n', text.size()) != nullptr;
    work.endsInCr = !hasLf && work.wants(Rule::LineEndCr) &&
                    std::memchr(text.data(), '\r', text.size()) != nullptr;
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
